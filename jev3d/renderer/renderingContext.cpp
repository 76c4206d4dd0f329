#include "jev3d/renderer/renderingContext.h"

#include "jev3d/renderer/cameraStack.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/resources/meshStorage.h"
#include "jev3d/resources/renderTargetStorage.h"
#include "jev3d/resources/textureStorage.h"

namespace JEV {
namespace RENDERING {

renderingContext::renderingContext(renderer* d, audioRenderer* a)
    : windowX(0),
      windowY(0),
      device(d),
      audio(a),
      cameras(std::make_shared<cameraStack>(d)),
      transforms(std::make_shared<transformStack>(d)),
      meshStorage(std::make_shared<CORE::meshStorage>(d)),
      textureStorage(std::make_shared<CORE::textureStorage>(d)),
      renderTargetStorage(std::make_shared<CORE::renderTargetStorage>(d)),
      renderStates(std::make_shared<RENDERSTATE::renderStateStack>(d)) {}

renderingContext::renderingContext(const renderingContext& other)
    : windowX(other.windowX.cV()),
      windowY(other.windowY.cV()),
      windowWidth(other.windowWidth.cV()),
      windowHeight(other.windowHeight.cV()),
      device(other.device),
      audio(other.audio),
      cameras(other.cameras),
      transforms(other.transforms),
      meshStorage(other.meshStorage),
      textureStorage(other.textureStorage),
      renderTargetStorage(other.renderTargetStorage),
      renderStates(other.renderStates) {}

void renderingContext::discard() {
  renderStates->popToBottom();
  transforms->clear();
  cameras->popToBottom();
  meshStorage->clear();
  textureStorage->clear();
  renderTargetStorage->clear();
}

}  // namespace RENDERING
}  // namespace JEV
