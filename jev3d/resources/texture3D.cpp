#include "jev3d/resources/texture3D.h"

#include <cstddef>
#include <utility>

#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace TEXTURE {

texture3D::texture3D(RENDERING::renderer* render) : deviceResource(render) {}

texture3D::~texture3D() { texture3D::discard(); }

bool texture3D::cache() {
  if (isCached()) return true;
  return getRender() && getRender()->cacheTexture3D(this);
}

bool texture3D::discard() {
  std::vector<unsigned> names = getDeviceNames();
  if (getRender() && !names.empty()) getRender()->addTextureToDiscardList3D(names);
  return deviceResource::discard();
}

bool texture3D::clear() {
  discard();
  width = height = depth = 0;
  samples.clear();
  return true;
}

bool texture3D::setVolume(int w, int h, int d, std::vector<unsigned char> values) {
  if (w < 1 || h < 1 || d < 1) return false;
  if (values.size() != std::size_t(w) * std::size_t(h) * std::size_t(d)) return false;
  discard();
  width = w;
  height = h;
  depth = d;
  samples = std::move(values);
  return true;
}

}  // namespace TEXTURE
}  // namespace JEV
