#include "jev3d/system/winMain.h"

#include <gtest/gtest.h>

#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"
#include "support/tempDir.h"
#include "windowTestSupport.h"

using namespace JEV::SYSTEM;
using namespace JEV::PLATFORM;
using JEV::IO::XML::xmlDocument;
using JEV::IO::XML::xmlElement;

namespace {

class winMainTest : public scriptedPlatformTest {
 protected:
  application app{L"", L""};
};

}  // namespace

TEST_F(winMainTest, beforeItsWindowExistsAWindowOnlyStoresWhatItIsTold) {
  probeWindow win(&app, &device);
  win.setCaption(L"stored");
  win.setFullScreen(true, true);
  win.setPosition(10, 20);
  win.showButtonClose(false);
  EXPECT_EQ(win.getCaption(), L"stored");
  EXPECT_FALSE(win.isFullScreen());
  EXPECT_EQ(win.getPositionX(), 10.0f);
  EXPECT_EQ(win.getPositionY(), 20.0f);
  EXPECT_FALSE(win.isButtonClose());
  EXPECT_EQ(win.getRenderingContext()->windowWidth.cV(), 320);
  EXPECT_TRUE(platform.operations().empty());
  EXPECT_EQ(win.preferredUPS.cV(), 25);
  EXPECT_EQ(win.preferredFPS.cV(), 60);
  EXPECT_TRUE(win.updateNeeded.cV());
  EXPECT_TRUE(win.renderNeeded.cV());
}

TEST_F(winMainTest, positionsCountFromTheBottomLeftOfTheScreen) {
  probeWindow win(&app, &device);
  runWithWindow(app, platform, win, [&] {
    win.setRect2D(100, 50, 400, 300);
    rect r;
    ASSERT_TRUE(platform.getWindowRect(win.getHWnd(), r));
    EXPECT_EQ(r.x, 100);
    EXPECT_EQ(r.y, 1080 - 50 - 300);
    EXPECT_EQ(r.width, 400);
    EXPECT_EQ(r.height, 300);
    // Read back from the native window.
    platform.setWindowRect(win.getHWnd(), rect{30, 80, 200, 100});
    EXPECT_EQ(win.getPositionY(), 1080.0f - 80 - 100);
    EXPECT_EQ(win.getWidth(), 200.0f);
    const auto centre = win.getAbsoluteBaricenter();
    EXPECT_EQ(centre.x, 130.0f);
    EXPECT_EQ(centre.y, 900.0f + 50);
    win.setMousePosition(5, 10);
    EXPECT_EQ(platform.operations().back(), "setCursorPos 35 " + std::to_string(1080 - 910));
  });
}

TEST_F(winMainTest, fullScreenAskedAtConstructionIsEnteredWhenTheWindowAppears) {
  probeWindow win(&app, &device, true, /*fullScreen=*/true);
  auto* gui = new scriptedGui;
  win.setGui(gui);
  runWithWindow(app, platform, win, [&] {
    EXPECT_TRUE(win.isFullScreen());
    EXPECT_TRUE(gui->titleBarShown);
    EXPECT_EQ(platform.countOperations("setFullScreen 1 1"), 1);
    EXPECT_EQ(win.getRenderingContext()->windowWidth.cV(), 1920);
    EXPECT_EQ(win.getRenderingContext()->windowHeight.cV(), 1080);
    EXPECT_NE(std::find(device.calls.begin(), device.calls.end(), "resetDevice 1920 1080"),
              device.calls.end());
    win.setFullScreen(true, true);  // already: nothing
    EXPECT_EQ(platform.countOperations("setFullScreen"), 1);
    win.setFullScreen(false, false);
    EXPECT_FALSE(gui->titleBarShown);
    rect r;
    ASSERT_TRUE(platform.getWindowRect(win.getHWnd(), r));
    EXPECT_EQ(r.width, 320);  // the windowed rectangle is back
    EXPECT_EQ(r.height, 240);
  });
  // Erasing a full-screen window gives the screen back first.
  EXPECT_EQ(gui->inits, 1);
}

