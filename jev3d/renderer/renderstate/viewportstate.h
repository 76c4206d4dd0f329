#pragma once

#include "jev3d/renderer/renderstate/rectangleState.h"
#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
class renderer;
namespace RENDERSTATE {

// The viewport: requested and computed rectangles as for scissorstate. A `type` other
// than 0 letterboxes the rectangle to 16:9.
class viewportstate : public renderstate, public rectangleState {
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

  VIEWPORT_TYPE type = VIEWPORT_FREE;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
