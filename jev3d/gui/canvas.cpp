#include "jev3d/gui/canvas.h"

#include <algorithm>

#include "jev3d/renderer/cameraStack.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace GUI {

canvas::canvas(const std::wstring& id, guiController* controller, SYSTEM::winBase* window)
    : widget(id, controller, window) {
  setClassIds(WC_CANVAS, WCC_CUSTOM_WIDGET);
}

canvas::~canvas() = default;

void canvas::render(RENDERING::renderingContext* rc) {
  widget::render(rc);
  RENDERING::RENDERSTATE::renderStateStack* states = rc ? rc->getRenderStateStack() : nullptr;
  statesPushed = states != nullptr;
  if (!states) return;
  const float zx = zoomX.cV() > 0 ? zoomX.cV() : 1.0f;
  const float zy = zoomY.cV() > 0 ? zoomY.cV() : 1.0f;
  const float x0 = position.x + viewX.cV();
  const float y0 = position.y + viewY.cV();
  viewCamera.projection =
      MATH::matrix4<float>::getOrthoLH(x0, x0 + size.x / zx, y0, y0 + size.y / zy, -1, 1);
  viewCamera.view = MATH::matrix4<float>();
  clip.set(int(position.x), int(position.y), int(size.x), int(size.y), true, false);
  rc->getCameraStack()->push(&viewCamera, true);
  using RS = RENDERING::RENDERSTATE::renderStateEnums;
  states->pushState(RS::LIGHTING_STATE, &unlit, true);
  states->pushState(RS::ZBUFFER_STATE, &noDepth, true);
  states->pushState(RS::SCISSOR_STATE, &clip, true);
}

void canvas::postRender(RENDERING::renderingContext* rc) {
  widget::postRender(rc);
  if (!statesPushed) return;
  statesPushed = false;
  using RS = RENDERING::RENDERSTATE::renderStateEnums;
  RENDERING::RENDERSTATE::renderStateStack* states = rc->getRenderStateStack();
  states->popState(RS::SCISSOR_STATE, true);
  states->popState(RS::ZBUFFER_STATE, true);
  states->popState(RS::LIGHTING_STATE, true);
  rc->getCameraStack()->pop(true);
}

bool canvas::preUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  followRect();
  return widget::preUpdate(rc, uc);
}

void canvas::followRect() {
  const float w = static_cast<float>(rectWidth.cV());
  const float h = static_cast<float>(rectHeight.cV());
  if (size.x != w || size.y != h) setSize(w, h);
}

void canvas::transformMouse(float& x, float& y) const {
  if (transformMouseEvent.isEmpty()) return;
  SYSTEM::transformMouseEvent e(const_cast<canvas*>(this), x, y);
  transformMouseEvent.invoke(static_cast<void*>(&e));
  x = e.x;
  y = e.y;
}

void canvas::addTopMost(widget* w) {
  if (std::find(topMost.begin(), topMost.end(), w) == topMost.end()) topMost.push_back(w);
}

void canvas::removeTopMost(widget* w) {
  topMost.erase(std::remove(topMost.begin(), topMost.end(), w), topMost.end());
}

widget* canvas::getWidgetBelowMouse(float x, float y) const {
  if (!isInFocus(this, x, y)) return nullptr;
  for (auto it = topMost.rbegin(); it != topMost.rend(); ++it) {
    widget* w = *it;
    if (!isInFocus(w, x, y)) continue;
    if (widget* hit = getChildBelowMouse(w, x, y)) return hit;
    if (w->getFlags().isFlagSet(WF_PICKABLE)) return w;
  }
  return getChildBelowMouse(this, x, y);
}

bool isInFocus(const widget* w, float x, float y) {
  return w->isVisible() && (w->isEnabled() || w->isFlagSkipDisabled()) && w->isInRect(x, y);
}

widget* getChildBelowMouse(const widget* w, float x, float y) {
  const auto children = w->getSlavesCopy();
  for (auto it = children.rbegin(); it != children.rend(); ++it) {
    widget* child = static_cast<widget*>(*it);
    if (!isInFocus(child, x, y)) continue;
    if (widget* hit = getChildBelowMouse(child, x, y)) return hit;
    if (child->getFlags().isFlagSet(WF_PICKABLE)) return child;
  }
  return nullptr;
}

}  // namespace GUI
}  // namespace JEV
