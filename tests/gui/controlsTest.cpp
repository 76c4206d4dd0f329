// The standard controls on the scripted platform, driven through the window procedure:
// their parts, their mouse, wheel and key handling, and what a disabled control ignores.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "jev3d/gui/button.h"
#include "jev3d/gui/buttongroup.h"
#include "jev3d/gui/checkbox.h"
#include "jev3d/gui/combobox.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/panel.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/gui/progressbar.h"
#include "jev3d/gui/radiobutton.h"
#include "jev3d/gui/scrollbar.h"
#include "jev3d/gui/separator.h"
#include "jev3d/gui/slider.h"
#include "jev3d/gui/tab.h"
#include "support/guiWindowTest.h"
#include "system/windowTestSupport.h"

using namespace JEV;
using namespace JEV::GUI;
using namespace JEV::PLATFORM;
using JEV::SYSTEM::inputEvent;
using JEV::SYSTEM::inputEventDelegate;

namespace {

// Counts the events of one type a control hears.
struct counter {
  void onEvent(const inputEvent*) { ++count; }
  int count = 0;
};

// A window of 320 x 240 with its controller on the scripted platform; each test body runs
// on the loop's thread, sends window messages and runs the update tick as the loop would.
class controlsTest : public guiWindowTest {
 protected:
  // A click, then the update tick that delivers it.
  void clickAt(float x, float y) {
    moveTo(x, y);
    press(WM_LBUTTONDOWN);
    press(WM_LBUTTONUP);
    gui->update();
  }
  // A left drag from one point to another, in two moves (the first starts the drag).
  void dragFromTo(float x0, float y0, float x1, float y1) {
    moveTo(x0, y0);
    press(WM_LBUTTONDOWN);
    moveTo(x0 + (x1 > x0 ? 1.0f : -1.0f), y0);
    moveTo(x1, y1);
    press(WM_LBUTTONUP);
    gui->update();
  }
  void wheelAt(float x, float y, int notches) {
    moveTo(x, y);
    send(WM_MOUSEWHEEL, std::uint64_t(std::uint16_t(std::int16_t(notches * 120))) << 16, 0);
    gui->update();
  }
  void key(unsigned code) {
    send(WM_KEYDOWN, code, 0x1);
    send(WM_KEYUP, code, 0xC0000001);
    gui->update();
  }
  template <class W>
  W* addAt(WIDGET_CLASS cls, const std::wstring& id, float x, float y, float w, float h,
           widget* parent = nullptr) {
    auto* made = static_cast<W*>(gui->add(cls, id, parent));
    EXPECT_NE(made, nullptr);
    made->setRect2D(x, y, w, h);
    return made;
  }
  void listen(widget* w, counter& c, SYSTEM::EVENT_TYPE type) {
    inputEventDelegate d(&c, &counter::onEvent);
    w->registerInputEventCallBack(type, d);
  }
  // The part `suffix` of `control`: private, under it, redirecting to it.
  widget* partOf(widget* control, const std::wstring& suffix) {
    widget* part = gui->getWidget(control->getId() + suffix);
    EXPECT_NE(part, nullptr) << std::string(suffix.begin(), suffix.end());
    if (!part) return nullptr;
    EXPECT_EQ(part->getParent(), control);
    EXPECT_TRUE(part->isPrivate());
    EXPECT_EQ(part->getRedirect(), control);
    return part;
  }
};

}  // namespace

TEST_F(controlsTest, everyControlHasItsClassAndItsPartsRedirectToIt) {
  run([&] {
    gui->update();
    struct expected {
      WIDGET_CLASS cls;
      const wchar_t* id;
      std::vector<std::wstring> parts;
    };
    const expected all[] = {
        {WC_BUTTON, L"b", {L"_CAPTION", L"_ICON"}},
        {WC_CHECKBOX, L"c", {L"_MARK"}},
        {WC_RADIOBUTTON, L"r", {L"_MARK"}},
        {WC_SLIDER, L"s", {L"_BAR", L"_CURSOR"}},
        {WC_SCROLLBAR, L"sb", {L"_ARROW_LOW", L"_ARROW_HIGH", L"_BAR", L"_CURSOR"}},
        {WC_PROGRESSBAR, L"p", {L"_BAR", L"_CAPTION"}},
        {WC_SEPARATOR, L"sep", {}},
    };
    for (const expected& e : all) {
      widget* control = gui->add(e.cls, e.id, nullptr);
      ASSERT_NE(control, nullptr);
      EXPECT_EQ(control->getClass(), e.cls);
      EXPECT_FALSE(control->isPrivate());
      for (const std::wstring& suffix : e.parts) partOf(control, suffix);
      int children = 0;
      while (control->getChildAt(children)) ++children;
      EXPECT_EQ(children, int(e.parts.size())) << int(e.cls);
    }
    // The button's parts: caption "button" in "ID_FONT1", the null icon.
    button* b = gui->getWidget(L"b") ? static_cast<button*>(gui->getWidget(L"b")) : nullptr;
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->getCaptionPart()->getCaption(), L"button");
    EXPECT_EQ(b->getCaptionPart()->getIdFont(), L"ID_FONT1");
    EXPECT_EQ(b->getIconPart()->getIdTexture(), L"GUI_NULL_ICON");
    EXPECT_EQ(b->getIconPart()->getClassColor(), WCC_ICON);
    EXPECT_EQ(b->getClassColor(), WCC_PANEL);
    EXPECT_EQ(gui->getWidget(L"p")->getClassColor(), WCC_INPUT_AREA);
    EXPECT_EQ(gui->getWidget(L"sep")->getClassColor(), WCC_SEPARATOR);
    // Parts are hit, yet never handed out as widgets of the application.
    b->setRect2D(10, 10, 80, 24);
    gui->update();
    EXPECT_EQ(gui->getWidgetAt(50, 20), nullptr);
    EXPECT_TRUE(b->isMeOrMyChild(gui->getWidgetBelowMouse(50, 20)));
  });
}

