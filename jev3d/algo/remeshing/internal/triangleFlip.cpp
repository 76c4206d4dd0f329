#include "jev3d/algo/remeshing/internal/triangleFlip.h"

#include <algorithm>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

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

}  // namespace

bool findEdgeQuad(const editMesh& m, unsigned int e, edgeQuad& q) {
  if (e >= m.en() || m.edgeIsDeleted(e) || m.eFNum(e) != 2) return false;
  q.f0 = m.eF(e, 0), q.f1 = m.eF(e, 1);
  if (q.f0 == q.f1 || m.isFaceDeleted(q.f0) || m.isFaceDeleted(q.f1)) return false;
  if (m.fVNum(q.f0) != 3 || m.fVNum(q.f1) != 3) return false;
  // The corner where e ends in f0 gives its direction there: a -> b.
  const unsigned int k = m.E2F(e, 0).corner;
  q.b = m.fV(q.f0, k), q.a = m.fV(q.f0, (k + 2) % 3), q.c = m.fV(q.f0, (k + 1) % 3);
  const unsigned int ib = cornerOf(m, q.f1, q.b);
  if (ib == 3 || m.fV(q.f1, (ib + 1) % 3) != q.a) return false;  // f1 must run b -> a
  q.d = m.fV(q.f1, (ib + 2) % 3);
  return true;
}

// f0 (a, b, c) turns into (a, d, c) and f1 (b, a, d) into (b, c, d), each corner slot
// kept but one, so only the EF records of e, a-d and b-c need new faces or corners.
void flipEdgeInPlace(editMesh& m, unsigned int e, const edgeQuad& q) {
  const unsigned int f0 = q.f0, f1 = q.f1, a = q.a, b = q.b, c = q.c, d = q.d;
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

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
