#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/system/callBack.h"

// The passes of the umbrella Laplacian, written once for every mesh form. A mesh is read
// through an access type giving vn(), fn(), faceDeleted(f), corners(f), corner(f, i) and
// pos(v).
namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {
namespace INTERNAL {

// The progress rule of the passes: report done * 100 / total when the integer part of
// the reporter's value differs from it.
inline void reportShare(SYSTEM::callBack* cb, uint64_t done, uint64_t total) {
  if (!cb || total == 0) return;
  const int percent = int(done * 100 / total);
  if (int(cb->value.cV()) != percent) cb->setValue(float(percent));
}

// The live faces of a mesh packed for repeated steps: their corners in one array and
// the positions in another, four floats a point (the last unused) so that a point is one
// vector register. Lane by lane the arithmetic is that of the points, in side order.
class packedMesh {
 public:
  typedef float lanes __attribute__((vector_size(16)));
  static MATH::point3<float> point(const lanes& p) { return MATH::point3<float>(p[0], p[1], p[2]); }

  template <class Access>
  explicit packedMesh(const Access& m) : points(m.vn()) {
    const unsigned int faces = m.fn(), verts = m.vn();
    // Triangles whose corners all name vertices take the fast loop; anything else (a
    // polygon, a corner out of range) sends the whole mesh through the side-by-side one.
    for (unsigned int f = 0; f < faces && triangles; ++f) {
      if (m.faceDeleted(f)) continue;
      triangles = m.corners(f) == 3;
      for (unsigned int i = 0; i < 3 && triangles; ++i) triangles = m.corner(f, i) < verts;
    }
    for (unsigned int f = 0; f < faces; ++f) {
      if (m.faceDeleted(f)) continue;
      if (!triangles) start.push_back(unsigned(corners.size()));
      for (unsigned int i = 0; i < m.corners(f); ++i) corners.push_back(m.corner(f, i));
    }
    start.push_back(unsigned(corners.size()));
    for (unsigned int v = 0; v < verts; ++v) {
      const MATH::point3<float>& p = m.pos(v);
      points[v] = lanes{p.x, p.y, p.z, 0.f};
    }
  }

  unsigned int vn() const { return unsigned(points.size()); }
  MATH::point3<float> pos(unsigned int v) const { return point(points[v]); }

  // Sums (and with count, counts) of one pass over the packed faces: each side a-b adds b
  // to a's sum and a to b's.
  void accumulate(std::vector<lanes>& sum, unsigned int* count, SYSTEM::callBack* cb) const {
    const unsigned int verts = vn();
    if (triangles) {
      const unsigned int faces = unsigned(corners.size() / 3);
      for (unsigned int f = 0; f < faces; ++f) {
        if (cb) reportShare(cb, f, faces);
        const unsigned int a = corners[3 * f], b = corners[3 * f + 1], c = corners[3 * f + 2];
        const lanes pa = points[a], pb = points[b], pc = points[c];
        // Each corner takes its two sides in side order: a gets b then c, b gets a then c,
        // c gets b then a.
        sum[a] = sum[a] + pb + pc;
        sum[b] = sum[b] + pa + pc;
        sum[c] = sum[c] + pb + pa;
        if (count) count[a] += 2, count[b] += 2, count[c] += 2;
      }
      return;
    }
    const unsigned int faces = unsigned(start.size() - 1);
    for (unsigned int f = 0; f < faces; ++f) {
      if (cb) reportShare(cb, f, faces);
      const unsigned int first = start[f], k = start[f + 1] - first;
      for (unsigned int j = 0; j < k; ++j) {
        const unsigned int a = corners[first + j], b = corners[first + (j + 1 == k ? 0 : j + 1)];
        if (a >= verts || b >= verts) continue;  // a corner naming no vertex adds nothing
        sum[a] += points[b];
        sum[b] += points[a];
        if (count) ++count[a], ++count[b];
      }
    }
  }

  // iterations steps: a fresh pass, then (position + sum) / count for every vertex that
  // pinned (empty: none) leaves free. Counts do not depend on positions, so they are
  // taken once, and dividing by a count is multiplying by its inverse, as the point
  // division does.
  void iterate(unsigned int iterations, const std::vector<unsigned char>& pinned,
               SYSTEM::callBack* cb) {
    if (iterations == 0) return;
    const unsigned int verts = vn();
    std::vector<lanes> sum(verts, lanes{0.f, 0.f, 0.f, 0.f});
    std::vector<unsigned int> count(verts, 1u);
    accumulate(sum, count.data(), nullptr);
    sum.assign(verts, lanes{0.f, 0.f, 0.f, 0.f});
    std::vector<float> inverse(verts);
    for (unsigned int v = 0; v < verts; ++v)
      inverse[v] = pinned.empty() || !pinned[v] ? 1.f / float(count[v]) : 0.f;
    for (unsigned int it = 0; it < iterations; ++it) {
      if (cb) cb->setValue(0.f);
      accumulate(sum, nullptr, cb);
      if (cb) cb->setValue(100.f);
      for (unsigned int v = 0; v < verts; ++v) {
        if (cb) reportShare(cb, v, verts);
        if (inverse[v] != 0.f) points[v] = (points[v] + sum[v]) * inverse[v];
        sum[v] = lanes{0.f, 0.f, 0.f, 0.f};  // ready for the next pass
      }
    }
  }

 private:
  bool triangles = true;
  std::vector<unsigned int> corners;
  std::vector<unsigned int> start;  // each face's first corner and the end; unused for triangles
  std::vector<lanes> points;
};

}  // namespace INTERNAL
}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
