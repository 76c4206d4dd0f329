#include "jev3d/algo/measurement/intersectionComputation.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <utility>

#include "jev3d/algo/measurement/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/voxelizationFunctor.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {
namespace VOXEL {

using INTERNAL::onTriangle;
using INTERNAL::triangleFans;
using INTERNAL::triangleNormal;
using INTERNAL::walkToNearest;
using MATH::point3;
using REMESHING::volumeDescriptor;

namespace {

constexpr float MAX_T = MATH::mathBase<float>::MAX_T();

void report(SYSTEM::callBack* cb, float percent) {
  if (cb) cb->setValue(percent);
}

// Whether every corner index of every triangle names a point.
bool usableSoup(const std::vector<point3<float>>& points, const std::vector<int>& triangles) {
  if (points.empty() || triangles.size() < 3 || triangles.size() % 3 != 0) return false;
  return std::all_of(triangles.begin(), triangles.end(),
                     [&](int i) { return i >= 0 && std::size_t(i) < points.size(); });
}

// The inclusive run of voxel indices whose centres lie within [lo, hi] (voxel coordinates)
// along an axis of `dim` voxels; false when it is empty.
bool voxelRun(double lo, double hi, uint64_t dim, uint64_t& first, uint64_t& last) {
  const double a = std::max(0.0, std::ceil(lo)), b = std::min(double(dim) - 1.0, std::floor(hi));
  if (!(a <= b)) return false;
  first = uint64_t(a);
  last = uint64_t(b);
  return true;
}

}  // namespace

void voxelModel::clear() {
  points.clear();
  sourceVertex.clear();
  triangles.clear();
  sourceFace.clear();
  volume.clear();
  cpt.clear();
  sdf.clear();
}

void intersectionComputation::editMeshToPointTri(const meshInterface& mesh,
                                                 std::vector<point3<float>>& points,
                                                 std::vector<int>& triangles,
                                                 std::vector<unsigned int>* sourceVertex,
                                                 std::vector<unsigned int>* sourceFace) {
  points.clear();
  triangles.clear();
  if (sourceVertex) sourceVertex->clear();
  if (sourceFace) sourceFace->clear();
  const unsigned int vn = mesh.vn();
  std::vector<int> renumbered(vn, -1);
  const auto id = [&](unsigned int v) {
    if (renumbered[v] < 0) {
      renumbered[v] = int(points.size());
      points.push_back(mesh.vPos(v));
      if (sourceVertex) sourceVertex->push_back(v);
    }
    return renumbered[v];
  };
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    const unsigned int n = mesh.f2vNum(f);
    bool usable = n >= 3;
    for (unsigned int i = 0; i < n && usable; ++i)
      usable = mesh.fV(f, i) < vn && !mesh.isVertDeleted(mesh.fV(f, i));
    if (!usable) continue;
    for (unsigned int i = 1; i + 1 < n; ++i) {
      triangles.insert(triangles.end(),
                       {id(mesh.fV(f, 0)), id(mesh.fV(f, i)), id(mesh.fV(f, i + 1))});
      if (sourceFace) sourceFace->push_back(f);
    }
  }
}

bool intersectionComputation::convertToVolume(const std::vector<point3<float>>& points,
                                              const std::vector<int>& triangles,
                                              unsigned int resolution, volumeDescriptor& volume,
                                              SYSTEM::callBack* cb) {
  return REMESHING::voxelizationFunctor()(points, triangles, resolution, volume, cb);
}

