#include "jev3d/gui/guiController.h"

#include <algorithm>
#include <iostream>

#include "jev3d/gui/button.h"
#include "jev3d/gui/buttongroup.h"
#include "jev3d/gui/canvas.h"
#include "jev3d/gui/checkbox.h"
#include "jev3d/gui/combobox.h"
#include "jev3d/gui/font.h"
#include "jev3d/gui/fullscreentitlebar.h"
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
#include "jev3d/gui/widget.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace GUI {

using RENDERING::INSTANCING::textureInstance;
using RENDERING::RENDERSTATE::renderStateEnums;

namespace {

const wchar_t* const skinNames[] = {L"GUI_DEFAULT_SKIN", L"GUI_XP_SKIN", L"GUI_PLASTIQUE_SKIN",
                                    L"GUI_RAG_SKIN", L"GUI_IBRID_SKIN"};
constexpr int skinCount = 5;

// Sends `type` to `w` and along its redirect chain, each with a fresh event.
void notifyChain(widget* w, SYSTEM::EVENT_TYPE type) {
  SYSTEM::inputEvent e(type, w, nullptr);
  w->invokeDelegateAndRedirect(type, e);
}

// The first widget of the chain from `w` with a tooltip text, or null.
widget* withToolTipText(widget* w) {
  for (; w; w = w->getRedirect()) {
    if (!w->getToolTip().empty()) return w;
  }
  return nullptr;
}

}  // namespace

guiController::guiController(SYSTEM::winMain* win, SYSTEM::application* app)
    : alphaState(false, renderStateEnums::ALPHA_GEQUAL, 0.2f),
      blendState(true, renderStateEnums::SRC_SRC_ALPHA, renderStateEnums::DST_ONE_MINUS_SRC_ALPHA),
      renderingContext(win ? win->getRenderingContext() : nullptr),
      updateContext(win ? win->getUpdateContext() : nullptr),
      inputContext(win ? win->getInputContext() : nullptr),
      window(win),
      toolTipTimer(SYSTEM::makeDelegate(this, &guiController::onToolTipTick)),
      skinTexture(renderingContext ? renderingContext->getTextureStorage() : nullptr),
      application(app),
      schedule(this) {
  toolTipTimer.setTimeout(TOOLTIP_DELAY);
  setSkin(GUI_XP_SKIN);
}

guiController::~guiController() {
  toolTipTimer.stopTicking();
  discard();
}

bool guiController::init(bool withTitleBar, bool withToolTip, const std::wstring& controllerName) {
  name = controllerName;
  // The window loads the skin sheets after making the controller: take the skin again.
  setSkin(requestedSkin);
  canvases.clear();
  desktop = addCanvas(std::wstring(DESKTOP_ID), nullptr);
  if (!desktop) return false;
  desktop->setRegisterEventMultithreading(true);
  desktop->canvasKind = 0;
  desktop->viewX = 0.0f;
  desktop->viewY = 0.0f;
  desktop->zoomX = 1.0f;
  desktop->zoomY = 1.0f;
  if (renderingContext) {
    desktop->rectX.connect(&renderingContext->windowX, true);
    desktop->rectY.connect(&renderingContext->windowY, true);
    desktop->rectWidth.connect(&renderingContext->windowWidth, true);
    desktop->rectHeight.connect(&renderingContext->windowHeight, true);
  }
  desktop->followRect();
  if (withTitleBar) {
    auto* bar = make<fullscreentitlebar>(std::wstring(TITLE_BAR_ID), desktop);
    fullScreenTitleBar = bar;
    if (bar) {
      setTopMost(bar, true);
      bar->layout.setHorizontal(HA_CENTER);
      bar->layout.horizontalOffset = 0;
      bar->layout.setVertical(VA_TOP);
      bar->layout.verticalOffset = 0;
    }
  }
  if (withToolTip) {
    auto* tip = static_cast<button*>(add(WC_BUTTON, std::wstring(TOOLTIP_ID), desktop));
    toolTip = tip;
    if (tip) {
      setTopMost(tip, true);
      tip->visible = false;
      tip->setButtonStyle(BS_TEXT_ONLY);
      tip->setSkinAsToolTip();
      tip->getFlags().setFlag(WF_PRIVATE);
      // Never a hit, nor its parts: the tooltip must not take the mouse from the widget
      // it explains.
      for (widget* w : {static_cast<widget*>(tip), static_cast<widget*>(tip->getCaptionPart()),
                        static_cast<widget*>(tip->getIconPart())}) {
        if (w) w->getFlags().clearFlag(WF_PICKABLE);
      }
    }
  }
  canvases.assign(1, desktop);
  return true;
}

