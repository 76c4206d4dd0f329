#include "jev3d/editing/manipulator/globalManipulatorState.h"

#include <cmath>
#include <cwchar>

#include "jev3d/editing/manipulator/internal/manipMath.h"
#include "jev3d/io/xml/xmlAttribute.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace {

using p3 = MATH::point3<float>;
using matrix4f = MATH::matrix4<float>;

// The corners of each side of the cage, in the order -x, +x, -y, +y, -z, +z.
const int SIDES[6][4] = {{0, 3, 4, 7}, {1, 2, 5, 6}, {0, 1, 2, 3},
                         {4, 5, 6, 7}, {2, 3, 6, 7}, {0, 1, 4, 5}};
const wchar_t* const REFERENCE_KEY = L"ReferenceManipShape";
const wchar_t* const CURRENT_KEY = L"ManipShape";
const wchar_t* const POINT_KEY = L"POINT3";
const wchar_t* const COORD_KEYS[3] = {L"X", L"Y", L"Z"};

p3 sideCentre(const std::vector<p3>& c, int side) {
  p3 s;
  for (int i : SIDES[side]) s += c[size_t(i)];
  return s * 0.25f;
}

void axesOf(const std::vector<p3>& c, p3 axes[3], bool normalized) {
  for (int a = 0; a < 3; ++a) {
    axes[a] = sideCentre(c, 2 * a + 1) - sideCentre(c, 2 * a);
    if (normalized) axes[a].normalize();
  }
}

p3 centreOf(const std::vector<p3>& c) {
  p3 s;
  for (const p3& p : c) s += p;
  return s / float(c.size());
}

matrix4f frameOf(const std::vector<p3>& c) {
  p3 axes[3];
  axesOf(c, axes, false);
  const p3 centre = centreOf(c);
  return matrix4f(axes[0].x, axes[0].y, axes[0].z, 0, axes[1].x, axes[1].y, axes[1].z, 0, axes[2].x,
                  axes[2].y, axes[2].z, 0, centre.x, centre.y, centre.z, 1);
}

matrix4f rotationToFrame(const std::vector<p3>& c) {
  p3 axes[3];
  axesOf(c, axes, true);
  matrix4f m;
  for (int r = 0; r < 3; ++r)
    for (int col = 0; col < 3; ++col) m(r, col) = axes[col][r];
  return m;
}

// A whole attribute as one finite number; white space around it is allowed.
bool readNumber(const IO::XML::xmlElement& e, const wchar_t* key, float& out) {
  const IO::XML::xmlAttribute* a = e.getAttribute(std::wstring(key));
  if (!a) return false;
  const std::wstring& text = a->getValueW();
  const wchar_t* begin = text.c_str();
  wchar_t* end = nullptr;
  const double v = std::wcstod(begin, &end);
  if (end == begin) return false;
  while (*end == L' ' || *end == L'\t' || *end == L'\n' || *end == L'\r') ++end;
  if (*end != L'\0' || !std::isfinite(v) || std::fabs(v) > 3.4e38) return false;
  out = float(v);
  return true;
}

bool readShape(IO::XML::xmlElement& parent, const wchar_t* key, std::vector<p3>& out) {
  const IO::XML::xmlNode* node = parent.findNode(std::wstring(key));
  if (!node || node->getType() != IO::XML::XML_ELEMENT) return false;
  out.clear();
  for (int i = 0; i < node->getChildCount(); ++i) {
    const IO::XML::xmlNode* child = node->getChild(i);
    if (!child || child->getType() != IO::XML::XML_ELEMENT || child->getValueW() != POINT_KEY)
      continue;
    if (out.size() == 8) return false;
    const auto& e = static_cast<const IO::XML::xmlElement&>(*child);
    p3 p;
    for (int k = 0; k < 3; ++k)
      if (!readNumber(e, COORD_KEYS[k], p[k])) return false;
    out.push_back(p);
  }
  return out.size() == 8;
}

void writeShape(IO::XML::xmlNode* parent, const wchar_t* key, const std::vector<p3>& shape) {
  IO::XML::xmlElement element{std::wstring(key)};
  IO::XML::xmlElement* saved = element.connect(parent);
  if (!saved) return;
  for (const p3& p : shape) {
    IO::XML::xmlElement point{std::wstring(POINT_KEY)};
    // As doubles, so that every float reads back the same.
    for (int k = 0; k < 3; ++k) point.setAttribute(std::wstring(COORD_KEYS[k]), double(p[k]));
    point.connect(saved);
  }
}

}  // namespace

globalManipulatorState::globalManipulatorState() { reset(); }

void globalManipulatorState::makeUnitCube(std::vector<p3>& corners) {
  corners = {p3(0, 0, 1), p3(1, 0, 1), p3(1, 0, 0), p3(0, 0, 0),
             p3(0, 1, 1), p3(1, 1, 1), p3(1, 1, 0), p3(0, 1, 0)};
  for (p3& c : corners) c -= 0.5f;
}

void globalManipulatorState::reset() {
  makeUnitCube(referenceShape);
  currentShape = referenceShape;
}

