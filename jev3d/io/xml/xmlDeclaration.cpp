#include "jev3d/io/xml/xmlDeclaration.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace XML {

xmlDeclaration::xmlDeclaration(const std::wstring& v, const std::wstring& e, const std::wstring& s)
    : version(v), encoding(e), standAlone(s) {
  type = XML_DECLARATION;
}

xmlDeclaration::xmlDeclaration(const std::string& v, const std::string& e, const std::string& s)
    : xmlDeclaration(utf8ToWstring(v), utf8ToWstring(e), utf8ToWstring(s)) {}

void xmlDeclaration::setVersion(const std::string& v) { version = utf8ToWstring(v); }
void xmlDeclaration::setEncoding(const std::string& e) { encoding = utf8ToWstring(e); }
void xmlDeclaration::setStandAlone(const std::string& s) { standAlone = utf8ToWstring(s); }

void xmlDeclaration::cloneTo(xmlDeclaration& target) const {
  target.valueW = valueW;
  target.version = version;
  target.encoding = encoding;
  target.standAlone = standAlone;
}

}  // namespace XML
}  // namespace IO
}  // namespace JEV
