#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <string>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/point2.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/eventDelegate.h"
#include "jev3d/system/mutex.h"
#include "jev3d/system/sharedPointer.h"
#include "jev3d/system/winBase.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlNode;
class xmlElement;
}  // namespace XML
}  // namespace IO

namespace RENDERING {
class renderer;
class audioRenderer;
}  // namespace RENDERING

namespace SYSTEM {

class threadTimer;

// One top-level window with its rendering context, input context, widget layer and two
// tick threads. Applications subclass it, override init, update and draw, and ask for
// work with refresh or by writing the needed-fields: the loop serves a window only when a
// needed-field is set and its tick counter has moved, so missed ticks collapse into one
// service and a clean window costs nothing.
//
// Positions and sizes are in screen pixels with the origin at the bottom left of the
// screen; the rendering context holds the client size. Operations on a window whose
// native window does not exist yet store their values only.
class winMain : public winBase {
 public:
  // `tickAlways` false makes the tick threads post wake-ups only while a needed-field is
  // set, so that an idle application sleeps. With `fullScreen` the window enters full
  // screen when it first appears. An empty `className` gets a generated one.
  winMain(application* app, RENDERING::renderer* device, RENDERING::audioRenderer* audio,
          bool fullScreen, bool tickAlways, const std::wstring& className);

  // Sets the closing flag, which windowIsClosing may clear again.
  virtual void closeWindow();
  virtual void showButtonClose(bool show);
  virtual bool isButtonClose() const;
  virtual void showButtonRestore(bool show);
  virtual bool isButtonRestore() const;
  virtual void showButtonMinimized(bool show);
  virtual bool isButtonMinimized() const;
  virtual void setResizable(bool on);
  virtual bool isResizable() const;
  // (x + width / 2, y + height / 2).
  virtual MATH::point2<float> getAbsoluteBaricenter() const;
  // Moves the cursor to a point given relative to the window's bottom left.
  virtual void setMousePosition(const MATH::point2<float>& p);
  virtual void setMousePosition(float x, float y);
  ~winMain() override;

