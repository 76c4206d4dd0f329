#include "jev3d/editing/manipulator/manipulatorWidget.h"

#include <algorithm>
#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/delegate.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorWidget::manipulatorWidget() {
  visible.registerEventOnChangeValue(
      SYSTEM::makeDelegate(this, &manipulatorWidget::onVisibleChange));
}

const CORE::color& manipulatorWidget::getCurrentColor() const {
  return highlightedState.cV() ? auxColor : mainColor;
}

void manipulatorWidget::setHighlighted(bool on) {
  if (highlightedState.cV() == on && normalState.cV() == !on) return;
  normalState = !on;
  highlightedState = on;
}

void manipulatorWidget::onVisibleChange() { disabled = !visible.cV(); }

void manipulatorWidget::update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  editMeshNode::update(rc, uc);
}

void manipulatorWidget::render(RENDERING::renderingContext* rc) {
  editMesh& m = getEditMesh();
  const CORE::color& wanted = getCurrentColor();
  if (m.faceColor != wanted) {
    m.faceColor = wanted;
    // Face colours are written into the face chunks when they are built.
    m.flatFaceRenderStateValid = m.smoothFaceRenderStateValid = false;
  }
  editMeshNode::render(rc);
}

bool manipulatorWidget::intersectRay(const ray3f& ray, std::vector<hitPoint>& hits) {
  if (!pickable || !visible.cV() || !isActive() || disabled.cV()) return false;
  MATH::rayHit hit;
  p3 point;
  if (!getRayIntersect(ray.origin, ray.direction, hit, point)) return false;
  hits.push_back(hitPoint{this, widgetId, point, int(hit.face)});
  return true;
}

void manipulatorWidget::sortHitPoints(const ray3f& ray, std::vector<hitPoint>& hits) {
  std::stable_sort(hits.begin(), hits.end(), [&](const hitPoint& a, const hitPoint& b) {
    return (a.point - ray.origin) * ray.direction < (b.point - ray.origin) * ray.direction;
  });
}

bool manipulatorWidget::closestPointToRay(const ray3f& line, const ray3f& ray, float& t) {
  const p3 &o1 = line.origin, &d1 = line.direction, &o2 = ray.origin, &d2 = ray.direction;
  const float a = -(d1 * d1), b = -(d2 * d2), c = d1 * d2;
  const float det = a * b - c * c;
  if (det == 0.f) return false;
  const float s = o1 * d1 - o2 * d1;
  const float u = o2 * d2 - o1 * d2;
  // The ray's own parameter first: a closest point behind its origin pins the line's
  // parameter to its start.
  if (s * (-c / det) + u * (a / det) < 0.f) {
    t = 0.f;
  } else {
    t = u * (-c / det) + s * (b / det);
  }
  return true;
}

bool manipulatorWidget::intersectPlane(const ray3f& ray, const p3& point, const p3& normal,
                                       p3& hit) {
  const float den = ray.direction * normal;
  if (std::fabs(den) < 1e-8f) return false;
  hit = ray.pointAt(((point - ray.origin) * normal) / den);
  return true;
}

bool manipulatorWidget::manipPickRay(RENDERING::renderingContext* rc, int x, int y, ray3f& ray) {
  if (!rc || !rc->getRenderer()) return false;
  return rc->getRenderer()->pickRay(x, y, ray.origin, ray.direction);
}

bool manipulatorWidget::manipUnproject(RENDERING::renderingContext* rc, const p3& window,
                                       p3& object) {
  if (!rc || !rc->getRenderer()) return false;
  return rc->getRenderer()->unproject(window, object);
}

p3 manipulatorWidget::getBarycenter() const {
  const editMesh& m = getEditMesh();
  p3 sum;
  unsigned n = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    if (m.isVertDeleted(v)) continue;
    sum += m.vPos(v);
    ++n;
  }
  if (n == 0) return sum;
  return (sum / float(n)) * getTransformMatrix();
}

void manipulatorWidget::beginShape() { getEditMesh().clear(false); }

void manipulatorWidget::endShape() {
  INTERNAL::finishShape(getEditMesh());
  needDiscardRenderChunks();
  invalidateRenderData();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