void guiController::addGuiCotroller(guiController* other, SYSTEM::winMain* win) {
  if (!other || other == this) return;
  if (!win) win = window;
  guiMutex.wait(SYSTEM::INFINITE);
  other->guiMutex.wait(SYSTEM::INFINITE);
  std::vector<widget*> moved;
  const std::vector<widget*> theirs(other->live.begin(), other->live.end());
  const std::vector<canvas*> theirCanvases = other->canvases;
  // The widgets move together: their redirects to each other stay.
  other->discarding = true;
  for (widget* w : theirs) {
    if (widgets.isValid(w->getId())) {
      std::cout << "Fail ADD: " << IO::XML::wstringToUtf8(w->getId()) << std::endl;
      continue;
    }
    // Held here before the other registry lets go, so the widget lives on.
    widgets.addEntry(w->getId(), other->widgets.getEntry(w->getId()));
    other->forgetWidget(w);
    other->live.erase(w);
    other->widgets.erase(w->getId());
    live.insert(w);
    w->setOwner(this, win);
    w->setColorTable(&colorTable);
    moved.push_back(w);
  }
  other->discarding = false;
  for (widget* w : moved) {
    if (other->desktop && w->getParent() == other->desktop) {
      // That desktop stays with its controller: the widgets on it come onto this one.
      w->linker::disconnect();
      w->connect(desktop, true);
    }
    if (w->isTopMost()) setTopMost(w, true);
    if (w->getUseSchemaColor()) w->setjustColor(w->getClassColor());
    for (canvas* c : theirCanvases) {
      if (c == w) attachCanvas(c);
    }
  }
  other->guiMutex.release();
  guiMutex.release();
  refresh();
}

void guiController::update() {
  guiMutex.wait(SYSTEM::INFINITE);
  schedule.doSchedule();
  const std::vector<canvas*> pass = canvases;
  for (canvas* c : pass) {
    if (!c->isVisible()) continue;
    c->preUpdate(renderingContext, updateContext);
    c->update(renderingContext, updateContext);
    c->postUpdate(renderingContext, updateContext);
  }
  guiMutex.release();
}

void guiController::render() {
  guiMutex.wait(SYSTEM::INFINITE);
  if (showToolTipNowFlag.cV()) showToolTipNow();
  for (widget* w : firstPlaneList) w->gotoInFirstPlane();
  firstPlaneList.clear();

  RENDERING::RENDERSTATE::renderStateStack* states =
      renderingContext ? renderingContext->getRenderStateStack() : nullptr;
  RENDERING::renderer* device = renderingContext ? renderingContext->getRenderer() : nullptr;
  if (states && device) {
    states->pushState(renderStateEnums::TEXTURE_STATE0, &skinTexture, false);
    skinTexture.cacheResource();
    device->setTextureState(skinTexture);
    states->pushState(renderStateEnums::ALPHA_STATE, &alphaState, true);
    states->pushState(renderStateEnums::BLEND_STATE, &blendState, true);
  }
  const std::vector<canvas*> pass = canvases;
  for (canvas* c : pass) {
    if (!c->isVisible()) continue;
    c->render(renderingContext);
    c->postRender(renderingContext);
  }
  if (states && device) {
    states->popState(renderStateEnums::TEXTURE_STATE0, true);
    states->popState(renderStateEnums::ALPHA_STATE, true);
    states->popState(renderStateEnums::BLEND_STATE, true);
  }
  for (int n = 0; n < ERASE_PER_FRAME && !eraseList.empty(); ++n) {
    widget* w = eraseList.front();
    eraseList.pop_front();
    eraseNow(w);
  }
  guiMutex.release();
}

