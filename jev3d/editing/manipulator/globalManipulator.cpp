#include "jev3d/editing/manipulator/globalManipulator.h"

#include <algorithm>
#include <cmath>

#include "jev3d/editing/manipulator/globalManipulatorArrow.h"
#include "jev3d/editing/manipulator/internal/manipMath.h"
#include "jev3d/editing/manipulator/manipulatorArc.h"
#include "jev3d/editing/manipulator/manipulatorCube.h"
#include "jev3d/editing/manipulator/manipulatorSphere.h"
#include "jev3d/gui/font.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace {

using p3 = MATH::point3<float>;
using matrix4f = MATH::matrix4<float>;
using INTERNAL::axisScaleAbout;
using INTERNAL::translation;
using INTERNAL::turnAbout;

// The cage's sides in the order -x, +x, -y, +y, -z, +z, as corners of the state's order
// wound outward.
const unsigned SIDE_FACES[6][4] = {{3, 0, 4, 7}, {2, 6, 5, 1}, {3, 2, 1, 0},
                                   {7, 4, 5, 6}, {3, 7, 6, 2}, {0, 1, 5, 4}};
const CORE::color AXIS_COLORS[3] = {CORE::color(220, 50, 50, 255), CORE::color(50, 200, 50, 255),
                                    CORE::color(60, 90, 230, 255)};
const CORE::color LABEL_COLOR(255, 255, 255, 255);
// Ids reported by the elements' hits, one range a list.
constexpr int SCALE_IDS = 0, ARROW_IDS = 10, CIRCLE_IDS = 20, CONTROL_IDS = 30;

matrix4f scaleAbout(const p3& c, float f) {
  return translation(-c) * matrix4f::getScale(f, f, f) * translation(c);
}

template <class W>
int indexIn(const std::vector<W*>& list, const SG::node* n) {
  for (size_t i = 0; i < list.size(); ++i)
    if (list[i] == n) return int(i);
  return -1;
}

// Moves an element's mesh by d and readies it for drawing and picking again.
void shiftElement(manipulatorWidget* w, const p3& d) {
  editMesh& m = w->getEditMesh();
  m.translate(d);
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
  m.computeFABBTree(8);
  w->invalidateRenderData();
}

}  // namespace

globalManipulator::globalManipulator() {
  shape = addManipulatorWidget(new manipulatorWidget);
  shape->pickable = false;
  editMesh& m = shape->getEditMesh();
  std::vector<p3> cube;
  globalManipulatorState::makeUnitCube(cube);
  for (const p3& c : cube) m.addVertex(c);
  for (const auto& side : SIDE_FACES) m.addFace(side, 4);
  shape->endShape();
  m.surfaceDrawing = false;
  shape->enableWireframeDisplay(true);
  shape->color = CORE::color(235, 235, 235, 255);
  for (int i = 0; i < 3; ++i) {
    auto* a = new globalManipulatorArrow(i, p3(), p3(1, 0, 0), 0.01f);
    a->widgetId = ARROW_IDS + i;
    a->setColor(AXIS_COLORS[i]);
    a->setCaption(captions[i]);
    arrows.push_back(a);
    addManipulatorWidget(a);
    auto* ring = new manipulatorArc(p3(), p3(1, 0, 0), 1.f, 0.01f);
    ring->widgetId = CIRCLE_IDS + i;
    ring->setColor(AXIS_COLORS[i]);
    circles.push_back(addManipulatorWidget(ring));
  }
  for (int k = 0; k < 6; ++k) {
    auto* cube = new manipulatorCube(p3(), 0.05f);
    cube->widgetId = SCALE_IDS + k;
    cube->setColor(AXIS_COLORS[k / 2]);
    scaleControls.push_back(addManipulatorWidget(cube));
  }
  for (int j = 0; j < 8; ++j) {
    auto* ball = new manipulatorSphere(p3(), 0.05f);
    ball->widgetId = CONTROL_IDS + j;
    ball->setColor(CORE::color(230, 230, 230, 255));
    controls.push_back(addManipulatorWidget(ball));
  }
  savedShape = cube;
  makeCirclePlanes();
  updateVisualElementsSize();
}

globalManipulator::~globalManipulator() = default;

std::vector<p3> globalManipulator::shapeCorners() const {
  const editMesh& m = shape->getEditMesh();
  std::vector<p3> out;
  for (unsigned v = 0; v < 8 && v < m.vn(); ++v) out.push_back(m.vPos(v));
  return out;
}

void globalManipulator::setShapeCorners(const std::vector<p3>& corners) {
  editMesh& m = shape->getEditMesh();
  for (unsigned v = 0; v < 8 && v < m.vn() && v < corners.size(); ++v) m.vPos(v) = corners[v];
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
  m.updateBBox();
  shape->invalidateRenderData();
}

