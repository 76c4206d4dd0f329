#pragma once

#include <string>
#include <vector>

#include "jev3d/gui/widget.h"
#include "jev3d/system/eventDelegate.h"

namespace JEV {
namespace GUI {

class button;
class item;
class label;
class panel;

// A drop-down choice: the chosen item's caption in a caption part ("_CAPTION"), an arrow
// button ("_ARROW") at the right, and the list, a focus panel ("_LIST") of items shown
// under the box. The list belongs to the desktop, so that the box's rectangle does not
// clip it, and is top-most while shown. It stands on a plain widget with its own list of
// items.
//
// The mouse: a click on the caption or the arrow shows or hides the list; a click on an
// item selects it and hides the list; a press anywhere else hides it. The wheel over the
// closed box and the up and down keys step the selection.
class combobox : public widget {
 public:
  static constexpr float itemHeight = 20.0f;

  combobox(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~combobox() override;

  void config() override;
  // The project file's own attributes of this class, after the widget's.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  void openAttrib(IO::XML::xmlElement& element) override;
  // An item at the end of the list; returns its index, or -1 outside any controller.
  int addItem(const std::wstring& text, GUI_ICON icon = ICON_NULL);
  // Selects item i: its caption (and icon) go to the box, the list hides.
  void select(int index);
  // With `notify` the box hears ITEM_SELECT. False for an index or widget not in the list.
  bool setItemSelect(int index, bool notify);
  bool setItemSelect(const widget* w, bool notify);
  bool setItemSelect(const std::wstring& text, bool notify);
  // The next or previous item; with `wrap` past the end to the other end.
  bool setNextItemSelect(bool notify, bool wrap);
  bool setPrevItemSelect(bool notify, bool wrap);
  bool setLastItemSelect(bool notify);
  // -1 when nothing is selected.
  int getItemSelect() const { return itemSelect; }
  int getItemCount() const { return int(items.size()); }
  item* getItem(int index) const;
  const std::wstring& getCaption() const override;
  // Removes every item and the selection.
  void clear();
  // Shows the list, unless it is shown, as a click on the arrow would.
  void open();
  // Hides the list.
  void close() override;
  bool isOpen() const;
  panel* getFocusPanel() const { return list; }
  button* getArrow() const { return arrow; }
  label* getCaptionPart() const { return captionPart; }
  // Lets go of every child, the parts included; for a box about to be erased.
  void disconnectAllChild();
  void render(RENDERING::renderingContext* rc) override;
  void sizePositionChanged() override;

 protected:
  virtual void onClick(const SYSTEM::inputEvent* e);
  virtual void onItemClick(const SYSTEM::inputEvent* e);
  virtual void onMouseWheel(const SYSTEM::inputEvent* e);
  virtual void onKeyDown(const SYSTEM::inputEvent* e);
  // Any press in the window: hides the list when it is elsewhere.
  void onAnyPress(const SYSTEM::inputEvent* e);
  void layoutList();

  std::vector<item*> items;
  int itemSelect = -1;
  label* captionPart = nullptr;
  button* arrow = nullptr;
  panel* list = nullptr;
  SYSTEM::inputEventDelegate pressWatch;
};

}  // namespace GUI
}  // namespace JEV
