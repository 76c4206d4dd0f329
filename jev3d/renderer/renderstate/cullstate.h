#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Back-face culling, with the winding that counts as front.
class cullstate : public renderstate {
 public:
  cullstate() = default;
  cullstate(bool enable, FRONT_FACE_MODE frontFace);
  void set(bool enable, FRONT_FACE_MODE frontFace);
  void clone(cullstate* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<bool> enable{false};
  FRONT_FACE_MODE frontFace = FRONT_FACE_CCW;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
