#include "jev3d/system/winMain.h"

#include "jev3d/gui/guiController.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/threadTimer.h"
#include "jev3d/system/updateContext.h"
#include "jev3d/system/windowGui.h"

namespace JEV {
namespace SYSTEM {

using PLATFORM::current;

winMain::winMain(application* a, RENDERING::renderer* d, RENDERING::audioRenderer* au,
                 bool wantFullScreen, bool tickAlways, const std::wstring& name)
    : winBase(a), device(d), audio(au), className(name), fullScreenWanted(wantFullScreen) {
  renderCtx = new RENDERING::renderingContext(device, audio);
  inputCtx = new inputContext;
  gui = new GUI::guiController(this, a);
  renderCtx->windowWidth = 0;
  renderCtx->windowHeight = 0;
  preferredUPS.registerEventOnChangeValue(makeDelegate(this, &winMain::onPreferredUPSChange));
  preferredFPS.registerEventOnChangeValue(makeDelegate(this, &winMain::onPreferredFPSChange));
  upsTimer = new threadTimer(tickAlways ? makeDelegate(this, &winMain::tickUPS)
                                        : makeDelegate(this, &winMain::tickUPSLessMsg));
  fpsTimer = new threadTimer(tickAlways ? makeDelegate(this, &winMain::tickFPS)
                                        : makeDelegate(this, &winMain::tickFPSLessMsg));
  // Assigned last, so that the change delegates set the timers' periods.
  preferredUPS = 25;
  preferredFPS = 60;
}

winMain::~winMain() {
  // The tick threads go first: they read this window until they stop.
  delete upsTimer;
  delete fpsTimer;
  delete gui;
  delete renderCtx;
  delete inputCtx;
}

void winMain::setGui(windowGui* layer) {
  if (layer == gui) return;
  delete gui;
  gui = layer;
}

void winMain::tickUPS() {
  ++updateTick;
  current().postMessage(tickWindow, PLATFORM::WM_TICK_UPDATE, 0, 0);
}

void winMain::tickFPS() {
  ++frameTick;
  current().postMessage(tickWindow, PLATFORM::WM_TICK_FRAME, 0, 0);
}

void winMain::tickUPSLessMsg() {
  ++updateTick;
  if (updateNeeded.cV()) current().postMessage(tickWindow, PLATFORM::WM_TICK_UPDATE, 0, 0);
}

void winMain::tickFPSLessMsg() {
  ++frameTick;
  if (renderNeeded.cV()) current().postMessage(tickWindow, PLATFORM::WM_TICK_FRAME, 0, 0);
}

void winMain::onPreferredUPSChange() {
  // A rate of 0 is a caller's error; it must not stop the thread with a division.
  const int v = preferredUPS.cV();
  upsTimer->setTimeout(v > 0 ? 1000 / v : 1000);
}

void winMain::onPreferredFPSChange() {
  const int v = preferredFPS.cV();
  fpsTimer->setTimeout(v > 0 ? 1000 / v : 1000);
}

int winMain::screenHeight() const {
  int w = 0, h = 0;
  current().getScreenSize(w, h);
  return h;
}

PLATFORM::windowStyle winMain::style() const {
  PLATFORM::windowStyle s;
  s.resizable = resizable;
  s.buttonClose = buttonClose;
  s.buttonRestore = buttonRestore;
  s.buttonMinimize = buttonMinimized;
  s.toolWindow = toolWindow;
  s.popup = popupWindow;
  return s;
}

void winMain::updateRect() {
  PLATFORM::rect r;
  if (!hWnd || !current().getWindowRect(hWnd, r)) return;
  position[0] = static_cast<float>(r.x);
  position[1] = static_cast<float>(screenHeight() - r.y - r.height);
  size[0] = static_cast<float>(r.width);
  size[1] = static_cast<float>(r.height);
}

void winMain::changeRect() {
  if (!hWnd || fullScreen) return;
  const int h = static_cast<int>(size[1]);
  current().setWindowRect(hWnd, PLATFORM::rect{static_cast<int>(position[0]),
                                               screenHeight() - static_cast<int>(position[1]) - h,
                                               static_cast<int>(size[0]), h});
}

void winMain::updateStyle() {
  if (!hWnd || fullScreen) return;
  current().setStyle(hWnd, style());
  if (gui) gui->refreshFullScreenTitleBar();
}

void winMain::setStyleFlag(bool& flag, bool on) {
  flag = on;
  updateStyle();
}

void winMain::closeWindow() {
  closing = true;
  windowIsClosing(closing);
}

void winMain::showButtonClose(bool show) { setStyleFlag(buttonClose, show); }
bool winMain::isButtonClose() const { return buttonClose; }

void winMain::showButtonRestore(bool show) { setStyleFlag(buttonRestore, show); }
bool winMain::isButtonRestore() const { return buttonRestore; }

void winMain::showButtonMinimized(bool show) { setStyleFlag(buttonMinimized, show); }
bool winMain::isButtonMinimized() const { return buttonMinimized; }

void winMain::setResizable(bool on) { setStyleFlag(resizable, on); }
bool winMain::isResizable() const { return resizable; }

void winMain::showToolWindow(bool on) { setStyleFlag(toolWindow, on); }
bool winMain::isToolWindow() const { return toolWindow; }

void winMain::showPopUpWindow(bool on) { setStyleFlag(popupWindow, on); }

MATH::point2<float> winMain::getAbsoluteBaricenter() const {
  return MATH::point2<float>(position[0] + size[0] / 2, position[1] + size[1] / 2);
}

void winMain::setMousePosition(const MATH::point2<float>& p) { setMousePosition(p.x, p.y); }

void winMain::setMousePosition(float x, float y) {
  current().setCursorPos(static_cast<int>(position[0] + x),
                         screenHeight() - static_cast<int>(position[1] + y));
}

void winMain::registerAbsoluteInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d) {
  if (type < 0 || type >= EVENT_TYPE_COUNT) return;
  absoluteCallbackMutex.wait(INFINITE);
  absoluteCallbacks[type].push_back(d);
  absoluteCallbackMutex.release();
}

void winMain::unRegisterAbsoluteInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d) {
  if (type < 0 || type >= EVENT_TYPE_COUNT) return;
  absoluteCallbackMutex.wait(INFINITE);
  auto& list = absoluteCallbacks[type];
  for (auto it = list.begin(); it != list.end(); ++it) {
    if (it->equals(d)) {
      list.erase(it);
      break;
    }
  }
  absoluteCallbackMutex.release();
}

