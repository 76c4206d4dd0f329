#pragma once

#include <cstddef>
#include <string>

#include "jev3d/resources/mtResourceStorage.h"
#include "jev3d/resources/texture.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace CORE {

using textureServer = sharedResourceServer<SYSTEM::sharedPointer<TEXTURE::texture>>;
using textureClient = sharedResourceClient<SYSTEM::sharedPointer<TEXTURE::texture>>;

// The textures of one rendering context by name. Loading decodes the file on the calling
// thread, any thread; nothing touches the device until a node first draws the texture.
class textureStorage : public mtResourceStorage<SYSTEM::sharedPointer<TEXTURE::texture>> {
 public:
  explicit textureStorage(RENDERING::renderer* render);
  ~textureStorage() override;

  // Loads a PNG or JPEG file under `id` with `parameters` and the server policy
  // `memoryManagement` (SRS_MEMORY_MANAGEMENT). With `id` taken: false unless
  // `forceReload`, which reads the file into the stored texture, so its clients see the
  // new picture. False, leaving nothing new behind and the old picture in place, when the
  // file does not decode (a message goes to the error stream) or `id` is empty.
  bool loadTextureFromFile(const std::wstring& fileName, const std::wstring& id,
                           const TEXTURE::textureDescriptor& parameters = {},
                           int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS,
                           bool forceReload = false);
  // Names in UTF-8.
  bool loadTextureFromFile(const std::string& fileName, const std::string& id,
                           const TEXTURE::textureDescriptor& parameters = {},
                           int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS,
                           bool forceReload = false);

  // The skins and icons compiled into the library, each under its resource id
  // ("GUI_DEFAULT_SKIN", "GUI_AXIS_ICON", ...), kept cached while the storage lives. Skins
  // are sampled nearest, so that their tiles' borders land on whole pixels. Ids already
  // present are left as they are. False, with a message on the error stream and no entry
  // added, when the archive cannot be read or any of its pictures is missing or does not
  // decode.
  bool loadDefaultTexture();
  // The same from another archive of that layout, held in memory.
  bool loadDefaultTexture(const unsigned char* archive, size_t size);
};

}  // namespace CORE
}  // namespace JEV