TEST_F(controlsTest, buttonClicksThroughItsPartsAndCheckableButtonsLockDown) {
  run([&] {
    gui->update();
    auto* b = addAt<button>(WC_BUTTON, L"b", 10, 10, 100, 24);
    counter clicks, downs;
    listen(b, clicks, SYSTEM::MOUSE_LEFT_CLICK);
    listen(b, downs, SYSTEM::MOUSE_LEFT_DOWN);
    // Style 0 with the null icon still puts the caption 16 + 5 pixels in.
    EXPECT_FLOAT_EQ(b->getCaptionPart()->position.x, b->getMargin()[0] + 21.0f);
    EXPECT_FLOAT_EQ(b->getIconPart()->position.x, b->getMargin()[0]);

    // A press shows the down tile until the release; the click reaches the button once.
    moveTo(60, 20);
    press(WM_LBUTTONDOWN);
    gui->update();
    EXPECT_EQ(b->getU(), b->tileDown[0]);
    press(WM_LBUTTONUP);
    gui->update();
    EXPECT_EQ(b->getU(), b->tileNormal[0]);
    EXPECT_EQ(clicks.count, 1);
    EXPECT_EQ(downs.count, 1);
    EXPECT_FALSE(b->checked.cV()) << "not checkable";

    b->setCheckable(true);
    const float width = b->getWidth();
    clickAt(60, 20);
    EXPECT_TRUE(b->checked.cV());
    EXPECT_TRUE(b->getFlags().isFlagSet(WF_LOCK_DOWN));
    EXPECT_TRUE(b->getCaptionPart()->getFlags().isFlagSet(WF_LOCK_DOWN));
    EXPECT_EQ(b->getU(), b->tileChecked[0]);
    EXPECT_FLOAT_EQ(b->getWidth(), width + 2.0f) << "the checked offset counts";
    EXPECT_FLOAT_EQ(b->getCaptionPart()->position.x, b->getMargin()[0] + 23.0f);
    clickAt(60, 20);
    EXPECT_FALSE(b->checked.cV());
    EXPECT_FALSE(b->getFlags().isFlagSet(WF_LOCK_DOWN));
    EXPECT_EQ(b->getU(), b->tileNormal[0]);
    EXPECT_FLOAT_EQ(b->getWidth(), width);
    EXPECT_EQ(clicks.count, 3);

    // The styles show and place the parts.
    b->setButtonStyle(BS_ICON_ONLY);
    EXPECT_FALSE(b->getCaptionPart()->isVisible());
    EXPECT_TRUE(b->getIconPart()->isVisible());
    EXPECT_FLOAT_EQ(b->getIconPart()->position.x, (100.0f - 16.0f) * 0.5f);
    b->setButtonStyle(BS_TEXT_ONLY);
    EXPECT_TRUE(b->getCaptionPart()->isVisible());
    EXPECT_FALSE(b->getIconPart()->isVisible());
    b->setButtonStyle(BS_ICON_RIGHT);
    EXPECT_FLOAT_EQ(b->getIconPart()->position.x, 100.0f - b->getMargin()[1] - 16.0f);

    // A flat button draws its background only under the mouse.
    b->setFlat(true);
    EXPECT_EQ(b->getShadow(), WS_NO_BACKGROUND);
    moveTo(200, 200);
    gui->update();
    moveTo(60, 20);
    gui->update();
    EXPECT_EQ(b->getShadow(), WS_NONE);
    moveTo(200, 200);
    gui->update();
    EXPECT_EQ(b->getShadow(), WS_NO_BACKGROUND);
  });
}

