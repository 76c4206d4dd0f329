#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "jev3d/platform/messages.h"
#include "jev3d/platform/scriptedPlatform.h"
#include "jev3d/system/application.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/winMain.h"
#include "support/recordingRenderer.h"
#include "support/scriptedGui.h"

// A window whose hooks write to a log that tests read.
class probeWindow : public JEV::SYSTEM::winMain {
 public:
  probeWindow(JEV::SYSTEM::application* app, JEV::RENDERING::renderer* device,
              bool tickAlways = true, bool fullScreen = false)
      : winMain(app, device, nullptr, fullScreen, tickAlways, L"") {
    setSize(320, 240);
  }

  void note(const std::string& s) {
    std::lock_guard<std::mutex> g(logLock);
    entries.push_back(s);
  }
  std::vector<std::string> log() {
    std::lock_guard<std::mutex> g(logLock);
    return entries;
  }
  int count(const std::string& entry) {
    std::lock_guard<std::mutex> g(logLock);
    return static_cast<int>(std::count(entries.begin(), entries.end(), entry));
  }

  bool init() override {
    note("init");
    return onInit ? onInit() : true;
  }
  bool update() override {
    note("update");
    if (onUpdate) onUpdate();
    return true;
  }
  void draw() override {
    note("draw");
    if (onDraw) onDraw();
  }
  void resize(int w, int h) override {
    note("resize " + std::to_string(w) + " " + std::to_string(h));
  }
  void minimized() override { note("minimized"); }
  void maximized() override { note("maximized"); }
  void restored() override { note("restored"); }
  void startScreenSaver() override { note("screenSaver"); }
  void startMonitorPower() override { note("monitorPower"); }
  void wndProcMsg(unsigned msg, std::uint64_t w, std::int64_t l) override {
    note("wndProcMsg " + std::to_string(msg) + " " + std::to_string(w) + " " + std::to_string(l));
  }
  void windowIsClosing(bool& closing) override {
    if (veto) closing = false;
  }
  bool deInit() override {
    note("deInit");
    return winMain::deInit();
  }

  std::function<bool()> onInit;
  std::function<void()> onUpdate;
  std::function<void()> onDraw;
  bool veto = false;

 private:
  std::mutex logLock;
  std::vector<std::string> entries;
};

// One queued event, as tests compare it.
struct queuedEvent {
  JEV::SYSTEM::EVENT_TYPE type;
  JEV::GUI::widget* target;
  float x, y, deltaX, deltaY, wheel;
  int keyCode, charCode;
  unsigned message;
};

// Takes the window's queue.
inline std::vector<queuedEvent> takeEvents(JEV::SYSTEM::winMain& w) {
  std::vector<queuedEvent> out;
  auto& q = w.getInputContext()->events;
  for (auto& e : q) {
    const JEV::SYSTEM::inputEvent& v = *e.second;
    EXPECT_EQ(e.first, v.type);
    EXPECT_EQ(v.hWnd, reinterpret_cast<void*>(w.getHWnd()));
    out.push_back(queuedEvent{v.type, v.target, v.x, v.y, v.deltaX, v.deltaY, v.wheel, v.keyCode,
                              v.charCode, v.message});
  }
  q.clear();
  return out;
}

inline std::vector<JEV::SYSTEM::EVENT_TYPE> typesOf(const std::vector<queuedEvent>& events) {
  std::vector<JEV::SYSTEM::EVENT_TYPE> t;
  for (const auto& e : events) t.push_back(e.type);
  return t;
}

inline void pumpAll(JEV::PLATFORM::scriptedPlatform& p) {
  JEV::PLATFORM::message m;
  while (p.peekMessage(m)) p.dispatchMessage(m);
}

// Queues the windows and runs the loop. Each time the loop is about to wait for a
// message, `step` runs on the loop's thread (so it must not wait for the loop itself);
// once it returns true, every live window is asked to close and the loop returns.
inline void runUntil(JEV::SYSTEM::application& app, JEV::PLATFORM::scriptedPlatform& p,
                     const std::vector<probeWindow*>& queued, const std::function<bool()>& step) {
  bool finished = false;
  p.setIdleHook([&](JEV::PLATFORM::scriptedPlatform& sp) {
    if (finished || !step()) return;
    finished = true;
    for (JEV::SYSTEM::winMain* w : app.getWindows()) {
      if (auto* probe = dynamic_cast<probeWindow*>(w)) probe->veto = false;
      sp.postMessage(w->getHWnd(), JEV::PLATFORM::WM_CLOSE, 0, 0);
    }
  });
  for (probeWindow* w : queued) app.addWin(w);
  EXPECT_EQ(app.mainLoop(), 1);
  p.setIdleHook(nullptr);
  EXPECT_TRUE(finished);
}

inline bool isLive(JEV::SYSTEM::application& app, JEV::SYSTEM::winMain* w) {
  const auto live = app.getWindows();
  return std::find(live.begin(), live.end(), w) != live.end();
}

// Runs `body` once on the loop's thread as soon as `w` is served and the loop waits.
inline void runWithWindow(JEV::SYSTEM::application& app, JEV::PLATFORM::scriptedPlatform& p,
                          probeWindow& w, const std::function<void()>& body) {
  runUntil(app, p, {&w}, [&] {
    if (!isLive(app, &w)) return false;
    body();
    return true;
  });
}

// Installs a scripted platform for one test.
class scriptedPlatformTest : public ::testing::Test {
 protected:
  void SetUp() override { JEV::PLATFORM::setCurrent(&platform); }
  // Not in TearDown: the windows of a derived fixture tick until they are destroyed,
  // which is after TearDown.
  ~scriptedPlatformTest() override { JEV::PLATFORM::setCurrent(nullptr); }

  JEV::PLATFORM::scriptedPlatform platform;
  recordingRenderer device;
};