bool guiController::discard() {
  guiMutex.wait(SYSTEM::INFINITE);
  // Everything goes: no widget needs its redirects cleared. A destructor lets go of the
  // widget's parent and children, so the order does not matter.
  discarding = true;
  const std::vector<widget*> all(live.begin(), live.end());
  for (widget* w : all) eraseNow(w);
  discarding = false;
  canvases.clear();
  hoverToolTipWidget = nullptr;
  toolTip = nullptr;
  fullScreenTitleBar = nullptr;
  // No widget uses a font any more; their glyphs leave the device now, while its context
  // is still there.
  RENDERING::renderer* device = renderingContext ? renderingContext->getRenderer() : nullptr;
  for (auto& entry : fonts) {
    if (entry.second && device) device->discardFont(entry.second.get());
  }
  fonts.clear();
  guiMutex.release();
  return true;
}

GUI::font* guiController::getFont(const std::wstring& id) {
  auto found = fonts.find(id);
  if (found != fonts.end()) return found->second.get();
  std::unique_ptr<GUI::font> made;
  RENDERING::renderer* device = renderingContext ? renderingContext->getRenderer() : nullptr;
  if (id == L"ID_FONT1" && device) {
    made.reset(new GUI::font(L"DejaVuSans", DEFAULT_FONT_SIZE));
    if (!device->cacheFont(made.get())) made.reset();
  }
  return fonts.emplace(id, std::move(made)).first->second.get();
}

bool guiController::waitGuiMutex(unsigned long milliseconds) {
  return guiMutex.wait(milliseconds) == SYSTEM::WAIT_OBJECT_0;
}

void guiController::releaseGuiMutex() { guiMutex.release(); }

widget* guiController::getWidgetBelowMouse(float x, float y) {
  if (canvases.empty()) return nullptr;
  widget* onDesktop = desktop ? desktop->getWidgetBelowMouse(x, y) : nullptr;
  if (onDesktop && onDesktop != desktop) return onDesktop;
  for (canvas* c : canvases) {
    if (c->canvasKind != 1) continue;
    float cx = x, cy = y;
    c->transformMouse(cx, cy);
    if (widget* hit = c->getWidgetBelowMouse(cx, cy)) return hit;
  }
  return onDesktop;
}

widget* guiController::getWidgetAt(float x, float y) {
  widget* w = desktop ? desktop->getWidgetBelowMouse(x, y) : nullptr;
  return (w && w->isPrivate()) ? nullptr : w;
}

widget* guiController::getFocusedWidget() { return schedule.getFocus(); }

widget* guiController::getRootWidget() { return desktop; }

int guiController::getSkin() {
  const std::wstring& id = skinTexture.getResourceId();
  for (int i = 0; i < skinCount; ++i) {
    if (id == skinNames[i]) return i;
  }
  return GUI_NO_SKIN;
}

void guiController::setSkin(int skin) {
  requestedSkin = skin;
  // A client keeps every link it has made: the old sheet must go, or it stays the one
  // drawn under the new name.
  skinTexture.disconnectToResourceStorage();
  if (skin < 0 || skin >= skinCount) {
    // No texture on the unit: the widgets draw in their plain colours.
    skinTexture.environment.enable = false;
    return;
  }
  skinTexture.environment.enable = true;
  skinTexture.environment.mode = textureInstance::TEXTURE_MODULATE;
  skinTexture.environment.wrapS = textureInstance::WRAP_CLAMP_TO_EDGE;
  skinTexture.environment.wrapT = textureInstance::WRAP_CLAMP_TO_EDGE;
  skinTexture.environment.filter = false;
  skinTexture.connectToResourceStorage(std::wstring(skinNames[skin]));
  refresh();
}

void guiController::showFullScreenTitleBar(bool show) {
  if (fullScreenTitleBar) fullScreenTitleBar->visible = show;
}

void guiController::refreshFullScreenTitleBar() {
  if (fullScreenTitleBar) fullScreenTitleBar->refresh();
}

void guiController::registerInputEventCallBack(SYSTEM::EVENT_TYPE type,
                                               SYSTEM::inputEventDelegate& d) {
  if (desktop) desktop->registerInputEventCallBack(type, d);
}

void guiController::unRegisterInputEventCallBack(SYSTEM::EVENT_TYPE type,
                                                 SYSTEM::inputEventDelegate& d) {
  if (desktop) desktop->unRegisterInputEventCallBack(type, d);
}

void guiController::registerDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d) {
  if (desktop) desktop->registerDropFileEventCallBack(d);
}

