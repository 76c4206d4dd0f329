#pragma once

#include <string>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

class label;
class menu;
class picturebox;

// A line of a menu (or of a list): an icon part ("_ICON") at the left, the caption part
// ("_CAPTION") after it and an expander part ("_EXPANDER") at the right that shows when
// the item opens a sub-menu. The parts take no hits, so the mouse always meets the item.
// Its colours come from the item class: transparent until highlighted.
class item : public panel {
 public:
  static constexpr float itemHeight = 20.0f;

  item(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~item() override;

  void config() override;
  // The project file's own attributes of this class, after the widget's.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  void openAttrib(IO::XML::xmlElement& element) override;
  void setCaption(const std::wstring& text, bool now) override;
  using widget::setCaption;
  void setIcon(GUI_ICON icon);
  void sizePositionChanged() override;
  // The menu this item opens, or null; sets bit 31 and shows the expander.
  void setSubMenu(menu* sub);
  menu* getSubMenu() const { return subMenu; }

  label* getCaptionPart() const { return captionPart; }
  picturebox* getIconPart() const { return iconPart; }
  picturebox* getExpanderPart() const { return expanderPart; }

  // The item above this one in a tree, and its depth there (0 at the top).
  item* treeParent = nullptr;
  int treeLevel = 0;

 protected:
  menu* subMenu = nullptr;
  label* captionPart = nullptr;
  picturebox* iconPart = nullptr;
  picturebox* expanderPart = nullptr;
};

}  // namespace GUI
}  // namespace JEV
