#pragma once

#include <string>

namespace JEV {
namespace IO {
namespace XML {

// The library's conversion from UTF-8 to wide text, used by every narrow overload.
// Lenient on purpose: a text whose last multi-byte sequence is cut short is taken as
// bytes, each widened as a signed char (0x80 and up become 0xFF80 to 0xFFFF); otherwise
// sequences are decoded by their lead byte alone, without checking follow-on bytes, and a
// stray follow-on byte is widened the same way. Four-byte sequences give code points above
// 0xFFFF, which a 32-bit wchar_t holds.
std::wstring utf8ToWstring(const std::string& text);

// The conversion back: each unit up to 0xFFFF is encoded by itself in one to three bytes,
// so the two halves of a surrogate pair are written as three bytes each. Units above
// 0xFFFF are written as four bytes; values past 0x10FFFF become U+FFFD.
std::string wstringToUtf8(const std::wstring& text);

// Whether utf8ToWstring would decode `text` as UTF-8: false only when a multi-byte
// sequence is cut short by the end of the text.
bool isUtf8Text(const std::string& text);

}  // namespace XML
}  // namespace IO
}  // namespace JEV
