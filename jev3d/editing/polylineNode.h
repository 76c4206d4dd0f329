#pragma once

#include <vector>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/renderer/vertexBuffer.h"
#include "jev3d/scene/node.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
class renderer;
}
namespace MESH {
namespace EDITING {

// Draws a chain of points as unlit lines, pulled a little towards the viewer in depth so
// that a curve lying on a surface is not hidden by it. The points are in the frame of
// `transform` (the frame of the mesh they lie on). A segment is drawn when both its ends
// are shown in the mask (an empty mask shows all). The lines are cached in a vertex
// buffer, rebuilt at the next frame after a change.
class polylineNode : public SG::node {
 public:
  polylineNode();
  ~polylineNode() override;

  // Replaces the points; the mask is cleared and the cache goes stale.
  void setPoints(const std::vector<MATH::point3<float>>& p);
  const std::vector<MATH::point3<float>>& getPoints() const { return points; }
  // One byte a point, non-zero for shown; the cache goes stale.
  void updateVmask(const std::vector<unsigned char>& mask);
  const std::vector<unsigned char>& getVmask() const { return vmask; }
  // Length of the chain, with the closing segment when closed.
  float computeLenght() const;

  // Builds the line buffer on the drawing thread; false when there is nothing to draw.
  bool cache(RENDERING::renderer* device);
  bool isCached() const { return cached; }
  // Frees the buffer; the device names go to the renderer's discard list.
  void discard();
  // The lines under transform, then the children.
  void render(RENDERING::renderingContext* rc) override;

  SYSTEM::fieldBase<CORE::color> color{CORE::color(255, 40, 40, 255)};
  SYSTEM::fieldBase<bool> closed{false};
  MATH::matrix4<float> transform;

 private:
  std::vector<MATH::point3<float>> points;
  std::vector<unsigned char> vmask;
  RENDERING::vertexBuffer buffer;
  unsigned int vertexCount = 0;
  bool cached = false;
  RENDERING::renderer* device = nullptr;
  RENDERING::RENDERSTATE::lightingstate unlit{false, false};
  RENDERING::RENDERSTATE::zbufferstate overlay;
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
