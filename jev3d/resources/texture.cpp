#include "jev3d/resources/texture.h"

#include <utility>

#include "jev3d/io/image/ioTexture.h"
#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace TEXTURE {

texture::texture(RENDERING::renderer* render) : render(render) {}

texture::~texture() { discard(); }

bool texture::cache() {
  // The renderer's upload joins here with the OpenGL back end; there is none to call yet.
  return isCached();
}

bool texture::isCached() const { return !deviceNames.empty(); }

bool texture::discard() {
  // The back end's discard list takes these names here, from whatever thread discards.
  deviceNames.clear();
  return true;
}

bool texture::clear() {
  discard();
  image = IO::textureImage();
  return true;
}

bool texture::readFromFile(const std::wstring& fileName) {
  return readFromFile(IO::XML::wstringToUtf8(fileName));
}

bool texture::readFromFile(const std::string& fileName) {
  IO::textureImage decoded;
  if (!IO::ioTexture::readTextureFromFile(fileName, decoded)) return false;
  setImage(std::move(decoded));
  return true;
}

void texture::setImage(IO::textureImage value) {
  discard();
  image = std::move(value);
}

}  // namespace TEXTURE
}  // namespace JEV
