// Whole-mesh motions, winding reversal, flag replacement, the one-ring region and the
// edge collapse of editMesh.

#include <algorithm>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {

using MATH::matrix4;
using MATH::point3;

namespace {

// The matrix that carries normals of m: the inverse transpose of its linear part, with
// no translation, so that a row normal n becomes n · result.
matrix4<float> normalMatrix(const matrix4<float>& m) {
  matrix4<float> linear = m;
  linear[3] = linear[7] = linear[11] = 0.f;
  linear[12] = linear[13] = linear[14] = 0.f;
  linear[15] = 1.f;
  return linear.getInverse().getTranspose();
}

point3<float> carryNormal(const point3<float>& n, const matrix4<float>& nm) {
  point3<float> r(n.x * nm[0] + n.y * nm[4] + n.z * nm[8], n.x * nm[1] + n.y * nm[5] + n.z * nm[9],
                  n.x * nm[2] + n.y * nm[6] + n.z * nm[10]);
  return r.normalize();
}

}  // namespace

void editMesh::translate(const point3<float>& d) {
  for (unsigned int v = 0; v < vn(); ++v)
    if (!isVertDeleted(v)) vStore[v].pos += d;
  updateSelVertPosSum();
  updateBBox();
}

void editMesh::transform(const matrix4<float>& m) {
  const matrix4<float> nm = normalMatrix(m);
  for (unsigned int v = 0; v < vn(); ++v) {
    if (isVertDeleted(v)) continue;
    vStore[v].pos = vStore[v].pos * m;
    vStore[v].normal = carryNormal(vStore[v].normal, nm);
  }
  for (unsigned int f = 0; f < fn(); ++f)
    if (!isFaceDeleted(f)) fStore[f].normal = carryNormal(fStore[f].normal, nm);
  updateSelVertPosNorSum();
  updateBBox();
}

void editMesh::translateSelectedVertices(const point3<float>& d) {
  for (unsigned int v = 0; v < vn(); ++v)
    if (isVertSelected(v) && !isVertDeleted(v)) vStore[v].pos += d;
  updateSelVertPosSum();
  updateBBox();
}

void editMesh::transformSelectedVertices(const matrix4<float>& m) {
  const matrix4<float> nm = normalMatrix(m);
  for (unsigned int v = 0; v < vn(); ++v) {
    if (!isVertSelected(v) || isVertDeleted(v)) continue;
    vStore[v].pos = vStore[v].pos * m;
    vStore[v].normal = carryNormal(vStore[v].normal, nm);
  }
  updateSelVertPosNorSum();
  updateBBox();
}

void editMesh::reverseFaceOrder() {
  std::vector<unsigned char> reversed(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    face& r = fStore[f];
    if (isFaceDeleted(f) || r.fvNum < 2 || size_t(r.fvBase) + r.fvNum > fvStore.size()) continue;
    std::reverse(fvStore.begin() + r.fvBase, fvStore.begin() + r.fvBase + r.fvNum);
    r.normal = -r.normal;
    reversed[f] = 1;
  }
  for (vert& v : vStore) v.normal = -v.normal;
  selVertNor = -selVertNor;
  // An EF record names side (c - 1, c) by its corner c; after the reversal that side,
  // walked the other way, ends at corner (n - c) mod n.
  for (unsigned int e = 0; e < en(); ++e) {
    const edge& er = eStore[e];
    for (unsigned int k = 0; k < er.efNum && er.efBase + k < efn(); ++k) {
      edgeFaceRecord& rec = efStore[er.efBase + k];
      if (rec.faceId >= fn() || !reversed[rec.faceId]) continue;
      const unsigned int n = fStore[rec.faceId].fvNum;
      if (n <= 64 && rec.corner < n) rec.corner = (n - rec.corner) % n;
    }
  }
}

void editMesh::replaceAllFaceFlags(const std::vector<unsigned char>& flags) {
  fFlag.assign(flags.begin(), flags.begin() + std::min<size_t>(flags.size(), fn()));
  fFlag.resize(fn(), 0);
}

void editMesh::computeRegionOneRing(const std::vector<unsigned int>& faces,
                                    std::vector<unsigned int>& ring) const {
  // Marks on the vertices of the listed faces, then every face touching a mark: two
  // passes over the corners, no adjacency needed.
  std::vector<unsigned char> mark(vn(), 0);
  for (unsigned int f : faces) {
    if (f >= fn() || isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < fStore[f].fvNum; ++i) {
      const unsigned int v = fV(f, i);
      if (v < vn()) mark[v] = 1;
    }
  }
  ring.clear();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < fStore[f].fvNum; ++i) {
      const unsigned int v = fV(f, i);
      if (v < vn() && mark[v]) {
        ring.push_back(f);
        break;
      }
    }
  }
}

void editMesh::selectRegionOneRing() {
  std::vector<unsigned int> selected, ring;
  for (unsigned int f = 0; f < fn(); ++f)
    if (isFaceSelected(f) && !isFaceDeleted(f)) selected.push_back(f);
  computeRegionOneRing(selected, ring);
  for (unsigned int f : ring) selectFace(f);
}

