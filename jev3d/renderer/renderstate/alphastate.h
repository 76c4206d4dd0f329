#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Alpha test: fragments pass when their alpha compares true with `reference`.
class alphastate : public renderstate {
 public:
  alphastate() = default;
  alphastate(bool enable, ALPHA_FUNC function, float reference);
  void set(bool enable, ALPHA_FUNC function, float reference);
  void clone(alphastate* target) const;
  void render(renderingContext* rc) override;

  bool enable = false;
  ALPHA_FUNC function = ALPHA_ALWAYS;
  float reference = 0.0f;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
