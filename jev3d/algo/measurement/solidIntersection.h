#pragma once

#include <utility>
#include <vector>

#include "jev3d/math/matrix4.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace EDITING {
class editMeshNode;
}
namespace ALGO {
namespace MEASUREMENT {

// Tests a set of placed solids pairwise for intersection. Each model is kept as a placed
// copy; test voxelises the copies whose boxes overlap and measures each one's vertices
// against the other, so a model wholly inside another counts as intersecting it too.
class solidIntersection {
 public:
  // One model: its placed copy and what the last test found.
  struct modelRecord {
    editMesh mesh;
    bool intersects = false;
    std::vector<unsigned int> intersectsWith;  // indices of the models it meets, ascending
    // Per vertex of the copy: the most negative distance into another model, 0 where it
    // lies inside none.
    std::vector<float> depth;
  };

  // Copies the mesh, places the copy by matrix (row vectors, p·m) and, with smooth, runs
  // 5 rounds of Laplacian smoothing on it with the border pinned, against a scan's noise.
  // Returns the model's index.
  unsigned int addModelToTest(const editMesh& mesh, const MATH::matrix4<float>& matrix,
                              bool smooth);
  // The same for an editable node's mesh (in the jev3d library, beside the node).
  unsigned int addModelToTest(const EDITING::editMeshNode& node, const MATH::matrix4<float>& matrix,
                              bool smooth);
  // Tests every pair whose boxes overlap; resolution is the voxel count along the longest
  // side of each model's box (clamped to 8..1024). Reports 1.0, up to 95 over the pairs,
  // 99 and 100. False when fewer than two models are held.
  bool test(SYSTEM::callBack* cb, unsigned int resolution = 64);
  void clear() { models.clear(); }

  unsigned int getModelCount() const { return unsigned(models.size()); }
  const modelRecord& getModel(unsigned int i) const { return models[i]; }
  // The unordered pairs (first < second) of models whose bounding boxes overlap.
  std::vector<std::pair<unsigned int, unsigned int>> findPairToTest() const;

 private:
  std::vector<modelRecord> models;
};

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
