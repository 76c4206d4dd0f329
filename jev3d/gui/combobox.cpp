#include "jev3d/gui/combobox.h"

#include <algorithm>

#include "jev3d/gui/button.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/iconButton.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/panel.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/platform/messages.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace GUI {

using SYSTEM::inputEvent;

combobox::combobox(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_COMBOBOX, WCC_INPUT_AREA);
  setMargin(0, 0, 0, 0);
  adjustUV(32, 160);
}

combobox::~combobox() {
  if (controller && controller->getWinMain())
    controller->getWinMain()->unRegisterAbsoluteInputEventCallBack(SYSTEM::MOUSE_LEFT_DOWN,
                                                                   pressWatch);
}

void combobox::config() {
  setSize(120, 22);
  captionPart = INTERNAL::addPart<label>(this, WC_LABEL, L"_CAPTION");
  if (captionPart) {
    captionPart->setCaption(std::wstring(), false);
    captionPart->setTextHorizontalAlign(TEXT_LEFT);
  }
  arrow = INTERNAL::addIconButton(this, L"_ARROW", ICON_ARROW_DOWN, WCC_BUTTON_ARROW);
  if (controller) {
    // The list hangs off the desktop, out of the box's clip.
    list = controller->addPanel(id + L"_LIST", nullptr);
    if (list) {
      list->getFlags().setFlag(WF_PRIVATE);
      list->getFlags().clearFlag(WF_FIRST_PLANE);
      list->setRedirect(this);
      list->setMargin(1, 1, 1, 1);
      list->visible = false;
      controller->setTopMost(list, true);
    }
    if (SYSTEM::winMain* win = controller->getWinMain()) {
      pressWatch = SYSTEM::inputEventDelegate(this, &combobox::onAnyPress);
      win->registerAbsoluteInputEventCallBack(SYSTEM::MOUSE_LEFT_DOWN, pressWatch);
    }
  }
  INTERNAL::focusOnClick(this);
  INTERNAL::listenTo<combobox>(this, {{SYSTEM::MOUSE_LEFT_CLICK, &combobox::onClick},
                                      {SYSTEM::MOUSE_WHEEL, &combobox::onMouseWheel},
                                      {SYSTEM::KEY_DOWN, &combobox::onKeyDown}});
  sizePositionChanged();
}

void combobox::sizePositionChanged() {
  widget::sizePositionChanged();
  const float side = size.y;
  INTERNAL::place(captionPart, 4, 0, std::max(0.0f, size.x - side - 4), size.y);
  INTERNAL::place(arrow, size.x - side, 0, side, side);
  layoutList();
}

void combobox::layoutList() {
  if (!list) return;
  const float height = 2.0f + itemHeight * float(items.size());
  const point3f at = getAbsolutePos();
  const point3f origin = list->getParent() ? list->getParent()->getAbsolutePos() : point3f();
  INTERNAL::place(list, at.x - origin.x, at.y - height - origin.y, size.x, height);
  float top = height - 1.0f;
  for (item* i : items) {
    top -= itemHeight;
    INTERNAL::place(i, 1, top, size.x - 2, itemHeight);
  }
}

int combobox::addItem(const std::wstring& text, GUI_ICON icon) {
  if (!controller || !list) return -1;
  const std::wstring itemId = id + L"_ITEM" + std::to_wstring(items.size());
  auto* made = static_cast<item*>(controller->add(WC_ITEM, itemId, list));
  if (!made) return -1;
  made->setCaption(text, false);
  made->setIcon(icon);
  made->getFlags().setFlag(WF_PRIVATE);
  made->getFlags().clearFlag(WF_FIRST_PLANE);
  SYSTEM::inputEventDelegate click(this, &combobox::onItemClick);
  made->registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, click);
  items.push_back(made);
  layoutList();
  return int(items.size()) - 1;
}

item* combobox::getItem(int index) const {
  return index >= 0 && index < int(items.size()) ? items[size_t(index)] : nullptr;
}

const std::wstring& combobox::getCaption() const {
  return captionPart ? captionPart->getCaption() : widget::getCaption();
}

void combobox::select(int index) {
  item* chosen = getItem(index);
  if (!chosen) return;
  itemSelect = index;
  if (captionPart) captionPart->setCaption(chosen->getCaption(), false);
  close();
}

