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
class picturebox;
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
// The button attributes ("BUTTON_CHECKABLE", "BUTTON_FLAT", "ICON_TEXTURE",
// "ICON_TEXTURE_SQUARE_SIZE", "BUTTON_STYLE"), which check boxes and radio buttons write too.
void saveButtonAttributes(IO::XML::xmlElement& e, bool checkable, bool flat,
                          const std::wstring& iconTexture, int iconSize, int style);
// An icon read from a file: a resource id of one of the library's icons gives that icon.
void setIconFromProject(picturebox& target, const std::wstring& idTexture);

}  // namespace PROJECT
}  // namespace GUI
}  // namespace JEV
