#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Fog: its equation (`type`), the quality hint (`mode`), colour and parameters.
class fogState : public renderstate {
 public:
  fogState() = default;
  fogState(bool enable, FOG_TYPE type, FOG_MODE mode, CORE::color color, float start, float end,
           float density);
  void set(bool enable, FOG_TYPE type, FOG_MODE mode, CORE::color color, float start, float end,
           float density);
  void clone(fogState* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<bool> enable{false};
  FOG_MODE mode = FOG_FASTEST;
  FOG_TYPE type = FOG_LINEAR;
  CORE::color color{100, 100, 100, 255};
  SYSTEM::fieldBase<float> start{0.0f};
  SYSTEM::fieldBase<float> end{1.0f};
  SYSTEM::fieldBase<float> density{0.35f};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
