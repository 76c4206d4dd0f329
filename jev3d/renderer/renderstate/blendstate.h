#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// Blending of the fragment (source) with the frame (destination).
class blendstate : public renderstate {
 public:
  blendstate() = default;
  blendstate(bool enable, SRC_BLEND source, DST_BLEND destination);
  void set(bool enable, SRC_BLEND source, DST_BLEND destination);
  void clone(blendstate* target) const;
  void render(renderingContext* rc) override;

  bool enable = false;
  SRC_BLEND source = SRC_SRC_ALPHA;
  DST_BLEND destination = DST_ONE_MINUS_SRC_ALPHA;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