bool intersectionComputation::computeClosestPointTransform(const std::vector<point3<float>>& points,
                                                           const std::vector<int>& triangles,
                                                           const volumeDescriptor& frame,
                                                           closestPointTransform& cpt, float band,
                                                           SYSTEM::callBack* cb) {
  report(cb, 1.0f);
  cpt.clear();
  if (frame.dimX == 0 || frame.dimY == 0 || frame.dimZ == 0 || !(frame.scale > 0.0) ||
      !usableSoup(points, triangles)) {
    report(cb, 100.0f);
    return false;
  }
  cpt.dimX = frame.dimX, cpt.dimY = frame.dimY, cpt.dimZ = frame.dimZ;
  cpt.minimum = frame.minimum;
  cpt.scale = frame.scale;
  const uint64_t count = frame.dimX * frame.dimY * frame.dimZ;
  cpt.distances.assign(count, MAX_T);
  cpt.triangles.assign(count, closestPointTransform::NO_TRIANGLE);
  cpt.closest.assign(count, point3<float>(MAX_T, MAX_T, MAX_T));

  // Exact near the surface: each triangle offers its closest point to the voxels in its
  // box grown by the band. A voxel within the band of the surface lies in the grown box of
  // its closest triangle, so it ends with the exact answer.
  const unsigned int triangleCount = unsigned(triangles.size() / 3);
  const double reach = std::max(0.0f, band);
  for (unsigned int t = 0; t < triangleCount; ++t) {
    point3<double> lo = frame.cvt(points[std::size_t(triangles[3 * std::size_t(t)])]), hi = lo;
    for (int c = 1; c < 3; ++c) {
      const point3<double> q = frame.cvt(points[std::size_t(triangles[3 * std::size_t(t) + c])]);
      lo = point3<double>(std::min(lo.x, q.x), std::min(lo.y, q.y), std::min(lo.z, q.z));
      hi = point3<double>(std::max(hi.x, q.x), std::max(hi.y, q.y), std::max(hi.z, q.z));
    }
    uint64_t i0, i1, j0, j1, k0, k1;
    if (!voxelRun(lo.x - reach, hi.x + reach, cpt.dimX, i0, i1) ||
        !voxelRun(lo.y - reach, hi.y + reach, cpt.dimY, j0, j1) ||
        !voxelRun(lo.z - reach, hi.z + reach, cpt.dimZ, k0, k1))
      continue;
    for (uint64_t k = k0; k <= k1; ++k)
      for (uint64_t j = j0; j <= j1; ++j)
        for (uint64_t i = i0; i <= i1; ++i) {
          const point3<float> c = cpt.center(i, j, k);
          const point3<float> q = onTriangle(points, triangles, t, c);
          const float d = (c - q).norm();
          const uint64_t at = cpt.index(i, j, k);
          if (d < cpt.distances[at]) {
            cpt.distances[at] = d;
            cpt.triangles[at] = t;
            cpt.closest[at] = q;
          }
        }
    if (cb && (t & 0x3FFF) == 0) report(cb, 1.0f + 39.0f * float(t) / float(triangleCount));
  }

  // Outward, nearest first: a settled voxel offers its triangle to its six neighbours,
  // which keep it when it brings them nearer; a voxel being settled walks from the
  // triangle it holds to the nearest one around it. Each voxel is settled once, so the
  // cost follows the grid, not the grid times the triangles.
  using entry = std::pair<float, uint64_t>;
  std::priority_queue<entry, std::vector<entry>, std::greater<entry>> front;
  for (uint64_t at = 0; at < count; ++at)
    if (cpt.triangles[at] != closestPointTransform::NO_TRIANGLE)
      front.push(entry(cpt.distances[at], at));
  if (front.empty()) {
    // The grid lies off the surface's band entirely: seed it from the voxel nearest to
    // the first triangle's corner.
    uint64_t i, j, k;
    frame.clamp(frame.cvt(points[std::size_t(triangles[0])]), i, j, k);
    const uint64_t at = cpt.index(i, j, k);
    cpt.closest[at] = onTriangle(points, triangles, 0, cpt.center(i, j, k));
    cpt.distances[at] = (cpt.center(i, j, k) - cpt.closest[at]).norm();
    cpt.triangles[at] = 0;
    front.push(entry(cpt.distances[at], at));
  }
  const triangleFans fans(points.size(), triangles);
  std::vector<unsigned char> done(count, 0);
  uint64_t settled = 0;
  while (!front.empty()) {
    const entry top = front.top();
    front.pop();
    const uint64_t at = top.second;
    if (done[at] || top.first > cpt.distances[at]) continue;  // settled, or offered better
    done[at] = 1;
    const uint64_t i = at % cpt.dimX, j = (at / cpt.dimX) % cpt.dimY,
                   k = at / (cpt.dimX * cpt.dimY);
    // The triangle a neighbour handed over lies near the right one: walk there.
    cpt.triangles[at] = walkToNearest(points, triangles, fans, cpt.triangles[at],
                                      cpt.center(i, j, k), cpt.closest[at], cpt.distances[at]);
    const unsigned int t = cpt.triangles[at];
    const auto offer = [&](uint64_t ni, uint64_t nj, uint64_t nk) {
      const uint64_t n = cpt.index(ni, nj, nk);
      if (done[n] || cpt.triangles[n] == t) return;
      const point3<float> c = cpt.center(ni, nj, nk);
      const point3<float> q = onTriangle(points, triangles, t, c);
      const float d = (c - q).norm();
      if (d < cpt.distances[n]) {
        cpt.distances[n] = d;
        cpt.triangles[n] = t;
        cpt.closest[n] = q;
        front.push(entry(d, n));
      }
    };
    if (i > 0) offer(i - 1, j, k);
    if (i + 1 < cpt.dimX) offer(i + 1, j, k);
    if (j > 0) offer(i, j - 1, k);
    if (j + 1 < cpt.dimY) offer(i, j + 1, k);
    if (k > 0) offer(i, j, k - 1);
    if (k + 1 < cpt.dimZ) offer(i, j, k + 1);
    if (cb && (++settled & 0xFFFF) == 0)
      report(cb, 40.0f + 59.0f * float(std::min<uint64_t>(settled, count)) / float(count));
  }
  report(cb, 100.0f);
  return true;
}

