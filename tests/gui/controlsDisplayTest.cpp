// One of each standard control on a panel in a real window, in the default skin: chosen
// pixels of the frame read back show each control's tiles, marks, cursor and bar.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "jev3d/gui/button.h"
#include "jev3d/gui/checkbox.h"
#include "jev3d/gui/combobox.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/panel.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/gui/progressbar.h"
#include "jev3d/gui/radiobutton.h"
#include "jev3d/gui/scrollbar.h"
#include "jev3d/gui/separator.h"
#include "jev3d/gui/slider.h"
#include "jev3d/gui/tab.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/resources/textureStorage.h"
#include "jev3d/system/application.h"
#include "jev3d/system/winMain.h"
#include "support/glDisplay.h"

using namespace JEV;
using namespace JEV::GUI;
using namespace JEV::PLATFORM;
using JEV::RENDERING::renderer;

namespace {

constexpr int W = 320;
constexpr int H = 240;
// Frames drawn before the one read back, so that uploads and the skin have settled.
constexpr int settleFrames = 3;

using testDisplay::rgb;

class controlsWindow : public testDisplay::readBackWindow {
 public:
  controlsWindow(SYSTEM::application* app, renderer* device)
      : readBackWindow(app, device, L"jev3d standard controls", W, H) {}

  void draw() override {
    auto* gui = dynamic_cast<guiController*>(getGui());
    if (!gui) return;
    if (!board) build(*gui);
    glViewport(0, 0, W, H);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    gui->render();
    if (++frames < settleFrames) {
      renderNeeded = true;
      updateNeeded = true;
      return;
    }
    readFrame(pixels);
    buttonColor = push->getCurrentColor();
    boardColor = board->getCurrentColor();
    drawn = true;
    closeWindow();
  }

  rgb at(int x, int y) const { return readBackWindow::at(pixels, x, y); }

  std::atomic<bool> drawn{false};
  std::vector<std::uint8_t> pixels;
  CORE::color buttonColor, boardColor;

 private:
  template <class C>
  C* add(guiController& gui, WIDGET_CLASS cls, const wchar_t* id, float x, float y, float w,
         float h) {
    auto* c = static_cast<C*>(gui.add(cls, id, board));
    c->setRect2D(x, y, w, h);
    return c;
  }

  void build(guiController& gui) {
    gui.setSkin(GUI_DEFAULT_SKIN);
    board = gui.addPanel(std::wstring(L"board"), nullptr);
    board->setMargin(0, 0, 0, 0);
    board->setRect2D(0, 0, W, H);
    push = add<button>(gui, WC_BUTTON, L"push", 10, 200, 80, 24);
    add<checkbox>(gui, WC_CHECKBOX, L"on", 100, 200, 100, 20)->checked = true;
    add<checkbox>(gui, WC_CHECKBOX, L"off", 100, 170, 100, 20);
    add<radiobutton>(gui, WC_RADIOBUTTON, L"radioOn", 210, 200, 100, 20)->checked = true;
    add<radiobutton>(gui, WC_RADIOBUTTON, L"radioOff", 210, 170, 100, 20);
    add<slider>(gui, WC_SLIDER, L"slider", 10, 130, 120, 20)->setValues(50, 0, 100);
    auto* bar = add<scrollbar>(gui, WC_SCROLLBAR, L"scroll", 10, 90, 200, 16);
    bar->setValues(0, 0, 100);
    bar->setScrollbarRatio(0.25f);
    add<progressbar>(gui, WC_PROGRESSBAR, L"progress", 10, 50, 200, 20)->setValues(50, 0, 100);
    add<separator>(gui, WC_SEPARATOR, L"line", 10, 30, 300, 10);
    add<tab>(gui, WC_TAB, L"pages", 220, 100, 90, 60)->addTab(L"Mesh");
    add<combobox>(gui, WC_COMBOBOX, L"choice", 220, 60, 90, 22)->addItem(L"PLY");
    add<picturebox>(gui, WC_PICTUREBOX, L"help", 150, 120, 32, 32)->setIcon(widget::ICON_HELP);
    add<picturebox>(gui, WC_PICTUREBOX, L"none", 188, 120, 16, 32)->setIcon(widget::ICON_NULL);
  }

  panel* board = nullptr;
  button* push = nullptr;
  int frames = 0;
};

// A tile's centre grey as the widget's colour tints it.
int tinted(int grey, unsigned char channel) { return grey * channel / 255; }

// How many pixels of the rectangle are dark in all three channels.
int darkPixels(const controlsWindow& win, int x0, int y0, int x1, int y1) {
  int n = 0;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      const rgb p = win.at(x, y);
      if (p.r < 110 && p.g < 110 && p.b < 110) ++n;
    }
  }
  return n;
}

bool blueish(const rgb& p) { return p.b > p.r + 40 && p.b > p.g + 40; }

int bluePixels(const controlsWindow& win, int x0, int y0, int x1, int y1) {
  int n = 0;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) n += blueish(win.at(x, y)) ? 1 : 0;
  }
  return n;
}