void guiController::unRegisterDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d) {
  if (desktop) desktop->unRegisterDropFileEventCallBack(d);
}

// --- registry and factory ----------------------------------------------------------------

widget* guiController::registerWidget(widget* w, widget* parent) {
  SYSTEM::sharedPointer<widget> owned(w);
  if (!widgets.addEntry(w->getId(), owned)) return nullptr;  // `owned` deletes it
  live.insert(w);
  w->setColorTable(&colorTable);
  if (w->getUseSchemaColor()) w->setjustColor(w->getClassColor());
  if (!parent) parent = desktop;
  if (parent && parent != w) w->connect(parent, true);
  w->config();
  return w;
}

template <class W>
W* guiController::make(const std::wstring& widgetName, widget* parent) {
  if (widgetName.empty() || widgets.isValid(widgetName)) return nullptr;
  return static_cast<W*>(registerWidget(new W(widgetName, this, window), parent));
}

template <class W>
W* guiController::typed(const std::wstring& widgetName, WIDGET_CLASS cls) const {
  widget* w = getWidget(widgetName);
  return (w && w->getClass() == cls) ? static_cast<W*>(w) : nullptr;
}

widget* guiController::add(WIDGET_CLASS cls, const std::wstring& widgetName, widget* parent) {
  switch (cls) {
    case WC_WIDGET:
      return addWidget(widgetName, parent);
    case WC_PANEL:
      return addPanel(widgetName, parent);
    case WC_LABEL:
      return addLabel(widgetName, parent);
    case WC_CANVAS:
      return addCanvas(widgetName, parent);
    case WC_BUTTON:
      return make<button>(widgetName, parent);
    case WC_CHECKBOX:
      return make<checkbox>(widgetName, parent);
    case WC_RADIOBUTTON:
      return make<radiobutton>(widgetName, parent);
    case WC_PICTUREBOX:
      return make<picturebox>(widgetName, parent);
    case WC_SLIDER:
      return make<slider>(widgetName, parent);
    case WC_SCROLLBAR:
      return make<scrollbar>(widgetName, parent);
    case WC_SEPARATOR:
      return make<separator>(widgetName, parent);
    case WC_PROGRESSBAR:
      return make<progressbar>(widgetName, parent);
    case WC_ITEM:
      return make<item>(widgetName, parent);
    case WC_MENU:
      return make<menu>(widgetName, parent);
    case WC_TAB:
      return make<tab>(widgetName, parent);
    case WC_COMBOBOX:
      return make<combobox>(widgetName, parent);
    case WC_BUTTONGROUP:
      return make<buttongroup>(widgetName, parent);
    default:
      // Classes this library does not build yet: a project naming them gets null.
      return nullptr;
  }
}

std::wstring guiController::getUniqueName() {
  std::wstring candidate;
  do {
    candidate = L"GUI_WIDGET_" + std::to_wstring(uniqueCounter++);
  } while (widgets.isValid(candidate));
  return candidate;
}

widget* guiController::addWidget(const std::wstring& n, widget* parent) {
  return make<widget>(n, parent);
}
widget* guiController::addWidget(const std::string& n, widget* parent) {
  return addWidget(IO::XML::utf8ToWstring(n), parent);
}
widget* guiController::addWidget(widget* parent) { return addWidget(getUniqueName(), parent); }

panel* guiController::addPanel(const std::wstring& n, widget* parent) {
  return make<panel>(n, parent);
}
panel* guiController::addPanel(const std::string& n, widget* parent) {
  return addPanel(IO::XML::utf8ToWstring(n), parent);
}
panel* guiController::addPanel(widget* parent) { return addPanel(getUniqueName(), parent); }

label* guiController::addLabel(const std::wstring& n, widget* parent) {
  return make<label>(n, parent);
}
label* guiController::addLabel(const std::string& n, widget* parent) {
  return addLabel(IO::XML::utf8ToWstring(n), parent);
}
label* guiController::addLabel(widget* parent) { return addLabel(getUniqueName(), parent); }

