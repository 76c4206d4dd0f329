#pragma once

#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
class materialstate;
}

// The material a mesh is drawn with, as plain values that copy freely; the defaults are
// those of materialstate.
struct meshMaterialStruct {
  CORE::color frontEmissive{0, 0, 0, 255};
  CORE::color frontAmbient{0, 0, 0, 255};
  CORE::color frontDiffuse{150, 150, 150, 255};
  CORE::color frontSpecular{50, 50, 50, 255};
  float frontShininess = 128.0f;
  CORE::color backEmissive{0, 0, 0, 255};
  CORE::color backAmbient{0, 0, 0, 255};
  CORE::color backDiffuse{150, 150, 150, 255};
  CORE::color backSpecular{50, 50, 50, 255};
  float backShininess = 128.0f;

  void copyTo(RENDERSTATE::materialstate& target) const;
  void copyFrom(const RENDERSTATE::materialstate& source);
};

}  // namespace RENDERING
}  // namespace JEV