bool intersectionComputation::convertToCPT(const std::vector<point3<float>>& points,
                                           const std::vector<int>& triangles,
                                           const volumeDescriptor& volume,
                                           closestPointTransform& cpt, SYSTEM::callBack* cb) {
  return computeClosestPointTransform(points, triangles, volume, cpt, 2.0f, cb);
}

bool intersectionComputation::convertToCPT(voxelModel& model, SYSTEM::callBack* cb) {
  return convertToCPT(model.points, model.triangles, model.volume, model.cpt, cb);
}

bool intersectionComputation::convertToSDF(const std::vector<point3<float>>& points,
                                           const std::vector<int>& triangles,
                                           const volumeDescriptor& volume,
                                           const closestPointTransform& cpt,
                                           std::vector<float>& sdf) {
  sdf.clear();
  if (volume.isEmpty() || cpt.isEmpty() || volume.dimX != cpt.dimX || volume.dimY != cpt.dimY ||
      volume.dimZ != cpt.dimZ)
    return false;
  sdf = cpt.distances;
  for (uint64_t k = 0; k < cpt.dimZ; ++k)
    for (uint64_t j = 0; j < cpt.dimY; ++j)
      for (uint64_t i = 0; i < cpt.dimX; ++i) {
        const uint64_t at = cpt.index(i, j, k);
        const unsigned char value = volume.at(i, j, k);
        const unsigned int t = cpt.triangles[at];
        bool inside = value == REMESHING::VOXEL_INSIDE;
        if (value == REMESHING::VOXEL_ON_SURFACE && t != closestPointTransform::NO_TRIANGLE)
          inside =
              (cpt.center(i, j, k) - cpt.closest[at]) * triangleNormal(points, triangles, t) < 0.0f;
        if (inside && sdf[at] < MAX_T) sdf[at] = -sdf[at];
      }
  return true;
}

bool intersectionComputation::convertToSDF(voxelModel& model) {
  return convertToSDF(model.points, model.triangles, model.volume, model.cpt, model.sdf);
}

