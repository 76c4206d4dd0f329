#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/resources/resourceInstance.h"
#include "jev3d/resources/textureStorage.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

// A texture of a storage bound on one unit for a subtree (stack slot 40 + unit).
class textureInstance : public RENDERSTATE::renderstate,
                        public CORE::resourceInstance<CORE::textureStorage, CORE::textureClient,
                                                      SYSTEM::sharedPointer<TEXTURE::texture>> {
 public:
  explicit textureInstance(CORE::textureStorage* storage = nullptr);
  // With no storage: the unit's bottom entry of the state stack.
  explicit textureInstance(TEXTURE_ACTIVE unit);
  void render(renderingContext* rc) override;

  // The texture, null when the instance holds none.
  TEXTURE::texture* getTexture() const;
  // Puts the texture on the device unless it is there; true when there is nothing to do.
  bool cacheResource();

  TEXTURE_ACTIVE unit = TEXTURE0;
};

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
