#pragma once

#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace TEXTURE {
class texture;
}
namespace RENDERING {

class renderGL;

// An off-screen place to draw: a texture as its colour, and the device's framebuffer and
// depth buffer around it, made by renderer::cacheRenderTargetOnTexture. What is drawn
// there can afterwards be used as the texture.
class renderTarget {
 public:
  explicit renderTarget(SYSTEM::sharedPointer<TEXTURE::texture> colour);
  virtual ~renderTarget() = default;
  renderTarget(const renderTarget&) = delete;
  renderTarget& operator=(const renderTarget&) = delete;

  TEXTURE::texture* getTexture() const { return colour.get(); }
  unsigned getFramebuffer() const { return framebuffer; }
  unsigned getDepthBuffer() const { return depthBuffer; }

 private:
  friend class renderGL;

  SYSTEM::sharedPointer<TEXTURE::texture> colour;
  unsigned framebuffer = 0;
  unsigned depthBuffer = 0;
};

}  // namespace RENDERING
}  // namespace JEV
