#include "jev3d/resources/textureStorage.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace CORE {

textureStorage::textureStorage(RENDERING::renderer* render) : mtResourceStorage(render) {}

textureStorage::~textureStorage() = default;

bool textureStorage::loadTextureFromFile(const std::wstring& fileName, const std::wstring& id,
                                         const TEXTURE::textureDescriptor& parameters,
                                         int memoryManagement, bool forceReload) {
  return loadResource(
      id, memoryManagement, forceReload, [this] { return new TEXTURE::texture(getRender()); },
      [&](TEXTURE::texture& target) {
        if (!target.readFromFile(fileName)) return false;
        target.setParameters(parameters);
        return true;
      });
}

bool textureStorage::loadTextureFromFile(const std::string& fileName, const std::string& id,
                                         const TEXTURE::textureDescriptor& parameters,
                                         int memoryManagement, bool forceReload) {
  return loadTextureFromFile(IO::XML::utf8ToWstring(fileName), IO::XML::utf8ToWstring(id),
                             parameters, memoryManagement, forceReload);
}

}  // namespace CORE
}  // namespace JEV
