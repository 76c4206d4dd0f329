#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Depth test and writes. With `clearFirst` the device clears the depth buffer when it
// takes the state; `rangeNear` and `rangeFar` map depth, so that an overlay can be drawn
// slightly in front of a surface.
class zbufferstate : public renderstate {
 public:
  zbufferstate() = default;
  zbufferstate(bool enable, DEPTH_FUNC function, bool writeEnable, bool clearFirst);
  void set(bool enable, DEPTH_FUNC function, bool writeEnable, bool clearFirst);
  void clone(zbufferstate* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<bool> enable{true};
  DEPTH_FUNC function = DEPTH_LEQUAL;
  SYSTEM::fieldBase<bool> writeEnable{true};
  SYSTEM::fieldBase<bool> clearFirst{false};
  SYSTEM::fieldBase<float> rangeNear{0.0f};
  SYSTEM::fieldBase<float> rangeFar{1.0f};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
