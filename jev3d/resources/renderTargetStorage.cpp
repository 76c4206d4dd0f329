#include "jev3d/resources/renderTargetStorage.h"

#include <cstddef>

#include "jev3d/io/image/textureImage.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/resources/texture.h"

namespace JEV {
namespace CORE {

renderTargetStorage::renderTargetStorage(RENDERING::renderer* render) : mtResourceStorage(render) {}

renderTargetStorage::~renderTargetStorage() = default;

bool renderTargetStorage::createRenderTarget(const std::wstring& id, int width, int height,
                                             int memoryManagement) {
  if (width < 1 || height < 1) return false;
  return loadResource(
      id, memoryManagement, false,
      [&] {
        IO::textureImage blank;
        blank.width = width;
        blank.height = height;
        blank.components = 4;
        blank.pixels.assign(std::size_t(width) * std::size_t(height) * 4, 0);
        auto* colour = new TEXTURE::texture(getRender());
        colour->setImage(std::move(blank));
        colour->setParameters(TEXTURE::textureDescriptor{0, 1.0f});
        return new RENDERING::renderTarget(SYSTEM::sharedPointer<TEXTURE::texture>(colour),
                                           getRender());
      },
      [](RENDERING::renderTarget&) { return true; });
}

bool renderTargetStorage::createRenderTarget(const std::string& id, int width, int height,
                                             int memoryManagement) {
  return createRenderTarget(IO::XML::utf8ToWstring(id), width, height, memoryManagement);
}

}  // namespace CORE
}  // namespace JEV
