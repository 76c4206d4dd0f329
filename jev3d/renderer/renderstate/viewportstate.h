#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
class renderer;
namespace RENDERSTATE {

// The viewport in window pixels (origin bottom left): requested and computed rectangles
// as for scissorstate. A `type` other than 0 letterboxes the rectangle to 16:9.
class viewportstate : public renderstate {
 public:
  viewportstate() = default;
  viewportstate(int x, int y, int width, int height, bool intersectParent, VIEWPORT_TYPE type);
  void set(int x, int y, int width, int height, bool intersectParent, VIEWPORT_TYPE type);
  void clone(viewportstate* target) const;
  void render(renderingContext* rc) override;

  // Fills the computed rectangle. Unlike the scissor it lets negative positions stand.
  // False when the rectangle lies beside its parent or its width or height comes out
  // negative.
  bool computeSize(renderer* device);
  // The computed rectangle as x, y, width, height.
  void getComputed(int out[4]) const;

  SYSTEM::fieldBase<int> x{0};
  SYSTEM::fieldBase<int> y{0};
  SYSTEM::fieldBase<int> width{320};
  SYSTEM::fieldBase<int> height{240};
  SYSTEM::fieldBase<int> computedX{0};
  SYSTEM::fieldBase<int> computedY{0};
  SYSTEM::fieldBase<int> computedWidth{320};
  SYSTEM::fieldBase<int> computedHeight{240};
  SYSTEM::fieldBase<bool> intersectParent{false};
  VIEWPORT_TYPE type = VIEWPORT_FREE;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
