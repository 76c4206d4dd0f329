#include "jev3d/editing/modifier/polylineControlPointPositionModifier.h"

#include <algorithm>
#include <limits>

#include "jev3d/editing/internal/polylineMath.h"
#include "jev3d/editing/polylineUndoRedoRecord.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/gui/widget.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace EDITING {

namespace {
using point3f = MATH::point3<float>;
using cpoint = polylineDescriptor::polylineControlPoint;
// Hits this close to a segment's ends belong to the points themselves.
constexpr float END_SHARE = 1e-3f;
}  // namespace

polylineControlPointPositionModifier::polylineControlPointPositionModifier() {
  polyline.disabled = true;
  spline.disabled = true;
  spline.color = CORE::color(255, 200, 40, 255);
}

void polylineControlPointPositionModifier::set(polylineDescriptor* d) {
  descriptor = d;
  smartResult = SMART_INSERTION_NONE;
  if (descriptor) pushSnapshot();
  updatePolyline(true);
}

void polylineControlPointPositionModifier::clear() {
  descriptor = nullptr;
  dragCount = 0;
  updatePolyline(true);
}

void polylineControlPointPositionModifier::updatePolyline(bool updateSpline) {
  if (!descriptor || descriptor->controlPoints.size() < 2) {
    polyline.disabled = true;
    spline.disabled = true;
    return;
  }
  polyline.disabled = false;
  spline.disabled = false;
  const auto& cps = descriptor->controlPoints;
  std::vector<point3f> controls;
  for (const cpoint& cp : cps) controls.push_back(cp.pos);
  std::vector<unsigned char> shown(cps.size(), 1);
  if (useWidgets.cV() && widgetsShown.cV())
    for (size_t i = 0; i < cps.size(); ++i)
      shown[i] = cps[i].widget && !cps[i].widget->isVisible() ? 0 : 1;

  float length = drapeLength.cV();
  if (length < 0.f) length = descriptor->computeAxisAlignedBox3f().diagonal() / 64.f;
  std::vector<point3f> points;
  std::vector<unsigned char> isNew;
  INTERNAL::refinePoints(controls, length, false, points, &isNew);
  // Inner points take the face and mesh of the control point before them, and are shown
  // when both ends of their segment are.
  polylineDescriptor drape;
  drape.meshes = descriptor->meshes;
  std::vector<unsigned char> mask;
  size_t owner = 0, seen = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    if (!isNew[i]) {
      owner = seen++;
      mask.push_back(shown[owner]);
      continue;
    }
    drape.controlPoints.emplace_back(points[i], cps[owner].F, cps[owner].MeshIndex);
    mask.push_back(shown[owner] && shown[owner + 1]);
  }
  drape.updateControlPoint();
  for (size_t i = 0, k = 0; i < points.size(); ++i)
    if (isNew[i]) points[i] = drape.controlPoints[k++].pos;
  polyline.setPoints(points);
  polyline.updateVmask(mask);
  if (updateSpline) spline.setControlPoints(controls);
}

bool polylineControlPointPositionModifier::selectControlPoint(int i) {
  if (!descriptor || i < -1 || i >= int(descriptor->controlPoints.size())) return false;
  descriptor->CurrCP = i;
  return true;
}

SMART_INSERTION_RES polylineControlPointPositionModifier::addControlPoint(const point3f& p,
                                                                          unsigned int face,
                                                                          unsigned int meshIndex,
                                                                          bool smart) {
  smartResult = SMART_INSERTION_NONE;
  if (!descriptor || meshIndex >= descriptor->meshes.size()) return smartResult;
  auto& cps = descriptor->controlPoints;
  const cpoint cp(p, face, meshIndex);
  if (cps.empty()) {
    smartResult = SMART_INSERTION_FIRST;
    descriptor->addControlPointAfter(0, cp);
  } else if (!smart || cps.size() == 1) {
    smartResult = SMART_INSERTION_APPEND;
    descriptor->addControlPointAfter(int(cps.size()) - 1, cp);
  } else {
    // Into the nearest segment when it is nearer than both ends, else at the nearer end.
    const float toFirst = (p - cps.front().pos).norm(), toLast = (p - cps.back().pos).norm();
    const int segment = findNearSegment(p, std::numeric_limits<float>::max());
    const float toSegment = segment < 0
                                ? std::numeric_limits<float>::max()
                                : INTERNAL::pointSegmentDistance(p, cps[size_t(segment)].pos,
                                                                 cps[size_t(segment) + 1].pos);
    if (toSegment < std::min(toFirst, toLast) * (1.f - END_SHARE)) {
      smartResult = SMART_INSERTION_BETWEEN;
      descriptor->addControlPointAfter(segment, cp);
    } else if (toFirst < toLast) {
      smartResult = SMART_INSERTION_PREPEND;
      descriptor->addControlPointAfter(-1, cp);
    } else {
      smartResult = SMART_INSERTION_APPEND;
      descriptor->addControlPointAfter(int(cps.size()) - 1, cp);
    }
  }
  updatePolyline(true);
  pushSnapshot();
  return smartResult;
}

