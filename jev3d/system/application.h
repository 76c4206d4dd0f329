#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "jev3d/platform/platform.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/limitSingleInstance.h"
#include "jev3d/system/mutex.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {

class winMain;

// The registry of a program's windows and the one loop that pumps the platform's
// messages, creates queued windows, runs their init on threads of their own and serves
// every window's update and frame on the calling thread. mainLoop returns when the last
// window is gone.
class application {
 public:
  // With a non-empty `instanceName`, a second process under the same name ends at once
  // with exit(0). The first string has no effect.
  application(const std::wstring& first, const std::wstring& instanceName);
  // Destroys no window: windows belong to whoever made them.
  virtual ~application();
  application(const application&) = delete;
  application& operator=(const application&) = delete;

  // Queues a window; the loop creates it. Safe from any thread. True.
  bool addWin(winMain* win);
  // Runs until no window is left, then returns 1. Must be called on the thread that
  // serves the windows; any failure to create a window ends the process.
  int mainLoop();
  // The message dispatch of every window; returns the message's result.
  std::int64_t windowProc(winMain* win, PLATFORM::windowHandle hWnd, unsigned msg,
                          std::uint64_t wParam, std::int64_t lParam);
  // A live window by its native handle, or null.
  winMain* getWindowByHWnd(PLATFORM::windowHandle hWnd);
  // The window shown alone before any other is served; owned and deleted by the loop.
  void setSplashScreen(winMain* win) { splashWindow = win; }
  winMain* getSplashScreen() const { return splashWindow; }
  // Delegates called for every copy-data message a window receives, with the message's
  // record (a PLATFORM::copyDataRecord*) as the one argument. Progress reports of a
  // callBack whose target is one of this program's windows arrive this way: at once when
  // reported on the loop's thread, through the queue from other threads.
  void addCopyDataDelegate(sharedPointer<delegate> d);
  void removeCopyDataDelegate(sharedPointer<delegate> d);
  void setLimitInstanceOn(const std::wstring& name);
  void setLimitInstanceOff();
  bool isAnotherInstanceRunning() const;
  // Called when the main window closes; ends the process with exit(0). Override it to
  // keep running: the loop then erases the window and goes on.
  virtual void terminateApplication();

  // Live windows in loop order.
  std::vector<winMain*> getWindows() const;

 protected:
  application();

 private:
  struct initEntry;

  bool createJEVWindowStep1(winMain* win, PLATFORM::windowProcedure procedure);
  bool createJEVWindowStep2(winMain* win);
  bool createJEVWindowStep3(winMain* win);
  void eraseWin(winMain* win);
  void delegateCreateWindow(void* entry);
  void updateWinMain(winMain* win);
  // The event schedule's work for a window whose widget layer does not run it: each
  // queued event, in order, to the absolute handlers of its type, then the queue empties.
  void drainInput(winMain* win);
  void drawWinMain(winMain* win);

  winMain* splashWindow = nullptr;
  std::list<sharedPointer<delegate>> copyDataDelegates;
  std::vector<winMain*> winToAdd;
  mutex winToAddMutex;
  std::map<PLATFORM::windowHandle, winMain*> windows;
  std::vector<winMain*> waitToAdd;
  mutex waitToAddMutex;
  limitSingleInstance instanceLimiter;
};

}  // namespace SYSTEM
}  // namespace JEV
