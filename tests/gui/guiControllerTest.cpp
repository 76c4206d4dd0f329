#include "jev3d/gui/guiController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "jev3d/gui/button.h"
#include "jev3d/gui/canvas.h"
#include "jev3d/gui/font.h"
#include "jev3d/gui/fullscreentitlebar.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/panel.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/gui/widget.h"
#include "jev3d/renderer/cameraStack.h"
#include "jev3d/resources/textureStorage.h"
#include "support/guiWindowTest.h"
#include "system/windowTestSupport.h"

using namespace JEV;
using namespace JEV::GUI;
using namespace JEV::PLATFORM;
using JEV::SYSTEM::EVENT_TYPE;
using JEV::SYSTEM::inputEvent;
using JEV::SYSTEM::inputEventDelegate;

namespace {

// Writes "<name> <type>" for each event heard into a log shared by several listeners,
// so that a test reads the order in which they were called.
struct listener {
  listener(std::vector<std::string>* log, std::string name) : log(log), name(std::move(name)) {}
  void onEvent(const inputEvent* e) {
    log->push_back(name + " " + std::to_string(int(e->type)));
    lastPrevious = e->previous;
    lastTarget = e->target;
  }
  std::vector<std::string>* log;
  std::string name;
  widget* lastPrevious = nullptr;
  widget* lastTarget = nullptr;
};

// A window of 320 x 240 with the GUI controller, on the scripted platform. The window's
// own loop builds the desktop; each test body runs on the loop's thread and drives input
// through the window procedure, then runs the controller's update and render as the
// loop's ticks would.
class guiControllerTest : public guiWindowTest {
 protected:
  void leftClickAt(int x, int y) {
    moveTo(x, y);
    press(WM_LBUTTONDOWN);
    press(WM_LBUTTONUP);
  }
  void rightClickAt(int x, int y) {
    moveTo(x, y);
    press(WM_RBUTTONDOWN);
    press(WM_RBUTTONUP);
  }
  // A panel at (x, y) of 60 x 40 under `parent` (the desktop when null), placed freely.
  panel* addPanelAt(const std::wstring& id, float x, float y, widget* parent = nullptr) {
    panel* p = gui->addPanel(id, parent);
    EXPECT_NE(p, nullptr);
    p->layout.setHorizontal(HA_FREE);
    p->layout.setVertical(VA_FREE);
    p->setRect2D(x, y, 60, 40);
    return p;
  }
  // A menu of the desktop, hidden until it opens.
  menu* addMenu(const std::wstring& id) {
    auto* m = static_cast<menu*>(gui->add(WC_MENU, id, nullptr));
    EXPECT_NE(m, nullptr);
    return m;
  }
  void listen(widget* w, listener& l, std::initializer_list<EVENT_TYPE> types) {
    delegates.emplace_back(&l, &listener::onEvent);
    for (EVENT_TYPE t : types) w->registerInputEventCallBack(t, delegates.back());
  }

  std::list<inputEventDelegate> delegates;
  std::vector<std::string> log;
};

}  // namespace

TEST_F(guiControllerTest, initBuildsADesktopThatFollowsTheWindow) {
  run([&] {
    canvas* desktop = gui->getDesktop();
    ASSERT_NE(desktop, nullptr);
    EXPECT_EQ(desktop->getId(), L"GUICONTROLLER_WIDGET_DESKTOP");
    EXPECT_EQ(gui->getRootWidget(), desktop);
    ASSERT_EQ(gui->getCanvases().size(), 1u);
    EXPECT_EQ(gui->getCanvases()[0], desktop);
    gui->update();
    EXPECT_EQ(desktop->getWidth(), 320.0f);
    EXPECT_EQ(desktop->getHeight(), 240.0f);
    win.getRenderingContext()->windowWidth = 500;
    gui->update();
    EXPECT_EQ(desktop->getWidth(), 500.0f);

    // The tooltip is a hidden, top-most, private widget of the desktop.
    widget* tip = gui->getToolTip();
    ASSERT_NE(tip, nullptr);
    EXPECT_EQ(tip->getId(), L"GUICONTROLLER_WIDGET_TOOLTIPS");
    EXPECT_FALSE(tip->isVisible());
    EXPECT_TRUE(tip->isTopMost());
    // It and the full-screen title bar are the desktop's top-most widgets.
    EXPECT_EQ(desktop->getTopMost().size(), 2u);
    // A button in the tooltip's skin, its caption centred alone.
    ASSERT_EQ(tip->getClass(), WC_BUTTON);
    auto* tipButton = static_cast<button*>(tip);
    EXPECT_EQ(tip->getClassColor(), WCC_TOOLTIP);
    EXPECT_EQ(tipButton->getButtonStyle(), BS_TEXT_ONLY);
    EXPECT_FLOAT_EQ(tipButton->tileNormal[0], 32.0f);
    EXPECT_FLOAT_EQ(tipButton->tileNormal[1], 0.0f);
  });
}

