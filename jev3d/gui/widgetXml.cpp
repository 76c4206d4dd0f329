// The widget's part of the project file: its "WIDGET" element written and read.
#include <cmath>
#include <limits>

#include "jev3d/gui/font.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/gui/widget.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {

using IO::XML::xmlElement;
using IO::XML::xmlNode;

namespace {

const wchar_t* const colorElements[8] = {
    L"WIDGET_COLOR_NORMAL",           L"WIDGET_COLOR_DISABLED",
    L"WIDGET_COLOR_HIGHLIGHTED",      L"WIDGET_COLOR_DOWN",
    L"WIDGET_TEXT_COLOR_NORMAL",      L"WIDGET_TEXT_COLOR_DISABLED",
    L"WIDGET_TEXT_COLOR_HIGHLIGHTED", L"WIDGET_TEXT_COLOR_DOWN"};

// Values of the WIDGET_VALUE family and the layout's offsets are written as integers.
// Values past the integer range (or not numbers) are clamped rather than overflowing.
int truncated(float v) {
  if (std::isnan(v)) return 0;
  if (v >= 2147483520.0f) return std::numeric_limits<int>::max();
  if (v <= -2147483648.0f) return std::numeric_limits<int>::min();
  return static_cast<int>(v);
}

void readBool(const xmlElement& e, const wchar_t* name, SYSTEM::fieldBase<bool>& target) {
  int v = 0;
  if (e.queryIntValue(name, v)) target = v != 0;
}

void readBool(const xmlElement& e, const wchar_t* name, bool& target) {
  int v = 0;
  if (e.queryIntValue(name, v)) target = v != 0;
}

// An enumeration from an integer attribute, taken only when within [0, count).
template <class E>
void readEnum(const xmlElement& e, const wchar_t* name, int count, E& target) {
  int v = 0;
  if (e.queryIntValue(name, v) && v >= 0 && v < count) target = static_cast<E>(v);
}

// One rule of the layout: its kind, "<name>_OFFSET" and "<name>_PERC".
void saveRule(xmlElement& e, const std::wstring& name, int kind, float offset, bool perc) {
  e.setAttribute(name, kind);
  e.setAttribute(name + L"_OFFSET", truncated(offset));
  e.setAttribute(name + L"_PERC", perc ? 1 : 0);
}

void saveLayout(const GUI::layout& l, xmlElement& parent) {
  xmlElement e(L"LAYOUT");
  saveRule(e, L"HORIZONTAL", l.horizontal, l.horizontalOffset, l.horizontalPerc);
  saveRule(e, L"VERTICAL", l.vertical, l.verticalOffset, l.verticalPerc);
  saveRule(e, L"WIDTH", l.width, l.widthOffset, l.widthPerc);
  saveRule(e, L"HEIGHT", l.height, l.heightOffset, l.heightPerc);
  e.connect(&parent);
}

void openLayout(GUI::layout& l, const xmlElement& e) {
  HORIZONTAL_ALIGNMENT h = l.horizontal;
  readEnum(e, L"HORIZONTAL", 4, h);
  if (h != l.horizontal) l.setHorizontal(h);
  VERTICAL_ALIGNMENT v = l.vertical;
  readEnum(e, L"VERTICAL", 4, v);
  if (v != l.vertical) l.setVertical(v);
  e.queryFloatValue(L"HORIZONTAL_OFFSET", l.horizontalOffset);
  readBool(e, L"HORIZONTAL_PERC", l.horizontalPerc);
  e.queryFloatValue(L"VERTICAL_OFFSET", l.verticalOffset);
  readBool(e, L"VERTICAL_PERC", l.verticalPerc);
  readEnum(e, L"WIDTH", 5, l.width);
  e.queryFloatValue(L"WIDTH_OFFSET", l.widthOffset);
  readBool(e, L"WIDTH_PERC", l.widthPerc);
  readEnum(e, L"HEIGHT", 5, l.height);
  e.queryFloatValue(L"HEIGHT_OFFSET", l.heightOffset);
  readBool(e, L"HEIGHT_PERC", l.heightPerc);
}

void saveFont(const fontInstance& f, xmlElement& parent) {
  xmlElement e(L"FONT_ISTANCE");
  e.setAttribute(L"RESOURCE_ID", f.idFont);
  e.setAttribute(L"FONT_NAME", f.font ? f.font->getFace() : std::wstring());
  e.setAttribute(L"FONT_SIZE", f.font ? f.font->getSize() : 0);
  e.setAttribute(L"HORIZONTAL_ALIGNMENT", static_cast<int>(f.horizontalAlignment));
  e.setAttribute(L"VERTICAL_ALIGNMENT", static_cast<int>(f.verticalAlignment));
  // Captions are cut at the text rectangle; there is one way of cutting.
  e.setAttribute(L"CUT_TYPE", 0);
  e.setAttribute(L"TEXT_RECT",
                 std::to_wstring(f.textRect[0]) + L" " + std::to_wstring(f.textRect[1]) + L" " +
                     std::to_wstring(f.textRect[2]) + L" " + std::to_wstring(f.textRect[3]));
  if (xmlElement* added = e.connect(&parent)) PROJECT::saveColor(f.color, L"COLOR", *added);
}

// The font's resource id and alignments; the device font, its name and size and the text
// rectangle follow from them at the next render.
void openFont(widget& w, xmlElement& e) {
  if (e.isAttribute(L"RESOURCE_ID")) w.setIdFont(e.getAttributeValueW(L"RESOURCE_ID"));
  TEXT_HORIZONTAL_ALIGN h = w.getTextHorizontalAlign();
  readEnum(e, L"HORIZONTAL_ALIGNMENT", 3, h);
  w.setTextHorizontalAlign(h);
  TEXT_VERTICAL_ALIGN v = w.getTextVerticalAlign();
  readEnum(e, L"VERTICAL_ALIGNMENT", 3, v);
  w.setTextVerticalAlign(v);
  for (int i = 0; i < e.getChildCount(); ++i) {
    xmlNode* node = e.getChild(i);
    if (node && node->getType() == IO::XML::XML_ELEMENT && node->getValueW() == L"COLOR") {
      PROJECT::openColor(static_cast<xmlElement&>(*node), w.getFontInstance().color);
    }
  }
}

}  // namespace

