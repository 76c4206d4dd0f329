#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Lighting on or off, and whether back faces are lit with their own normals.
class lightingstate : public renderstate {
 public:
  lightingstate() = default;
  lightingstate(bool enable, bool twoSide);
  void set(bool enable, bool twoSide);
  void clone(lightingstate* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<bool> enable{true};
  SYSTEM::fieldBase<bool> twoSide{false};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
