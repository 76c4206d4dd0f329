#include "jev3d/gui/separator.h"

#include <algorithm>

namespace JEV {
namespace GUI {

separator::separator(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win) {
  setClassIds(WC_SEPARATOR, WCC_SEPARATOR);
  setMargin(0, 0, 0, 0);
  sizeMin = point3f(thickness, thickness, 0);
  adjustUV(32, 160);
  setSize(100, thickness);
}

separator::~separator() = default;

void separator::setOrientation(WIDGET_ORIENTATION value) {
  panel::setOrientation(value);
  // The long side stays; the thin one comes back to the thickness.
  const float length = std::max(size.x, size.y);
  setSize(length, length);
}

void separator::setSize(float width, float height) {
  if (orientation == WO_HORIZONTAL) {
    panel::setSize(width, thickness);
  } else {
    panel::setSize(thickness, height);
  }
}

void separator::setWidth(float width) { setSize(width, size.y); }

void separator::setHeight(float height) { setSize(size.x, height); }

}  // namespace GUI
}  // namespace JEV
