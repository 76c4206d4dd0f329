#pragma once

#include <string>

#include "jev3d/renderer/renderTarget.h"
#include "jev3d/resources/mtResourceStorage.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace CORE {

using renderTargetServer = sharedResourceServer<SYSTEM::sharedPointer<RENDERING::renderTarget>>;
using renderTargetClient = sharedResourceClient<SYSTEM::sharedPointer<RENDERING::renderTarget>>;

// The off-screen targets of one rendering context by name, each with a texture of its own
// as its colour. Making one touches no device: the framebuffer is made when a node first
// draws into it.
class renderTargetStorage
    : public mtResourceStorage<SYSTEM::sharedPointer<RENDERING::renderTarget>> {
 public:
  explicit renderTargetStorage(RENDERING::renderer* render);
  ~renderTargetStorage() override;

  // Makes a target of `width` by `height` pixels under `id`, its colour cleared to black
  // and sampled nearest, with the server policy `memoryManagement`. False, adding nothing,
  // for an empty or taken `id` or a size below one pixel.
  bool createRenderTarget(const std::wstring& id, int width, int height,
                          int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS);
  bool createRenderTarget(const std::string& id, int width, int height,
                          int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS);
};

}  // namespace CORE
}  // namespace JEV
