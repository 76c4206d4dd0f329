#include "jev3d/gui/internal/projectXml.h"

#include "jev3d/gui/picturebox.h"
#include "jev3d/io/xml/xmlComment.h"
#include "jev3d/io/xml/xmlDeclaration.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace GUI {
namespace PROJECT {

using IO::XML::xmlElement;

const wchar_t* const ROOT_NAME = L"JEV_GUI_PROJECT";

xmlElement* startDocument(IO::XML::xmlDocument& doc) {
  IO::XML::xmlComment(L"Made with jev3d, a framework for 3D mesh applications").connect(&doc);
  IO::XML::xmlComment(L"JEV - gui descriptor").connect(&doc);
  IO::XML::xmlDeclaration(L"1.0", L"", L"").connect(&doc);
  return xmlElement(ROOT_NAME).connect(&doc);
}

void saveColor(const CORE::color& c, const std::wstring& name, xmlElement& parent) {
  xmlElement e(name);
  e.setAttribute(L"Red", static_cast<int>(c.r));
  e.setAttribute(L"Green", static_cast<int>(c.g));
  e.setAttribute(L"Blue", static_cast<int>(c.b));
  e.setAttribute(L"Alpha", static_cast<int>(c.a));
  e.connect(&parent);
}

namespace {
void readChannel(const xmlElement& e, const wchar_t* name, uint8_t& channel) {
  int v = 0;
  if (e.queryIntValue(name, v) && v >= 0 && v <= 255) channel = static_cast<uint8_t>(v);
}
}  // namespace

void openColor(const xmlElement& e, CORE::color& c) {
  readChannel(e, L"Red", c.r);
  readChannel(e, L"Green", c.g);
  readChannel(e, L"Blue", c.b);
  readChannel(e, L"Alpha", c.a);
}

void saveButtonAttributes(xmlElement& e, bool checkable, bool flat, const std::wstring& iconTexture,
                          int iconSize, int style) {
  e.setAttribute(L"BUTTON_CHECKABLE", checkable ? 1 : 0);
  e.setAttribute(L"BUTTON_FLAT", flat ? 1 : 0);
  e.setAttribute(L"ICON_TEXTURE", iconTexture);
  e.setAttribute(L"ICON_TEXTURE_SQUARE_SIZE", iconSize);
  e.setAttribute(L"BUTTON_STYLE", style);
}

void setIconFromProject(picturebox& target, const std::wstring& idTexture) {
  for (int i = widget::ICON_AXIS; i <= widget::ICON_NULL; ++i) {
    const auto icon = static_cast<widget::GUI_ICON>(i);
    if (widget::iconToIdTexture(icon) == idTexture) {
      target.setIcon(icon);
      return;
    }
  }
  target.setIcon(idTexture);
}

}  // namespace PROJECT
}  // namespace GUI
}  // namespace JEV
