#include "jev3d/gui/eventSchedule.h"

#include "jev3d/gui/guiController.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/widget.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace GUI {

using SYSTEM::EVENT_TYPE;
using SYSTEM::inputEvent;

namespace {

// The table of actions by event type, indexed by type.
constexpr unsigned INPUT = eventSchedule::ACT_INPUT;
constexpr unsigned ENTER = eventSchedule::ACT_ENTER | eventSchedule::ACT_HIGHLIGHTED;
constexpr unsigned LEAVE = eventSchedule::ACT_LEAVE | eventSchedule::ACT_NORMAL;
constexpr unsigned DRAG_END = eventSchedule::ACT_INPUT | eventSchedule::ACT_CLOSE_AFTER;
constexpr unsigned PRESS =
    eventSchedule::ACT_FOCUS | eventSchedule::ACT_CLOSE_BEFORE | eventSchedule::ACT_INPUT;
constexpr unsigned LEFT_DOWN =
    eventSchedule::ACT_FOCUS | eventSchedule::ACT_CLOSE_BEFORE | eventSchedule::ACT_DOWN;
constexpr unsigned RIGHT_CLICK = PRESS | eventSchedule::ACT_OPEN;
constexpr unsigned NONE = eventSchedule::ACT_NONE;

constexpr unsigned LEFT_UP = eventSchedule::ACT_NORMAL;

// clang-format off
constexpr unsigned actionTable[SYSTEM::EVENT_TYPE_COUNT] = {
  ENTER, INPUT, LEAVE,                // 0 to 2: mouse enter, move, leave
  ENTER, INPUT, LEAVE,                // 3 to 5: drag over enter, move, leave
  INPUT, INPUT, DRAG_END,             // 6 to 8: left drag
  INPUT, INPUT, DRAG_END,             // 9 to 11: middle drag
  INPUT, INPUT, DRAG_END,             // 12 to 14: right drag
  LEFT_DOWN, LEFT_UP,                 // 15, 16
  PRESS, PRESS,                       // 17, 18: left click, double click
  PRESS, INPUT, RIGHT_CLICK, PRESS,   // 19 to 22: right down, up, click, double click
  PRESS, INPUT, PRESS, PRESS,         // 23 to 26: middle down, up, click, double click
  INPUT,                              // 27: wheel
  NONE, NONE,                         // 28, 29: focus, raised here and not queued
  INPUT, INPUT, INPUT,                // 30 to 32: keys
};  // the rest: nothing
// clang-format on

}  // namespace

eventSchedule::eventSchedule(guiController* c) : controller(c) {}

unsigned eventSchedule::actionsFor(EVENT_TYPE type) {
  return (type < 0 || type >= SYSTEM::EVENT_TYPE_COUNT) ? ACT_NONE : actionTable[type];
}

void eventSchedule::doSchedule() {
  SYSTEM::inputContext* input = controller->getInputContext();
  if (!input) return;
  running.clear();
  running.swap(input->events);
  evaluated.clear();
  for (auto& [type, event] : running) {
    if (event.get()) runEvent(type, *event);
    evaluated.push_back(type);
  }
  running.clear();
}

void eventSchedule::runEvent(EVENT_TYPE type, inputEvent& event) {
  sendAbsoluteEvent(type, event);
  const unsigned actions = actionsFor(type);
  // A press where no widget is, on the bare desktop, is a press outside the popup too.
  if ((actions & ACT_CLOSE_BEFORE) && !event.target) closePopupNow();
  // Each step may erase the target (a delegate calling eraseNow): forget then clears
  // event.target, and nothing further touches it.
  if ((actions & ACT_ENTER) && event.target) mouseMoveEnter(event);
  if ((actions & ACT_LEAVE) && event.target) mouseMoveLeave(event);
  if ((actions & ACT_FOCUS) && event.target) changeFocus(event.target);
  if ((actions & ACT_CLOSE_BEFORE) && event.target) closePopup(event);
  if ((actions & ACT_INPUT) && event.target) evInput(type, event);
  if ((actions & ACT_HIGHLIGHTED) && event.target) evInputHighlighted(type, event);
  if ((actions & ACT_NORMAL) && event.target) evInputNormal(type, event);
  if ((actions & ACT_DOWN) && event.target) evInputDown(type, event);
  if ((actions & ACT_CLOSE_AFTER) && event.target) closePopup(event);
  if ((actions & ACT_OPEN) && event.target) openPopup(event);
}

int eventSchedule::getLastEvaluateEventype() const {
  return evaluated.empty() ? NO_EVENT : evaluated.back();
}

int eventSchedule::getSecondLastEvaluateEventype() const {
  if (evaluated.size() < 2) return NO_EVENT;
  return *std::next(evaluated.rbegin());
}

