#pragma once

namespace JEV {
namespace GUI {
class widget;
}

namespace SYSTEM {

// A mouse position handed to a widget during hit testing, which the widget may
// transform into its own frame.
class transformMouseEvent {
 public:
  transformMouseEvent() = default;
  transformMouseEvent(GUI::widget* target, float x, float y) : target(target), x(x), y(y) {}
  virtual ~transformMouseEvent() = default;

  GUI::widget* target = nullptr;
  float x = 0, y = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
