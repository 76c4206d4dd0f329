#include "jev3d/math/pointTree.h"

#include "jev3d/math/internal/bvhBuilder.h"
#include "jev3d/math/internal/bvhTraversal.h"

namespace JEV {
namespace MATH {

using INTERNAL::bvhNode;

pointTree::pointTree() = default;
pointTree::~pointTree() = default;
pointTree::pointTree(const pointTree&) = default;
pointTree::pointTree(pointTree&&) noexcept = default;
pointTree& pointTree::operator=(const pointTree&) = default;
pointTree& pointTree::operator=(pointTree&&) noexcept = default;

void pointTree::clear() {
  nodes.clear();
  points.clear();
  pointIds.clear();
}

void pointTree::build(const point3<float>* input, std::size_t count, unsigned int leafSize,
                      const unsigned int* ids) {
  clear();
  std::vector<INTERNAL::bvhPrimitive> prims;
  std::vector<std::uint32_t> order;
  prims.reserve(count);
  order.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const point3<float>& q = input[i];
    if (!INTERNAL::isFinite(q)) continue;
    INTERNAL::bvhPrimitive p;
    for (int k = 0; k < 3; ++k) p.lo[k] = p.hi[k] = q[k];
    p.lo[3] = p.hi[3] = 0.0f;
    prims.push_back(p);
    order.push_back(std::uint32_t(i));
  }
  INTERNAL::buildBvh(prims, order, leafSize, nodes);

  points.resize(prims.size());
  pointIds.resize(prims.size());
  for (std::size_t i = 0; i < prims.size(); ++i) {
    points[i] = point3<float>(prims[i].lo[0], prims[i].lo[1], prims[i].lo[2]);
    pointIds[i] = ids ? ids[order[i]] : order[i];
  }
}

bool pointTree::bounds(point3<float>& lo, point3<float>& hi) const {
  if (nodes.empty()) return false;
  return INTERNAL::rootBounds(nodes, lo, hi), true;
}

bool pointTree::nearest(const point3<float>& p, float maxSquaredDistance, unsigned int& id,
                        float& squaredDistance) const {
  if (nodes.empty() || !(maxSquaredDistance >= 0.0f) || !INTERNAL::isFinite(p)) return false;
  float best = maxSquaredDistance;
  const std::size_t none = points.size();
  std::size_t bestSlot = none;
  INTERNAL::bvhNearestFirst(
      nodes, best, [&](const bvhNode& n, float* key) { INTERNAL::boxSquaredDistances(n, p, key); },
      [&](std::uint32_t first, std::uint32_t count, float& bound) {
        for (std::uint32_t i = first; i < first + count; ++i) {
          const float d = (points[i] - p).squaredNorm();
          if (d < bound || (d == bound && bestSlot == none)) bound = d, bestSlot = i;
        }
      },
      [](std::uint32_t, std::uint32_t) {});
  if (bestSlot == none) return false;
  id = pointIds[bestSlot];
  squaredDistance = best;
  return true;
}

std::size_t pointTree::withinRadius(const point3<float>& p, float radius,
                                    std::vector<unsigned int>& ids) const {
  ids.clear();
  if (nodes.empty() || !(radius >= 0.0f) || !INTERNAL::isFinite(p)) return 0;
  const float r2 = radius * radius;
  INTERNAL::bvhAllWithin(
      nodes, r2, [&](const bvhNode& n, float* key) { INTERNAL::boxSquaredDistances(n, p, key); },
      [&](std::uint32_t first, std::uint32_t count) {
        for (std::uint32_t i = first; i < first + count; ++i) {
          if ((points[i] - p).squaredNorm() <= r2) ids.push_back(pointIds[i]);
        }
      });
  return ids.size();
}

}  // namespace MATH
}  // namespace JEV
