#include "jev3d/gui/guiColorTable.h"

#include <cstdint>

namespace JEV {
namespace GUI {

namespace {

// Schema 0 as AABBGGRR words, which is the colour's own word order.
const uint32_t schemaZero[WCC_COUNT][4] = {
    {0xFFC0C0C0, 0xFFE6E6E6, 0xFF414141, 0xFF5C5C5C},  // WCC_BUTTON
    {0xFFFFFFFF, 0xFFE6E6E6, 0xFF414141, 0xFF5C5C5C},  // WCC_CHECK_RADIO
    {0xFFF6DBA9, 0xFFFCF4E3, 0xFF414141, 0xFFF0CA6F},  // WCC_BUTTON_ARROW
    {0xFFFFFFFF, 0xFF818181, 0xFF414141, 0xFFFFFFFF},  // WCC_INPUT_AREA
    {0xFFD7D7D7, 0xFFFFFFFF, 0xFF414141, 0xFFFFFFFF},  // WCC_MENU
    {0xFFF6DBA9, 0xFFFFFFFF, 0xFF414141, 0xFFFFFFFF},  // WCC_BAR
    {0xFFD2D2D2, 0xFFFFFFFF, 0xFF464646, 0xFFFFFFFF},  // WCC_PANEL
    {0xFFFF5959, 0xFFFFAAAA, 0xFF414141, 0xFFFF7F7F},  // WCC_CURSOR_SLIDER
    {0xFF59FF59, 0xFFAAFFAA, 0xFF414141, 0xFF7FFF7F},  // WCC_BUTTON_RESTORE
    {0xFF5959FF, 0xFFAAAAFF, 0xFF414141, 0xFF7F7FFF},  // WCC_BUTTON_CLOSE
    {0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},  // WCC_ARROW
    {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},  // WCC_WINDOW_CLIENT_AREA
    {0xFFFFC0C0, 0xFFFFAAAA, 0xFF414141, 0xFFFF7F7F},  // WCC_WINDOW_BORDER
    {0xFF060606, 0xFFFFFFFF, 0xFF9D9D9D, 0xFFFFFFFF},  // WCC_TEXT
    {0x00FFFFFF, 0xFFF6DBA9, 0x00FFFFFF, 0xFFF0CA6F},  // WCC_ITEM
    {0xFFFFFFFF, 0xFFFFFFFF, 0xFF414141, 0xFFFFFFFF},  // WCC_SEPARATOR
    {0xFFFFFFFF, 0xFFFFFFFF, 0x4B000000, 0xFFFFFFFF},  // WCC_ICON
    {0xFFE1FFFF, 0xFFE1FFFF, 0xFFE1FFFF, 0xFFE1FFFF},  // WCC_TOOLTIP
    {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},  // WCC_CUSTOM_WIDGET
};

const wchar_t* const classNames[WCC_COUNT] = {
    L"WCC_BUTTON",         L"WCC_CHECK_RADIO",  L"WCC_BUTTON_ARROW",  L"WCC_INPUT_AREA",
    L"WCC_MENU",           L"WCC_BAR",          L"WCC_PANEL",         L"WCC_CURSOR_SLIDER",
    L"WCC_BUTTON_RESTORE", L"WCC_BUTTON_CLOSE", L"WCC_ARROW",         L"WCC_WINDOW_CLIENT_AREA",
    L"WCC_WINDOW_BORDER",  L"WCC_TEXT",         L"WCC_ITEM",          L"WCC_SEPARATOR",
    L"WCC_ICON",           L"WCC_TOOLTIP",      L"WCC_CUSTOM_WIDGET",
};

bool inRange(WIDGET_CLASS_COLOR colorClass, int index) {
  return int(colorClass) >= 0 && int(colorClass) < WCC_COUNT && index >= 0 && index < 4;
}

}  // namespace

guiColorTable::guiColorTable() { setColorSchema(0); }

void guiColorTable::setColorSchema(int value) {
  schema = value;
  if (value != 0) return;
  for (int c = 0; c < WCC_COUNT; ++c) {
    for (int i = 0; i < 4; ++i) colors[c][i] = CORE::color::fromU32(schemaZero[c][i]);
  }
}

CORE::color guiColorTable::getColor(WIDGET_CLASS_COLOR colorClass, int index) const {
  return inRange(colorClass, index) ? colors[colorClass][index] : CORE::color();
}

void guiColorTable::setColor(WIDGET_CLASS_COLOR colorClass, const CORE::color& value, int index) {
  if (inRange(colorClass, index)) colors[colorClass][index] = value;
}

std::wstring guiColorTable::getClassName(WIDGET_CLASS_COLOR colorClass) {
  return int(colorClass) >= 0 && int(colorClass) < WCC_COUNT ? classNames[colorClass] : L"";
}

}  // namespace GUI
}  // namespace JEV
