#include <algorithm>
#include <cmath>
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
  const uint32_t firstNew = vn();
  std::map<uint64_t, uint32_t> midpoint;
  expandVertexArray(unsigned(edges.size()));
  for (unsigned int e : edges) {
    if (!isEdgeValid(e)) continue;
    const uint32_t a = eV(e, 0), b = eV(e, 1);
    if (midpoint.count(directedKey(a, b))) continue;
    point3<float> nor = vNor(a) + vNor(b);
    normalizeFast(nor);
    const uint32_t m = addVertex((vPos(a) + vPos(b)) * 0.5f, nor);
    midpoint[directedKey(a, b)] = m;
    midpoint[directedKey(b, a)] = m;
  }
  if (midpoint.empty()) return;

  std::vector<unsigned int> list;
  for (unsigned int f : faces)
    if (isFaceValid(f)) list.push_back(f);
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
  std::vector<uint8_t> done(fn(), 0);
  size_t reserve = 0;
  for (unsigned int f : list) reserve += 2 * fVNum(f) + 5;
  expandFVArray(unsigned(reserve));

  std::vector<uint32_t> ring;
  auto insertMidpoints = [&](uint32_t f) {
    done[f] = 1;
    const uint32_t n = fVNum(f);
    ring.clear();
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t a = fV(f, i), b = fV(f, (i + 1) % n);
      ring.push_back(a);
      const auto it = midpoint.find(directedKey(a, b));
      if (it != midpoint.end()) ring.push_back(it->second);
    }
    if (ring.size() == n) return;
    const bool selected = isFaceSelected(f);
    if (selected) selFvn += unsigned(ring.size()) - n;
    makePolyFace(f, ring);
  };
  for (unsigned int f : list) insertMidpoints(f);
  // faces outside the list on a cut edge take the midpoint too
  for (unsigned int e : edges) {
    if (!isEdgeValid(e)) continue;
    for (uint32_t k = 0; k < eFNum(e); ++k) {
      const uint32_t g = eF(e, k);
      if (g < fn() && !done[g] && !isFaceDeleted(g)) insertMidpoints(g);
    }
  }

  std::vector<std::pair<uint32_t, uint32_t>> cuts;
  for (unsigned int f : list) {
    std::vector<uint32_t> at;
    for (uint32_t i = 0; i < fVNum(f); ++i)
      if (fV(f, i) >= firstNew) at.push_back(i);
    if (at.size() != 2 || at[1] - at[0] == 1 || (at[0] == 0 && at[1] == fVNum(f) - 1)) continue;
    cuts.emplace_back(fV(f, at[0]), fV(f, at[1]));
    splitAtCorners(*this, f, at[0], at[1], false);
  }
  closeTopologyEdit(*this);
  clearGeomSelectionState();
  for (const auto& c : cuts) {
    const unsigned int e = findSharedEdgeFromVertices(c.first, c.second);
    if (e != maxValue) selectEdge(e);
  }
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
  computeBBox();
  const float eps = 1e-5f * (getBBoxMax() - getBBoxMin()).norm();

  // reflected copies; vertices in the plane are shared by both halves
  const uint32_t nv = vn(), nf = fn();
  std::vector<uint32_t> copy(nv, NO_ID);
  std::vector<uint8_t> inPlane(nv, 0);
  expandVertexArray(nv);
  for (uint32_t v = 0; v < nv; ++v) {
    if (isVertDeleted(v)) continue;
    const float d = (vPos(v) - centre) * axis;
    if (std::fabs(d) <= eps) {
      inPlane[v] = 1;
      copy[v] = v;
      continue;
    }
    vert r = V(v);
    r.pos -= axis * (2.f * d);
    r.normal = -r.normal;
    copy[v] = addVertex(r);
  }
  expandFaceArray(nf);
  std::vector<uint32_t> ids;
  for (uint32_t f = 0; f < nf; ++f) {
    if (isFaceDeleted(f)) continue;
    const uint32_t k = fVNum(f);
    bool flat = k > 0, valid = true;
    for (uint32_t i = 0; i < k; ++i) {
      const uint32_t v = fV(f, i);
      valid = valid && v < nv && copy[v] != NO_ID;
      flat = flat && valid && inPlane[v];
    }
    if (flat) {  // lies in the plane: it would sit between the halves
      deleteFace(f);
      continue;
    }
    if (!valid || k == 0) continue;
    // reflection reverses the turn of the corners: list them backwards
    ids.resize(k);
    for (uint32_t i = 0; i < k; ++i) ids[i] = copy[fV(f, (k - i) % k)];
    const uint32_t g = addPolyFace(ids);
    fNor(g) = -fNor(f);
  }
  closeTopologyEdit(*this);
  updateSelVertPosNorSum();
}

void editMesh::flatten(const std::vector<unsigned int>& faces, const point3<float>& n) {
  checkMeshState();
  std::vector<unsigned int> list;
  for (unsigned int f : faces)
    if (isFaceValid(f) && fVNum(f) > 0) list.push_back(f);
  if (list.empty()) return;
  point3<float> ref, meanNormal;
  for (unsigned int f : list) {
    ref += faceCentroid(*this, f);
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
