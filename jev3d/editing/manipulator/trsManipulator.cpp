#include "jev3d/editing/manipulator/trsManipulator.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/manipMath.h"
#include "jev3d/editing/manipulator/manipulatorArc.h"
#include "jev3d/editing/manipulator/manipulatorArrow.h"
#include "jev3d/editing/manipulator/manipulatorCube.h"
#include "jev3d/editing/manipulator/manipulatorPlane.h"
#include "jev3d/editing/manipulator/manipulatorSphere.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace {

using p3 = MATH::point3<float>;
using matrix4f = MATH::matrix4<float>;
using INTERNAL::axisScaleAbout;
using INTERNAL::translation;

const char* const TYPE_NAMES[] = {
    "NULL_OPERATION", "TRANSL_X",     "TRANSL_Y",         "TRANSL_Z",      "TRANSL_XY", "TRANSL_XZ",
    "TRANSL_YZ",      "SCALE_X",      "SCALE_Y",          "SCALE_Z",       "ROT_Y",     "ROT_Z",
    "ROT_X",          "SCALE_GLOBAL", "TRANSLATE_GLOBAL", "ROTATE_GLOBAL", "EXTRUDE",   "SELECT",
    "TRANSL_N",       "SCALE_N",      "ACTIVATE_SUBSURF"};

const CORE::color AXIS_COLORS[3] = {CORE::color(220, 50, 50, 255), CORE::color(50, 200, 50, 255),
                                    CORE::color(60, 90, 230, 255)};

}  // namespace

trsManipulator::trsManipulator() { init(); }

const char* trsManipulator::getManipType(int type) {
  if (type < 0 || type > ACTIVATE_SUBSURF) return "UNDEFINED_TYPE";
  return TYPE_NAMES[type];
}

void trsManipulator::init() {
  const p3 axes[3] = {p3(1, 0, 0), p3(0, 1, 0), p3(0, 0, 1)};
  const int arrows[3] = {TRANSL_X, TRANSL_Y, TRANSL_Z};
  const int scales[3] = {SCALE_X, SCALE_Y, SCALE_Z};
  const int rings[3] = {ROT_X, ROT_Y, ROT_Z};
  // The square of each plane lies between the two axes it holds.
  const int planes[3] = {TRANSL_YZ, TRANSL_XZ, TRANSL_XY};
  for (int i = 0; i < 3; ++i) {
    const p3& a = axes[i];
    const p3& u = axes[(i + 1) % 3];
    const p3& v = axes[(i + 2) % 3];
    auto put = [&](manipulatorWidget* w, int id, const CORE::color& c) {
      w->widgetId = id;
      w->setColor(c);
      handles[id] = addManipulatorWidget(w);
    };
    put(new manipulatorArrow(p3(), a, 0.025f), arrows[i], AXIS_COLORS[i]);
    put(new manipulatorCube(a * 1.2f, 0.06f), scales[i], AXIS_COLORS[i]);
    put(new manipulatorArc(p3(), a, 0.85f, 0.015f), rings[i], AXIS_COLORS[i]);
    put(new manipulatorPlane((u + v) * 0.3f, u * 0.1f, v * 0.1f), planes[i], AXIS_COLORS[i]);
  }
  auto* ball = new manipulatorSphere(p3(), 0.08f);
  ball->widgetId = TRANSLATE_GLOBAL;
  ball->setColor(CORE::color(230, 230, 230, 255));
  handles[TRANSLATE_GLOBAL] = addManipulatorWidget(ball);
  auto* along = new manipulatorArrow(p3(), normalDirection * 1.3f, 0.02f);
  along->widgetId = TRANSL_N;
  along->setColor(CORE::color(230, 160, 40, 255));
  along->visible = moveAlongNormal;
  handles[TRANSL_N] = addManipulatorWidget(along);
  placeManipulator();
}

void trsManipulator::showGroup(int first, int last, bool on) {
  for (int id = first; id <= last; ++id)
    if (handles[id]) handles[id]->visible = on;
}

void trsManipulator::enableTranslation(bool on) {
  showGroup(TRANSL_X, TRANSL_YZ, on);
  showGroup(TRANSLATE_GLOBAL, TRANSLATE_GLOBAL, on);
}
void trsManipulator::enableScale(bool on) { showGroup(SCALE_X, SCALE_Z, on); }
void trsManipulator::enableRotation(bool on) { showGroup(ROT_Y, ROT_X, on); }

