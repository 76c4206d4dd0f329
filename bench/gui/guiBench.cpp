// One frame of a window of 1,000 buttons in panels under a moving mouse: the widget under
// the mouse found, and the controller's update and render through the recording renderer
// (calls counted, not logged), against Dear ImGui building the same 1,000 buttons with
// the mouse at the same place and walking the draw lists it emits. Hit tests alone come
// last. Each jev3d button is a panel with a label as its caption, so the tree
// holds 2,040 widgets.
#include <benchmark/benchmark.h>
#include <imgui.h>

#include <string>
#include <vector>

#include "jev3d/gui/canvas.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/panel.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/application.h"
#include "jev3d/system/winMain.h"
#include "support/recordingRenderer.h"

using namespace JEV;

namespace {

constexpr int PANELS = 40;
constexpr int BUTTONS_PER_PANEL = 25;
constexpr int WIDTH = 1600;
constexpr int HEIGHT = 1000;
// Panels in an 8 x 5 grid; buttons in a 5 x 5 grid inside each.
constexpr float PANEL_W = 200, PANEL_H = 200, BUTTON_W = 36, BUTTON_H = 36;

// A mouse walking over the window, on buttons and between them, in window pixels with the
// origin at the bottom left. Both sides find what lies under it in each frame, as a
// window does on a mouse move.
void mouseAt(int step, float& x, float& y) {
  x = float((step * 37) % WIDTH);
  y = float((step * 53) % HEIGHT);
}

class benchWindow : public SYSTEM::winMain {
 public:
  benchWindow(SYSTEM::application* app, RENDERING::renderer* device)
      : winMain(app, device, nullptr, false, false, L"") {}
};

// The jev3d window: the controller built as the loop would, and the tree.
struct jev3dScene {
  jev3dScene() {
    device.keepCalls = false;
    getRenderingContext()->windowWidth = WIDTH;
    getRenderingContext()->windowHeight = HEIGHT;
    gui = dynamic_cast<GUI::guiController*>(win.getGui());
    gui->init(false, true, L"bench");
    for (int p = 0; p < PANELS; ++p) {
      GUI::panel* panel = gui->addPanel(gui->getDesktop());
      panel->setRect2D(float(p % 8) * PANEL_W, float(p / 8) * PANEL_H, PANEL_W - 4, PANEL_H - 4);
      for (int b = 0; b < BUTTONS_PER_PANEL; ++b) {
        GUI::panel* button = gui->addPanel(panel);
        button->setRect2D(4 + float(b % 5) * (BUTTON_W + 2), 4 + float(b / 5) * (BUTTON_H + 2),
                          BUTTON_W, BUTTON_H);
        button->adjustUV(48, 0);
        GUI::label* caption = gui->addLabel(button);
        caption->setCaption(L"Button " + std::to_wstring(p * BUTTONS_PER_PANEL + b), false);
        caption->setRect2D(0, 0, BUTTON_W, BUTTON_H);
        caption->getFlags().clearFlag(GUI::WF_PICKABLE);
        caption->setRedirect(button);
      }
    }
    // The first frame uploads every patch; what follows is the steady state.
    frame();
  }
  RENDERING::renderingContext* getRenderingContext() { return win.getRenderingContext(); }
  void frame() {
    gui->update();
    gui->render();
  }
  // Whether a widget lies under the mouse at `step` of its walk.
  bool hit(int step) {
    float x = 0, y = 0;
    mouseAt(step, x, y);
    return gui->getWidgetBelowMouse(x, y) != nullptr;
  }

