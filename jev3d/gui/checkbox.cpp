#include "jev3d/gui/checkbox.h"

#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {

checkbox::checkbox(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_CHECKBOX, WCC_CHECK_RADIO);
  setMargin(0, 0, 0, 0);
  font.idFont = L"ID_FONT1";
  font.horizontalAlignment = TEXT_LEFT;
  textOffset = point3f(markSize + 5.0f, 0, 0);
  setCaption(std::wstring(L"checkbox"), false);
}

checkbox::~checkbox() = default;

void checkbox::config() {
  setSize(100, 20);
  mark = INTERNAL::addPart<picturebox>(this, WC_PICTUREBOX, L"_MARK");
  SYSTEM::inputEventDelegate d(this, &checkbox::onClick);
  registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, d);
  updateMark();
  sizePositionChanged();
}

void checkbox::doRefresh() {
  widget::doRefresh();
  updateMark();
}

void checkbox::onCheckedChange() {
  widget::onCheckedChange();
  updateMark();
}

void checkbox::updateMark() {
  if (!mark) return;
  const float* tile = checked.cV() ? tileChecked : tileUnchecked;
  mark->setTile(tile[0], tile[1]);
}

void checkbox::sizePositionChanged() {
  widget::sizePositionChanged();
  INTERNAL::place(mark, 0, (size.y - markSize) * 0.5f, markSize, markSize);
}

void checkbox::render(RENDERING::renderingContext* rc) {
  widget::render(rc);
  renderText(rc);
}

void checkbox::onClick(const SYSTEM::inputEvent*) { checked = !checked.cV(); }

void checkbox::saveAttrib(IO::XML::xmlElement& e) const {
  widget::saveAttrib(e);
  PROJECT::saveButtonAttributes(e, true, false, L"", static_cast<int>(markSize), 0);
}

}  // namespace GUI
}  // namespace JEV
