#pragma once

#include <string>

#include "jev3d/system/color.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlDocument;
class xmlElement;
}  // namespace XML
}  // namespace IO

namespace GUI {
namespace PROJECT {

// The pieces every project document shares.
extern const wchar_t* const ROOT_NAME;

// Fills an empty document with the two comments, the declaration and the root element,
// and returns the root.
IO::XML::xmlElement* startDocument(IO::XML::xmlDocument& doc);
// A child element `name` of `parent` with the attributes "Red", "Green", "Blue", "Alpha".
void saveColor(const CORE::color& c, const std::wstring& name, IO::XML::xmlElement& parent);
// Reads those four; an absent attribute, or one out of 0 to 255, leaves its channel.
void openColor(const IO::XML::xmlElement& e, CORE::color& c);

}  // namespace PROJECT
}  // namespace GUI
}  // namespace JEV
