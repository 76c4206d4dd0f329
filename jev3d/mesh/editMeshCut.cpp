#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/internal/topologyTools.h"

namespace JEV {
namespace MESH {

using MATH::point3;
using namespace INTERNAL;

namespace {

uint64_t directedKey(uint32_t a, uint32_t b) { return uint64_t(a) << 32 | b; }

// Rewrites the EF record of face `from` on the side that ended at corner `oldCorner` to
// face `to` and corner `newCorner`.
void moveSideRecord(editMesh& m, uint32_t e, uint32_t from, uint32_t oldCorner, uint32_t to,
                    uint32_t newCorner) {
  if (e == m.getMaxValue()) return;
  for (uint32_t k = 0; k < m.eFNum(e); ++k) {
    editMesh::edgeFaceRecord& r = m.E2F(e, k);
    if (r.faceId != from || r.corner != (oldCorner & 63u)) continue;
    r = editMesh::edgeFaceRecord(to, newCorner & 63u);
    return;
  }
}

// Splits f between corners i < j (not neighbours): f keeps i..j in its own range, a
// clone of f at the end takes j..i. With patch, EF and VE follow.
uint32_t splitAtCorners(editMesh& m, uint32_t f, uint32_t i, uint32_t j, bool patch) {
  const uint32_t n = m.fVNum(f);
  std::vector<uint32_t> c(n);
  m.getFV(f, c.data());
  std::vector<uint32_t> sideEdge;
  if (patch)
    for (uint32_t s = 0; s < n; ++s)
      sideEdge.push_back(m.findSharedEdgeFromVertices(c[s], c[(s + 1) % n]));

  const bool selected = m.isFaceSelected(f);
  const uint32_t g = m.cloneFace(f, true);
  std::vector<uint32_t> first(c.begin() + i, c.begin() + j + 1);
  std::vector<uint32_t> second(c.begin() + j, c.end());
  second.insert(second.end(), c.begin(), c.begin() + i + 1);
  m.modifyFace(f, first.data(), uint32_t(first.size()));
  m.modifyFace(g, second.data(), uint32_t(second.size()));
  if (selected) {
    m.setSelFvn(m.getSelFvn() - n + uint32_t(first.size()));
    m.selectFace(g);
  }
  if (!patch) return g;

  const uint32_t len1 = uint32_t(first.size()), len2 = uint32_t(second.size());
  for (uint32_t k = 0; k + 1 < len1; ++k)
    moveSideRecord(m, sideEdge[i + k], f, (i + k + 1) % n, f, k + 1);
  for (uint32_t k = 0; k + 1 < len2; ++k)
    moveSideRecord(m, sideEdge[(j + k) % n], f, (j + k + 1) % n, g, k + 1);
  // the diagonal: in f it runs c[j] -> c[i] (corner 0), in g c[i] -> c[j] (corner 0)
  const uint32_t d = m.addEdge(c[i], c[j], f, g);
  m.addEdgesToVE({c[i], c[j]}, {{d}, {d}});
  return g;
}

}  // namespace

unsigned int editMesh::splitFace(unsigned int f, unsigned int a, unsigned int b) {
  checkMeshState();
  if (!isFaceValid(f)) return maxValue;
  const unsigned int n = fVNum(f);
  unsigned int i = findCornerInFace(f, a), j = findCornerInFace(f, b);
  if (i == maxValue || j == maxValue || i == j) return maxValue;
  if (i > j) std::swap(i, j);
  if (j - i == 1 || (i == 0 && j == n - 1)) return maxValue;
  const bool patch = isEVEFValid() && isVEValid();
  const unsigned int g = splitAtCorners(*this, f, i, j, patch);
  invalidateRenderData();
  return g;
}

void editMesh::loopCut(std::vector<unsigned int>& faces, std::vector<unsigned int>& edges) {
  ensureAdjacency(*this);
  // V grows by one vertex per listed edge, so that edges[i] has vertex firstNew + i. An id
  // naming no live edge, or an edge listed before, gets a deleted vertex in its place.
  const uint32_t firstNew = vn();
  std::map<uint64_t, uint32_t> edgeOf, midpoint;
  expandVertexArray(unsigned(edges.size()));
  for (unsigned int e : edges) {
    const bool live = isEdgeValid(e);
    const uint32_t a = live ? eV(e, 0) : 0, b = live ? eV(e, 1) : 0;
    vert r;
    if (live) r.pos = (vPos(a) + vPos(b)) * 0.5f;
    const uint32_t m = addVertex(r);
    if (!live || midpoint.count(directedKey(a, b))) {
      setVertFlag(m, VERT_STATE_T::DELETED);
      ++delVn;
      continue;
    }
    edgeOf[directedKey(a, b)] = edgeOf[directedKey(b, a)] = e;
    midpoint[directedKey(a, b)] = midpoint[directedKey(b, a)] = m;
  }

  // only the listed faces take the midpoints
  std::vector<unsigned int> list;
  std::vector<uint8_t> listed(fn(), 0);
  for (unsigned int f : faces)
    if (isFaceValid(f) && !listed[f]) listed[f] = 1, list.push_back(f);
  size_t reserve = 0;
  for (unsigned int f : list) reserve += 2 * fVNum(f) + 5;
  expandFVArray(unsigned(reserve));
  std::vector<uint32_t> ring;
  for (unsigned int f : list) {
    const uint32_t n = fVNum(f);
    ring.clear();
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t a = fV(f, i), b = fV(f, (i + 1) % n);
      ring.push_back(a);
      const auto it = midpoint.find(directedKey(a, b));
      if (it != midpoint.end()) ring.push_back(it->second);
    }
    if (isFaceSelected(f)) selFvn += unsigned(ring.size()) - n;
    makePolyFace(f, ring);
  }
  // The rewritten faces no longer match EF: rebuild, so that splitFace patches the
  // stores it finds and the new diagonals exist to be selected.
  closeTopologyEdit(*this);

