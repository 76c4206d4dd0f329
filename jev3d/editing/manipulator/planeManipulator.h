#pragma once

#include "jev3d/editing/manipulator/manipulator.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

class manipulatorPlane;

// One square that moves in its own plane: a drag that picks it follows the mouse over
// the plane, and the manipulator travels with it. Displacements are in the parent's
// space.
class planeManipulator : public manipulator {
 public:
  // A square centre +- u +- v in the manipulator's space.
  planeManipulator(const MATH::point3<float>& u = MATH::point3<float>(0.5f, 0, 0),
                   const MATH::point3<float>& v = MATH::point3<float>(0, 0.5f, 0));

  // Whether the ray (parent space) picks the square; remembers the point on its plane.
  bool startPicking(const ray3f& ray);
  // Moves to where the ray meets the plane; false while nothing is picked or when the ray
  // runs along the plane.
  bool moveTranslationControlArrow(const ray3f& ray);
  bool isPicked() const { return picked; }
  const MATH::point3<float>& getLastDisplacement() const { return lastDisplacement; }
  const MATH::point3<float>& getDragDisplacement() const { return dragDisplacement; }
  MATH::matrix4<float> getStepTransform() const override {
    return MATH::matrix4<float>::getTranslate(lastDisplacement.x, lastDisplacement.y,
                                              lastDisplacement.z);
  }
  manipulatorPlane* getPlane() const { return plane; }

 protected:
  void mouseDown(const ray3f& ray) override { startPicking(ray); }
  void mouseDrag(const ray3f& ray) override { moveTranslationControlArrow(ray); }
  void mouseUp(const ray3f& ray) override;

 private:
  // The plane's unit normal and a point of it, in the parent's space.
  MATH::point3<float> planeNormal() const;
  manipulatorPlane* plane;
  bool picked = false;
  MATH::point3<float> pickedPoint, lastDisplacement, dragDisplacement;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
