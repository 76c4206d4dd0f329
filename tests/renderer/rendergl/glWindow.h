#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

#include "jev3d/platform/messages.h"
#include "jev3d/platform/platform.h"

// Window helpers of the GL tests.
inline std::int64_t ignoreMessages(JEV::PLATFORM::windowHandle, unsigned, std::uint64_t,
                                   std::int64_t) {
  return 0;
}

// A window's pixels exist once it is on the screen: wait for its first exposure. The bound
// only keeps a broken display from hanging the suite.
inline bool waitExposed(JEV::PLATFORM::platform& p) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < end) {
    JEV::PLATFORM::message m;
    while (p.peekMessage(m)) {
      if (m.msg == JEV::PLATFORM::WM_PAINT) return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}