globalManipulatorState globalManipulator::getState() const {
  globalManipulatorState s;
  s.setReferenceShape(savedShape);
  s.setShape(shapeCorners());
  return s;
}

bool globalManipulator::setState(const globalManipulatorState& state) {
  if (state.getShape().size() != 8 || state.getReferenceShape().size() != 8) return false;
  savedShape = state.getReferenceShape();
  setShapeCorners(state.getShape());
  updateVisualElementsSize();
  return true;
}

void globalManipulator::saveCurrShapePosition() { savedShape = shapeCorners(); }

void globalManipulator::restoreShapePosition() {
  setShapeCorners(savedShape);
  updateVisualElementsSize();
}

void globalManipulator::getShapeAxes(p3 axes[3]) const { getState().getShapeAxes(axes); }
void globalManipulator::getNormalizedShapeAxes(p3 axes[3]) const {
  getState().getNormalizedShapeAxes(axes);
}

matrix4f globalManipulator::getShapeRotation() const {
  return getState().getWorldToManipShapeRotation().getTranspose();
}

float globalManipulator::getShapeMaxDim() const {
  p3 axes[3];
  getShapeAxes(axes);
  return std::max(axes[0].norm(), std::max(axes[1].norm(), axes[2].norm()));
}

void globalManipulator::makeCirclePlanes() { updateCirclePlanes(); }

void globalManipulator::updateCirclePlanes() {
  const globalManipulatorState s = getState();
  circleCentre = s.getCenter();
  s.getNormalizedShapeAxes(circleNormals);
}

void globalManipulator::updateVisualElementsSize() {
  const globalManipulatorState s = getState();
  const p3 c = s.getCenter();
  p3 axes[3], unit[3];
  s.getShapeAxes(axes);
  s.getNormalizedShapeAxes(unit);
  float dim = getShapeMaxDim();
  if (!(dim > 0.f)) dim = 1.f;
  // Elements keep their proportions to the cage.
  const float e = dim * 0.08f;
  for (int i = 0; i < 3; ++i) {
    const p3 start = c + axes[i] * 0.5f + unit[i] * (e * 1.5f);
    arrows[size_t(i)]->build(start, start + unit[i] * (dim * 0.5f), e * 0.15f);
    static_cast<manipulatorArc*>(circles[size_t(i)])->build(c, unit[i], dim * 0.9f, e * 0.1f);
  }
  for (int k = 0; k < 6; ++k) {
    const float sign = (k % 2) ? 0.5f : -0.5f;
    const float h = e * 0.35f;
    static_cast<manipulatorCube*>(scaleControls[size_t(k)])
        ->build(c + axes[k / 2] * sign, unit[0] * h, unit[1] * h, unit[2] * h);
  }
  const std::vector<p3> corners = s.getShape();
  for (size_t j = 0; j < 8; ++j)
    static_cast<manipulatorSphere*>(controls[j])->build(corners[j], e * 0.35f);
  updateCirclePlanes();
}

void globalManipulator::clearPicking() {
  scaling = moving = rotating = freeScaling = false;
  scaleIndex = arrowIndex = circleIndex = controlIndex = -1;
}

bool globalManipulator::startPicking(const ray3f& ray) {
  clearPicking();
  const ray3f local = toManipSpace(ray);
  std::vector<hitPoint> hits;
  for (manipulatorWidget* w : getManipulatorWidgets()) w->intersectRay(local, hits);
  manipulatorWidget::sortHitPoints(local, hits);
  if (hits.empty() || hits.front().id == -1) return false;
  auto* picked = static_cast<manipulatorWidget*>(hits.front().node);
  picked->setHighlighted(true);
  const p3& hit = hits.front().point;
  if ((scaleIndex = indexIn(scaleControls, picked)) >= 0) {
    scaling = true;
    // The side follows the mouse along a line that stays where the drag began.
    p3 unit[3];
    getNormalizedShapeAxes(unit);
    const p3 along = unit[scaleIndex / 2] * ((scaleIndex % 2) ? 1.f : -1.f);
    pickedPoint = getState().getCenter();
    if (!manipulatorWidget::closestPointToRay(ray3f(pickedPoint, along), local, pickedT))
      pickedT = 0.f;
    return true;
  }
  if ((arrowIndex = indexIn(arrows, picked)) >= 0) {
    moving = true;
    const globalManipulatorArrow* a = arrows[size_t(arrowIndex)];
    manipulatorWidget::closestPointToRay(ray3f(a->getStart(), a->getEnd() - a->getStart()), local,
                                         pickedT);
    dragKind = DRAG_ARROW;
    return true;
  }
  if ((circleIndex = indexIn(circles, picked)) >= 0) {
    rotating = true;
    const p3& n = circleNormals[circleIndex];
    pickedPoint = hit - n * (n * hit - n * circleCentre);
    dragKind = DRAG_CIRCLE;
    return true;
  }
  if ((controlIndex = indexIn(controls, picked)) >= 0) {
    freeScaling = true;
    pickedPoint = hit;
    return true;
  }
  return false;
}

