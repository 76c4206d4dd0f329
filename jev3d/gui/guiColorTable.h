#pragma once

#include <string>

#include "jev3d/gui/guiEnums.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace GUI {

// The colour schema: four colours for each of the 19 colour classes. Widgets that use
// the schema copy their class's colours from it (widget::setjustColor).
class guiColorTable {
 public:
  // Filled with schema 0.
  guiColorTable();
  virtual ~guiColorTable() = default;

  // Schema 0 is the only one with values; another leaves the table as it stands.
  void setColorSchema(int schema);
  int getColorSchema() const { return schema; }
  // `index` 0 normal, 1 highlighted, 2 disabled, 3 down. A class or index out of range
  // reads as transparent black and is not written.
  CORE::color getColor(WIDGET_CLASS_COLOR colorClass, int index) const;
  void setColor(WIDGET_CLASS_COLOR colorClass, const CORE::color& value, int index);
  // "WCC_BUTTON" and its kin; empty out of range.
  static std::wstring getClassName(WIDGET_CLASS_COLOR colorClass);

 private:
  CORE::color colors[WCC_COUNT][4];
  int schema = 0;
};

}  // namespace GUI
}  // namespace JEV
