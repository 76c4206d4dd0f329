#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Whether the colour buffer is written.
class colorbufferstate : public renderstate {
 public:
  colorbufferstate() = default;
  explicit colorbufferstate(bool writeMask);
  void set(bool writeMask);
  void clone(colorbufferstate* target) const;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<bool> writeMask{true};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
