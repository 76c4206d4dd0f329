#pragma once

#include <cstddef>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

namespace INTERNAL {
struct bvhNode;
struct trianglePacket;
}  // namespace INTERNAL

// The closest point that a triangleTree found.
struct closestPointHit {
  unsigned int face = 0;      // face id of the triangle (its index unless ids were given)
  unsigned int triangle = 0;  // index of the triangle in the list the tree was built from
  float squaredDistance = 0.0f;
  point3<float> point;
  float u = 0.0f, v = 0.0f;  // weights of the triangle's second and third corner at point
};

// One place where a ray meets a triangle of a triangleTree.
struct rayHit {
  unsigned int face = 0;
  unsigned int triangle = 0;
  float t = 0.0f;            // the point is origin + t·direction
  float u = 0.0f, v = 0.0f;  // weights of the triangle's second and third corner
};

// A bounding-volume hierarchy over a triangle list: closest point, first ray hit and all
// ray hits. It copies the triangles, so the positions may change or go away after build;
// a query on an unbuilt or empty tree finds nothing. Queries are const and may run from
// several threads at once.
class triangleTree {
 public:
  triangleTree();
  ~triangleTree();
  triangleTree(const triangleTree&);
  triangleTree(triangleTree&&) noexcept;
  triangleTree& operator=(const triangleTree&);
  triangleTree& operator=(triangleTree&&) noexcept;

  // Builds over triangleCount triangles of three indices each into positions. faceIds,
  // when given, holds for each triangle the face id that queries report (several triangles
  // of one polygon share it). Triangles with an index out of range or a corner that is not
  // finite are left out. leafSize is the most triangles in a leaf, clamped to [1, 16].
  void build(const point3<float>* positions, std::size_t positionCount, const unsigned int* indices,
             std::size_t triangleCount, unsigned int leafSize = 8,
             const unsigned int* faceIds = nullptr);
  void clear();

  bool empty() const { return held == 0; }
  // Number of triangles held.
  std::size_t size() const { return held; }
  // Box around all triangles; false when the tree is empty.
  bool bounds(point3<float>& lo, point3<float>& hi) const;

  // Closest point to p on the triangles, among those at a squared distance not above
  // maxSquaredDistance. False, with hit untouched, when none is that close.
  bool closestPoint(const point3<float>& p, float maxSquaredDistance, closestPointHit& hit) const;

  // First triangle met by origin + t·direction for t in [0, tMax], from either side;
  // direction need not be unit. False when none is met. The test is watertight: a ray
  // through an edge or a vertex that triangles share meets exactly one of them there.
  bool firstHit(const point3<float>& origin, const point3<float>& direction, float tMax,
                rayHit& hit) const;

  // Every hit for t in [0, tMax], by increasing t, into hits (cleared first); a face met
  // through two triangles of its fan at the same place counts once. Returns the count.
  std::size_t allHits(const point3<float>& origin, const point3<float>& direction, float tMax,
                      std::vector<rayHit>& hits) const;

 private:
  std::vector<INTERNAL::bvhNode> nodes;
  // Triangles in leaf order, four to a packet; a leaf starts a packet.
  std::vector<INTERNAL::trianglePacket> packets;
  // Input index and face id of each packet lane, side by side: a hit reads both.
  struct laneIds {
    unsigned int triangle, face;
  };
  std::vector<laneIds> lanes;
  std::size_t held = 0;
};

}  // namespace MATH
}  // namespace JEV
