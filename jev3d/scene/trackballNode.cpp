#include "jev3d/scene/trackballNode.h"

#include <algorithm>
#include <cmath>

#include "jev3d/math/mathBase.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace SG {
namespace CAM {

using MATH::point3;
using MATH::quaternion;
using point3f = point3<float>;

trackballNode::trackballNode(SYSTEM::winBase* w, SYSTEM::inputContext* in,
                             RENDERING::renderingContext* rc)
    : enabled(true),
      target(point3f(0, 0, 0)),
      distance(1.0f),
      orientation(quaternion<float>::IDENTITY()),
      fieldOfView(MATH::mathBase<float>::PI() / 4),
      keepUp(false),
      upAxis(point3f(0, 1, 0)),
      orbitSpeed(0.01f),
      zoomStep(1.1f),
      dragZoomRate(0.02f),
      minimumDistance(1e-6f),
      window(w),
      input(in),
      context(rc) {
  const auto refresh = SYSTEM::makeDelegate(this, &trackballNode::refreshMatrix);
  target.registerEventOnChangeValue(refresh);
  distance.registerEventOnChangeValue(refresh);
  orientation.registerEventOnChangeValue(refresh);
  refreshMatrix();
  if (auto* main = dynamic_cast<SYSTEM::winMain*>(window)) {
    wheelHandler = SYSTEM::inputEventDelegate(this, &trackballNode::onMouseWheel);
    main->registerAbsoluteInputEventCallBack(SYSTEM::MOUSE_WHEEL, wheelHandler);
  }
}

trackballNode::~trackballNode() {
  // The window would otherwise call a dead node at the next wheel event.
  if (auto* main = dynamic_cast<SYSTEM::winMain*>(window)) {
    main->unRegisterAbsoluteInputEventCallBack(SYSTEM::MOUSE_WHEEL, wheelHandler);
  }
}

void trackballNode::update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  takeMouse();
  node::update(rc, uc);
}

void trackballNode::render(RENDERING::renderingContext* rc) {
  takeMouse();
  node::render(rc);
}

point3f trackballNode::getRight() const { return orientation.cV().rotate(point3f(1, 0, 0)); }

point3f trackballNode::getUp() const { return orientation.cV().rotate(point3f(0, 1, 0)); }

point3f trackballNode::getForward() const { return orientation.cV().rotate(point3f(0, 0, 1)); }

point3f trackballNode::getEye() const { return target.cV() - getForward() * distance.cV(); }

void trackballNode::orbit(float dx, float dy) {
  const float length = std::sqrt(dx * dx + dy * dy);
  if (length == 0.0f) return;
  const point3f up = upAxis.cV().getNormalized();
  if (keepUp.cV() && up.norm() > 0.0f) {
    orbitLevel(dx, dy, up);
    return;
  }
  // The model turns about the view-plane axis perpendicular to the drag, so that its
  // side facing the camera follows the pointer; the camera turns the other way about the
  // same axis through the target.
  const point3f drag = getRight() * dx + getUp() * dy;
  const point3f axis = point3f::cross(drag, getForward()).normalize();
  quaternion<float> turned = quaternion<float>(axis, -length * orbitSpeed.cV()) * orientation.cV();
  orientation = turned.normalize();
}

void trackballNode::orbitLevel(float dx, float dy, const point3f& up) {
  // Stay this far (radians) from looking straight along the axis, where the heading
  // would be lost.
  const float margin = 0.001f;
  const float pi = MATH::mathBase<float>::PI();
  const point3f forward = getForward();
  // The heading: the forward direction laid flat. Looking along the axis, it is taken
  // from the right axis, which is flat then.
  point3f heading = forward - up * (forward * up);
  if (heading.norm() < 1e-6f) heading = point3f::cross(getRight(), up);
  heading.normalize();
  // Dragging up lowers the eye, so the view tilts towards the axis.
  const float tilt = std::acos(std::max(-1.0f, std::min(1.0f, forward * up)));
  const float newTilt = std::max(margin, std::min(pi - margin, tilt - dy * orbitSpeed.cV()));
  heading = quaternion<float>(up, dx * orbitSpeed.cV()).rotate(heading);
  const point3f newForward = heading * std::sin(newTilt) + up * std::cos(newTilt);
  const point3f right = point3f::cross(up, newForward).normalize();
  const point3f newUp = point3f::cross(newForward, right);
  orientation = quaternion<float>(MATH::matrix3<float>(right, newUp, newForward, true)).normalize();
}

void trackballNode::pan(float dx, float dy) {
  const int height = context ? context->windowHeight.cV() : 0;
  if (height <= 0) return;
  // The size of a pixel at the target's depth.
  const float pixel = 2.0f * distance.cV() * std::tan(fieldOfView.cV() / 2) / float(height);
  target = target.cV() - (getRight() * dx + getUp() * dy) * pixel;
}

void trackballNode::zoom(float steps) {
  const float scaled = distance.cV() / std::pow(zoomStep.cV(), steps);
  distance = std::max(scaled, minimumDistance.cV());
}

bool trackballNode::fitBoundingBox(const point3f& minCorner, const point3f& maxCorner) {
  for (int i = 0; i < 3; ++i) {
    if (!std::isfinite(minCorner[i]) || !std::isfinite(maxCorner[i])) return false;
    if (minCorner[i] > maxCorner[i]) return false;
  }
  const float radius = (maxCorner - minCorner).norm() / 2;
  const float halfHeight = fieldOfView.cV() / 2;
  float halfAngle = halfHeight;
  if (context && context->windowWidth.cV() > 0 && context->windowHeight.cV() > 0) {
    const float aspect = float(context->windowWidth.cV()) / float(context->windowHeight.cV());
    halfAngle = std::min(halfHeight, std::atan(std::tan(halfHeight) * aspect));
  }
  target = (minCorner + maxCorner) * 0.5f;
  if (radius > 0.0f && halfAngle > 0.0f) distance = radius / std::sin(halfAngle);
  return true;
}

void trackballNode::reset() {
  target = point3f(0, 0, 0);
  distance = 1.0f;
  orientation = quaternion<float>::IDENTITY();
}

void trackballNode::takeMouse() {
  if (!input || !enabled.cV()) {
    held = NO_BUTTON;
    return;
  }
  const button now = input->leftDown     ? LEFT
                     : input->middleDown ? MIDDLE
                     : input->rightDown  ? RIGHT
                                         : NO_BUTTON;
  const float x = input->mouseX, y = input->mouseY;
  const float dx = x - lastX, dy = y - lastY;
  lastX = x;
  lastY = y;
  if (now != held) {
    held = now;
    return;
  }
  if (dx == 0.0f && dy == 0.0f) return;
  switch (held) {
    case LEFT:
      orbit(dx, dy);
      break;
    case MIDDLE:
      pan(dx, dy);
      break;
    case RIGHT:
      zoom(dy * dragZoomRate.cV());
      break;
    case NO_BUTTON:
      break;
  }
}

void trackballNode::onMouseWheel(const SYSTEM::inputEvent* e) {
  if (enabled.cV() && e) zoom(e->wheel);
}

void trackballNode::refreshMatrix() {
  const point3f axes[3] = {getRight(), getUp(), getForward()};
  const point3f eye = getEye();
  MATH::matrix4<float> view;
  for (int column = 0; column < 3; ++column) {
    for (int row = 0; row < 3; ++row) view(row, column) = axes[column][row];
    view(3, column) = -(axes[column] * eye);
  }
  viewMatrix = view;
  if (window) window->renderNeeded = true;
}

}  // namespace CAM
}  // namespace SG
}  // namespace JEV
