#pragma once

#include "jev3d/renderer/renderstate/rectangleState.h"
#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
class renderer;
namespace RENDERSTATE {

// The scissor rectangle. The requested rectangle is what the owner asks for; the computed
// one is what the device gets, after clamping to the window and, with `intersectParent`,
// cutting to the scissor in force.
class scissorstate : public renderstate, public rectangleState {
 public:
  scissorstate() = default;
  scissorstate(int x, int y, int width, int height, bool enable, bool intersectParent);
  // Writes the four values to the requested and the computed rectangle.
  void set(int x, int y, int width, int height, bool enable, bool intersectParent);
  void clone(scissorstate* target) const;
  void render(renderingContext* rc) override;

  // Fills the computed rectangle. False when nothing of it remains (a negative width or
  // height, or a rectangle beside its parent): the device is then not to be given it.
  bool computeSize(renderer* device);

  SYSTEM::fieldBase<bool> enable{false};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
