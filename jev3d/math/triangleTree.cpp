#include "jev3d/math/triangleTree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "jev3d/math/internal/bvhBuilder.h"
#include "jev3d/math/internal/bvhTraversal.h"
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
  triangles.clear();
  triangleIds.clear();
  faceOfTriangle.clear();
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

  triangles.resize(ids.size());
  triangleIds.swap(ids);
  faceOfTriangle.resize(triangleIds.size());
  for (std::size_t i = 0; i < triangleIds.size(); ++i) {
    const unsigned int t = triangleIds[i];
    const unsigned int* corner = indices + 3 * std::size_t(t);
    triangles[i] = {positions[corner[0]], positions[corner[1]], positions[corner[2]]};
    faceOfTriangle[i] = faceIds ? faceIds[t] : t;
  }
}

bool triangleTree::bounds(point3<float>& lo, point3<float>& hi) const {
  if (nodes.empty()) return false;
  return INTERNAL::rootBounds(nodes, lo, hi), true;
}

bool triangleTree::closestPoint(const point3<float>& p, float maxSquaredDistance,
                                closestPointHit& hit) const {
  if (nodes.empty() || !(maxSquaredDistance >= 0.0f) || !INTERNAL::isFinite(p)) return false;
  float best = maxSquaredDistance;
  const std::size_t none = triangles.size();
  std::size_t bestSlot = none;
  point3<float> bestPoint;
  float bestU = 0.0f, bestV = 0.0f;
  INTERNAL::bvhNearestFirst(
      nodes, best, [&](const bvhNode& n, float* key) { INTERNAL::boxSquaredDistances(n, p, key); },
      [&](std::uint32_t first, std::uint32_t count, float& bound) {
        for (std::uint32_t i = first; i < first + count; ++i) {
          const triangle& tri = triangles[i];
          float u, v;
          const point3<float> q = closestPointOnTriangle(p, tri.a, tri.b, tri.c, u, v);
          const float d = (p - q).squaredNorm();
          // The bound itself counts as within until something is found.
          if (d < bound || (d == bound && bestSlot == none)) {
            bound = d, bestSlot = i, bestPoint = q, bestU = u, bestV = v;
          }
        }
      });
  if (bestSlot == none) return false;
  hit.face = faceOfTriangle[bestSlot];
  hit.triangle = triangleIds[bestSlot];
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
  float best = tMax;
  const std::size_t none = triangles.size();
  std::size_t bestSlot = none;
  float bestU = 0.0f, bestV = 0.0f;
  INTERNAL::bvhNearestFirst(
      nodes, best, [&](const bvhNode& n, float* key) { boxTest.entries(n, best, key); },
      [&](std::uint32_t first, std::uint32_t count, float& bound) {
        for (std::uint32_t i = first; i < first + count; ++i) {
          const triangle& tri = triangles[i];
          float t, u, v;
          if (intersectRayTriangle(origin, direction, tri.a, tri.b, tri.c, bound, t, u, v) &&
              (t < bound || bestSlot == none)) {
            bound = t, bestSlot = i, bestU = u, bestV = v;
          }
        }
      });
  if (bestSlot == none) return false;
  hit.face = faceOfTriangle[bestSlot];
  hit.triangle = triangleIds[bestSlot];
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
  INTERNAL::bvhAllWithin(
      nodes, tMax, [&](const bvhNode& n, float* key) { boxTest.entries(n, tMax, key); },
      [&](std::uint32_t first, std::uint32_t count) {
        for (std::uint32_t i = first; i < first + count; ++i) {
          const triangle& tri = triangles[i];
          rayHit h;
          if (intersectRayTriangle(origin, direction, tri.a, tri.b, tri.c, tMax, h.t, h.u, h.v)) {
            h.face = faceOfTriangle[i];
            h.triangle = triangleIds[i];
            hits.push_back(h);
          }
        }
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
