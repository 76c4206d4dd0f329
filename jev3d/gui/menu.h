#pragma once

#include <string>
#include <vector>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

class item;

// A pop-up menu: a top-most column of items, hidden until it is shown at a point (by the
// event schedule for a widget's right click, or by popup). Stacking its items itself, it
// stands on a panel rather than a general widget group.
//
// The mouse: entering an item highlights it and, for an item with a sub-menu, opens that
// menu at the item's right edge, closing any other sub-menu of this menu; a click on a
// plain item runs its delegates and closes the whole chain of menus, unless the menu is
// not closable. The keys: up and down move the highlight, Return clicks the highlighted
// item, Escape closes the chain.
class menu : public panel {
 public:
  static constexpr float defaultWidth = 150.0f;

  menu(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~menu() override;

  void config() override;
  // The project file's own attributes of this class, after the widget's.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  void openAttrib(IO::XML::xmlElement& element) override;
  // A plain item at the bottom; its id is the menu's id, "_ITEM" and its index.
  item* addItem(GUI_ICON icon, const std::wstring& text);
  // An item that opens a new, empty menu, which is returned.
  menu* addSubMenu(GUI_ICON icon, const std::wstring& text);
  // Takes an item made elsewhere (read from a project file) as the last item, as a plain
  // item; a sub-menu it names comes with item::setSubMenu.
  void addItem(item* read);
  // Shows the menu with its top left corner at (x, y), as the schedule's popup.
  void popup(float x, float y);
  // Hides the menu and its open sub-menus.
  void close() override;
  // Closes the whole chain this menu belongs to, up to the menu opened first.
  void searchPopToClose();
  void setHighlighted(item* target);
  item* getHighlighted() const { return highlighted; }
  const std::vector<item*>& getItems() const { return items; }
  // The item that opens this menu, or null for a menu opened by itself.
  item* getOpener() const { return opener; }
  void setWidth(float width) override;
  // A refreshed item may have changed: the items are stacked again.
  void doRefresh() override;

  bool notClosable = false;

 protected:
  void layoutItems();
  item* appendItem(GUI_ICON icon, const std::wstring& text);
  // Makes `made` one of the items: under the menu, redirecting to it, laid out.
  void adoptItem(item* made);
  void registerItemClick(item* made);
  void openSubMenu(item* from);
  virtual void onItemEnter(const SYSTEM::inputEvent* e);
  virtual void onSimpleTextClick(const SYSTEM::inputEvent* e);
  virtual void onKeyDown(const SYSTEM::inputEvent* e);

  std::vector<item*> items;
  item* highlighted = nullptr;
  item* opener = nullptr;
  menu* openSub = nullptr;
};

}  // namespace GUI
}  // namespace JEV
