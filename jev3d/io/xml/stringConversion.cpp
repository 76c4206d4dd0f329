#include "jev3d/io/xml/stringConversion.h"

#include <type_traits>

namespace JEV {
namespace IO {
namespace XML {

namespace {

// Length of the sequence a lead byte announces; follow-on bytes are not examined.
size_t sequenceLength(unsigned char lead) {
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  if ((lead & 0xE0) == 0xE0) return 3;
  if ((lead & 0xC0) == 0xC0) return 2;
  return 1;
}

// A byte widened as a signed char, kept to 16 bits: 0x80..0xFF give 0xFF80..0xFFFF.
wchar_t widenByte(unsigned char byte) {
  return byte < 0x80 ? static_cast<wchar_t>(byte) : static_cast<wchar_t>(0xFF00u | byte);
}

}  // namespace

bool isUtf8Text(const std::string& text) {
  const size_t n = text.size();
  for (size_t i = 0; i < n;) {
    const size_t len = sequenceLength(static_cast<unsigned char>(text[i]));
    if (n - i < len) return false;
    i += len;
  }
  return true;
}

std::wstring utf8ToWstring(const std::string& text) {
  std::wstring out;
  out.reserve(text.size());
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const size_t n = text.size();
  if (!isUtf8Text(text)) {
    for (size_t i = 0; i < n; ++i) out += widenByte(s[i]);
    return out;
  }
  for (size_t i = 0; i < n;) {
    const unsigned char c = s[i];
    switch (sequenceLength(c)) {
      case 4:
        out += static_cast<wchar_t>(((c & 0x07u) << 18) | ((s[i + 1] & 0x3Fu) << 12) |
                                    ((s[i + 2] & 0x3Fu) << 6) | (s[i + 3] & 0x3Fu));
        i += 4;
        break;
      case 3:
        out += static_cast<wchar_t>(((c & 0x0Fu) << 12) | ((s[i + 1] & 0x3Fu) << 6) |
                                    (s[i + 2] & 0x3Fu));
        i += 3;
        break;
      case 2:
        out += static_cast<wchar_t>(((c & 0x1Fu) << 6) | (s[i + 1] & 0x3Fu));
        i += 2;
        break;
      default:
        out += widenByte(c);
        ++i;
        break;
    }
  }
  return out;
}

std::string wstringToUtf8(const std::wstring& text) {
  std::string out;
  out.reserve(text.size());
  for (wchar_t wc : text) {
    auto u = static_cast<unsigned long>(static_cast<std::make_unsigned_t<wchar_t>>(wc));
    if (u < 0x80) {
      out += static_cast<char>(u);
    } else if (u < 0x800) {
      out += static_cast<char>(0xC0 | (u >> 6));
      out += static_cast<char>(0x80 | (u & 0x3F));
    } else if (u <= 0xFFFF) {
      out += static_cast<char>(0xE0 | (u >> 12));
      out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (u & 0x3F));
    } else if (u > 0x10FFFF) {
      out += "\xEF\xBF\xBD";
    } else {
      out += static_cast<char>(0xF0 | (u >> 18));
      out += static_cast<char>(0x80 | ((u >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (u & 0x3F));
    }
  }
  return out;
}

}  // namespace XML
}  // namespace IO
}  // namespace JEV
