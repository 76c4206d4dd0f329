#include "jev3d/editing/manipulator/arrowManipulator.h"

#include "jev3d/editing/manipulator/manipulatorArrow.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

arrowManipulator::arrowManipulator(const p3& direction, float radius)
    : arrow(static_cast<manipulatorArrow*>(
          addManipulatorWidget(new manipulatorArrow(p3(), direction, radius)))) {
  arrow->widgetId = 0;
  arrow->setColor(CORE::color(220, 50, 50, 255));
}

ray3f arrowManipulator::getLine() const {
  const p3 start = arrow->getStart() * getManipMatrix();
  return ray3f(start, arrow->getEnd() * getManipMatrix() - start);
}

bool arrowManipulator::startPicking(const ray3f& ray) {
  picked = false;
  lastDisplacement = dragDisplacement = p3();
  std::vector<hitPoint> hits;
  intersectWidgets(ray, hits);
  if (hits.empty() || hits.front().node != arrow) return false;
  if (!manipulatorWidget::closestPointToRay(getLine(), ray, pickedT)) return false;
  picked = true;
  arrow->setHighlighted(true);
  return true;
}

bool arrowManipulator::moveTranslationControlArrow(const ray3f& ray) {
  lastDisplacement = p3();
  if (!picked) return false;
  const ray3f line = getLine();
  float t = 0.f;
  if (!manipulatorWidget::closestPointToRay(line, ray, t)) return false;
  // The line moves with the arrow, so the picked parameter stays where it was taken.
  lastDisplacement = line.direction * (t - pickedT);
  if (lastDisplacement.squaredNorm() == 0.f) return true;
  dragDisplacement += lastDisplacement;
  moveManipulator(lastDisplacement);
  return true;
}

void arrowManipulator::mouseUp(const ray3f&) {
  picked = false;
  lastDisplacement = p3();
  arrow->setHighlighted(false);
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
