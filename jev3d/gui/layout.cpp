#include "jev3d/gui/layout.h"

#include <algorithm>

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

namespace {

// The parent's area less its margins; an unparented widget has no margins.
MATH::point3<float> available(const GUI::widget& w, float margins[4]) {
  const MATH::point3<float> parentSize = w.getParentSize();
  for (int i = 0; i < 4; ++i) margins[i] = w.getParent() ? w.getParent()->getMargin()[i] : 0.0f;
  return MATH::point3<float>(parentSize.x - margins[0] - margins[1],
                             parentSize.y - margins[2] - margins[3], 0);
}

// A size rule applied to `space`; false for the free rule.
bool ruleSize(int rule, float space, float offset, float& out) {
  switch (rule) {
    case 0:
      out = space + offset;
      return true;
    case 2:
      out = space * 0.5f + offset;
      return true;
    case 3:
      out = space / 3.0f + offset;
      return true;
    case 4:
      out = space * 0.25f + offset;
      return true;
    default:
      return false;
  }
}

bool activeSize(int rule) { return rule == 0 || rule == 2 || rule == 3 || rule == 4; }

}  // namespace

layout::layout(GUI::widget* owner) : widget(owner) {}

void layout::update() {
  if (enable.cV() || !widget) return;
  if (activeSize(width) || activeSize(height)) updateSizeLayout();
  if (horizontal == HA_FREE && vertical == VA_FREE) return;
  updatePositionLayout();
}

void layout::updateSizeLayout() {
  float margins[4];
  const MATH::point3<float> space = available(*widget, margins);
  const float offsetW = widthPerc ? space.x / 100.0f * widthOffset : widthOffset;
  const float offsetH = heightPerc ? space.y / 100.0f * heightOffset : heightOffset;
  float w = widget->size.x, h = widget->size.y;
  if (!widget->getFlags().isFlagSet(WF_FREE_WIDTH)) ruleSize(width, space.x, offsetW, w);
  if (!widget->getFlags().isFlagSet(WF_FREE_HEIGHT)) ruleSize(height, space.y, offsetH, h);
  widget->size.x = std::clamp(w, widget->getSizeMin().x, widget->getSizeMax().x);
  widget->size.y = std::clamp(h, widget->getSizeMin().y, widget->getSizeMax().y);
}

void layout::updatePositionLayout() {
  float margins[4];
  const MATH::point3<float> space = available(*widget, margins);
  const float w = widget->getLayoutWidth();
  const float h = widget->size.y;
  const float offsetX = horizontalPerc ? space.x / 100.0f * horizontalOffset : horizontalOffset;
  const float offsetY = verticalPerc ? space.y / 100.0f * verticalOffset : verticalOffset;
  MATH::point3<float>& p = widget->position;
  switch (horizontal) {
    case HA_LEFT:
      p.x = margins[0] + offsetX;
      break;
    case HA_RIGHT:
      p.x = space.x + margins[0] - w + offsetX;
      break;
    case HA_CENTER:
      p.x = space.x * 0.5f + margins[0] - w * 0.5f + offsetX;
      break;
    default:
      break;
  }
  switch (vertical) {
    case VA_TOP:
      p.y = space.y + margins[3] - h + offsetY;
      break;
    case VA_BOTTOM:
      p.y = margins[3] + offsetY;
      break;
    case VA_CENTER:
      p.y = space.y * 0.5f + margins[3] - h * 0.5f + offsetY;
      break;
    default:
      break;
  }
}

void layout::setHorizontal(HORIZONTAL_ALIGNMENT v) {
  if (horizontal == HA_FREE && v != HA_FREE && widget) savedX = widget->position.x;
  if (horizontal != HA_FREE && v == HA_FREE && widget) widget->position.x = savedX;
  horizontal = v;
  if (widget) widget->sizePositionChanged();
}

void layout::setVertical(VERTICAL_ALIGNMENT v) {
  if (vertical == VA_FREE && v != VA_FREE && widget) savedY = widget->position.y;
  if (vertical != VA_FREE && v == VA_FREE && widget) widget->position.y = savedY;
  vertical = v;
  if (widget) widget->sizePositionChanged();
}

}  // namespace GUI
}  // namespace JEV
