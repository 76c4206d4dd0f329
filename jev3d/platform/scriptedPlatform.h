#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jev3d/platform/platform.h"

namespace JEV {
namespace PLATFORM {

// A platform with no display, for tests of the runtime: windows are records, the GL
// contexts are tokens, and every operation is written to a log that tests read. Tests
// post messages, move the cursor, fire timers and script what happens when the runtime
// would block for a message.
class scriptedPlatform : public platform {
 public:
  struct windowRecord {
    rect area;
    std::wstring caption;
    windowStyle style;
    int showCommand = 0;  // the last SW_ command; a new window is hidden
    bool fullScreen = false;
    void* userData = nullptr;
    windowProcedure procedure = nullptr;
    cursorHandle cursor = 0;
  };
  struct timerRecord {
    unsigned milliseconds;
    timerProcedure procedure;
  };

  scriptedPlatform();
  ~scriptedPlatform() override;

  // Log entries look like "createWindow 1", "showWindow 1 5", "swapBuffers 2".
  std::vector<std::string> operations() const;
  // Number of log entries that start with `prefix`.
  int countOperations(const std::string& prefix) const;
  void clearOperations();

  // Calls of postMessage with this message number, accepted or not.
  int postCount(unsigned msg) const;
  // Messages waiting in the queue.
  std::vector<message> pending() const;
  // Times getMessage had to wait for a message.
  int waitCount() const;

  // Runs on the pumping thread whenever getMessage finds the queue empty, before it
  // waits; it may post messages, change windows or do nothing.
  void setIdleHook(std::function<void(scriptedPlatform&)> hook);
  // Calls the window's procedure at once, as a synchronous send.
  std::int64_t send(windowHandle window, unsigned msg, std::uint64_t wParam = 0,
                    std::int64_t lParam = 0);
  // Queues one expiry of a running timer; false if it does not run.
  bool fireTimer(windowHandle window, unsigned id);
  bool hasTimer(windowHandle window, unsigned id) const;
  // Handles given to the next windows, for tests of map order.
  void setNextHandle(windowHandle h);
  // The next `count` calls of createWindow / createGLContext fail.
  void failCreateWindow(int count);
  void failCreateGLContext(int count);
  // Copy of a window's record; false if it does not exist.
  bool window(windowHandle h, windowRecord& out) const;
  // Handles of live windows, in creation order.
  std::vector<windowHandle> windows() const;
  int swapCount(windowHandle window) const;

  void setScreenSize(int width, int height);
  void getScreenSize(int& width, int& height) override;
  windowHandle createWindow(const windowDescriptor& descriptor, windowProcedure procedure) override;
  bool destroyWindow(windowHandle window) override;
  bool isWindow(windowHandle window) override;
  void setUserData(windowHandle window, void* data) override;
  void* getUserData(windowHandle window) override;
  void showWindow(windowHandle window, int command) override;
  void setCaption(windowHandle window, const std::wstring& caption) override;
  void setStyle(windowHandle window, const windowStyle& style) override;
  bool getWindowRect(windowHandle window, rect& area) override;
  bool setWindowRect(windowHandle window, const rect& area) override;
  bool setFullScreen(windowHandle window, bool on) override;
  void setForeground(windowHandle window) override;
  void setCursor(windowHandle window, cursorHandle cursor) override;
  bool getCursorPos(int& x, int& y) override;
  void setCursorPos(int x, int y) override;
  windowHandle windowFromPoint(int x, int y) override;
  bool isKeyToggled(unsigned virtualKey) override;
  // The keyboard's lock state as a test scripts it.
  void setKeyToggled(unsigned virtualKey, bool on);
  bool setTimer(windowHandle window, unsigned id, unsigned milliseconds,
                timerProcedure procedure) override;
  bool killTimer(windowHandle window, unsigned id) override;
  bool postMessage(windowHandle window, unsigned msg, std::uint64_t wParam,
                   std::int64_t lParam) override;
  bool peekMessage(message& out) override;
  bool getMessage(message& out) override;
  std::int64_t dispatchMessage(const message& m) override;
  std::int64_t defaultProcedure(windowHandle window, unsigned msg, std::uint64_t wParam,
                                std::int64_t lParam) override;
  glContextHandle createGLContext(windowHandle window, int samples) override;
  bool makeCurrent(windowHandle window, glContextHandle context) override;
  void deleteGLContext(glContextHandle context) override;
  bool swapBuffers(windowHandle window) override;
  void messageBox(const std::wstring& text, const std::wstring& title) override;

 private:
  void log(const std::string& entry);
  bool popQueued(message& out);

  mutable std::mutex lock;  // guards everything below
  std::condition_variable posted;
  std::vector<std::string> journal;
  std::map<windowHandle, windowRecord> records;
  std::vector<windowHandle> order;
  std::map<std::pair<windowHandle, unsigned>, timerRecord> timers;
  std::map<windowHandle, int> swaps;
  std::map<unsigned, int> posts;
  std::deque<message> queue;
  std::function<void(scriptedPlatform&)> idleHook;
  windowHandle nextHandle = 1;
  int createWindowFailures = 0;
  int createContextFailures = 0;
  std::uintptr_t nextContext = 1;
  int waits = 0;
  int screenWidth = 1920;
  int screenHeight = 1080;
  std::set<unsigned> toggledKeys;
  int cursorX = 0;
  int cursorY = 0;
};

}  // namespace PLATFORM
}  // namespace JEV
