#include "jev3d/gui/tab.h"

#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

tab::tab(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : widget(widgetId, owner, win) {
  setClassIds(WC_TAB, WCC_ITEM);
  setMargin(0, 0, 0, 0);
}

tab::~tab() = default;

void tab::config() {
  setSize(300, 200);
  SYSTEM::inputEventDelegate d(this, &tab::onMouseLeftDown);
  registerInputEventCallBack(SYSTEM::MOUSE_LEFT_DOWN, d);
}

int tab::addTab(const std::wstring& title) {
  const std::wstring index = std::to_wstring(heads.size());
  auto* head = INTERNAL::addPart<item>(this, WC_ITEM, (L"_HEAD" + index).c_str());
  if (!head) return -1;
  auto* body = INTERNAL::addPart<panel>(this, WC_PANEL, (L"_BODY" + index).c_str());
  if (!body) return -1;
  head->setCaption(title, false);
  // Heads show their tiles as they are: the item class's normal colour is transparent.
  const CORE::color plain(255, 255, 255, 255);
  head->setColorNormal(plain);
  head->setColorHighlighted(plain);
  head->setColorDown(plain);
  head->setjustColor(WCC_OWN);
  heads.push_back(head);
  bodies.push_back(body);
  layoutPages();
  onTabChange();
  return int(heads.size()) - 1;
}

item* tab::getItemTab(unsigned index) const {
  return index < heads.size() ? heads[index] : nullptr;
}

panel* tab::getPanelTab(unsigned index) const {
  return index < bodies.size() ? bodies[index] : nullptr;
}

void tab::removeTabMargin(unsigned index) {
  if (panel* body = getPanelTab(index)) body->setMargin(0, 0, 0, 0);
}

void tab::setTabShadow(unsigned index, WIDGET_SHADOW value) {
  if (panel* body = getPanelTab(index)) body->setShadow(value);
}

void tab::hideItemTab(unsigned index, bool hide) {
  if (item* head = getItemTab(index)) head->visible = !hide;
  layoutPages();
}

bool tab::addWidgetToTab(unsigned index, widget* w) {
  panel* body = getPanelTab(index);
  return body && w && w->connect(body, true) != nullptr;
}

void tab::setHeadShadowNormal(WIDGET_SHADOW value) {
  headShadowNormal = value;
  onTabChange();
}

void tab::setHeadShadowSelected(WIDGET_SHADOW value) {
  headShadowSelected = value;
  onTabChange();
}

void tab::onTabClick(unsigned index) {
  if (index >= heads.size()) return;
  selected = index;
  onTabChange();
  SYSTEM::inputEvent e(SYSTEM::TAB_CHANGE, this, heads[index]);
  invokeDelegate(SYSTEM::TAB_CHANGE, e);
}

void tab::onTabChange() {
  for (size_t i = 0; i < heads.size(); ++i) {
    const bool on = i == selected;
    bodies[i]->visible = on;
    heads[i]->adjustUV(on ? 80.0f : 48.0f, 0.0f);
    heads[i]->setShadow(on ? headShadowSelected : headShadowNormal);
  }
}

void tab::onMouseLeftDown(const SYSTEM::inputEvent* e) {
  for (size_t i = 0; i < heads.size(); ++i) {
    if (heads[i] == e->previous) onTabClick(unsigned(i));
  }
}

void tab::sizePositionChanged() {
  widget::sizePositionChanged();
  layoutPages();
}

void tab::layoutPages() {
  float x = 0;
  for (item* head : heads) {
    if (!head->isVisible()) continue;
    INTERNAL::place(head, x, size.y - headHeight, headWidth, headHeight);
    x += headWidth;
  }
  for (panel* body : bodies) INTERNAL::place(body, 0, 0, size.x, size.y - headHeight);
}

}  // namespace GUI
}  // namespace JEV
