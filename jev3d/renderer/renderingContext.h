#pragma once

#include <memory>

#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace CORE {
class meshStorage;
class textureStorage;
}  // namespace CORE

namespace RENDERING {

class renderer;
class audioRenderer;

// What every render and update of a window receives: the window's client rectangle as
// fields, and its devices. The stacks and resource storages join it with the scene and
// resource layers.
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
  // The window's resource storages, made with the context and shared by its copies.
  CORE::meshStorage* getMeshStorage() const { return meshStorage.get(); }
  CORE::textureStorage* getTextureStorage() const { return textureStorage.get(); }

  SYSTEM::fieldBase<int> windowX;
  SYSTEM::fieldBase<int> windowY;
  SYSTEM::fieldBase<int> windowWidth;
  SYSTEM::fieldBase<int> windowHeight;

 private:
  renderer* device;
  audioRenderer* audio;
  // Shared, so that a copy uses the same storages; the last context to go drops them.
  std::shared_ptr<CORE::meshStorage> meshStorage;
  std::shared_ptr<CORE::textureStorage> textureStorage;
};

}  // namespace RENDERING
}  // namespace JEV
