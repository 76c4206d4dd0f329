#include "jev3d/gui/slider.h"

#include "jev3d/gui/button.h"
#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/iconButton.h"

namespace JEV {
namespace GUI {

using SYSTEM::inputEvent;

slider::slider(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_SLIDER, WCC_CUSTOM_WIDGET);
  setMargin(0, 0, 0, 0);
}

slider::~slider() = default;

void slider::config() {
  setSize(120, 20);
  bar = INTERNAL::addPart<panel>(this, WC_PANEL, L"_BAR");
  if (bar) {
    bar->setjustColor(WCC_BAR);
    bar->adjustUV(112, 160);
  }
  cursor = INTERNAL::addIconButton(this, L"_CURSOR", ICON_NULL, WCC_CURSOR_SLIDER);
  INTERNAL::focusOnClick(this);
  INTERNAL::listenTo<slider>(this, {{SYSTEM::KEY_DOWN, &slider::onKeyDown},
                                    {SYSTEM::MOUSE_WHEEL, &slider::onMouseWheel},
                                    {SYSTEM::MOUSE_LEFT_DOWN, &slider::onMouseLeftDown},
                                    {SYSTEM::MOUSE_LEFT_DRAG, &slider::onMouseLeftDrag}});
  vChange();
  sizePositionChanged();
}

float slider::float2int(float v) { return INTERNAL::float2int(v); }

void slider::vChange() {
  if (inVChange) return;
  inVChange = true;
  percent = INTERNAL::settleValue(*this);
  valueRatio = percent / 100.0f;
  updateCursorPosition();
  inVChange = false;
}

void slider::onValueChange() {
  if (inVChange) return;
  vChange();
}

void slider::onValueMaxChange() { vChange(); }
void slider::onValueMinChange() { vChange(); }
void slider::onValueTypeChange() { vChange(); }

void slider::setOrientation(WIDGET_ORIENTATION value) {
  widget::setOrientation(value);
  sizePositionChanged();
}

void slider::sizePositionChanged() {
  widget::sizePositionChanged();
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float length = horizontal ? size.x : size.y;
  const float across = horizontal ? size.y : size.x;
  const float barStart = cursorLength * 0.5f;
  const float barAcross = (across - barThickness) * 0.5f;
  const float barLength = length - cursorLength;
  if (horizontal) {
    INTERNAL::place(bar, barStart, barAcross, barLength, barThickness);
  } else {
    INTERNAL::place(bar, barAcross, barStart, barThickness, barLength);
  }
  updateCursorPosition();
}

void slider::updateCursorPosition() {
  if (!cursor) return;
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float travel = (horizontal ? size.x : size.y) - cursorLength;
  const float at = travel * percent / 100.0f;
  if (horizontal) {
    INTERNAL::place(cursor, at, 0, cursorLength, size.y);
  } else {
    INTERNAL::place(cursor, 0, at, size.x, cursorLength);
  }
}

void slider::setFromPosition(float x, float y) {
  if (!bar) return;
  const point3f origin = bar->getAbsolutePos();
  const bool horizontal = orientation == WO_HORIZONTAL;
  const float length = horizontal ? bar->size.x : bar->size.y;
  if (length <= 0) return;
  const float offset = horizontal ? x - origin.x : y - origin.y;
  value = valueMin.cV() + offset / length * (valueMax.cV() - valueMin.cV());
}

float slider::step() const {
  return valueType != WVT_FLOAT ? 1.0f : (valueMax.cV() - valueMin.cV()) / 100.0f;
}

void slider::stepBy(float steps) { value = value.cV() + step() * steps; }

void slider::onKeyDown(const inputEvent* e) {
  float steps = 0;
  if (INTERNAL::keyToValue(*this, e->keyCode, 10, steps) && steps != 0) stepBy(steps);
}

void slider::onMouseWheel(const inputEvent* e) { stepBy(e->wheel); }

void slider::onMouseLeftDown(const inputEvent* e) {
  grabOffset = 0.0f;
  if (cursor && e->previous && cursor->isMeOrMyChild(e->previous)) {
    // Taken by the cursor: keep the point under the mouse where it was taken.
    const point3f c = cursor->getAbsolutePos();
    const bool horizontal = orientation == WO_HORIZONTAL;
    grabOffset =
        horizontal ? e->x - (c.x + cursorLength * 0.5f) : e->y - (c.y + cursorLength * 0.5f);
    return;
  }
  setFromPosition(e->x, e->y);
}

void slider::onMouseLeftDrag(const inputEvent* e) {
  const bool horizontal = orientation == WO_HORIZONTAL;
  setFromPosition(horizontal ? e->x - grabOffset : e->x, horizontal ? e->y : e->y - grabOffset);
}

}  // namespace GUI
}  // namespace JEV
