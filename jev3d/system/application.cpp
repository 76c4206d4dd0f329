#include "jev3d/system/application.h"

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "jev3d/platform/messages.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/resources/textureStorage.h"
#include "jev3d/system/callBack.h"
#include "jev3d/system/event.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/inputEvent.h"
#include "jev3d/system/thread.h"
#include "jev3d/system/threadTimer.h"
#include "jev3d/system/updateContext.h"
#include "jev3d/system/winMain.h"
#include "jev3d/system/windowGui.h"

namespace JEV {
namespace SYSTEM {

using namespace PLATFORM;

struct application::initEntry {
  winMain* win = nullptr;
  thread* initThread = nullptr;
  event doneEvent;
};

namespace {

// Numbers the generated window class names.
int windowCounter = 0;

std::int64_t nativeWindowProc(windowHandle hWnd, unsigned msg, std::uint64_t wParam,
                              std::int64_t lParam) {
  auto* win = static_cast<winMain*>(current().getUserData(hWnd));
  if (!win) return current().defaultProcedure(hWnd, msg, wParam, lParam);
  return win->getApplication()->windowProc(win, hWnd, msg, wParam, lParam);
}

constexpr unsigned LEAVE_WATCH_TIMER = 2;
constexpr unsigned LEAVE_WATCH_PERIOD = 2000;

// The pointer may leave without the window hearing of it: every two seconds, while it is
// tracked, check that it is still over this window, and post the leave otherwise.
void leaveWatch(windowHandle hWnd, unsigned) {
  platform& p = current();
  rect r;
  int x = 0, y = 0;
  const bool inside = p.getWindowRect(hWnd, r) && p.getCursorPos(x, y) && x >= r.x && y >= r.y &&
                      x < r.x + r.width && y < r.y + r.height;
  if (inside && p.windowFromPoint(x, y) == hWnd) return;
  p.killTimer(hWnd, LEAVE_WATCH_TIMER);
  p.postMessage(hWnd, WM_MOUSELEAVE, 0, 0);
}

// Input state and queue of one window for one message, with the GUI lock held for the
// scope's life.
class messageScope {
 public:
  messageScope(winMain* w, windowHandle h, unsigned m, std::uint64_t wp, std::int64_t lp)
      : win(w),
        ctx(*w->getInputContext()),
        gui(w->getGui()),
        hWnd(h),
        msg(m),
        wParam(wp),
        lParam(lp),
        x(ctx.mouseX),
        y(ctx.mouseY) {
    if (gui) gui->waitGuiMutex(INFINITE);
  }
  ~messageScope() {
    if (gui) gui->releaseGuiMutex();
  }
  messageScope(const messageScope&) = delete;
  messageScope& operator=(const messageScope&) = delete;

  GUI::widget* below(float px, float py) const {
    return gui ? gui->getWidgetBelowMouse(px, py) : nullptr;
  }
  // The widget at this message's position.
  GUI::widget* belowNow() const { return below(x, y); }
  // Mouse messages carry their position; others use the last one a move stored.
  void takePositionFromMessage() {
    x = static_cast<float>(lowWordSigned(lParam));
    y = static_cast<float>(win->getRenderingContext()->windowHeight.cV() - highWordSigned(lParam));
  }
  // The widget a button event goes to: the one the last move recorded, checked anew at
  // this message's position, since it may have been hidden, disabled or erased since (a
  // closed menu's item must not hear a second click). After the mouse left the window the
  // recorded root stays the target.
  GUI::widget* recordedBelow() const {
    GUI::widget* recorded = ctx.widgetBelowMouse;
    if (gui && recorded && recorded == gui->getRootWidget()) return recorded;
    return belowNow();
  }
  GUI::widget* focusedOrBelow() const {
    if (!gui) return nullptr;
    GUI::widget* f = gui->getFocusedWidget();
    return f ? f : ctx.widgetBelowMouse;
  }

