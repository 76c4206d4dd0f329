#pragma once

#include <string>

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

class button;
class panel;

// A slider: a thin bar part ("_BAR") and a cursor button ("_CURSOR") that shows `value`
// between `valueMin` and `valueMax`, left to right or bottom to top. Pressing on the bar
// puts the value there; dragging the cursor moves it with the mouse; the wheel and the
// keys step it: one step is 1 for an integer slider and a hundredth of the range for a
// float one; arrows step once, page keys ten steps, Home and End go to the bounds.
class slider : public widget {
 public:
  static constexpr float cursorLength = 10.0f;
  static constexpr float barThickness = 6.0f;

  slider(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~slider() override;

  void config() override;
  // Puts the cursor at the value's place on the bar.
  void updateCursorPosition();
  void setOrientation(WIDGET_ORIENTATION value) override;
  void sizePositionChanged() override;
  void onValueChange() override;
  void onValueMaxChange() override;
  void onValueMinChange() override;
  void onValueTypeChange() override;
  float getPercent() const { return percent; }
  panel* getBar() const { return bar; }
  button* getCursor() const { return cursor; }
  // The whole-number rounding of integer sliders.
  static float float2int(float v);

  // The value's place in its range, 0 to 1.
  SYSTEM::fieldBase<float> valueRatio{0.0f};

 protected:
  // Rounds, clamps, computes the percent and places the cursor.
  virtual void vChange();
  // The value at an absolute mouse position along the slider.
  void setFromPosition(float x, float y);
  float step() const;
  void stepBy(float steps);
  virtual void onKeyDown(const SYSTEM::inputEvent* e);
  virtual void onMouseWheel(const SYSTEM::inputEvent* e);
  virtual void onMouseLeftDown(const SYSTEM::inputEvent* e);
  virtual void onMouseLeftDrag(const SYSTEM::inputEvent* e);

  panel* bar = nullptr;
  button* cursor = nullptr;
  float percent = 0.0f;
  // Where in the cursor it was taken, from its centre, so that it does not jump.
  float grabOffset = 0.0f;
  bool inVChange = false;
};

}  // namespace GUI
}  // namespace JEV
