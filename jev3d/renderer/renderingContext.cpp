#include "jev3d/renderer/renderingContext.h"

#include "jev3d/resources/meshStorage.h"
#include "jev3d/resources/textureStorage.h"

namespace JEV {
namespace RENDERING {

renderingContext::renderingContext(renderer* d, audioRenderer* a)
    : windowX(0),
      windowY(0),
      device(d),
      audio(a),
      meshStorage(std::make_shared<CORE::meshStorage>(d)),
      textureStorage(std::make_shared<CORE::textureStorage>(d)) {}

renderingContext::renderingContext(const renderingContext& other)
    : windowX(other.windowX.cV()),
      windowY(other.windowY.cV()),
      windowWidth(other.windowWidth.cV()),
      windowHeight(other.windowHeight.cV()),
      device(other.device),
      audio(other.audio),
      meshStorage(other.meshStorage),
      textureStorage(other.textureStorage) {}

void renderingContext::discard() {
  meshStorage->clear();
  textureStorage->clear();
}

}  // namespace RENDERING
}  // namespace JEV
