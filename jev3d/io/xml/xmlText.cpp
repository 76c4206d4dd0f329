#include "jev3d/io/xml/xmlText.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace XML {

xmlText::xmlText(const std::wstring& text) {
  type = XML_TEXT;
  valueW = text;
}

xmlText::xmlText(const std::string& text) : xmlText(utf8ToWstring(text)) {}

void xmlText::setText(const std::string& text) { valueW = utf8ToWstring(text); }

}  // namespace XML
}  // namespace IO
}  // namespace JEV
