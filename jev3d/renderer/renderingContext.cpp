#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace RENDERING {

renderingContext::renderingContext(renderer* d, audioRenderer* a)
    : windowX(0), windowY(0), device(d), audio(a) {}

renderingContext::renderingContext(const renderingContext& other)
    : windowX(other.windowX.cV()),
      windowY(other.windowY.cV()),
      windowWidth(other.windowWidth.cV()),
      windowHeight(other.windowHeight.cV()),
      device(other.device),
      audio(other.audio) {}

void renderingContext::discard() {}

}  // namespace RENDERING
}  // namespace JEV
