#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Which material colour follows the vertex colour, on which faces; mode off disables it.
class colorMaterialstate : public renderstate {
 public:
  colorMaterialstate() = default;
  colorMaterialstate(COLOR_MATERIAL mode, FACE_MATERIAL face);
  void set(COLOR_MATERIAL mode, FACE_MATERIAL face);
  void clone(colorMaterialstate* target) const;
  void render(renderingContext* rc) override;

  COLOR_MATERIAL mode = COLOR_MATERIAL_AMBIENT_AND_DIFFUSE;
  FACE_MATERIAL face = FACE_FRONT_AND_BACK;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
