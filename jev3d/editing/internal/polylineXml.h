#pragma once

#include <string>

namespace JEV {
namespace IO {
namespace XML {
class xmlElement;
class xmlNode;
}  // namespace XML
}  // namespace IO
namespace MESH {
namespace EDITING {
namespace INTERNAL {

// Strict readers for polyline files, which are outside data: each is false, with out
// untouched, for a missing attribute or one that does not hold exactly what it should.

// n when it is an element called name, else null.
const IO::XML::xmlElement* asElement(const IO::XML::xmlNode* n, const wchar_t* name);
// Decimal digits only: the layer's own query would wrap a minus sign around.
bool readIndex(const IO::XML::xmlElement& e, const wchar_t* name, unsigned int& out);
// One finite number within float range: the layer's float query accepts any text.
bool readCoordinate(const IO::XML::xmlElement& e, const wchar_t* name, float& out);
// Any text.
bool readName(const IO::XML::xmlElement& e, const wchar_t* name, std::wstring& out);

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