TEST_F(controlsTest, checkBoxesToggleAndRadioButtonsExcludeEachOther) {
  run([&] {
    gui->update();
    auto* box = addAt<checkbox>(WC_CHECKBOX, L"box", 10, 200, 100, 20);
    EXPECT_EQ(box->getMark()->getU(), box->tileUnchecked[0]);
    clickAt(15, 210);  // on the mark
    EXPECT_TRUE(box->checked.cV());
    EXPECT_EQ(box->getMark()->getU(), 0.0f);
    EXPECT_EQ(box->getMark()->getV(), 16.0f);
    clickAt(60, 210);  // on the caption
    EXPECT_FALSE(box->checked.cV());

    panel* group = addAt<panel>(WC_PANEL, L"group", 10, 10, 200, 100);
    radiobutton* r[3];
    for (int i = 0; i < 3; ++i) {
      r[i] = addAt<radiobutton>(WC_RADIOBUTTON, L"r" + std::to_wstring(i), 5, 5 + 25.0f * i, 100,
                                20, group);
    }
    // One outside the group keeps its state.
    auto* other = addAt<radiobutton>(WC_RADIOBUTTON, L"other", 220, 10, 90, 20);
    other->checked = true;
    auto centre = [&](widget* w) { return w->getAbsolutePos() + widget::point3f(8, 10, 0); };
    for (int pick : {0, 2, 1}) {
      const auto at = centre(r[pick]);
      clickAt(at.x, at.y);
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(r[i]->checked.cV(), i == pick) << pick << " " << i;
        EXPECT_EQ(r[i]->getMark()->getU(), i == pick ? 96.0f : 64.0f);
        EXPECT_EQ(r[i]->getMark()->getV(), 16.0f);
      }
    }
    // A click on the checked one leaves it checked; the field works as the mouse does.
    const auto at = centre(r[1]);
    clickAt(at.x, at.y);
    EXPECT_TRUE(r[1]->checked.cV());
    r[0]->checked = true;
    EXPECT_FALSE(r[1]->checked.cV());
    EXPECT_TRUE(other->checked.cV());
  });
}

TEST_F(controlsTest, sliderFollowsADragWithinItsRangeAndStepsWithWheelAndKeys) {
  run([&] {
    gui->update();
    auto* s = addAt<slider>(WC_SLIDER, L"s", 20, 100, 120, 20);
    s->setValues(0, 0, 100);
    widget* bar = s->getBar();
    widget* cursor = s->getCursor();
    // The bar runs from the cursor's half length in; the cursor sits at the value.
    EXPECT_FLOAT_EQ(bar->getAbsolutePos().x, 25.0f);
    EXPECT_FLOAT_EQ(bar->size.x, 110.0f);
    EXPECT_FLOAT_EQ(cursor->getAbsolutePos().x, 20.0f);

    // Taken at its centre, the cursor follows the mouse along the bar.
    dragFromTo(25, 110, 80, 110);
    EXPECT_NEAR(s->value.cV(), 50.0f, 1e-3);
    EXPECT_NEAR(s->getPercent(), 50.0f, 1e-3);
    EXPECT_NEAR(s->valueRatio.cV(), 0.5f, 1e-6);
    EXPECT_NEAR(cursor->getAbsolutePos().x + slider::cursorLength / 2, 80.0f, 1e-3);
    // Past the ends it stops at the bounds.
    dragFromTo(80, 110, 300, 110);
    EXPECT_FLOAT_EQ(s->value.cV(), 100.0f);
    dragFromTo(135, 110, 2, 110);
    EXPECT_FLOAT_EQ(s->value.cV(), 0.0f);
    // A press on the bar puts the value there.
    clickAt(25 + 33, 110);
    EXPECT_NEAR(s->value.cV(), 30.0f, 1e-3);

    // A wheel notch is a hundredth of the range; the arrow keys step once, End goes to the
    // maximum; the focus came with the click.
    wheelAt(60, 110, 1);
    EXPECT_NEAR(s->value.cV(), 31.0f, 1e-3);
    wheelAt(60, 110, -3);
    EXPECT_NEAR(s->value.cV(), 28.0f, 1e-3);
    EXPECT_TRUE(s->isMeOrMyChild(gui->getFocusedWidget()));
    key(VK_RIGHT);
    EXPECT_NEAR(s->value.cV(), 29.0f, 1e-3);
    key(VK_END);
    EXPECT_FLOAT_EQ(s->value.cV(), 100.0f);
    key(VK_UP);
    EXPECT_FLOAT_EQ(s->value.cV(), 100.0f) << "not past the maximum";

    // An integer slider rounds, a fraction of one half and up going up.
    s->valueType = WVT_INTEGER;
    s->setValues(10.5f, 0, 20);
    EXPECT_FLOAT_EQ(s->value.cV(), 11.0f);
    s->value = 10.4f;
    EXPECT_FLOAT_EQ(s->value.cV(), 10.0f);
    wheelAt(60, 110, 1);
    EXPECT_FLOAT_EQ(s->value.cV(), 11.0f);
    EXPECT_FLOAT_EQ(slider::float2int(2.5f), 3.0f);
    EXPECT_FLOAT_EQ(slider::float2int(2.49f), 2.0f);

    // An empty range: percent 0, the value kept.
    s->valueType = WVT_FLOAT;
    s->setValues(5, 10, 10);
    EXPECT_FLOAT_EQ(s->getPercent(), 0.0f);
    EXPECT_FLOAT_EQ(s->value.cV(), 5.0f);

    // Vertical, the value runs bottom to top.
    s->setValues(0, 0, 100);
    s->setRect2D(200, 20, 20, 120);
    s->setOrientation(WO_VERTICAL);
    EXPECT_FLOAT_EQ(s->getBar()->getAbsolutePos().y, 25.0f);
    dragFromTo(210, 25, 210, 80);
    EXPECT_NEAR(s->value.cV(), 50.0f, 1e-3);
  });
}

