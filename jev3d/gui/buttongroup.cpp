#include "jev3d/gui/buttongroup.h"

#include <algorithm>

#include "jev3d/gui/button.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/iconButton.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/panel.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {

using SYSTEM::inputEvent;

buttongroup::buttongroup(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_BUTTONGROUP, WCC_CUSTOM_WIDGET);
  setMargin(0, 0, 0, 0);
}

buttongroup::~buttongroup() = default;

void buttongroup::config() {
  setSize(300, 24);
  arrowLeft = INTERNAL::addIconButton(this, L"_ARROW_LEFT", ICON_ARROW_LEFT, WCC_BUTTON_ARROW);
  row = INTERNAL::addPart<panel>(this, WC_PANEL, L"_PANEL");
  arrowRight = INTERNAL::addIconButton(this, L"_ARROW_RIGHT", ICON_ARROW_RIGHT, WCC_BUTTON_ARROW);
  if (row) row->setMargin(0, 0, 0, 0);
  SYSTEM::inputEventDelegate d(this, &buttongroup::onClick);
  registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, d);
  sizePositionChanged();
}

int buttongroup::addItem(item* it, bool selectIt) {
  if (!it || !row) return -1;
  if (it->getParent() != row) {
    if (it->getParent()) it->disconnect(it->getParent(), true);
    it->connect(row, true);
  }
  it->setRedirect(this);
  it->getFlags().clearFlag(WF_FIRST_PLANE);
  items.push_back(it);
  layoutRow();
  const int index = int(items.size()) - 1;
  if (selectIt) select(index);
  dress();
  return index;
}

int buttongroup::addItem(const std::wstring& text, GUI_ICON icon) {
  if (!controller || !row) return -1;
  auto* made = static_cast<item*>(
      controller->add(WC_ITEM, id + L"_ITEM" + std::to_wstring(items.size()), row));
  if (!made) return -1;
  made->setCaption(text, false);
  made->setIcon(icon);
  made->setUseSchemaColor(false);
  return addItem(made, false);
}

item* buttongroup::getItem(int index) const {
  return index >= 0 && index < int(items.size()) ? items[size_t(index)] : nullptr;
}

int buttongroup::visibleCount() const {
  return row ? std::max(1, int(row->size.x / itemWidth)) : 1;
}

void buttongroup::select(int index) { setItemSelect(index, true); }

bool buttongroup::setItemSelect(int index, bool notify) {
  if (!getItem(index)) return false;
  itemSelect = index;
  // Into view.
  if (index < first) first = index;
  if (index >= first + visibleCount()) first = index - visibleCount() + 1;
  layoutRow();
  dress();
  if (notify) {
    inputEvent e(SYSTEM::ITEM_SELECT, this, items[size_t(index)]);
    invokeDelegate(SYSTEM::ITEM_SELECT, e);
  }
  return true;
}

bool buttongroup::setLastItemSelect(bool notify) {
  return setItemSelect(int(items.size()) - 1, notify);
}

void buttongroup::setSkinAsItem(bool asItem) {
  skinAsItem = asItem;
  dress();
}

void buttongroup::dress() {
  for (size_t i = 0; i < items.size(); ++i) {
    item* it = items[i];
    const bool on = int(i) == itemSelect;
    it->getFlags().setFlag(WF_LOCK_DOWN, on && skinAsItem);
    it->adjustUV(skinAsItem ? 176.0f : (on ? 80.0f : 48.0f), 0.0f);
  }
}

void buttongroup::sizePositionChanged() {
  widget::sizePositionChanged();
  const float side = size.y;
  INTERNAL::place(arrowLeft, 0, 0, side, side);
  INTERNAL::place(row, side, 0, std::max(0.0f, size.x - 2 * side), size.y);
  INTERNAL::place(arrowRight, size.x - side, 0, side, side);
  layoutRow();
}

void buttongroup::layoutRow() {
  const int last = std::max(0, int(items.size()) - visibleCount());
  first = std::clamp(first, 0, last);
  for (size_t i = 0; i < items.size(); ++i) {
    INTERNAL::place(items[i], (float(i) - float(first)) * itemWidth, 0, itemWidth, size.y);
  }
}

void buttongroup::onClick(const inputEvent* e) {
  const widget* from = e->previous;
  if (!from) return;
  if (arrowLeft && arrowLeft->isMeOrMyChild(from)) {
    --first;
    layoutRow();
    return;
  }
  if (arrowRight && arrowRight->isMeOrMyChild(from)) {
    ++first;
    layoutRow();
    return;
  }
  const auto at = std::find(items.begin(), items.end(), from);
  if (at != items.end()) select(int(at - items.begin()));
}

// The group has one style, items dressed as buttons or as items; the file's key for it is
// written as the plain button style.
void buttongroup::saveAttrib(IO::XML::xmlElement& e) const {
  widget::saveAttrib(e);
  e.setAttribute(L"BUTTON_STYLE", 0);
  e.setAttribute(L"ITEM_SELECT", itemSelect);
}

void buttongroup::openAttrib(IO::XML::xmlElement& e) {
  widget::openAttrib(e);
  int v = 0;
  if (e.queryIntValue(L"ITEM_SELECT", v)) setItemSelect(v, false);
}

}  // namespace GUI
}  // namespace JEV