bool polylineControlPointPositionModifier::addControlPointBetween(unsigned int i, const point3f& p,
                                                                  unsigned int face,
                                                                  unsigned int meshIndex) {
  if (!descriptor || size_t(i) + 1 >= descriptor->controlPoints.size()) return false;
  descriptor->addControlPointAfter(int(i), cpoint(p, face, meshIndex));
  updatePolyline(true);
  pushSnapshot();
  return true;
}

bool polylineControlPointPositionModifier::removeControlPoint(unsigned int i) {
  if (!descriptor || i >= descriptor->controlPoints.size()) return false;
  descriptor->controlPoints.erase(descriptor->controlPoints.begin() + std::ptrdiff_t(i));
  const int current = descriptor->CurrCP.cV();
  if (current >= int(descriptor->controlPoints.size()) || current == int(i))
    descriptor->CurrCP = -1;
  else if (current > int(i))
    descriptor->CurrCP = current - 1;
  updatePolyline(true);
  pushSnapshot();
  return true;
}

bool polylineControlPointPositionModifier::moveToNewIndex(unsigned int from, unsigned int to) {
  if (!descriptor) return false;
  auto& cps = descriptor->controlPoints;
  if (from >= cps.size() || to >= cps.size()) return false;
  const cpoint moving = cps[from];
  cps.erase(cps.begin() + std::ptrdiff_t(from));
  cps.insert(cps.begin() + std::ptrdiff_t(to), moving);
  descriptor->CurrCP = int(to);
  updatePolyline(true);
  pushSnapshot();
  return true;
}

bool polylineControlPointPositionModifier::isControlPointValid(int i) const {
  if (!descriptor || i < 0 || i >= int(descriptor->controlPoints.size())) return false;
  const cpoint& cp = descriptor->controlPoints[size_t(i)];
  return cp.MeshIndex < descriptor->meshes.size() && descriptor->meshes[cp.MeshIndex] &&
         cp.F < descriptor->meshes[cp.MeshIndex]->fn() &&
         !descriptor->meshes[cp.MeshIndex]->isFaceDeleted(cp.F);
}

bool polylineControlPointPositionModifier::isControlPointVisible(int i, const point3f& eye) const {
  return isControlPointValid(i) && !testControlPointOcclusion(unsigned(i), eye);
}

int polylineControlPointPositionModifier::closestPoint3(const point3f& p, float maxDistance) const {
  if (!descriptor) return -1;
  int best = -1;
  float bestDistance = maxDistance;
  for (size_t i = 0; i < descriptor->controlPoints.size(); ++i) {
    const float d = (descriptor->controlPoints[i].pos - p).norm();
    if (d <= bestDistance) bestDistance = d, best = int(i);
  }
  return best;
}

int polylineControlPointPositionModifier::findNearSegment(const point3f& p,
                                                          float maxDistance) const {
  if (!descriptor) return -1;
  const auto& cps = descriptor->controlPoints;
  int best = -1;
  float bestDistance = maxDistance;
  for (size_t i = 0; i + 1 < cps.size(); ++i) {
    const float d = INTERNAL::pointSegmentDistance(p, cps[i].pos, cps[i + 1].pos);
    if (d <= bestDistance) bestDistance = d, best = int(i);
  }
  return best;
}

bool polylineControlPointPositionModifier::rayIntersect(const MATH::ray3<float>& ray, point3f& hit,
                                                        unsigned int& face,
                                                        unsigned int& meshIndex) const {
  if (!descriptor) return false;
  float nearest = std::numeric_limits<float>::max();
  bool found = false;
  for (unsigned int m = 0; m < descriptor->meshes.size(); ++m) {
    const MATH::triangleTree* index = descriptor->getFaceIndex(m);
    MATH::rayHit h;
    if (!index || !index->firstHit(ray.origin, ray.direction, nearest, h)) continue;
    nearest = h.t, hit = ray.pointAt(h.t), face = h.face, meshIndex = m, found = true;
  }
  return found;
}