TEST_F(guiControllerTest, registryAndFactoryByName) {
  run([&] {
    panel* p = gui->addPanel(std::string("P"), nullptr);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->getParent(), gui->getDesktop());
    EXPECT_EQ(gui->addPanel(std::wstring(L"P"), nullptr), nullptr) << "a name in use";
    label* l = gui->addLabel(p);
    ASSERT_NE(l, nullptr);
    EXPECT_EQ(l->getParent(), p);
    EXPECT_NE(l->getId(), L"");
    EXPECT_EQ(gui->getLabel(l->getId()), l);
    EXPECT_EQ(gui->getPanel(l->getId()), nullptr) << "a label is no panel";
    EXPECT_EQ(gui->getPanel("P"), p);
    EXPECT_EQ(gui->getWidget(L"P"), p);
    EXPECT_TRUE(gui->isValid(L"P"));
    EXPECT_EQ(gui->add(WC_LABEL, L"L2", p)->getClass(), WC_LABEL);
    EXPECT_EQ(gui->add(WC_WIDGET, L"W", p)->getClass(), WC_WIDGET);
    EXPECT_EQ(gui->add(WIDGET_CLASS(24), L"X", p), nullptr);
    // Desktop, tooltip with its caption and icon parts, the title bar with its caption
    // and three buttons of four widgets each, P, its label, L2, W.
    EXPECT_EQ(gui->getWidgetsCount(), 22);

    EXPECT_TRUE(gui->eraseNow(p));
    EXPECT_FALSE(gui->isValid(L"P"));
    EXPECT_EQ(l->getParent(), nullptr) << "the erased parent lets go of its children";
    EXPECT_TRUE(gui->discard());
    EXPECT_EQ(gui->getWidgetsCount(), 0);
    EXPECT_TRUE(gui->getCanvases().empty());
    EXPECT_EQ(gui->getToolTip(), nullptr);
    EXPECT_EQ(gui->getWidget(std::wstring(guiController::TITLE_BAR_ID)), nullptr);
  });
}

TEST_F(guiControllerTest, hitTestFindsTheFrontMostPickableWidget) {
  run([&] {
    gui->update();
    panel* back = addPanelAt(L"back", 10, 10);
    panel* front = addPanelAt(L"front", 40, 20);
    panel* child = addPanelAt(L"child", 5, 5, back);
    EXPECT_EQ(gui->getWidgetBelowMouse(15, 15), child);
    EXPECT_EQ(gui->getWidgetBelowMouse(60, 30), front) << "the later sibling is on top";
    EXPECT_EQ(gui->getWidgetBelowMouse(300, 200), nullptr) << "the desktop itself is no answer";

    // A child reaching out of its parent is hit only inside the parent.
    child->setRect2D(50, 5, 60, 40);
    EXPECT_EQ(gui->getWidgetBelowMouse(10 + 50 + 55, 20), nullptr);

    // A top-most widget wins over a later sibling.
    gui->setTopMost(back, true);
    EXPECT_EQ(gui->getWidgetBelowMouse(45, 25), back);
    gui->setTopMost(back, false);
    EXPECT_EQ(gui->getWidgetBelowMouse(45, 25), front);

    // Disabled widgets block nothing unless they let hits through.
    front->enabled = false;
    EXPECT_EQ(gui->getWidgetBelowMouse(90, 50), nullptr);
    front->setFlagSkipDisabled(true);
    EXPECT_EQ(gui->getWidgetBelowMouse(90, 50), front);

    // A private widget is hit but never handed out by getWidgetAt.
    front->getFlags().setFlag(WF_PRIVATE);
    EXPECT_EQ(gui->getWidgetBelowMouse(90, 50), front);
    EXPECT_EQ(gui->getWidgetAt(90, 50), nullptr);
  });
}

TEST_F(guiControllerTest, clickReachesAbsoluteDelegatesThenTheWidgetThenItsRedirects) {
  run([&] {
    gui->update();
    panel* control = addPanelAt(L"control", 10, 10);
    panel* part = addPanelAt(L"part", 0, 0, control);
    part->setRedirect(control);
    listener window(&log, "window"), onPart(&log, "part"), onControl(&log, "control");
    for (EVENT_TYPE t :
         {SYSTEM::MOUSE_LEFT_DOWN, SYSTEM::MOUSE_LEFT_UP, SYSTEM::MOUSE_LEFT_CLICK}) {
      delegates.emplace_back(&window, &listener::onEvent);
      win.registerAbsoluteInputEventCallBack(t, delegates.back());
    }
    const auto clicks = {SYSTEM::MOUSE_LEFT_DOWN, SYSTEM::MOUSE_LEFT_UP, SYSTEM::MOUSE_LEFT_CLICK};
    listen(part, onPart, clicks);
    listen(control, onControl, clicks);

    leftClickAt(20, 20);
    EXPECT_TRUE(log.empty()) << "input waits for the update tick";
    gui->update();
    EXPECT_EQ(
        log, (std::vector<std::string>{"window 15", "part 15", "control 15", "window 16", "part 16",
                                       "control 16", "window 17", "part 17", "control 17"}));
    EXPECT_EQ(onControl.lastPrevious, part);
    EXPECT_EQ(onControl.lastTarget, control);
    EXPECT_EQ(gui->getLastEvaluateEventype(), SYSTEM::MOUSE_LEFT_CLICK);
    EXPECT_EQ(gui->getSecondLastEvaluateEventype(), SYSTEM::MOUSE_LEFT_UP);

    // A click on the bare desktop reaches the window's delegates alone.
    log.clear();
    leftClickAt(300, 200);
    gui->update();
    EXPECT_EQ(log, (std::vector<std::string>{"window 15", "window 16", "window 17"}));

    // A disabled control hears nothing through its part.
    log.clear();
    control->enabled = false;
    leftClickAt(20, 20);
    gui->update();
    EXPECT_EQ(log, (std::vector<std::string>{"window 15", "window 16", "window 17"}));
  });
}

TEST_F(guiControllerTest, clickStatesFollowDownAndUp) {
  run([&] {
    gui->update();
    panel* p = addPanelAt(L"p", 10, 10);
    p->getFlags().setFlag(WF_FADE_DOWN);
    p->setColorNormal(CORE::color(10, 20, 30, 255));
    p->setColorDown(CORE::color(200, 100, 50, 255));
    moveTo(20, 20);
    press(WM_LBUTTONDOWN);
    gui->update();
    EXPECT_TRUE(p->getFlags().isFlagSet(WF_FADE)) << "a fade to the down colour runs";
    press(WM_LBUTTONUP);
    gui->update();
    EXPECT_TRUE(p->getFlags().isFlagSet(WF_FADE)) << "and back to normal";
  });
}

