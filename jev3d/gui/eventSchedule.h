#pragma once

#include <list>

#include "jev3d/system/inputContext.h"
#include "jev3d/system/inputEvent.h"

namespace JEV {
namespace GUI {

class guiController;
class menu;
class widget;

// Where queued input meets the widget tree. The window procedure hit-tests and queues;
// guiController::update calls doSchedule, so widgets see input only on the update tick,
// on the main loop thread, under the GUI lock.
class eventSchedule {
 public:
  // What doSchedule does with a targeted event, as bits in the order they run.
  enum ACTION : unsigned {
    ACT_NONE = 0,
    ACT_ENTER = 1 << 0,         // mouseMoveEnter
    ACT_LEAVE = 1 << 1,         // mouseMoveLeave
    ACT_FOCUS = 1 << 2,         // changeFocus
    ACT_CLOSE_BEFORE = 1 << 3,  // closePopup before the widget hears of it
    ACT_INPUT = 1 << 4,         // evInput
    ACT_HIGHLIGHTED = 1 << 5,   // evInputHighlighted
    ACT_NORMAL = 1 << 6,        // evInputNormal
    ACT_DOWN = 1 << 7,          // evInputDown
    ACT_CLOSE_AFTER = 1 << 8,   // closePopup after the widget heard of it
    ACT_OPEN = 1 << 9           // openPopup
  };
  // The value of the evaluated-type getters when too few events ran.
  static constexpr int NO_EVENT = 0x7FFFFFFF;

  explicit eventSchedule(guiController* controller);
  virtual ~eventSchedule() = default;
  eventSchedule(const eventSchedule&) = delete;
  eventSchedule& operator=(const eventSchedule&) = delete;

  // The actions for a targeted event of `type`; none for types the table leaves out.
  static unsigned actionsFor(SYSTEM::EVENT_TYPE type);

  // Takes the window's queue and runs every event of it; events queued meanwhile wait
  // for the next call.
  void doSchedule();
  int getLastEvaluateEventype() const;
  int getSecondLastEvaluateEventype() const;
  // The types handled by the last doSchedule, newest last.
  const std::list<SYSTEM::EVENT_TYPE>& getEvaluated() const { return evaluated; }

  widget* getFocus() const { return focus; }
  menu* getPopup() const { return popup; }
  // Called by a widget that goes away, so that no pointer here outlives it.
  void forget(widget* w);
  // Opens `popUp` with its top left corner at (x, y) as the popup, closing the one open.
  void showPopup(menu* popUp, float x, float y);
  // Closes the open popup, whatever the target.
  void closePopupNow();

 protected:
  virtual void evInput(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
  virtual void evInputNormal(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
  virtual void evInputHighlighted(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
  virtual void evInputDown(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
  virtual void sendAbsoluteEvent(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
  virtual void mouseMoveEnter(SYSTEM::inputEvent& event);
  virtual void mouseMoveLeave(SYSTEM::inputEvent& event);
  virtual void changeFocus(widget* w);
  virtual void openPopup(SYSTEM::inputEvent& event);
  virtual void closePopup(SYSTEM::inputEvent& event);

  guiController* controller;
  widget* focus = nullptr;
  menu* popup = nullptr;
  std::list<SYSTEM::EVENT_TYPE> evaluated;
  // The batch doSchedule is running, so that an erased widget can be taken out of it.
  SYSTEM::inputContext::eventQueue running;

 private:
  // The walk shared by the evInput family: the target's delegates, then each widget of
  // the redirect chain that may hear the event. `state` runs on each widget reached
  // (null for none); `stateWhenDisabled` lets it run on a disabled one.
  void walk(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event, void (widget::*state)(),
            bool stateWhenDisabled, bool skipDisabledTarget);
  void runEvent(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
};

}  // namespace GUI
}  // namespace JEV
