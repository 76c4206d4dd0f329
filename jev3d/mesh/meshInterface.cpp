#include "jev3d/mesh/meshInterface.h"

#include <algorithm>
#include <cstdint>

#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {

meshInterface::~meshInterface() = default;

void meshInterface::markBorderVertex(std::vector<unsigned char>& mask) const {
  mask.assign(vn(), 0);
  // Every side of every live face as a pair of vertex ids, smaller first; a pair seen
  // once is a border edge.
  std::vector<uint64_t> sides;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const unsigned int n = f2vNum(f);
    for (unsigned int i = 0; i < n; ++i) {
      const uint64_t a = fV(f, i), b = fV(f, (i + 1) % n);
      if (a == b) continue;
      sides.push_back(a < b ? (a << 32 | b) : (b << 32 | a));
    }
  }
  std::sort(sides.begin(), sides.end());
  for (size_t i = 0; i < sides.size();) {
    size_t j = i + 1;
    while (j < sides.size() && sides[j] == sides[i]) ++j;
    if (j - i == 1) {
      const uint64_t a = sides[i] >> 32, b = sides[i] & 0xFFFFFFFFu;
      if (a < mask.size()) mask[a] = 1;
      if (b < mask.size()) mask[b] = 1;
    }
    i = j;
  }
}

void meshInterface::copyTo(meshInterface& target) const {
  std::vector<unsigned int> map;
  copyTo(target, map);
}

void meshInterface::copyTo(meshInterface& target, std::vector<unsigned int>& map) const {
  target.clear();
  map.assign(vn(), 0xFFFFFFFFu);
  unsigned int live = 0;
  for (unsigned int v = 0; v < vn(); ++v)
    if (!isVertDeleted(v)) map[v] = live++;
  target.vertexReserve(live);
  for (unsigned int v = 0; v < vn(); ++v)
    if (!isVertDeleted(v)) target.addVertex(vPos(v));
  if (hasVN()) {
    target.vertexNormalResize(live);
    for (unsigned int v = 0; v < vn(); ++v)
      if (!isVertDeleted(v)) target.vNor(map[v]) = vNor(v);
  }
  if (hasVC()) {
    target.vertexColorResize(live);
    for (unsigned int v = 0; v < vn(); ++v)
      if (!isVertDeleted(v)) target.vCol(map[v]) = vCol(v);
  }
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const unsigned int n = f2vNum(f);
    ids.resize(n);
    bool valid = n >= 3;
    for (unsigned int i = 0; i < n && valid; ++i) {
      const unsigned int v = fV(f, i);
      valid = v < vn() && map[v] != 0xFFFFFFFFu;
      if (valid) ids[i] = map[v];
    }
    if (valid) target.addFace(ids.data(), n);
  }
}

void meshInterface::taubinSmoothing(unsigned int iterations, float lambda, float mu,
                                    bool smoothBorder, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  if (!hasFaceFlags()) computeFaceFlags();
  const unsigned int n = vn();
  // Neighbours in compressed rows: one entry at each end of every face side, so that the
  // weights are those of the library's Laplacian.
  auto forEachSide = [&](auto visit) {
    for (unsigned int f = 0; f < fn(); ++f) {
      if (isFaceDeleted(f)) continue;
      const unsigned int k = f2vNum(f);
      for (unsigned int i = 0; i < k; ++i) {
        const unsigned int a = fV(f, i), b = fV(f, i + 1 == k ? 0 : i + 1);
        if (a < n && b < n && a != b) visit(a, b);  // a corner naming no vertex adds nothing
      }
    }
  };
  std::vector<unsigned int> start(n + 1, 0), neighbours;
  forEachSide([&](unsigned int a, unsigned int b) { ++start[a + 1], ++start[b + 1]; });
  for (unsigned int v = 0; v < n; ++v) start[v + 1] += start[v];
  neighbours.resize(start[n]);
  std::vector<unsigned int> fill(start.begin(), start.end() - 1);
  forEachSide([&](unsigned int a, unsigned int b) {
    neighbours[fill[a]++] = b;
    neighbours[fill[b]++] = a;
  });
  std::vector<unsigned char> pinned;
  if (smoothBorder)
    pinned.assign(n, 0);
  else
    markBorderVertex(pinned);

  std::vector<MATH::point3<float>> p(n), next(n);
  for (unsigned int v = 0; v < n; ++v) p[v] = vPos(v);
  const unsigned int steps = 2 * iterations;
  for (unsigned int step = 0; step < steps; ++step) {
    const float factor = step % 2 == 0 ? lambda : mu;
    for (unsigned int v = 0; v < n; ++v) {
      const unsigned int first = start[v], last = start[v + 1];
      if (pinned[v] || first == last) {
        next[v] = p[v];
        continue;
      }
      MATH::point3<float> sum(0.f, 0.f, 0.f);
      for (unsigned int k = first; k < last; ++k) sum += p[neighbours[k]];
      next[v] = p[v] + (sum / float(last - first) - p[v]) * factor;
    }
    p.swap(next);
    if (cb) cb->setValue(float((step + 1) * 100 / steps));
  }
  if (steps > 0)
    for (unsigned int v = 0; v < n; ++v) vPos(v) = p[v];
  clearAxisAlignedBoundingBoxRef();
  clearAxisAlignedBoundingBoxVert();
  clearFaceNormal();
  clearVertexNormal();
  clearSpatialIndexing();
  if (cb) cb->setValue(100.f);
}

}  // namespace MESH
}  // namespace JEV
