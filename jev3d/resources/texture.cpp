#include "jev3d/resources/texture.h"

#include <utility>

#include "jev3d/io/image/ioTexture.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace TEXTURE {

texture::texture(RENDERING::renderer* render) : deviceResource(render) {}

texture::~texture() { texture::discard(); }

bool texture::cache() {
  if (isCached()) return true;
  return getRender() && getRender()->cacheTexture(this);
}

bool texture::discard() {
  std::vector<unsigned> names = getDeviceNames();
  if (getRender() && !names.empty()) getRender()->addTextureToDiscardList(names);
  return deviceResource::discard();
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
