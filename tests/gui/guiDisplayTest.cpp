// A real window on the display: widgets drawn over a 3D scene, and a click posted to the
// window that changes a widget and, at the next frame, its pixels.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include "jev3d/gui/guiController.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/panel.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/resources/textureStorage.h"
#include "jev3d/system/application.h"
#include "jev3d/system/winMain.h"
#include "support/glDisplay.h"

using namespace JEV;
using namespace JEV::PLATFORM;
using JEV::RENDERING::renderer;

namespace {

constexpr int W = 240;
constexpr int H = 180;

using testDisplay::rgb;

// Draws a lit-free red quad in perspective as its scene, then the GUI itself so that the
// frame can be read back before the swap. The first frame posts a click on the button;
// the frame after the click closes the window.
class sceneWindow : public testDisplay::readBackWindow {
 public:
  sceneWindow(SYSTEM::application* app, renderer* device)
      : readBackWindow(app, device, L"jev3d widgets over a scene", W, H) {}

  void draw() override {
    auto* gui = dynamic_cast<GUI::guiController*>(getGui());
    if (!gui) return;
    if (!button) build(*gui);
    drawScene();
    gui->render();
    std::vector<std::uint8_t>& target = clicked ? after : before;
    readFrame(target);
    if (clicked) {
      checkedAfter = button->checked.cV();
      closeWindow();
    } else if (!clickPosted) {
      clickPosted = true;
      // Native coordinates: origin at the top left.
      const std::int64_t at = makeLParam(60, H - 50);
      current().postMessage(getHWnd(), WM_MOUSEMOVE, 0, at);
      current().postMessage(getHWnd(), WM_LBUTTONDOWN, 0, at);
      current().postMessage(getHWnd(), WM_LBUTTONUP, 0, at);
    }
  }

  void onClick(const SYSTEM::inputEvent*) {
    button->checked = true;
    button->setColorNormal(CORE::color(255, 40, 40, 255));
    clicked = true;
  }

  GUI::panel* button = nullptr;
  std::atomic<bool> clicked{false};
  bool clickPosted = false;
  // Read in the frame after the click: the widgets are gone with the window.
  bool checkedAfter = false;
  std::vector<std::uint8_t> before, after;

 private:
  void build(GUI::guiController& gui) {
    GUI::panel* bar = gui.addPanel(std::wstring(L"bar"), nullptr);
    bar->setRect2D(10, 10, 220, 80);
    button = gui.addPanel(std::wstring(L"button"), bar);
    button->setUseSchemaColor(false);
    button->setColorNormal(CORE::color(40, 220, 40, 255));
    button->setRect2D(20, 10, 60, 50);
    GUI::label* caption = gui.addLabel(std::wstring(L"caption"), bar);
    caption->setRect2D(120, 10, 80, 30);
    onClickDelegate = SYSTEM::inputEventDelegate(this, &sceneWindow::onClick);
    button->registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, onClickDelegate);
  }

  // A blue background and a red quad in perspective over the upper part of the window,
  // drawn with the GL state saved and restored around it, so that the device's copies of
  // the state stay true.
  void drawScene() {
    glViewport(0, 0, W, H);
    glClearColor(0.1f, 0.1f, 0.5f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glFrustum(-1, 1, -0.75, 0.75, 1, 10);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glDisable(GL_SCISSOR_TEST);
    glEnable(GL_DEPTH_TEST);
    glColor3f(0.9f, 0.1f, 0.1f);
    glBegin(GL_QUADS);
    glVertex3f(-2.0f, 0.2f, -2.0f);
    glVertex3f(2.0f, 0.2f, -2.0f);
    glVertex3f(2.0f, 1.5f, -3.0f);
    glVertex3f(-2.0f, 1.5f, -3.0f);
    glEnd();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
  }

  SYSTEM::inputEventDelegate onClickDelegate;
};

}  // namespace

TEST(guiOnDisplay, widgetsOverASceneChangeTheirPixelsAfterAClick) {
  SYSTEM::application app(L"", L"");
  RENDERING::renderGL device;
  sceneWindow win(&app, &device);
  app.addWin(&win);
  EXPECT_EQ(testDisplay::runWatched(app, win), 1);
  ASSERT_TRUE(win.clicked.load()) << "the click reached the widget";
  ASSERT_FALSE(win.before.empty());
  ASSERT_FALSE(win.after.empty());
  EXPECT_TRUE(win.checkedAfter);

  // The scene shows where no widget is: red quad above, blue background at the top edge
  // corners, and the bar's panel below.
  const rgb scene = win.at(win.before, W / 2, H - 40);
  EXPECT_GT(scene.r, 150);
  EXPECT_LT(scene.g, 80);
  const rgb sky = win.at(win.before, 5, H - 3);
  EXPECT_GT(sky.b, sky.r);
  const rgb bar = win.at(win.before, 210, 80);
  EXPECT_GT(bar.g, 100) << "the panel covers the scene";
  EXPECT_GT(bar.b, 100);

  // The button, green before the click, red at the next frame; the rest is unchanged.
  const rgb green = win.at(win.before, 60, 45);
  const rgb red = win.at(win.after, 60, 45);
  EXPECT_GT(green.g, green.r + 60);
  EXPECT_GT(red.r, red.g + 60);
  const rgb barAfter = win.at(win.after, 210, 80);
  EXPECT_EQ(barAfter.r, bar.r);
  EXPECT_EQ(barAfter.g, bar.g);
  EXPECT_EQ(barAfter.b, bar.b);
}
