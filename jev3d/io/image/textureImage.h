#pragma once

#include <cstddef>
#include <vector>

namespace JEV {
namespace IO {

// A decoded picture as a texture holds it: 8 bits a channel, red first, three channels
// (RGB) or four (RGBA) a pixel, rows packed without padding and stored bottom row first,
// which is the order a GL upload takes, so that texture coordinate v = 0 is the bottom.
struct textureImage {
  int width = 0;
  int height = 0;
  // 3 or 4, 0 when empty.
  int components = 0;
  std::vector<unsigned char> pixels;

  bool empty() const { return pixels.empty(); }
  int bitsPerPixel() const { return components * 8; }
  size_t rowBytes() const { return size_t(width) * size_t(components); }
  // The first channel of the pixel in column x of row y, counted from the bottom.
  const unsigned char* pixel(int x, int y) const {
    return pixels.data() + size_t(y) * rowBytes() + size_t(x) * size_t(components);
  }
};

}  // namespace IO
}  // namespace JEV
