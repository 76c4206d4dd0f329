#include "jev3d/editing/manipulator/manipulator.h"

#include "jev3d/math/point4.h"
#include "jev3d/renderer/cameraStack.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/system/inputEvent.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace {

using p3 = MATH::point3<float>;
using matrix4f = MATH::matrix4<float>;
using RS = RENDERING::RENDERSTATE::renderStateEnums;

const SYSTEM::EVENT_TYPE DRAG_ENTERS[] = {
    SYSTEM::MOUSE_LEFT_DRAG_ENTER, SYSTEM::MOUSE_MIDDLE_DRAG_ENTER, SYSTEM::MOUSE_RIGHT_DRAG_ENTER};
const SYSTEM::EVENT_TYPE DRAGS[] = {SYSTEM::MOUSE_LEFT_DRAG, SYSTEM::MOUSE_MIDDLE_DRAG,
                                    SYSTEM::MOUSE_RIGHT_DRAG};
const SYSTEM::EVENT_TYPE DRAG_LEAVES[] = {
    SYSTEM::MOUSE_LEFT_DRAG_LEAVE, SYSTEM::MOUSE_MIDDLE_DRAG_LEAVE, SYSTEM::MOUSE_RIGHT_DRAG_LEAVE};

// The button kind (0, 1, 2) of an event among the three codes of each kind, or -1.
int kindOf(const SYSTEM::inputEvent* e, const SYSTEM::EVENT_TYPE (&codes)[3]) {
  if (!e) return -1;
  for (int k = 0; k < 3; ++k)
    if (e->type == codes[k]) return k;
  return -1;
}

ray3f transformRay(const ray3f& ray, const matrix4f& m) {
  const MATH::point4<float> d =
      MATH::point4<float>(ray.direction.x, ray.direction.y, ray.direction.z, 0.f) * m;
  return ray3f(ray.origin * m, p3(d.x, d.y, d.z));
}

void invoke(const SYSTEM::sharedPointer<SYSTEM::delegate>& d, manipulator* self) {
  if (!d.isNull() && !d->isEmpty()) d->invoke(self);
}

}  // namespace

manipulator::manipulator()
    : frontDepth(true, RS::DEPTH_LEQUAL, true, false),
      dragEnterHandler(this, &manipulator::onMouseDragEnter),
      dragHandler(this, &manipulator::onMouseDrag),
      dragLeaveHandler(this, &manipulator::onMouseDragLeave),
      moveHandler(this, &manipulator::onMouseMove),
      clickHandler(this, &manipulator::onMouseClick),
      doubleClickHandler(this, &manipulator::onMouseDoubleClick) {
  // Handles draw in the front twentieth of the depth range: over the scene, yet in
  // order among themselves.
  frontDepth.rangeFar = 0.05f;
}

manipulator::~manipulator() {
  unRegisterCallbacks();
  // The handles go before the node, which unlinks its children.
  for (manipulatorWidget* w : widgets) w->disconnect(this);
  owned.clear();
}

manipulatorWidget* manipulator::addManipulatorWidget(manipulatorWidget* w) {
  if (!w) return nullptr;
  owned.emplace_back(w);
  widgets.push_back(w);
  w->connect(this, false);
  return w;
}

bool manipulator::registerCallbacks(SYSTEM::winBase* w) {
  auto* main = dynamic_cast<SYSTEM::winMain*>(w);
  if (!main) return false;
  unRegisterCallbacks();
  window = main;
  for (int k = 0; k < 3; ++k) {
    main->registerAbsoluteInputEventCallBack(DRAG_ENTERS[k], dragEnterHandler);
    main->registerAbsoluteInputEventCallBack(DRAGS[k], dragHandler);
    main->registerAbsoluteInputEventCallBack(DRAG_LEAVES[k], dragLeaveHandler);
  }
  main->registerAbsoluteInputEventCallBack(SYSTEM::MOUSE_MOVE, moveHandler);
  main->registerAbsoluteInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, clickHandler);
  main->registerAbsoluteInputEventCallBack(SYSTEM::MOUSE_LEFT_DOUBLE_CLICK, doubleClickHandler);
  return true;
}

void manipulator::unRegisterCallbacks() {
  if (!window) return;
  for (int k = 0; k < 3; ++k) {
    window->unRegisterAbsoluteInputEventCallBack(DRAG_ENTERS[k], dragEnterHandler);
    window->unRegisterAbsoluteInputEventCallBack(DRAGS[k], dragHandler);
    window->unRegisterAbsoluteInputEventCallBack(DRAG_LEAVES[k], dragLeaveHandler);
  }
  window->unRegisterAbsoluteInputEventCallBack(SYSTEM::MOUSE_MOVE, moveHandler);
  window->unRegisterAbsoluteInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, clickHandler);
  window->unRegisterAbsoluteInputEventCallBack(SYSTEM::MOUSE_LEFT_DOUBLE_CLICK, doubleClickHandler);
  window = nullptr;
}

void manipulator::onMouseDragEnter(const SYSTEM::inputEvent* e) {
  if (!enabled.cV() || !visible.cV() || isDragging()) return;
  const int k = kindOf(e, DRAG_ENTERS);
  if (k < 0) return;
  // Always, then the first, third and second key, as the mask's columns go.
  const bool applies = (manipWithMask & (FIRST_ALWAYS << k)) ||
                       ((manipWithMask & (FIRST_WITH_FIRST_KEY << k)) && firstKey.cV()) ||
                       ((manipWithMask & (FIRST_WITH_THIRD_KEY << k)) && thirdKey.cV()) ||
                       ((manipWithMask & (FIRST_WITH_SECOND_KEY << k)) && secondKey.cV());
  if (!applies) return;
  dragging[k] = true;
  ray3f ray;
  if (makeRay(e, ray)) mouseDown(ray);
}