  // Handlers run by the event schedule for every event of the type, before the widget's
  // own; types of 56 and above are ignored. Unregistering removes the first equal one.
  virtual void registerAbsoluteInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d);
  virtual void unRegisterAbsoluteInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d);
  // Handlers on the widget layer's root; nothing without a widget layer.
  virtual void registerInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d);
  virtual void unRegisterInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d);
  virtual void registerDropFileEventCallBack(dropFileEventDelegate& d);
  virtual void unRegisterDropFileEventCallBack(dropFileEventDelegate& d);

  // Asks for one update and one frame; notifies even when they were asked for already.
  virtual void refresh();

  // Hooks called from the window procedure on size messages.
  virtual void resize(int width, int height);
  virtual void minimized();
  virtual void maximized();
  virtual void restored();
  // Runs on a thread of its own before the window is first served; false ends the
  // process. The GL context is not current there.
  virtual bool init();
  // Per served update, on the main thread. The result is not used.
  virtual bool update();
  // Per served frame, on the main thread, with the context current, before the swap.
  virtual void draw();
  // May clear `closing` to refuse the close.
  virtual void windowIsClosing(bool& closing);

  // Setting the current cursor again does nothing; otherwise the old one becomes the
  // previous one. setPreviousMouseCursor swaps back without changing the previous one.
  virtual void setMouseCursor(PLATFORM::cursorHandle cursor);
  virtual void setPreviousMouseCursor();
  virtual PLATFORM::cursorHandle getMouseCursor() const;
  virtual PLATFORM::cursorHandle getPreviousMouseCursor() const;
  virtual void setCaption(const std::wstring& caption);
  virtual const std::wstring& getCaption() const;
  virtual void showToolWindow(bool on);
  virtual bool isToolWindow() const;

  // Each first reads the native rectangle back, then changes the value and moves the
  // native window, unless there is none or it is in full screen.
  virtual void setRect2D(float x, float y, float width, float height);
  virtual void setPosition(float x, float y);
  virtual void setPositionX(float x);
  virtual float getPositionX();
  virtual void setPositionY(float y);
  virtual float getPositionY();
  virtual void setSize(float width, float height);
  virtual void setWidth(float width);
  virtual float getWidth();
  virtual void setHeight(float height);
  virtual float getHeight();

  virtual void startScreenSaver();
  virtual void startMonitorPower();
  // Messages the window procedure does not handle itself.
  virtual void wndProcMsg(unsigned msg, std::uint64_t wParam, std::int64_t lParam);
  // Empties the contexts and the widget layer; an override must call it.
  virtual bool deInit();
  virtual void setWindowShowMode(WINDOW_SHOW_MODE mode);
  // The notification icon: this platform has no tray, so only the tip is kept.
  virtual void addNotification(const wchar_t* tip);
  virtual void removeNotification();

  bool isFullScreen() const { return fullScreen; }
  // Enters or leaves full screen; nothing without a native window or when already so.
  void setFullScreen(bool on, bool titleBar);
  void showPopUpWindow(bool on);
  bool isPopupWindow() const { return popupWindow; }
  PLATFORM::cursorHandle getHIcon() const { return icon; }
  void setHIcon(PLATFORM::cursorHandle i) { icon = i; }
  bool isMainWindow() const { return mainWindow; }
  void setMainWindow(bool on) { mainWindow = on; }
  // File drops are not delivered on this platform; the flag is kept.
  void setDropFiles(bool on) { dropFiles = on; }
  bool getDropFiles() const { return dropFiles; }
  // Writes one "MAIN_WINDOW" element below `parent`. True.
  bool saveToXML(IO::XML::xmlNode* parent);
  // Applies each attribute of a "MAIN_WINDOW" element that is present and an integer;
  // the caption is never read back. True.
  bool openFromXML(IO::XML::xmlElement& element);
  WINDOW_SHOW_MODE getWindowShowMode() const { return showMode; }
  const std::wstring& getNotificationTip() const { return notifyTip; }
  bool hasNotification() const { return notifyData; }

  // Puts a widget layer on the window, owned from then on; the old one is deleted.
  void setGui(windowGui* layer);
  // The window's delegate run when the loop erases it.
  void setCloseDelegate(const sharedPointer<delegate>& d) { closeDelegate = d; }
  const std::list<inputEventDelegate>& getAbsoluteCallbacks(EVENT_TYPE type) const;
  RENDERING::renderer* getRenderer() const { return device; }
  int32_t getUpdateTick() const { return updateTick; }
  int32_t getFrameTick() const { return frameTick; }

  fieldBase<int> preferredUPS;
  fieldBase<int> preferredFPS;

 protected:
  bool updateGui = true;
  bool renderGui = true;
  bool skipDefaultTextures = false;
  bool skipFonts = false;

 private:
  friend class application;

  void tickUPS();
  void tickFPS();
  void tickUPSLessMsg();
  void tickFPSLessMsg();
  void onPreferredUPSChange();
  void onPreferredFPSChange();
  void updateRect();
  void changeRect();
  void updateStyle();
  void setStyleFlag(bool& flag, bool on);
  PLATFORM::windowStyle style() const;
  int screenHeight() const;

  RENDERING::renderer* device;
  RENDERING::audioRenderer* audio;
  sharedPointer<delegate> closeDelegate;
  bool notifyData = false;
  std::wstring notifyTip;
  std::wstring className;
  float position[3] = {0, 0, 0};
  float size[3] = {0, 0, 0};
  bool positionSet = false;  // false: Step 1 centres the window
  float windowedPosition[3] = {0, 0, 0};
  float windowedSize[3] = {0, 0, 0};
  bool fullScreen = false;
  bool fullScreenWanted;
  std::wstring caption = L"JEV Window";
  bool buttonClose = true;
  bool buttonRestore = true;
  bool buttonMinimized = true;
  bool toolWindow = false;
  bool popupWindow = false;
  PLATFORM::cursorHandle mouseCursor = PLATFORM::CURSOR_ARROW;
  PLATFORM::cursorHandle previousMouseCursor = PLATFORM::CURSOR_ARROW;
  PLATFORM::cursorHandle icon = 0;
  bool mouseTracking = false;
  bool mainWindow = false;
  bool dropFiles = false;
  threadTimer* upsTimer = nullptr;
  threadTimer* fpsTimer = nullptr;
  // Written by the tick threads, read by the loop. A lost increment only delays a
  // service; atomics keep the race defined.
  int32_t lastFrameTick = 0;
  std::atomic<int32_t> frameTick{0};
  int32_t lastUpdateTick = 0;
  std::atomic<int32_t> updateTick{0};
  // The handle the tick threads post to: hWnd, published for them.
  std::atomic<PLATFORM::windowHandle> tickWindow{0};
  mutex callbackMutex;
  mutex absoluteCallbackMutex;
  std::list<inputEventDelegate> absoluteCallbacks[EVENT_TYPE_COUNT];
};

}  // namespace SYSTEM
}  // namespace JEV