canvas* guiController::addCanvas(const std::wstring& n, widget* parent) {
  if (n.empty() || widgets.isValid(n)) return nullptr;
  // The desktop stands alone; another canvas goes under the parent it is given.
  canvas* c = new canvas(n, this, window);
  SYSTEM::sharedPointer<widget> owned(c);
  if (!widgets.addEntry(n, owned)) return nullptr;
  live.insert(c);
  c->setColorTable(&colorTable);
  if (parent) c->connect(parent, true);
  c->config();
  return c;
}
canvas* guiController::addCanvas(const std::string& n, widget* parent) {
  return addCanvas(IO::XML::utf8ToWstring(n), parent);
}
canvas* guiController::addCanvas(widget* parent) { return addCanvas(getUniqueName(), parent); }

void guiController::attachCanvas(canvas* c) {
  if (!c || std::find(canvases.begin(), canvases.end(), c) != canvases.end()) return;
  c->canvasKind = 1;
  canvases.push_back(c);
}

widget* guiController::getWidget(const std::wstring& n) const { return widgets.getEntry(n).get(); }
widget* guiController::getWidget(const std::string& n) const {
  return getWidget(IO::XML::utf8ToWstring(n));
}
panel* guiController::getPanel(const std::wstring& n) const { return typed<panel>(n, WC_PANEL); }
panel* guiController::getPanel(const std::string& n) const {
  return getPanel(IO::XML::utf8ToWstring(n));
}
label* guiController::getLabel(const std::wstring& n) const { return typed<label>(n, WC_LABEL); }
label* guiController::getLabel(const std::string& n) const {
  return getLabel(IO::XML::utf8ToWstring(n));
}
canvas* guiController::getCanvas(const std::wstring& n) const {
  return typed<canvas>(n, WC_CANVAS);
}
canvas* guiController::getCanvas(const std::string& n) const {
  return getCanvas(IO::XML::utf8ToWstring(n));
}
menu* guiController::getMenu(const std::wstring& n) const { return typed<menu>(n, WC_MENU); }
menu* guiController::getMenu(const std::string& n) const {
  return getMenu(IO::XML::utf8ToWstring(n));
}

bool guiController::isValid(const std::wstring& n) const { return widgets.isValid(n); }

int guiController::getWidgetsCount() const { return widgets.getEntryCount(); }

// --- colours -------------------------------------------------------------------------------

CORE::color guiController::getColor(WIDGET_CLASS_COLOR cls, int index) const {
  return colorTable.getColor(cls, index);
}

void guiController::setColor(WIDGET_CLASS_COLOR cls, const CORE::color& c, int index) {
  colorTable.setColor(cls, c, index);
  for (widget* w : live) {
    if (w->getUseSchemaColor()) w->setjustColor(w->getClassColor());
  }
  refresh();
}

void guiController::setColorSchema(GUI_COLOR_SCHEMA schema) {
  colorSchema = schema;
  colorTable.setColorSchema(schema);
}

GUI_COLOR_SCHEMA guiController::getColorSchema() const { return colorSchema; }

void guiController::setEnable(bool on) {
  if (desktop) desktop->enabled = on;
}

bool guiController::getEnable() const { return desktop && desktop->isEnabled(); }

void guiController::refresh() {
  if (window) window->refresh();
}

// --- input and z-order -----------------------------------------------------------------------

void guiController::simulateInputEvent(SYSTEM::EVENT_TYPE type,
                                       const SYSTEM::sharedPointer<SYSTEM::inputEvent>& e) {
  if (inputContext) inputContext->events.push_back(std::make_pair(type, e));
}

canvas* guiController::canvasOf(widget* w) const {
  for (; w; w = w->getParent()) {
    if (w->getClass() == WC_CANVAS) return static_cast<canvas*>(w);
  }
  return nullptr;
}

void guiController::setTopMost(widget* w, bool on) {
  w->setTopMost(on);
  canvas* c = canvasOf(w->getParent());
  if (!c) return;
  if (on) {
    c->addTopMost(w);
  } else {
    c->removeTopMost(w);
  }
}

void guiController::setPopUpMenu(const std::wstring& menuName) {
  if (desktop) desktop->setPopUpMenu(menuName, false);
}

void guiController::removePopUpMenu() {
  if (desktop) desktop->removePopUpMenu();
}

void guiController::gotoInFirstPlaneNextRender(widget* w) { firstPlaneList.push_back(w); }

void guiController::eraseAfter(widget* w) { eraseList.push_back(w); }

