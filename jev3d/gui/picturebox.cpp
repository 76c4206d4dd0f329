#include "jev3d/gui/picturebox.h"

#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {

picturebox::picturebox(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win), idTexture(iconToIdTexture(ICON_NULL)) {
  setClassIds(WC_PICTUREBOX, WCC_ICON);
  setMargin(0, 0, 0, 0);
  shadow = WS_NO_BACKGROUND;
}

picturebox::~picturebox() = default;

void picturebox::setIcon(GUI_ICON value) {
  icon = value;
  idTexture = iconToIdTexture(value);
  refresh();
}

void picturebox::setIcon(const std::wstring& texture) {
  icon = ICON_NULL;
  idTexture = texture;
  refresh();
}

void picturebox::setIcon(const std::string& texture) {
  setIcon(std::wstring(texture.begin(), texture.end()));
}

void picturebox::setTile(float u, float v) {
  setShadow(WS_NONE);
  adjustUV(u, v);
}

void picturebox::saveAttrib(IO::XML::xmlElement& e) const {
  panel::saveAttrib(e);
  e.setAttribute(L"ICON_TEXTURE", idTexture);
}

void picturebox::openAttrib(IO::XML::xmlElement& e) {
  panel::openAttrib(e);
  if (e.isAttribute(L"ICON_TEXTURE")) {
    PROJECT::setIconFromProject(*this, e.getAttributeValueW(L"ICON_TEXTURE"));
  }
}

}  // namespace GUI
}  // namespace JEV