const std::list<inputEventDelegate>& winMain::getAbsoluteCallbacks(EVENT_TYPE type) const {
  static const std::list<inputEventDelegate> none;
  return (type < 0 || type >= EVENT_TYPE_COUNT) ? none : absoluteCallbacks[type];
}

void winMain::registerInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d) {
  callbackMutex.wait(INFINITE);
  if (gui) gui->registerInputEventCallBack(type, d);
  callbackMutex.release();
}

void winMain::unRegisterInputEventCallBack(EVENT_TYPE type, inputEventDelegate& d) {
  callbackMutex.wait(INFINITE);
  if (gui) gui->unRegisterInputEventCallBack(type, d);
  callbackMutex.release();
}

void winMain::registerDropFileEventCallBack(dropFileEventDelegate& d) {
  callbackMutex.wait(INFINITE);
  if (gui) gui->registerDropFileEventCallBack(d);
  callbackMutex.release();
}

void winMain::unRegisterDropFileEventCallBack(dropFileEventDelegate& d) {
  callbackMutex.wait(INFINITE);
  if (gui) gui->unRegisterDropFileEventCallBack(d);
  callbackMutex.release();
}

void winMain::refresh() {
  updateNeeded = true;
  renderNeeded = true;
}

void winMain::resize(int, int) {}
void winMain::minimized() {}
void winMain::maximized() {}
void winMain::restored() {}
bool winMain::init() { return true; }
bool winMain::update() { return true; }
void winMain::draw() {}
void winMain::windowIsClosing(bool&) {}
void winMain::startScreenSaver() {}
void winMain::startMonitorPower() {}
void winMain::wndProcMsg(unsigned, std::uint64_t, std::int64_t) {}

void winMain::setMouseCursor(PLATFORM::cursorHandle cursor) {
  if (cursor == mouseCursor) return;
  previousMouseCursor = mouseCursor;
  mouseCursor = cursor;
  if (hWnd) current().setCursor(hWnd, mouseCursor);
}

void winMain::setPreviousMouseCursor() {
  mouseCursor = previousMouseCursor;
  if (hWnd) current().setCursor(hWnd, mouseCursor);
}

PLATFORM::cursorHandle winMain::getMouseCursor() const { return mouseCursor; }
PLATFORM::cursorHandle winMain::getPreviousMouseCursor() const { return previousMouseCursor; }

void winMain::setCaption(const std::wstring& text) {
  caption = text;
  if (gui) gui->refreshFullScreenTitleBar();
  if (hWnd) current().setCaption(hWnd, caption);
}

const std::wstring& winMain::getCaption() const { return caption; }

// Before the native window exists the size is also the client size the window will be
// made with.
void winMain::setRect2D(float x, float y, float width, float height) {
  updateRect();
  position[0] = x;
  position[1] = y;
  positionSet = true;
  size[0] = width;
  size[1] = height;
  if (!hWnd) {
    renderCtx->windowWidth = static_cast<int>(width);
    renderCtx->windowHeight = static_cast<int>(height);
  }
  changeRect();
}

void winMain::setPosition(float x, float y) {
  updateRect();
  position[0] = x;
  position[1] = y;
  positionSet = true;
  changeRect();
}

void winMain::setPositionX(float x) {
  updateRect();
  setPosition(x, position[1]);
}

float winMain::getPositionX() {
  updateRect();
  return position[0];
}

void winMain::setPositionY(float y) {
  updateRect();
  setPosition(position[0], y);
}

