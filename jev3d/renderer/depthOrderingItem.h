#pragma once

#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/renderer/meshMaterialStruct.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/transformState.h"

namespace JEV {
namespace RENDERING {

class renderableMesh;

// One entry's payload in a depthOrderingVector: the transform it was inserted under (as a
// copy), the meshes drawn under it with their materials, and the point its distance is
// measured from.
class depthOrderingItem : public transformState {
 public:
  explicit depthOrderingItem(const transformState& transform) : transformState(transform) {}

  std::vector<renderableMesh*> meshes;  // not owned
  bool wireOverlay = false;
  MATH::point3<float> referencePoint{0.0f, 0.0f, 0.0f};
  std::vector<meshMaterialStruct> materials;  // one a mesh
  std::vector<bool> useMaterial;              // one a mesh
  renderer::depthOrderingType type = renderer::DEPTH_ORDERING_FIRST;
};

}  // namespace RENDERING
}  // namespace JEV