bool intersectionComputation::prepare(const meshInterface& mesh, unsigned int resolution,
                                      voxelModel& model, SYSTEM::callBack* cb) {
  report(cb, 1.0f);
  model.clear();
  editMeshToPointTri(mesh, model.points, model.triangles, &model.sourceVertex, &model.sourceFace);
  const bool ok = convertToVolume(model.points, model.triangles, resolution, model.volume) &&
                  convertToCPT(model) && convertToSDF(model);
  if (!ok) model.clear();
  report(cb, 100.0f);
  return ok;
}

float intersectionComputation::signedDistance(const voxelModel& model, const point3<float>& p) {
  const closestPointTransform& cpt = model.cpt;
  uint64_t i, j, k;
  if (cpt.isEmpty() || !model.volume.getVoxelIndex(model.volume.cvt(p), i, j, k)) return MAX_T;
  // The triangles named around p's voxel; the nearest of them to p itself.
  float best = MAX_T;
  unsigned int bestTriangle = closestPointTransform::NO_TRIANGLE;
  point3<float> bestPoint;
  const uint64_t i0 = i ? i - 1 : 0, j0 = j ? j - 1 : 0, k0 = k ? k - 1 : 0;
  for (uint64_t nk = k0; nk <= std::min(k + 1, cpt.dimZ - 1); ++nk)
    for (uint64_t nj = j0; nj <= std::min(j + 1, cpt.dimY - 1); ++nj)
      for (uint64_t ni = i0; ni <= std::min(i + 1, cpt.dimX - 1); ++ni) {
        const unsigned int t = cpt.triangles[cpt.index(ni, nj, nk)];
        if (t == closestPointTransform::NO_TRIANGLE || t == bestTriangle) continue;
        const point3<float> q = onTriangle(model.points, model.triangles, t, p);
        const float d = (p - q).norm();
        if (d < best) best = d, bestTriangle = t, bestPoint = q;
      }
  if (bestTriangle == closestPointTransform::NO_TRIANGLE) return MAX_T;
  const unsigned char value = model.volume.at(i, j, k);
  bool inside = value == REMESHING::VOXEL_INSIDE;
  if (value == REMESHING::VOXEL_ON_SURFACE)
    inside = (p - bestPoint) * triangleNormal(model.points, model.triangles, bestTriangle) < 0.0f;
  return inside && best > 0.0f ? -best : best;
}

bool intersectionComputation::compute(const voxelModel& a, const MATH::matrix4<float>& ma,
                                      const voxelModel& b, const MATH::matrix4<float>& mb,
                                      intersectionDescriptor& result, SYSTEM::callBack* cb) {
  report(cb, 1.0f);
  result.clear();
  if (a.isEmpty() || b.isEmpty()) {
    report(cb, 100.0f);
    return false;
  }
  // Each model's points into the other's frame: out of its own placement, into the
  // inverse of the other's.
  const auto measure = [](const voxelModel& from, const MATH::matrix4<float>& relative,
                          const voxelModel& to, std::vector<float>& distances, unsigned int& inside,
                          float& depth) {
    distances.resize(from.points.size());
    for (std::size_t v = 0; v < from.points.size(); ++v) {
      distances[v] = signedDistance(to, from.points[v] * relative);
      if (distances[v] < 0.0f) {
        ++inside;
        depth = std::min(depth, distances[v]);
      }
    }
  };
  measure(a, ma * mb.getInverse(), b, result.firstDistances, result.firstInsideSecond,
          result.firstDepth);
  report(cb, 50.0f);
  measure(b, mb * ma.getInverse(), a, result.secondDistances, result.secondInsideFirst,
          result.secondDepth);
  result.intersects = result.firstInsideSecond > 0 || result.secondInsideFirst > 0;
  report(cb, 100.0f);
  return true;
}

}  // namespace VOXEL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