TEST_F(controlsTest, scrollbarThumbFollowsItsRatioAndPagesByIt) {
  run([&] {
    gui->update();
    auto* sb = addAt<scrollbar>(WC_SCROLLBAR, L"sb", 20, 50, 200, 16);
    sb->setValues(0, 0, 100);
    EXPECT_FLOAT_EQ(sb->getScrollbarRatio(), 0.2f);
    // The bar lies between the two square arrows; the cursor is the ratio of it.
    const float barLength = 200.0f - 2 * 16.0f;
    EXPECT_FLOAT_EQ(sb->getBar()->size.x, barLength);
    EXPECT_FLOAT_EQ(sb->getCursor()->size.x, barLength * 0.2f);
    sb->setScrollbarRatio(0.5f);
    EXPECT_FLOAT_EQ(sb->getCursor()->size.x, barLength * 0.5f);
    sb->setScrollbarRatio(0.01f);
    EXPECT_FLOAT_EQ(sb->getCursor()->size.x, scrollbar::minimumCursorLength);
    sb->setScrollbarRatio(0.25f);
    EXPECT_FLOAT_EQ(sb->getCursor()->size.x, barLength * 0.25f);
    // At 0 the cursor is two pixels into the bar.
    EXPECT_FLOAT_EQ(sb->getCursor()->position.x, 16.0f + 2.0f);

    // Wheel and arrows page by the ratio of the range.
    wheelAt(120, 58, 1);
    EXPECT_FLOAT_EQ(sb->value.cV(), 25.0f);
    clickAt(20 + 200 - 8, 58);  // the high arrow
    EXPECT_FLOAT_EQ(sb->value.cV(), 50.0f);
    clickAt(20 + 8, 58);  // the low arrow
    EXPECT_FLOAT_EQ(sb->value.cV(), 25.0f);
    // On the bar beside the cursor: a page towards the mouse.
    const float cursorX = sb->getCursor()->getAbsolutePos().x;
    clickAt(cursorX + sb->getCursor()->size.x + 10, 58);
    EXPECT_FLOAT_EQ(sb->value.cV(), 50.0f);
    clickAt(cursorX - 5, 58);
    EXPECT_FLOAT_EQ(sb->value.cV(), 25.0f);
    wheelAt(120, 58, -5);
    EXPECT_FLOAT_EQ(sb->value.cV(), 0.0f) << "clamped";

    // The cursor's place follows the percent over its travel.
    const float unit = (barLength - barLength * 0.25f - 4.0f) / 100.0f;
    sb->value = 40;
    EXPECT_NEAR(sb->getCursor()->position.x, 16.0f + 2.0f + unit * 40.0f, 1e-3);
    // Dragging the cursor by d pixels moves the value by d over the travel.
    const float grab = sb->getCursor()->getAbsolutePos().x + 5;
    counter drags;
    listen(sb, drags, SYSTEM::MOUSE_LEFT_DRAG);
    dragFromTo(grab, 58, grab + 1 + 20, 58);
    EXPECT_EQ(drags.count, 1);
    EXPECT_NEAR(sb->value.cV(), 40.0f + 20.0f / unit, 1e-2);

    // Above one half a notch goes to the bound.
    sb->setScrollbarRatio(0.8f);
    wheelAt(120, 58, 1);
    EXPECT_FLOAT_EQ(sb->value.cV(), 100.0f);
    wheelAt(120, 58, -1);
    EXPECT_FLOAT_EQ(sb->value.cV(), 0.0f);
    // The keys: End to the maximum, an arrow a page back (here to the bound).
    EXPECT_TRUE(sb->isMeOrMyChild(gui->getFocusedWidget()));
    key(VK_END);
    EXPECT_FLOAT_EQ(sb->value.cV(), 100.0f);
    sb->setScrollbarRatio(0.25f);
    key(VK_LEFT);
    EXPECT_FLOAT_EQ(sb->value.cV(), 75.0f);
  });
}

