#include "jev3d/gui/label.h"

namespace JEV {
namespace GUI {

label::label(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_LABEL, WCC_CUSTOM_WIDGET);
  font.idFont = L"ID_FONT1";
  setCaption(std::wstring(L"label"), false);
}

label::~label() = default;

void label::render(RENDERING::renderingContext* rc) {
  widget::render(rc);
  renderText(rc);
}

}  // namespace GUI
}  // namespace JEV
