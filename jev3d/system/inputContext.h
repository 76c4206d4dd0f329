#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <utility>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/fields/mtLinker.h"
#include "jev3d/system/inputEvent.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {

// The keyboard and mouse state of one window, and its queue of events from the platform
// to the event schedule. Made once per window, on the heap: each of the 65,536 keys is a
// thread-safe field, so that an application can link to a key or watch it.
//
// The platform binding writes the state and appends to `events` under the GUI's lock;
// the event schedule takes the queue on the main thread.
class inputContext {
 public:
  static constexpr int KEY_COUNT = 65536;
  using keyField = fieldBase<bool, dummyLinkerType, mtLinker>;
  using eventQueue = std::list<std::pair<EVENT_TYPE, sharedPointer<inputEvent>>>;

  inputContext();
  virtual ~inputContext();
  inputContext(const inputContext&) = delete;
  inputContext& operator=(const inputContext&) = delete;

  // Empties the queue, zeroes the mouse state and writes every key up (with its
  // notification), so that no key counts as down.
  void clear();

  // Keys now down, counted from the keys' changes: a repeated down counts once, and an
  // up with no down leaves the count at 0.
  uint32_t getKeyDownCount() const { return keyDownCount; }
  bool isCapsLockOn() const { return capsLockOn; }
  bool isNumLockOn() const { return numLockOn; }
  bool isMouseLeftButtonDown() const { return leftDown; }
  bool isMouseMiddleButtonDown() const { return middleDown; }
  bool isMouseRightButtonDown() const { return rightDown; }
  bool isMouseLeftButtonDrag() const { return leftDrag; }
  bool isMouseMiddleButtonDrag() const { return middleDrag; }
  bool isMouseRightButtonDrag() const { return rightDrag; }
  float getMouseX() const { return mouseX; }
  float getMouseY() const { return mouseY; }

  // Indexed by the platform's key code, below KEY_COUNT. Written by the binding.
  keyField* const keys;
  // The last state of each key that was counted.
  keyField* const keysLatch;

  // Written by the platform binding.
  bool leftDown = false, middleDown = false, rightDown = false;
  bool leftDrag = false, middleDrag = false, rightDrag = false;
  // The drag reference: the previous position, so drag deltas are per event.
  float dragX = 0, dragY = 0;
  // Origin at the bottom left.
  float mouseX = 0, mouseY = 0;
  GUI::widget* widgetBelowMouse = nullptr;
  // All drag events go to it until the button goes up.
  GUI::widget* draggedWidget = nullptr;
  // Under the left button when it went down.
  GUI::widget* pressedWidget = nullptr;
  // The toggle states of the lock keys, as the platform reports them.
  bool capsLockOn = false, numLockOn = false;

  eventQueue events;

 private:
  // Runs on every write of a key: counts the change against its latch.
  void onKey(void* key, void* latch);

  std::atomic<uint32_t> keyDownCount{0};
};

}  // namespace SYSTEM
}  // namespace JEV
