#pragma once

#include <cstdint>

namespace JEV {
namespace GUI {
class widget;
}

namespace SYSTEM {

// Kinds of input and GUI events. The numbers are part of the interface.
enum EVENT_TYPE {
  MOUSE_MOVE_ENTER = 0,
  MOUSE_MOVE = 1,
  MOUSE_MOVE_LEAVE = 2,
  MOUSE_DRAG_OVER_ENTER = 3,
  MOUSE_DRAG_MOVE = 4,
  MOUSE_DRAG_OVER_LEAVE = 5,
  MOUSE_LEFT_DRAG_ENTER = 6,
  MOUSE_LEFT_DRAG = 7,
  MOUSE_LEFT_DRAG_LEAVE = 8,
  MOUSE_MIDDLE_DRAG_ENTER = 9,
  MOUSE_MIDDLE_DRAG = 10,
  MOUSE_MIDDLE_DRAG_LEAVE = 11,
  MOUSE_RIGHT_DRAG_ENTER = 12,
  MOUSE_RIGHT_DRAG = 13,
  MOUSE_RIGHT_DRAG_LEAVE = 14,
  MOUSE_LEFT_DOWN = 15,
  MOUSE_LEFT_UP = 16,
  MOUSE_LEFT_CLICK = 17,
  MOUSE_LEFT_DOUBLE_CLICK = 18,
  MOUSE_RIGHT_DOWN = 19,
  MOUSE_RIGHT_UP = 20,
  MOUSE_RIGHT_CLICK = 21,
  MOUSE_RIGHT_DOUBLE_CLICK = 22,
  MOUSE_MIDDLE_DOWN = 23,
  MOUSE_MIDDLE_UP = 24,
  MOUSE_MIDDLE_CLICK = 25,
  MOUSE_MIDDLE_DOUBLE_CLICK = 26,
  MOUSE_WHEEL = 27,
  FOCUS_GAINED = 28,  // raised by the event schedule
  FOCUS_LOST = 29,
  KEY_DOWN = 30,
  KEY_CHAR = 31,
  KEY_UP = 32,
  EVENT_33 = 33,  // reserved: raised by nothing, it keeps the numbering
  CHECKED_CHANGE = 34,
  CAPTION_CHANGE = 35,
  FONT_CHANGE = 36,
  ITEM_SELECT = 37,
  ITEM_DESELECT = 38,
  VALUE_CHANGE = 39,
  WIDGET_DESTROY = 40,
  BEFORE_MENU_SHOW = 41,
  TAB_CHANGE = 42,
  TREE_ITEM_CHANGE = 43,
  TREE_ITEM_RENAME = 44,
  TOOLBOX_CHANGE = 45,
  TOOLTIP_SHOW = 46,
  NOTIFY_LEFT_DOWN = 47,
  NOTIFY_LEFT_UP = 48,
  NOTIFY_LEFT_DOUBLE_CLICK = 49,
  NOTIFY_RIGHT_DOWN = 50,
  NOTIFY_RIGHT_UP = 51,
  NOTIFY_RIGHT_DOUBLE_CLICK = 52,
  NOTIFY_MIDDLE_DOWN = 53,
  NOTIFY_MIDDLE_UP = 54,
  NOTIFY_MIDDLE_DOUBLE_CLICK = 55,
  EVENT_TYPE_COUNT = 56  // the terminator, and the type of a default event
};

// One input or GUI event. Fields a constructor does not take are zero. `hWnd`,
// `message`, `wParam` and `lParam` carry the platform's native message, where one exists.
class inputEvent {
 public:
  inputEvent() = default;
  inputEvent(EVENT_TYPE type, GUI::widget* target, GUI::widget* previous)
      : type(type), target(target), previous(previous) {}
  inputEvent(EVENT_TYPE type, float x, float y, float deltaX, float deltaY, float wheel)
      : type(type), x(x), y(y), deltaX(deltaX), deltaY(deltaY), wheel(wheel) {}
  inputEvent(EVENT_TYPE type, GUI::widget* target, GUI::widget* previous, float x, float y,
             float deltaX, float deltaY, float wheel)
      : type(type),
        target(target),
        previous(previous),
        x(x),
        y(y),
        deltaX(deltaX),
        deltaY(deltaY),
        wheel(wheel) {}
  inputEvent(EVENT_TYPE type, GUI::widget* target, GUI::widget* previous, int keyCode, int charCode)
      : type(type), target(target), previous(previous), keyCode(keyCode), charCode(charCode) {}
  virtual ~inputEvent() = default;

  EVENT_TYPE type = EVENT_TYPE_COUNT;
  GUI::widget* target = nullptr;
  GUI::widget* previous = nullptr;
  float x = 0, y = 0, deltaX = 0, deltaY = 0, wheel = 0;
  int keyCode = 0, charCode = 0;
  void* hWnd = nullptr;
  unsigned message = 0;
  uint64_t wParam = 0;
  int64_t lParam = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
