#include "jev3d/editing/manipulator/planeManipulator.h"

#include "jev3d/editing/manipulator/manipulatorPlane.h"
#include "jev3d/math/point4.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

planeManipulator::planeManipulator(const p3& u, const p3& v)
    : plane(
          static_cast<manipulatorPlane*>(addManipulatorWidget(new manipulatorPlane(p3(), u, v)))) {
  plane->widgetId = 0;
  plane->setColor(CORE::color(230, 200, 60, 255));
}

p3 planeManipulator::planeNormal() const {
  const p3 n = plane->getNormal();
  // A normal goes through the inverse transpose of the placement.
  const MATH::point4<float> out =
      MATH::point4<float>(n.x, n.y, n.z, 0.f) * getManipMatrix().getInverse().getTranspose();
  return p3(out.x, out.y, out.z).getNormalized();
}

bool planeManipulator::startPicking(const ray3f& ray) {
  picked = false;
  lastDisplacement = dragDisplacement = p3();
  std::vector<hitPoint> hits;
  intersectWidgets(ray, hits);
  if (hits.empty() || hits.front().node != plane) return false;
  pickedPoint = hits.front().point;
  picked = true;
  plane->setHighlighted(true);
  return true;
}

bool planeManipulator::moveTranslationControlArrow(const ray3f& ray) {
  lastDisplacement = p3();
  if (!picked) return false;
  p3 hit;
  if (!manipulatorWidget::intersectPlane(ray, pickedPoint, planeNormal(), hit)) return false;
  lastDisplacement = hit - pickedPoint;
  if (lastDisplacement.squaredNorm() == 0.f) return true;
  pickedPoint = hit;
  dragDisplacement += lastDisplacement;
  moveManipulator(lastDisplacement);
  return true;
}

void planeManipulator::mouseUp(const ray3f&) {
  picked = false;
  lastDisplacement = p3();
  plane->setHighlighted(false);
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
