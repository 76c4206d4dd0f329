#pragma once

#include <string>

#include "jev3d/system/eventDelegate.h"
#include "jev3d/system/inputEvent.h"

namespace JEV {
namespace GUI {
class widget;
}

namespace SYSTEM {

// What a window's loop and procedure ask of the widget layer laid over the window: the
// GUI controller implements it. A window without one has no widgets, and every event it
// queues has no target.
class windowGui {
 public:
  virtual ~windowGui() = default;

  // Builds the desktop and, on request, the full-screen title bar and the tooltip.
  virtual bool init(bool withTitleBar, bool withToolTip, const std::wstring& name) = 0;
  // Drains the queued input and updates the widgets; called by the loop per update.
  virtual void update() = 0;
  // Draws the widgets; called by the loop per frame, before the swap.
  virtual void render() = 0;
  // Erases every widget.
  virtual bool discard() = 0;

  // The lock around the input queue, the mouse state and the widget tree. True when owned.
  virtual bool waitGuiMutex(unsigned long milliseconds) = 0;
  virtual void releaseGuiMutex() = 0;

  // Hit test in window coordinates, origin at the bottom left; null where no widget is.
  virtual GUI::widget* getWidgetBelowMouse(float x, float y) = 0;
  virtual GUI::widget* getFocusedWidget() = 0;
  virtual GUI::widget* getRootWidget() = 0;

  // Skin index, or -1 for none.
  virtual int getSkin() = 0;
  virtual void setSkin(int skin) = 0;
  virtual void showFullScreenTitleBar(bool show) = 0;
  // Redraws the title bar after the caption or the style changed.
  virtual void refreshFullScreenTitleBar() = 0;

  // Handlers on the root widget.
  virtual void registerInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d) = 0;
  virtual void unRegisterInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d) = 0;
  virtual void registerDropFileEventCallBack(dropFileEventDelegate& d) = 0;
  virtual void unRegisterDropFileEventCallBack(dropFileEventDelegate& d) = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
