#pragma once

#include "jev3d/gui/button.h"
#include "jev3d/gui/internal/controlParts.h"

namespace JEV {
namespace GUI {
namespace INTERNAL {

// A button part without caption that shows only `icon` (an arrow, or nothing for a
// cursor), in colour class `cls`.
inline button* addIconButton(widget* owner, const wchar_t* suffix, widget::GUI_ICON icon,
                             WIDGET_CLASS_COLOR cls) {
  auto* b = addPart<button>(owner, WC_BUTTON, suffix);
  if (!b) return nullptr;
  b->setCaption(std::wstring(), false);
  b->setButtonStyle(BS_ICON_ONLY);
  b->setIcon(icon);
  b->setjustColor(cls);
  return b;
}

}  // namespace INTERNAL
}  // namespace GUI
}  // namespace JEV
