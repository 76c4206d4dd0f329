#include "jev3d/algo/remeshing/internal/triangleCuts.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

void cutTriangles(const std::vector<unsigned int>& triangles,
                  const std::vector<unsigned int>& sideMid,
                  const std::vector<MATH::point3<float>>& positions, std::vector<unsigned int>& out,
                  std::vector<unsigned int>* source, const std::vector<unsigned char>* skip) {
  constexpr unsigned int NONE = 0xFFFFFFFFu;
  const size_t count = triangles.size() / 3;
  // Each point on a side adds one piece: reserve for them all at once.
  size_t pieces = 0;
  for (size_t t = 0; t < count; ++t)
    if (!(skip && (*skip)[t]))
      pieces += 1 + (sideMid[3 * t] != NONE) + (sideMid[3 * t + 1] != NONE) +
                (sideMid[3 * t + 2] != NONE);
  out.reserve(out.size() + 3 * pieces);
  if (source) source->reserve(source->size() + pieces);
  for (size_t t = 0; t < count; ++t) {
    if (skip && (*skip)[t]) continue;
    auto add = [&](unsigned int a, unsigned int b, unsigned int c) {
      out.insert(out.end(), {a, b, c});
      if (source) source->push_back(unsigned(t));
    };
    const unsigned int v[3] = {triangles[3 * t], triangles[3 * t + 1], triangles[3 * t + 2]};
    const unsigned int m[3] = {sideMid[3 * t], sideMid[3 * t + 1], sideMid[3 * t + 2]};
    const unsigned int cuts = (m[0] != NONE) + (m[1] != NONE) + (m[2] != NONE);
    if (cuts == 0) {
      add(v[0], v[1], v[2]);
    } else if (cuts == 3) {
      quarterTriangle(v, m, add);
    } else if (cuts == 1) {
      const unsigned int k = m[0] != NONE ? 0 : (m[1] != NONE ? 1 : 2);
      add(v[k], m[k], v[(k + 2) % 3]);
      add(m[k], v[(k + 1) % 3], v[(k + 2) % 3]);
    } else {
      // Side k stays whole; the corner triangle at v[k + 2] goes off and the quad left
      // is cut along its shorter diagonal.
      const unsigned int k = m[0] == NONE ? 0 : (m[1] == NONE ? 1 : 2);
      const unsigned int a = v[k], b = v[(k + 1) % 3], c = v[(k + 2) % 3];
      const unsigned int mb = m[(k + 1) % 3], ma = m[(k + 2) % 3];  // on b-c and c-a
      add(mb, c, ma);
      if ((positions[a] - positions[mb]).squaredNorm() <=
          (positions[b] - positions[ma]).squaredNorm()) {
        add(a, b, mb), add(a, mb, ma);
      } else {
        add(a, b, ma), add(b, mb, ma);
      }
    }
  }
}

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
