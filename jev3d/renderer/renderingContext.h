#pragma once

#include "jev3d/fields/fieldBase.h"

namespace JEV {
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

  SYSTEM::fieldBase<int> windowX;
  SYSTEM::fieldBase<int> windowY;
  SYSTEM::fieldBase<int> windowWidth;
  SYSTEM::fieldBase<int> windowHeight;

 private:
  renderer* device;
  audioRenderer* audio;
};

}  // namespace RENDERING
}  // namespace JEV
