#pragma once

namespace JEV {
namespace PLATFORM {
namespace INTERNAL {

// Maps an SDL key (its keycode and scancode) to a key index below 65,536: the virtual-key
// number where one exists, VK_SCANCODE_BASE + scancode otherwise.
unsigned keyIndexFromSdl(int keycode, int scancode);

// Decodes one UTF-8 code point at `text`, advancing it; 0xFFFD for a bad sequence and 0 at
// the end of the string.
unsigned nextCodePoint(const char*& text);

}  // namespace INTERNAL
}  // namespace PLATFORM
}  // namespace JEV
