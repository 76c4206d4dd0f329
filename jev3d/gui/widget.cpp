#include "jev3d/gui/widget.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <unordered_set>

#include "jev3d/gui/guiColorTable.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/menu.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/updateContext.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace GUI {

namespace {

using VC = RENDERING::vertexDeclaration::VERTEX_COMPONENTS;
constexpr int patchMask = VC::POS3 | VC::COLOR | VC::TC0_2;

// Nine quads over the 4 x 4 grid of the patch, two triangles each, counter-clockwise.
const unsigned short* makePatchIndices() {
  static unsigned short indices[widget::patchIndexCount];
  int k = 0;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      const unsigned short a = static_cast<unsigned short>(row * 4 + column);
      const unsigned short b = static_cast<unsigned short>(a + 1);
      const unsigned short c = static_cast<unsigned short>(a + 5);
      const unsigned short d = static_cast<unsigned short>(a + 4);
      const unsigned short quad[6] = {a, b, c, a, c, d};
      for (unsigned short i : quad) indices[k++] = i;
    }
  }
  return indices;
}

uint8_t lerpByte(uint8_t from, uint8_t to, float t) {
  return static_cast<uint8_t>(std::lround(float(from) + (float(to) - float(from)) * t));
}

CORE::color lerpColor(const CORE::color& from, const CORE::color& to, float t) {
  return CORE::color(lerpByte(from.r, to.r, t), lerpByte(from.g, to.g, t),
                     lerpByte(from.b, to.b, t), lerpByte(from.a, to.a, t));
}

uint8_t addSaturated(uint8_t a, unsigned char b) {
  return static_cast<uint8_t>(std::min(255, int(a) + int(b)));
}

std::wstring formatInRadix(int value, unsigned short radix) {
  if (radix < 2 || radix > 36) radix = 10;
  const wchar_t* digits = L"0123456789abcdefghijklmnopqrstuvwxyz";
  long long v = value;
  const bool negative = v < 0;
  unsigned long long magnitude = negative ? static_cast<unsigned long long>(-v) : v;
  std::wstring out;
  do {
    out.insert(out.begin(), digits[magnitude % radix]);
    magnitude /= radix;
  } while (magnitude);
  if (negative) out.insert(out.begin(), L'-');
  return out;
}

// The whole of `text` as a number, else false.
bool parseNumber(const std::wstring& text, double& out) {
  if (text.empty()) return false;
  wchar_t* end = nullptr;
  out = std::wcstod(text.c_str(), &end);
  while (end && *end == L' ') ++end;
  return end && *end == 0 && end != text.c_str() && std::isfinite(out);
}

}  // namespace

widget::widget(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : layout(this), controller(owner), id(widgetId), window(win) {
  // A widget has one parent: connecting elsewhere leaves the old one.
  multipleMasters = false;
  stateFlags.setFlag(WF_COLOR_CHANGED | WF_VERTEX_CHANGED | WF_UV_CHANGED |
                     WF_SIZE_POSITION_CHANGED | WF_ORIENTATION_CHANGED | WF_VALUE_CHANGED |
                     WF_NOT_DECORATION | WF_PICKABLE | WF_FIRST_PLANE);
  declaration.setMaskComponent(patchMask);
  vertexBuffer.setMaskComponent(patchMask);
  currentColor = colorNormal;
  currentTextColor = textColorNormal;
  fadeFrom = fadeTo = colorNormal;
  textFadeFrom = textFadeTo = textColorNormal;
  for (CORE::color& c : patchColors) c = currentColor;

  auto observe = [this](auto& field, void (widget::*hook)()) {
    SYSTEM::sharedPointer<SYSTEM::delegate> d(new SYSTEM::delegate(this, hook));
    field.registerEventOnChangeValue(d);
    fieldObservers.push_back(d);
  };
  observe(enabled, &widget::onEnabledChange);
  observe(checked, &widget::onCheckedChange);
  observe(value, &widget::onValueChange);
  observe(valueMax, &widget::onValueMaxChange);
  observe(valueMin, &widget::onValueMinChange);
  observe(gradient, &widget::onGradientChange);
}

widget::~widget() {
  SYSTEM::inputEvent destroyed(SYSTEM::WIDGET_DESTROY, this, nullptr);
  invokeDelegate(SYSTEM::WIDGET_DESTROY, destroyed);
  for (linker* child : getSlavesCopy()) {
    if (auto* w = dynamic_cast<widget*>(child)) w->parentWidget = nullptr;
  }
  if (patchCached && device) {
    device->discardVertexBuffer(&vertexBuffer);
    device->discardIndexBuffer(&indexBuffer);
  }
  // No focus, popup, hover, queued event or list of the controller may name it after.
  if (controller) controller->widgetGone(this);
}

bool widget::addSlave(linker* slave) {
  return dynamic_cast<widget*>(slave) && linker::addSlave(slave);
}

bool widget::addSlaveBefore(linker* slave, linker* sibling) {
  return dynamic_cast<widget*>(slave) && linker::addSlaveBefore(slave, sibling);
}

bool widget::addSlaveAfter(linker* slave, linker* sibling) {
  return dynamic_cast<widget*>(slave) && linker::addSlaveAfter(slave, sibling);
}

void widget::disconnect(linker* master, bool notifyOther) {
  linker::disconnect(master, notifyOther);
  if (master == parentWidget) parentWidget = nullptr;
}

// --- events -------------------------------------------------------------------------

void widget::registerInputEventCallBack(SYSTEM::EVENT_TYPE type, SYSTEM::inputEventDelegate& d) {
  if (type < 0 || type >= SYSTEM::EVENT_TYPE_COUNT) return;
  eventDelegates[type].push_back(d);
}

void widget::unRegisterInputEventCallBack(SYSTEM::EVENT_TYPE type, SYSTEM::inputEventDelegate& d) {
  if (type < 0 || type >= SYSTEM::EVENT_TYPE_COUNT) return;
  auto& list = eventDelegates[type];
  auto it = std::find_if(list.begin(), list.end(), [&](const auto& e) { return e.equals(d); });
  if (it != list.end()) list.erase(it);
}

void widget::unRegisterAllInputEventCallBack() {
  for (auto& list : eventDelegates) list.clear();
}

void widget::unRegisterAllInputEventCallBack(SYSTEM::EVENT_TYPE type) {
  if (type >= 0 && type < SYSTEM::EVENT_TYPE_COUNT) eventDelegates[type].clear();
}

void widget::registerDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d) {
  dropFileDelegates.push_back(d);
}