void trsManipulator::enableMoveAlongNormal(bool on) {
  moveAlongNormal = on;
  showGroup(TRANSL_N, TRANSL_N, on);
}

void trsManipulator::setNormalDirection(const p3& n) {
  normalDirection = n.getNormalized();
  if (normalDirection.squaredNorm() == 0.f) normalDirection = p3(0, 0, 1);
  static_cast<manipulatorArrow*>(handles[TRANSL_N])->build(p3(), normalDirection * 1.3f, 0.02f);
}

void trsManipulator::setPosition(const p3& p) {
  position = p;
  placeManipulator();
}

void trsManipulator::setRotation(const matrix4f& r) {
  rotation = r;
  placeManipulator();
}

void trsManipulator::setSize(float s) {
  if (!(s > 0.f)) return;
  size = s;
  placeManipulator();
}

void trsManipulator::placeManipulator() {
  setManipMatrix(matrix4f::getScale(size, size, size) * rotation * translation(position));
}

float trsManipulator::computeOptimalManipSize() const {
  const float ppu = pixelsPerUnit(position);
  if (screenSize <= 0.f || !(ppu > 0.f)) return size;
  return screenSize / ppu;
}

void trsManipulator::onViewChange() {
  if (screenSize > 0.f && !isDragging()) setSize(computeOptimalManipSize());
}

p3 trsManipulator::operationAxis(int type) const {
  auto row = [&](int r) {
    return p3(startRotation(r, 0), startRotation(r, 1), startRotation(r, 2));
  };
  switch (type) {
    case TRANSL_X:
    case SCALE_X:
    case ROT_X:
    case TRANSL_YZ:
      return row(0).getNormalized();
    case TRANSL_Y:
    case SCALE_Y:
    case ROT_Y:
    case TRANSL_XZ:
      return row(1).getNormalized();
    case TRANSL_Z:
    case SCALE_Z:
    case ROT_Z:
    case TRANSL_XY:
      return row(2).getNormalized();
    case TRANSL_N: {
      const MATH::point4<float> n =
          MATH::point4<float>(normalDirection.x, normalDirection.y, normalDirection.z, 0.f) *
          startRotation;
      return p3(n.x, n.y, n.z).getNormalized();
    }
    case TRANSLATE_GLOBAL:
      return viewNormal;
    default:
      return p3();
  }
}

bool trsManipulator::calcHitPoint(const ray3f& ray, p3& point, float& t) const {
  const p3 axis = operationAxis(currentType);
  if (axis.squaredNorm() == 0.f) return false;
  switch (currentType) {
    case TRANSL_X:
    case TRANSL_Y:
    case TRANSL_Z:
    case TRANSL_N:
    case SCALE_X:
    case SCALE_Y:
    case SCALE_Z: {
      const ray3f line(startPosition, axis);
      if (!manipulatorWidget::closestPointToRay(line, ray, t)) return false;
      point = line.pointAt(t);
      return true;
    }
    default:
      t = 0.f;
      return manipulatorWidget::intersectPlane(ray, startPosition, axis, point);
  }
}

trsManipulator::quat trsManipulator::calcRotation(const p3& axis, const p3& from,
                                                  const p3& to) const {
  const p3 a = (from - startPosition), b = (to - startPosition);
  // Only what lies across the axis turns about it.
  const p3 fa = (a - axis * (a * axis)).getNormalized();
  const p3 fb = (b - axis * (b * axis)).getNormalized();
  if (fa.squaredNorm() == 0.f || fb.squaredNorm() == 0.f) return quat::IDENTITY();
  const float angle = std::atan2(fa.cross(fb) * axis, fa * fb);
  return axisAngleToQuat(axis, constrainRotation(angle));
}

float trsManipulator::constrainRotation(float angle) const {
  if (rotationStep <= 0.f) return angle;
  return std::round(angle / rotationStep) * rotationStep;
}

trsManipulator::quat trsManipulator::axisAngleToQuat(const p3& axis, float angle) {
  const p3 a = axis.getNormalized();
  const float s = std::sin(angle * 0.5f);
  return quat(std::cos(angle * 0.5f), a.x * s, a.y * s, a.z * s);
}