void eventSchedule::walk(EVENT_TYPE type, inputEvent& event, void (widget::*state)(),
                         bool stateWhenDisabled, bool skipDisabledTarget) {
  if (skipDisabledTarget && !event.target->isEnabled()) return;
  event.target->invokeDelegate(type, event);
  if (state && event.target && (stateWhenDisabled || event.target->isEnabled()))
    (event.target->*state)();
  while (event.target) {
    widget* next = event.target->getRedirect();
    if (!next) break;
    event.previous = event.target;
    event.target = next;
    const widget* parent = next->getParent();
    const bool hears =
        (next->isEnabled() || type == SYSTEM::WIDGET_DESTROY) && (!parent || parent->isEnabled());
    if (hears) next->invokeDelegate(type, event);
    if (state && event.target && (stateWhenDisabled || hears)) (event.target->*state)();
  }
}

void eventSchedule::evInput(EVENT_TYPE type, inputEvent& event) {
  walk(type, event, nullptr, false, false);
}

void eventSchedule::evInputNormal(EVENT_TYPE type, inputEvent& event) {
  walk(type, event, &widget::doNormal, true, false);
}

void eventSchedule::evInputHighlighted(EVENT_TYPE type, inputEvent& event) {
  walk(type, event, &widget::doHighlighted, false, true);
}

void eventSchedule::evInputDown(EVENT_TYPE type, inputEvent& event) {
  walk(type, event, &widget::doDown, false, true);
}

void eventSchedule::sendAbsoluteEvent(EVENT_TYPE type, inputEvent& event) {
  SYSTEM::winMain* win = controller->getWinMain();
  if (!win || type < 0 || type >= SYSTEM::EVENT_TYPE_COUNT) return;
  // A copy: a handler may register or unregister handlers.
  const std::list<SYSTEM::inputEventDelegate> handlers = win->getAbsoluteCallbacks(type);
  event.type = type;
  for (const SYSTEM::inputEventDelegate& d : handlers) d.invoke(static_cast<void*>(&event));
}

void eventSchedule::mouseMoveEnter(inputEvent& event) { controller->toolTipEnter(event.target); }

void eventSchedule::mouseMoveLeave(inputEvent& event) { controller->toolTipLeave(event.target); }

void eventSchedule::changeFocus(widget* w) {
  if (w == focus || (focus && focus->isMeOrMyChild(w))) return;
  if (focus) {
    inputEvent lost(SYSTEM::FOCUS_LOST, focus, w);
    focus->invokeDelegate(SYSTEM::FOCUS_LOST, lost);
  }
  focus = w;
  w->gotoInFirstPlane();
  if (!w->getFlags().isFlagSet(WF_FOCUS_ON_CLICK)) {
    focus = nullptr;
    return;
  }
  inputEvent got(SYSTEM::FOCUS_GAINED, w, nullptr);
  w->invokeDelegate(SYSTEM::FOCUS_GAINED, got);
}

void eventSchedule::showPopup(menu* popUp, float x, float y) {
  closePopupNow();
  popup = popUp;
  popUp->setPosition(x, y - popUp->getHeight(), popUp->position.z);
  popUp->visible = true;
  popUp->gotoInFirstPlane();
}

void eventSchedule::openPopup(inputEvent& event) {
  for (widget* w = event.target; w; w = w->getRedirect()) {
    menu* popUp = w->getPopUpMenuPointer();
    if (popUp && !w->getFlags().isFlagSet(WF_SKIP_NEXT_POPUP)) {
      if (w->getFlags().isFlagSet(WF_POPUP_AT_CORNER)) {
        const widget::point3f corner = w->getAbsolutePos();
        showPopup(popUp, corner.x, corner.y);
      } else {
        showPopup(popUp, event.x, event.y);
      }
    }
    w->getFlags().clearFlag(WF_SKIP_NEXT_POPUP);
  }
}

void eventSchedule::closePopupNow() {
  if (!popup) return;
  menu* open = popup;
  popup = nullptr;
  open->close();
}

void eventSchedule::closePopup(inputEvent& event) {
  if (!popup) return;
  widget* t = event.target;
  if (t->getClass() == WC_MENU || t->getClass() == WC_SCROLLBAR) return;
  // Clicks inside the open menu, or inside any menu or a menu's scrollbar, keep it.
  if (popup->isMeOrMyChild(t) || t->isChildOfClassId(WC_MENU) || t->isChildOfClassId(WC_SCROLLBAR))
    return;
  closePopupNow();
}

void eventSchedule::forget(widget* w) {
  if (focus == w) focus = nullptr;
  if (popup == w) popup = nullptr;
  for (auto& entry : running) {
    SYSTEM::inputEvent* e = entry.second.get();
    if (!e) continue;
    if (e->target == w) e->target = nullptr;
    if (e->previous == w) e->previous = nullptr;
  }
}

}  // namespace GUI
}  // namespace JEV
