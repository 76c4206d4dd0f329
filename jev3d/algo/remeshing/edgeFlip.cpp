#include "jev3d/algo/remeshing/edgeFlip.h"

#include <algorithm>

#include "jev3d/algo/remeshing/internal/triangleFlip.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

// Flips in target, which is m or, for a dry run, null.
unsigned int run(const editMesh& m, editMesh* target, const std::vector<unsigned int>& list,
                 unsigned int passes) {
  if (!m.isEVEFValid() || !m.isVEValid()) return 0;
  std::vector<unsigned int> all;
  const std::vector<unsigned int>* edges = &list;
  if (list.empty()) {
    for (unsigned int e = 0; e < m.en(); ++e)
      if (!m.edgeIsDeleted(e)) all.push_back(e);
    edges = &all;
  }
  std::vector<unsigned char> locked(m.vn(), 0), active(m.en(), 1);
  std::vector<unsigned int> valence(m.vn());
  for (unsigned int v = 0; v < m.vn(); ++v) valence[v] = m.vENum(v);
  unsigned int flips = 0;
  for (unsigned int pass = 0; pass < passes; ++pass) {
    unsigned int now = 0;
    for (unsigned int e : *edges) {
      if (e >= m.en() || m.edgeIsDeleted(e) || !active[e] || m.eFNum(e) != 2) continue;
      INTERNAL::edgeQuad q;
      if (!INTERNAL::findEdgeQuad(m, e, q)) continue;
      const unsigned int a = q.a, b = q.b, c = q.c, d = q.d;
      if (locked[a] || locked[b] || valence[a] < 6 || valence[b] < 6) continue;
      if (locked[c] || locked[d] || c == d) continue;
      if (m.findSharedEdgeFromVertices(c, d) != m.getMaxValue()) continue;
      if (valence[c] >= 7 || valence[d] >= 7) continue;
      // The edges of the two faces may not flip again in this run.
      for (unsigned int f : {q.f0, q.f1})
        for (unsigned int s = 0; s < 3; ++s) {
          const unsigned int x = m.fV(f, s), y = m.fV(f, (s + 1) % 3);
          const unsigned int side = m.findSharedEdgeFromVertices(x, y);
          if (side < active.size()) active[side] = 0;
        }
      if (target) INTERNAL::flipEdgeInPlace(*target, e, q);
      locked[a] = locked[b] = locked[c] = locked[d] = 1;
      --valence[a], --valence[b], ++valence[c], ++valence[d];
      ++now;
    }
    flips += now;
    if (!now) break;
  }
  return flips;
}

}  // namespace

unsigned int edgeFlip::computeEdgeFlipping(editMesh& mesh, const std::vector<unsigned int>& edges,
                                           unsigned int passes) {
  return run(mesh, &mesh, edges, passes);
}

unsigned int edgeFlip::computeEdgeFlipping(const editMesh& mesh,
                                           const std::vector<unsigned int>& edges,
                                           unsigned int passes) {
  // The dry run follows the same locks and valences, which are all a flip leaves behind
  // that the later candidates read: the mesh itself is not needed in its flipped form.
  return run(mesh, nullptr, edges, passes);
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
