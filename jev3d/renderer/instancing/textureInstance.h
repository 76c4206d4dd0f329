#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

// A texture bound on one unit for a subtree (stack slot 40 + unit).
class textureInstance : public RENDERSTATE::renderstate {
 public:
  textureInstance() = default;
  explicit textureInstance(TEXTURE_ACTIVE unit) : unit(unit) {}
  void render(renderingContext* rc) override;

  TEXTURE_ACTIVE unit = TEXTURE0;
};

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
