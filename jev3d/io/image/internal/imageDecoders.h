#pragma once

#include <cstddef>
#include <string>

#include "jev3d/io/image/textureImage.h"

namespace JEV {
namespace IO {
namespace INTERNAL {

// The limits a decoder checks the header against before it allocates.
struct imageLimits {
  int maxSide;
  long long maxPixels;
};

// Each fills `image` and returns true, or returns false with the reason in `message`.
bool decodePng(const unsigned char* data, size_t size, const imageLimits& limits,
               textureImage& image, std::string& message);
bool decodeJpeg(const unsigned char* data, size_t size, const imageLimits& limits,
                textureImage& image, std::string& message);

// The check both decoders make of a header's size.
bool imageSizeAllowed(long long width, long long height, const imageLimits& limits,
                      std::string& message);

}  // namespace INTERNAL
}  // namespace IO
}  // namespace JEV
