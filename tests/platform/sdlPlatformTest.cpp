#include "jev3d/platform/sdlPlatform.h"

#include <SDL2/SDL.h>
#include <gtest/gtest.h>

#include <cstring>

#include <chrono>
#include <thread>
#include <vector>

#include "jev3d/platform/messages.h"

using namespace JEV::PLATFORM;

namespace {

constexpr unsigned WM_TEST_DONE = 0x400;
std::vector<message> delivered;

std::int64_t recordingProcedure(windowHandle w, unsigned msg, std::uint64_t wp, std::int64_t lp) {
  delivered.push_back(message{w, msg, wp, lp});
  return 0;
}

// Pumps until a message satisfying `want` was delivered; the bound only keeps a broken
// display from hanging the suite.
template <class F>
bool pumpUntil(platform& p, F want) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < end) {
    message m;
    while (p.peekMessage(m)) {
      p.dispatchMessage(m);
      if (want(m)) return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

}  // namespace

TEST(sdlPlatform, windowIsMadeHiddenShownResizedAndDestroyed) {
  platform& p = current();
  delivered.clear();
  windowDescriptor d;
  d.caption = L"jev3d \x00e9t\x00e9";
  d.area = rect{50, 60, 160, 120};
  const windowHandle w = p.createWindow(d, recordingProcedure);
  ASSERT_NE(w, 0u);
  EXPECT_TRUE(p.isWindow(w));
  int marker = 0;
  p.setUserData(w, &marker);
  EXPECT_EQ(p.getUserData(w), &marker);

  p.showWindow(w, SW_SHOW);
  EXPECT_TRUE(pumpUntil(p, [&](const message& m) { return m.msg == WM_SHOWWINDOW; }));

  ASSERT_TRUE(p.setWindowRect(w, rect{50, 60, 240, 180}));
  EXPECT_TRUE(pumpUntil(p, [&](const message& m) {
    return m.msg == WM_SIZE && lowWord(m.lParam) == 240 && highWord(m.lParam) == 180;
  }));
  rect area;
  ASSERT_TRUE(p.getWindowRect(w, area));
  EXPECT_EQ(area.width, 240);
  EXPECT_EQ(area.height, 180);

  EXPECT_TRUE(p.destroyWindow(w));
  EXPECT_FALSE(p.isWindow(w));
  EXPECT_FALSE(p.postMessage(w, WM_PAINT, 0, 0));
}

TEST(sdlPlatform, postedTicksWakeTheWaitAndDoNotFloodTheQueue) {
  platform& p = current();
  delivered.clear();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"ticks", rect{0, 0, 64, 64}, {}}, recordingProcedure);
  ASSERT_NE(w, 0u);
  message m;
  while (p.peekMessage(m)) p.dispatchMessage(m);

  // Far more ticks than SDL's queue holds: only one of each kind may wait at a time.
  std::thread poster([&] {
    for (int i = 0; i < 100000; ++i) p.postMessage(w, WM_TICK_FRAME, 0, 0);
    p.postMessage(w, WM_TEST_DONE, 1, 2);
  });
  int frames = 0;
  bool done = false;
  while (!done && p.getMessage(m)) {
    if (m.window != w) continue;
    if (m.msg == WM_TICK_FRAME) ++frames;
    if (m.msg == WM_TEST_DONE) {
      EXPECT_EQ(m.wParam, 1u);
      EXPECT_EQ(m.lParam, 2);
      done = true;
    }
  }
  poster.join();
  EXPECT_TRUE(done);
  EXPECT_GE(frames, 1);
  EXPECT_TRUE(p.destroyWindow(w));
}

TEST(sdlPlatform, timerExpiresThroughTheQueueUntilKilled) {
  platform& p = current();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"timer", rect{0, 0, 64, 64}, {}}, recordingProcedure);
  ASSERT_NE(w, 0u);
  static int expiries = 0;
  expiries = 0;
  ASSERT_TRUE(p.setTimer(w, 2, 10, [](windowHandle, unsigned id) {
    if (id == 2) ++expiries;
  }));
  message m;
  while (expiries < 2 && p.getMessage(m)) p.dispatchMessage(m);
  EXPECT_EQ(expiries, 2);
  EXPECT_TRUE(p.killTimer(w, 2));
  EXPECT_FALSE(p.killTimer(w, 2));
  EXPECT_TRUE(p.destroyWindow(w));
}

namespace {

// Delivers one SDL event to the platform and returns the input messages it became; the
// window system's own news of showing, exposing and focusing is left out.
std::vector<message> translated(platform& p, SDL_Event e) {
  message m;
  while (p.peekMessage(m)) {
  }
  SDL_PushEvent(&e);
  std::vector<message> out;
  while (p.peekMessage(m)) {
    if (m.msg == WM_SHOWWINDOW || m.msg == WM_PAINT || m.msg == WM_ACTIVATE ||
        m.msg == WM_WINDOWPOSCHANGED || m.msg == WM_SIZE) {
      continue;
    }
    out.push_back(m);
  }
  return out;
}

}  // namespace

