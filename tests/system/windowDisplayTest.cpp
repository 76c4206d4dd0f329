#include <GL/glew.h>
#include <gtest/gtest.h>
#include <time.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "jev3d/platform/messages.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/application.h"
#include "jev3d/system/winMain.h"

using namespace JEV::SYSTEM;
using namespace JEV::PLATFORM;
using JEV::RENDERING::renderer;
using JEV::RENDERING::renderGL;

namespace {

// Closes a window from another thread if a test has not finished in time, so that a
// broken display fails the test instead of hanging the suite.
class watchdog {
 public:
  explicit watchdog(std::atomic<windowHandle>& w) : window(w), worker([this] { watch(); }) {}
  ~watchdog() {
    {
      std::lock_guard<std::mutex> g(lock);
      done = true;
    }
    wake.notify_all();
    worker.join();
  }
  bool fired() const { return firedFlag; }

 private:
  void watch() {
    std::unique_lock<std::mutex> g(lock);
    if (wake.wait_for(g, std::chrono::seconds(30), [this] { return done; })) return;
    firedFlag = true;
    current().postMessage(window.load(), WM_CLOSE, 0, 0);
  }
  std::atomic<windowHandle>& window;
  std::mutex lock;
  std::condition_variable wake;
  bool done = false;
  std::atomic<bool> firedFlag{false};
  std::thread worker;
};

double processCpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// Counts the pixels of an RGBA block more than one step away from the colour.
int pixelsOff(const std::vector<std::uint8_t>& px, int r, int g, int b) {
  int off = 0;
  for (size_t i = 0; i + 3 < px.size(); i += 4) {
    if (std::abs(px[i] - r) > 1 || std::abs(px[i + 1] - g) > 1 || std::abs(px[i + 2] - b) > 1) {
      ++off;
    }
  }
  return off;
}

// Clears to one colour, reads the frame back, asks for a resize, clears the new size to
// another colour, reads it back and closes.
class clearingWindow : public winMain {
 public:
  clearingWindow(application* app, renderer* device, bool tickAlways)
      : winMain(app, device, nullptr, false, tickAlways, L"") {
    setCaption(L"jev3d display test");
    setSize(200, 150);
  }

  bool init() override {
    handle = getHWnd();
    return true;
  }
  void resize(int w, int h) override { sizes.emplace_back(w, h); }
  void draw() override {
    ++draws;
    const int w = getRenderingContext()->windowWidth.cV();
    const int h = getRenderingContext()->windowHeight.cV();
    glViewport(0, 0, w, h);
    if (!resizeAndClose) {
      glClearColor(0.2f, 0.4f, 0.8f, 1.0f);
      glClear(GL_COLOR_BUFFER_BIT);
      return;
    }
    if (stage == 0) {
      glClearColor(0.2f, 0.4f, 0.8f, 1.0f);
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      first.assign(size_t(w) * h * 4, 0);
      getRenderer()->readPixels(0, 0, w, h, renderer::PIXELDATA_RGBA, renderer::DATA_UNSIGNED_BYTE,
                                first.data());
      firstSize = {w, h};
      setSize(260, 180);
      stage = 1;
    } else if (stage == 1 && w == 260 && h == 180) {
      glClearColor(1.0f, 0.0f, 0.0f, 1.0f);
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      second.assign(size_t(w) * h * 4, 0);
      getRenderer()->readPixels(0, 0, w, h, renderer::PIXELDATA_RGBA, renderer::DATA_UNSIGNED_BYTE,
                                second.data());
      stage = 2;
      closeWindow();
    }
  }

  bool resizeAndClose = true;
  std::atomic<windowHandle> handle{0};
  std::atomic<int> draws{0};
  int stage = 0;
  std::pair<int, int> firstSize{0, 0};
  std::vector<std::pair<int, int>> sizes;
  std::vector<std::uint8_t> first, second;
};

}  // namespace

TEST(windowOnDisplay, aRealWindowIsDrawnReadBackResizedAndClosed) {
  application app(L"", L"");
  renderGL device;
  clearingWindow win(&app, &device, true);
  app.addWin(&win);
  {
    watchdog guard(win.handle);
    EXPECT_EQ(app.mainLoop(), 1);
    EXPECT_FALSE(guard.fired());
  }
  EXPECT_EQ(win.stage, 2);
  EXPECT_EQ(win.firstSize, std::make_pair(200, 150));
  ASSERT_FALSE(win.first.empty());
  EXPECT_EQ(pixelsOff(win.first, 51, 102, 204), 0);
  ASSERT_FALSE(win.second.empty());
  EXPECT_EQ(pixelsOff(win.second, 255, 0, 0), 0);
  ASSERT_FALSE(win.sizes.empty());
  EXPECT_EQ(win.sizes.front(), std::make_pair(200, 150));
  EXPECT_EQ(win.sizes.back(), std::make_pair(260, 180));
  EXPECT_EQ(win.getHWnd(), 0u);
  EXPECT_FALSE(current().isWindow(win.handle.load()));
}

TEST(windowOnDisplay, anIdleWindowWithoutTickAlwaysSleeps) {
  application app(L"", L"");
  renderGL device;
  clearingWindow win(&app, &device, /*tickAlways=*/false);
  win.resizeAndClose = false;
  double cpu = -1;
  int drawsWhileIdle = -1;
  std::thread observer([&] {
    using namespace std::chrono;
    const auto giveUp = steady_clock::now() + seconds(20);
    // Wait for the first frames to be served and the window to be clean.
    while (steady_clock::now() < giveUp &&
           !(win.draws > 0 && !win.renderNeeded.cV() && !win.updateNeeded.cV())) {
      std::this_thread::sleep_for(milliseconds(20));
    }
    std::this_thread::sleep_for(milliseconds(200));
    const int draws = win.draws;
    const double start = processCpuSeconds();
    std::this_thread::sleep_for(seconds(2));
    cpu = processCpuSeconds() - start;
    drawsWhileIdle = win.draws - draws;
    current().postMessage(win.handle.load(), WM_CLOSE, 0, 0);
  });
  app.addWin(&win);
  EXPECT_EQ(app.mainLoop(), 1);
  observer.join();
  EXPECT_GE(win.draws, 1);
  EXPECT_EQ(drawsWhileIdle, 0);
  // Two seconds of a busy loop would be about 2 s; a sleeping process spends almost none.
  EXPECT_GE(cpu, 0.0);
  EXPECT_LT(cpu, 0.3);
  RecordProperty("idleCpuSeconds", std::to_string(cpu));
  std::printf("process CPU time over two idle seconds: %.4f s\n", cpu);
}
