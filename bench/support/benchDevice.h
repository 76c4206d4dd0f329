#pragma once

// One window and GL device for a whole benchmark run, of a fixed square size. `ok` is false
// when the platform gives no window or context; the benchmarks then skip.
#include <cstdint>

#include "jev3d/platform/platform.h"
#include "jev3d/renderer/renderingContext.h"

template <class GL>
struct benchDevice {
  static constexpr int windowSize = 256;

  explicit benchDevice(const wchar_t* title) {
    window = JEV::PLATFORM::current().createWindow(
        JEV::PLATFORM::windowDescriptor{
            title, JEV::PLATFORM::rect{0, 0, windowSize, windowSize}, {}},
        ignoreMessages);
    bool recreate = false;
    ok = window && gl.createContext(window, recreate) && gl.init();
    rc.windowWidth = windowSize;
    rc.windowHeight = windowSize;
    if (ok) gl.resetDevice(&rc);
  }

  JEV::PLATFORM::windowHandle window = 0;
  GL gl;
  JEV::RENDERING::renderingContext rc{&gl, nullptr};
  bool ok = false;

 private:
  static std::int64_t ignoreMessages(JEV::PLATFORM::windowHandle, unsigned, std::uint64_t,
                                     std::int64_t) {
    return 0;
  }
};
