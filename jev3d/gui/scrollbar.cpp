#include "jev3d/gui/scrollbar.h"

#include <algorithm>

#include "jev3d/gui/button.h"
#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/iconButton.h"

namespace JEV {
namespace GUI {

using SYSTEM::inputEvent;

namespace {

// The gap the cursor keeps to each end of the bar, two pixels a side.
constexpr float travelGap = 4.0f;

}  // namespace

scrollbar::scrollbar(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_SCROLLBAR, WCC_CUSTOM_WIDGET);
  setMargin(0, 0, 0, 0);
}

scrollbar::~scrollbar() = default;

void scrollbar::config() {
  setSize(120, 16);
  arrowLow = INTERNAL::addIconButton(this, L"_ARROW_LOW", ICON_ARROW_LEFT, WCC_BUTTON_ARROW);
  arrowHigh = INTERNAL::addIconButton(this, L"_ARROW_HIGH", ICON_ARROW_RIGHT, WCC_BUTTON_ARROW);
  bar = INTERNAL::addPart<widget>(this, WC_PANEL, L"_BAR");
  cursor = INTERNAL::addIconButton(this, L"_CURSOR", ICON_NULL, WCC_CURSOR_SLIDER);
  if (bar) {
    bar->setjustColor(WCC_BAR);
    bar->adjustUV(112, 160);
  }
  INTERNAL::focusOnClick(this);
  INTERNAL::listenTo<scrollbar>(this, {{SYSTEM::KEY_DOWN, &scrollbar::onKeyDown},
                                       {SYSTEM::MOUSE_WHEEL, &scrollbar::onMouseWheel},
                                       {SYSTEM::MOUSE_LEFT_DOWN, &scrollbar::onMouseLeftDown},
                                       {SYSTEM::MOUSE_LEFT_DRAG, &scrollbar::onMouseLeftDrag}});
  setOrientation(orientation);
  vChange();
}

void scrollbar::setScrollbarRatio(float ratio) {
  scrollbarRatio = std::clamp(ratio, 0.0f, 1.0f);
  updateCursorPosition();
}

void scrollbar::vChange() {
  if (inVChange) return;
  inVChange = true;
  percent = INTERNAL::settleValue(*this);
  updateCursorPosition();
  inVChange = false;
}

void scrollbar::onValueChange() {
  if (!inVChange) vChange();
}
void scrollbar::onValueMaxChange() { vChange(); }
void scrollbar::onValueMinChange() { vChange(); }

void scrollbar::setOrientation(WIDGET_ORIENTATION value) {
  widget::setOrientation(value);
  const bool horizontal = value == WO_HORIZONTAL;
  if (arrowLow) arrowLow->setIcon(horizontal ? ICON_ARROW_LEFT : ICON_ARROW_DOWN);
  if (arrowHigh) arrowHigh->setIcon(horizontal ? ICON_ARROW_RIGHT : ICON_ARROW_UP);
  sizePositionChanged();
}

float scrollbar::barLength() const {
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float length = horizontal ? size.x : size.y;
  const float across = horizontal ? size.y : size.x;
  return std::max(0.0f, length - 2.0f * across);
}

float scrollbar::getCursorLength() const {
  const float length = barLength();
  return std::min(length, std::max(minimumCursorLength, length * scrollbarRatio));
}

float scrollbar::unit() const { return (barLength() - getCursorLength() - travelGap) / 100.0f; }

void scrollbar::sizePositionChanged() {
  widget::sizePositionChanged();
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float across = horizontal ? size.y : size.x;
  const float length = barLength();
  if (horizontal) {
    INTERNAL::place(arrowLow, 0, 0, across, across);
    INTERNAL::place(arrowHigh, across + length, 0, across, across);
    INTERNAL::place(bar, across, 0, length, across);
  } else {
    INTERNAL::place(arrowLow, 0, 0, across, across);
    INTERNAL::place(arrowHigh, 0, across + length, across, across);
    INTERNAL::place(bar, 0, across, across, length);
  }
  updateCursorPosition();
}

void scrollbar::updateCursorPosition() {
  if (!cursor) return;
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float across = horizontal ? size.y : size.x;
  // From the bar's lower edge, two pixels in; the travel is the bar less the cursor and
  // the two gaps.
  const float at = across + travelGap * 0.5f + std::max(0.0f, unit()) * percent;
  const float length = getCursorLength();
  if (horizontal) {
    INTERNAL::place(cursor, at, 0, length, across);
  } else {
    INTERNAL::place(cursor, 0, at, across, length);
  }
}

void scrollbar::wheelBy(float wheel) {
  const float range = valueMax.cV() - valueMin.cV();
  if (scrollbarRatio <= 0.5f) {
    value = std::clamp(value.cV() + range * scrollbarRatio * wheel, valueMin.cV(), valueMax.cV());
  } else if (wheel != 0.0f) {
    value = wheel > 0 ? valueMax.cV() : valueMin.cV();
  }
}

void scrollbar::onMouseWheel(const inputEvent* e) { wheelBy(e->wheel); }

void scrollbar::onKeyDown(const inputEvent* e) {
  float steps = 0;
  if (INTERNAL::keyToValue(*this, e->keyCode, 1, steps) && steps != 0) wheelBy(steps);
}

void scrollbar::onMouseLeftDown(const inputEvent* e) {
  const widget* from = e->previous;
  if (!from || (cursor && cursor->isMeOrMyChild(from))) return;
  if (arrowLow && arrowLow->isMeOrMyChild(from)) {
    wheelBy(-1);
  } else if (arrowHigh && arrowHigh->isMeOrMyChild(from)) {
    wheelBy(1);
  } else if (bar && from == bar && cursor) {
    // Beside the cursor: a page towards the mouse.
    const point3f c = cursor->getAbsolutePos();
    const float mouse = INTERNAL::along(*this, e->x, e->y);
    wheelBy(mouse < INTERNAL::along(*this, c.x, c.y) ? -1.0f : 1.0f);
  }
}

void scrollbar::onMouseLeftDrag(const inputEvent* e) {
  if (!cursor || !e->previous || !cursor->isMeOrMyChild(e->previous)) return;
  const float u = unit();
  if (u <= 0.0f) return;  // the cursor fills the bar: nothing to move
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float across = horizontal ? size.y : size.x;
  // The cursor's place counted from the middle of its travel, as the ratio formula takes it.
  const point3f local = cursor->position;
  const float position = (horizontal ? local.x : local.y) - across - travelGap * 0.5f - u * 50.0f;
  const float delta = horizontal ? e->deltaX : e->deltaY;
  const float ratio = ((position + delta + u * 50.0f) / u) / 100.0f;
  value = valueMin.cV() + ratio * (valueMax.cV() - valueMin.cV());
}

}  // namespace GUI
}  // namespace JEV