TEST_F(guiControllerTest, focusMovesOnClicksAndKeysGoToTheFocusedWidget) {
  run([&] {
    gui->update();
    panel* a = addPanelAt(L"a", 10, 10);
    panel* b = addPanelAt(L"b", 100, 10);
    panel* inA = addPanelAt(L"inA", 5, 5, a);
    inA->setRect2D(5, 5, 10, 10);
    panel* plain = addPanelAt(L"plain", 200, 10);
    a->setOnFocusOnClick(true);
    b->setOnFocusOnClick(true);
    listener onA(&log, "a"), onB(&log, "b");
    const auto heard = {SYSTEM::FOCUS_GAINED, SYSTEM::FOCUS_LOST, SYSTEM::KEY_DOWN};
    listen(a, onA, heard);
    listen(b, onB, heard);

    leftClickAt(50, 40);
    gui->update();
    EXPECT_EQ(gui->getFocusedWidget(), a);
    EXPECT_EQ(log, (std::vector<std::string>{"a 28"}));

    // Keys go to the focused widget, wherever the mouse is.
    log.clear();
    moveTo(120, 20);
    send(WM_KEYDOWN, 'Q', 0x100001);
    send(WM_KEYUP, 'Q', 0xC0100001);
    gui->update();
    EXPECT_EQ(log, (std::vector<std::string>{"a 30"}));

    // A click on a child of the focused widget keeps the focus.
    log.clear();
    leftClickAt(20, 20);
    EXPECT_EQ(gui->getWidgetBelowMouse(20, 20), inA);
    gui->update();
    EXPECT_EQ(gui->getFocusedWidget(), a);
    EXPECT_TRUE(log.empty());

    leftClickAt(120, 20);
    gui->update();
    EXPECT_EQ(gui->getFocusedWidget(), b);
    EXPECT_EQ(log, (std::vector<std::string>{"a 29", "b 28"}));

    // A widget that takes no focus on click leaves none.
    log.clear();
    leftClickAt(220, 20);
    gui->update();
    EXPECT_EQ(gui->getFocusedWidget(), nullptr);
    EXPECT_EQ(gui->getWidgetBelowMouse(220, 20), plain);
    EXPECT_EQ(log, (std::vector<std::string>{"b 29"}));
  });
}

TEST_F(guiControllerTest, aPopupOpensOnRightClickAndClosesOnAnOutsideClick) {
  run([&] {
    gui->update();
    panel* owner = addPanelAt(L"owner", 10, 10);
    panel* other = addPanelAt(L"other", 200, 10);
    menu* popUp = addMenu(L"menu");
    item* entry = popUp->addItem(widget::ICON_NULL, L"entry");
    owner->setPopUpMenu(popUp, false);
    EXPECT_EQ(owner->getPopUpMenu(), L"menu");
    EXPECT_EQ(owner->getPopUpMenuPointer(), popUp);
    listener onOther(&log, "other");
    listen(other, onOther, {SYSTEM::MOUSE_LEFT_DOWN});

    rightClickAt(30, 30);
    gui->update();
    EXPECT_EQ(gui->getSchedule().getPopup(), popUp);
    EXPECT_TRUE(popUp->isVisible());
    EXPECT_EQ(popUp->getPositionX(), 30.0f);
    EXPECT_EQ(popUp->getPositionY(), 30.0f - popUp->getHeight());

    // A click inside the menu, on its bottom margin below the item, keeps it open.
    const widget::point3f onEntry = entry->getAbsolutePos() + widget::point3f(20, 5, 0);
    EXPECT_EQ(gui->getWidgetBelowMouse(onEntry.x, onEntry.y), entry);
    const widget::point3f inside = popUp->getAbsolutePos() + widget::point3f(20, 1, 0);
    ASSERT_GE(inside.y, 0.0f);
    EXPECT_EQ(gui->getWidgetBelowMouse(inside.x, inside.y), popUp);
    leftClickAt(int(inside.x), int(inside.y));
    gui->update();
    EXPECT_TRUE(popUp->isVisible());

    // Outside, it closes, and the click still reaches the widget below.
    leftClickAt(220, 20);
    gui->update();
    EXPECT_FALSE(popUp->isVisible());
    EXPECT_EQ(gui->getSchedule().getPopup(), nullptr);
    EXPECT_EQ(log, (std::vector<std::string>{"other 15"}));

    // The suppress bit skips one opening.
    owner->getFlags().setFlag(WF_SKIP_NEXT_POPUP);
    rightClickAt(30, 30);
    gui->update();
    EXPECT_FALSE(popUp->isVisible());
    EXPECT_FALSE(owner->getFlags().isFlagSet(WF_SKIP_NEXT_POPUP));
  });
}

TEST_F(guiControllerTest, aRedirectsMenuIsTheOneThatStaysOpen) {
  run([&] {
    gui->update();
    panel* control = addPanelAt(L"control", 10, 10);
    panel* part = addPanelAt(L"part", 0, 0, control);
    part->setRedirect(control);
    menu* partMenu = addMenu(L"partMenu");
    menu* controlMenu = addMenu(L"controlMenu");
    part->setPopUpMenu(L"partMenu", false);
    control->setPopUpMenu(L"controlMenu", true);
    rightClickAt(15, 15);
    gui->update();
    EXPECT_EQ(gui->getSchedule().getPopup(), controlMenu);
    EXPECT_FALSE(partMenu->isVisible());
    EXPECT_TRUE(controlMenu->isVisible());
    // The control asked for its corner rather than the mouse.
    EXPECT_EQ(controlMenu->getPositionX(), 10.0f);
    EXPECT_EQ(controlMenu->getPositionY(), 10.0f - controlMenu->getHeight());
  });
}

