#pragma once

#include <string>
#include <vector>

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

class item;
class panel;

// Tabbed pages: per page a head item ("_HEAD" and its index) in a row along the top and
// a body panel ("_BODY" and its index) under the row. A press on a head selects its page:
// its body shows, the others hide, and the tab hears TAB_CHANGE. The selected head wears
// the checked button tile and headShadowSelected, the others the normal tile and
// headShadowNormal.
class tab : public widget {
 public:
  static constexpr float headHeight = 22.0f;
  static constexpr float headWidth = 80.0f;

  tab(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~tab() override;

  void config() override;
  // A page at the end; the first page added is selected. Returns its index, or -1 for a
  // tab outside any controller.
  int addTab(const std::wstring& title);
  item* getItemTab(unsigned index) const;
  panel* getPanelTab(unsigned index) const;
  unsigned getTabCount() const { return unsigned(heads.size()); }
  unsigned getSelectedTab() const { return selected; }
  // Lets the body's children use the whole body.
  void removeTabMargin(unsigned index);
  void setTabShadow(unsigned index, WIDGET_SHADOW value);
  // Hides (or shows again) a head; a hidden head's page can still be selected by code.
  void hideItemTab(unsigned index, bool hide);
  // Puts `w` on the page's body.
  bool addWidgetToTab(unsigned index, widget* w);
  void setHeadShadowNormal(WIDGET_SHADOW value);
  void setHeadShadowSelected(WIDGET_SHADOW value);
  // Selects a page as a press on its head does.
  void onTabClick(unsigned index);
  void sizePositionChanged() override;

  WIDGET_SHADOW headShadowNormal = WS_NONE;
  WIDGET_SHADOW headShadowSelected = WS_NONE;

 protected:
  // Shows the selected body, hides the others, and dresses the heads.
  virtual void onTabChange();
  virtual void onMouseLeftDown(const SYSTEM::inputEvent* e);
  // Lays the visible heads out in a row from the left, and the bodies under them.
  void layoutPages();

  std::vector<item*> heads;
  std::vector<panel*> bodies;
  unsigned selected = 0;
};

}  // namespace GUI
}  // namespace JEV
