// A translate-rotate-scale manipulator drawn by the OpenGL back end in a real window, and
// a drag of its x arrow scripted through the window's mouse messages: the selected
// vertices of a mesh node follow the handle, and undo puts them back.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/manipulator/selectionManipulation.h"
#include "jev3d/editing/manipulator/trsManipulator.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "support/glDisplay.h"
#include "support/meshes.h"

using namespace JEV;
using namespace JEV::PLATFORM;
using namespace JEV::MESH::EDITING::MANIPULATOR;
using p3 = MATH::point3<float>;
using matrix4f = MATH::matrix4<float>;

namespace {

constexpr int W = 320;
constexpr int H = 240;
constexpr int DRAG_PIXELS = 60;

// Draws a grid with its middle columns selected and a manipulator on the selection, under a
// camera that looks at them from the front. The first frame posts a right-button drag of
// the x arrow to the window; the frame after the drag ended undoes it and closes.
class dragWindow : public testDisplay::readBackWindow {
 public:
  dragWindow(SYSTEM::application* app, RENDERING::renderer* device)
      : readBackWindow(app, device, L"jev3d manipulator drag", W, H) {}

  void draw() override {
    if (!built) build();
    beginFrame();
    camera.render(getRenderingContext());
    if (!posted) {
      posted = true;
      postDrag();
      readFrame(firstFrame);
      const testDisplay::rgb c = at(firstFrame, int(pressPixel.x), int(pressPixel.y));
      tipColour = p3(float(c.r), float(c.g), float(c.b));
    } else if (stack.getUndoSize() == 1 && !undone) {
      undone = true;
      moved = positions();
      handleTravel = manip.getPosition() - startHandle;
      travelPixels = pixelOf(manip.getPosition() + tipOffset) - pressPixel;
      stack.undoLast();
      restored = positions();
      closeWindow();
      return;
    }
    // Frames until the drag has come through.
    refresh();
  }

  std::vector<p3> positions() const {
    std::vector<p3> out;
    const MESH::editMesh& m = node.getEditMesh();
    for (unsigned v = 0; v < m.vn(); ++v) out.push_back(m.vPos(v));
    return out;
  }

  MESH::EDITING::editMeshNode node;
  trsManipulator manip;
  SYSTEM::undoRedoStack stack{1u << 20};
  selectionManipulation edit{&manip, &node, &stack};
  std::vector<p3> start, moved, restored;
  std::vector<std::uint8_t> firstFrame;
  p3 tipColour;
  p3 startHandle, handleTravel, travelPixels, pressPixel, tipOffset;
  bool built = false, posted = false, undone = false, picked = false;

 private:
  void build() {
    built = true;
    MESH::editMesh& m = node.getEditMesh();
    testMeshes::makeGrid(m, 6, 4);
    testMeshes::finishMesh(m);
    m.translate(p3(-3, -2, 0));
    for (unsigned v = 0; v < m.vn(); ++v)
      if (v % 7 >= 2 && v % 7 <= 4) m.selectVert(v);
    start = positions();
    // 60 degrees high, five units back: the grid fills the middle of the window.
    const float n = 1.f, f = 100.f, cot = 1.f / std::tan(float(M_PI) / 6.f);
    camera.projection = matrix4f(cot * float(H) / float(W), 0, 0, 0, 0, cot, 0, 0, 0, 0,
                                 (f + n) / (f - n), 1, 0, 0, -2 * f * n / (f - n), 0);
    matrix4f view;
    view[14] = 6.f;
    camera.view = view;
    viewport.set(0, 0, W, H, false, RENDERING::RENDERSTATE::viewportstate::VIEWPORT_FREE);
    viewport.connect(&camera, false);
    node.connect(&viewport, false);
    manip.connect(&viewport, false);
    manip.screenSize = 60.f;
    edit.placeOnSelection();
    startHandle = manip.getPosition();
    manip.registerCallbacks(this);
  }

  void beginFrame() {
    RENDERING::renderer* device = getRenderer();
    auto& target = getRenderingContext()->getRenderStateStack()->getCurrentRenderTargetState();
    target.clearColour = CORE::color(0, 0, 0, 255);
    device->beginScene(target);
    device->clear(target);
  }

  p3 pixelOf(const p3& point) const {
    p3 window;
    manip.projectPoint(point, window);
    return window;
  }

  // Presses at nine tenths of the x arrow (beyond the rings) and drags right.
  void postDrag() {
    tipOffset = p3(0.9f * manip.getSize(), 0, 0);
    pressPixel = pixelOf(manip.getPosition() + tipOffset);
    const int x = int(pressPixel.x + 0.5f), y = H - int(pressPixel.y + 0.5f);
    pressPixel = p3(float(x), float(H - y), pressPixel.z);
    current().postMessage(getHWnd(), WM_MOUSEMOVE, 0, makeLParam(x, y));
    current().postMessage(getHWnd(), WM_RBUTTONDOWN, 0, makeLParam(x, y));
    for (int dx = 1; dx <= DRAG_PIXELS; dx += 10)
      current().postMessage(getHWnd(), WM_MOUSEMOVE, 0, makeLParam(x + dx, y));
    current().postMessage(getHWnd(), WM_MOUSEMOVE, 0, makeLParam(x + DRAG_PIXELS, y));
    current().postMessage(getHWnd(), WM_RBUTTONUP, 0, makeLParam(x + DRAG_PIXELS, y));
  }

  RENDERING::cameraState camera;
  RENDERING::RENDERSTATE::viewportstate viewport;
};

}  // namespace

TEST(manipulatorOnDisplay, draggingTheXArrowMovesTheSelectionByTheHandlesTravelAndUndoRestores) {
  SYSTEM::application app(L"", L"");
  RENDERING::renderGL device;
  dragWindow win(&app, &device);
  app.addWin(&win);
  EXPECT_EQ(testDisplay::runWatched(app, win), 1);
  ASSERT_TRUE(win.undone) << "the drag ended with one undo record";
  ASSERT_EQ(win.moved.size(), win.start.size());

  // The press landed on the drawn arrow, red among the handles.
  EXPECT_GT(win.tipColour.x, 20.f);
  EXPECT_GT(win.tipColour.x, 2.f * win.tipColour.y);
  EXPECT_GT(win.tipColour.x, 2.f * win.tipColour.z);
  // The handle went right along x and followed the mouse to within a pixel.
  EXPECT_GT(win.handleTravel.x, 0.5f);
  EXPECT_NEAR(win.handleTravel.y, 0.f, 1e-5f);
  EXPECT_NEAR(win.handleTravel.z, 0.f, 1e-5f);
  EXPECT_NEAR(win.travelPixels.x, float(DRAG_PIXELS), 1.5f);
  EXPECT_NEAR(win.travelPixels.y, 0.f, 1.f);
  // Selected vertices moved by exactly the handle's travel, the others not at all.
  const MESH::editMesh& m = win.node.getEditMesh();
  for (unsigned v = 0; v < m.vn(); ++v) {
    const p3 expected = win.start[v] + (m.isVertSelected(v) ? win.handleTravel : p3());
    EXPECT_LT((win.moved[v] - expected).norm(), 1e-4f) << v;
    EXPECT_EQ(win.restored[v], win.start[v]) << v;
  }
  EXPECT_EQ(m.checkInvariants(), "");
}
