#pragma once

#include <string>

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

class button;

// A scroll bar: two arrow buttons at its ends ("_ARROW_LOW" left or bottom, "_ARROW_HIGH"
// right or top), the bar between them ("_BAR") and a cursor button on it ("_CURSOR")
// whose length is the bar's times `scrollbarRatio`, the visible part of what scrolls. The
// value runs from the bar's lower (or left) edge. The arrows, a press on the bar beside
// the cursor, the wheel and the keys step the value by the ratio of its range: one page.
//
// A wheel step with a ratio above one half goes to the bound in its direction (a page
// would take it there or past it anyway); the arrow keys step like the wheel, Home and
// End go to the bounds.
class scrollbar : public widget {
 public:
  // The cursor never gets shorter than this, so that it can still be taken.
  static constexpr float minimumCursorLength = 8.0f;

  scrollbar(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~scrollbar() override;

  void config() override;
  void setScrollbarRatio(float ratio);
  float getScrollbarRatio() const { return scrollbarRatio; }
  // Places the cursor at the value's place and gives it its length.
  void updateCursorPosition();
  void setOrientation(WIDGET_ORIENTATION value) override;
  void sizePositionChanged() override;
  void onValueChange() override;
  void onValueMaxChange() override;
  void onValueMinChange() override;
  float getPercent() const { return percent; }
  button* getArrowLow() const { return arrowLow; }
  button* getArrowHigh() const { return arrowHigh; }
  widget* getBar() const { return bar; }
  button* getCursor() const { return cursor; }
  // The cursor's length on the bar as the ratio gives it.
  float getCursorLength() const;

 protected:
  void vChange();
  // The cursor's travel per percent.
  float unit() const;
  float barLength() const;
  virtual void onKeyDown(const SYSTEM::inputEvent* e);
  virtual void onMouseWheel(const SYSTEM::inputEvent* e);
  // A wheel step of `wheel` notches.
  void wheelBy(float wheel);
  virtual void onMouseLeftDown(const SYSTEM::inputEvent* e);
  virtual void onMouseLeftDrag(const SYSTEM::inputEvent* e);

  button* arrowLow = nullptr;
  button* arrowHigh = nullptr;
  widget* bar = nullptr;
  button* cursor = nullptr;
  float scrollbarRatio = 0.2f;
  float percent = 0.0f;
  bool inVChange = false;
};

}  // namespace GUI
}  // namespace JEV