void widget::unRegisterDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d) {
  auto it = std::find_if(dropFileDelegates.begin(), dropFileDelegates.end(),
                         [&](const auto& e) { return e.equals(d); });
  if (it != dropFileDelegates.end()) dropFileDelegates.erase(it);
}

void widget::unRegisterAllDropFileEventCallBack() { dropFileDelegates.clear(); }

void widget::invokeDelegate(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event) {
  if (!enabled.cV() && type != SYSTEM::WIDGET_DESTROY) return;
  if (type < 0 || type >= SYSTEM::EVENT_TYPE_COUNT) return;
  event.type = type;
  if (stateFlags.isFlagSet(WF_LOCAL_COORDINATES)) {
    const point3f corner = getAbsolutePos();
    event.x -= corner.x;
    event.y -= corner.y;
  }
  // A copy, so that a handler may register or remove handlers.
  const delegateList handlers = eventDelegates[type];
  for (const auto& d : handlers) d.invoke(&event);
}

void widget::invokeDelegateAndRedirect(SYSTEM::EVENT_TYPE type, const SYSTEM::inputEvent& event) {
  SYSTEM::inputEvent first = event;
  invokeDelegate(type, first);
  // A redirect chain that comes back on itself would never end: each widget once.
  std::unordered_set<const widget*> seen{this};
  for (widget* w = redirect; w && seen.insert(w).second; w = w->redirect) {
    SYSTEM::inputEvent step = event;
    w->invokeDelegate(type, step);
  }
}

// --- geometry ----------------------------------------------------------------------------

void widget::refresh() {
  stateFlags.setFlag(WF_REFRESH);
  askRepaint();
  // A group stacks its widgets by their sizes: it lays them out again. A tree view lays
  // out its own items.
  if (widgetClass == WC_TREEVIEW) return;
  for (widget* w = parentWidget; w; w = w->parentWidget) {
    if (w->widgetClass == WC_WIDGETGROUP || w->widgetClass == WC_MENU) {
      w->refresh();
      return;
    }
  }
}

void widget::askRepaint() {
  if (window) window->renderNeeded = true;
}

void widget::setOrientation(WIDGET_ORIENTATION v) {
  orientation = v;
  stateFlags.setFlag(WF_ORIENTATION_CHANGED);
  askRepaint();
}

WIDGET_ORIENTATION widget::getOrientation() const { return orientation; }

void widget::setRect2D(float x, float y, float width, float height) {
  setPosition(x, y, position.z);
  setSize(width, height);
}

void widget::setPosition(float x, float y, float z) {
  position = point3f(x, y, z);
  sizePositionChanged();
}

void widget::setPositionX(float x) {
  position.x = x;
  sizePositionChanged();
}

float widget::getPositionX() const { return position.x; }

void widget::setPositionY(float y) {
  position.y = y;
  sizePositionChanged();
}

float widget::getPositionY() const { return position.y; }

void widget::setSize(float width, float height) {
  size.x = std::clamp(width, sizeMin.x, sizeMax.x);
  size.y = std::clamp(height, sizeMin.y, sizeMax.y);
  sizePositionChanged();
}

void widget::setWidth(float width) { setSize(width, size.y); }

float widget::getWidth() const { return size.x; }

void widget::setHeight(float height) { setSize(size.x, height); }

float widget::getHeight() const { return size.y; }

void widget::setShadow(WIDGET_SHADOW v) {
  shadow = v;
  askRepaint();
}

WIDGET_SHADOW widget::getShadow() const { return shadow; }

