#pragma once

#include <array>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/math/triangleTree.h"

namespace JEV {
namespace MESH {

class editMesh;

// The face index of an editMesh, built by editMesh::computeFABBTree: a triangleTree over
// the live faces, polygons split as fans from corner 0. Hits name the face, the fan
// triangle t (corners 0, t + 1, t + 2, as editMesh::getTriangle gives them) and the
// weights u, v of that triangle's second and third corner. The index is a snapshot: ask
// the mesh (getFABBTree, isSpatialIndexingValid) whether it still holds.
template <class T>
class aabbtreeEditMeshFaceWrap {
  static_assert(std::is_same<T, float>::value, "mesh positions are float");

 public:
  // Closest point on the live faces to p with a squared distance not above
  // maxSquaredDistance; false, with hit untouched, when none is that close.
  bool closestPoint(const MATH::point3<float>& p, float maxSquaredDistance,
                    MATH::closestPointHit& hit) const;
  // First face met by origin + t·direction for t in [0, tMax], from either side.
  bool firstHit(const MATH::point3<float>& origin, const MATH::point3<float>& direction, float tMax,
                MATH::rayHit& hit) const;
  // Every face met for t in [0, tMax], by increasing t, into hits (cleared first); a face
  // is met once at one place even where the ray crosses the diagonal of its fan.
  std::size_t allHits(const MATH::point3<float>& origin, const MATH::point3<float>& direction,
                      float tMax, std::vector<MATH::rayHit>& hits) const;

  // The mesh's element counts and geometry revision when built, which the mesh compares
  // with its own to tell whether the index still holds.
  const std::array<unsigned int, 7>& builtForMeshState() const { return meshState; }
  // Number of triangles indexed.
  std::size_t size() const { return tree.size(); }
  const MATH::triangleTree& getTree() const { return tree; }

 private:
  friend class editMesh;

  // Turns a triangle index of the tree into the fan index inside its face.
  void toFanIndex(unsigned int& triangle, unsigned int face) const {
    triangle -= firstTriangle[face];
  }

  MATH::triangleTree tree;
  std::vector<unsigned int> firstTriangle;  // per face id, its first triangle in the tree
  std::array<unsigned int, 7> meshState{};
};

extern template class aabbtreeEditMeshFaceWrap<float>;

}  // namespace MESH
}  // namespace JEV
