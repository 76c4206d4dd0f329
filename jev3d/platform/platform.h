#pragma once

#include <cstdint>
#include <string>

namespace JEV {
namespace PLATFORM {

// Opaque native handles; 0 / null is "none".
using windowHandle = std::uintptr_t;
using glContextHandle = void*;
using cursorHandle = std::uintptr_t;

// Called by dispatchMessage for the messages of one window, on the thread that pumps.
using windowProcedure = std::int64_t (*)(windowHandle, unsigned msg, std::uint64_t wParam,
                                         std::int64_t lParam);
// Called by dispatchMessage when a timer of setTimer expires.
using timerProcedure = void (*)(windowHandle, unsigned id);

// Predefined cursors, with the values of their Win32 resource ids.
constexpr cursorHandle CURSOR_ARROW = 32512;
constexpr cursorHandle CURSOR_IBEAM = 32513;
constexpr cursorHandle CURSOR_WAIT = 32514;
constexpr cursorHandle CURSOR_CROSS = 32515;
constexpr cursorHandle CURSOR_SIZEALL = 32646;
constexpr cursorHandle CURSOR_HAND = 32649;

// A rectangle in screen pixels, origin at the top left of the screen.
struct rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct windowStyle {
  bool resizable = true;
  bool buttonClose = true;
  bool buttonRestore = true;
  bool buttonMinimize = true;
  bool toolWindow = false;
  bool popup = false;
};

struct windowDescriptor {
  std::wstring caption;
  rect area;  // client area
  windowStyle style;
  // Samples a pixel of the window's GL drawable is made for, 0 for none. Where the
  // drawable is fixed when the window is made, a multisampled context needs a window made
  // for it; a window of a count the system cannot give is not made.
  int samples = 0;
};

struct message {
  windowHandle window = 0;
  unsigned msg = 0;
  std::uint64_t wParam = 0;
  std::int64_t lParam = 0;
};

// The window system as the runtime sees it: windows, one message queue for the process,
// GL contexts and a few host services. All operations but postMessage belong to the thread
// that pumps. Operations on an unknown handle do nothing and report false or 0.
class platform {
 public:
  virtual ~platform() = default;

  virtual void getScreenSize(int& width, int& height) = 0;

  // Makes a hidden window whose messages go to `procedure`; 0 on failure.
  virtual windowHandle createWindow(const windowDescriptor& descriptor,
                                    windowProcedure procedure) = 0;
  virtual bool destroyWindow(windowHandle window) = 0;
  virtual bool isWindow(windowHandle window) = 0;
  virtual void setUserData(windowHandle window, void* data) = 0;
  virtual void* getUserData(windowHandle window) = 0;
  // `command` is one of the SW_ values of messages.h.
  virtual void showWindow(windowHandle window, int command) = 0;
  virtual void setCaption(windowHandle window, const std::wstring& caption) = 0;
  virtual void setStyle(windowHandle window, const windowStyle& style) = 0;
  // Client area in screen coordinates.
  virtual bool getWindowRect(windowHandle window, rect& area) = 0;
  virtual bool setWindowRect(windowHandle window, const rect& area) = 0;
  // Covers the whole screen, or gives the window back its own size; false if it cannot.
  virtual bool setFullScreen(windowHandle window, bool on) = 0;
  // Raises the window and gives it the keyboard focus.
  virtual void setForeground(windowHandle window) = 0;
  virtual void setCursor(windowHandle window, cursorHandle cursor) = 0;

  // Cursor in screen coordinates; false when it is unknown.
  virtual bool getCursorPos(int& x, int& y) = 0;
  virtual void setCursorPos(int x, int y) = 0;
  // The window of this process under a screen point, or 0.
  virtual windowHandle windowFromPoint(int x, int y) = 0;
  // Whether a lock key (VK_CAPITAL, VK_NUMLOCK) is toggled on at the keyboard now.
  virtual bool isKeyToggled(unsigned virtualKey) = 0;

  // A repeating timer; each expiry reaches `procedure` through the queue. Setting an id
  // that runs already restarts it.
  virtual bool setTimer(windowHandle window, unsigned id, unsigned milliseconds,
                        timerProcedure procedure) = 0;
  virtual bool killTimer(windowHandle window, unsigned id) = 0;

  // Appends a message to the queue; safe from any thread. Returns false for an unknown
  // window. A tick message is dropped while one of its kind waits for the same window,
  // so that fast tick threads cannot flood the queue.
  virtual bool postMessage(windowHandle window, unsigned msg, std::uint64_t wParam,
                           std::int64_t lParam) = 0;
  // Takes the next message if there is one.
  virtual bool peekMessage(message& out) = 0;
  // Waits for the next message. Returns false only if the queue can never deliver one.
  virtual bool getMessage(message& out) = 0;
  // Hands a message to its window's procedure (or its timer procedure).
  virtual std::int64_t dispatchMessage(const message& m) = 0;
  // What the system does with a message nobody handled.
  virtual std::int64_t defaultProcedure(windowHandle window, unsigned msg, std::uint64_t wParam,
                                        std::int64_t lParam) = 0;

  // A double-buffered RGBA context with 24 depth bits, 8 stencil bits and the
  // fixed-function pipeline; multisampled when `samples` is above 0 and the window's
  // drawable allows it (see windowDescriptor::samples). GL tells what the context got.
  virtual glContextHandle createGLContext(windowHandle window, int samples) = 0;
  virtual bool makeCurrent(windowHandle window, glContextHandle context) = 0;
  virtual void deleteGLContext(glContextHandle context) = 0;
  virtual bool swapBuffers(windowHandle window) = 0;

  virtual void messageBox(const std::wstring& text, const std::wstring& title) = 0;

  // Files dropped on a window wait here, oldest first, each announced by a WM_DROPFILES
  // message; takes the next one. A platform without drops has none.
  virtual bool takeDroppedFile(windowHandle /*window*/, std::string& /*path*/) { return false; }
};

// The platform every window of the process uses: the SDL2 binding unless another was
// installed. setCurrent takes no ownership; null goes back to the SDL2 binding.
platform& current();
void setCurrent(platform* p);

}  // namespace PLATFORM
}  // namespace JEV
