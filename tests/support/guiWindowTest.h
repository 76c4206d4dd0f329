#pragma once

// A window of 320 x 240 with its GUI controller on the scripted platform. Each test body
// runs on the loop's thread through `run` and drives input through the window procedure,
// then runs the controller's ticks itself as the loop would.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

#include "jev3d/gui/guiController.h"
#include "jev3d/platform/messages.h"
#include "system/windowTestSupport.h"

class guiWindowTest : public scriptedPlatformTest {
 protected:
  void SetUp() override {
    scriptedPlatformTest::SetUp();
    // Every main window comes with its controller.
    gui = dynamic_cast<JEV::GUI::guiController*>(win.getGui());
    ASSERT_NE(gui, nullptr);
  }
  std::int64_t send(unsigned msg, std::uint64_t w = 0, std::int64_t l = 0) {
    return platform.send(win.getHWnd(), msg, w, l);
  }
  // Window coordinates, origin at the bottom left, as the GUI sees them.
  void moveTo(float x, float y) {
    lastX = int(x);
    lastY = 240 - int(y);
    send(JEV::PLATFORM::WM_MOUSEMOVE, 0, JEV::PLATFORM::makeLParam(lastX, lastY));
  }
  void press(unsigned msg) { send(msg, 0, JEV::PLATFORM::makeLParam(lastX, lastY)); }
  void run(const std::function<void()>& body) { runWithWindow(app, platform, win, body); }

  JEV::SYSTEM::application app{L"", L""};
  probeWindow win{&app, &device};
  JEV::GUI::guiController* gui = nullptr;
  int lastX = 0;
  int lastY = 0;
};
