#include "jev3d/io/xml/xmlComment.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace XML {

xmlComment::xmlComment(const std::wstring& text) {
  type = XML_COMMENT;
  valueW = text;
}

xmlComment::xmlComment(const std::string& text) : xmlComment(utf8ToWstring(text)) {}

}  // namespace XML
}  // namespace IO
}  // namespace JEV
