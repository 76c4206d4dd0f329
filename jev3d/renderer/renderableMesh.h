#pragma once

#include "jev3d/math/point3.h"

namespace JEV {
namespace RENDERING {

class renderingContext;
class cameraState;
namespace RENDERSTATE {
class blendstate;
class colorMaterialstate;
class lightingstate;
class materialstate;
class viewportstate;
class wireframestate;
}  // namespace RENDERSTATE

// The render side of a mesh, as the depth ordering drives it: the copies of the states it
// draws with, an overlay mode for a wireframe pass over itself, and the camera and
// viewport it was last drawn under. Mesh classes that draw implement it.
class renderableMesh {
 public:
  // Render flag that draws the mesh's edges.
  static constexpr unsigned RENDER_EDGES = 8;

  virtual ~renderableMesh() = default;

  virtual void setOverlayMode(bool overlay) = 0;
  virtual void setRenderFlag(unsigned flag) = 0;
  virtual RENDERSTATE::materialstate& getMaterialState() = 0;
  virtual RENDERSTATE::colorMaterialstate& getColorMaterialState() = 0;
  virtual RENDERSTATE::blendstate& getBlendState() = 0;
  virtual RENDERSTATE::lightingstate& getLightingState() = 0;
  virtual RENDERSTATE::wireframestate& getWireFrameState() = 0;
  // Centre of the mesh's bounding volume, in its own coordinates.
  virtual MATH::point3<float> getBoundingCenter() const = 0;
  virtual const RENDERSTATE::viewportstate& getViewportState() const = 0;
  virtual const cameraState& getCameraState() const = 0;
  virtual void render(renderingContext* rc) = 0;
};

}  // namespace RENDERING
}  // namespace JEV
