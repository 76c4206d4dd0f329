#pragma once

#include <string>

#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlElement;
class xmlNode;
}  // namespace XML
}  // namespace IO
namespace RENDERING {
namespace RENDERSTATE {

// The lighting material of front and back faces.
class materialstate : public renderstate {
 public:
  materialstate() = default;
  materialstate(CORE::color frontEmissive, CORE::color frontAmbient, CORE::color frontDiffuse,
                CORE::color frontSpecular, float frontShininess, CORE::color backEmissive,
                CORE::color backAmbient, CORE::color backDiffuse, CORE::color backSpecular,
                float backShininess);
  void set(CORE::color frontEmissive, CORE::color frontAmbient, CORE::color frontDiffuse,
           CORE::color frontSpecular, float frontShininess, CORE::color backEmissive,
           CORE::color backAmbient, CORE::color backDiffuse, CORE::color backSpecular,
           float backShininess);
  void clone(materialstate* target) const;
  void render(renderingContext* rc) override;

  void copyFrontToBack();
  // Load a preset: emissive black with alpha 0, the other colours from the preset's
  // fractions (times 255, truncated) with alpha 255. Shininess is taken as it stands.
  void setFrontMaterialType(MATERIAL_TYPE type);
  void setBackMaterialType(MATERIAL_TYPE type);
  void setFrontAndBackMaterialType(MATERIAL_TYPE type);

  // Appends an element named `name` under `parent` holding the eight colours and the two
  // shininess values.
  void saveToXML(IO::XML::xmlNode* parent, const std::wstring& name) const;
  // Reads what saveToXML wrote; what is missing keeps its value. False, with nothing
  // changed, when a value present is not a number or a colour channel lies outside 0 to
  // 255.
  bool openFromXML(IO::XML::xmlElement& element);

  SYSTEM::fieldBase<CORE::color> frontEmissive{CORE::color(0, 0, 0, 255)};
  SYSTEM::fieldBase<CORE::color> frontAmbient{CORE::color(0, 0, 0, 255)};
  SYSTEM::fieldBase<CORE::color> frontDiffuse{CORE::color(150, 150, 150, 255)};
  SYSTEM::fieldBase<CORE::color> frontSpecular{CORE::color(50, 50, 50, 255)};
  SYSTEM::fieldBase<float> frontShininess{128.0f};
  SYSTEM::fieldBase<CORE::color> backEmissive{CORE::color(0, 0, 0, 255)};
  SYSTEM::fieldBase<CORE::color> backAmbient{CORE::color(0, 0, 0, 255)};
  SYSTEM::fieldBase<CORE::color> backDiffuse{CORE::color(150, 150, 150, 255)};
  SYSTEM::fieldBase<CORE::color> backSpecular{CORE::color(50, 50, 50, 255)};
  SYSTEM::fieldBase<float> backShininess{128.0f};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