float winMain::getPositionY() {
  updateRect();
  return position[1];
}

void winMain::setSize(float width, float height) {
  updateRect();
  size[0] = width;
  size[1] = height;
  if (!hWnd) {
    renderCtx->windowWidth = static_cast<int>(width);
    renderCtx->windowHeight = static_cast<int>(height);
  }
  changeRect();
}

void winMain::setWidth(float width) {
  updateRect();
  setSize(width, size[1]);
}

float winMain::getWidth() {
  updateRect();
  return size[0];
}

void winMain::setHeight(float height) {
  updateRect();
  setSize(size[0], height);
}

float winMain::getHeight() {
  updateRect();
  return size[1];
}

bool winMain::deInit() {
  renderCtx->discard();
  if (gui) gui->discard();
  inputCtx->clear();
  return true;
}

void winMain::setWindowShowMode(WINDOW_SHOW_MODE mode) {
  showMode = mode;
  if (!hWnd) return;
  switch (mode) {
    case SHOW_NORMAL:
      current().showWindow(hWnd, PLATFORM::SW_SHOW);
      break;
    case SHOW_MAXIMIZED:
      current().showWindow(hWnd, PLATFORM::SW_MAXIMIZE);
      break;
    case SHOW_MINIMIZED:
      current().showWindow(hWnd, PLATFORM::SW_SHOWMINIMIZED);
      break;
    case SHOW_HIDDEN:
      current().showWindow(hWnd, PLATFORM::SW_HIDE);
      break;
    default:
      break;
  }
}

void winMain::addNotification(const wchar_t* tip) {
  notifyData = true;
  notifyTip = tip ? std::wstring(tip).substr(0, 63) : std::wstring();
}

void winMain::removeNotification() {
  notifyData = false;
  notifyTip.clear();
}

void winMain::setFullScreen(bool on, bool titleBar) {
  if (fullScreen == on || !hWnd) return;
  PLATFORM::platform& p = current();
  if (on) {
    updateRect();
    for (int i = 0; i < 3; ++i) {
      windowedPosition[i] = position[i];
      windowedSize[i] = size[i];
    }
    fullScreen = true;
    int w = 0, h = 0;
    p.getScreenSize(w, h);
    renderCtx->windowWidth = w;
    renderCtx->windowHeight = h;
    p.setFullScreen(hWnd, true);
    if (titleBar && gui) gui->showFullScreenTitleBar(true);
  } else {
    fullScreen = false;
    p.setFullScreen(hWnd, false);
    if (gui) gui->showFullScreenTitleBar(false);
    setSize(windowedSize[0], windowedSize[1]);
    setPosition(windowedPosition[0], windowedPosition[1]);
    changeRect();
    updateStyle();
  }
  if (device) device->resetDevice(renderCtx);
}

bool winMain::saveToXML(IO::XML::xmlNode* parent) {
  IO::XML::xmlElement e(L"MAIN_WINDOW");
  e.setAttribute(L"SKIN", gui ? gui->getSkin() : -1);
  e.setAttribute(L"CAPTION", caption);
  e.setAttribute(L"X", static_cast<int>(getPositionX()));
  e.setAttribute(L"Y", static_cast<int>(getPositionY()));
  e.setAttribute(L"WIDTH", static_cast<int>(getWidth()));
  e.setAttribute(L"HEIGHT", static_cast<int>(getHeight()));
  e.setAttribute(L"BUTTON_CLOSE", static_cast<int>(buttonClose));
  e.setAttribute(L"BUTTON_RESTORE", static_cast<int>(buttonRestore));
  e.setAttribute(L"BUTTON_MINIMIZE", static_cast<int>(buttonMinimized));
  e.setAttribute(L"TOOLWIN", static_cast<int>(toolWindow));
  e.setAttribute(L"RESIZABLE", static_cast<int>(resizable));
  if (parent) e.connect(parent);
  return true;
}

bool winMain::openFromXML(IO::XML::xmlElement& e) {
  int v = 0;
  if (e.queryIntValue(L"SKIN", v) && gui) gui->setSkin(v);
  if (e.queryIntValue(L"X", v)) setPositionX(static_cast<float>(v));
  if (e.queryIntValue(L"Y", v)) setPositionY(static_cast<float>(v));
  if (e.queryIntValue(L"WIDTH", v)) setWidth(static_cast<float>(v));
  if (e.queryIntValue(L"HEIGHT", v)) setHeight(static_cast<float>(v));
  if (e.queryIntValue(L"BUTTON_CLOSE", v)) showButtonClose(v != 0);
  if (e.queryIntValue(L"BUTTON_RESTORE", v)) showButtonRestore(v != 0);
  if (e.queryIntValue(L"BUTTON_MINIMIZE", v)) showButtonMinimized(v != 0);
  if (e.queryIntValue(L"TOOLWIN", v)) showToolWindow(v != 0);
  if (e.queryIntValue(L"RESIZABLE", v)) setResizable(v != 0);
  return true;
}

}  // namespace SYSTEM
}  // namespace JEV