TEST_F(guiControllerTest, theTooltipWaitsForItsTimerAndFollowsTheHoveredWidget) {
  run([&] {
    gui->update();
    panel* a = addPanelAt(L"a", 10, 10);
    panel* b = addPanelAt(L"b", 200, 150);
    a->setToolTip(L"first tip");
    b->setToolTip(L"second");
    widget* tip = gui->getToolTip();
    ASSERT_NE(tip, nullptr);

    moveTo(20, 20);
    gui->update();
    EXPECT_EQ(gui->getHoverToolTipWidget(), a);
    gui->render();
    EXPECT_FALSE(tip->isVisible()) << "not before the timer";

    gui->showToolTip();  // what the timer runs when the delay is over
    gui->render();
    EXPECT_TRUE(tip->isVisible());
    EXPECT_EQ(tip->getCaption(), L"first tip");
    auto* tipButton = static_cast<button*>(tip);
    EXPECT_EQ(tipButton->getCaptionPart()->getCaption(), L"first tip");
    // Shown, neither it nor its parts take the mouse.
    const widget* overTip = gui->getWidgetBelowMouse(tip->getPositionX() + tip->getWidth() / 2,
                                                     tip->getPositionY() + tip->getHeight() / 2);
    for (const widget* own :
         {static_cast<const widget*>(tip), static_cast<const widget*>(tipButton->getCaptionPart()),
          static_cast<const widget*>(tipButton->getIconPart())}) {
      EXPECT_NE(overTip, own);
    }
    EXPECT_EQ(tip->getPositionX(), 20.0f + 16);
    EXPECT_EQ(tip->getPositionY(), std::max(0.0f, 20.0f - 16 - tip->getHeight()));
    EXPECT_EQ(gui->getHoverToolTipWidget(), nullptr);

    // Over the other widget, near the top right corner: hidden again, then shown with
    // its text, flipped to stay in the window.
    moveTo(250, 180);
    gui->update();
    EXPECT_FALSE(tip->isVisible());
    gui->showToolTip();
    gui->render();
    EXPECT_TRUE(tip->isVisible());
    EXPECT_EQ(tip->getCaption(), L"second");
    const float x = 250.0f + 16;
    EXPECT_EQ(tip->getPositionX(), x + tip->getWidth() > 320 ? x - tip->getWidth() : x);

    // Leaving clears the due tooltip: a late timer shows nothing.
    moveTo(300, 100);
    gui->update();
    EXPECT_FALSE(tip->isVisible());
    gui->showToolTip();
    gui->render();
    EXPECT_FALSE(tip->isVisible());
  });
}

TEST_F(guiControllerTest, withoutATooltipWidgetHoveringIsHarmless) {
  run([&] {
    gui->update();
    ASSERT_TRUE(gui->eraseNow(gui->getToolTip()));
    EXPECT_EQ(gui->getToolTip(), nullptr);
    panel* a = addPanelAt(L"a", 10, 10);
    a->setToolTip(L"tip");
    moveTo(20, 20);
    gui->update();
    gui->showToolTip();
    EXPECT_FALSE(gui->showToolTipNowFlag.cV()) << "nothing to show";
    gui->render();
    moveTo(300, 200);
    gui->update();
    EXPECT_EQ(gui->getHoverToolTipWidget(), nullptr);
  });
}

