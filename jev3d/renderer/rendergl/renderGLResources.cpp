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


}  // namespace RENDERING
}  // namespace JEV
