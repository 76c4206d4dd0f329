#pragma once

// Geometric and orientation checks shared by the topology operation tests.

#include <cmath>
#include <map>
#include <utility>

#include "jev3d/mesh/editMesh.h"

namespace topologyChecks {

using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;

inline double area(const editMesh& m, unsigned f) {
  double a = 0;
  for (unsigned t = 0; t < m.getTriangleNumFace(f); ++t) {
    unsigned i, j, k;
    m.getTriangle(f, t, i, j, k);
    a += 0.5 * p3::cross(m.vPos(j) - m.vPos(i), m.vPos(k) - m.vPos(i)).norm();
  }
  return a;
}

inline double totalArea(const editMesh& m) {
  double a = 0;
  for (unsigned f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f)) a += area(m, f);
  return a;
}

// Every directed side of the live faces is used once, and its reverse once too: a
// closed, consistently oriented, edge-manifold surface.
inline bool closedAndOriented(const editMesh& m) {
  std::map<std::pair<unsigned, unsigned>, int> uses;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned n = m.fVNum(f);
    for (unsigned i = 0; i < n; ++i) ++uses[{m.fV(f, i), m.fV(f, (i + 1) % n)}];
  }
  for (const auto& [side, count] : uses) {
    if (count != 1) return false;
    const auto back = uses.find({side.second, side.first});
    if (back == uses.end() || back->second != 1) return false;
  }
  return !uses.empty();
}

// No directed side is used twice: neighbouring faces agree on their turn.
inline bool consistentlyOriented(const editMesh& m) {
  std::map<std::pair<unsigned, unsigned>, int> uses;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned n = m.fVNum(f);
    for (unsigned i = 0; i < n; ++i)
      if (++uses[{m.fV(f, i), m.fV(f, (i + 1) % n)}] > 1) return false;
  }
  return true;
}

// What a caller of extrudeRegion on a list other than the face selection does: that
// call sets vertex bits without counting them, so selVn and the sums are recounted.
inline void recountVertexSelection(editMesh& m) {
  unsigned bits = 0;
  for (unsigned v = 0; v < m.vn(); ++v) bits += !m.isVertDeleted(v) && m.isVertSelected(v);
  m.setSelVn(bits);
  m.updateSelVertPosNorSum();
}

inline bool near(const p3& a, const p3& b, float tol = 1e-5f) { return (a - b).norm() <= tol; }

}  // namespace topologyChecks
