#include "jev3d/algo/remeshing/edgeFlip.h"

#include <algorithm>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

// Index of v among the three corners of f, or 3.
unsigned int cornerOf(const editMesh& m, unsigned int f, unsigned int v) {
  for (unsigned int i = 0; i < 3; ++i)
    if (m.fV(f, i) == v) return i;
  return 3;
}

// Points the EF record of face `from` on edge e at face `to`, whose side ends at corner c.
void moveRecord(editMesh& m, unsigned int e, unsigned int from, unsigned int to, unsigned int c) {
  for (unsigned int i = 0; i < m.eFNum(e); ++i)
    if (m.E2F(e, i).faceId == from) {
      m.E2F(e, i) = editMesh::edgeFaceRecord(to, c);
      return;
    }
}

void dropFromVE(editMesh& m, unsigned int v, unsigned int e) {
  editMesh::vert& r = m.V(v);
  for (unsigned int i = 0; i < r.veNum; ++i)
    if (m.VE(r.veBase + i) == e) {
      m.VE(r.veBase + i) = m.VE(r.veBase + r.veNum - 1);
      --r.veNum;
      m.setDelVen(m.getDelVen() + 1);
      return;
    }
}

// Edge e on triangles f0 (where it runs a -> b) and f1 becomes the diagonal c-d of their
// quad: f0 (a, b, c) turns into (a, d, c) and f1 (b, a, d) into (b, c, d), each corner
// slot kept but one, so only the EF records of e, a-d and b-c need new faces or corners.
void flip(editMesh& m, unsigned int e, unsigned int f0, unsigned int f1, unsigned int a,
          unsigned int b, unsigned int c, unsigned int d) {
  const unsigned int i = cornerOf(m, f0, a), j = cornerOf(m, f1, b);
  const unsigned int ad = m.findSharedEdgeFromVertices(a, d);
  const unsigned int bc = m.findSharedEdgeFromVertices(b, c);
  m.F2W(f0, (i + 1) % 3).vertId = d;
  m.F2W(f1, (j + 1) % 3).vertId = c;
  moveRecord(m, ad, f1, f0, (i + 1) % 3);
  moveRecord(m, bc, f0, f1, (j + 1) % 3);
  // e: d -> c in f0 ends at corner i + 2, c -> d in f1 at corner j + 2.
  m.E2F(e, 0) = editMesh::edgeFaceRecord(f0, (i + 2) % 3);
  m.E2F(e, 1) = editMesh::edgeFaceRecord(f1, (j + 2) % 3);
  m.E(e).v[0] = std::min(c, d);
  m.E(e).v[1] = std::max(c, d);
  dropFromVE(m, a, e);
  dropFromVE(m, b, e);
  m.addEdgesToVE({c, d}, {{e}, {e}});
  m.computeNormalizedFaceNormal(f0);
  m.computeNormalizedFaceNormal(f1);
}

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
      const unsigned int f0 = m.eF(e, 0), f1 = m.eF(e, 1);
      // A flip needs two triangles.
      if (f0 == f1 || m.fVNum(f0) != 3 || m.fVNum(f1) != 3) continue;
      if (m.isFaceDeleted(f0) || m.isFaceDeleted(f1)) continue;
      // The corner where e ends in f0 gives its direction there: a -> b.
      const unsigned int k = m.E2F(e, 0).corner;
      const unsigned int b = m.fV(f0, k), a = m.fV(f0, (k + 2) % 3), c = m.fV(f0, (k + 1) % 3);
      if (locked[a] || locked[b] || valence[a] < 6 || valence[b] < 6) continue;
      const unsigned int ib = cornerOf(m, f1, b);
      if (ib == 3 || m.fV(f1, (ib + 1) % 3) != a) continue;  // f1 must run b -> a
      const unsigned int d = m.fV(f1, (ib + 2) % 3);
      if (locked[c] || locked[d] || c == d) continue;
      if (m.findSharedEdgeFromVertices(c, d) != m.getMaxValue()) continue;
      if (valence[c] >= 7 || valence[d] >= 7) continue;
      // The edges of the two faces may not flip again in this run.
      for (unsigned int f : {f0, f1})
        for (unsigned int s = 0; s < 3; ++s) {
          const unsigned int x = m.fV(f, s), y = m.fV(f, (s + 1) % 3);
          const unsigned int side = m.findSharedEdgeFromVertices(x, y);
          if (side < active.size()) active[side] = 0;
        }
      if (target) flip(*target, e, f0, f1, a, b, c, d);
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
