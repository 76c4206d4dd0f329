#include "jev3d/gui/button.h"

#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {

using SYSTEM::inputEvent;
using SYSTEM::inputEventDelegate;

namespace {

// The gap between icon and caption.
constexpr float iconGap = 5.0f;

void setLayout(widget* part, HORIZONTAL_ALIGNMENT h, float offsetX, VERTICAL_ALIGNMENT v,
               WIDTH_SIZE_LAYOUT widthRule, float widthOffset, HEIGHT_SIZE_LAYOUT heightRule,
               float heightOffset) {
  if (!part) return;
  part->layout.setHorizontal(h);
  part->layout.setVertical(v);
  part->layout.horizontalOffset = offsetX;
  part->layout.width = widthRule;
  part->layout.widthOffset = widthOffset;
  part->layout.height = heightRule;
  part->layout.heightOffset = heightOffset;
}

}  // namespace

button::button(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win) {
  setClassIds(WC_BUTTON, WCC_PANEL);
  setMargin(2, 2, 2, 2);
  adjustUV(tileNormal[0], tileNormal[1]);
}

button::~button() = default;

void button::config() {
  setSize(80, 24);
  captionPart = INTERNAL::addPart<label>(this, WC_LABEL, L"_CAPTION");
  iconPart = INTERNAL::addPart<picturebox>(this, WC_PICTUREBOX, L"_ICON");
  if (iconPart) {
    iconPart->setjustColor(WCC_ICON);
    iconPart->setIcon(ICON_NULL);
  }
  if (captionPart) captionPart->setIdFont(std::wstring(L"ID_FONT1"));
  setCaption(std::wstring(L"button"), false);
  INTERNAL::listenTo<button>(this, {{SYSTEM::MOUSE_MOVE_ENTER, &button::onMouseEnter},
                                    {SYSTEM::MOUSE_MOVE_LEAVE, &button::onMouseLeave},
                                    {SYSTEM::MOUSE_LEFT_DOWN, &button::onMouseLeftButtonDown},
                                    {SYSTEM::MOUSE_LEFT_UP, &button::onMouseLeftButtonUp},
                                    {SYSTEM::MOUSE_LEFT_CLICK, &button::onMouseLeftButtonClick},
                                    {SYSTEM::MOUSE_LEFT_DRAG_LEAVE, &button::onMouseLeftButtonUp}});
  applyStyle();
}

void button::setButtonStyle(BUTTON_STYLE style) {
  buttonStyle = style;
  applyStyle();
}

void button::applyStyle() {
  const float icon = static_cast<float>(sizeIcon);
  const float beside = icon + iconGap;
  if (iconPart) {
    iconPart->size = point3f(icon, icon, 1);
    iconPart->visible = buttonStyle != BS_TEXT_ONLY;
  }
  if (captionPart) captionPart->visible = buttonStyle != BS_ICON_ONLY;
  switch (buttonStyle) {
    case BS_ICON_LEFT:
      setLayout(iconPart, HA_LEFT, shift.x, VA_CENTER, WSL_FREE, 0, HSL_FREE, 0);
      setLayout(captionPart, HA_LEFT, beside + shift.x, VA_CENTER, WSL_FULL, -beside, HSL_FULL, 0);
      if (captionPart) captionPart->setTextHorizontalAlign(TEXT_LEFT);
      break;
    case BS_ICON_RIGHT:
      setLayout(iconPart, HA_RIGHT, shift.x, VA_CENTER, WSL_FREE, 0, HSL_FREE, 0);
      setLayout(captionPart, HA_RIGHT, -beside + shift.x, VA_CENTER, WSL_FULL, -beside, HSL_FULL,
                0);
      if (captionPart) captionPart->setTextHorizontalAlign(TEXT_RIGHT);
      break;
    case BS_ICON_ABOVE:
      setLayout(iconPart, HA_CENTER, shift.x, VA_TOP, WSL_FREE, 0, HSL_FREE, 0);
      setLayout(captionPart, HA_CENTER, shift.x, VA_BOTTOM, WSL_FULL, 0, HSL_FULL, -icon);
      if (captionPart) captionPart->setTextHorizontalAlign(TEXT_HCENTER);
      break;
    case BS_ICON_ONLY:
    case BS_TEXT_ONLY:
      setLayout(iconPart, HA_CENTER, shift.x, VA_CENTER, WSL_FREE, 0, HSL_FREE, 0);
      setLayout(captionPart, HA_CENTER, shift.x, VA_CENTER, WSL_FULL, 0, HSL_FULL, 0);
      if (captionPart) captionPart->setTextHorizontalAlign(TEXT_HCENTER);
      break;
  }
  for (widget* part : {static_cast<widget*>(iconPart), static_cast<widget*>(captionPart)}) {
    if (!part) continue;
    part->layout.verticalOffset = shift.y;
    part->layout.update();
    part->sizePositionChanged();
  }
  if (layerPart) INTERNAL::place(layerPart, shift.x, shift.y, size.x, size.y);
}

void button::sizePositionChanged() {
  panel::sizePositionChanged();
  if (layerPart) INTERNAL::place(layerPart, shift.x, shift.y, size.x, size.y);
}

void button::setCheckable(bool on) {
  checkable = on;
  doCheckedChange();
}

void button::setFlat(bool on) {
  flat = on;
  setShadow(on ? WS_NO_BACKGROUND : WS_NONE);
}

