#include "jev3d/renderer/rendergl/renderGL.h"

namespace JEV {
namespace RENDERING {

// Device objects this back end does not make yet: every request fails, so callers keep
// their data in client memory and draw nothing through these paths.

renderer::MULTISAMPLE_TYPE renderGL::getMaxMultiSampleType() { return MULTISAMPLE_NONE; }
bool renderGL::isSupportRenderTargetOnTexture() { return false; }
bool renderGL::setCurrentVertexProcessingType(VERTEXPROCESSING_TYPE type) {
  vertexProcessing = type;
  return true;
}
bool renderGL::setCurrentMultiSampleType(MULTISAMPLE_TYPE type) {
  if (type > getMaxMultiSampleType()) return false;
  multiSample = type;
  return true;
}
bool renderGL::cacheRenderTargetOnTexture(renderTarget*) { return false; }
bool renderGL::isCachedRenderTargetOnTexture(const renderTarget*) const { return false; }
bool renderGL::discardRenderTargetOnTexture(renderTarget*) { return false; }

bool renderGL::createFont(GUI::font*) { return false; }
bool renderGL::cacheFont(GUI::font*) { return false; }
bool renderGL::isCachedFont(const GUI::font*) const { return false; }
bool renderGL::discardFont(GUI::font*) { return false; }
bool renderGL::getFontBox(GUI::font*, const std::wstring&, int&, int&) { return false; }
int renderGL::getFontMaxHeight(GUI::font*) { return 0; }
bool renderGL::renderText(GUI::font*, const std::wstring&, int, int, CORE::color) { return false; }

bool renderGL::updateFrustum() { return false; }
MATH::point4<float> renderGL::getFrustumPlane(int) const { return MATH::point4<float>::ZERO(); }

bool renderGL::cacheTexture(TEXTURE::texture*) { return false; }
bool renderGL::cacheTexture3D(TEXTURE::texture3D*) { return false; }
bool renderGL::updateTexture(TEXTURE::texture*, const void*) { return false; }
bool renderGL::updateTexture(TEXTURE::texture*) { return false; }
bool renderGL::discardTexture(TEXTURE::texture*) { return false; }
bool renderGL::discardTexture3D(TEXTURE::texture3D*) { return false; }

bool renderGL::cacheVertexDeclaration(vertexDeclaration*) { return false; }
bool renderGL::cacheIndexBuffer(indexBuffer*, const unsigned short*, unsigned) { return false; }
bool renderGL::cacheIndexBuffer(indexBuffer*, const unsigned*, unsigned) { return false; }
bool renderGL::cacheVertexBufferElement(vertexBuffer*, unsigned, const void*, unsigned) {
  return false;
}
bool renderGL::isCachedVertexBuffer(const vertexBuffer*) const { return false; }
bool renderGL::isCachedVertexBufferElement(const vertexBuffer*, unsigned) const { return false; }
bool renderGL::isCachedIndexBuffer(const indexBuffer*) const { return false; }
bool renderGL::lockVertexBufferElement(vertexBuffer*, unsigned, void*&) { return false; }
bool renderGL::unlockVertexBufferElement(vertexBuffer*, unsigned) { return false; }
bool renderGL::discardIndexBuffer(indexBuffer*) { return false; }
bool renderGL::discardVertexBuffer(vertexBuffer*) { return false; }
bool renderGL::discardVertexBufferElement(vertexBuffer*, unsigned) { return false; }
bool renderGL::renderGeometry(DRAW_MODE, vertexBuffer*, unsigned, unsigned) { return false; }
bool renderGL::renderIndexedGeometry(DRAW_MODE, vertexBuffer*, indexBuffer*,
                                     const std::vector<std::pair<unsigned, unsigned>>&) {
  return false;
}
bool renderGL::renderIndexedGeometry(DRAW_MODE, vertexBuffer*, indexBuffer*, unsigned, unsigned) {
  return false;
}
bool renderGL::setVertexDeclaration(vertexDeclaration*) { return false; }
bool renderGL::setVertexBuffer(vertexBuffer*) { return false; }
bool renderGL::setIndexBuffer(indexBuffer*) { return false; }
bool renderGL::draw(DRAW_MODE, unsigned, unsigned) { return false; }

}  // namespace RENDERING
}  // namespace JEV