void widget::setMargin(float left, float right, float top, float bottom) {
  margin[0] = left;
  margin[1] = right;
  margin[2] = top;
  margin[3] = bottom;
  sizePositionChanged();
}

void widget::sizePositionChanged() {
  // Children hang off this rectangle: they lay out and move with it.
  stateFlags.setFlag(WF_SIZE_POSITION_CHANGED);
  for (linker* child : getSlavesCopy()) static_cast<widget*>(child)->sizePositionChanged();
  askRepaint();
}

void widget::computeSizePositionChanged() {
  stateFlags.clearFlag(WF_SIZE_POSITION_CHANGED);
  layout.update();
  absoluteClip[0] = getAbsolutePos();
  absoluteClip[1] = absoluteClip[0] + size;
  adjustVertex();
  computeTextRect();
  for (linker* child : getSlavesCopy()) static_cast<widget*>(child)->sizePositionChanged();
}

void widget::computeTextRect() {
  const point3f corner = getAbsolutePos();
  font.textRect[0] = int(std::floor(corner.x + margin[0]));
  font.textRect[1] = int(std::floor(corner.y + margin[3]));
  font.textRect[2] = std::max(0, int(std::floor(size.x - margin[0] - margin[1])));
  font.textRect[3] = std::max(0, int(std::floor(size.y - margin[2] - margin[3])));
}

void widget::computeOrientation() { stateFlags.clearFlag(WF_ORIENTATION_CHANGED); }

void widget::computeVChange() {}

widget::point3f widget::getAbsolutePos() const {
  point3f p = position;
  for (const widget* w = parentWidget; w; w = w->parentWidget) {
    p.x += w->position.x;
    p.y += w->position.y;
  }
  return p;
}

widget::point3f widget::getParentSize() const {
  if (parentWidget) return parentWidget->size;
  if (auto* win = dynamic_cast<SYSTEM::winMain*>(window)) {
    return point3f(win->getWidth(), win->getHeight(), 0);
  }
  return point3f(0, 0, 0);
}

widget::point3f widget::getAbsoluteParentPos() const {
  return parentWidget ? parentWidget->getAbsolutePos() : point3f(0, 0, 0);
}

bool widget::isInRect(float x, float y) const {
  const point3f a = getAbsolutePos();
  float x0 = a.x, y0 = a.y, x1 = a.x + size.x, y1 = a.y + size.y;
  if (parentWidget) {
    const point3f p = parentWidget->getAbsolutePos();
    x0 = std::max(x0, p.x);
    y0 = std::max(y0, p.y);
    x1 = std::min(x1, p.x + parentWidget->size.x);
    y1 = std::min(y1, p.y + parentWidget->size.y);
  }
  return x >= x0 && x < x1 && y >= y0 && y < y1;
}

// --- the patch ---------------------------------------------------------------------------

const unsigned short* widget::getPatchIndices() {
  static const unsigned short* indices = makePatchIndices();
  return indices;
}

void widget::adjustVertex() { stateFlags.setFlag(WF_VERTEX_CHANGED); }

void widget::_adjustVertex(RENDERING::renderer* target) {
  const point3f a = getAbsolutePos();
  // Borders keep their 4 pixels; a widget narrower than two borders shares its width.
  const float bx = std::min(skinBorder, size.x * 0.5f);
  const float by = std::min(skinBorder, size.y * 0.5f);
  const float xs[4] = {a.x, a.x + bx, a.x + size.x - bx, a.x + size.x};
  const float ys[4] = {a.y, a.y + by, a.y + size.y - by, a.y + size.y};
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      float* p = patchPositions + 3 * (row * 4 + column);
      p[0] = xs[column];
      p[1] = ys[row];
      p[2] = a.z;
    }
  }
  stateFlags.clearFlag(WF_VERTEX_CHANGED);
  if (target)
    target->cacheVertexBufferElement(&vertexBuffer, VC::POS3, patchPositions, patchVertexCount);
}

void widget::adjustUV(float u, float v) {
  uv[0] = u;
  uv[1] = v;
  stateFlags.setFlag(WF_UV_CHANGED);
  askRepaint();
}

void widget::_adjustUV(RENDERING::renderer* target) {
  const float step[4] = {0, skinBorder, skinTile - skinBorder, skinTile};
  float us[4], vs[4];
  for (int i = 0; i < 4; ++i) {
    us[i] = (uv[0] + step[i]) / skinSize;
    vs[i] = (uv[1] + step[i]) / skinSize;
  }
  writeTexCoords(target, us, vs);
}

void widget::writeTexCoords(RENDERING::renderer* target, const float (&us)[4],
                            const float (&vs)[4]) {
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      float* t = patchTexCoords + 2 * (row * 4 + column);
      t[0] = us[column];
      t[1] = vs[row];
    }
  }
  stateFlags.clearFlag(WF_UV_CHANGED);
  if (target)
    target->cacheVertexBufferElement(&vertexBuffer, VC::TC0_2, patchTexCoords, patchVertexCount);
}

