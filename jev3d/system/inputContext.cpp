#include "jev3d/system/inputContext.h"

#include "jev3d/system/delegate.h"

namespace JEV {
namespace SYSTEM {

inputContext::inputContext() : keys(new keyField[KEY_COUNT]), keysLatch(new keyField[KEY_COUNT]) {
  for (int i = 0; i < KEY_COUNT; ++i) {
    keys[i].registerEventOnChangeValue(makeDelegate2(this, &inputContext::onKey,
                                                     static_cast<void*>(&keys[i]),
                                                     static_cast<void*>(&keysLatch[i])));
  }
}

inputContext::~inputContext() {
  delete[] keys;
  delete[] keysLatch;
}

void inputContext::onKey(void* key, void* latch) {
  auto* k = static_cast<keyField*>(key);
  auto* l = static_cast<keyField*>(latch);
  const bool down = k->cV();
  if (down == l->cV()) return;
  l->setValue(down);
  if (down) {
    ++keyDownCount;
  } else {
    uint32_t now = keyDownCount;
    while (now != 0 && !keyDownCount.compare_exchange_weak(now, now - 1)) {
    }
  }
}

void inputContext::clear() {
  events.clear();
  leftDown = middleDown = rightDown = false;
  leftDrag = middleDrag = rightDrag = false;
  dragX = dragY = mouseX = mouseY = 0;
  widgetBelowMouse = draggedWidget = pressedWidget = nullptr;
  for (int i = 0; i < KEY_COUNT; ++i) keys[i].setValue(false);
  keyDownCount = 0;
}

}  // namespace SYSTEM
}  // namespace JEV