bool guiController::eraseNow(widget* w) {
  if (!w) return false;
  // A copy: the widget, and its id with it, goes with the entry.
  const std::wstring id = w->getId();
  if (widgets.getEntry(id).get() != w) return false;
  forgetWidget(w);
  live.erase(w);
  return widgets.erase(id);
}

bool guiController::eraseNowMT(widget* w) {
  guiMutex.wait(SYSTEM::INFINITE);
  const bool erased = eraseNow(w);
  guiMutex.release();
  return erased;
}

void guiController::widgetGone(widget* w) {
  // Erased through the registry, it was forgotten already.
  if (live.erase(w)) forgetWidget(w);
}

void guiController::forgetWidget(widget* w) {
  schedule.forget(w);
  if (hoverToolTipWidget == w) hoverToolTipWidget = nullptr;
  if (toolTip == w) toolTip = nullptr;
  if (fullScreenTitleBar == w) fullScreenTitleBar = nullptr;
  if (desktop == w) desktop = nullptr;
  eraseList.remove(w);
  firstPlaneList.remove(w);
  canvases.erase(std::remove(canvases.begin(), canvases.end(), w), canvases.end());
  for (canvas* c : canvases) c->removeTopMost(w);
  if (!discarding) {
    for (widget* other : live) {
      if (other->getRedirect() == w) other->setRedirect(nullptr);
    }
  }
  if (inputContext) {
    if (inputContext->widgetBelowMouse == w) inputContext->widgetBelowMouse = nullptr;
    if (inputContext->draggedWidget == w) inputContext->draggedWidget = nullptr;
    if (inputContext->pressedWidget == w) inputContext->pressedWidget = nullptr;
    for (auto& entry : inputContext->events) {
      SYSTEM::inputEvent* e = entry.second.get();
      if (!e) continue;
      if (e->target == w) e->target = nullptr;
      if (e->previous == w) e->previous = nullptr;
    }
  }
}

// --- tooltips --------------------------------------------------------------------------------

void guiController::toolTipEnter(widget* w) {
  widget* source = withToolTipText(w);
  if (toolTip) toolTip->visible = false;
  if (!source) return;
  hoverToolTipWidget = source;
  toolTipArmed = false;
  toolTipTimer.startTicking();
}

void guiController::toolTipLeave(widget* w) {
  if (hoverToolTipWidget && hoverToolTipWidget == withToolTipText(w)) hoverToolTipWidget = nullptr;
  if (toolTip) toolTip->visible = false;
}

void guiController::onToolTipTick() {
  // The timer ticks at once when started: that tick only arms it, so the tooltip shows a
  // full period after the enter.
  if (!toolTipArmed.exchange(true)) return;
  showToolTip();
  toolTipTimer.stopTicking();
}

void guiController::showToolTip() {
  showToolTipNowFlag = hoverToolTipWidget != nullptr && toolTip != nullptr;
  refresh();
}

void guiController::showToolTipNow() {
  showToolTipNowFlag = false;
  // The hovered widget may have gone, or the tooltip may be missing, since the timer fired.
  if (!hoverToolTipWidget || !toolTip) return;
  canvas* target = canvasOf(hoverToolTipWidget);
  if (target && canvasOf(toolTip) != target) {
    toolTip->linker::disconnect();
    toolTip->connect(target, true);
  }
  if (toolTip->getIdFont().empty()) toolTip->setIdFont(std::wstring(L"ID_FONT1"));
  toolTip->setCaptionAutosize(hoverToolTipWidget->getToolTip(), true);
  const float mx = inputContext ? inputContext->mouseX : 0.0f;
  const float my = inputContext ? inputContext->mouseY : 0.0f;
  const float w = toolTip->getWidth();
  const float h = toolTip->getHeight();
  float x = mx + 16;
  float y = std::max(0.0f, my - 16 - h);
  const float cw = target ? target->getWidth() : 0.0f;
  const float ch = target ? target->getHeight() : 0.0f;
  if (x + w > cw) x -= w;
  if (y + h > ch) y -= h;
  toolTip->setPosition(x, y, toolTip->position.z);
  toolTip->visible = true;
  notifyChain(hoverToolTipWidget, SYSTEM::TOOLTIP_SHOW);
  hoverToolTipWidget = nullptr;
}

}  // namespace GUI
}  // namespace JEV