void widget::adjustColor(RENDERING::renderer* target, const CORE::color& c) {
  stateFlags.clearFlag(WF_COLOR_CHANGED);
  const unsigned char step = gradient.cV();
  const CORE::color lighter(addSaturated(c.r, step), addSaturated(c.g, step),
                            addSaturated(c.b, step), c.a);
  // A device of another kind than 0 reads colours as blue, green, red, alpha.
  const bool swap = target && target->getRendererKind() != 0;
  for (int i = 0; i < patchVertexCount; ++i) {
    CORE::color v = i < patchVertexCount / 2 ? lighter : c;
    if (swap) std::swap(v.r, v.b);
    patchColors[i] = v;
  }
  if (!target) return;
  void* mapped = nullptr;
  if (target->isCachedVertexBufferElement(&vertexBuffer, VC::COLOR) &&
      target->lockVertexBufferElement(&vertexBuffer, VC::COLOR, mapped) && mapped) {
    std::memcpy(mapped, patchColors, sizeof patchColors);
    target->unlockVertexBufferElement(&vertexBuffer, VC::COLOR);
  } else {
    target->cacheVertexBufferElement(&vertexBuffer, VC::COLOR, patchColors, patchVertexCount);
  }
}

void widget::cachePatch(RENDERING::renderer* target) {
  if (patchCached && target == device) return;
  device = target;
  patchCached = target->cacheIndexBuffer(&indexBuffer, getPatchIndices(), patchIndexCount);
  // A new device has none of the streams.
  stateFlags.setFlag(WF_VERTEX_CHANGED | WF_UV_CHANGED | WF_COLOR_CHANGED);
}

void widget::render(RENDERING::renderingContext* rc) {
  RENDERING::renderer* target = rc ? rc->getRenderer() : nullptr;
  if (stateFlags.isFlagSet(WF_REFRESH)) doRefresh();
  if (stateFlags.isFlagSet(WF_SIZE_POSITION_CHANGED)) computeSizePositionChanged();
  if (stateFlags.isFlagSet(WF_ORIENTATION_CHANGED)) computeOrientation();
  if (stateFlags.isFlagSet(WF_VALUE_CHANGED)) computeVChange();
  if (target) {
    cachePatch(target);
    if (!font.font && !font.idFont.empty() && controller)
      font.font = controller->getFont(font.idFont);
    if (autosizePending) onCaptionAutosize();
  }
  if (stateFlags.isFlagSet(WF_VERTEX_CHANGED)) _adjustVertex(target);
  if (stateFlags.isFlagSet(WF_COLOR_CHANGED)) adjustColor(target, currentColor);
  if (stateFlags.isFlagSet(WF_UV_CHANGED)) _adjustUV(target);
  stateFlags.clearFlag(WF_REFRESH | WF_COLOR_CHANGED | WF_VERTEX_CHANGED | WF_UV_CHANGED |
                       WF_SIZE_POSITION_CHANGED | WF_ORIENTATION_CHANGED | WF_VALUE_CHANGED);
}

void widget::drawPatch(RENDERING::renderingContext* rc) {
  if (shadow != WS_NO_BACKGROUND) drawPatchGeometry(rc);
}

void widget::drawPatchGeometry(RENDERING::renderingContext* rc) {
  RENDERING::renderer* target = rc ? rc->getRenderer() : nullptr;
  if (!target || !patchCached) return;
  target->renderIndexedGeometry(RENDERING::renderer::DRAW_TRIANGLES, &vertexBuffer, &indexBuffer, 0,
                                patchIndexCount);
}

bool widget::preRender() const {
  for (const widget* w = this; w; w = w->parentWidget) {
    if (!w->visible.cV()) return false;
    // An ancestor drawing its children passed this test itself this frame.
    if (w->parentWidget && w->parentWidget->walkingChildren) return true;
  }
  return true;
}

template <class Visit>
void widget::forEachChild(std::vector<linker*>& spill, Visit visit) {
  const size_t count = slaves.size();
  if (count == 0) return;
  // One child is its own snapshot: the list is not read again.
  if (count == 1) return visit(static_cast<widget*>(slaves.front()));
  // A short list is copied on the stack: a kept buffer is one more line to fetch.
  constexpr size_t onStack = 16;
  linker* local[onStack];
  linker* const* snapshot = local;
  if (count <= onStack) {
    for (size_t i = 0; i < count; ++i) local[i] = slaves[i];
  } else {
    spill.assign(slaves.begin(), slaves.end());
    snapshot = spill.data();
  }
  for (size_t i = 0; i < count; ++i) {
    visit(static_cast<widget*>(snapshot[i]));
  }
}

