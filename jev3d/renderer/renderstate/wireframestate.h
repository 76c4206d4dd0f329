#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// How polygons are filled: solid, as lines or as points.
class wireframestate : public renderstate {
 public:
  wireframestate() = default;
  explicit wireframestate(FILL_MODE mode);
  void set(FILL_MODE mode);
  void clone(wireframestate* target) const;
  void render(renderingContext* rc) override;

  FILL_MODE mode = FILL_SOLID;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