TEST_F(guiControllerTest, theTooltipTimerShowsItAfterItsPeriod) {
  run([&] {
    gui->update();
    panel* a = addPanelAt(L"a", 10, 10);
    a->setToolTip(L"tip");
    moveTo(20, 20);
    gui->update();
    // The timer thread raises the flag; no assertion on how long that takes.
    for (int i = 0; i < 1000 && !gui->showToolTipNowFlag.cV(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_TRUE(gui->showToolTipNowFlag.cV());
    gui->render();
    EXPECT_TRUE(gui->getToolTip()->isVisible());
    EXPECT_FALSE(gui->showToolTipNowFlag.cV());
  });
}

TEST_F(guiControllerTest, widgetsErasedDuringAScheduleAreNotTouchedAfterwards) {
  run([&] {
    gui->update();
    panel* killer = addPanelAt(L"killer", 10, 10);
    panel* victim = addPanelAt(L"victim", 100, 10);
    panel* part = addPanelAt(L"part", 0, 0, victim);
    part->setRect2D(0, 0, 10, 10);
    part->setRedirect(victim);
    listener onVictim(&log, "victim");
    listen(victim, onVictim, {SYSTEM::MOUSE_LEFT_CLICK, SYSTEM::KEY_DOWN});
    struct eraser {
      guiController* gui;
      widget* victim;
      widget* self;
      void onDown(const inputEvent*) {
        gui->eraseNow(victim);
        gui->eraseNow(self);
      }
    } e{gui, victim, killer};
    inputEventDelegate d(&e, &eraser::onDown);
    killer->registerInputEventCallBack(SYSTEM::MOUSE_LEFT_DOWN, d);
    victim->setOnFocusOnClick(true);

    // The victim has focus, and events for it and its part wait behind the killer's.
    leftClickAt(150, 40);
    gui->update();
    ASSERT_EQ(gui->getFocusedWidget(), victim);
    log.clear();
    leftClickAt(20, 20);
    gui->simulateInputEvent(SYSTEM::MOUSE_LEFT_CLICK,
                            SYSTEM::sharedPointer<inputEvent>(
                                new inputEvent(SYSTEM::MOUSE_LEFT_CLICK, victim, nullptr)));
    gui->simulateInputEvent(
        SYSTEM::MOUSE_LEFT_CLICK,
        SYSTEM::sharedPointer<inputEvent>(new inputEvent(SYSTEM::MOUSE_LEFT_CLICK, part, nullptr)));
    gui->update();
    EXPECT_FALSE(gui->isValid(L"victim"));
    EXPECT_FALSE(gui->isValid(L"killer"));
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(gui->getFocusedWidget(), nullptr);
    EXPECT_EQ(part->getRedirect(), nullptr);
    // Leave, enter, down, up, click, and the two queued: every event counted.
    EXPECT_EQ(gui->getSchedule().getEvaluated().size(), 7u);
    // The window procedure no longer knows them either.
    EXPECT_EQ(win.getInputContext()->widgetBelowMouse, nullptr);
    moveTo(25, 25);
    send(WM_KEYDOWN, 'Q', 0x100001);
    gui->update();
    gui->render();
    EXPECT_TRUE(log.empty());
  });
}

TEST_F(guiControllerTest, anErasedWidgetLeavesNoPointerInTheControllersLists) {
  run([&] {
    gui->update();
    panel* gone = addPanelAt(L"gone", 10, 10);
    panel* stays = addPanelAt(L"stays", 200, 10);
    menu* popUp = addMenu(L"goneMenu");
    popUp->addItem(widget::ICON_NULL, L"entry");
    gone->setToolTip(L"tip");
    gone->setOnFocusOnClick(true);
    gone->setPopUpMenu(popUp, false);
    stays->setRedirect(gone);
    // Focus, the open popup, the tooltip's hover, the next render's front list and a
    // queued event all name the two widgets that go.
    rightClickAt(20, 30);
    gui->update();
    ASSERT_EQ(gui->getFocusedWidget(), gone);
    ASSERT_EQ(gui->getSchedule().getPopup(), popUp);
    ASSERT_EQ(gui->getHoverToolTipWidget(), gone);
    gone->gotoInFirstPlaneNextRender();
    gui->simulateInputEvent(SYSTEM::KEY_DOWN, SYSTEM::sharedPointer<inputEvent>(
                                                  new inputEvent(SYSTEM::KEY_DOWN, gone, nullptr)));
    EXPECT_TRUE(gui->eraseNow(popUp));
    EXPECT_EQ(gui->getSchedule().getPopup(), nullptr);
    EXPECT_EQ(gone->getPopUpMenuPointer(), nullptr) << "the id names nothing now";
    EXPECT_TRUE(gui->eraseNow(gone));
    EXPECT_EQ(gui->getFocusedWidget(), nullptr);
    EXPECT_EQ(gui->getHoverToolTipWidget(), nullptr);
    EXPECT_EQ(stays->getRedirect(), nullptr);
    EXPECT_EQ(win.getInputContext()->widgetBelowMouse, nullptr);
    // Nothing reaches freed memory (the sanitizer build checks it) and the rest goes on.
    gui->update();
    gui->render();
    leftClickAt(220, 20);
    gui->update();
    EXPECT_EQ(gui->getWidgetBelowMouse(220, 20), stays);
    EXPECT_EQ(gui->getWidgetBelowMouse(20, 30), nullptr);
  });
}

TEST_F(guiControllerTest, gotoInFirstPlaneNextRenderWaitsForTheRender) {
  run([&] {
    gui->update();
    panel* back = addPanelAt(L"back", 10, 10);
    panel* front = addPanelAt(L"front", 10, 10);
    canvas* desktop = gui->getDesktop();
    const int count = desktop->getSlavesCount();
    ASSERT_EQ(desktop->getChildAt(count - 1), front);
    back->gotoInFirstPlaneNextRender();
    EXPECT_EQ(desktop->getChildAt(count - 1), front) << "not while a walk may run";
    EXPECT_EQ(gui->getWidgetBelowMouse(20, 20), front);
    gui->render();
    EXPECT_EQ(desktop->getChildAt(count - 1), back);
    EXPECT_EQ(gui->getWidgetBelowMouse(20, 20), back);
  });
}

TEST_F(guiControllerTest, popUpMenusAreMenusFoundByTheirId) {
  run([&] {
    gui->update();
    panel* owner = addPanelAt(L"owner", 10, 10);
    addPanelAt(L"notAMenu", 100, 100);
    owner->setPopUpMenu(L"notAMenu", false);
    EXPECT_EQ(owner->getPopUpMenuPointer(), nullptr);
    rightClickAt(20, 20);
    gui->update();
    EXPECT_EQ(gui->getSchedule().getPopup(), nullptr) << "a panel is no menu";
    // Named before it exists, the menu is found once it is made.
    owner->setPopUpMenu(L"later", true);
    menu* later = addMenu(L"later");
    const widget* constOwner = owner;
    EXPECT_EQ(constOwner->getPopUpMenuPointer(), later);
    owner->showPopUpMenu(40, 200);
    EXPECT_EQ(gui->getSchedule().getPopup(), later);
    EXPECT_TRUE(later->isVisible());
    EXPECT_EQ(later->getPositionX(), 40.0f);
    owner->closePopUpMenu();
    EXPECT_EQ(gui->getSchedule().getPopup(), nullptr);
    EXPECT_FALSE(later->isVisible());
  });
}

TEST_F(guiControllerTest, aRefreshedItemIsStackedAgainByItsMenu) {
  run([&] {
    gui->update();
    menu* m = addMenu(L"m");
    item* first = m->addItem(widget::ICON_NULL, L"first");
    item* second = m->addItem(widget::ICON_NULL, L"second");
    m->popup(10, 200);
    gui->render();
    const widget::point3f stacked = second->position;
    EXPECT_LT(stacked.y, first->position.y);
    second->setPosition(70, 3, 0);
    gui->render();
    EXPECT_EQ(second->position.x, 70.0f) << "a move alone keeps it where it was put";
    second->refresh();
    gui->render();
    EXPECT_EQ(second->position.x, stacked.x);
    EXPECT_EQ(second->position.y, stacked.y);
  });
}

TEST_F(guiControllerTest, captionsInTheDefaultFontIdAreDrawnAndOtherIdsAreNot) {
  run([&] {
    gui->update();
    // "ID_FONT1" is the renderer's default face; it is made once.
    GUI::font* first = gui->getFont(L"ID_FONT1");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(gui->getFont(L"ID_FONT1"), first);
    EXPECT_EQ(first->getFace(), L"DejaVuSans");
    EXPECT_EQ(gui->getFont(L"ID_FONT7"), nullptr);
    label* shown = gui->addLabel(std::wstring(L"shown"), nullptr);
    shown->setCaption(std::wstring(L"seven chars"), false);
    label* unknown = gui->addLabel(std::wstring(L"unknown"), nullptr);
    unknown->setIdFont(std::wstring(L"ID_FONT7"));
    unknown->setCaption(std::wstring(L"thirteen char"), false);
    device.calls.clear();
    gui->render();
    int seven = 0, thirteen = 0;
    for (const std::string& c : device.calls) {
      seven += c.rfind("renderText 11 ", 0) == 0;
      thirteen += c.rfind("renderText 13 ", 0) == 0;
    }
    EXPECT_EQ(seven, 1);
    EXPECT_EQ(thirteen, 0);
    EXPECT_EQ(shown->getFontInstance().font, first);
    // A new id is looked up again.
    shown->setIdFont(std::wstring(L"ID_FONT7"));
    EXPECT_EQ(shown->getFontInstance().font, nullptr);
  });
}

TEST_F(guiControllerTest, theFullScreenTitleBarShowsInFullScreenAndItsRestoreButtonLeavesIt) {
  run([&] {
    gui->update();
    auto* bar = dynamic_cast<fullscreentitlebar*>(
        gui->getWidget(std::wstring(guiController::TITLE_BAR_ID)));
    ASSERT_NE(bar, nullptr);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_TRUE(bar->isPrivate());
    EXPECT_TRUE(bar->isTopMost());
    EXPECT_EQ(bar->getParent(), gui->getDesktop());
    for (widget* part :
         {static_cast<widget*>(bar->getCaptionPart()), static_cast<widget*>(bar->getMinimizePart()),
          static_cast<widget*>(bar->getRestorePart()), static_cast<widget*>(bar->getClosePart())}) {
      ASSERT_NE(part, nullptr);
      EXPECT_EQ(part->getRedirect(), bar);
    }
    EXPECT_EQ(bar->getClosePart()->getClassColor(), WCC_BUTTON_CLOSE);

    win.setFullScreen(true, true);
    ASSERT_TRUE(win.isFullScreen());
    EXPECT_TRUE(bar->isVisible());
    win.setCaption(L"Scan 12");
    win.showButtonMinimized(false);
    gui->update();
    gui->render();
    // Across the top of the screen inside the desktop's margins, the caption at the left,
    // the buttons at the right.
    const float screenWidth = float(win.getRenderingContext()->windowWidth.cV());
    const float screenHeight = float(win.getRenderingContext()->windowHeight.cV());
    const float* inset = gui->getDesktop()->getMargin();
    EXPECT_EQ(bar->getPositionX(), inset[0]);
    EXPECT_EQ(bar->getWidth(), screenWidth - inset[0] - inset[1]);
    EXPECT_EQ(bar->getPositionY() + bar->getHeight(), screenHeight - inset[2]);
    EXPECT_EQ(bar->getCaptionPart()->getCaption(), L"Scan 12");
    EXPECT_FALSE(bar->getMinimizePart()->isVisible());
    EXPECT_TRUE(bar->getRestorePart()->isVisible());
    const widget::point3f close = bar->getClosePart()->getAbsolutePos();
    const widget::point3f restore = bar->getRestorePart()->getAbsolutePos();
    EXPECT_GT(close.x, restore.x);
    EXPECT_LE(close.x + bar->getClosePart()->getWidth(), screenWidth);

    // A click on restore, through the window procedure, leaves full screen.
    const int x = int(restore.x + 9);
    const int y = int(screenHeight) - int(restore.y + 9);
    widget* below = gui->getWidgetBelowMouse(float(x), screenHeight - float(y));
    ASSERT_NE(below, nullptr);
    EXPECT_TRUE(below == bar->getRestorePart() || below->getRedirect() == bar->getRestorePart());
    send(WM_MOUSEMOVE, 0, makeLParam(x, y));
    send(WM_LBUTTONDOWN, 0, makeLParam(x, y));
    send(WM_LBUTTONUP, 0, makeLParam(x, y));
    gui->update();
    EXPECT_FALSE(win.isFullScreen());
    EXPECT_FALSE(bar->isVisible());
  });
}

TEST_F(guiControllerTest, addGuiCotrollerMovesTheOtherWidgetsButThoseWhoseIdIsTaken) {
  run([&] {
    gui->update();
    panel* mine = addPanelAt(L"shared", 10, 10);
    guiController other(&win, &app);
    ASSERT_TRUE(other.init(false, true, L"other"));
    panel* moved = other.addPanel(std::wstring(L"moved"), nullptr);
    button* push = static_cast<button*>(other.add(WC_BUTTON, L"push", moved));
    panel* clash = other.addPanel(std::wstring(L"shared"), nullptr);
    ASSERT_TRUE(moved && push && clash);
    moved->layout.setHorizontal(HA_FREE);
    moved->layout.setVertical(VA_FREE);
    moved->setRect2D(100, 100, 90, 60);
    other.setTopMost(moved, true);
    canvas* view = other.addCanvas(std::wstring(L"view"), nullptr);
    ASSERT_NE(view, nullptr);
    other.attachCanvas(view);
    const int before = gui->getWidgetsCount();

    testing::internal::CaptureStdout();
    gui->addGuiCotroller(&other, nullptr);
    const std::string said = testing::internal::GetCapturedStdout();
    // Its desktop, tooltip (with two parts) and "shared" stay; the rest comes here.
    EXPECT_NE(said.find("Fail ADD: shared"), std::string::npos);
    EXPECT_NE(said.find("Fail ADD: GUICONTROLLER_WIDGET_DESKTOP"), std::string::npos);
    EXPECT_EQ(other.getWidgetsCount(), 5);
    EXPECT_EQ(gui->getWidgetsCount(), before + 5) << "moved, push and its two parts, view";
    ASSERT_EQ(gui->getCanvases().size(), 2u);
    EXPECT_EQ(gui->getCanvases()[1], view) << "the other's canvas is drawn here after ours";
    EXPECT_EQ(other.getCanvases().size(), 1u);
    EXPECT_EQ(gui->getWidget(L"moved"), moved);
    EXPECT_EQ(gui->getWidget(L"shared"), mine);
    EXPECT_EQ(other.getWidget(L"moved"), nullptr);
    EXPECT_EQ(moved->controller, gui);
    EXPECT_EQ(push->getCaptionPart()->controller, gui);
    EXPECT_EQ(push->getCaptionPart()->getRedirect(), push) << "parts still lead to the button";
    EXPECT_EQ(moved->getParent(), gui->getDesktop());
    const auto& topMost = gui->getDesktop()->getTopMost();
    EXPECT_EQ(std::count(topMost.begin(), topMost.end(), moved), 1);

    // The moved button answers clicks here, and the other controller can go first.
    listener onPush(&log, "push");
    listen(push, onPush, {SYSTEM::MOUSE_LEFT_CLICK});
    const widget::point3f at = push->getAbsolutePos() + widget::point3f(5, 5, 0);
    leftClickAt(int(at.x), int(at.y));
    gui->update();
    EXPECT_EQ(log, (std::vector<std::string>{"push 17"}));
    other.discard();
    gui->render();
    EXPECT_TRUE(gui->eraseNow(moved));
  });
}

TEST_F(guiControllerTest, erasuresQueuedForRenderTakeAtMostThirtyTwoAFrame) {
  run([&] {
    gui->update();
    std::vector<widget*> many;
    for (int i = 0; i < 33; ++i) many.push_back(addPanelAt(L"p" + std::to_wstring(i), 1, 1));
    const int before = gui->getWidgetsCount();
    for (widget* w : many) gui->eraseAfter(w);
    device.calls.clear();
    gui->render();
    EXPECT_EQ(gui->getWidgetsCount(), before - 32);
    // They were drawn in the frame that erased them.
    int patches = 0;
    for (const std::string& c : device.calls) patches += c.rfind("renderIndexedGeometry", 0) == 0;
    EXPECT_GE(patches, 33);
    gui->render();
    EXPECT_EQ(gui->getWidgetsCount(), before - 33);
  });
}

TEST_F(guiControllerTest, renderBracketsTheWidgetsInTheGuiStates) {
  run([&] {
    gui->update();
    addPanelAt(L"p", 10, 10);
    device.calls.clear();
    gui->render();
    // The first call of each kind, in order: the controller's skin and blending, then the
    // desktop's pixel camera, unlit and without depth test, then the patches.
    std::vector<std::string> order;
    for (const std::string& c : device.calls) {
      for (const char* key : {"setTextureState", "setAlphaState", "setBlendState", "setCameraState",
                              "setLightingState 0", "setZbufferState 0", "renderIndexedGeometry"}) {
        if (c.rfind(key, 0) == 0 && std::find(order.begin(), order.end(), key) == order.end())
          order.push_back(key);
      }
    }
    EXPECT_EQ(order, (std::vector<std::string>{"setTextureState", "setAlphaState", "setBlendState",
                                               "setCameraState", "setLightingState 0",
                                               "setZbufferState 0", "renderIndexedGeometry"}));
    // After the frame the stacks are as the scene left them.
    EXPECT_EQ(win.getRenderingContext()->getCameraStack()->getDepth(), 1);
  });
}

TEST_F(guiControllerTest, colourSchemaRecoloursWidgetsThatUseIt) {
  run([&] {
    panel* p = gui->addPanel(std::wstring(L"p"), nullptr);
    p->setUseSchemaColor(true);
    p->setjustColor(WCC_PANEL);
    EXPECT_EQ(gui->getColor(WCC_PANEL, 0).r, 0xD2);
    gui->setColor(WCC_PANEL, CORE::color(1, 2, 3, 255), 0);
    EXPECT_EQ(gui->getColor(WCC_PANEL, 0).g, 2);
    EXPECT_EQ(p->getColorNormal().b, 3);
    panel* own = gui->addPanel(std::wstring(L"own"), nullptr);
    own->setUseSchemaColor(false);
    own->setColorNormal(CORE::color(9, 9, 9, 255));
    gui->setColor(WCC_CUSTOM_WIDGET, CORE::color(1, 1, 1, 255), 0);
    EXPECT_EQ(own->getColorNormal().r, 9);
  });
}

namespace {

// How many users the stored texture `id` has: the skin holds one on its sheet.
int sheetUsers(SYSTEM::winMain& w, const wchar_t* id) {
  return w.getRenderingContext()->getTextureStorage()->getEntry(id)->getClientCount();
}

}  // namespace

TEST_F(guiControllerTest, skinsByNameHoldOnlyTheChosenSheet) {
  run([&] {
    // The window loaded the sheets before the desktop was built, so the default holds.
    EXPECT_EQ(gui->getSkin(), GUI_XP_SKIN);
    EXPECT_EQ(sheetUsers(win, L"GUI_XP_SKIN"), 1);
    gui->setSkin(GUI_RAG_SKIN);
    EXPECT_EQ(gui->getSkin(), GUI_RAG_SKIN);
    // The old sheet is let go, or it would stay the one drawn under the new name.
    EXPECT_EQ(sheetUsers(win, L"GUI_RAG_SKIN"), 1);
    EXPECT_EQ(sheetUsers(win, L"GUI_XP_SKIN"), 0);
    gui->setSkin(7);
    EXPECT_EQ(gui->getSkin(), GUI_NO_SKIN);
    EXPECT_EQ(sheetUsers(win, L"GUI_RAG_SKIN"), 0);
  });
}

// A window told to skip the default textures loads none and wears no skin until the
// program loads them.
class windowWithoutSkins : public probeWindow {
 public:
  windowWithoutSkins(SYSTEM::application* app, RENDERING::renderer* device)
      : probeWindow(app, device) {
    skipDefaultTextures = true;
  }
};

using guiWindowWithoutSkinsTest = scriptedPlatformTest;

TEST_F(guiWindowWithoutSkinsTest, skipDefaultTexturesLeavesTheStorageEmptyAndNoSkin) {
  SYSTEM::application app(L"", L"");
  windowWithoutSkins plain(&app, &device);
  runWithWindow(app, platform, plain, [&] {
    auto* gui = dynamic_cast<guiController*>(plain.getGui());
    ASSERT_NE(gui, nullptr);
    CORE::textureStorage* textures = plain.getRenderingContext()->getTextureStorage();
    EXPECT_EQ(textures->getEntryCount(), 0);
    EXPECT_EQ(gui->getSkin(), GUI_NO_SKIN);
    ASSERT_TRUE(textures->loadDefaultTexture());
    gui->setSkin(GUI_XP_SKIN);
    EXPECT_EQ(gui->getSkin(), GUI_XP_SKIN);
  });
}

// Counts the requests to close and refuses them, so that the loop keeps it.
class windowRefusingToClose : public probeWindow {
 public:
  windowRefusingToClose(SYSTEM::application* app, RENDERING::renderer* device)
      : probeWindow(app, device) {
    veto = true;
  }
  void windowIsClosing(bool& closing) override {
    ++closeRequests;
    probeWindow::windowIsClosing(closing);
  }
  int closeRequests = 0;
};

TEST_F(guiWindowWithoutSkinsTest, theTitleBarsCloseAndMinimiseButtonsActOnTheWindow) {
  SYSTEM::application app(L"", L"");
  windowRefusingToClose w(&app, &device);
  runWithWindow(app, platform, w, [&] {
    auto* gui = dynamic_cast<guiController*>(w.getGui());
    ASSERT_NE(gui, nullptr);
    auto* bar = dynamic_cast<fullscreentitlebar*>(
        gui->getWidget(std::wstring(guiController::TITLE_BAR_ID)));
    ASSERT_NE(bar, nullptr);
    w.setFullScreen(true, true);
    auto click = [&](widget* target) {
      gui->simulateInputEvent(SYSTEM::MOUSE_LEFT_CLICK,
                              SYSTEM::sharedPointer<inputEvent>(
                                  new inputEvent(SYSTEM::MOUSE_LEFT_CLICK, target, nullptr)));
      gui->update();
    };
    click(bar->getClosePart());
    EXPECT_EQ(w.closeRequests, 1);
    click(bar->getMinimizePart());
    EXPECT_EQ(w.getWindowShowMode(), SYSTEM::SHOW_MINIMIZED);
    EXPECT_EQ(w.closeRequests, 1);
  });
}

TEST(eventScheduleTable, actionsByEventType) {
  using S = eventSchedule;
  EXPECT_EQ(S::actionsFor(SYSTEM::MOUSE_MOVE_ENTER), S::ACT_ENTER | S::ACT_HIGHLIGHTED);
  EXPECT_EQ(S::actionsFor(SYSTEM::MOUSE_DRAG_OVER_LEAVE), S::ACT_LEAVE | S::ACT_NORMAL);
  EXPECT_EQ(S::actionsFor(SYSTEM::MOUSE_LEFT_DRAG_LEAVE), S::ACT_INPUT | S::ACT_CLOSE_AFTER);
  EXPECT_EQ(S::actionsFor(SYSTEM::MOUSE_LEFT_DOWN),
            S::ACT_FOCUS | S::ACT_CLOSE_BEFORE | S::ACT_DOWN);
  EXPECT_EQ(S::actionsFor(SYSTEM::MOUSE_LEFT_UP), S::ACT_NORMAL);
  EXPECT_EQ(S::actionsFor(SYSTEM::MOUSE_RIGHT_CLICK),
            S::ACT_FOCUS | S::ACT_CLOSE_BEFORE | S::ACT_INPUT | S::ACT_OPEN);
  for (EVENT_TYPE t :
       {SYSTEM::MOUSE_LEFT_CLICK, SYSTEM::MOUSE_LEFT_DOUBLE_CLICK, SYSTEM::MOUSE_RIGHT_DOWN,
        SYSTEM::MOUSE_RIGHT_DOUBLE_CLICK, SYSTEM::MOUSE_MIDDLE_DOWN, SYSTEM::MOUSE_MIDDLE_CLICK,
        SYSTEM::MOUSE_MIDDLE_DOUBLE_CLICK}) {
    EXPECT_EQ(S::actionsFor(t), S::ACT_FOCUS | S::ACT_CLOSE_BEFORE | S::ACT_INPUT) << t;
  }
  for (EVENT_TYPE t : {SYSTEM::MOUSE_MOVE, SYSTEM::MOUSE_DRAG_MOVE, SYSTEM::MOUSE_LEFT_DRAG_ENTER,
                       SYSTEM::MOUSE_LEFT_DRAG, SYSTEM::MOUSE_RIGHT_UP, SYSTEM::MOUSE_MIDDLE_UP,
                       SYSTEM::MOUSE_WHEEL, SYSTEM::KEY_DOWN, SYSTEM::KEY_CHAR, SYSTEM::KEY_UP}) {
    EXPECT_EQ(S::actionsFor(t), unsigned(S::ACT_INPUT)) << t;
  }
  for (int t = SYSTEM::FOCUS_GAINED; t <= SYSTEM::EVENT_TYPE_COUNT; ++t) {
    if (t >= SYSTEM::KEY_DOWN && t <= SYSTEM::KEY_UP) continue;
    EXPECT_EQ(S::actionsFor(EVENT_TYPE(t)), unsigned(S::ACT_NONE)) << t;
  }
}
