#pragma once

#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/math/triangleTree.h"

namespace JEV {
namespace MESH {
class meshInterface;
namespace ALGO {
namespace MEASUREMENT {
namespace INTERNAL {

// The faces of a mesh as a closest-point tree: live polygons split as fans from corner 0,
// with the three vertex ids of each triangle kept so that a hit can blend the corners'
// normals. Faces naming a deleted or out-of-range vertex are left out.
struct surfaceIndex {
  void build(const meshInterface& mesh);

  MATH::triangleTree tree;
  std::vector<MATH::point3<float>> positions;  // of every vertex, as the tree was built
  std::vector<unsigned int> corners;           // three vertex ids per triangle
  std::vector<unsigned int> faces;             // face id per triangle
};

// Box of the live vertices of a mesh; false when it has none.
bool liveBox(const meshInterface& mesh, MATH::point3<float>& lo, MATH::point3<float>& hi);

// Walks points in order and finds each one's closest point on an index. The triangle
// found last bounds the next search (the surface lies no farther than that triangle),
// which keeps the search to a few leaves on points that follow each other along a
// surface.
class closestWalker {
 public:
  closestWalker(const surfaceIndex& index, float maxDistance);

  // Closest point to p within maxDistance; false, with hit untouched, when none.
  bool find(const MATH::point3<float>& p, MATH::closestPointHit& hit);
  // Whether some point of the surface lies within reach of p; cheaper than find when a
  // known point is already that close.
  bool within(const MATH::point3<float>& p, float reach);

 private:
  const surfaceIndex& index;
  float maxSquared;
  bool hasLast = false;
  MATH::point3<float> last;       // the closest point found last
  unsigned int lastTriangle = 0;  // and its triangle
};

}  // namespace INTERNAL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