TEST_F(controlsTest, separatorKeepsItsThinSideAndProgressBarShowsItsPercent) {
  run([&] {
    gui->update();
    auto* sep = addAt<separator>(WC_SEPARATOR, L"sep", 10, 10, 150, 40);
    EXPECT_FLOAT_EQ(sep->getWidth(), 150.0f);
    EXPECT_FLOAT_EQ(sep->getHeight(), separator::thickness);
    sep->setOrientation(WO_VERTICAL);
    EXPECT_FLOAT_EQ(sep->getWidth(), separator::thickness);
    EXPECT_FLOAT_EQ(sep->getHeight(), 150.0f);
    sep->setWidth(30);
    EXPECT_FLOAT_EQ(sep->getWidth(), separator::thickness);

    auto* p = addAt<progressbar>(WC_PROGRESSBAR, L"p", 10, 100, 124, 20);
    const float inner = 124.0f - 4.0f;
    p->setValues(42, 0, 100);
    EXPECT_FLOAT_EQ(p->getPercent(), 42.0f);
    EXPECT_EQ(p->getCaptionPart()->getCaption(), L"42%");
    EXPECT_NEAR(p->getBar()->size.x, inner * 0.42f, 1e-3);
    p->setPrefixCaption(L"Loading ");
    p->setSuffixCaption(L" %");
    EXPECT_EQ(p->getCaptionPart()->getCaption(), L"Loading 42 %");
    p->value = 250;
    EXPECT_FLOAT_EQ(p->getPercent(), 100.0f) << "clamped";
    EXPECT_NEAR(p->getBar()->size.x, inner, 1e-3);
    p->setSuffixCaption(L"%");
    p->setPrefixCaption(L"");

    // The loop steps the value on its own thread until it is stopped.
    p->setValues(0, 0, 100);
    p->startLoopValue(1);
    EXPECT_TRUE(p->isLooping());
    for (int i = 0; i < 2000 && p->value.cV() == 0.0f; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    p->stopLoopValue(100);
    EXPECT_FALSE(p->isLooping());
    EXPECT_FLOAT_EQ(p->value.cV(), 100.0f);
    EXPECT_EQ(p->getCaptionPart()->getCaption(), L"100%");
    EXPECT_NEAR(p->getBar()->size.x, inner, 1e-3);
  });
}

TEST_F(controlsTest, disabledControlsIgnoreInput) {
  run([&] {
    gui->update();
    auto* b = addAt<button>(WC_BUTTON, L"b", 10, 10, 100, 24);
    auto* box = addAt<checkbox>(WC_CHECKBOX, L"box", 10, 50, 100, 20);
    auto* s = addAt<slider>(WC_SLIDER, L"s", 10, 100, 120, 20);
    auto* sb = addAt<scrollbar>(WC_SCROLLBAR, L"sb", 10, 150, 200, 16);
    s->setValues(30, 0, 100);
    sb->setValues(30, 0, 100);
    b->setCheckable(true);
    counter clicks;
    listen(b, clicks, SYSTEM::MOUSE_LEFT_CLICK);
    for (widget* w : {static_cast<widget*>(b), static_cast<widget*>(box), static_cast<widget*>(s),
                      static_cast<widget*>(sb)}) {
      w->enabled = false;
    }
    clickAt(60, 20);
    clickAt(15, 60);
    clickAt(120, 110);
    wheelAt(60, 110, 2);
    dragFromTo(45, 110, 100, 110);
    clickAt(10 + 200 - 8, 158);
    wheelAt(100, 158, 1);
    EXPECT_EQ(clicks.count, 0);
    EXPECT_FALSE(b->checked.cV());
    EXPECT_EQ(b->getU(), b->tileNormal[0]);
    EXPECT_FALSE(box->checked.cV());
    EXPECT_FLOAT_EQ(s->value.cV(), 30.0f);
    EXPECT_FLOAT_EQ(sb->value.cV(), 30.0f);

    // Enabled again, the same input works.
    for (widget* w : {static_cast<widget*>(b), static_cast<widget*>(box), static_cast<widget*>(s),
                      static_cast<widget*>(sb)}) {
      w->enabled = true;
    }
    clickAt(60, 20);
    clickAt(15, 60);
    wheelAt(60, 110, 2);
    wheelAt(100, 158, 1);
    EXPECT_EQ(clicks.count, 1);
    EXPECT_TRUE(b->checked.cV());
    EXPECT_TRUE(box->checked.cV());
    EXPECT_FLOAT_EQ(s->value.cV(), 32.0f);
    EXPECT_FLOAT_EQ(sb->value.cV(), 50.0f);
  });
}

TEST_F(controlsTest, menuOpensHighlightsAndFiresItsItemOnce) {
  run([&] {
    gui->update();
    panel* target = addAt<panel>(WC_PANEL, L"target", 10, 150, 100, 60);
    auto* m = static_cast<menu*>(gui->add(WC_MENU, L"m", nullptr));
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(m->getClass(), WC_MENU);
    EXPECT_FALSE(m->isVisible()) << "hidden until shown";
    EXPECT_TRUE(m->isTopMost());
    item* open = m->addItem(widget::ICON_FILE_OPEN, L"Open");
    item* save = m->addItem(widget::ICON_FILE_SAVE, L"Save");
    menu* more = m->addSubMenu(widget::ICON_NULL, L"More");
    ASSERT_NE(more, nullptr);
    item* deep = more->addItem(widget::ICON_NULL, L"Deep");
    item* opener = m->getItems()[2];
    EXPECT_EQ(more->getOpener(), opener);
    EXPECT_EQ(opener->getSubMenu(), more);
    EXPECT_TRUE(opener->getFlags().isFlagSet(WF_SUB_MENU));
    EXPECT_TRUE(opener->getExpanderPart()->isVisible());
    EXPECT_FALSE(open->getExpanderPart()->isVisible());
    EXPECT_EQ(deep->treeLevel, 1);
    EXPECT_EQ(deep->treeParent, opener);
    for (item* i : {open, save, opener}) {
      EXPECT_EQ(i->getClass(), WC_ITEM);
      EXPECT_EQ(i->getClassColor(), WCC_ITEM);
      EXPECT_EQ(i->getRedirect(), m);
      for (const wchar_t* suffix : {L"_ICON", L"_CAPTION", L"_EXPANDER"}) partOf(i, suffix);
    }
    EXPECT_EQ(open->getCaptionPart()->getCaption(), L"Open");
    EXPECT_EQ(open->getIconPart()->getIdTexture(), L"GUI_FILE_OPEN_ICON");
    EXPECT_FLOAT_EQ(m->getHeight(), 4.0f + 3 * item::itemHeight);

    counter opens, saves, deeps;
    listen(open, opens, SYSTEM::MOUSE_LEFT_CLICK);
    listen(save, saves, SYSTEM::MOUSE_LEFT_CLICK);
    listen(deep, deeps, SYSTEM::MOUSE_LEFT_CLICK);
    target->setPopUpMenu(L"m", false);
    auto rightClickAt = [&](float x, float y) {
      moveTo(x, y);
      press(WM_RBUTTONDOWN);
      press(WM_RBUTTONUP);
      gui->update();
    };
    // A right click on the target opens the menu there, items from the top down.
    rightClickAt(50, 180);
    EXPECT_TRUE(m->isVisible());
    EXPECT_EQ(gui->getSchedule().getPopup(), m);
    EXPECT_FLOAT_EQ(m->getAbsolutePos().x, 50.0f);
    EXPECT_FLOAT_EQ(m->getAbsolutePos().y + m->getHeight(), 180.0f);
    EXPECT_GT(open->getAbsolutePos().y, save->getAbsolutePos().y);
    EXPECT_EQ(m->getHighlighted(), nullptr);

    // The mouse over an item highlights it; the click runs its delegate once and closes.
    auto middle = [](widget* w) { return w->getAbsolutePos() + widget::point3f(60, 10, 0); };
    const auto onSave = middle(save);
    moveTo(onSave.x, onSave.y);
    gui->update();
    EXPECT_EQ(m->getHighlighted(), save);
    EXPECT_EQ(gui->getWidgetBelowMouse(onSave.x, onSave.y), save);
    clickAt(onSave.x, onSave.y);
    EXPECT_EQ(saves.count, 1);
    EXPECT_EQ(opens.count, 0);
    EXPECT_FALSE(m->isVisible());
    EXPECT_EQ(gui->getSchedule().getPopup(), nullptr);
    EXPECT_EQ(m->getHighlighted(), nullptr);
    // A second click at the same place, the mouse not moved: the item is hidden now.
    press(WM_LBUTTONDOWN);
    press(WM_LBUTTONUP);
    press(WM_LBUTTONDBLCLK);
    gui->update();
    EXPECT_EQ(saves.count, 1) << "a closed menu's item hears no click without a move";
    moveTo(300, 20);
    clickAt(onSave.x, onSave.y);
    EXPECT_EQ(saves.count, 1) << "a closed menu hears nothing";

    // Entering the opener shows the sub-menu at its right; a click deep in it closes both.
    rightClickAt(50, 180);
    const auto onMore = middle(opener);
    moveTo(onMore.x, onMore.y);
    gui->update();
    EXPECT_TRUE(more->isVisible());
    EXPECT_FLOAT_EQ(more->getAbsolutePos().x, m->getAbsolutePos().x + m->getWidth() - 2.0f);
    const auto onDeep = middle(deep);
    moveTo(onDeep.x, onDeep.y);
    gui->update();
    EXPECT_EQ(more->getHighlighted(), deep);
    EXPECT_TRUE(m->isVisible()) << "the chain stays open while the mouse is in it";
    clickAt(onDeep.x, onDeep.y);
    EXPECT_EQ(deeps.count, 1);
    EXPECT_FALSE(more->isVisible());
    EXPECT_FALSE(m->isVisible());

    // The keys move the highlight and click; a click outside closes the menu.
    rightClickAt(50, 180);
    const auto onOpen = middle(open);
    moveTo(onOpen.x, onOpen.y);
    gui->update();
    key(VK_DOWN);
    EXPECT_EQ(m->getHighlighted(), save);
    key(VK_UP);
    key(VK_UP);
    EXPECT_EQ(m->getHighlighted(), opener) << "round from the top";
    key(VK_DOWN);
    key(VK_RETURN);
    EXPECT_EQ(opens.count, 1);
    EXPECT_FALSE(m->isVisible());
    rightClickAt(50, 180);
    EXPECT_TRUE(m->isVisible());
    clickAt(20, 160);
    EXPECT_FALSE(m->isVisible());
    // A press on the bare desktop, where no widget is, closes it as well.
    rightClickAt(50, 180);
    EXPECT_TRUE(m->isVisible());
    EXPECT_EQ(gui->getWidgetBelowMouse(300, 20), nullptr);
    clickAt(300, 20);
    EXPECT_FALSE(m->isVisible());
    EXPECT_EQ(gui->getSchedule().getPopup(), nullptr);

    // A menu that is not closable stays open after a click on an item.
    m->notClosable = true;
    rightClickAt(50, 180);
    clickAt(onSave.x, onSave.y);
    EXPECT_EQ(saves.count, 2);
    EXPECT_TRUE(m->isVisible());
  });
}

TEST_F(controlsTest, tabHeadsSelectTheirPages) {
  run([&] {
    gui->update();
    auto* t = addAt<tab>(WC_TAB, L"t", 10, 10, 300, 200);
    EXPECT_EQ(t->getClass(), WC_TAB);
    EXPECT_EQ(t->getClassColor(), WCC_ITEM);
    EXPECT_EQ(t->addTab(L"Mesh"), 0);
    EXPECT_EQ(t->addTab(L"Scan"), 1);
    EXPECT_EQ(t->addTab(L"View"), 2);
    ASSERT_EQ(t->getTabCount(), 3u);
    for (unsigned i = 0; i < 3; ++i) {
      EXPECT_EQ(partOf(t, L"_HEAD" + std::to_wstring(i)), t->getItemTab(i));
      EXPECT_EQ(partOf(t, L"_BODY" + std::to_wstring(i)), t->getPanelTab(i));
    }
    EXPECT_EQ(t->getItemTab(1)->getCaption(), L"Scan");
    EXPECT_EQ(t->getItemTab(3), nullptr);
    // The heads lie in a row along the top; the first page shows.
    EXPECT_LT(t->getItemTab(0)->getAbsolutePos().x, t->getItemTab(1)->getAbsolutePos().x);
    EXPECT_FLOAT_EQ(t->getItemTab(1)->getAbsolutePos().y, 10 + 200 - tab::headHeight);
    EXPECT_TRUE(t->getPanelTab(0)->isVisible());
    EXPECT_FALSE(t->getPanelTab(1)->isVisible());

    panel* content = gui->addPanel(std::wstring(L"content"), nullptr);
    EXPECT_TRUE(t->addWidgetToTab(2, content));
    EXPECT_EQ(content->getParent(), t->getPanelTab(2));

    counter changes;
    listen(t, changes, SYSTEM::TAB_CHANGE);
    const auto head = t->getItemTab(2)->getAbsolutePos() + widget::point3f(40, 11, 0);
    clickAt(head.x, head.y);
    EXPECT_EQ(t->getSelectedTab(), 2u);
    EXPECT_EQ(changes.count, 1);
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(t->getPanelTab(i)->isVisible(), i == 2);
    EXPECT_EQ(t->getItemTab(2)->getU(), 80.0f) << "the selected head's tile";
    EXPECT_EQ(t->getItemTab(0)->getU(), 48.0f);
    // A press on the page itself changes nothing.
    clickAt(150, 50);
    EXPECT_EQ(t->getSelectedTab(), 2u);
    EXPECT_EQ(changes.count, 1);

    // A hidden head leaves its place to the next.
    const float third = t->getItemTab(2)->getAbsolutePos().x;
    t->hideItemTab(1, true);
    EXPECT_FALSE(t->getItemTab(1)->isVisible());
    EXPECT_LT(t->getItemTab(2)->getAbsolutePos().x, third);
    t->setHeadShadowNormal(WS_NO_BACKGROUND);
    EXPECT_EQ(t->getItemTab(0)->getShadow(), WS_NO_BACKGROUND);
    EXPECT_EQ(t->getItemTab(2)->getShadow(), WS_NONE);
    t->removeTabMargin(0);
    EXPECT_EQ(t->getPanelTab(0)->getMargin()[0], 0.0f);
  });
}

TEST_F(controlsTest, comboBoxShowsItsListAndSelectsAnItem) {
  run([&] {
    gui->update();
    auto* c = addAt<combobox>(WC_COMBOBOX, L"c", 20, 180, 120, 22);
    EXPECT_EQ(c->getClass(), WC_COMBOBOX);
    EXPECT_EQ(partOf(c, L"_CAPTION"), static_cast<widget*>(c->getCaptionPart()));
    EXPECT_EQ(partOf(c, L"_ARROW"), static_cast<widget*>(c->getArrow()));
    panel* list = c->getFocusPanel();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(gui->getWidget(L"c_LIST"), list);
    EXPECT_TRUE(list->isPrivate());
    EXPECT_EQ(list->getRedirect(), c);
    EXPECT_FALSE(list->isVisible());
    for (const wchar_t* text : {L"PLY", L"STL", L"OBJ"}) c->addItem(text);
    EXPECT_EQ(c->getItemCount(), 3);
    EXPECT_EQ(c->getItemSelect(), -1);
    counter selects;
    listen(c, selects, SYSTEM::ITEM_SELECT);

    // The arrow shows the list under the box; an item click selects it and hides the list.
    clickAt(20 + 120 - 8, 190);
    EXPECT_TRUE(c->isOpen());
    EXPECT_FLOAT_EQ(list->getAbsolutePos().y + list->getHeight(), 180.0f);
    const auto stl = c->getItem(1)->getAbsolutePos() + widget::point3f(30, 10, 0);
    EXPECT_EQ(gui->getWidgetBelowMouse(stl.x, stl.y), c->getItem(1));
    clickAt(stl.x, stl.y);
    EXPECT_EQ(c->getItemSelect(), 1);
    EXPECT_EQ(c->getCaption(), L"STL");
    EXPECT_EQ(selects.count, 1);
    EXPECT_FALSE(c->isOpen());

    // The caption toggles it too; a press elsewhere hides it.
    clickAt(40, 190);
    EXPECT_TRUE(c->isOpen());
    clickAt(40, 190);
    EXPECT_FALSE(c->isOpen());
    c->open();
    c->open();
    EXPECT_TRUE(c->isOpen()) << "open on an open list keeps it";
    clickAt(300, 20);
    EXPECT_FALSE(c->isOpen());

    // The wheel over the closed box and the keys step the selection.
    wheelAt(40, 190, -1);
    EXPECT_EQ(c->getItemSelect(), 2);
    wheelAt(40, 190, -1);
    EXPECT_EQ(c->getItemSelect(), 2) << "no wrap";
    key(VK_UP);
    EXPECT_EQ(c->getItemSelect(), 1);
    EXPECT_EQ(selects.count, 3);
    EXPECT_TRUE(c->setItemSelect(std::wstring(L"PLY"), false));
    EXPECT_EQ(c->getCaption(), L"PLY");
    EXPECT_FALSE(c->setItemSelect(7, true));
    EXPECT_EQ(selects.count, 3);
    c->clear();
    EXPECT_EQ(c->getItemCount(), 0);
    EXPECT_EQ(c->getItemSelect(), -1);
    EXPECT_FALSE(gui->isValid(L"c_ITEM0"));
  });
}

TEST_F(controlsTest, buttonGroupSelectsOneItemAndScrollsByItsArrows) {
  run([&] {
    gui->update();
    // Room for two items of 80 between the 24-pixel arrows.
    auto* g = addAt<buttongroup>(WC_BUTTONGROUP, L"g", 10, 100, 2 * 24 + 160, 24);
    EXPECT_EQ(g->getClass(), WC_BUTTONGROUP);
    partOf(g, L"_PANEL");
    partOf(g, L"_ARROW_LEFT");
    partOf(g, L"_ARROW_RIGHT");
    for (const wchar_t* text : {L"Move", L"Rotate", L"Scale"}) g->addItem(text, widget::ICON_NULL);
    EXPECT_EQ(g->getItemCount(), 3);
    EXPECT_EQ(g->getItemSelect(), -1);
    counter selects;
    listen(g, selects, SYSTEM::ITEM_SELECT);

    // A click on an item selects it, and only it.
    clickAt(10 + 24 + 80 + 40, 112);
    EXPECT_EQ(g->getItemSelect(), 1);
    EXPECT_EQ(selects.count, 1);
    EXPECT_EQ(g->getItem(1)->getU(), 80.0f);
    EXPECT_EQ(g->getItem(0)->getU(), 48.0f);
    // The third is out of view until the right arrow brings it.
    EXPECT_NE(gui->getWidgetBelowMouse(10 + 24 + 2 * 80 + 10, 112), g->getItem(2));
    clickAt(10 + 24 + 160 + 12, 112);
    EXPECT_EQ(g->getFirstVisible(), 1);
    clickAt(10 + 24 + 80 + 40, 112);
    EXPECT_EQ(g->getItemSelect(), 2);
    clickAt(10 + 24 + 160 + 12, 112);
    EXPECT_EQ(g->getFirstVisible(), 1) << "not past the last";
    clickAt(10 + 12, 112);
    EXPECT_EQ(g->getFirstVisible(), 0);
    EXPECT_EQ(selects.count, 2);
    // Selecting by code brings the item into view; setLastItemSelect picks the last.
    EXPECT_TRUE(g->setLastItemSelect(false));
    EXPECT_EQ(g->getFirstVisible(), 1);
    EXPECT_EQ(selects.count, 2);
    EXPECT_FALSE(g->setItemSelect(5, true));
    g->setSkinAsItem(true);
    EXPECT_TRUE(g->getItem(2)->getFlags().isFlagSet(WF_LOCK_DOWN));
    EXPECT_FALSE(g->getItem(1)->getFlags().isFlagSet(WF_LOCK_DOWN));
  });
}