TEST_F(winMainTest, stateSavesToMainWindowAndTheCaptionIsNeverReadBack) {
  tempDir dir;
  probeWindow saved(&app, &device);
  auto* gui = new scriptedGui;
  gui->skin = 3;
  saved.setGui(gui);
  saved.setCaption(L"saved caption");
  saved.setRect2D(12, 34, 560, 470);
  saved.showButtonRestore(false);
  saved.showToolWindow(true);
  saved.setResizable(false);
  xmlDocument doc;
  ASSERT_TRUE(saved.saveToXML(&doc));
  ASSERT_TRUE(doc.writeToFile(dir.file("window.xml")));

  xmlDocument read;
  ASSERT_TRUE(read.readFromFile(dir.file("window.xml")));
  auto* e = dynamic_cast<xmlElement*>(read.findNode(L"MAIN_WINDOW"));
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->getAttributesCount(), 11);
  EXPECT_EQ(e->getAttributeValueW(L"CAPTION"), L"saved caption");

  probeWindow restored(&app, &device);
  auto* gui2 = new scriptedGui;
  restored.setGui(gui2);
  ASSERT_TRUE(restored.openFromXML(*e));
  EXPECT_EQ(gui2->skin, 3);
  EXPECT_EQ(restored.getPositionX(), 12.0f);
  EXPECT_EQ(restored.getPositionY(), 34.0f);
  EXPECT_EQ(restored.getWidth(), 560.0f);
  EXPECT_EQ(restored.getHeight(), 470.0f);
  EXPECT_TRUE(restored.isButtonClose());
  EXPECT_FALSE(restored.isButtonRestore());
  EXPECT_TRUE(restored.isButtonMinimized());
  EXPECT_TRUE(restored.isToolWindow());
  EXPECT_FALSE(restored.isResizable());
  EXPECT_EQ(restored.getCaption(), L"JEV Window");
}

TEST_F(winMainTest, openingAnElementWithoutUsableAttributesChangesNothing) {
  probeWindow win(&app, &device);
  xmlElement e(L"MAIN_WINDOW");
  EXPECT_TRUE(win.openFromXML(e));
  e.setAttribute(L"WIDTH", L"wide");
  e.setAttribute(L"X", L"12abc");
  e.setAttribute(L"TOOLWIN", 1);
  EXPECT_TRUE(win.openFromXML(e));
  EXPECT_EQ(win.getWidth(), 320.0f);
  EXPECT_EQ(win.getPositionX(), 0.0f);
  EXPECT_TRUE(win.isToolWindow());
}

TEST_F(winMainTest, cursorsAndAbsoluteHandlersFollowTheirRules) {
  probeWindow win(&app, &device);
  win.setMouseCursor(CURSOR_HAND);
  win.setMouseCursor(CURSOR_HAND);  // equal: previous stays the arrow
  EXPECT_EQ(win.getPreviousMouseCursor(), CURSOR_ARROW);
  win.setMouseCursor(CURSOR_IBEAM);
  EXPECT_EQ(win.getPreviousMouseCursor(), CURSOR_HAND);
  win.setPreviousMouseCursor();
  EXPECT_EQ(win.getMouseCursor(), CURSOR_HAND);
  EXPECT_EQ(win.getPreviousMouseCursor(), CURSOR_HAND);

  struct handler {
    void on(const inputEvent*) {}
    void other(const inputEvent*) {}
  } h;
  inputEventDelegate a(&h, &handler::on), b(&h, &handler::other);
  win.registerAbsoluteInputEventCallBack(MOUSE_LEFT_CLICK, a);
  win.registerAbsoluteInputEventCallBack(MOUSE_LEFT_CLICK, b);
  win.registerAbsoluteInputEventCallBack(MOUSE_LEFT_CLICK, a);
  win.registerAbsoluteInputEventCallBack(EVENT_TYPE_COUNT, a);  // ignored
  inputEventDelegate again(&h, &handler::on);
  win.unRegisterAbsoluteInputEventCallBack(MOUSE_LEFT_CLICK, again);
  const auto& list = win.getAbsoluteCallbacks(MOUSE_LEFT_CLICK);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_TRUE(list.front().equals(b));
  EXPECT_TRUE(list.back().equals(a));
  EXPECT_TRUE(win.getAbsoluteCallbacks(EVENT_TYPE_COUNT).empty());

  win.addNotification(std::wstring(100, L'x').c_str());
  EXPECT_EQ(win.getNotificationTip().size(), 63u);
  win.removeNotification();
  EXPECT_FALSE(win.hasNotification());
}
