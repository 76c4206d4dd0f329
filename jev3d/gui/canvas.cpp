#include "jev3d/gui/canvas.h"

#include <algorithm>

namespace JEV {
namespace GUI {

canvas::canvas(const std::wstring& id, guiController* controller, SYSTEM::winBase* window)
    : widget(id, controller, window) {
  setClassIds(WC_CANVAS, WCC_CUSTOM_WIDGET);
}

canvas::~canvas() = default;

void canvas::render(RENDERING::renderingContext* rc) { widget::render(rc); }

bool canvas::preUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  followRect();
  return widget::preUpdate(rc, uc);
}

void canvas::followRect() {
  const float x = static_cast<float>(rectX.cV());
  const float y = static_cast<float>(rectY.cV());
  const float w = static_cast<float>(rectWidth.cV());
  const float h = static_cast<float>(rectHeight.cV());
  // A canvas's rectangle is its own: a desktop of a minimised window keeps size 0.
  if (position.x != x || position.y != y || size.x != w || size.y != h) setRect2D(x, y, w, h);
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