bool globalManipulatorState::operator==(const globalManipulatorState& o) const {
  return referenceShape == o.referenceShape && currentShape == o.currentShape;
}

globalManipulatorState globalManipulatorState::lerp(const globalManipulatorState& a,
                                                    const globalManipulatorState& b, float t) {
  globalManipulatorState r;
  for (size_t i = 0; i < 8; ++i) {
    r.referenceShape[i] = p3::interpolate(a.referenceShape[i], b.referenceShape[i], t);
    r.currentShape[i] = p3::interpolate(a.currentShape[i], b.currentShape[i], t);
  }
  return r;
}

bool globalManipulatorState::setReferenceShape(const std::vector<p3>& corners) {
  if (corners.size() != 8) return false;
  referenceShape = corners;
  return true;
}

bool globalManipulatorState::setShape(const std::vector<p3>& corners) {
  if (corners.size() != 8) return false;
  currentShape = corners;
  return true;
}

void globalManipulatorState::getShapeAxes(p3 axes[3]) const { axesOf(currentShape, axes, false); }
void globalManipulatorState::getReferenceShapeAxes(p3 axes[3]) const {
  axesOf(referenceShape, axes, false);
}
void globalManipulatorState::getNormalizedShapeAxes(p3 axes[3]) const {
  axesOf(currentShape, axes, true);
}
void globalManipulatorState::getNormalizedReferenceShapeAxes(p3 axes[3]) const {
  axesOf(referenceShape, axes, true);
}
p3 globalManipulatorState::getCenter() const { return centreOf(currentShape); }
p3 globalManipulatorState::getReferenceCenter() const { return centreOf(referenceShape); }
matrix4f globalManipulatorState::getCurrentMatrix() const { return frameOf(currentShape); }
matrix4f globalManipulatorState::getReferenceMatrix() const { return frameOf(referenceShape); }
matrix4f globalManipulatorState::getWorldToManipShapeRotation() const {
  return rotationToFrame(currentShape);
}
matrix4f globalManipulatorState::getWorldToReferenceShapeRotation() const {
  return rotationToFrame(referenceShape);
}

matrix4f globalManipulatorState::getShapeTransform() const {
  const matrix4f reference = getReferenceMatrix();
  if (reference.determinant() == 0.f) return matrix4f();
  return reference.getInverse() * getCurrentMatrix();
}

void globalManipulatorState::getCurrentEulerTransform(p3& angles, p3& translation,
                                                      p3& scale) const {
  // The turn from the reference's unit frame to the current one, p * r.
  const matrix4f r =
      getWorldToReferenceShapeRotation() * getWorldToManipShapeRotation().getTranspose();
  angles = p3(std::atan2(r(1, 2), r(2, 2)), -std::asin(std::max(-1.f, std::min(1.f, r(0, 2)))),
              std::atan2(r(0, 1), r(0, 0)));
  translation = getCenter() - getReferenceCenter();
  p3 now[3], before[3];
  getShapeAxes(now);
  getReferenceShapeAxes(before);
  for (int a = 0; a < 3; ++a) {
    const float b = before[a].norm();
    scale[a] = b > 0.f ? now[a].norm() / b : 0.f;
  }
}

void globalManipulatorState::rigidTranslate(const p3& d) {
  for (p3& c : currentShape) c += d;
}

void globalManipulatorState::rotateAboutLocalAxis(int axis, float angle) {
  if (axis < 0 || axis > 2) return;
  p3 axes[3];
  getNormalizedShapeAxes(axes);
  const p3 k = axes[axis];
  const p3 centre = getCenter();
  for (p3& p : currentShape) p = centre + INTERNAL::turnVector(p - centre, k, angle);
}

void globalManipulatorState::translateWrtLocalAxis(int axis, float amount) {
  if (axis < 0 || axis > 2) return;
  p3 axes[3];
  getNormalizedShapeAxes(axes);
  rigidTranslate(axes[axis] * amount);
}

void globalManipulatorState::scaleWrtLocalAxis(int axis, float factor) {
  if (axis < 0 || axis > 2) return;
  p3 axes[3];
  getNormalizedShapeAxes(axes);
  const p3 k = axes[axis];
  const p3 centre = getCenter();
  for (p3& p : currentShape) p += k * (((p - centre) * k) * (factor - 1.f));
}

void globalManipulatorState::transform(const matrix4f& m) {
  for (p3& c : currentShape) c = c * m;
}

void globalManipulatorState::saveToXML(IO::XML::xmlNode* parent) const {
  if (!parent) return;
  writeShape(parent, REFERENCE_KEY, referenceShape);
  writeShape(parent, CURRENT_KEY, currentShape);
}

bool globalManipulatorState::openFromXML(IO::XML::xmlElement& element) {
  std::vector<p3> reference, current;
  if (!readShape(element, REFERENCE_KEY, reference) || !readShape(element, CURRENT_KEY, current))
    return false;
  referenceShape = std::move(reference);
  currentShape = std::move(current);
  return true;
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