bool combobox::setItemSelect(int index, bool notify) {
  if (!getItem(index)) return false;
  select(index);
  if (notify) {
    inputEvent e(SYSTEM::ITEM_SELECT, this, items[size_t(index)]);
    invokeDelegate(SYSTEM::ITEM_SELECT, e);
  }
  return true;
}

bool combobox::setItemSelect(const widget* w, bool notify) {
  const auto at = std::find(items.begin(), items.end(), w);
  return at != items.end() && setItemSelect(int(at - items.begin()), notify);
}

bool combobox::setItemSelect(const std::wstring& text, bool notify) {
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i]->getCaption() == text) return setItemSelect(int(i), notify);
  }
  return false;
}

bool combobox::setNextItemSelect(bool notify, bool wrap) {
  const int count = int(items.size());
  if (count == 0) return false;
  int next = itemSelect + 1;
  if (next >= count) {
    if (!wrap) return false;
    next = 0;
  }
  return setItemSelect(next, notify);
}

bool combobox::setPrevItemSelect(bool notify, bool wrap) {
  const int count = int(items.size());
  if (count == 0) return false;
  int previous = itemSelect < 0 ? count - 1 : itemSelect - 1;
  if (previous < 0) {
    if (!wrap) return false;
    previous = count - 1;
  }
  return setItemSelect(previous, notify);
}

bool combobox::setLastItemSelect(bool notify) {
  return setItemSelect(int(items.size()) - 1, notify);
}

void combobox::clear() {
  close();
  for (item* i : items) {
    if (controller) controller->eraseNow(i);
  }
  items.clear();
  itemSelect = -1;
  if (captionPart) captionPart->setCaption(std::wstring(), false);
  layoutList();
}

bool combobox::isOpen() const { return list && list->isVisible(); }

void combobox::open() {
  if (isOpen() || !arrow) return;
  inputEvent click(SYSTEM::MOUSE_LEFT_CLICK, arrow, arrow);
  onClick(&click);
}

void combobox::close() {
  if (list) list->visible = false;
}

void combobox::disconnectAllChild() {
  for (linker* child : getSlavesCopy()) static_cast<widget*>(child)->disconnect(this, true);
  captionPart = nullptr;
  arrow = nullptr;
}

void combobox::render(RENDERING::renderingContext* rc) {
  widget::render(rc);
  drawPatch(rc);
}

void combobox::onClick(const inputEvent*) {
  if (!list) return;
  if (isOpen()) {
    close();
    return;
  }
  layoutList();
  list->visible = true;
  list->gotoInFirstPlane();
}

void combobox::onItemClick(const inputEvent* e) { setItemSelect(e->target, true); }

void combobox::onMouseWheel(const inputEvent* e) {
  if (isOpen() || e->wheel == 0) return;
  // The wheel up goes to the item above.
  if (e->wheel > 0) {
    setPrevItemSelect(true, false);
  } else {
    setNextItemSelect(true, false);
  }
}

void combobox::onKeyDown(const inputEvent* e) {
  switch (static_cast<unsigned>(e->keyCode)) {
    case PLATFORM::VK_UP:
      setPrevItemSelect(true, false);
      break;
    case PLATFORM::VK_DOWN:
      setNextItemSelect(true, false);
      break;
    case PLATFORM::VK_ESCAPE:
      close();
      break;
    default:
      break;
  }
}

void combobox::onAnyPress(const inputEvent* e) {
  if (!isOpen()) return;
  const widget* t = e->target;
  if (t && (isMeOrMyChild(t) || list->isMeOrMyChild(t))) return;
  close();
}

void combobox::saveAttrib(IO::XML::xmlElement& e) const {
  widget::saveAttrib(e);
  e.setAttribute(L"ITEM_SELECT", itemSelect);
}

// The items themselves are not in the file: a selection only holds for a list built
// before the read.
void combobox::openAttrib(IO::XML::xmlElement& e) {
  widget::openAttrib(e);
  int v = 0;
  if (e.queryIntValue(L"ITEM_SELECT", v)) setItemSelect(v, false);
}

}  // namespace GUI
}  // namespace JEV