namespace {

// Live neighbours of v through its live edges, sorted and without repeats.
std::vector<unsigned int> neighbours(const editMesh& m, unsigned int v) {
  std::vector<unsigned int> out;
  for (unsigned int i = 0; i < m.vENum(v); ++i) {
    const unsigned int e = m.vE(v, i);
    if (e >= m.en() || m.edgeIsDeleted(e)) continue;
    const unsigned int o = m.eV(e, 0) == v ? m.eV(e, 1) : m.eV(e, 0);
    if (o != v && o < m.vn() && !m.isVertDeleted(o)) out.push_back(o);
  }
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

// Live faces around v through VE and EF, sorted and without repeats.
std::vector<unsigned int> facesAround(const editMesh& m, unsigned int v) {
  std::vector<unsigned int> out;
  for (unsigned int i = 0; i < m.vENum(v); ++i) {
    const unsigned int e = m.vE(v, i);
    if (e >= m.en() || m.edgeIsDeleted(e) || m.E2EFBASE(e) + m.eFNum(e) > m.efn()) continue;
    for (unsigned int k = 0; k < m.eFNum(e); ++k) {
      const unsigned int f = m.eF(e, k);
      if (f < m.fn() && !m.isFaceDeleted(f)) out.push_back(f);
    }
  }
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

// The sorted corners of f with vertex `from` renamed `to`.
std::vector<unsigned int> renamedCorners(const editMesh& m, unsigned int f, unsigned int from,
                                         unsigned int to) {
  std::vector<unsigned int> c;
  for (unsigned int i = 0; i < m.fVNum(f); ++i) c.push_back(m.fV(f, i) == from ? to : m.fV(f, i));
  std::sort(c.begin(), c.end());
  return c;
}

bool onBorder(const editMesh& m, unsigned int v) {
  for (unsigned int i = 0; i < m.vENum(v); ++i) {
    const unsigned int e = m.vE(v, i);
    if (e < m.en() && !m.edgeIsDeleted(e) && m.eFNum(e) < 2) return true;
  }
  return false;
}

}  // namespace

bool editMesh::canCollapseEdge(unsigned int e) const {
  if (!isEdgeValid(e) || !isVEValid()) return false;
  const unsigned int a = eV(e, 0), b = eV(e, 1);
  if (a == b || !isVertexValid(a) || !isVertexValid(b)) return false;
  if (vStore[a].veBase + vStore[a].veNum > ven() || vStore[b].veBase + vStore[b].veNum > ven())
    return false;
  if (E2EFBASE(e) + eFNum(e) > efn()) return false;
  // Third corners of the live triangles on e.
  std::vector<unsigned int> apex;
  unsigned int liveFaces = 0;
  for (unsigned int k = 0; k < eFNum(e); ++k) {
    const unsigned int f = eF(e, k);
    if (f >= fn() || isFaceDeleted(f)) continue;
    ++liveFaces;
    if (fVNum(f) != 3) continue;
    for (unsigned int i = 0; i < 3; ++i)
      if (fV(f, i) != a && fV(f, i) != b) apex.push_back(fV(f, i));
  }
  if (liveFaces > 2) return false;
  if (liveFaces == 2 && onBorder(*this, a) && onBorder(*this, b)) return false;
  std::sort(apex.begin(), apex.end());
  apex.erase(std::unique(apex.begin(), apex.end()), apex.end());
  const std::vector<unsigned int> na = neighbours(*this, a), nb = neighbours(*this, b);
  std::vector<unsigned int> common;
  std::set_intersection(na.begin(), na.end(), nb.begin(), nb.end(), std::back_inserter(common));
  if (common != apex) return false;
  // A face around b must not land on a face around a (the two sides of a tetrahedron).
  const std::vector<unsigned int> fa = facesAround(*this, a), fb = facesAround(*this, b);
  std::vector<std::vector<unsigned int>> atA;
  for (unsigned int f : fa)
    if (!std::binary_search(fb.begin(), fb.end(), f)) atA.push_back(renamedCorners(*this, f, b, a));
  for (unsigned int f : fb) {
    if (std::binary_search(fa.begin(), fa.end(), f)) continue;
    if (std::find(atA.begin(), atA.end(), renamedCorners(*this, f, b, a)) != atA.end())
      return false;
  }
  return true;
}

bool editMesh::collapseEdge(unsigned int e, const point3<float>& pos) {
  if (!canCollapseEdge(e)) return false;
  const unsigned int a = eV(e, 0), b = eV(e, 1);
  std::vector<unsigned int> corners;
  for (unsigned int f : facesAround(*this, b)) {
    corners.clear();
    bool hasA = false;
    for (unsigned int i = 0; i < fVNum(f); ++i) hasA |= fV(f, i) == a;
    for (unsigned int i = 0; i < fVNum(f); ++i) {
      const unsigned int v = fV(f, i);
      if (v == b && hasA) continue;  // b merges into a, which the face already has
      corners.push_back(v == b ? a : v);
    }
    if (corners.size() < 3) {
      deleteFace(f);
      continue;
    }
    const bool selected = isFaceSelected(f);
    if (selected) deselectFace(f);
    modifyFace(f, corners.data(), unsigned(corners.size()));
    if (selected) selectFace(f);
  }
  deselectVert(b);
  setVertFlag(b, VERT_STATE_T::DELETED);
  ++delVn;
  setEdgeFlag(e, EDGE_STATE_T::DELETED);
  ++delEn;
  const bool aSelected = isVertSelected(a);
  if (aSelected) selVertSum -= vStore[a].pos;
  vStore[a].pos = pos;
  if (aSelected) selVertSum += pos;
  updateBBox();
  return true;
}

}  // namespace MESH
}  // namespace JEV