void manipulator::onMouseDrag(const SYSTEM::inputEvent* e) {
  if (!enabled.cV() || !visible.cV()) return;
  const int k = kindOf(e, DRAGS);
  if (k < 0 || !dragging[k]) return;
  ray3f ray;
  if (makeRay(e, ray)) mouseDrag(ray);
  invoke(afterDragStepDelegate, this);
}

void manipulator::onMouseDragLeave(const SYSTEM::inputEvent* e) {
  const int k = kindOf(e, DRAG_LEAVES);
  if (k < 0 || !dragging[k]) return;
  dragging[k] = false;
  ray3f ray;
  if (makeRay(e, ray)) mouseUp(ray);
  invoke(afterDragEndDelegate, this);
}

void manipulator::onMouseMove(const SYSTEM::inputEvent* e) {
  if (!e || !enabled.cV() || !visible.cV() || isDragging()) return;
  ray3f ray;
  if (makeRay(e, ray)) mouseMove(ray);
}

void manipulator::onMouseClick(const SYSTEM::inputEvent*) {}
void manipulator::onMouseDoubleClick(const SYSTEM::inputEvent*) {}
void manipulator::mouseDown(const ray3f&) {}
void manipulator::mouseDrag(const ray3f&) {}
void manipulator::mouseUp(const ray3f&) {}
void manipulator::mouseMove(const ray3f&) {}

bool manipulator::makeRay(const SYSTEM::inputEvent* e, ray3f& ray) const {
  return e && getParentSpaceRay(e->x, e->y, ray);
}

void manipulator::render(RENDERING::renderingContext* rc) {
  if (!rc || !rc->getRenderer()) {
    SG::node::render(rc);
    return;
  }
  int rect[4];
  rc->getRenderStateStack()->getCurrentViewportState().getComputed(rect);
  setViewState(rect, rc->getCameraStack()->getCurrentProjection(),
               rc->getCameraStack()->getCurrentView(), rc->getTransformStack()->getCurrentMatrix());
  onViewChange();
  if (!visible.cV()) return;
  RENDERING::transformState placed(manipMatrix);
  rc->getTransformStack()->push(&placed, true);
  RENDERING::RENDERSTATE::renderStateStack* states = rc->getRenderStateStack();
  const bool front = onTop.cV();
  if (front) states->pushState(RS::ZBUFFER_STATE, &frontDepth, true);
  SG::node::render(rc);
  if (front) states->popState(RS::ZBUFFER_STATE, true);
  rc->getTransformStack()->pop(true);
}

void manipulator::setViewState(const int viewport[4], const matrix4f& projection,
                               const matrix4f& view, const matrix4f& parent) {
  viewportCopy.computedX = viewport[0];
  viewportCopy.computedY = viewport[1];
  viewportCopy.computedWidth = viewport[2];
  viewportCopy.computedHeight = viewport[3];
  cameraCopy.projection = projection;
  cameraCopy.view = view;
  transformCopy.matrix = parent;
  viewKnown = true;
}

bool manipulator::projectPoint(const p3& point, p3& windowPoint) const {
  return viewKnown &&
         RENDERING::renderer::project(point, transformCopy, cameraCopy, viewportCopy, windowPoint);
}

bool manipulator::unProjectPoint(const p3& windowPoint, p3& point) const {
  return viewKnown && RENDERING::renderer::unproject(windowPoint, transformCopy, cameraCopy,
                                                     viewportCopy, point);
}

bool manipulator::getParentSpaceRay(float x, float y, ray3f& ray) const {
  return viewKnown && RENDERING::renderer::pickRay(int(x), int(y), transformCopy, cameraCopy,
                                                   viewportCopy, ray.origin, ray.direction);
}

bool manipulator::getManipSpaceRay(float x, float y, ray3f& ray) const {
  ray3f parent;
  if (!getParentSpaceRay(x, y, parent)) return false;
  ray = toManipSpace(parent);
  return true;
}

float manipulator::pixelsPerUnit(const p3& point) const {
  p3 a, b;
  const matrix4f& view = cameraCopy.view.cV();
  // One unit across the view, measured through the camera's right direction.
  const p3 right(view[0], view[4], view[8]);
  if (!projectPoint(point, a) || !projectPoint(point + right.getNormalized(), b)) return 0.f;
  return (b - a).norm();
}

ray3f manipulator::toManipSpace(const ray3f& ray) const {
  return transformRay(ray, manipMatrix.getInverse());
}

matrix4f manipulator::toParentSpace(const matrix4f& m) const {
  return manipMatrix.getInverse() * m * manipMatrix;
}

void manipulator::placeAt(const p3& point) {
  moveManipulator(point - manipMatrix.getTranslateVector());
}

void manipulator::moveManipulator(const p3& d) {
  matrix4f m = manipMatrix;
  m[12] += d.x;
  m[13] += d.y;
  m[14] += d.z;
  setManipMatrix(m);
}

void manipulator::intersectWidgets(const ray3f& ray, std::vector<hitPoint>& hits) {
  const ray3f local = toManipSpace(ray);
  const size_t first = hits.size();
  for (manipulatorWidget* w : widgets) w->intersectRay(local, hits);
  for (size_t i = first; i < hits.size(); ++i) hits[i].point = hits[i].point * manipMatrix;
  manipulatorWidget::sortHitPoints(ray, hits);
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
