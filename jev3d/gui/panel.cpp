#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

panel::panel(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_PANEL, WCC_PANEL);
}

panel::~panel() = default;

void panel::beforeRender(RENDERING::renderingContext*) {}

void panel::render(RENDERING::renderingContext* rc) {
  beforeRender(rc);
  widget::render(rc);
  drawPatch(rc);
}

}  // namespace GUI
}  // namespace JEV
