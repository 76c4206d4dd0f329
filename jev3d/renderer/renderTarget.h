#pragma once

#include "jev3d/resources/resourceBase.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace TEXTURE {
class texture;
}
namespace RENDERING {

class renderGL;
class renderer;

// An off-screen place to draw: a texture as its colour, and the device's framebuffer and
// depth buffer around it, made by renderer::cacheRenderTargetOnTexture. What is drawn
// there can afterwards be used as the texture. As a resource of a render target storage
// its device copy is the framebuffer, made through `device`.
class renderTarget : public CORE::resourceBase {
 public:
  explicit renderTarget(SYSTEM::sharedPointer<TEXTURE::texture> colour, renderer* device = nullptr);
  ~renderTarget() override;
  renderTarget(const renderTarget&) = delete;
  renderTarget& operator=(const renderTarget&) = delete;

  TEXTURE::texture* getTexture() const { return colour.get(); }
  unsigned getFramebuffer() const { return framebuffer; }
  unsigned getDepthBuffer() const { return depthBuffer; }

  // Without a device there is nothing to cache, and these fail.
  bool cache() override;
  bool isCached() const override;
  bool discard() override;
  bool clear() override;

 private:
  friend class renderGL;

  SYSTEM::sharedPointer<TEXTURE::texture> colour;
  renderer* device;
  unsigned framebuffer = 0;
  unsigned depthBuffer = 0;
};

}  // namespace RENDERING
}  // namespace JEV
