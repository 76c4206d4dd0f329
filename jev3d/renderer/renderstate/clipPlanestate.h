#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// One of six user clip planes: points with a x + b y + c z + d >= 0 are kept.
class clipPlanestate : public renderstate {
 public:
  clipPlanestate() = default;
  clipPlanestate(bool enable, CLIP_PLANE plane, float a, float b, float c, float d);
  void set(bool enable, CLIP_PLANE plane, float a, float b, float c, float d);
  void clone(clipPlanestate* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<bool> enable{false};
  CLIP_PLANE plane = CLIP_PLANE0;
  SYSTEM::fieldBase<float> a{0.0f};
  SYSTEM::fieldBase<float> b{0.0f};
  SYSTEM::fieldBase<float> c{0.0f};
  SYSTEM::fieldBase<float> d{0.0f};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
