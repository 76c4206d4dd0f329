#pragma once

#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace GUI {

class widget;

enum HORIZONTAL_ALIGNMENT { HA_LEFT = 0, HA_RIGHT = 1, HA_CENTER = 2, HA_FREE = 3 };
enum VERTICAL_ALIGNMENT { VA_TOP = 0, VA_BOTTOM = 1, VA_CENTER = 2, VA_FREE = 3 };
enum WIDTH_SIZE_LAYOUT { WSL_FULL = 0, WSL_FREE = 1, WSL_HALF = 2, WSL_THIRD = 3, WSL_QUARTER = 4 };
enum HEIGHT_SIZE_LAYOUT {
  HSL_FULL = 0,
  HSL_FREE = 1,
  HSL_HALF = 2,
  HSL_THIRD = 3,
  HSL_QUARTER = 4
};

// The rules that place and size a widget inside its parent's area (the parent's size less
// its margins). Offsets are pixels, or with the matching perc flag percent of that area.
// Vertical "top" counts from the parent's top, since GUI coordinates start bottom left.
class layout {
 public:
  explicit layout(GUI::widget* owner);
  virtual ~layout() = default;
  layout(const layout&) = delete;
  layout& operator=(const layout&) = delete;

  // Sizes, then places the widget. Does nothing while `enable` is true.
  virtual void update();

  // Switching to or from HA_FREE (VA_FREE) stores or restores the free position.
  void setHorizontal(HORIZONTAL_ALIGNMENT value);
  void setVertical(VERTICAL_ALIGNMENT value);
  HORIZONTAL_ALIGNMENT getHorizontal() const { return horizontal; }
  VERTICAL_ALIGNMENT getVertical() const { return vertical; }

  GUI::widget* widget;
  // True turns the layout off.
  SYSTEM::fieldBase<bool> enable{false};
  HORIZONTAL_ALIGNMENT horizontal = HA_FREE;
  VERTICAL_ALIGNMENT vertical = VA_FREE;
  float horizontalOffset = 0;
  float verticalOffset = 0;
  WIDTH_SIZE_LAYOUT width = WSL_FREE;
  HEIGHT_SIZE_LAYOUT height = HSL_FREE;
  float widthOffset = 0;
  float heightOffset = 0;
  bool horizontalPerc = false;
  bool verticalPerc = false;
  bool widthPerc = false;
  bool heightPerc = false;
  // The free position kept while an alignment rules.
  float savedX = 0;
  float savedY = 0;

 protected:
  virtual void updateSizeLayout();
  virtual void updatePositionLayout();
};

}  // namespace GUI
}  // namespace JEV
