#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// The size of drawn points in pixels, within the device range.
class pointSizestate : public renderstate {
 public:
  pointSizestate() = default;
  explicit pointSizestate(float size);
  void set(float size);
  void clone(pointSizestate* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<float> size{1.0f};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
