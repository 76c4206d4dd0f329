#pragma once

#include <set>
#include <utility>

#include "jev3d/mesh/editMesh.h"

// Every directed side at most once: the live faces agree on their orientation.
inline bool consistentlyOriented(const JEV::MESH::editMesh& m) {
  std::set<std::pair<unsigned, unsigned>> sides;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned i = 0; i < m.fVNum(f); ++i)
      if (!sides.insert({m.fV(f, i), m.fV(f, (i + 1) % m.fVNum(f))}).second) return false;
  }
  return true;
}
