#pragma once

#include "jev3d/editing/manipulator/manipulator.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A manipulator that only translates, dragged by one handle: it keeps the drag's state
// (whether the handle is picked, the last step and all of the drag, both in the parent's
// space) for the arrow and the plane, which differ only in how a ray picks and moves.
class translatingManipulator : public manipulator {
 public:
  // Whether the ray (parent space) picks the handle; starts a drag when it does.
  virtual bool startPicking(const ray3f& ray) = 0;
  // Follows the ray with the handle; false while nothing is picked or when the ray gives
  // no position.
  virtual bool moveTranslationControlArrow(const ray3f& ray) = 0;

  bool isPicked() const { return picked; }
  const MATH::point3<float>& getLastDisplacement() const { return lastDisplacement; }
  const MATH::point3<float>& getDragDisplacement() const { return dragDisplacement; }
  MATH::matrix4<float> getStepTransform() const override {
    return MATH::matrix4<float>::getTranslate(lastDisplacement.x, lastDisplacement.y,
                                              lastDisplacement.z);
  }

 protected:
  // Takes ownership of the handle as the manipulator's widget 0, drawn in `colour`.
  translatingManipulator(manipulatorWidget* widget, const CORE::color& colour);

  void mouseDown(const ray3f& ray) override { startPicking(ray); }
  void mouseDrag(const ray3f& ray) override { moveTranslationControlArrow(ray); }
  void mouseUp(const ray3f& ray) override;

  // Forgets any earlier drag and returns the first hit of the ray when it is the handle.
  bool pickHandle(const ray3f& ray, hitPoint& hit);
  // Marks the drag as started and lights the handle.
  void beginDrag();
  // Forgets the last step, at the start of each move.
  void clearStep() { lastDisplacement = MATH::point3<float>(); }
  // Moves the manipulator by one step of the drag; a null step moves nothing.
  void takeStep(const MATH::point3<float>& step);

 private:
  manipulatorWidget* handle;
  bool picked = false;
  MATH::point3<float> lastDisplacement, dragDisplacement;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
