#pragma once

#include <string>

#include "jev3d/gui/guiEnums.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace GUI {

class font;

// A widget's caption as it is drawn: the font by resource id and the device font once
// one is found, the text, its alignment in the text rectangle and its colour.
class fontInstance {
 public:
  fontInstance() = default;
  virtual ~fontInstance() = default;

  std::wstring idFont;
  // The font on the device; null draws nothing.
  GUI::font* font = nullptr;
  std::wstring text;
  TEXT_HORIZONTAL_ALIGN horizontalAlignment = TEXT_HCENTER;
  TEXT_VERTICAL_ALIGN verticalAlignment = TEXT_VCENTER;
  // The rectangle the text is placed in: x, y, width, height in window pixels.
  int textRect[4] = {0, 0, 0, 0};
  CORE::color color{0, 0, 0, 255};
};

}  // namespace GUI
}  // namespace JEV
