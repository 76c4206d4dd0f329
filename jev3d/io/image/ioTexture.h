#pragma once

#include <cstddef>
#include <string>

#include "jev3d/io/image/textureImage.h"

namespace JEV {
namespace IO {

// Reads texture pictures: PNG (any bit depth and colour type, palette, transparency,
// interlacing) and baseline or progressive JPEG, told apart by their first bytes, not by
// the file name. PNG with an alpha channel or transparency gives four channels, all else
// three; grey is spread over red, green and blue; 16-bit channels are rounded to 8. No
// gamma or colour profile is applied: the values are the file's. A file that is damaged
// or cut short, whose decoder warns of corrupt data, or that is wider or taller than
// `maxSide` or holds more than `maxPixels` pixels, gives false and one line on the error
// stream, and leaves `image` as it was. All functions may run on several threads at once.
class ioTexture {
 public:
  static constexpr int maxSide = 32768;
  static constexpr long long maxPixels = 1ll << 27;

  static bool readTextureFromFile(const std::wstring& name, textureImage& image);
  // The name is UTF-8.
  static bool readTextureFromFile(const std::string& name, textureImage& image);
  // Decodes a file already in memory; `sourceName` only names it in messages.
  static bool readTextureFromMemory(const unsigned char* data, size_t size, textureImage& image,
                                    const std::string& sourceName);
};

}  // namespace IO
}  // namespace JEV