  std::vector<uint32_t> at;
  for (unsigned int f : list) {
    at.clear();
    for (uint32_t i = 0; i < fVNum(f); ++i)
      if (fV(f, i) >= firstNew) at.push_back(fV(f, i));
    if (at.size() != 2) continue;
    if (splitFace(f, at[0], at[1]) == maxValue) continue;
    selectSharedEdges(at[0], at[1]);
  }
  closeTopologyEdit(*this);
}

void editMesh::loopCut(unsigned int e) {
  ensureAdjacency(*this);
  if (!isEdgeValid(e)) return;
  std::vector<unsigned int> faces, edges{e};
  std::vector<uint8_t> seen(fn(), 0);
  bool closed = false;
  for (uint32_t side = 0; side < 2 && side < eFNum(e) && !closed; ++side) {
    uint32_t cur = e, f = eF(e, side);
    while (f < fn() && !isFaceDeleted(f) && fVNum(f) == 4 && !seen[f]) {
      seen[f] = 1;
      faces.push_back(f);
      const uint32_t across = nextNextEdge(f, cur);
      if (across == maxValue) break;
      if (across == e) {
        closed = true;
        break;
      }
      edges.push_back(across);
      if (liveFacesOnEdge(*this, across) != 2) break;
      cur = across;
      f = maxValue;
      for (uint32_t k = 0; k < eFNum(across); ++k) {
        const uint32_t g = eF(across, k);
        if (g != faces.back() && g < fn() && !isFaceDeleted(g)) f = g;
      }
    }
  }
  if (faces.empty()) return;
  // the faces where the ring stops take the midpoint too, so that no crack opens
  for (unsigned int c : edges)
    for (uint32_t k = 0; k < eFNum(c); ++k) {
      const uint32_t g = eF(c, k);
      if (g < fn() && !isFaceDeleted(g) && !seen[g]) seen[g] = 1, faces.push_back(g);
    }
  loopCut(faces, edges);
}

void editMesh::loopCut(unsigned int a, unsigned int b) {
  ensureAdjacency(*this);
  const unsigned int e = findSharedEdgeFromVertices(a, b);
  if (e != maxValue) loopCut(e);
}

void editMesh::mirrorMesh(unsigned int f, const point3<float>& n) {
  mirrorMesh(std::vector<unsigned int>{f}, n);
}

void editMesh::mirrorMesh(const std::vector<unsigned int>& faces, const point3<float>& n) {
  checkMeshState();
  point3<float> centre;
  unsigned int count = 0;
  for (unsigned int f : faces) {
    if (!isFaceValid(f) || fVNum(f) == 0) continue;
    centre += faceCentroid(*this, f);
    ++count;
  }
  // exact, not normalizeFast: its last digits would show as a gap between the halves
  const point3<float> axis = n.getNormalized();
  if (count == 0 || axis.squaredNorm() == 0.f) return;
  centre *= 1.0f / float(count);

  // Vertex v's copy is v + nv and face f's is f + nf. Deleted elements are copied too,
  // still deleted, so that the ids stay parallel.
  const uint32_t nv = vn(), nf = fn();
  expandVertexArray(nv);
  for (uint32_t v = 0; v < nv; ++v) {
    vert r = V(v);
    r.pos -= axis * (2.f * ((r.pos - centre) * axis));
    r.normal = -r.normal;
    addVertex(r);
    if (isVertDeleted(v)) {
      setVertFlag(nv + v, VERT_STATE_T::DELETED);
      ++delVn;
    }
  }
  size_t corners = 0;
  for (uint32_t f = 0; f < nf; ++f) corners += fVNum(f);
  expandFaceArray(nf);
  expandFVArray(unsigned(corners));
  std::vector<uint32_t> ids;
  for (uint32_t f = 0; f < nf; ++f) {
    const uint32_t k = fVNum(f);
    // reflection reverses the turn of the corners: list them backwards
    ids.resize(k);
    for (uint32_t i = 0; i < k; ++i) {
      const uint32_t v = fV(f, (k - i) % k);
      ids[i] = v < nv ? v + nv : v;
    }
    const uint32_t g = addFace(ids.data(), k);
    fNor(g) = -fNor(f);
    if (isFaceDeleted(f)) {
      setFaceFlag(g, FACE_STATE_T::DELETED);
      ++delFn;
      delFvn += k;
    }
  }
  closeTopologyEdit(*this);
}

void editMesh::flatten(const std::vector<unsigned int>& faces, const point3<float>& n) {
  checkMeshState();
  std::vector<unsigned int> list;
  for (unsigned int f : faces)
    if (isFaceValid(f)) list.push_back(f);
  if (list.empty()) return;
  point3<float> ref, meanNormal;
  for (unsigned int f : list) {
    // a face without corners has no mean: it counts as the largest float on each axis
    const float big = std::numeric_limits<float>::max();
    ref += fVNum(f) == 0 ? point3<float>(big, big, big) : faceCentroid(*this, f);
    if (fVNum(f) >= 3)
      meanNormal += point3<float>::cross(F2VPOS(f, 1) - F2VPOS(f, 0), F2VPOS(f, 2) - F2VPOS(f, 1));
  }
  ref *= 1.0f / float(list.size());
  const point3<float> axis = (n.squaredNorm() > 0.f ? n : meanNormal).getNormalized();
  if (axis.squaredNorm() == 0.f) return;

  std::vector<uint8_t> moved(vn(), 0);
  std::vector<unsigned int> verts;
  for (unsigned int f : list)
    for (uint32_t i = 0; i < fVNum(f); ++i) {
      const uint32_t v = fV(f, i);
      if (v < vn() && !moved[v]) moved[v] = 1, verts.push_back(v);
    }
  for (unsigned int v : verts) vPos(v) -= axis * ((vPos(v) - ref) * axis);

  if (isEVEFValid() && isVEValid()) {
    std::vector<uint8_t> faceDone(fn(), 0), vertDone(vn(), 0);
    std::vector<unsigned int> touched;
    for (unsigned int v : verts)
      for (unsigned int f : getAdiacentFaces(v))
        if (!faceDone[f]) faceDone[f] = 1, touched.push_back(f);
    for (unsigned int f : touched) computeNormalizedFaceNormal(f);
    for (unsigned int f : touched)
      for (uint32_t i = 0; i < fVNum(f); ++i) {
        const uint32_t v = fV(f, i);
        if (!vertDone[v]) vertDone[v] = 1, computeNormalizedVertexNormal(v);
      }
  } else {
    computeNormalizedNormals();
  }
  updateSelVertPosNorSum();
  invalidateRenderData();
  updateBBox();
}

}  // namespace MESH
}  // namespace JEV
