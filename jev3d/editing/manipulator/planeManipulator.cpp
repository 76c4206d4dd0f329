#include "jev3d/editing/manipulator/planeManipulator.h"

#include "jev3d/editing/manipulator/manipulatorPlane.h"
#include "jev3d/math/point4.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

planeManipulator::planeManipulator(const p3& u, const p3& v)
    : translatingManipulator(new manipulatorPlane(p3(), u, v), CORE::color(230, 200, 60, 255)),
      plane(static_cast<manipulatorPlane*>(getManipulatorWidgets().front())) {}

p3 planeManipulator::planeNormal() const {
  const p3 n = plane->getNormal();
  // A normal goes through the inverse transpose of the placement.
  const MATH::point4<float> out =
      MATH::point4<float>(n.x, n.y, n.z, 0.f) * getManipMatrix().getInverse().getTranspose();
  return p3(out.x, out.y, out.z).getNormalized();
}

bool planeManipulator::startPicking(const ray3f& ray) {
  hitPoint hit;
  if (!pickHandle(ray, hit)) return false;
  pickedPoint = hit.point;
  beginDrag();
  return true;
}

bool planeManipulator::moveTranslationControlArrow(const ray3f& ray) {
  clearStep();
  if (!isPicked()) return false;
  p3 hitOnPlane;
  if (!manipulatorWidget::intersectPlane(ray, pickedPoint, planeNormal(), hitOnPlane)) return false;
  takeStep(hitOnPlane - pickedPoint);
  pickedPoint = hitOnPlane;
  return true;
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
