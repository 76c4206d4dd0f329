#include "jev3d/gui/menu.h"

#include <algorithm>

#include "jev3d/gui/guiController.h"
#include "jev3d/gui/item.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/platform/messages.h"

namespace JEV {
namespace GUI {

using SYSTEM::inputEvent;

menu::menu(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win) {
  setClassIds(WC_MENU, WCC_MENU);
  setMargin(2, 2, 2, 2);
  size.x = defaultWidth;
}

menu::~menu() = default;

void menu::config() {
  visible = false;
  if (controller && parentWidget) controller->setTopMost(this, true);
  SYSTEM::inputEventDelegate keys(this, &menu::onKeyDown);
  registerInputEventCallBack(SYSTEM::KEY_DOWN, keys);
  layoutItems();
}

item* menu::appendItem(GUI_ICON icon, const std::wstring& text) {
  if (!controller) return nullptr;
  const std::wstring itemId = id + L"_ITEM" + std::to_wstring(items.size());
  auto* made = static_cast<item*>(controller->add(WC_ITEM, itemId, this));
  if (!made) return nullptr;
  made->setIcon(icon);
  made->setCaption(text, false);
  adoptItem(made);
  return made;
}

void menu::adoptItem(item* made) {
  if (made->getParent() != this) made->connect(this, false);
  made->setRedirect(this);
  made->setOnFocusOnClick(true);
  made->getFlags().clearFlag(WF_FIRST_PLANE);
  made->treeParent = opener;
  made->treeLevel = opener ? opener->treeLevel + 1 : 0;
  SYSTEM::inputEventDelegate enter(this, &menu::onItemEnter);
  made->registerInputEventCallBack(SYSTEM::MOUSE_MOVE_ENTER, enter);
  items.push_back(made);
  layoutItems();
}

item* menu::addItem(GUI_ICON icon, const std::wstring& text) {
  item* made = appendItem(icon, text);
  if (made) registerItemClick(made);
  return made;
}

void menu::addItem(item* read) {
  if (!read) return;
  adoptItem(read);
  registerItemClick(read);
}

void menu::registerItemClick(item* made) {
  SYSTEM::inputEventDelegate click(this, &menu::onSimpleTextClick);
  made->registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, click);
}

menu* menu::addSubMenu(GUI_ICON icon, const std::wstring& text) {
  item* from = appendItem(icon, text);
  if (!from) return nullptr;
  auto* sub = static_cast<menu*>(controller->add(WC_MENU, from->getId() + L"_MENU", parentWidget));
  if (!sub) return nullptr;
  sub->opener = from;
  from->setSubMenu(sub);
  return sub;
}

void menu::setWidth(float width) {
  panel::setWidth(width);
  layoutItems();
}

void menu::doRefresh() {
  panel::doRefresh();
  layoutItems();
}

void menu::layoutItems() {
  const float height = margin[2] + margin[3] + item::itemHeight * float(items.size());
  panel::setSize(size.x, std::max(height, sizeMin.y));
  const float width = size.x - margin[0] - margin[1];
  float top = size.y - margin[2];
  for (item* i : items) {
    top -= item::itemHeight;
    i->setRect2D(margin[0], top, width, item::itemHeight);
  }
}

void menu::popup(float x, float y) {
  if (controller) {
    controller->getSchedule().showPopup(this, x, y);
  } else {
    setPosition(x, y - size.y, position.z);
    visible = true;
  }
}

void menu::close() {
  if (openSub) openSub->close();
  openSub = nullptr;
  setHighlighted(nullptr);
  panel::close();
}

void menu::searchPopToClose() {
  menu* root = this;
  while (root->opener && root->opener->getParent() &&
         root->opener->getParent()->getClass() == WC_MENU) {
    root = static_cast<menu*>(root->opener->getParent());
  }
  if (controller && controller->getSchedule().getPopup() == root) {
    controller->getSchedule().closePopupNow();
  } else {
    root->close();
  }
}

void menu::setHighlighted(item* target) {
  if (highlighted == target) return;
  if (highlighted) highlighted->doNormal();
  highlighted = target;
  if (highlighted) highlighted->doHighlighted();
}

void menu::openSubMenu(item* from) {
  menu* sub = from ? from->getSubMenu() : nullptr;
  if (openSub && openSub != sub) openSub->close();
  openSub = sub;
  if (!sub) return;
  // At the item's right edge, its top on the item's top.
  const point3f at = from->getAbsolutePos();
  const point3f parentAt = sub->getParent() ? sub->getParent()->getAbsolutePos() : point3f();
  sub->setPosition(at.x + from->size.x - parentAt.x, at.y + from->size.y - sub->size.y - parentAt.y,
                   sub->position.z);
  sub->visible = true;
  sub->gotoInFirstPlane();
}

void menu::onItemEnter(const inputEvent* e) {
  auto* target = static_cast<item*>(e->target);
  setHighlighted(target);
  openSubMenu(target);
}

void menu::onSimpleTextClick(const inputEvent*) {
  if (!notClosable) searchPopToClose();
}

void menu::onKeyDown(const inputEvent* e) {
  if (items.empty()) return;
  const auto at = std::find(items.begin(), items.end(), highlighted);
  const int index = at == items.end() ? -1 : int(at - items.begin());
  const int count = int(items.size());
  switch (static_cast<unsigned>(e->keyCode)) {
    case PLATFORM::VK_DOWN:
      setHighlighted(items[size_t((index + 1) % count)]);
      break;
    case PLATFORM::VK_UP:
      setHighlighted(items[size_t((index <= 0 ? count : index) - 1)]);
      break;
    case PLATFORM::VK_RETURN:
      if (highlighted && !highlighted->getSubMenu()) {
        inputEvent click(SYSTEM::MOUSE_LEFT_CLICK, highlighted, nullptr);
        highlighted->invokeDelegate(SYSTEM::MOUSE_LEFT_CLICK, click);
      } else if (highlighted) {
        openSubMenu(highlighted);
      }
      break;
    case PLATFORM::VK_ESCAPE:
      searchPopToClose();
      break;
    default:
      break;
  }
}

void menu::saveAttrib(IO::XML::xmlElement& e) const {
  panel::saveAttrib(e);
  e.setAttribute(L"NOTCLOSABLE", notClosable ? 1 : 0);
}

void menu::openAttrib(IO::XML::xmlElement& e) {
  panel::openAttrib(e);
  int v = 0;
  if (e.queryIntValue(L"NOTCLOSABLE", v)) notClosable = v != 0;
}

}  // namespace GUI
}  // namespace JEV