void widget::postRender(RENDERING::renderingContext* rc) {
  RENDERING::RENDERSTATE::renderStateStack* stack = rc ? rc->getRenderStateStack() : nullptr;
  if (stack && !slaves.empty()) {
    // Where render() has just placed the widget.
    const point3f& a = absoluteClip[0];
    const int clip[4] = {std::max(0, int(a.x + margin[0])), std::max(0, int(a.y + margin[3])),
                         std::max(0, int(size.x - margin[0] - margin[1])),
                         std::max(0, int(size.y - margin[2] - margin[3]))};
    // The same rectangle as last frame asks nothing of the scissor, whose fields would
    // notify on every write.
    if (!scissorSet || !std::equal(clip, clip + 4, computedClip)) {
      std::copy(clip, clip + 4, computedClip);
      scissor.set(computedClip[0], computedClip[1], computedClip[2], computedClip[3], true, true);
      scissorSet = true;
    }
    // The push computes the clip against the scissor in force; nothing left, no children.
    if (stack->pushState(RENDERING::RENDERSTATE::renderStateEnums::SCISSOR_STATE, &scissor, true)) {
      walkingChildren = true;
      forEachChild(renderWalk, [rc](widget* w) {
        if (!w->preRender()) return;
        w->render(rc);
        w->postRender(rc);
      });
      walkingChildren = false;
    }
    stack->popState(RENDERING::RENDERSTATE::renderStateEnums::SCISSOR_STATE, true);
  }
  // Most widgets have none: no call for them.
  if (!sizePositionDelegate.isEmpty()) sizePositionDelegate.invoke();
}

// --- update, fades and states ----------------------------------------------------------

bool widget::preUpdate(RENDERING::renderingContext*, SYSTEM::updateContext* uc) {
  if (stateFlags.isFlagSet(WF_FADE)) {
    fadeTime += uc ? float(uc->updateElapsed.cV()) : 0.0f;
    float t = fadeTime / fadeLength;
    if (t >= 1.0f) {
      t = 1.0f;
      stateFlags.clearFlag(WF_FADE);
      fadeTime = 0;
    }
    currentColor = lerpColor(fadeFrom, fadeTo, t);
    currentTextColor = lerpColor(textFadeFrom, textFadeTo, t);
    font.color = currentTextColor;
    stateFlags.setFlag(WF_COLOR_CHANGED);
    askRepaint();
  }
  return visible.cV();
}

void widget::update(RENDERING::renderingContext*, SYSTEM::updateContext*) {}

void widget::postUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  forEachChild(updateWalk, [rc, uc](widget* w) {
    if (!w->preUpdate(rc, uc)) return;
    w->update(rc, uc);
    w->postUpdate(rc, uc);
  });
  afterChildrenUpdate(rc, uc);
}

void widget::afterChildrenUpdate(RENDERING::renderingContext*, SYSTEM::updateContext*) {}

void widget::startFade(const CORE::color& to, const CORE::color& textTo) {
  fadeFrom = currentColor;
  fadeTo = to;
  textFadeFrom = currentTextColor;
  textFadeTo = textTo;
  fadeTime = 0;
  stateFlags.setFlag(WF_FADE);
  askRepaint();
}

void widget::doHighlighted() {
  if (!enabled.cV()) return;
  if (stateFlags.isFlagSet(WF_STATE_TO_CHILDREN)) {
    for (linker* child : getSlavesCopy()) static_cast<widget*>(child)->doHighlighted();
  }
  if (stateFlags.isFlagSet(WF_FADE_HIGHLIGHTED)) startFade(colorHighlighted, textColorHighlighted);
}

void widget::doDown() {
  if (!enabled.cV() || stateFlags.isFlagSet(WF_LOCK_DOWN)) return;
  if (stateFlags.isFlagSet(WF_FADE_DOWN)) startFade(colorDown, textColorDown);
}

void widget::doNormal() {
  if (stateFlags.isFlagSet(WF_STATE_TO_CHILDREN)) {
    for (linker* child : getSlavesCopy()) static_cast<widget*>(child)->doNormal();
  }
  if (!enabled.cV() || (parentWidget && !parentWidget->enabled.cV())) return;
  if (stateFlags.isFlagSet(WF_LOCK_DOWN)) return;
  if (stateFlags.isFlagSet(WF_FADE_HIGHLIGHTED | WF_FADE_DOWN)) {
    startFade(colorNormal, textColorNormal);
  }
}

void widget::updatejustColor() {
  if (!enabled.cV()) {
    // Disabled shows at once, with no fade.
    stateFlags.clearFlag(WF_FADE);
    fadeTime = 0;
    currentColor = fadeFrom = fadeTo = colorDisabled;
    currentTextColor = textFadeFrom = textFadeTo = textColorDisabled;
  } else {
    const bool down = stateFlags.isFlagSet(WF_LOCK_DOWN);
    currentColor = fadeFrom = fadeTo = down ? colorDown : colorNormal;
    currentTextColor = textFadeFrom = textFadeTo = down ? textColorDown : textColorNormal;
  }
  font.color = currentTextColor;
  stateFlags.setFlag(WF_COLOR_CHANGED);
  askRepaint();
}

void widget::onEnabledChange() {
  stateFlags.setFlag(WF_COLOR_CHANGED);
  updatejustColor();
}

void widget::onCheckedChange() {
  stateFlags.setFlag(WF_COLOR_CHANGED | WF_VALUE_CHANGED);
  updatejustColor();
  SYSTEM::inputEvent e(SYSTEM::CHECKED_CHANGE, this, nullptr);
  invokeDelegate(SYSTEM::CHECKED_CHANGE, e);
}

