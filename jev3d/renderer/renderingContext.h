#pragma once

#include <memory>

#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace RENDERING {

class renderer;
class audioRenderer;
class cameraStack;
class transformStack;
namespace RENDERSTATE {
class renderStateStack;
}

// What every render and update of a window receives: the camera, transform and render
// state stacks, the window's client rectangle as fields, and its devices. A copy shares
// the stacks; the last context holding them frees them.
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

  SYSTEM::fieldBase<int> windowX;
  SYSTEM::fieldBase<int> windowY;
  SYSTEM::fieldBase<int> windowWidth;
  SYSTEM::fieldBase<int> windowHeight;

 private:
  renderer* device;
  audioRenderer* audio;
  std::shared_ptr<cameraStack> cameras;
  std::shared_ptr<transformStack> transforms;
  std::shared_ptr<RENDERSTATE::renderStateStack> renderStates;
};

}  // namespace RENDERING
}  // namespace JEV
