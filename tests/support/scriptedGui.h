#pragma once

#include <string>
#include <vector>

#include "jev3d/system/mutex.h"
#include "jev3d/system/windowGui.h"

// A widget layer of rectangles, for tests of the window procedure: widgets are opaque
// addresses, the hit test is the first rectangle containing the point, and the lock is
// counted.
class scriptedGui : public JEV::SYSTEM::windowGui {
 public:
  struct region {
    float x0, y0, x1, y1;
    JEV::GUI::widget* widget;
  };

  // Stand-ins for widgets; never dereferenced.
  static JEV::GUI::widget* fake(int i) {
    static char storage[16];
    return reinterpret_cast<JEV::GUI::widget*>(&storage[i]);
  }

  bool init(bool, bool, const std::wstring&) override {
    ++inits;
    return true;
  }
  void update() override { ++updates; }
  void render() override { ++renders; }
  bool discard() override {
    ++discards;
    return true;
  }
  bool waitGuiMutex(unsigned long ms) override {
    const bool owned = lock.wait(ms) == JEV::SYSTEM::WAIT_OBJECT_0;
    if (owned) ++locks;
    return owned;
  }
  void releaseGuiMutex() override { lock.release(); }
  JEV::GUI::widget* getWidgetBelowMouse(float x, float y) override {
    for (const region& r : regions) {
      if (x >= r.x0 && x < r.x1 && y >= r.y0 && y < r.y1) return r.widget;
    }
    return nullptr;
  }
  JEV::GUI::widget* getFocusedWidget() override { return focused; }
  JEV::GUI::widget* getRootWidget() override { return root; }
  int getSkin() override { return skin; }
  void setSkin(int s) override { skin = s; }
  void showFullScreenTitleBar(bool show) override { titleBarShown = show; }
  void refreshFullScreenTitleBar() override { ++titleBarRefreshes; }
  void registerInputEventCallBack(JEV::SYSTEM::EVENT_TYPE,
                                  JEV::SYSTEM::inputEventDelegate&) override {}
  void unRegisterInputEventCallBack(JEV::SYSTEM::EVENT_TYPE,
                                    JEV::SYSTEM::inputEventDelegate&) override {}
  void registerDropFileEventCallBack(JEV::SYSTEM::dropFileEventDelegate&) override {}
  void unRegisterDropFileEventCallBack(JEV::SYSTEM::dropFileEventDelegate&) override {}

  std::vector<region> regions;
  JEV::GUI::widget* focused = nullptr;
  JEV::GUI::widget* root = fake(15);
  int skin = 1;
  bool titleBarShown = false;
  int inits = 0, updates = 0, renders = 0, discards = 0, locks = 0, titleBarRefreshes = 0;
  JEV::SYSTEM::mutex lock;
};
