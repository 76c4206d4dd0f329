#include "jev3d/editing/manipulator/arrowManipulator.h"

#include "jev3d/editing/manipulator/manipulatorArrow.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

arrowManipulator::arrowManipulator(const p3& direction, float radius)
    : translatingManipulator(new manipulatorArrow(p3(), direction, radius),
                             CORE::color(220, 50, 50, 255)),
      arrow(static_cast<manipulatorArrow*>(getManipulatorWidgets().front())) {}

ray3f arrowManipulator::getLine() const {
  const p3 start = arrow->getStart() * getManipMatrix();
  return ray3f(start, arrow->getEnd() * getManipMatrix() - start);
}

bool arrowManipulator::startPicking(const ray3f& ray) {
  hitPoint hit;
  if (!pickHandle(ray, hit)) return false;
  if (!manipulatorWidget::closestPointToRay(getLine(), ray, pickedT)) return false;
  beginDrag();
  return true;
}

bool arrowManipulator::moveTranslationControlArrow(const ray3f& ray) {
  clearStep();
  if (!isPicked()) return false;
  const ray3f line = getLine();
  float t = 0.f;
  if (!manipulatorWidget::closestPointToRay(line, ray, t)) return false;
  // The line moves with the arrow, so the picked parameter stays where it was taken.
  takeStep(line.direction * (t - pickedT));
  return true;
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