void widget::saveAttrib(xmlElement& e) const {
  e.setAttribute(L"WIDGET_ID", id);
  e.setAttribute(L"WIDGET_CLASS", static_cast<int>(widgetClass));
  e.setAttribute(L"WIDGET_SHADOW", static_cast<int>(shadow));
  e.setAttribute(L"WIDGET_ORIENTATION", static_cast<int>(orientation));
  e.setAttribute(L"WIDGET_ENABLED", enabled.cV() ? 1 : 0);
  e.setAttribute(L"WIDGET_VISIBLE", visible.cV() ? 1 : 0);
  e.setAttribute(L"WIDGET_CHECKED", checked.cV() ? 1 : 0);
  e.setAttribute(L"WIDGET_VALUE_TYPE", static_cast<int>(valueType));
  e.setAttribute(L"WIDGET_VALUE", truncated(value.cV()));
  e.setAttribute(L"WIDGET_VALUE_MIN", truncated(valueMin.cV()));
  e.setAttribute(L"WIDGET_VALUE_MAX", truncated(valueMax.cV()));
  e.setAttribute(L"WIDGET_USE_SCHEMA_COLOR", getUseSchemaColor() ? 1 : 0);
  // The tooltip is read but never written: a saved project loses its tooltips.
  position.saveToXMLW(&e, L"WIDGET_POSITION", L"X", L"Y", L"Z");
  size.saveToXMLW(&e, L"WIDGET_SIZE", L"X", L"Y", L"Z");
  saveLayout(layout, e);
  if (!getUseSchemaColor()) {
    const CORE::color* colors[8] = {
        &colorNormal,     &colorDisabled,     &colorHighlighted,     &colorDown,
        &textColorNormal, &textColorDisabled, &textColorHighlighted, &textColorDown};
    for (int i = 0; i < 8; ++i) PROJECT::saveColor(*colors[i], colorElements[i], e);
  }
  saveFont(font, e);
}

void widget::saveChilds(xmlElement& e) const {
  for (int i = 0;; ++i) {
    const widget* child = getChildAt(i);
    if (!child) break;
    child->saveToXML(&e);
  }
}

