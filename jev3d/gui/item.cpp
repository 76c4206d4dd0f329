#include "jev3d/gui/item.h"

#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {

namespace {

constexpr float iconSize = 16.0f;
constexpr float gap = 5.0f;

}  // namespace

item::item(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win) {
  setClassIds(WC_ITEM, WCC_ITEM);
  setMargin(2, 2, 0, 0);
  adjustUV(176, 0);
  stateFlags.setFlag(WF_FADE_HIGHLIGHTED);
}

item::~item() = default;

void item::config() {
  setSize(menu::defaultWidth, itemHeight);
  iconPart = INTERNAL::addPart<picturebox>(this, WC_PICTUREBOX, L"_ICON");
  captionPart = INTERNAL::addPart<label>(this, WC_LABEL, L"_CAPTION");
  expanderPart = INTERNAL::addPart<picturebox>(this, WC_PICTUREBOX, L"_EXPANDER");
  for (widget* part : {static_cast<widget*>(iconPart), static_cast<widget*>(captionPart),
                       static_cast<widget*>(expanderPart)}) {
    if (part) part->getFlags().clearFlag(WF_PICKABLE);
  }
  if (captionPart) captionPart->setTextHorizontalAlign(TEXT_LEFT);
  if (expanderPart) {
    expanderPart->setIcon(ICON_ARROW_RIGHT);
    expanderPart->visible = false;
  }
  setCaption(std::wstring(L"item"), false);
  sizePositionChanged();
}

void item::setCaption(const std::wstring& text, bool now) {
  panel::setCaption(text, now);
  if (captionPart) captionPart->setCaption(text, now);
}

void item::setIcon(GUI_ICON icon) {
  if (iconPart) iconPart->setIcon(icon);
}

void item::sizePositionChanged() {
  panel::sizePositionChanged();
  const float middle = (size.y - iconSize) * 0.5f;
  const float captionX = margin[0] + iconSize + gap;
  INTERNAL::place(iconPart, margin[0], middle, iconSize, iconSize);
  INTERNAL::place(captionPart, captionX, 0, size.x - captionX - iconSize - margin[1], size.y);
  INTERNAL::place(expanderPart, size.x - margin[1] - iconSize, middle, iconSize, iconSize);
}

void item::setSubMenu(menu* sub) {
  subMenu = sub;
  stateFlags.setFlag(WF_SUB_MENU, sub != nullptr);
  if (expanderPart) expanderPart->visible = sub != nullptr;
}

void item::saveAttrib(IO::XML::xmlElement& e) const {
  panel::saveAttrib(e);
  e.setAttribute(L"ICON_TEXTURE", iconPart ? iconPart->getIdTexture() : std::wstring());
  e.setAttribute(L"ICON_SIZE", iconPart ? static_cast<int>(iconPart->getWidth()) : 0);
  if (subMenu) e.setAttribute(L"SUB_MENU", subMenu->getId());
  if (treeParent) e.setAttribute(L"TREE_PARENT", treeParent->getId());
  if (stateFlags.isFlagSet(WF_TREEVIEWITEM_OPEN)) e.setAttribute(L"WFLAGS_TREEVIEWITEM_OPEN", 1);
}

// "SUB_MENU" and "TREE_PARENT" name widgets that may come later in the file: the reader
// resolves them once the whole tree is made.
void item::openAttrib(IO::XML::xmlElement& e) {
  panel::openAttrib(e);
  if (iconPart && e.isAttribute(L"ICON_TEXTURE")) {
    PROJECT::setIconFromProject(*iconPart, e.getAttributeValueW(L"ICON_TEXTURE"));
  }
  int v = 0;
  if (e.queryIntValue(L"WFLAGS_TREEVIEWITEM_OPEN", v)) {
    stateFlags.setFlag(WF_TREEVIEWITEM_OPEN, v != 0);
  }
}

}  // namespace GUI
}  // namespace JEV
