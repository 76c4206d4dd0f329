#include "jev3d/io/image/ioTexture.h"

#include <iostream>

#include "jev3d/io/image/internal/imageDecoders.h"
#include "jev3d/io/internal/mappedFile.h"
#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {

namespace INTERNAL {

bool imageSizeAllowed(long long width, long long height, const imageLimits& limits,
                      std::string& message) {
  if (width <= 0 || height <= 0) {
    message = "the picture is empty";
    return false;
  }
  if (width > limits.maxSide || height > limits.maxSide || width * height > limits.maxPixels) {
    message =
        "the picture is too large (" + std::to_string(width) + " x " + std::to_string(height) + ")";
    return false;
  }
  return true;
}

}  // namespace INTERNAL

namespace {

bool startsWith(const unsigned char* data, size_t size, const unsigned char* magic, size_t length) {
  if (size < length) return false;
  for (size_t i = 0; i < length; ++i) {
    if (data[i] != magic[i]) return false;
  }
  return true;
}

void report(const std::string& sourceName, const std::string& reason) {
  std::cerr << "ioTexture: " << sourceName << ": " << reason << '\n';
}

}  // namespace

bool ioTexture::readTextureFromFile(const std::wstring& name, textureImage& image) {
  return readTextureFromFile(XML::wstringToUtf8(name), image);
}

bool ioTexture::readTextureFromFile(const std::string& name, textureImage& image) {
  mappedFile file;
  if (!file.open(name)) {
    report(name, "cannot open the file");
    return false;
  }
  return readTextureFromMemory(file.data(), file.size(), image, name);
}

bool ioTexture::readTextureFromMemory(const unsigned char* data, size_t size, textureImage& image,
                                      const std::string& sourceName) {
  static const unsigned char pngMagic[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  static const unsigned char jpegMagic[] = {0xFF, 0xD8, 0xFF};
  const INTERNAL::imageLimits limits{maxSide, maxPixels};
  std::string message;
  bool ok = false;
  if (data && startsWith(data, size, pngMagic, sizeof pngMagic)) {
    ok = INTERNAL::decodePng(data, size, limits, image, message);
  } else if (data && startsWith(data, size, jpegMagic, sizeof jpegMagic)) {
    ok = INTERNAL::decodeJpeg(data, size, limits, image, message);
  } else {
    message = "neither a PNG nor a JPEG file";
  }
  if (!ok) report(sourceName, message);
  return ok;
}

}  // namespace IO
}  // namespace JEV