void globalManipulator::globalManipulatorMouseDown(const ray3f& ray) {
  stepTransform.setIdentity();
  saveCurrShapePosition();
  startPicking(ray);
}

void globalManipulator::mouseDrag(const ray3f& ray) {
  stepTransform.setIdentity();
  if (moving) moveTranslationControlArrow(ray);
  if (rotating) moveRotationControlCircle(ray);
  if (scaling) moveScaleControlArrow(ray);
  if (freeScaling) moveControlPoint(ray);
}

void globalManipulator::globalManipulatorMouseUp(const ray3f&) {
  stepTransform.setIdentity();
  clearPicking();
  for (manipulatorWidget* w : getManipulatorWidgets()) w->setHighlighted(false);
}

void globalManipulator::globalManipulatorMouseMove(const ray3f& ray) {
  const ray3f local = toManipSpace(ray);
  std::vector<hitPoint> hits;
  for (manipulatorWidget* w : getManipulatorWidgets()) w->intersectRay(local, hits);
  manipulatorWidget::sortHitPoints(local, hits);
  const SG::node* under = hits.empty() ? nullptr : hits.front().node;
  for (manipulatorWidget* w : getManipulatorWidgets()) w->setHighlighted(w == under);
}

bool globalManipulator::moveTranslationControlArrow(const ray3f& ray) {
  if (!moving) return false;
  globalManipulatorArrow* arrow = arrows[size_t(arrowIndex)];
  const ray3f line(arrow->getStart(), arrow->getEnd() - arrow->getStart());
  float t = 0.f;
  if (!manipulatorWidget::closestPointToRay(line, toManipSpace(ray), t)) return false;
  const p3 d = line.direction * (t - pickedT);
  if (d.squaredNorm() == 0.f) return true;
  shiftElement(arrow, d);
  arrow->shiftEnds(d);
  // The rest of the cage goes the same way, each element with its own index rebuilt.
  for (manipulatorWidget* w : getManipulatorWidgets()) {
    if (w == arrow) continue;
    shiftElement(w, d);
    if (const int other = indexIn(arrows, w); other >= 0) arrows[size_t(other)]->shiftEnds(d);
  }
  circleCentre += d;
  stepTransform = toParentSpace(translation(d));
  return true;
}

bool globalManipulator::moveRotationControlCircle(const ray3f& ray) {
  if (!rotating) return false;
  const p3 n = circleNormals[circleIndex];
  p3 hit;
  if (!manipulatorWidget::intersectPlane(toManipSpace(ray), circleCentre, n, hit)) return false;
  const p3 a = pickedPoint - circleCentre, b = hit - circleCentre;
  const float angle = std::atan2(a.cross(b) * n, a * b);
  pickedPoint = hit;
  if (angle == 0.f) return true;
  changeShape(turnAbout(circleCentre, n, angle));
  return true;
}

bool globalManipulator::moveScaleControlArrow(const ray3f& ray) {
  if (!scaling) return false;
  p3 unit[3], axes[3];
  getNormalizedShapeAxes(unit);
  getShapeAxes(axes);
  const int axis = scaleIndex / 2;
  const float sign = (scaleIndex % 2) ? 1.f : -1.f;
  float t = 0.f;
  if (!manipulatorWidget::closestPointToRay(ray3f(pickedPoint, unit[axis] * sign),
                                            toManipSpace(ray), t))
    return false;
  const float delta = t - pickedT;
  if (delta == 0.f) return true;
  pickedT = t;
  const float length = axes[axis].norm();
  // The opposite side stays: the step scales the cage about it.
  const p3 opposite = getState().getCenter() - axes[axis] * (0.5f * sign);
  performScale(scaleIndex, delta);
  updateVisualElementsSize();
  if (length > 0.f)
    stepTransform = toParentSpace(axisScaleAbout(opposite, unit[axis], (length + delta) / length));
  return true;
}

void globalManipulator::performScale(int index, float delta) {
  if (index < 0 || index > 5) return;
  p3 unit[3];
  getNormalizedShapeAxes(unit);
  const float sign = (index % 2) ? 1.f : -1.f;
  editMesh& m = shape->getEditMesh();
  m.deselectAllFaces();
  m.selectFace(unsigned(index));
  m.translateSelectedVertices(unit[index / 2] * (sign * delta));
  m.deselectAllFaces();
  m.computeNormalizedFaceNormals();
  shape->invalidateRenderData();
}

