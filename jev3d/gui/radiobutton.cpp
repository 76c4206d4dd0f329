#include "jev3d/gui/radiobutton.h"

namespace JEV {
namespace GUI {

radiobutton::radiobutton(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : checkbox(widgetId, owner, win) {
  setClassIds(WC_RADIOBUTTON, WCC_CHECK_RADIO);
  tileUnchecked[0] = 64;
  tileUnchecked[1] = 16;
  tileChecked[0] = 96;
  tileChecked[1] = 16;
  setCaption(std::wstring(L"radiobutton"), false);
}

radiobutton::~radiobutton() = default;

void radiobutton::onCheckedChange() {
  checkbox::onCheckedChange();
  if (!checked.cV() || !parentWidget) return;
  for (linker* sibling : parentWidget->getSlavesCopy()) {
    auto* other = static_cast<widget*>(sibling);
    if (other != this && other->getClass() == WC_RADIOBUTTON && other->checked.cV())
      other->checked = false;
  }
}

void radiobutton::onClick(const SYSTEM::inputEvent*) {
  if (!checked.cV()) checked = true;
}

}  // namespace GUI
}  // namespace JEV
