#pragma once

#include <memory>

#include "jev3d/platform/platform.h"

namespace JEV {
namespace PLATFORM {

// The platform on SDL2: native windows with OpenGL compatibility contexts, SDL's event
// queue translated into the library's messages. Key codes follow the virtual-key numbering
// (letters 'A' to 'Z', VK_CONTROL for either Ctrl, VK_MENU for either Alt and AltGr).
// A button press raises and focuses its window and captures the mouse until the last
// button is up, so that drags leaving the window keep reaching it.
class sdlPlatform : public platform {
 public:
  sdlPlatform();
  ~sdlPlatform() override;
  sdlPlatform(const sdlPlatform&) = delete;
  sdlPlatform& operator=(const sdlPlatform&) = delete;

  // False when SDL's video subsystem could not start (no display); every window
  // operation then fails.
  bool isReady() const;

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
  bool isKeyToggled(unsigned virtualKey) override;
  void setCursorPos(int x, int y) override;
  windowHandle windowFromPoint(int x, int y) override;
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
  bool takeDroppedFile(windowHandle window, std::string& path) override;

 private:
  struct impl;
  std::unique_ptr<impl> d;
};

}  // namespace PLATFORM
}  // namespace JEV