bool globalManipulator::moveControlPoint(const ray3f& ray) {
  if (!freeScaling) return false;
  const ray3f local = toManipSpace(ray);
  const p3 c = getState().getCenter();
  const float before = (pickedPoint - c).norm();
  p3 hit;
  if (before == 0.f || !manipulatorWidget::intersectPlane(local, pickedPoint, local.direction, hit))
    return false;
  const float factor = (hit - c).norm() / before;
  pickedPoint = hit;
  if (factor == 1.f || !(factor > 0.f)) return true;
  changeShape(scaleAbout(c, factor));
  return true;
}

void globalManipulator::changeShape(const matrix4f& m) {
  std::vector<p3> corners = shapeCorners();
  for (p3& c : corners) c = c * m;
  setShapeCorners(corners);
  updateVisualElementsSize();
  stepTransform = toParentSpace(m);
}

void globalManipulator::rotate(int axis, float angle) {
  if (axis < 0 || axis > 2) return;
  p3 unit[3];
  getNormalizedShapeAxes(unit);
  changeShape(turnAbout(getState().getCenter(), unit[axis], angle));
}

void globalManipulator::translate(const p3& d) { changeShape(translation(d)); }
void globalManipulator::scale(float factor) {
  changeShape(scaleAbout(getState().getCenter(), factor));
}
void globalManipulator::transform(const matrix4f& m) { changeShape(m); }

void globalManipulator::postTransform(const matrix4f& m) {
  const matrix4f frame = getState().getCurrentMatrix();
  // A flat cage has no frame to work in.
  if (frame.determinant() == 0.f) return;
  changeShape(frame.getInverse() * m * frame);
}

void globalManipulator::rotateManip(const p3& axis, float angle) {
  transformManip(turnAbout(p3(), axis.getNormalized(), angle));
}
void globalManipulator::translateManip(const p3& d) { transformManip(translation(d)); }
void globalManipulator::scaleManip(float factor) {
  transformManip(matrix4f::getScale(factor, factor, factor));
}
void globalManipulator::transformManip(const matrix4f& m) { setManipMatrix(getManipMatrix() * m); }
void globalManipulator::postTransformManip(const matrix4f& m) {
  setManipMatrix(m * getManipMatrix());
}

void globalManipulator::reset() {
  std::vector<p3> cube;
  globalManipulatorState::makeUnitCube(cube);
  savedShape = cube;
  setShapeCorners(cube);
  updateVisualElementsSize();
  stepTransform.setIdentity();
}

void globalManipulator::placeAt(const p3& point) {
  translate(point * getManipMatrix().getInverse() - getState().getCenter());
  stepTransform.setIdentity();
}

void globalManipulator::setSwitch(elementList list, size_t i, bool on, bool display) {
  std::vector<manipulatorWidget*> chosen;
  if (list == ARROW_LIST)
    chosen.assign(arrows.begin(), arrows.end());
  else
    chosen = list == SCALE_LIST ? scaleControls : list == CIRCLE_LIST ? circles : controls;
  for (size_t k = 0; k < chosen.size(); ++k) {
    if (i != ALL && k != i) continue;
    if (display)
      chosen[k]->visible = on;
    else
      chosen[k]->pickable = on;
  }
}

void globalManipulator::setAxisCaption(int axis, const std::wstring& caption) {
  if (axis < 0 || axis > 2) return;
  captions[axis] = caption;
  arrows[size_t(axis)]->setCaption(caption);
}

void globalManipulator::addLabels() {
  if (!labelFont) labelFont = std::make_unique<GUI::font>(L"DejaVuSans", 14);
}

void globalManipulator::updateLabels() {
  labels.clear();
  if (!labelFont) return;
  for (const globalManipulatorArrow* a : arrows) {
    p3 window;
    if (!a->visible.cV() || a->getCaption().empty() ||
        !projectPoint(a->getEnd() * getManipMatrix(), window))
      continue;
    // Just beside the tip, up and to the right.
    labels.push_back(labelPlace{a->getCaption(), int(window.x) + 4, int(window.y) + 4});
  }
}

void globalManipulator::render(RENDERING::renderingContext* rc) {
  manipulator::render(rc);
  RENDERING::renderer* device = rc ? rc->getRenderer() : nullptr;
  if (!labelFont || !device || !visible.cV()) return;
  updateLabels();
  if (!labelFont->isCached() && !fontTried) {
    // Tried once: a system without the face draws no labels rather than retrying.
    fontTried = true;
    device->cacheFont(labelFont.get());
  }
  for (const labelPlace& l : labels)
    device->renderText(labelFont.get(), l.text, l.x, l.y, LABEL_COLOR);
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