  void queue(inputEvent* e) {
    ctx.events.push_back(std::make_pair(e->type, sharedPointer<inputEvent>(e)));
    inputEvent& last = *ctx.events.back().second;
    last.hWnd = reinterpret_cast<void*>(hWnd);
    last.message = msg;
    last.wParam = wParam;
    last.lParam = lParam;
  }
  // A mouse event at the current position.
  void queueMouse(EVENT_TYPE type, GUI::widget* target, GUI::widget* previous = nullptr,
                  float deltaX = 0, float deltaY = 0, float wheel = 0) {
    queue(new inputEvent(type, target, previous, x, y, deltaX, deltaY, wheel));
  }
  void queueKey(EVENT_TYPE type, GUI::widget* target, int keyCode, int charCode) {
    queue(new inputEvent(type, target, nullptr, keyCode, charCode));
  }

  winMain* win;
  inputContext& ctx;
  windowGui* gui;
  windowHandle hWnd;
  unsigned msg;
  std::uint64_t wParam;
  std::int64_t lParam;
  float x;
  float y;
};

// The thread that runs the loop, the only one that may run window procedures.
std::atomic<std::thread::id> loopThread;

// wParam of a copy-data message that the queue carried: the window procedure frees it.
constexpr std::uint64_t POSTED_COPY_DATA = 0x4A45560001ull;

struct postedCopyData {
  copyDataRecord record;  // first: lParam points here
  interprocessRecord payload;
};

// Progress records of a callBack reach the copy-data delegates of the target window: at
// once on the loop's thread, through the queue from any other, which must not wait for
// the loop.
void sendProgressRecord(void* target, const interprocessRecord& payload) {
  const auto hWnd = static_cast<windowHandle>(reinterpret_cast<std::uintptr_t>(target));
  platform& p = current();
  if (std::this_thread::get_id() == loopThread.load()) {
    copyDataRecord record{0, sizeof payload, &payload};
    p.dispatchMessage(message{hWnd, WM_COPYDATA, 0, reinterpret_cast<std::intptr_t>(&record)});
    return;
  }
  auto* copy = new postedCopyData{copyDataRecord{0, sizeof payload, nullptr}, payload};
  copy->record.bytes = &copy->payload;
  if (!p.postMessage(hWnd, WM_COPYDATA, POSTED_COPY_DATA, reinterpret_cast<std::intptr_t>(copy))) {
    delete copy;
  }
}

enum { LEFT, MIDDLE, RIGHT };

// One mouse button: its two flags in the input context and its event types.
struct mouseButton {
  bool& down;
  bool& drag;
  EVENT_TYPE downEvent, upEvent, clickEvent, doubleClickEvent;
  EVENT_TYPE dragEnterEvent, dragEvent, dragLeaveEvent;
};

mouseButton buttonOf(inputContext& c, int b) {
  switch (b) {
    case LEFT:
      return {c.leftDown,
              c.leftDrag,
              MOUSE_LEFT_DOWN,
              MOUSE_LEFT_UP,
              MOUSE_LEFT_CLICK,
              MOUSE_LEFT_DOUBLE_CLICK,
              MOUSE_LEFT_DRAG_ENTER,
              MOUSE_LEFT_DRAG,
              MOUSE_LEFT_DRAG_LEAVE};
    case MIDDLE:
      return {c.middleDown,
              c.middleDrag,
              MOUSE_MIDDLE_DOWN,
              MOUSE_MIDDLE_UP,
              MOUSE_MIDDLE_CLICK,
              MOUSE_MIDDLE_DOUBLE_CLICK,
              MOUSE_MIDDLE_DRAG_ENTER,
              MOUSE_MIDDLE_DRAG,
              MOUSE_MIDDLE_DRAG_LEAVE};
    default:
      return {c.rightDown,
              c.rightDrag,
              MOUSE_RIGHT_DOWN,
              MOUSE_RIGHT_UP,
              MOUSE_RIGHT_CLICK,
              MOUSE_RIGHT_DOUBLE_CLICK,
              MOUSE_RIGHT_DRAG_ENTER,
              MOUSE_RIGHT_DRAG,
              MOUSE_RIGHT_DRAG_LEAVE};
  }
}

// The first button, in the order left, middle, right, that drags (or, with `dragging`
// false, that is down); -1 if none.
int firstButton(inputContext& c, bool dragging) {
  for (int b : {LEFT, MIDDLE, RIGHT}) {
    const mouseButton button = buttonOf(c, b);
    if (dragging ? button.drag : button.down) return b;
  }
  return -1;
}

// Both leave both needed-fields true. "Dirty" notifies the render field and then the
// update field; "dirty-set" does the same through the assignment operators.
void dirty(winMain* win) {
  win->renderNeeded.V() = true;
  win->renderNeeded.touch();
  win->updateNeeded = win->renderNeeded;
}

void dirtySet(winMain* win) {
  win->renderNeeded = true;
  win->updateNeeded = win->renderNeeded;
}

}  // namespace

application::application() { callBack::setInterprocessSender(sendProgressRecord); }

application::application(const std::wstring&, const std::wstring& instanceName) {
  if (!instanceName.empty()) {
    instanceLimiter.setOn(instanceName);
    if (instanceLimiter.isAnotherInstanceRunning()) std::exit(0);
  }
  callBack::setInterprocessSender(sendProgressRecord);
}

application::~application() { instanceLimiter.setOff(); }

bool application::addWin(winMain* win) {
  winToAddMutex.wait(INFINITE);
  winToAdd.push_back(win);
  winToAddMutex.release();
  return true;
}

winMain* application::getWindowByHWnd(windowHandle hWnd) {
  auto it = windows.find(hWnd);
  return it == windows.end() ? nullptr : it->second;
}

std::vector<winMain*> application::getWindows() const {
  std::vector<winMain*> out;
  for (const auto& w : windows) out.push_back(w.second);
  return out;
}

void application::addCopyDataDelegate(sharedPointer<delegate> d) { copyDataDelegates.push_back(d); }

void application::removeCopyDataDelegate(sharedPointer<delegate> d) {
  for (auto it = copyDataDelegates.begin(); it != copyDataDelegates.end(); ++it) {
    if (sameDelegate(*it, d)) {
      copyDataDelegates.erase(it);
      return;
    }
  }
}

void application::setLimitInstanceOn(const std::wstring& name) { instanceLimiter.setOn(name); }
void application::setLimitInstanceOff() { instanceLimiter.setOff(); }
bool application::isAnotherInstanceRunning() const {
  return instanceLimiter.isAnotherInstanceRunning();
}

void application::terminateApplication() { std::exit(0); }

bool application::createJEVWindowStep1(winMain* win, windowProcedure procedure) {
  platform& p = current();
  RENDERING::renderingContext& ctx = *win->renderCtx;
  int screenW = 0, screenH = 0;
  p.getScreenSize(screenW, screenH);
  const int width = ctx.windowWidth.cV();
  const int height = ctx.windowHeight.cV();
  rect area{((screenW & 0xFFFF) - width) / 2, ((screenH & 0xFFFF) - height) / 2, width, height};
  if (win->positionSet) {
    area.x = static_cast<int>(win->position[0]);
    area.y = screenH - static_cast<int>(win->position[1]) - height;
  } else {
    win->position[0] = static_cast<float>(area.x);
    win->position[1] = static_cast<float>(screenH - area.y - height);
  }
  win->size[0] = static_cast<float>(width);
  win->size[1] = static_cast<float>(height);

  win->closing = false;
  if (win->className.empty()) win->className = L"JEVCLASS" + std::to_wstring(windowCounter);

  const windowHandle hWnd =
      p.createWindow(windowDescriptor{win->caption, area, win->style()}, procedure);
  if (!hWnd) {
    eraseWin(win);
    return false;
  }
  p.showWindow(hWnd, SW_HIDE);
  win->hWnd = hWnd;
  p.setUserData(hWnd, win);
  win->hDC = hWnd;
  win->tickWindow = hWnd;

  bool recreate = false;
  RENDERING::renderer* device = win->device;
  if (!device || !device->createContext(hWnd, recreate) || !device->makeCurrentContext(false)) {
    eraseWin(win);
    return false;
  }
  if (recreate) {
    // The window cannot take the context's format: make it anew.
    eraseWin(win);
    return createJEVWindowStep1(win, procedure);
  }
  device->makeCurrentContext(false);

  waitToAddMutex.wait(INFINITE);
  waitToAdd.push_back(win);
  waitToAddMutex.release();

  device->init();
  // The skins and icons; a failure has said why on the error stream and the window goes
  // on with plain colours. There is no font storage: captions use the renderer's face.
  if (!win->skipDefaultTextures) {
    if (CORE::textureStorage* textures = ctx.getTextureStorage()) textures->loadDefaultTexture();
  }
  if (win->gui) win->gui->init(true, true, L"");

  p.showWindow(hWnd, SW_HIDE);
  ++windowCounter;
  return true;
}

bool application::createJEVWindowStep2(winMain* win) {
  if (win->init()) return true;
  eraseWin(win);
  current().messageBox(L"Initialization Failed.", L"JEV");
  return false;
}

void application::delegateCreateWindow(void* e) {
  auto* entry = static_cast<initEntry*>(e);
  if (entry->win->init()) {
    entry->doneEvent.set();
    return;
  }
  eraseWin(entry->win);
  current().messageBox(L"Initialization Failed.", L"JEV");
  std::exit(0);
}

bool application::createJEVWindowStep3(winMain* win) {
  RENDERING::renderer* device = win->device;
  device->makeCurrentContext(false);
  win->changeRect();
  win->setWindowShowMode(win->showMode);
  current().setForeground(win->hWnd);
  device->makeCurrentContext(false);
  device->resetDevice(win->renderCtx);
  RENDERING::renderingContext& ctx = *win->renderCtx;
  const int width = ctx.windowWidth.cV();
  const int height = ctx.windowHeight.cV();
  ctx.windowWidth = width;
  ctx.windowHeight = height;
  win->resize(width, height);
  if (win->fullScreenWanted) win->setFullScreen(true, true);
  return true;
}

void application::eraseWin(winMain* win) {
  platform& p = current();
  if (win->fullScreen && win->hWnd) p.setFullScreen(win->hWnd, false);
  if (win->hWnd) p.showWindow(win->hWnd, SW_HIDE);
  win->deInit();
  if (win->device) {
    win->device->makeCurrentContext(false);
    win->device->deleteContext();
  }
  if (win->hWnd) {
    p.setUserData(win->hWnd, nullptr);
    p.destroyWindow(win->hWnd);
  }
  windows.erase(win->hWnd);
  win->tickWindow = 0;
  win->hDC = 0;
  win->hWnd = 0;
}

void application::updateWinMain(winMain* win) {
  if (!win->updateNeeded.cV() || !(win->lastUpdateTick < win->updateTick.load())) return;
  win->updateNeeded = false;
  win->lastUpdateTick = win->updateTick.load();
  win->updateCtx->updateUPSTime();
  win->update();
  if (win->updateGui && win->gui) {
    win->gui->update();
  } else {
    drainInput(win);
  }
}

void application::drainInput(winMain* win) {
  inputContext* ctx = win->getInputContext();
  if (!ctx) return;
  windowGui* gui = win->getGui();
  inputContext::eventQueue queued;
  if (gui) gui->waitGuiMutex(INFINITE);
  queued.swap(ctx->events);
  if (gui) gui->releaseGuiMutex();
  for (const auto& [type, e] : queued) {
    if (type < 0 || type >= EVENT_TYPE_COUNT) continue;
    // a copy: a handler may register or unregister handlers
    win->absoluteCallbackMutex.wait(INFINITE);
    const std::list<inputEventDelegate> handlers = win->absoluteCallbacks[type];
    win->absoluteCallbackMutex.release();
    for (const inputEventDelegate& d : handlers) d.invoke(static_cast<void*>(e.get()));
  }
}

void application::drawWinMain(winMain* win) {
  if (!win->renderNeeded.cV() || !(win->lastFrameTick < win->frameTick.load())) return;
  win->renderNeeded = false;
  win->lastFrameTick = win->frameTick.load();
  win->updateCtx->updateFPSTime();
  RENDERING::renderer* device = win->device;
  device->makeCurrentContext(false);
  device->emptyDiscardList();
  win->draw();
  if (win->renderGui && win->gui) win->gui->render();
  device->swapBuffers();
}

int application::mainLoop() {
  platform& p = current();
  loopThread = std::this_thread::get_id();
  std::vector<initEntry*> initEntries;
  bool canDoLoop = false;
  bool splashWasDeleted = false;

  if (splashWindow) {
    if (!createJEVWindowStep1(splashWindow, nativeWindowProc)) std::exit(0);
    if (!createJEVWindowStep2(splashWindow)) std::exit(0);
    createJEVWindowStep3(splashWindow);
    splashWindow->upsTimer->startTicking();
    splashWindow->fpsTimer->startTicking();
    // The splash window never enters the served windows.
    waitToAddMutex.wait(INFINITE);
    waitToAdd.clear();
    waitToAddMutex.release();
  }

  for (;;) {
    message m;
    while (p.peekMessage(m)) p.dispatchMessage(m);

    // Held across Step 1 of every queued window: an addWin from another thread waits.
    winToAddMutex.wait(INFINITE);
    if (!winToAdd.empty()) {
      canDoLoop = false;
      for (winMain* win : winToAdd) {
        if (!createJEVWindowStep1(win, nativeWindowProc)) std::exit(0);
        auto* entry = new initEntry;
        entry->win = win;
        entry->initThread = new thread(
            makeDelegate1(this, &application::delegateCreateWindow, static_cast<void*>(entry)),
            true);
        entry->doneEvent.reset();
        initEntries.push_back(entry);
        entry->initThread->resume();
        std::cout << "start ThreadCreation" << std::endl;
      }
      winToAdd.clear();
    }
    winToAddMutex.release();

    if (!splashWindow && !canDoLoop) {
      bool allDone = true;
      for (initEntry* e : initEntries) allDone = allDone && e->doneEvent.wait(0);
      // While init threads run, nothing is served and the loop does not block.
      if (!allDone) continue;
      for (initEntry* e : initEntries) {
        createJEVWindowStep3(e->win);
        e->win->setWindowShowMode(e->win->showMode);
        e->win->upsTimer->startTicking();
        e->win->fpsTimer->startTicking();
        delete e->initThread;
        delete e;
      }
      initEntries.clear();
      canDoLoop = true;
      std::cout << "Init thread done" << std::endl;
    }

    if (splashWindow) {
      canDoLoop = false;
      updateWinMain(splashWindow);
      drawWinMain(splashWindow);
      if (splashWindow->closing) {
        if (!splashWindow->closeDelegate.isNull()) splashWindow->closeDelegate->invoke();
        eraseWin(splashWindow);
        delete splashWindow;
        splashWindow = nullptr;
        splashWasDeleted = true;
        std::cout << "delete splashscreen" << std::endl;
      }
    }

    if (canDoLoop) {
      if (!waitToAdd.empty()) {
        std::cout << "enter waitToAdd list";
        waitToAddMutex.wait(INFINITE);
        for (winMain* win : waitToAdd) windows[win->hWnd] = win;
        waitToAdd.clear();
        waitToAddMutex.release();
        std::cout << "leave waitToAdd list, windows.size(): " << windows.size() << "  CanDoLoop"
                  << static_cast<int>(canDoLoop) << std::endl;
      }
      for (auto& w : windows) {
        updateWinMain(w.second);
        drawWinMain(w.second);
      }
      for (auto it = windows.begin(); it != windows.end();) {
        winMain* win = it->second;
        if (!win->closing) {
          ++it;
          continue;
        }
        if (win->mainWindow) terminateApplication();
        eraseWin(win);
        if (!win->closeDelegate.isNull()) win->closeDelegate->invoke();
        it = windows.begin();
      }
      if (windows.empty()) {
        for (initEntry* e : initEntries) {
          delete e->initThread;
          delete e;
        }
        return 1;
      }
    }

    if (splashWasDeleted) {
      splashWasDeleted = false;
      std::cout << "splashscreen_was_deleted_now reboot loop" << std::endl;
      continue;
    }
    winToAddMutex.wait(INFINITE);
    const bool nothingQueued = winToAdd.empty();
    winToAddMutex.release();
    // The result is not looked at: only an empty window list ends the loop.
    if (nothingQueued && p.getMessage(m)) p.dispatchMessage(m);
  }
}

std::int64_t application::windowProc(winMain* win, windowHandle hWnd, unsigned msg,
                                     std::uint64_t wParam, std::int64_t lParam) {
  platform& p = current();
  auto byDefault = [&] { return p.defaultProcedure(hWnd, msg, wParam, lParam); };
  switch (msg) {
    case WM_CREATE:
    case WM_ACTIVATE:
    case WM_ENABLE:
    case WM_PAINT:
    case WM_ERASEBKGND:
    case WM_SHOWWINDOW:
    case WM_SETTINGCHANGE:
    case WM_PAINTICON:
    case WM_WINDOWPOSCHANGING:
    case WM_WINDOWPOSCHANGED:
    case WM_DISPLAYCHANGE:
    case WM_SIZING:
    case WM_ENTERSIZEMOVE:
      dirty(win);
      return byDefault();

    case WM_SIZE: {
      if (wParam == SIZE_RESTORED || wParam == SIZE_MAXIMIZED) {
        const int width = static_cast<int>(lowWord(lParam));
        int height = static_cast<int>(highWord(lParam));
        if (height == 0) height = 1;
        win->renderCtx->windowWidth = width;
        win->renderCtx->windowHeight = height;
        if (win->device) win->device->resetDevice(win->renderCtx);
        if (wParam == SIZE_RESTORED) {
          win->restored();
        } else {
          win->maximized();
        }
        win->resize(width, height);
        dirtySet(win);
      } else if (wParam == SIZE_MINIMIZED) {
        win->minimized();
      }
      // Every size message also queues a double click where the mouse is: kept as the
      // established behaviour of this message.
      messageScope s(win, hWnd, msg, wParam, lParam);
      s.queueMouse(MOUSE_LEFT_DOUBLE_CLICK, s.belowNow());
      return byDefault();
    }

    case WM_CLOSE:
      win->closeWindow();
      return 0;

    case WM_SETCURSOR:
    case WM_UNICHAR:
    case WM_TICK_UPDATE:
    case WM_TICK_FRAME:
      return byDefault();

    case WM_COPYDATA: {
      auto* record = reinterpret_cast<copyDataRecord*>(static_cast<std::intptr_t>(lParam));
      const auto list = copyDataDelegates;
      for (const auto& d : list) {
        if (!d.isNull()) d->invoke(record);
      }
      if (wParam == POSTED_COPY_DATA) delete reinterpret_cast<postedCopyData*>(record);
      return byDefault();
    }

    case WM_KEYDOWN:
    case WM_KEYUP: {
      const bool down = msg == WM_KEYDOWN;
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        GUI::widget* target = s.focusedOrBelow();
        if (wParam < 65536) s.ctx.keys[wParam] = down;
        // Read from the keyboard on every key, so a lock set before the window had focus
        // shows at the first key.
        s.ctx.capsLockOn = p.isKeyToggled(VK_CAPITAL);
        s.ctx.numLockOn = p.isKeyToggled(VK_NUMLOCK);
        s.queueKey(down ? KEY_DOWN : KEY_UP, target, static_cast<int>(wParam), 0);
        if (!down && wParam == VK_MENU) {
          // AltGr delivers Ctrl and Alt together, and its Ctrl release can be lost.
          s.ctx.keys[VK_CONTROL] = false;
          s.queueKey(KEY_UP, target, VK_CONTROL, 0);
        }
      }
      if (down) {
        dirty(win);
      } else {
        dirtySet(win);
      }
      return byDefault();
    }

    case WM_CHAR: {
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        s.queueKey(KEY_CHAR, s.focusedOrBelow(), 0, static_cast<int>(wParam));
      }
      dirty(win);
      return byDefault();
    }

