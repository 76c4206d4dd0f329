#pragma once

#include <cstddef>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

namespace INTERNAL {
struct bvhNode;
}

// A bounding-volume hierarchy over points: nearest point and points within a radius. It
// copies the points; a query on an unbuilt or empty tree finds nothing. Queries are const
// and may run from several threads at once.
class pointTree {
 public:
  pointTree();
  ~pointTree();
  pointTree(const pointTree&);
  pointTree(pointTree&&) noexcept;
  pointTree& operator=(const pointTree&);
  pointTree& operator=(pointTree&&) noexcept;

  // Builds over count points. ids, when given, holds the id that queries report for each
  // point (default: its index). Points that are not finite are left out. leafSize is the
  // most points in a leaf, clamped to [1, 16].
  void build(const point3<float>* points, std::size_t count, unsigned int leafSize = 8,
             const unsigned int* ids = nullptr);
  void clear();

  bool empty() const { return points.empty(); }
  // Number of points held.
  std::size_t size() const { return points.size(); }
  // Box around all points; false when the tree is empty.
  bool bounds(point3<float>& lo, point3<float>& hi) const;

  // Nearest point to p among those at a squared distance not above maxSquaredDistance:
  // its id and squared distance. False, with the outputs untouched, when none is that close.
  bool nearest(const point3<float>& p, float maxSquaredDistance, unsigned int& id,
               float& squaredDistance) const;

  // Ids of all points whose squared distance to p is not above radius·radius, in no
  // particular order, into ids (cleared first). Returns the count.
  std::size_t withinRadius(const point3<float>& p, float radius,
                           std::vector<unsigned int>& ids) const;

 private:
  std::vector<INTERNAL::bvhNode> nodes;
  std::vector<point3<float>> points;  // in leaf order
  std::vector<unsigned int> pointIds;
};

}  // namespace MATH
}  // namespace JEV
