#include "jev3d/math/triangleTree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "jev3d/math/internal/bvhBuilder.h"
#include "jev3d/math/internal/bvhTraversal.h"
#include "jev3d/math/internal/trianglePacket.h"
#include "jev3d/math/triangleQueries.h"

namespace JEV {
namespace MATH {

using INTERNAL::bvhNode;

triangleTree::triangleTree() = default;
triangleTree::~triangleTree() = default;
triangleTree::triangleTree(const triangleTree&) = default;
triangleTree::triangleTree(triangleTree&&) noexcept = default;
triangleTree& triangleTree::operator=(const triangleTree&) = default;
triangleTree& triangleTree::operator=(triangleTree&&) noexcept = default;

void triangleTree::clear() {
  nodes.clear();
  packets.clear();
  lanes.clear();
  held = 0;
}

void triangleTree::build(const point3<float>* positions, std::size_t positionCount,
                         const unsigned int* indices, std::size_t triangleCount,
                         unsigned int leafSize, const unsigned int* faceIds) {
  clear();
  std::vector<INTERNAL::bvhPrimitive> prims;
  std::vector<std::uint32_t> ids;
  prims.reserve(triangleCount);
  ids.reserve(triangleCount);
  for (std::size_t t = 0; t < triangleCount; ++t) {
    const unsigned int* corner = indices + 3 * t;
    if (corner[0] >= positionCount || corner[1] >= positionCount || corner[2] >= positionCount) {
      continue;
    }
    const point3<float>& a = positions[corner[0]];
    const point3<float>& b = positions[corner[1]];
    const point3<float>& c = positions[corner[2]];
    if (!INTERNAL::isFinite(a) || !INTERNAL::isFinite(b) || !INTERNAL::isFinite(c)) continue;
    INTERNAL::bvhPrimitive p;
    for (int k = 0; k < 3; ++k) {
      p.lo[k] = std::min(std::min(a[k], b[k]), c[k]);
      p.hi[k] = std::max(std::max(a[k], b[k]), c[k]);
    }
    p.lo[3] = p.hi[3] = 0.0f;
    prims.push_back(p);
    ids.push_back(std::uint32_t(t));
  }
  INTERNAL::buildBvh(prims, ids, leafSize, nodes);
  held = ids.size();

  // Leaves in the order of their triangles, each moved to the start of a packet.
  struct leafRef {
    std::uint32_t first, count;
    std::uint32_t* child;
  };
  std::vector<leafRef> leaves;
  std::size_t packetCount = 0;
  for (bvhNode& n : nodes) {
    for (int c = 0; c < 4; ++c) {
      if (n.count[c] == 0 || n.count[c] == bvhNode::emptySlot) continue;
      leaves.push_back({n.child[c], n.count[c], &n.child[c]});
      packetCount += (n.count[c] + 3) / 4;
    }
  }
  std::sort(leaves.begin(), leaves.end(),
            [](const leafRef& a, const leafRef& b) { return a.first < b.first; });
  INTERNAL::reserveOnHugePages(packets, packetCount);
  packets.resize(packetCount);
  lanes.resize(4 * packetCount);
  std::uint32_t packet = 0;
  for (const leafRef& leaf : leaves) {
    *leaf.child = packet;
    const std::uint32_t slots = (leaf.count + 3) / 4 * 4;
    for (std::uint32_t slot = 0; slot < slots; ++slot) {
      const unsigned int t = ids[leaf.first + std::min(slot, leaf.count - 1)];
      const unsigned int* corner = indices + 3 * std::size_t(t);
      packets[packet + slot / 4].set(int(slot % 4), positions[corner[0]], positions[corner[1]],
                                     positions[corner[2]]);
      lanes[4 * packet + slot] = {t, faceIds ? faceIds[t] : t};
    }
    packet += slots / 4;
  }
}

bool triangleTree::bounds(point3<float>& lo, point3<float>& hi) const {
  if (nodes.empty()) return false;
  return INTERNAL::rootBounds(nodes, lo, hi), true;
}

namespace {

void prefetchLeaf(const std::vector<INTERNAL::trianglePacket>& packets, std::uint32_t first,
                  std::uint32_t count) {
  const char* data = reinterpret_cast<const char*>(&packets[first]);
  const std::size_t bytes = (count + 3) / 4 * sizeof(INTERNAL::trianglePacket);
  for (std::size_t at = 0; at < bytes; at += 64) __builtin_prefetch(data + at);
}

// Calls hitAt(slot, t, u, v) for each triangle of the leaf that the ray meets within tMax.
template <class HitAt>
void intersectLeaf(const std::vector<INTERNAL::trianglePacket>& packets, std::uint32_t first,
                   std::uint32_t count, const watertightRay& ray, const float& tMax, HitAt hitAt) {
  for (std::uint32_t i = 0; i < count; i += 4) {
    INTERNAL::packetRayHits r;
    int mask = INTERNAL::intersectPacket(packets[first + i / 4], ray, tMax, r);
    // Lanes past the leaf's end repeat its last triangle.
    if (count - i < 4) mask &= (1 << (count - i)) - 1;
    for (; mask != 0; mask &= mask - 1) {
      const int lane = __builtin_ctz(unsigned(mask));
      hitAt(4 * first + i + std::uint32_t(lane), r.t[lane], r.u[lane], r.v[lane]);
    }
  }
}

}  // namespace

bool triangleTree::closestPoint(const point3<float>& p, float maxSquaredDistance,
                                closestPointHit& hit) const {
  if (nodes.empty() || !(maxSquaredDistance >= 0.0f) || !INTERNAL::isFinite(p)) return false;
  float best = maxSquaredDistance;
  const std::size_t none = lanes.size();
  std::size_t bestSlot = none;
  point3<float> bestPoint;
  float bestU = 0.0f, bestV = 0.0f;
  INTERNAL::bvhNearestFirst(
      nodes, best, [&](const bvhNode& n, float* key) { INTERNAL::boxSquaredDistances(n, p, key); },
      [&](std::uint32_t first, std::uint32_t count, float& bound) {
        for (std::uint32_t packet = first; packet < first + (count + 3) / 4; ++packet) {
          INTERNAL::packetClosest r;
          INTERNAL::closestPointsOnPacket(packets[packet], p, r);
          for (int lane = 0; lane < 4; ++lane) {
            // The bound itself counts as within until something is found.
            if (r.d[lane] < bound || (r.d[lane] == bound && bestSlot == none)) {
              bound = r.d[lane], bestSlot = 4 * packet + lane;
              bestPoint = point3<float>(r.q[0][lane], r.q[1][lane], r.q[2][lane]);
              bestU = r.u[lane], bestV = r.v[lane];
            }
          }
        }
      },
      [&](std::uint32_t first, std::uint32_t count) { prefetchLeaf(packets, first, count); });
  if (bestSlot == none) return false;
  hit.face = lanes[bestSlot].face;
  hit.triangle = lanes[bestSlot].triangle;
  hit.squaredDistance = best;
  hit.point = bestPoint;
  hit.u = bestU;
  hit.v = bestV;
  return true;
}

bool triangleTree::firstHit(const point3<float>& origin, const point3<float>& direction, float tMax,
                            rayHit& hit) const {
  if (nodes.empty() || !(tMax >= 0.0f) || !INTERNAL::isFinite(origin) ||
      !INTERNAL::isFinite(direction)) {
    return false;
  }
  const INTERNAL::rayBoxTest boxTest(origin, direction);
  const watertightRay ray(origin, direction);
  float best = tMax;
  const std::size_t none = lanes.size();
  std::size_t bestSlot = none;
  float bestU = 0.0f, bestV = 0.0f;
  INTERNAL::bvhNearestFirst(
      nodes, best, [&](const bvhNode& n, float* key) { boxTest.entries(n, best, key); },
      [&](std::uint32_t first, std::uint32_t count, float& bound) {
        intersectLeaf(packets, first, count, ray, bound,
                      [&](std::size_t slot, float t, float u, float v) {
                        if (t < bound || bestSlot == none) {
                          bound = t, bestSlot = slot, bestU = u, bestV = v;
                        }
                      });
      },
      [&](std::uint32_t first, std::uint32_t count) { prefetchLeaf(packets, first, count); });
  if (bestSlot == none) return false;
  hit.face = lanes[bestSlot].face;
  hit.triangle = lanes[bestSlot].triangle;
  hit.t = best;
  hit.u = bestU;
  hit.v = bestV;
  return true;
}

std::size_t triangleTree::allHits(const point3<float>& origin, const point3<float>& direction,
                                  float tMax, std::vector<rayHit>& hits) const {
  hits.clear();
  if (nodes.empty() || !(tMax >= 0.0f) || !INTERNAL::isFinite(origin) ||
      !INTERNAL::isFinite(direction)) {
    return 0;
  }
  const INTERNAL::rayBoxTest boxTest(origin, direction);
  const watertightRay ray(origin, direction);
  INTERNAL::bvhAllWithin(
      nodes, tMax, [&](const bvhNode& n, float* key) { boxTest.entries(n, tMax, key); },
      [&](std::uint32_t first, std::uint32_t count) {
        intersectLeaf(packets, first, count, ray, tMax,
                      [&](std::size_t slot, float t, float u, float v) {
                        rayHit h;
                        h.face = lanes[slot].face;
                        h.triangle = lanes[slot].triangle;
                        h.t = t, h.u = u, h.v = v;
                        hits.push_back(h);
                      });
      });
  std::sort(hits.begin(), hits.end(), [](const rayHit& a, const rayHit& b) {
    return a.t < b.t ||
           (a.t == b.t && (a.face < b.face || (a.face == b.face && a.triangle < b.triangle)));
  });
  // Two triangles of one face meet the ray at one place where they share a diagonal; the
  // comparison allows for the rounding of the two computations of t.
  std::size_t kept = 0;
  for (std::size_t i = 0; i < hits.size(); ++i) {
    const float tolerance =
        16.0f * std::numeric_limits<float>::epsilon() * std::max(1.0f, std::abs(hits[i].t));
    bool twin = false;
    for (std::size_t j = kept; j > 0 && hits[i].t - hits[j - 1].t <= tolerance && !twin; --j) {
      twin = hits[j - 1].face == hits[i].face;
    }
    if (!twin) hits[kept++] = hits[i];
  }
  hits.resize(kept);
  return kept;
}

}  // namespace MATH
}  // namespace JEV