    case WM_SYSCOMMAND:
      if (wParam == SC_SCREENSAVE) win->startScreenSaver();
      if (wParam == SC_MONITORPOWER) win->startMonitorPower();
      dirty(win);
      return byDefault();

    case WM_MOUSEMOVE: {
      if (!win->mouseTracking) {
        win->mouseTracking = true;
        p.setTimer(hWnd, LEAVE_WATCH_TIMER, LEAVE_WATCH_PERIOD, leaveWatch);
      }
      const float x = static_cast<float>(lowWordSigned(lParam));
      const float y =
          static_cast<float>(win->renderCtx->windowHeight.cV() - highWordSigned(lParam));
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        inputContext& c = s.ctx;
        if (x == c.getMouseX() && y == c.getMouseY()) return byDefault();
        c.mouseX = s.x = x;
        c.mouseY = s.y = y;
        GUI::widget* old = c.widgetBelowMouse;
        GUI::widget* now = s.below(x, y);
        const bool changed = now != old;
        // A running drag goes on; else a button held down starts one. Left, then middle,
        // then right.
        bool dragging = true;
        if (const int b = firstButton(c, true); b >= 0) {
          s.queueMouse(buttonOf(c, b).dragEvent, c.draggedWidget, nullptr, x - c.dragX,
                       y - c.dragY);
          c.dragX = x;
          c.dragY = y;
        } else if (const int d = firstButton(c, false); d >= 0) {
          c.draggedWidget = now;
          c.dragX = x;
          c.dragY = y;
          mouseButton button = buttonOf(c, d);
          s.queueMouse(button.dragEnterEvent, now);
          button.drag = true;
        } else {
          dragging = false;
          if (!changed) {
            s.queueMouse(MOUSE_MOVE, now);
          } else {
            if (old) s.queueMouse(MOUSE_MOVE_LEAVE, old, now);
            if (now) s.queueMouse(MOUSE_MOVE_ENTER, now, old);
          }
        }
        if (dragging) {
          if (!changed) {
            s.queueMouse(MOUSE_DRAG_MOVE, now);
          } else {
            if (old) s.queueMouse(MOUSE_DRAG_OVER_LEAVE, old, now);
            if (now) s.queueMouse(MOUSE_DRAG_OVER_ENTER, now, old);
          }
        }
        c.widgetBelowMouse = now;
      }
      dirtySet(win);
      return byDefault();
    }

    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
    case WM_MBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDBLCLK: {
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        s.takePositionFromMessage();
        inputContext& c = s.ctx;
        // Each button has three messages in a row: down, up, double click.
        const int which = static_cast<int>(msg - WM_LBUTTONDOWN) / 3;
        const int b = which == 0 ? LEFT : which == 1 ? RIGHT : MIDDLE;
        mouseButton button = buttonOf(c, b);
        switch ((msg - WM_LBUTTONDOWN) % 3) {
          case 0:
            if (!button.down) {
              GUI::widget* target = s.belowNow();
              button.down = true;
              if (b == LEFT) c.pressedWidget = target;
              s.queueMouse(button.downEvent, target);
            }
            break;
          case 1:
            if (!button.down) break;
            if (!button.drag) {
              GUI::widget* target = s.recordedBelow();
              s.queueMouse(button.upEvent, target);
              s.queueMouse(button.clickEvent, target);
            } else {
              button.drag = false;
              s.queueMouse(button.dragLeaveEvent, c.draggedWidget);
              s.queueMouse(button.upEvent, s.recordedBelow());
              // Only the left button clicks at the end of a drag, and only where it
              // went down.
              if (b == LEFT) {
                GUI::widget* now = s.belowNow();
                if (now == c.pressedWidget) s.queueMouse(MOUSE_LEFT_CLICK, now);
              }
            }
            button.down = false;
            break;
          default:
            s.queueMouse(button.doubleClickEvent, s.recordedBelow());
            break;
        }
      }
      dirtySet(win);
      return byDefault();
    }

    case WM_MOUSEWHEEL: {
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        const int delta = static_cast<std::int16_t>((wParam >> 16) & 0xFFFF);
        s.queueMouse(MOUSE_WHEEL, s.ctx.widgetBelowMouse, nullptr, 0, 0,
                     static_cast<float>(delta / 120));
      }
      dirtySet(win);
      return byDefault();
    }

    case WM_DROPFILES: {
      // Dropped files are not delivered on this platform: the message only dirties the
      // window when it lands on a widget.
      int x = 0, y = 0;
      rect r;
      if (!p.getCursorPos(x, y) || !p.getWindowRect(hWnd, r)) return 1;
      const float wx = static_cast<float>(x - r.x);
      const float wy = static_cast<float>(win->renderCtx->windowHeight.cV() - (y - r.y));
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        if (!s.below(wx, wy)) return 1;
      }
      dirty(win);
      return byDefault();
    }

    case WM_MOUSELEAVE: {
      win->mouseTracking = false;
      {
        messageScope s(win, hWnd, msg, wParam, lParam);
        inputContext& c = s.ctx;
        GUI::widget* root = s.gui ? s.gui->getRootWidget() : nullptr;
        s.queue(new inputEvent(MOUSE_MOVE_LEAVE, root, nullptr, 0, 0, 0, 0, 0));
        if (c.widgetBelowMouse) s.queueMouse(MOUSE_MOVE_LEAVE, c.widgetBelowMouse);
        c.widgetBelowMouse = root;
        // Leaving ends drags: each button still down gets its release.
        if (c.isMouseLeftButtonDown()) p.postMessage(hWnd, WM_LBUTTONUP, 0, 0);
        if (c.isMouseRightButtonDown()) p.postMessage(hWnd, WM_RBUTTONUP, 0, 0);
        if (c.isMouseMiddleButtonDown()) p.postMessage(hWnd, WM_MBUTTONUP, 0, 0);
        dirtySet(win);
      }
      return byDefault();
    }

    case WM_NOTIFY_ICON: {
      if (lParam >= WM_LBUTTONDOWN && lParam <= WM_MBUTTONDBLCLK) {
        messageScope s(win, hWnd, msg, wParam, lParam);
        s.queueMouse(static_cast<EVENT_TYPE>(NOTIFY_LEFT_DOWN + (lParam - WM_LBUTTONDOWN)),
                     s.belowNow());
      }
      dirtySet(win);
      return byDefault();
    }

    default:
      win->wndProcMsg(msg, wParam, lParam);
      return byDefault();
  }
}

}  // namespace SYSTEM
}  // namespace JEV
