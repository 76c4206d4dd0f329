#pragma once

#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/quaternion.h"
#include "jev3d/scene/node.h"
#include "jev3d/system/eventDelegate.h"

namespace JEV {
namespace SYSTEM {
class winBase;
class inputContext;
class inputEvent;
}  // namespace SYSTEM

namespace SG {
namespace CAM {

// A camera that orbits a point of interest, driven by the mouse, for looking around a
// mesh. Its one output is `viewMatrix`, the world-to-eye matrix in the library's
// convention (row vectors, translation in elements 12 to 14, left-handed eye space: x to
// the right, y up, z into the screen). Link a camera state's view to it, or read it from
// the walk of the subtree below; the node applies nothing to the device itself.
//
// The camera looks from `target - forward * distance` towards `target`; its axes are
// `orientation` applied to x (right), y (up) and z (forward). Writing any of these three
// fields, or calling an operation below, recomputes `viewMatrix` (which notifies) and
// asks the window for a frame.
//
// Mouse, read from the window's input context at every update and every frame, so that a
// drag follows the pointer at the frame rate:
// - left drag orbits: the view turns about the target as if the drag rolled a ball under
//   the pointer; the point of the model facing the camera follows the pointer. A drag of
//   d pixels turns by d * orbitSpeed radians about the axis in the view plane
//   perpendicular to the drag. Free rotation: circles with the pointer roll the view.
//   With `keepUp` the orbit is a turntable instead: horizontal drags turn about
//   `upAxis` through the target, vertical drags tilt the view up or down, stopping
//   short of looking straight along the axis, and the horizon stays level (a roll left
//   by free orbiting goes at the first such drag).
// - middle drag pans: the target slides in the view plane so that points at the target's
//   depth stay under the pointer (this needs the window's height and `fieldOfView`).
// - right drag zooms: up zooms in, dragZoomRate wheel steps a pixel.
// - the wheel zooms (registered on the window for MOUSE_WHEEL when the window is a main
//   window): one step forward divides the distance by zoomStep.
// A drag is measured from the pointer's position at the first update or frame that sees
// its button down; while several buttons are down the first of left, middle, right
// counts, and a change of button restarts the measure. With `enabled` false the mouse is ignored.
class trackballNode : public node {
 public:
  // Any of the three may be null: without an input context the mouse does nothing,
  // without a rendering context panning does nothing, without a window nothing asks for
  // frames.
  trackballNode(SYSTEM::winBase* window, SYSTEM::inputContext* input,
                RENDERING::renderingContext* rc);
  ~trackballNode() override;

  // Each takes in the mouse, then walks as a plain node.
  void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) override;
  void render(RENDERING::renderingContext* rc) override;

  // The mouse gestures as operations, in window pixels (y up). orbit and pan take a
  // pointer motion; zoom takes wheel steps, positive to come closer.
  void orbit(float dx, float dy);
  void pan(float dx, float dy);
  void zoom(float steps);
  // Aims at the box's centre from the distance at which its bounding sphere just fits the
  // narrower of the two view angles (the window's aspect taken from the rendering
  // context), keeping the direction of view. False, with nothing changed, for a box with
  // a minimum above its maximum or with a coordinate that is not finite. A box reduced to
  // a point keeps the distance.
  bool fitBoundingBox(const MATH::point3<float>& minCorner, const MATH::point3<float>& maxCorner);
  // Looks along +z at the origin from distance 1.
  void reset();

  MATH::point3<float> getEye() const;
  MATH::point3<float> getRight() const;
  MATH::point3<float> getUp() const;
  MATH::point3<float> getForward() const;

  // Reads the mouse when true.
  SYSTEM::fieldBase<bool> enabled;
  // The point looked at and orbited about. Origin at start.
  SYSTEM::fieldBase<MATH::point3<float>> target;
  // From the eye to the target. 1 at start.
  SYSTEM::fieldBase<float> distance;
  // The camera's axes in the world. Identity at start: looking along +z.
  SYSTEM::fieldBase<MATH::quaternion<float>> orientation;
  // The vertical view angle of the projection this camera is used with, in radians
  // (pi/4 at start): panning and fitting use it.
  SYSTEM::fieldBase<float> fieldOfView;
  // Orbits as a turntable about upAxis when true; false at start.
  SYSTEM::fieldBase<bool> keepUp;
  // The world's up for keepUp; +y at start. A null axis makes the orbit free.
  SYSTEM::fieldBase<MATH::point3<float>> upAxis;
  // Radians of orbit per pixel of drag; 0.01 at start.
  SYSTEM::fieldBase<float> orbitSpeed;
  // Distance ratio of one wheel step; 1.1 at start.
  SYSTEM::fieldBase<float> zoomStep;
  // Wheel steps per pixel of right drag; 0.02 at start.
  SYSTEM::fieldBase<float> dragZoomRate;
  // Zooming stops this close to the target; 1e-6 at start.
  SYSTEM::fieldBase<float> minimumDistance;
  // The output: world to eye.
  SYSTEM::fieldBase<MATH::matrix4<float>> viewMatrix;

 private:
  enum button { NO_BUTTON, LEFT, MIDDLE, RIGHT };

  void takeMouse();
  // The keepUp orbit about the unit axis `up`.
  void orbitLevel(float dx, float dy, const MATH::point3<float>& up);
  void onMouseWheel(const SYSTEM::inputEvent* e);
  void refreshMatrix();

  SYSTEM::winBase* window;
  SYSTEM::inputContext* input;
  RENDERING::renderingContext* context;
  SYSTEM::inputEventDelegate wheelHandler;
  button held = NO_BUTTON;
  float lastX = 0, lastY = 0;
};

}  // namespace CAM
}  // namespace SG
}  // namespace JEV
