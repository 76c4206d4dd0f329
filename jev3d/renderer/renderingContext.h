#pragma once

#include <memory>

#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace CORE {
class meshStorage;
class textureStorage;
class renderTargetStorage;
}  // namespace CORE

namespace RENDERING {

class renderer;
class audioRenderer;
class cameraStack;
class transformStack;
namespace RENDERSTATE {
class renderStateStack;
}

// What every render and update of a window receives: the camera, transform and render
// state stacks, the resource storages, the window's client rectangle as fields, and its
// devices. A copy shares the stacks and storages; the last context holding them frees
// them.
class renderingContext {
 public:
  renderingContext(renderer* device, audioRenderer* audio);
  // A copy shares the devices and takes the four values.
  renderingContext(const renderingContext& other);
  virtual ~renderingContext() = default;
  renderingContext& operator=(const renderingContext&) = delete;

  // Returns the context to its first state without destroying it.
  virtual void discard();

  renderer* getRenderer() const { return device; }
  audioRenderer* getAudioRenderer() const { return audio; }
  cameraStack* getCameraStack() const { return cameras.get(); }
  transformStack* getTransformStack() const { return transforms.get(); }
  RENDERSTATE::renderStateStack* getRenderStateStack() const { return renderStates.get(); }
  // The window's resource storages, made with the context and shared by its copies.
  CORE::meshStorage* getMeshStorage() const { return meshStorage.get(); }
  CORE::textureStorage* getTextureStorage() const { return textureStorage.get(); }
  CORE::renderTargetStorage* getRenderTargetStorage() const { return renderTargetStorage.get(); }

  SYSTEM::fieldBase<int> windowX;
  SYSTEM::fieldBase<int> windowY;
  SYSTEM::fieldBase<int> windowWidth;
  SYSTEM::fieldBase<int> windowHeight;

 private:
  renderer* device;
  audioRenderer* audio;
  // Made in this order: the stacks, the storages, then the render state stack.
  std::shared_ptr<cameraStack> cameras;
  std::shared_ptr<transformStack> transforms;
  std::shared_ptr<CORE::meshStorage> meshStorage;
  std::shared_ptr<CORE::textureStorage> textureStorage;
  std::shared_ptr<CORE::renderTargetStorage> renderTargetStorage;
  std::shared_ptr<RENDERSTATE::renderStateStack> renderStates;
};

}  // namespace RENDERING
}  // namespace JEV
