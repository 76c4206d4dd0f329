#pragma once

#include <array>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/math/pointTree.h"

namespace JEV {
namespace MESH {

class editMesh;

// The vertex index of an editMesh, built by editMesh::computeVABBTree: a pointTree over
// the live vertices, answering in vertex ids. The index is a snapshot: ask the mesh
// (getVABBTree, isSpatialIndexingValid) whether it still holds.
template <class T>
class aabbtreeEditMeshVertWrap {
  static_assert(std::is_same<T, float>::value, "mesh positions are float");

 public:
  // Nearest live vertex to p with a squared distance not above maxSquaredDistance: its id
  // and squared distance. False, with the outputs untouched, when none is that close.
  bool nearest(const MATH::point3<float>& p, float maxSquaredDistance, unsigned int& vertex,
               float& squaredDistance) const {
    return tree.nearest(p, maxSquaredDistance, vertex, squaredDistance);
  }
  // Ids of the live vertices within radius of p (distance not above it), in no particular
  // order, into vertices (cleared first). Returns the count.
  std::size_t withinRadius(const MATH::point3<float>& p, float radius,
                           std::vector<unsigned int>& vertices) const {
    return tree.withinRadius(p, radius, vertices);
  }

  // The mesh's element counts and geometry revision when built, which the mesh compares
  // with its own to tell whether the index still holds.
  const std::array<unsigned int, 7>& builtForMeshState() const { return meshState; }
  // Number of vertices indexed.
  std::size_t size() const { return tree.size(); }
  const MATH::pointTree& getTree() const { return tree; }

 private:
  friend class editMesh;

  MATH::pointTree tree;
  std::array<unsigned int, 7> meshState{};
};

}  // namespace MESH
}  // namespace JEV
