#include "jev3d/editing/manipulator/translatingManipulator.h"

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

translatingManipulator::translatingManipulator(manipulatorWidget* widget, const CORE::color& colour)
    : handle(addManipulatorWidget(widget)) {
  handle->widgetId = 0;
  handle->setColor(colour);
}

bool translatingManipulator::pickHandle(const ray3f& ray, hitPoint& hit) {
  picked = false;
  lastDisplacement = dragDisplacement = p3();
  std::vector<hitPoint> hits;
  intersectWidgets(ray, hits);
  if (hits.empty() || hits.front().node != handle) return false;
  hit = hits.front();
  return true;
}

void translatingManipulator::beginDrag() {
  picked = true;
  handle->setHighlighted(true);
}

void translatingManipulator::takeStep(const p3& step) {
  lastDisplacement = step;
  if (step.squaredNorm() == 0.f) return;
  dragDisplacement += step;
  moveManipulator(step);
}

void translatingManipulator::mouseUp(const ray3f&) {
  picked = false;
  lastDisplacement = p3();
  handle->setHighlighted(false);
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
