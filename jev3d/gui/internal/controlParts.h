#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "jev3d/gui/guiController.h"
#include "jev3d/gui/widget.h"
#include "jev3d/platform/messages.h"

namespace JEV {
namespace GUI {
namespace INTERNAL {

// Adds a part of a control: a private child of `owner` made by the controller under the
// owner's id plus `suffix`, placed freely, redirecting its events to the owner. Null for
// a control outside any controller, or when the id is taken. Parts keep their stacking
// order on a click (no bit 27), so that a bar pressed once never covers its cursor.
template <class W>
W* addPart(widget* owner, WIDGET_CLASS cls, const wchar_t* suffix) {
  if (!owner->controller) return nullptr;
  widget* part = owner->controller->add(cls, owner->getId() + suffix, owner);
  if (!part) return nullptr;
  part->getFlags().setFlag(WF_PRIVATE);
  part->getFlags().clearFlag(WF_FIRST_PLANE);
  part->setRedirect(owner);
  part->layout.setHorizontal(HA_FREE);
  part->layout.setVertical(VA_FREE);
  return static_cast<W*>(part);
}

// Registers the control's own handlers on itself, one an event type.
template <class C>
void listenTo(
    C* control,
    std::initializer_list<std::pair<SYSTEM::EVENT_TYPE, void (C::*)(const SYSTEM::inputEvent*)>>
        handlers) {
  for (const auto& [type, method] : handlers) {
    SYSTEM::inputEventDelegate d(control, method);
    control->registerInputEventCallBack(type, d);
  }
}

// Places a part inside its control, in the control's local pixels.
// Written to the fields, so that thin parts are not raised to the widgets' minimum size.
inline void place(widget* part, float x, float y, float width, float height) {
  if (!part) return;
  part->position = widget::point3f(x, y, part->position.z);
  part->size = widget::point3f(width > 0 ? width : 0, height > 0 ? height : 0, 1);
  part->sizePositionChanged();
}

// Lets the control and every part under it take the focus on a click, so that keys
// pressed after a click on any part reach the control through the redirects.
inline void focusOnClick(widget* w) {
  w->setOnFocusOnClick(true);
  for (int i = 0; widget* child = w->getChildAt(i); ++i) focusOnClick(child);
}

// Where `value` lies in [minimum, maximum], in percent; 0 when the range is not positive.
inline float percentOf(float value, float minimum, float maximum) {
  return maximum - minimum > 0 ? (value - minimum) * 100.0f / (maximum - minimum) : 0.0f;
}

// The whole-number rounding of the value controls: truncate, and add 1 when the fraction
// is at least one half.
inline float float2int(float v) {
  const float whole = static_cast<float>(static_cast<long long>(v));
  return (v - whole >= 0.5f) ? whole + 1.0f : whole;
}

// The value step of the value controls: rounds minimum, maximum and value to whole
// numbers for an integer control, then clamps the value to its range, writing the fields
// without their own notification and running the control's value hook once at the end.
// Returns the value's percent of the range, 0 for a range that is not positive (the value
// then stays as it is).
inline float settleValue(widget& w) {
  if (w.valueType != WVT_FLOAT) {
    w.valueMax.V() = float2int(w.valueMax.cV());
    w.valueMin.V() = float2int(w.valueMin.cV());
    w.value.V() = float2int(w.value.cV());
  }
  const float minimum = w.valueMin.cV(), maximum = w.valueMax.cV();
  float percent = percentOf(w.value.cV(), minimum, maximum);
  if (percent < 0.0f) {
    percent = 0.0f;
    w.value.V() = minimum;
  } else if (percent > 100.0f) {
    percent = 100.0f;
    w.value.V() = maximum;
  }
  w.widget::onValueChange();
  return percent;
}

// What a key does to a value control: steps down or up (a page is `pageSteps` steps), or
// goes to a bound. False for a key it does not take.
inline bool keyToValue(widget& w, int keyCode, float pageSteps, float& steps) {
  steps = 0;
  switch (static_cast<unsigned>(keyCode)) {
    case PLATFORM::VK_LEFT:
    case PLATFORM::VK_DOWN:
      steps = -1;
      return true;
    case PLATFORM::VK_RIGHT:
    case PLATFORM::VK_UP:
      steps = 1;
      return true;
    case PLATFORM::VK_NEXT:
      steps = -pageSteps;
      return true;
    case PLATFORM::VK_PRIOR:
      steps = pageSteps;
      return true;
    case PLATFORM::VK_HOME:
      w.value = w.valueMin.cV();
      return true;
    case PLATFORM::VK_END:
      w.value = w.valueMax.cV();
      return true;
    default:
      return false;
  }
}

// The control's position along its orientation, of an absolute mouse position.
inline float along(const widget& w, float x, float y) {
  return w.getOrientation() == WO_HORIZONTAL ? x : y;
}

}  // namespace INTERNAL
}  // namespace GUI
}  // namespace JEV