void widget::onValueChange() {
  stateFlags.setFlag(WF_VALUE_CHANGED);
  updatejustColor();
  SYSTEM::inputEvent e(SYSTEM::VALUE_CHANGE, this, nullptr);
  invokeDelegate(SYSTEM::VALUE_CHANGE, e);
}

void widget::onValueMaxChange() {}

void widget::onValueMinChange() {}

void widget::onValueTypeChange() {}

void widget::onGradientChange() {
  stateFlags.setFlag(WF_COLOR_CHANGED);
  askRepaint();
}

void widget::onIdFontChange() {
  SYSTEM::inputEvent e(SYSTEM::FONT_CHANGE, this, nullptr);
  invokeDelegate(SYSTEM::FONT_CHANGE, e);
}

void widget::setValues(float v, float minimum, float maximum) {
  valueMin = minimum;
  valueMax = maximum;
  value = v;
}

// --- colours -------------------------------------------------------------------------------

void widget::setUseSchemaColor(bool use) {
  stateFlags.setFlag(WF_OWN_COLORS, !use);
  if (use) setjustColor(colorClass);
}

bool widget::getUseSchemaColor() const { return !stateFlags.isFlagSet(WF_OWN_COLORS); }

CORE::color* widget::stateColor(int index) {
  CORE::color* colors[4] = {&colorNormal, &colorHighlighted, &colorDisabled, &colorDown};
  return colors[index];
}

void widget::setjustColor(WIDGET_CLASS_COLOR cls) {
  colorClass = cls;
  if (cls != WCC_OWN && colorTable) {
    for (int i = 0; i < 4; ++i) {
      CORE::color c = colorTable->getColor(cls, i);
      // A transparent class colour shows the first ancestor that has one.
      if (c.a == 0) {
        for (widget* w = parentWidget; w; w = w->parentWidget) {
          if (w->stateColor(i)->a != 0) {
            c = *w->stateColor(i);
            break;
          }
        }
      }
      *stateColor(i) = c;
      CORE::color* text[4] = {&textColorNormal, &textColorHighlighted, &textColorDisabled,
                              &textColorDown};
      *text[i] = colorTable->getColor(WCC_TEXT, i);
    }
    // The arrow of a text field shows the text's disabled colour, lighter.
    if (widgetClass == WC_PICTUREBOX && parentWidget && parentWidget->widgetClass == WC_TEXTEDIT) {
      colorDisabled = colorTable->getColor(WCC_TEXT, WCI_DISABLED);
      colorDisabled.a = 155;
    }
  }
  updatejustColor();
}

void widget::setColorNormal(const CORE::color& c) {
  colorNormal = c;
  updatejustColor();
}

void widget::setColorHighlighted(const CORE::color& c) { colorHighlighted = c; }

void widget::setColorDisabled(const CORE::color& c) {
  colorDisabled = c;
  updatejustColor();
}

void widget::setColorDown(const CORE::color& c) {
  colorDown = c;
  updatejustColor();
}

void widget::setTextColorNormal(const CORE::color& c) {
  textColorNormal = c;
  updatejustColor();
}

void widget::setTextColorHighlighted(const CORE::color& c) { textColorHighlighted = c; }

void widget::setTextColorDisabled(const CORE::color& c) {
  textColorDisabled = c;
  updatejustColor();
}

void widget::setTextColorDown(const CORE::color& c) {
  textColorDown = c;
  updatejustColor();
}

const CORE::color& widget::getColorNormal() const { return colorNormal; }
const CORE::color& widget::getColorHighlighted() const { return colorHighlighted; }
const CORE::color& widget::getColorDisabled() const { return colorDisabled; }
const CORE::color& widget::getColorDown() const { return colorDown; }
const CORE::color& widget::getTextColorNormal() const { return textColorNormal; }
const CORE::color& widget::getTextColorHighlighted() const { return textColorHighlighted; }
const CORE::color& widget::getTextColorDisabled() const { return textColorDisabled; }
const CORE::color& widget::getTextColorDown() const { return textColorDown; }

// --- captions --------------------------------------------------------------------------------

void widget::setTextHorizontalAlign(TEXT_HORIZONTAL_ALIGN v) { font.horizontalAlignment = v; }

TEXT_HORIZONTAL_ALIGN widget::getTextHorizontalAlign() const { return font.horizontalAlignment; }

void widget::setTextVerticalAlign(TEXT_VERTICAL_ALIGN v) { font.verticalAlignment = v; }

TEXT_VERTICAL_ALIGN widget::getTextVerticalAlign() const { return font.verticalAlignment; }

void widget::setIdFont(const std::string& fontId) {
  setIdFont(std::wstring(fontId.begin(), fontId.end()));
}

void widget::setIdFont(const std::wstring& fontId) {
  font.idFont = fontId;
  // Found again by the new id at the next render.
  font.font = nullptr;
  onIdFontChange();
  askRepaint();
}

const std::wstring& widget::getIdFont() const { return font.idFont; }

