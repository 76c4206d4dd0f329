#pragma once

// Measures of triMesh results shared by the scan mesh tests.

#include <set>
#include <tuple>

#include "jev3d/algo/postprocessing/triMesh.h"

namespace triMeshChecks {

using JEV::MESH::POSTPROCESSING::triMesh;
using p3 = JEV::MATH::point3<float>;

// Enclosed volume, positive when the faces turn outward.
inline double volume(const triMesh& m) {
  double v = 0;
  for (unsigned f = 0; f < m.fn(); ++f) {
    const p3 &a = m.vPos(f, 0), &b = m.vPos(f, 1), &c = m.vPos(f, 2);
    v += double(a.x) * (double(b.y) * c.z - double(b.z) * c.y) -
         double(a.y) * (double(b.x) * c.z - double(b.z) * c.x) +
         double(a.z) * (double(b.x) * c.y - double(b.y) * c.x);
  }
  return v / 6.0;
}

inline unsigned borderVertices(const triMesh& m) {
  std::vector<unsigned char> mask;
  m.markBorderVertex(mask);
  unsigned n = 0;
  for (unsigned char b : mask) n += b;
  return n;
}

// Distinct positions, by value, counted independently of any weld.
inline size_t distinctPositions(const triMesh& m) {
  std::set<std::tuple<float, float, float>> s;
  for (unsigned v = 0; v < m.vn(); ++v) s.insert({m.vPos(v).x, m.vPos(v).y, m.vPos(v).z});
  return s.size();
}

}  // namespace triMeshChecks