bool polylineControlPointPositionModifier::testLineIntersection(const point3f& a,
                                                                const point3f& b) const {
  if (!descriptor) return false;
  std::vector<MATH::rayHit> hits;
  for (unsigned int m = 0; m < descriptor->meshes.size(); ++m) {
    const MATH::triangleTree* index = descriptor->getFaceIndex(m);
    if (!index) continue;
    index->allHits(a, b - a, 1.f - END_SHARE, hits);
    for (const MATH::rayHit& h : hits)
      if (h.t > END_SHARE) return true;
  }
  return false;
}

bool polylineControlPointPositionModifier::testControlPointOcclusion(unsigned int i,
                                                                     const point3f& eye) const {
  if (!descriptor || i >= descriptor->controlPoints.size()) return false;
  return testLineIntersection(eye, descriptor->controlPoints[i].pos);
}

int polylineControlPointPositionModifier::startPicking(const MATH::ray3<float>& ray) const {
  if (!descriptor) return -1;
  const float r2 = pickRadius.cV() * pickRadius.cV();
  int best = -1;
  float bestT = std::numeric_limits<float>::max();
  for (size_t i = 0; i < descriptor->controlPoints.size(); ++i)
    if (INTERNAL::nearerOnRay(ray, descriptor->controlPoints[i].pos, r2, bestT)) best = int(i);
  return best;
}

void polylineControlPointPositionModifier::mouseDown(int, int, const MATH::ray3<float>& ray) {
  pressedOnSurface = false;
  if (!descriptor || !enabled.cV() || !visible.cV()) return;
  const int picked = startPicking(ray);
  if (picked >= 0) {
    selectControlPoint(picked);
    moved = false;
    dragCount = 1;
  } else {
    pressedOnSurface = true;
  }
}

void polylineControlPointPositionModifier::mouseMotion(int x, int y, const MATH::ray3<float>& ray) {
  if (dragCount.cV() < 1) {
    if (enabled.cV() && visible.cV()) onMouseHover(ray);
    return;
  }
  if (!moved.cV()) moved = true;
  onMouseMove(x, y, ray);
  dragCount = dragCount.cV() + 1;
}

void polylineControlPointPositionModifier::mouseUp(int x, int y, const MATH::ray3<float>& ray) {
  if (dragCount.cV() >= 1) {
    dragCount = 0;
    if (moved.cV()) pushSnapshot();
  } else if (pressedOnSurface && enabled.cV() && visible.cV()) {
    onMouseClick(x, y, ray);
  }
  pressedOnSurface = false;
}

void polylineControlPointPositionModifier::onMouseClick(int, int, const MATH::ray3<float>& ray) {
  point3f hit;
  unsigned int face = 0, meshIndex = 0;
  if (rayIntersect(ray, hit, face, meshIndex)) addControlPoint(hit, face, meshIndex, true);
}

void polylineControlPointPositionModifier::onMouseMove(int, int, const MATH::ray3<float>& ray) {
  if (!descriptor) return;
  const int current = descriptor->CurrCP.cV();
  if (current < 0 || current >= int(descriptor->controlPoints.size())) return;
  point3f hit;
  unsigned int face = 0, meshIndex = 0;
  // Off every surface the point stays where it was last snapped.
  if (!rayIntersect(ray, hit, face, meshIndex)) return;
  cpoint& cp = descriptor->controlPoints[size_t(current)];
  cp.pos = hit, cp.F = face, cp.MeshIndex = meshIndex;
  updatePolyline(true);
}

void polylineControlPointPositionModifier::onMouseHover(const MATH::ray3<float>& ray) {
  hoverCP = startPicking(ray);
}

void polylineControlPointPositionModifier::render(RENDERING::renderingContext* rc) {
  polyline.render(rc);
  spline.render(rc);
}

void polylineControlPointPositionModifier::pushSnapshot() {
  if (!undoStack || !descriptor) return;
  using SYSTEM::delegate;
  using SYSTEM::sharedPointer;
  const sharedPointer<delegate> back(
      new delegate(this, &polylineControlPointPositionModifier::restore));
  undoStack->push(new SYSTEM::polylineUndoRedoRecord(*descriptor, back, back));
}

void polylineControlPointPositionModifier::restore(polylineDescriptor* snapshot) {
  if (!descriptor || !snapshot) return;
  // The points and the current point come back; the meshes are the editor's own.
  descriptor->controlPoints = snapshot->controlPoints;
  descriptor->CurrCP = snapshot->CurrCP.cV();
  updatePolyline(true);
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