trsManipulator::quat trsManipulator::calcQuat(const p3& a, const p3& b) {
  const p3 u = a.getNormalized(), v = b.getNormalized();
  const float d = u * v;
  if (d < -0.999999f) {
    // Opposite: half a turn about any axis across them.
    p3 across = u.cross(p3(1, 0, 0));
    if (across.squaredNorm() < 1e-6f) across = u.cross(p3(0, 1, 0));
    return axisAngleToQuat(across, float(M_PI));
  }
  const p3 c = u.cross(v);
  return normalizeQuat(quat(1.f + d, c.x, c.y, c.z));
}

trsManipulator::matrix4f trsManipulator::quatToMatrix(const quat& q) {
  const quat n = normalizeQuat(q);
  const p3 u(n.x, n.y, n.z);
  matrix4f m;
  for (int r = 0; r < 3; ++r) {
    p3 e;
    e[r] = 1.f;
    // q e q* for a unit q.
    const p3 t = u.cross(e) * 2.f;
    const p3 out = e + t * n.w + u.cross(t);
    m(r, 0) = out.x;
    m(r, 1) = out.y;
    m(r, 2) = out.z;
  }
  return m;
}

trsManipulator::quat trsManipulator::addQuats(const quat& q1, const quat& q2) { return q2 * q1; }

trsManipulator::quat trsManipulator::normalizeQuat(const quat& q) {
  quat n = q;
  if (n.squaredNorm() == 0.f) return quat::IDENTITY();
  return n.normalize();
}

void trsManipulator::highlight(manipulatorWidget* w) {
  for (manipulatorWidget* h : getManipulatorWidgets()) h->setHighlighted(h == w);
}

void trsManipulator::mouseDown(const ray3f& ray) {
  currentType = NULL_OPERATION;
  deltaTransform.setIdentity();
  dragTransform.setIdentity();
  std::vector<hitPoint> hits;
  intersectWidgets(ray, hits);
  if (hits.empty() || hits.front().id <= NULL_OPERATION) {
    highlight(nullptr);
    return;
  }
  startPosition = position;
  startRotation = rotation;
  viewNormal = ray.direction.getNormalized();
  currentType = hits.front().id;
  highlight(static_cast<manipulatorWidget*>(hits.front().node));
  float t = 0.f;
  if (!calcHitPoint(ray, startPoint, t)) {
    // A ray along the constraint gives no point to follow.
    currentType = NULL_OPERATION;
    highlight(nullptr);
    return;
  }
  startT = t;
}

void trsManipulator::mouseDrag(const ray3f& ray) {
  deltaTransform.setIdentity();
  if (currentType == NULL_OPERATION) return;
  p3 point;
  float t = 0.f;
  if (!calcHitPoint(ray, point, t)) return;
  const p3 axis = operationAxis(currentType);
  matrix4f total;
  switch (currentType) {
    case TRANSL_X:
    case TRANSL_Y:
    case TRANSL_Z:
    case TRANSL_N:
      total = translation(axis * (t - startT));
      position = startPosition + axis * (t - startT);
      break;
    case TRANSL_XY:
    case TRANSL_XZ:
    case TRANSL_YZ:
    case TRANSLATE_GLOBAL:
      total = translation(point - startPoint);
      position = startPosition + (point - startPoint);
      break;
    case SCALE_X:
    case SCALE_Y:
    case SCALE_Z: {
      // A pick at the centre has no lever to scale by.
      if (std::fabs(startT) < 1e-6f) return;
      const float factor = std::max(t / startT, 1e-3f);
      total = axisScaleAbout(startPosition, axis, factor);
      break;
    }
    case ROT_X:
    case ROT_Y:
    case ROT_Z: {
      const matrix4f turn = quatToMatrix(calcRotation(axis, startPoint, point));
      total = translation(-startPosition) * turn * translation(startPosition);
      rotation = startRotation * turn;
      break;
    }
    default:
      return;
  }
  deltaTransform = dragTransform.getInverse() * total;
  dragTransform = total;
  placeManipulator();
}

void trsManipulator::mouseUp(const ray3f&) {
  deltaTransform.setIdentity();
  highlight(nullptr);
}

void trsManipulator::mouseMove(const ray3f& ray) {
  std::vector<hitPoint> hits;
  intersectWidgets(ray, hits);
  highlight(hits.empty() ? nullptr : static_cast<manipulatorWidget*>(hits.front().node));
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