void button::setIcon(GUI_ICON icon) {
  if (iconPart) iconPart->setIcon(icon);
}

void button::setIcon(const std::wstring& idTexture) {
  if (iconPart) iconPart->setIcon(idTexture);
}

void button::setIcon(const std::string& idTexture) {
  if (iconPart) iconPart->setIcon(idTexture);
}

button::GUI_ICON button::getIcon() const { return iconPart ? iconPart->getIcon() : ICON_NULL; }

void button::setSizeIcon(int pixels) {
  sizeIcon = pixels > 0 ? pixels : 0;
  applyStyle();
}

void button::setCaption(const std::wstring& text, bool now) {
  panel::setCaption(text, now);
  if (captionPart) captionPart->setCaption(text, now);
}

float button::getWidth() const {
  const bool shifted = checkable && checked.cV() && !caption.empty();
  return size.x + (shifted ? checkedTextOffset.x : 0.0f);
}

void button::setTiles(float u, float v, float downU, float downV, float checkedU, float checkedV) {
  tileNormal[0] = u;
  tileNormal[1] = v;
  tileDown[0] = downU;
  tileDown[1] = downV;
  tileChecked[0] = checkedU;
  tileChecked[1] = checkedV;
  restTile();
}

void button::setSkinAsItem() {
  setjustColor(WCC_ITEM);
  setTiles(176, 0, 176, 0, 176, 0);
}

void button::setSkinAsWinButtonClose() {
  // The cross of the window's close button, over the tile.
  setSkinAsWinButton(WCC_BUTTON_CLOSE, 64, 160);
}

void button::setSkinAsWinButton(WIDGET_CLASS_COLOR cls, float glyphU, float glyphV) {
  setjustColor(cls);
  setTiles(0, 48, 0, 64, 0, 80);
  addLayer(glyphU, glyphV, WCC_ARROW);
}

void button::setSkinAsToolTip() {
  setjustColor(WCC_TOOLTIP);
  setTiles(32, 0, 32, 0, 32, 0);
}

void button::addLayer(float u, float v, WIDGET_CLASS_COLOR cls) {
  if (!layerPart) layerPart = INTERNAL::addPart<picturebox>(this, WC_PICTUREBOX, L"_LAYER");
  if (!layerPart) return;
  layerPart->setjustColor(cls);
  setLayer(u, v);
}

void button::setLayer(float u, float v) {
  if (!layerPart) return;
  layerPart->setTile(u, v);
  INTERNAL::place(layerPart, shift.x, shift.y, size.x, size.y);
}

void button::restTile() {
  const bool down = checkable && checked.cV() && colorClass != WCC_ITEM;
  const float* tile = down ? tileChecked : tileNormal;
  adjustUV(tile[0], tile[1]);
}

void button::onCheckedChange() {
  panel::onCheckedChange();
  doCheckedChange();
}

void button::doCheckedChange() {
  if (!checkable) return;
  const bool on = checked.cV();
  widget* lockers[] = {this, captionPart};
  for (widget* w : lockers) {
    if (!w) continue;
    if (on) {
      w->doDown();
      w->getFlags().setFlag(WF_LOCK_DOWN);
    } else {
      w->getFlags().clearFlag(WF_LOCK_DOWN);
    }
  }
  // An item shows its state by the locked-down colours only.
  if (colorClass != WCC_ITEM) {
    shift = on ? checkedTextOffset : point3f(0, 0, 0);
    restTile();
    applyStyle();
  }
  if (!on) {
    for (widget* w : lockers) {
      if (w) w->doNormal();
    }
  }
}

void button::onMouseEnter(const inputEvent*) {
  if (flat) setShadow(WS_NONE);
}

void button::onMouseLeave(const inputEvent*) {
  if (flat) setShadow(WS_NO_BACKGROUND);
  restTile();
}

void button::onMouseLeftButtonDown(const inputEvent*) {
  if (!(checkable && checked.cV())) adjustUV(tileDown[0], tileDown[1]);
}

void button::onMouseLeftButtonUp(const inputEvent*) { restTile(); }

void button::onMouseLeftButtonClick(const inputEvent*) {
  if (checkable) checked = !checked.cV();
}

void button::saveAttrib(IO::XML::xmlElement& e) const {
  panel::saveAttrib(e);
  PROJECT::saveButtonAttributes(e, checkable, flat, iconPart ? iconPart->getIdTexture() : L"",
                                sizeIcon, buttonStyle);
}

void button::openAttrib(IO::XML::xmlElement& e) {
  panel::openAttrib(e);
  int v = 0;
  if (e.queryIntValue(L"BUTTON_CHECKABLE", v)) setCheckable(v != 0);
  if (e.queryIntValue(L"BUTTON_FLAT", v)) setFlat(v != 0);
  if (iconPart && e.isAttribute(L"ICON_TEXTURE")) {
    PROJECT::setIconFromProject(*iconPart, e.getAttributeValueW(L"ICON_TEXTURE"));
  }
  // Bounded so that a hostile file cannot ask for an icon wider than any window.
  if (e.queryIntValue(L"ICON_TEXTURE_SQUARE_SIZE", v) && v >= 0 && v <= 4096) setSizeIcon(v);
  if (e.queryIntValue(L"BUTTON_STYLE", v) && v >= BS_ICON_LEFT && v <= BS_TEXT_ONLY) {
    setButtonStyle(static_cast<BUTTON_STYLE>(v));
  }
}

}  // namespace GUI
}  // namespace JEV
