#pragma once

#include <string>
#include <vector>

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

class button;
class item;
class panel;

// A row of items in a panel ("_PANEL") between two arrow buttons ("_ARROW_LEFT",
// "_ARROW_RIGHT") that scroll the row one item at a time when it is longer than the
// panel. One item at most is selected: it wears the checked button tile, or with the item
// skin the item's down colours, and a click on an item selects it. It stands on a plain
// widget with its own list of items.
class buttongroup : public widget {
 public:
  static constexpr float itemWidth = 80.0f;

  buttongroup(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~buttongroup() override;

  void config() override;
  // The project file's own attributes of this class, after the widget's.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  void openAttrib(IO::XML::xmlElement& element) override;
  // Takes `it` into the row (from wherever it was); `selectIt` selects it at once.
  // Returns its index, -1 for a null item.
  int addItem(item* it, bool selectIt);
  // A new item with that caption and icon.
  int addItem(const std::wstring& text, GUI_ICON icon);
  // Selects item i and brings it into view; the group hears ITEM_SELECT.
  void select(int index);
  bool setItemSelect(int index, bool notify);
  bool setLastItemSelect(bool notify);
  int getItemSelect() const { return itemSelect; }
  int getItemCount() const { return int(items.size()); }
  item* getItem(int index) const;
  // The first item in view.
  int getFirstVisible() const { return first; }
  // True dresses the items as items, false as buttons.
  void setSkinAsItem(bool asItem);
  void sizePositionChanged() override;

 protected:
  virtual void onClick(const SYSTEM::inputEvent* e);
  void layoutRow();
  void dress();
  // How many items the panel shows at once, at least one.
  int visibleCount() const;

  std::vector<item*> items;
  int itemSelect = -1;
  int first = 0;
  bool skinAsItem = false;
  panel* row = nullptr;
  button* arrowLeft = nullptr;
  button* arrowRight = nullptr;
};

}  // namespace GUI
}  // namespace JEV