void widget::setCaption(int v, unsigned short radix, bool now) {
  setCaption(formatInRadix(v, radix), now);
}

void widget::setCaption(int v, bool now) { setCaption(v, 10, now); }

std::wstring widget::formatValue(float v) const {
  // Integer widgets show whole numbers; others the shortest form of the float.
  if (valueType == WVT_INTEGER && std::isfinite(v)) {
    return formatInRadix(int(std::clamp(std::round(double(v)), -2147483648.0, 2147483647.0)), 10);
  }
  wchar_t text[64];
  std::swprintf(text, 64, L"%g", double(v));
  return text;
}

void widget::setCaption(float v, bool now) { setCaption(formatValue(v), now); }

void widget::setCaption(const std::wstring& text, bool now) {
  caption = text;
  font.text = text;
  if (now) {
    computeTextRect();
  } else {
    stateFlags.setFlag(WF_SIZE_POSITION_CHANGED);
  }
  onCaptionChange();
  askRepaint();
}

void widget::setCaptionAutosize(int v, unsigned short radix, bool now) {
  setCaptionAutosize(formatInRadix(v, radix), now);
}

void widget::setCaptionAutosize(int v, bool now) { setCaptionAutosize(v, 10, now); }

void widget::setCaptionAutosize(float v, bool now) { setCaptionAutosize(formatValue(v), now); }

void widget::setCaptionAutosize(const std::wstring& text, bool now) {
  setCaption(text, now);
  autosizeCaption = text;
  autosizePending = true;
  if (now && device) onCaptionAutosize();
}

void widget::onCaptionAutosize() {
  // The text box needs the font on the device; until then the request waits.
  int w = 0, h = 0;
  if (!device || !font.font || !device->getFontBox(font.font, autosizeCaption, w, h)) return;
  autosizePending = false;
  setSize(float(w) + margin[0] + margin[1], float(h) + margin[2] + margin[3]);
}

void widget::onCaptionChange() {
  SYSTEM::inputEvent e(SYSTEM::CAPTION_CHANGE, this, nullptr);
  invokeDelegate(SYSTEM::CAPTION_CHANGE, e);
}

const std::wstring& widget::getCaption() const { return caption; }

int widget::getCaption2Int(int fallback) const {
  double v = 0;
  if (!parseNumber(caption, v) || v < -2147483648.0 || v > 2147483647.0) return fallback;
  return int(v);
}

float widget::getCaption2Float(float fallback) const {
  double v = 0;
  return parseNumber(caption, v) ? float(v) : fallback;
}

double widget::getCaption2Double(double fallback, int digits) const {
  double v = 0;
  if (!parseNumber(caption, v)) return fallback;
  if (digits < 0) return v;
  const double scale = std::pow(10.0, std::min(digits, 15));
  return std::round(v * scale) / scale;
}

void widget::setToolTip(const std::wstring& text) { toolTip = text; }

const std::wstring& widget::getToolTip() const { return toolTip; }

void widget::renderText(RENDERING::renderingContext* rc) {
  RENDERING::renderer* target = rc ? rc->getRenderer() : nullptr;
  if (!target || !font.font || font.text.empty()) return;
  int w = 0, h = 0;
  if (!target->getFontBox(font.font, font.text, w, h)) return;
  const int* r = font.textRect;
  int x = r[0];
  if (font.horizontalAlignment == TEXT_RIGHT) x = r[0] + r[2] - w;
  if (font.horizontalAlignment == TEXT_HCENTER) x = r[0] + (r[2] - w) / 2;
  // The box's bottom, then the baseline above it: the renderer places text by its
  // baseline, and descenders take about a fifth of a line in the faces we ship.
  int y = r[1] + r[3] - h;
  if (font.verticalAlignment == TEXT_BOTTOM) y = r[1];
  if (font.verticalAlignment == TEXT_VCENTER) y = r[1] + (r[3] - h) / 2;
  y += h / 5;
  textPosition = point3f(float(x) + textOffset.x, float(y) + textOffset.y, position.z);
  target->renderText(font.font, font.text, int(textPosition.x), int(textPosition.y),
                     currentTextColor);
}

// --- tree ------------------------------------------------------------------------------------

widget* widget::connect(widget* parent, bool follow) {
  if (!parent || !linker::connect(parent, follow)) return nullptr;
  return attached(parent);
}

widget* widget::connectBefore(widget* parent, widget* sibling, bool follow) {
  if (!parent || !linker::connectBefore(parent, sibling, follow)) return nullptr;
  return attached(parent);
}

widget* widget::connectAfter(widget* parent, widget* sibling, bool follow) {
  if (!parent || !linker::connectAfter(parent, sibling, follow)) return nullptr;
  return attached(parent);
}

widget* widget::attached(widget* parent) {
  parentWidget = parent;
  layout.update();
  sizePositionChanged();
  return this;
}

void widget::disconnect(widget*) {}

void widget::setPopUpMenu(menu* popUp, bool atCorner) {
  popUpMenu = popUp;
  popUpMenuName = popUp ? popUp->getId() : std::wstring();
  stateFlags.setFlag(WF_POPUP_AT_CORNER, atCorner);
}

