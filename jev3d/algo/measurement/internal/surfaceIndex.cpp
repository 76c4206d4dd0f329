#include "jev3d/algo/measurement/internal/surfaceIndex.h"

#include <algorithm>

#include "jev3d/math/mathBase.h"
#include "jev3d/math/triangleQueries.h"

#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {
namespace INTERNAL {

void surfaceIndex::build(const meshInterface& mesh) {
  corners.clear();
  faces.clear();
  const unsigned int vn = mesh.vn();
  const auto usable = [&](unsigned int v) { return v < vn && !mesh.isVertDeleted(v); };
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    const unsigned int n = mesh.f2vNum(f);
    if (n < 3) continue;
    bool ok = true;
    for (unsigned int i = 0; i < n && ok; ++i) ok = usable(mesh.fV(f, i));
    if (!ok) continue;
    for (unsigned int i = 1; i + 1 < n; ++i) {
      corners.insert(corners.end(), {mesh.fV(f, 0), mesh.fV(f, i), mesh.fV(f, i + 1)});
      faces.push_back(f);
    }
  }
  // Positions are read through the interface: copy them out once for the tree.
  positions.resize(vn);
  for (unsigned int v = 0; v < vn; ++v) positions[v] = mesh.vPos(v);
  tree.build(positions.data(), positions.size(), corners.data(), faces.size(), 8, faces.data());
}

bool liveBox(const meshInterface& mesh, MATH::point3<float>& lo, MATH::point3<float>& hi) {
  bool any = false;
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (mesh.isVertDeleted(v)) continue;
    const MATH::point3<float>& p = mesh.vPos(v);
    if (!any) {
      lo = hi = p;
      any = true;
      continue;
    }
    lo = MATH::point3<float>(std::min(lo.x, p.x), std::min(lo.y, p.y), std::min(lo.z, p.z));
    hi = MATH::point3<float>(std::max(hi.x, p.x), std::max(hi.y, p.y), std::max(hi.z, p.z));
  }
  return any;
}

closestWalker::closestWalker(const surfaceIndex& idx, float maxDistance)
    : index(idx),
      maxSquared(maxDistance >= MATH::mathBase<float>::MAX_T() ? MATH::mathBase<float>::MAX_T()
                                                               : maxDistance * maxDistance) {}

bool closestWalker::find(const MATH::point3<float>& p, MATH::closestPointHit& hit) {
  if (hasLast) {
    // The triangle found last is in the tree at exactly this distance, computed the same
    // way, so the bounded search finds it or something closer.
    const unsigned int* c = &index.corners[3 * std::size_t(lastTriangle)];
    float u, v;
    const MATH::point3<float> q = MATH::closestPointOnTriangle(
        p, index.positions[c[0]], index.positions[c[1]], index.positions[c[2]], u, v);
    const float bound = (p - q).squaredNorm();
    if (bound <= maxSquared && index.tree.closestPoint(p, bound, hit)) {
      last = hit.point, lastTriangle = hit.triangle;
      return true;
    }
  }
  if (!index.tree.closestPoint(p, maxSquared, hit)) return false;
  last = hit.point, lastTriangle = hit.triangle;
  hasLast = true;
  return true;
}

bool closestWalker::within(const MATH::point3<float>& p, float reach) {
  const float reachSquared = reach * reach;
  if (hasLast && (p - last).squaredNorm() <= reachSquared) return true;
  MATH::closestPointHit hit;
  if (!index.tree.closestPoint(p, std::min(reachSquared, maxSquared), hit)) return false;
  last = hit.point, lastTriangle = hit.triangle;
  hasLast = true;
  return true;
}

}  // namespace INTERNAL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
