#pragma once

// Real windows on the display for the tests that read pixels back: a fixture that owns a
// shown window with its GL device, and a window of the runtime loop run under a watchdog.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "jev3d/platform/messages.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/resources/textureStorage.h"
#include "jev3d/system/application.h"
#include "jev3d/system/winMain.h"
#include "renderer/rendergl/glWindow.h"

namespace testDisplay {

// A square window shown on the display, its GL device set up for it, and the frame read
// back into `pixels`. Derived fixtures open it in SetUp under ASSERT_NO_FATAL_FAILURE.
struct glWindowFixture : ::testing::Test {
  void openWindow(const wchar_t* title, int sidePixels) {
    using namespace JEV::PLATFORM;
    frameSide = sidePixels;
    window = current().createWindow(windowDescriptor{title, rect{10, 10, frameSide, frameSide}, {}},
                                    ignoreMessages);
    ASSERT_NE(window, 0u);
    bool recreate = false;
    ASSERT_TRUE(gl.createContext(window, recreate));
    ASSERT_TRUE(gl.init());
    current().showWindow(window, SW_SHOW);
    ASSERT_TRUE(waitExposed(current()));
    rc.windowWidth = frameSide;
    rc.windowHeight = frameSide;
    ASSERT_TRUE(gl.resetDevice(&rc));
  }
  void TearDown() override {
    rc.discard();
    gl.deleteContext();
    if (window) JEV::PLATFORM::current().destroyWindow(window);
  }

  // Begins the window target cleared to black; the frame is drawn after this.
  void beginFrame() {
    ASSERT_TRUE(gl.makeCurrentContext(false));
    ASSERT_TRUE(gl.emptyDiscardList());
    auto& target = rc.getRenderStateStack()->getCurrentRenderTargetState();
    target.clearColour = JEV::CORE::color(0, 0, 0, 255);
    gl.beginScene(target);
    gl.clear(target);
  }
  // Reads the drawn frame into `pixels` (RGBA, bottom row first) and shows it.
  void readBack() {
    using JEV::RENDERING::renderer;
    pixels.assign(size_t(frameSide) * frameSide * 4, 0);
    ASSERT_TRUE(gl.readPixels(0, 0, frameSide, frameSide, renderer::PIXELDATA_RGBA,
                              renderer::DATA_UNSIGNED_BYTE, pixels.data()));
    gl.swapBuffers();
  }
  const std::uint8_t* pixelAt(int x, int y) const {
    return pixels.data() + (size_t(y) * frameSide + size_t(x)) * 4;
  }

  int frameSide = 0;
  JEV::PLATFORM::windowHandle window = 0;
  JEV::RENDERING::renderGL gl;
  JEV::RENDERING::renderingContext rc{&gl, nullptr};
  std::vector<std::uint8_t> pixels;
};

struct rgb {
  int r, g, b;
};

// A window of the runtime loop of a fixed size that draws its GUI itself, so that a frame
// can be read back before the swap; the loop loads the default textures as it makes it.
class readBackWindow : public JEV::SYSTEM::winMain {
 public:
  readBackWindow(JEV::SYSTEM::application* app, JEV::RENDERING::renderer* device,
                 const std::wstring& caption, int windowWidth, int windowHeight)
      : winMain(app, device, nullptr, false, true, L""), width(windowWidth), height(windowHeight) {
    setCaption(caption);
    setSize(width, height);
    renderGui = false;
  }

  bool init() override {
    handle = getHWnd();
    return true;
  }

  // The current frame, RGBA with the bottom row first.
  void readFrame(std::vector<std::uint8_t>& out) {
    using JEV::RENDERING::renderer;
    out.assign(size_t(width) * height * 4, 0);
    getRenderer()->readPixels(0, 0, width, height, renderer::PIXELDATA_RGBA,
                              renderer::DATA_UNSIGNED_BYTE, out.data());
  }

  // Pixel (x, y) of a frame read by readFrame, from the bottom left.
  rgb at(const std::vector<std::uint8_t>& frame, int x, int y) const {
    const std::uint8_t* p = frame.data() + (size_t(y) * width + size_t(x)) * 4;
    return rgb{p[0], p[1], p[2]};
  }

  std::atomic<JEV::PLATFORM::windowHandle> handle{0};

 private:
  int width, height;
};

// Runs the application's loop; closes the window if the frames never come, so that a broken
// display fails the test instead of hanging the suite. Returns the loop's value.
inline int runWatched(JEV::SYSTEM::application& app, readBackWindow& win) {
  std::atomic<bool> done{false};
  std::thread watchdog([&] {
    for (int i = 0; i < 300 && !done; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (!done && win.handle.load())
      JEV::PLATFORM::current().postMessage(win.handle.load(), JEV::PLATFORM::WM_CLOSE, 0, 0);
  });
  const int result = app.mainLoop();
  done = true;
  watchdog.join();
  return result;
}

}  // namespace testDisplay