void widget::setPopUpMenu(const std::wstring& menuId, bool atCorner) {
  popUpMenu = nullptr;
  popUpMenuName = menuId;
  stateFlags.setFlag(WF_POPUP_AT_CORNER, atCorner);
}

const std::wstring& widget::getPopUpMenu() const { return popUpMenuName; }

menu* widget::getPopUpMenuPointer() {
  if (!controller) return popUpMenu;
  return popUpMenuName.empty() ? nullptr : controller->getMenu(popUpMenuName);
}

const menu* widget::getPopUpMenuPointer() const {
  return const_cast<widget*>(this)->getPopUpMenuPointer();
}

void widget::removePopUpMenu() {
  popUpMenu = nullptr;
  popUpMenuName.clear();
  stateFlags.clearFlag(WF_POPUP_AT_CORNER);
}

void widget::showPopUpMenu(float x, float y) {
  if (menu* m = getPopUpMenuPointer()) m->popup(x, y);
}

void widget::closePopUpMenu() {
  menu* m = getPopUpMenuPointer();
  if (!m) return;
  if (controller && controller->getSchedule().getPopup() == m) {
    controller->getSchedule().closePopupNow();
  } else {
    m->close();
  }
}

void widget::close() { visible = false; }

void widget::invalidate() {
  stateFlags.setFlag(WF_REFRESH | WF_COLOR_CHANGED | WF_VERTEX_CHANGED | WF_UV_CHANGED |
                     WF_SIZE_POSITION_CHANGED | WF_ORIENTATION_CHANGED | WF_VALUE_CHANGED);
  for (linker* child : getSlavesCopy()) static_cast<widget*>(child)->invalidate();
  askRepaint();
}

void widget::setOnFocusOnClick(bool on) { stateFlags.setFlag(WF_FOCUS_ON_CLICK, on); }

void widget::setRedirect(widget* target) { redirect = target; }

widget* widget::getRedirect() const { return redirect; }

void widget::doRefresh() { stateFlags.clearFlag(WF_REFRESH); }

void widget::config() {}

bool widget::isMeOrMyChild(const widget* other) const {
  for (const widget* w = other; w; w = w->parentWidget) {
    if (w == this) return true;
  }
  return false;
}

bool widget::isChildOfClassId(WIDGET_CLASS cls) const {
  for (const widget* w = parentWidget; w; w = w->parentWidget) {
    if (w->widgetClass == cls) return true;
  }
  return false;
}

widget* widget::getChildAt(int index) const {
  return static_cast<widget*>(const_cast<widget*>(this)->getSlaveAtIndex(index));
}

void widget::gotoInFirstPlane() {
  for (widget* w = this; w->parentWidget; w = w->parentWidget) {
    widget* parent = w->parentWidget;
    if (!w->stateFlags.isFlagSet(WF_FIRST_PLANE)) continue;
    if (parent->widgetClass == WC_MENU || parent->widgetClass == WC_WIDGETGROUP) continue;
    if (!parent->slaves.empty() && parent->slaves.back() == w) continue;
    parent->removeSlave(w);
    parent->slaves.push_back(w);
  }
}

void widget::gotoInFirstPlaneNextRender() {
  if (controller) {
    controller->gotoInFirstPlaneNextRender(this);
  } else {
    gotoInFirstPlane();
  }
}

std::wstring widget::iconToIdTexture(GUI_ICON icon) {
  static const wchar_t* const ids[] = {
      L"GUI_AXIS_ICON",         L"GUI_BUNNY_ICON",       L"GUI_COPY_ICON",
      L"GUI_CUT_ICON",          L"GUI_PASTE_ICON",       L"GUI_EXIT_ICON",
      L"GUI_FILE_NEW_ICON",     L"GUI_FILE_OPEN_ICON",   L"GUI_FILE_SAVE_ICON",
      L"GUI_FILE_SAVE_AS_ICON", L"GUI_FULLSCREEN_ICON",  L"GUI_HELP_ICON",
      L"GUI_LIST_ADD_ICON",     L"GUI_LIST_REMOVE_ICON", L"GUI_MOUSE_ICON",
      L"GUI_PRINT_ICON",        L"GUI_REDO_ICON",        L"GUI_UNDO_ICON",
      L"GUI_REFRESH_ICON",      L"GUI_SEARCH_ICON",      L"GUI_TOOLS_ICON",
      L"GUI_TRACKBALL_ICON",    L"GUI_ARROW_LEFT_ICON",  L"GUI_ARROW_RIGHT_ICON",
      L"GUI_ARROW_UP_ICON",     L"GUI_ARROW_DOWN_ICON",  L"GUI_NULL_ICON",
  };
  const int i = int(icon);
  return i >= 0 && i < int(sizeof ids / sizeof ids[0]) ? ids[i] : L"";
}

void widget::setClassIds(WIDGET_CLASS cls, WIDGET_CLASS_COLOR colorCls) {
  widgetClass = cls;
  colorClass = colorCls;
}

}  // namespace GUI
}  // namespace JEV
