#pragma once

#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/point3.h"
#include "jev3d/scene/node.h"
#include "jev3d/system/eventDelegate.h"

namespace JEV {
namespace SYSTEM {
class winBase;
class inputEvent;
}  // namespace SYSTEM

namespace SG {

// Keeps the ray under the mouse pointer in scene coordinates. The ray is cast during the
// render walk, so it sees the camera and transforms in force above this node; it is the
// ray through the pointer's pixel, relative to the current viewport, with its origin on
// the near plane. The pointer position comes from the window's mouse events, which the
// node registers for at its first enabled render.
class pickRayNode : public node {
 public:
  explicit pickRayNode(SYSTEM::winBase* window);
  ~pickRayNode() override;

  // Does nothing, and does not walk the children.
  void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) override;
  // When enabled: registers for the mouse once, casts the ray into rayOrigin and
  // rayDirection (their values written without notification); then walks as a node.
  void render(RENDERING::renderingContext* rc) override;

  // Copies the event's position into mouseX and mouseY, notifying each.
  void onMouseMove(const SYSTEM::inputEvent* e);

  SYSTEM::fieldBase<bool> enabled;
  SYSTEM::fieldBase<MATH::point3<float>> rayOrigin;
  SYSTEM::fieldBase<MATH::point3<float>> rayDirection;
  // The pointer in window pixels, origin at the bottom left.
  SYSTEM::fieldBase<float> mouseX;
  SYSTEM::fieldBase<float> mouseY;
  SYSTEM::winBase* window;
  bool registered = false;

 private:
  SYSTEM::inputEventDelegate moveHandler;
};

}  // namespace SG
}  // namespace JEV
