#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/system/callBack.h"

// The umbrella Laplacian written once over a mesh access type, so that every mesh form
// runs the same arithmetic. An access type gives vn(), fn(), faceDeleted(f),
// corners(f), corner(f, i) and pos(v) (a reference).
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

// Fills an already sized descriptor (resize(vn)) from the live faces' sides.
template <class Access>
void accumulateSides(const Access& m, laplacianDescriptor& d, SYSTEM::callBack* cb) {
  const unsigned int faces = m.fn(), verts = m.vn();
  MATH::point3<float>* sum = d.sum.data();
  unsigned int* count = d.count.data();
  for (unsigned int f = 0; f < faces; ++f) {
    if (cb) reportShare(cb, f, faces);
    if (m.faceDeleted(f)) continue;
    const unsigned int k = m.corners(f);
    for (unsigned int j = 0; j < k; ++j) {
      const unsigned int a = m.corner(f, j), b = m.corner(f, j + 1 == k ? 0 : j + 1);
      if (a >= verts || b >= verts) continue;  // a corner naming no vertex adds nothing
      sum[a] += m.pos(b);
      sum[b] += m.pos(a);
      ++count[a];
      ++count[b];
    }
  }
}

// One Jacobi step from a filled descriptor; pinned[v] != 0 keeps v (an empty list pins
// nothing).
template <class Access>
void relax(Access& m, const laplacianDescriptor& d, const std::vector<unsigned char>& pinned,
           SYSTEM::callBack* cb) {
  const unsigned int verts = m.vn();
  const bool anyPinned = !pinned.empty();
  for (unsigned int v = 0; v < verts; ++v) {
    if (cb) reportShare(cb, v, verts);
    if (d.count[v] == 0 || (anyPinned && pinned[v])) continue;
    MATH::point3<float>& p = m.pos(v);
    p = (p + d.sum[v]) / float(d.count[v]);
  }
}

// One pass as the descriptor form runs it, into d whatever it held: 0, the faces, 100.
template <class Access>
void fillDescriptor(const Access& m, laplacianDescriptor& d, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  d.resize(m.vn());
  accumulateSides(m, d, cb);
  if (cb) cb->setValue(100.f);
}

// The iterated form between the border mask and the cache clearing. Each step fills a
// fresh descriptor; its memory is reused, which changes nothing seen.
template <class Access>
void iterate(Access& m, unsigned int iterations, const std::vector<unsigned char>& pinned,
             SYSTEM::callBack* cb) {
  laplacianDescriptor d;
  for (unsigned int it = 0; it < iterations; ++it) {
    fillDescriptor(m, d, cb);
    relax(m, d, pinned, cb);
  }
}

}  // namespace INTERNAL
}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
