#pragma once

#include "jev3d/math/matrix4.h"
#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/resources/resourceInstance.h"
#include "jev3d/resources/textureStorage.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

// A texture of a storage bound on one unit for a subtree (stack slot 40 + unit), with how
// the unit combines it with the colour coming in.
class textureInstance : public RENDERSTATE::renderstate,
                        public CORE::resourceInstance<CORE::textureStorage, CORE::textureClient,
                                                      SYSTEM::sharedPointer<TEXTURE::texture>> {
 public:
  // The unit's environment mode; combine takes its terms from `combiner`.
  enum TEXTURE_MODE {
    TEXTURE_REPLACE,
    TEXTURE_DECAL,
    TEXTURE_MODULATE,
    TEXTURE_BLEND,
    TEXTURE_ADD,
    TEXTURE_COMBINE
  };
  enum TEXTURE_WRAP { WRAP_REPEAT, WRAP_CLAMP_TO_EDGE, WRAP_MIRRORED_REPEAT, WRAP_CLAMP_TO_BORDER };
  enum COMBINE_FUNCTION {
    COMBINE_REPLACE,
    COMBINE_MODULATE,
    COMBINE_ADD,
    COMBINE_ADD_SIGNED,
    COMBINE_INTERPOLATE,
    COMBINE_SUBTRACT,
    COMBINE_DOT3_RGB,
    COMBINE_DOT3_RGBA
  };
  enum COMBINE_SOURCE { SOURCE_TEXTURE, SOURCE_CONSTANT, SOURCE_PRIMARY_COLOR, SOURCE_PREVIOUS };
  enum COMBINE_OPERAND {
    OPERAND_SRC_COLOR,
    OPERAND_ONE_MINUS_SRC_COLOR,
    OPERAND_SRC_ALPHA,
    OPERAND_ONE_MINUS_SRC_ALPHA
  };
  // The fifteen terms of the combine mode: two functions, three sources and three
  // operands for colour and for alpha, and the colour scale (1, 2 or 4).
  struct combinerDescriptor {
    COMBINE_FUNCTION functionRGB = COMBINE_MODULATE;
    COMBINE_FUNCTION functionAlpha = COMBINE_MODULATE;
    COMBINE_SOURCE sourceRGB[3] = {SOURCE_TEXTURE, SOURCE_PREVIOUS, SOURCE_CONSTANT};
    COMBINE_SOURCE sourceAlpha[3] = {SOURCE_TEXTURE, SOURCE_PREVIOUS, SOURCE_CONSTANT};
    COMBINE_OPERAND operandRGB[3] = {OPERAND_SRC_COLOR, OPERAND_SRC_COLOR, OPERAND_SRC_ALPHA};
    COMBINE_OPERAND operandAlpha[3] = {OPERAND_SRC_ALPHA, OPERAND_SRC_ALPHA, OPERAND_SRC_ALPHA};
    float scaleRGB = 1.0f;
    bool operator==(const combinerDescriptor& o) const;
    bool operator!=(const combinerDescriptor& o) const { return !(*this == o); }
  };
  // Everything the device is told besides the texture itself.
  struct environmentDescriptor {
    bool enable = true;
    TEXTURE_MODE mode = TEXTURE_MODULATE;
    TEXTURE_WRAP wrapS = WRAP_REPEAT;
    TEXTURE_WRAP wrapT = WRAP_REPEAT;
    // On: the unit sets the texture's filters at each apply, remaking its mipmaps for the
    // mipmapped kinds. Off: the filters stay as the texture was uploaded with.
    bool filter = false;
    CORE::color color{0, 0, 0, 0};
    MATH::matrix4<float> matrix;
    combinerDescriptor combiner;
    bool operator==(const environmentDescriptor& o) const;
    bool operator!=(const environmentDescriptor& o) const { return !(*this == o); }
  };

  explicit textureInstance(CORE::textureStorage* storage = nullptr);
  // With no storage: the unit's bottom entry of the state stack.
  explicit textureInstance(TEXTURE_ACTIVE unit);
  void render(renderingContext* rc) override;

  // The texture, null when the instance holds none.
  TEXTURE::texture* getTexture() const;
  // Puts the texture on the device unless it is there; true when there is nothing to do.
  bool cacheResource();

  TEXTURE_ACTIVE unit = TEXTURE0;
  // Off, or with no texture, the unit draws untextured.
  environmentDescriptor environment;
};

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
