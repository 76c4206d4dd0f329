#pragma once

// Measures the remeshing tests share.

#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/mesh/editMesh.h"

namespace remeshingChecks {

using JEV::MESH::editMesh;

// Area of the live faces.
inline double area(const editMesh& m) {
  double a = 0;
  for (unsigned f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f)) a += JEV::MESH::ALGO::REMESHING::computeAreaFace(m, f);
  return a;
}

// Mean length of the live edges.
inline double meanLength(const editMesh& m) {
  double sum = 0;
  unsigned n = 0;
  for (unsigned e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e)) continue;
    sum += (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm();
    ++n;
  }
  return n ? sum / n : 0.0;
}

// Length of the edges with one face.
inline double borderLength(const editMesh& m) {
  double l = 0;
  for (unsigned e = 0; e < m.en(); ++e)
    if (!m.edgeIsDeleted(e) && m.eFNum(e) == 1)
      l += (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm();
  return l;
}

}  // namespace remeshingChecks