  recordingRenderer device;
  SYSTEM::application app{L"", L""};
  benchWindow win{&app, &device};
  GUI::guiController* gui = nullptr;
};

void frameJev3d(benchmark::State& state) {
  jev3dScene scene;
  const long long before = scene.device.callCount;
  long hits = 0;
  int step = 0;
  for (auto _ : state) {
    hits += scene.hit(step++);
    scene.frame();
  }
  benchmark::DoNotOptimize(hits);
  state.counters["deviceCalls/frame"] =
      double(scene.device.callCount - before) / double(state.iterations());
  state.counters["widgets"] = scene.gui->getWidgetsCount();
}

// The two halves of a frame: the update pass runs at the update rate, the render pass at
// the frame rate.
void updateJev3d(benchmark::State& state) {
  jev3dScene scene;
  for (auto _ : state) scene.gui->update();
}

void renderJev3d(benchmark::State& state) {
  jev3dScene scene;
  for (auto _ : state) scene.gui->render();
}

void hitTestJev3d(benchmark::State& state) {
  jev3dScene scene;
  long hits = 0;
  int step = 0;
  for (auto _ : state) hits += scene.hit(step++);
  benchmark::DoNotOptimize(hits);
  state.counters["hit%"] = 100.0 * double(hits) / double(state.iterations());
}

// The same buttons in ImGui: 40 fixed windows of 25 buttons, one frame built and its draw
// lists walked as a back end would before handing them to the device.
void frameImGui(benchmark::State& state) {
  ImGui::CreateContext();
  ImGuiIO& io = ImGui::GetIO();
  io.DisplaySize = ImVec2(float(WIDTH), float(HEIGHT));
  io.DeltaTime = 1.0f / 60.0f;
  io.IniFilename = nullptr;
  unsigned char* pixels = nullptr;
  int w = 0, h = 0;
  io.Fonts->GetTexDataAsRGBA32(&pixels, &w, &h);
  std::vector<std::string> names, labels;
  for (int p = 0; p < PANELS; ++p) names.push_back("panel " + std::to_string(p));
  for (int b = 0; b < PANELS * BUTTONS_PER_PANEL; ++b)
    labels.push_back("Button " + std::to_string(b));
  long emitted = 0;
  int step = 0;
  auto build = [&] {
    // ImGui's origin is at the top left.
    float x = 0, y = 0;
    mouseAt(step++, x, y);
    io.MousePos = ImVec2(x, float(HEIGHT) - y);
    ImGui::NewFrame();
    for (int p = 0; p < PANELS; ++p) {
      ImGui::SetNextWindowPos(ImVec2(float(p % 8) * PANEL_W, float(p / 8) * PANEL_H));
      ImGui::SetNextWindowSize(ImVec2(PANEL_W - 4, PANEL_H - 4));
      ImGui::Begin(names[size_t(p)].c_str(), nullptr,
                   ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoScrollbar);
      for (int b = 0; b < BUTTONS_PER_PANEL; ++b) {
        if (b % 5) ImGui::SameLine();
        ImGui::Button(labels[size_t(p * BUTTONS_PER_PANEL + b)].c_str(),
                      ImVec2(BUTTON_W, BUTTON_H));
      }
      ImGui::End();
    }
    ImGui::Render();
    const ImDrawData* data = ImGui::GetDrawData();
    for (int l = 0; l < data->CmdListsCount; ++l) {
      const ImDrawList* list = data->CmdLists[l];
      for (const ImDrawCmd& cmd : list->CmdBuffer) emitted += long(cmd.ElemCount);
    }
  };
  build();
  for (auto _ : state) build();
  benchmark::DoNotOptimize(emitted);
  ImGui::DestroyContext();
}

}  // namespace

BENCHMARK(frameJev3d)->Name("frame1000buttons/jev3d")->Unit(benchmark::kMicrosecond);
BENCHMARK(frameImGui)->Name("frame1000buttons/imgui")->Unit(benchmark::kMicrosecond);
BENCHMARK(updateJev3d)->Name("update1000buttons/jev3d")->Unit(benchmark::kMicrosecond);
BENCHMARK(renderJev3d)->Name("render1000buttons/jev3d")->Unit(benchmark::kMicrosecond);
BENCHMARK(hitTestJev3d)->Name("hitTest1000buttons/jev3d")->Unit(benchmark::kNanosecond);