void widget::saveToXML(xmlNode* parent) const {
  if (!parent || isPrivate()) return;
  // connect copies no children: connect first, then write into the copy.
  xmlElement* added = xmlElement(L"WIDGET").connect(parent);
  if (!added) return;
  saveAttrib(*added);
  saveChilds(*added);
}

bool widget::saveToXML(const std::wstring& path) const {
  IO::XML::xmlDocument doc;
  xmlElement* root = PROJECT::startDocument(doc);
  if (controller) controller->saveColorTableToXmlElement(*root);
  saveToXML(root);
  return doc.writeToFile(path);
}

void widget::openAttrib(xmlElement& e) {
  readEnum(e, L"WIDGET_SHADOW", WS_NO_BACKGROUND + 1, shadow);
  WIDGET_ORIENTATION o = orientation;
  readEnum(e, L"WIDGET_ORIENTATION", 2, o);
  if (o != orientation) setOrientation(o);
  readBool(e, L"WIDGET_ENABLED", enabled);
  readBool(e, L"WIDGET_VISIBLE", visible);
  readBool(e, L"WIDGET_CHECKED", checked);
  readEnum(e, L"WIDGET_VALUE_TYPE", 2, valueType);
  float v = 0;
  if (e.queryFloatValue(L"WIDGET_VALUE_MIN", v)) valueMin = v;
  if (e.queryFloatValue(L"WIDGET_VALUE_MAX", v)) valueMax = v;
  if (e.queryFloatValue(L"WIDGET_VALUE", v)) value = v;
  int useSchema = 0;
  if (e.queryIntValue(L"WIDGET_USE_SCHEMA_COLOR", useSchema)) setUseSchemaColor(useSchema != 0);
  if (e.isAttribute(L"WIDGET_TOOLTIP")) setToolTip(e.getAttributeValueW(L"WIDGET_TOOLTIP"));
}

bool widget::openFromXML(guiController* gc, xmlElement& e, pendingList& pending,
                         const std::wstring& prefix) {
  openAttrib(e);
  if (widgetClass == WC_ITEM) {
    for (const wchar_t* key : {L"SUB_MENU", L"TREE_PARENT"}) {
      const std::wstring& target = e.getAttributeValueW(key);
      if (!target.empty()) pending.emplace_back(this, prefix + target);
    }
  }
  using setter = void (widget::*)(const CORE::color&);
  const setter setters[8] = {&widget::setColorNormal,          &widget::setColorDisabled,
                             &widget::setColorHighlighted,     &widget::setColorDown,
                             &widget::setTextColorNormal,      &widget::setTextColorDisabled,
                             &widget::setTextColorHighlighted, &widget::setTextColorDown};
  CORE::color* colors[8] = {
      &colorNormal,     &colorDisabled,     &colorHighlighted,     &colorDown,
      &textColorNormal, &textColorDisabled, &textColorHighlighted, &textColorDown};
  for (int i = 0; i < e.getChildCount(); ++i) {
    xmlNode* node = e.getChild(i);
    if (!node || node->getType() != IO::XML::XML_ELEMENT) continue;
    auto& child = static_cast<xmlElement&>(*node);
    const std::wstring& name = child.getValueW();
    if (name == L"WIDGET_POSITION") {
      point3f p = position;
      p.openFromXMLW(&e, name, L"X", L"Y", L"Z");
      setPosition(p.x, p.y, p.z);
    } else if (name == L"WIDGET_SIZE") {
      point3f s = size;
      s.openFromXMLW(&e, name, L"X", L"Y", L"Z");
      setSize(s.x, s.y);
    } else if (name == L"LAYOUT") {
      openLayout(layout, child);
    } else if (name == L"FONT_ISTANCE") {
      openFont(*this, child);
    } else if (name == L"WIDGET") {
      if (!gc || !gc->openWidgetFromXML(child, this, pending, prefix)) return false;
    } else {
      for (int c = 0; c < 8; ++c) {
        if (name != colorElements[c]) continue;
        CORE::color read = *colors[c];
        PROJECT::openColor(child, read);
        (this->*setters[c])(read);
      }
    }
  }
  sizePositionChanged();
  return true;
}

}  // namespace GUI
}  // namespace JEV
