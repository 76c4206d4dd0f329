#pragma once

namespace JEV {
namespace GUI {

// The widget classes: the value of "WIDGET_CLASS" in project files and the key of the
// controller's factory.
enum WIDGET_CLASS {
  WC_BUTTON = 0,
  WC_CHECKBOX = 1,
  WC_LABEL = 2,
  WC_MENU = 3,
  WC_PANEL = 4,
  WC_PICTUREBOX = 5,
  WC_PROGRESSBAR = 6,
  WC_RADIOBUTTON = 7,
  WC_SCROLLBAR = 8,
  WC_SEPARATOR = 9,
  WC_SLIDER = 10,
  WC_TEXTEDIT = 11,
  WC_COMBOBOX = 12,
  WC_TOOLBOX = 13,
  WC_WIDGET = 14,
  WC_WIDGETGROUP = 15,
  WC_WINDOW = 16,
  WC_CANVAS = 17,
  WC_RICHTEXTBOX = 18,
  WC_VIDEOBOX = 19,
  WC_TREEVIEW = 20,
  WC_BUTTONGROUP = 21,
  WC_ITEM = 22,
  WC_TAB = 23
};

// The colour classes of the controller's table, each with four colours (normal,
// highlighted, disabled, down). WCC_OWN marks a widget that keeps its own colours.
enum WIDGET_CLASS_COLOR {
  WCC_BUTTON = 0,
  WCC_CHECK_RADIO = 1,
  WCC_BUTTON_ARROW = 2,
  WCC_INPUT_AREA = 3,
  WCC_MENU = 4,
  WCC_BAR = 5,
  WCC_PANEL = 6,
  WCC_CURSOR_SLIDER = 7,
  WCC_BUTTON_RESTORE = 8,
  WCC_BUTTON_CLOSE = 9,
  WCC_ARROW = 10,
  WCC_WINDOW_CLIENT_AREA = 11,
  WCC_WINDOW_BORDER = 12,
  WCC_TEXT = 13,
  WCC_ITEM = 14,
  WCC_SEPARATOR = 15,
  WCC_ICON = 16,
  WCC_TOOLTIP = 17,
  WCC_CUSTOM_WIDGET = 18,
  WCC_COUNT = 19,
  WCC_OWN = 0x7FFFFFFF
};

// The four colours of a class, in table order.
enum WIDGET_COLOR_INDEX { WCI_NORMAL = 0, WCI_HIGHLIGHTED = 1, WCI_DISABLED = 2, WCI_DOWN = 3 };

enum WIDGET_VALUE_TYPE { WVT_FLOAT = 0, WVT_INTEGER = 1 };

enum WIDGET_ORIENTATION { WO_HORIZONTAL = 0, WO_VERTICAL = 1 };

// How a widget's background is drawn; WS_NO_BACKGROUND draws none.
enum WIDGET_SHADOW {
  WS_NONE = 0,
  WS_LIGHT = 1,
  WS_MEDIUM = 2,
  WS_STRONG = 3,
  WS_NO_BACKGROUND = 4
};

// Alignment of a caption in its rectangle.
enum TEXT_HORIZONTAL_ALIGN { TEXT_LEFT = 0, TEXT_RIGHT = 1, TEXT_HCENTER = 2 };
enum TEXT_VERTICAL_ALIGN { TEXT_TOP = 0, TEXT_BOTTOM = 1, TEXT_VCENTER = 2 };

}  // namespace GUI
}  // namespace JEV