TEST(sdlPlatform, sdlEventsBecomeTheWindowProcedureMessages) {
  platform& p = current();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"events", rect{0, 0, 200, 100}, {}}, recordingProcedure);
  ASSERT_NE(w, 0u);
  p.showWindow(w, SW_SHOW);
  const auto id = static_cast<Uint32>(w);

  SDL_Event key{};
  key.type = SDL_KEYDOWN;
  key.key.windowID = id;
  key.key.keysym.sym = SDLK_a;
  key.key.keysym.scancode = SDL_SCANCODE_A;
  auto out = translated(p, key);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].msg, WM_KEYDOWN);
  EXPECT_EQ(out[0].wParam, std::uint64_t('A'));
  EXPECT_EQ(out[0].window, w);

  key.key.keysym.sym = SDLK_ESCAPE;  // also a character, as editors expect
  key.key.keysym.scancode = SDL_SCANCODE_ESCAPE;
  out = translated(p, key);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[1].msg, WM_CHAR);
  EXPECT_EQ(out[1].wParam, std::uint64_t(VK_ESCAPE));

  key.type = SDL_KEYUP;
  key.key.keysym.sym = SDLK_RALT;
  key.key.keysym.scancode = SDL_SCANCODE_RALT;
  out = translated(p, key);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].msg, WM_KEYUP);
  EXPECT_EQ(out[0].wParam, std::uint64_t(VK_MENU));

  SDL_Event text{};
  text.type = SDL_TEXTINPUT;
  text.text.windowID = id;
  std::strcpy(text.text.text, "a\xC3\xA9");
  out = translated(p, text);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].msg, WM_CHAR);
  EXPECT_EQ(out[0].wParam, std::uint64_t('a'));
  EXPECT_EQ(out[1].wParam, 0xE9u);

  SDL_Event motion{};
  motion.type = SDL_MOUSEMOTION;
  motion.motion.windowID = id;
  motion.motion.x = 10;
  motion.motion.y = 20;
  out = translated(p, motion);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].msg, WM_MOUSEMOVE);
  EXPECT_EQ(lowWordSigned(out[0].lParam), 10);
  EXPECT_EQ(highWordSigned(out[0].lParam), 20);

  // A press somewhere the pointer was not seen moving to brings its move first.
  SDL_Event button{};
  button.type = SDL_MOUSEBUTTONDOWN;
  button.button.windowID = id;
  button.button.button = SDL_BUTTON_LEFT;
  button.button.clicks = 1;
  button.button.x = 30;
  button.button.y = 40;
  out = translated(p, button);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].msg, WM_MOUSEMOVE);
  EXPECT_EQ(out[1].msg, WM_LBUTTONDOWN);
  EXPECT_EQ(highWordSigned(out[1].lParam), 40);
  // The press raised the window and captured the real pointer, which may report moves of
  // its own from here on: only the last message counts.
  button.type = SDL_MOUSEBUTTONUP;
  out = translated(p, button);
  ASSERT_FALSE(out.empty());
  EXPECT_EQ(out.back().msg, WM_LBUTTONUP);
  button.type = SDL_MOUSEBUTTONDOWN;
  button.button.button = SDL_BUTTON_RIGHT;
  button.button.clicks = 2;
  out = translated(p, button);
  ASSERT_FALSE(out.empty());
  EXPECT_EQ(out.back().msg, WM_RBUTTONDBLCLK);
  for (const message& m : out) EXPECT_TRUE(m.msg == WM_MOUSEMOVE || &m == &out.back());

  SDL_Event wheel{};
  wheel.type = SDL_MOUSEWHEEL;
  wheel.wheel.windowID = id;
  wheel.wheel.y = -2;
  out = translated(p, wheel);
  ASSERT_FALSE(out.empty());
  EXPECT_EQ(out.back().msg, WM_MOUSEWHEEL);
  EXPECT_EQ(static_cast<std::int16_t>(out.back().wParam >> 16), -240);

  SDL_Event close{};
  close.type = SDL_WINDOWEVENT;
  close.window.windowID = id;
  close.window.event = SDL_WINDOWEVENT_CLOSE;
  out = translated(p, close);
  ASSERT_FALSE(out.empty());
  EXPECT_EQ(out.back().msg, WM_CLOSE);

  // Nothing reaches a window that is gone, and the process's quit event is nobody's.
  SDL_Event quit{};
  quit.type = SDL_QUIT;
  for (const message& m : translated(p, quit)) EXPECT_EQ(m.msg, WM_MOUSEMOVE);
  EXPECT_TRUE(p.destroyWindow(w));
  EXPECT_TRUE(translated(p, key).empty());
}
