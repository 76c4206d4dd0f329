#pragma once

#include "jev3d/editing/manipulator/translatingManipulator.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

class manipulatorPlane;

// One square that moves in its own plane: a drag that picks it follows the mouse over
// the plane, and the manipulator travels with it. Displacements are in the parent's
// space.
class planeManipulator : public translatingManipulator {
 public:
  // A square centre +- u +- v in the manipulator's space.
  planeManipulator(const MATH::point3<float>& u = MATH::point3<float>(0.5f, 0, 0),
                   const MATH::point3<float>& v = MATH::point3<float>(0, 0.5f, 0));

  // Whether the ray (parent space) picks the square; remembers the point on its plane.
  bool startPicking(const ray3f& ray) override;
  // Moves to where the ray meets the plane; false while nothing is picked or when the ray
  // runs along the plane.
  bool moveTranslationControlArrow(const ray3f& ray) override;
  manipulatorPlane* getPlane() const { return plane; }

 private:
  // The plane's unit normal and a point of it, in the parent's space.
  MATH::point3<float> planeNormal() const;
  manipulatorPlane* plane;
  MATH::point3<float> pickedPoint;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
