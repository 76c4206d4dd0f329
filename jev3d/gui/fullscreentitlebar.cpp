#include "jev3d/gui/fullscreentitlebar.h"

#include "jev3d/gui/button.h"
#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/label.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace GUI {

namespace {

// The title bar's tile and the row of the window buttons' glyphs on the skin sheet.
constexpr float barU = 16.0f, barV = 160.0f;
constexpr float glyphV = 160.0f;
constexpr float closeGlyphU = 64.0f, restoreGlyphU = 80.0f, minimizeGlyphU = 96.0f;
constexpr float buttonGap = 2.0f;

}  // namespace

fullscreentitlebar::fullscreentitlebar(const std::wstring& widgetId, guiController* owner,
                                       SYSTEM::winBase* win)
    : panel(widgetId, owner, win) {
  setClassIds(WC_PANEL, WCC_BAR);
  setMargin(4, 4, 2, 2);
  adjustUV(barU, barV);
  getFlags().setFlag(WF_PRIVATE);
}

fullscreentitlebar::~fullscreentitlebar() = default;

void fullscreentitlebar::config() {
  visible = false;
  layout.width = WSL_FULL;
  layout.widthOffset = 0;
  setHeight(barHeight);
  captionPart = INTERNAL::addPart<label>(this, WC_LABEL, L"_CAPTION");
  if (captionPart) {
    captionPart->setTextHorizontalAlign(TEXT_LEFT);
    captionPart->layout.setHorizontal(HA_LEFT);
    captionPart->layout.setVertical(VA_CENTER);
    captionPart->layout.width = WSL_FULL;
    captionPart->layout.widthOffset = -3 * (buttonSide + buttonGap);
    captionPart->layout.height = HSL_FULL;
  }
  closePart =
      addWindowButton(L"_CLOSE", WCC_BUTTON_CLOSE, closeGlyphU, 0, &fullscreentitlebar::onClose);
  restorePart = addWindowButton(L"_RESTORE", WCC_BUTTON_RESTORE, restoreGlyphU, 1,
                                &fullscreentitlebar::onRestore);
  minimizePart = addWindowButton(L"_MINIMIZE", WCC_BUTTON_RESTORE, minimizeGlyphU, 2,
                                 &fullscreentitlebar::onMinimize);
  refresh();
}

button* fullscreentitlebar::addWindowButton(
    const wchar_t* suffix, WIDGET_CLASS_COLOR cls, float layerU, int fromRight,
    void (fullscreentitlebar::*onClick)(const SYSTEM::inputEvent*)) {
  auto* b = INTERNAL::addPart<button>(this, WC_BUTTON, suffix);
  if (!b) return nullptr;
  b->setCaption(std::wstring(), false);
  b->setButtonStyle(BS_ICON_ONLY);
  b->setSizeIcon(0);
  b->setSkinAsWinButton(cls, layerU, glyphV);
  b->setSize(buttonSide, buttonSide);
  b->layout.setHorizontal(HA_RIGHT);
  b->layout.horizontalOffset = -float(fromRight) * (buttonSide + buttonGap);
  b->layout.setVertical(VA_CENTER);
  // The button's own click runs the action; the bar hears it after, through the redirect.
  SYSTEM::inputEventDelegate d(this, onClick);
  b->registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, d);
  return b;
}

void fullscreentitlebar::doRefresh() {
  panel::doRefresh();
  auto* win = dynamic_cast<SYSTEM::winMain*>(window);
  if (!win) return;
  if (captionPart) captionPart->setCaption(win->getCaption(), false);
  if (closePart) closePart->visible = win->isButtonClose();
  if (restorePart) restorePart->visible = win->isButtonRestore();
  if (minimizePart) minimizePart->visible = win->isButtonMinimized();
}

void fullscreentitlebar::onMinimize(const SYSTEM::inputEvent*) {
  if (auto* win = dynamic_cast<SYSTEM::winMain*>(window))
    win->setWindowShowMode(SYSTEM::SHOW_MINIMIZED);
}

void fullscreentitlebar::onRestore(const SYSTEM::inputEvent*) {
  if (auto* win = dynamic_cast<SYSTEM::winMain*>(window)) win->setFullScreen(false, false);
}

void fullscreentitlebar::onClose(const SYSTEM::inputEvent*) {
  if (auto* win = dynamic_cast<SYSTEM::winMain*>(window)) win->closeWindow();
}

}  // namespace GUI
}  // namespace JEV