bool differs(const rgb& a, const rgb& b) {
  return std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b) > 24;
}

}  // namespace

TEST(controlsOnDisplay, eachControlShowsItsSkinTilesAtChosenPixels) {
  SYSTEM::application app(L"", L"");
  RENDERING::renderGL device;
  controlsWindow win(&app, &device);
  app.addWin(&win);
  testDisplay::runWatched(app, win);
  ASSERT_TRUE(win.drawn.load());

  // The board: the button tile's centre grey (235) in the panel colour.
  const rgb board = win.at(300, 150);
  EXPECT_NEAR(board.r, tinted(235, win.boardColor.r), 6);
  EXPECT_NEAR(board.g, tinted(235, win.boardColor.g), 6);
  // The button, right of its caption, away from the borders.
  const rgb push = win.at(80, 212);
  EXPECT_NEAR(push.r, tinted(235, win.buttonColor.r), 6);
  EXPECT_NEAR(push.b, tinted(235, win.buttonColor.b), 6);
  // Captions are drawn in "ID_FONT1": the button's and the check boxes' words show ink.
  EXPECT_GT(darkPixels(win, 30, 204, 78, 220), 20) << "the button's caption";
  EXPECT_GT(darkPixels(win, 120, 202, 200, 218), 20) << "the check box's caption";

  // Check marks: a tick in the checked box, none in the unchecked one.
  EXPECT_GT(darkPixels(win, 100, 202, 116, 218), 6);
  EXPECT_EQ(darkPixels(win, 100, 172, 116, 188), 0);
  // Radio buttons: a dot in the middle of the checked one only; both have their ring.
  const rgb dot = win.at(218, 210);
  EXPECT_LT(dot.r, 110);
  const rgb hollow = win.at(218, 180);
  EXPECT_GT(hollow.r, 150);
  EXPECT_GT(darkPixels(win, 210, 172, 226, 188), 6) << "the ring";

  // The slider's cursor, in the cursor colour, sits in the middle at 50.
  EXPECT_TRUE(blueish(win.at(70, 140)));
  EXPECT_FALSE(blueish(win.at(30, 140)));
  EXPECT_FALSE(blueish(win.at(110, 140)));

  // The scroll bar's cursor is a quarter of the bar (168 pixels) long, from its start.
  // Between the arrow buttons, 16 pixels at each end.
  int cursorPixels = 0;
  for (int x = 26; x < 194; ++x) cursorPixels += blueish(win.at(x, 98)) ? 1 : 0;
  EXPECT_NEAR(cursorPixels, 42, 3);
  EXPECT_TRUE(blueish(win.at(10 + 16 + 2 + 21, 98)));
  // Its arrow buttons show their arrow icons, as does the combo box's.
  EXPECT_GT(bluePixels(win, 10, 90, 26, 106), 8) << "the left arrow";
  EXPECT_GT(bluePixels(win, 194, 90, 210, 106), 8) << "the right arrow";
  EXPECT_GT(bluePixels(win, 290, 62, 310, 80), 8) << "the combo box's arrow";

  // A picture box draws its icon over the box, stretched to it, and nothing around it;
  // the null icon draws nothing at all.
  int inked = 0;
  for (int y = 120; y < 152; ++y) {
    for (int x = 150; x < 182; ++x) inked += differs(win.at(x, y), board) ? 1 : 0;
  }
  EXPECT_GT(inked, 100) << "the help icon";
  for (int y = 116; y < 156; ++y) {
    EXPECT_FALSE(differs(win.at(147, y), board)) << y;
    EXPECT_FALSE(differs(win.at(184, y), board)) << y;
  }
  for (int y = 120; y < 152; ++y) {
    for (int x = 188; x < 204; ++x) EXPECT_FALSE(differs(win.at(x, y), board)) << x << " " << y;
  }

  // The progress bar's fill covers the first half of its inside, in the accent colour.
  const rgb filled = win.at(40, 60);
  EXPECT_GT(filled.b, filled.r + 60);
  const rgb empty = win.at(180, 60);
  EXPECT_NEAR(empty.r, empty.b, 10);
  EXPECT_GT(empty.r, 150);

  // The selected tab head wears the checked tile (a bluish grey), left of its title; its
  // page is a panel.
  const rgb head = win.at(228, 149);
  EXPECT_GT(head.b, head.r + 12);
  const rgb page = win.at(265, 120);
  EXPECT_NEAR(page.r, board.r, 6);
  // The combo box shows its input area, lighter than the board, with the arrow at the right.
  const rgb choice = win.at(240, 71);
  EXPECT_GT(choice.r, board.r + 20);
  EXPECT_NE(win.at(300, 71).r, choice.r);

  // The separator is a thin line: its pixels differ from the board's just beside it.
  const rgb line = win.at(150, 30);
  const rgb beside = win.at(150, 36);
  EXPECT_GT(std::abs(line.r - beside.r) + std::abs(line.g - beside.g), 20);
  EXPECT_EQ(win.at(150, 33).r, beside.r) << "two pixels thick";
}
