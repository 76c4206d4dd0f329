#include "jev3d/mesh/editMesh.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>

namespace JEV {
namespace MESH {

using MATH::point3;

namespace {
constexpr uint32_t NONE = 0xFFFFFFFFu;
}

void editMesh::getFV(unsigned int f, unsigned int* out) const {
  const face& r = fStore[f];
  for (unsigned int i = 0; i < r.fvNum; ++i) out[i] = fvStore[r.fvBase + i].vertId;
}

void editMesh::getEF(unsigned int e, unsigned int* out) const {
  const edge& r = eStore[e];
  for (unsigned int i = 0; i < r.efNum; ++i) out[i] = efStore[r.efBase + i].faceId;
}

void editMesh::getVE(unsigned int v, unsigned int* out) const {
  const vert& r = vStore[v];
  for (unsigned int i = 0; i < r.veNum; ++i) out[i] = veStore[r.veBase + i];
}

unsigned int editMesh::addVertex() { return addVertex(vert()); }

unsigned int editMesh::addVertex(const point3<float>& pos) {
  vert v;
  v.pos = pos;
  return addVertex(v);
}

unsigned int editMesh::addVertex(const point3<float>& pos, const point3<float>& normal) {
  vert v;
  v.pos = pos;
  v.normal = normal;
  return addVertex(v);
}

unsigned int editMesh::addVertex(float x, float y, float z) {
  return addVertex(point3<float>(x, y, z));
}

unsigned int editMesh::addVertex(const vert& v) {
  vStore.push_back(v);
  growFlags(vFlag, vn());
  return vn() - 1;
}

unsigned int editMesh::addEdge() {
  eStore.emplace_back();
  growFlags(eFlag, en());
  return en() - 1;
}

unsigned int editMesh::addEdge(unsigned int a, unsigned int b) {
  eStore.emplace_back(a, b);
  growFlags(eFlag, en());
  return en() - 1;
}

unsigned int editMesh::addEdge(unsigned int a, unsigned int b, unsigned int f0, unsigned int f1) {
  edge r(a, b);
  r.efBase = efn();
  r.efNum = 2;
  const unsigned int c0 = findCornerInFace(f0, a);
  const unsigned int c1 = findCornerInFace(f1, b);
  efStore.emplace_back(f0, c0 & 63u);
  efStore.emplace_back(f1, c1 & 63u);
  eStore.push_back(r);
  growFlags(eFlag, en());
  return en() - 1;
}

unsigned int editMesh::newFace() {
  face r;
  r.fvBase = fvn();
  fStore.push_back(r);
  growFlags(fFlag, fn());
  return fn() - 1;
}

void editMesh::appendCorners(unsigned int f, const unsigned int* ids, unsigned int n,
                             bool reserve) {
  if (reserve) fvStore.reserve(fvStore.size() + n);
  face& r = fStore[f];
  r.fvBase = fvn();
  r.fvNum = n;
  for (unsigned int i = 0; i < n; ++i) {
    faceWEdgeRecord w;
    w.faceId = f;
    w.vertId = ids[i];
    w.user = 0;
    w.localIndex = 0;
    w.zero = 0;
    fvStore.push_back(w);
  }
}

unsigned int editMesh::addFace() { return newFace(); }

unsigned int editMesh::addFace(const unsigned int* ids, unsigned int n, bool reserve) {
  const unsigned int f = newFace();
  appendCorners(f, ids, n, reserve);
  return f;
}

unsigned int editMesh::addTriFace(unsigned int a, unsigned int b, unsigned int c, bool reserve) {
  const unsigned int ids[3] = {a, b, c};
  return addFace(ids, 3, reserve);
}

unsigned int editMesh::addQuadFace(unsigned int a, unsigned int b, unsigned int c, unsigned int d,
                                   bool reserve) {
  const unsigned int ids[4] = {a, b, c, d};
  return addFace(ids, 4, reserve);
}

unsigned int editMesh::addPolyFace(const std::vector<unsigned int>& ids, bool reserve) {
  if (ids.empty()) return fn() == 0 ? maxValue : fn() - 1;
  return addFace(ids.data(), unsigned(ids.size()), reserve);
}

void editMesh::makeTriFace(unsigned int f, unsigned int a, unsigned int b, unsigned int c) {
  const unsigned int ids[3] = {a, b, c};
  delFvn += fStore[f].fvNum;
  appendCorners(f, ids, 3, false);
}

void editMesh::makeQuadFace(unsigned int f, unsigned int a, unsigned int b, unsigned int c,
                            unsigned int d) {
  const unsigned int ids[4] = {a, b, c, d};
  delFvn += fStore[f].fvNum;
  appendCorners(f, ids, 4, false);
}

void editMesh::makePolyFace(unsigned int f, const std::vector<unsigned int>& ids) {
  delFvn += fStore[f].fvNum;
  appendCorners(f, ids.data(), unsigned(ids.size()), false);
}

void editMesh::modifyFace(unsigned int f, const unsigned int* ids, unsigned int n, bool reserve) {
  face& r = fStore[f];
  if (n <= r.fvNum) {
    for (unsigned int i = 0; i < n; ++i) {
      fvStore[r.fvBase + i].vertId = ids[i];
      fvStore[r.fvBase + i].faceId = f;
    }
    delFvn += r.fvNum - n;
    r.fvNum = n;
    return;
  }
  delFvn += r.fvNum;
  appendCorners(f, ids, n, reserve);
}

unsigned int editMesh::cloneFace(unsigned int f, bool reserve) {
  const unsigned int n = fStore[f].fvNum;
  std::vector<unsigned int> ids(n);
  if (n) getFV(f, ids.data());
  const unsigned int g = addFace(ids.data(), n, reserve);
  fStore[g].normal = fStore[f].normal;
  return g;
}

namespace {
template <class T>
void cloneRange(const std::vector<T>& s, unsigned int first, unsigned int count,
                std::vector<T>& out) {
  out.clear();
  if (first >= s.size()) return;
  const size_t end = std::min(s.size(), size_t(first) + count);
  out.assign(s.begin() + first, s.begin() + end);
}
template <class S>
void clearStore(S& s, bool release) {
  if (release) {
    S().swap(s);
  } else {
    s.clear();
  }
}
}  // namespace

void editMesh::cloneVertexData(unsigned int first, unsigned int count,
                               std::vector<vert>& out) const {
  cloneRange(vStore, first, count, out);
}
void editMesh::cloneEdgeData(unsigned int first, unsigned int count, std::vector<edge>& out) const {
  cloneRange(eStore, first, count, out);
}
void editMesh::cloneFaceData(unsigned int first, unsigned int count, std::vector<face>& out) const {
  cloneRange(fStore, first, count, out);
}
void editMesh::cloneFVData(unsigned int first, unsigned int count,
                           std::vector<faceWEdgeRecord>& out) const {
  cloneRange(fvStore, first, count, out);
}

void editMesh::checkMeshState() {
  computeVertexFlags();
  computeEdgeFlags();
  computeFaceFlags();
}

void editMesh::clearVertexBuffers(bool release) {
  clearStore(vStore, release);
  clearStore(veStore, release);
  clearStore(uvStore, release);
  delVn = delVen = 0;
  veInvalid = true;
}

void editMesh::clearEdgeBuffers(bool release) {
  clearStore(eStore, release);
  clearStore(efStore, release);
  clearStore(edgeColors, release);
  delEn = delEfn = 0;
  selEn = 0;
  evefInvalid = true;
}

void editMesh::clearFaceBuffers(bool release) {
  clearStore(fStore, release);
  clearStore(fvStore, release);
  clearStore(faceColors, release);
  delFn = delFvn = 0;
}

void editMesh::clearAllFlags(bool release) {
  clearStore(vFlag, release);
  clearStore(eFlag, release);
  clearStore(fFlag, release);
  selFn = selEn = selVn = selFvn = 0;
  selVertSum.setZero();
  selVertNor.setZero();
  maxSelFaceSize = 0;
}

void editMesh::clear(bool release) {
  clearVertexBuffers(release);
  clearEdgeBuffers(release);
  clearFaceBuffers(release);
  clearAllFlags(release);
  clearStore(adjacentFaces, release);
  auxFloat.items.clear();
  auxUint.items.clear();
  auxUchar.items.clear();
  hasVertexColors = false;
  bboxDirty = true;
}

void editMesh::nullify() {
  clear(true);
  trees.faceTree.reset();
  trees.vertexTree.reset();
}

namespace {
// Keeps the records whose flag lacks the dead bit, in order, with their flags and (when
// sized like the store) their colours; map gets old id -> new id, NONE for dropped ones.
template <class R>
void squeezeStore(std::vector<R>& store, std::vector<unsigned char>& flags, unsigned char dead,
                  std::vector<CORE::color>* colors, std::vector<unsigned int>& map) {
  const size_t n = store.size();
  const bool withColors = colors && colors->size() == n;
  map.assign(n, NONE);
  std::vector<R> kept;
  std::vector<unsigned char> keptFlags;
  std::vector<CORE::color> keptColors;
  kept.reserve(n);
  keptFlags.reserve(n);
  for (size_t i = 0; i < n; ++i) {
    if (flags[i] & dead) continue;
    map[i] = unsigned(kept.size());
    kept.push_back(store[i]);
    keptFlags.push_back(flags[i]);
    if (withColors) keptColors.push_back((*colors)[i]);
  }
  store.swap(kept);
  flags.swap(keptFlags);
  if (withColors) colors->swap(keptColors);
}
}  // namespace

bool editMesh::compactVertices() {
  std::vector<unsigned int> map;
  return compactVertices(map);
}

bool editMesh::compactVertices(std::vector<unsigned int>& map) {
  const unsigned int nv = vn();
  checkMeshState();
  squeezeStore(vStore, vFlag, uint8_t(VERT_STATE_T::DELETED), nullptr, map);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const face& r = fStore[f];
    for (unsigned int i = 0; i < r.fvNum; ++i) {
      uint32_t& id = fvStore[r.fvBase + i].vertId;
      if (id < nv) id = map[id];
    }
  }
  if (en() > 0 && !evefInvalid) {
    for (unsigned int e = 0; e < en(); ++e) {
      if (edgeIsDeleted(e)) continue;  // a deleted edge keeps its stale ids
      for (uint32_t& id : eStore[e].v)
        if (id < nv) id = map[id];
    }
  }
  bboxDirty = true;
  return true;
}

bool editMesh::compactFaces() {
  std::vector<unsigned int> map;
  return compactFaces(map);
}

bool editMesh::compactFaces(std::vector<unsigned int>& map) {
  const unsigned int nf = fn();
  checkMeshState();
  squeezeStore(fStore, fFlag, uint8_t(FACE_STATE_T::DELETED), &faceColors, map);
  if (en() > 0 && !evefInvalid) {
    for (edgeFaceRecord& r : efStore)
      if (r.faceId < nf) r.faceId = map[r.faceId] & (EF_LIMIT - 1);
  }
  return true;
}

bool editMesh::compactEdges() {
  std::vector<unsigned int> map;
  return compactEdges(map);
}

bool editMesh::compactEdges(std::vector<unsigned int>& map) {
  if (en() == 0 || evefInvalid) return false;
  const unsigned int ne = en();
  checkMeshState();
  squeezeStore(eStore, eFlag, uint8_t(EDGE_STATE_T::DELETED), &edgeColors, map);
  // Only the first VE entry of each vertex is renamed: VE must be rebuilt after this.
  for (unsigned int v = 0; v < vn(); ++v) {
    const vert& r = vStore[v];
    if (r.veNum == 0 || r.veBase >= ven()) continue;
    uint32_t& id = veStore[r.veBase];
    if (id < ne) id = map[id];
  }
  return true;
}

void editMesh::deleteFace(unsigned int f) {
  if (isFaceDeleted(f)) return;
  deselectFace(f);
  setFaceFlag(f, FACE_STATE_T::DELETED);
  delFvn += fStore[f].fvNum;
  ++delFn;
}

void editMesh::deleteFaceUpdatingEdges(unsigned int f) {
  if (isFaceDeleted(f)) return;
  deleteFace(f);
  const face& r = fStore[f];
  if (r.fvNum <= 2) return;
  for (unsigned int i = 0; i < r.fvNum; ++i) {
    const unsigned int a = fvStore[r.fvBase + i].vertId;
    const unsigned int b = fvStore[r.fvBase + (i + 1 == r.fvNum ? 0 : i + 1)].vertId;
    const unsigned int e = findSharedEdgeFromVertices(a, b);
    if (e != maxValue) removeIdFromEF(f, e);
  }
}

void editMesh::deleteEdge(unsigned int e) {
  if (edgeIsDeleted(e)) return;
  deselectEdge(e);
  setEdgeFlag(e, EDGE_STATE_T::DELETED);
  ++delEn;
  // The list is copied: deleting a face edits the EF lists of its other edges.
  const edge& r = eStore[e];
  std::vector<unsigned int> faces;
  for (unsigned int i = 0; i < r.efNum && r.efBase + i < efn(); ++i)
    faces.push_back(efStore[r.efBase + i].faceId);
  for (unsigned int f : faces)
    if (f < fn()) deleteFaceUpdatingEdges(f);
}

void editMesh::deleteEdgeGuarded(unsigned int e, bool keepFaces) {
  if (edgeIsDeleted(e)) return;
  deselectEdge(e);
  setEdgeFlag(e, EDGE_STATE_T::DELETED);
  ++delEn;
  if (keepFaces) return;
  const edge& r = eStore[e];
  for (unsigned int i = 0; i < r.efNum && r.efBase + i < efn(); ++i) {
    const unsigned int f = efStore[r.efBase + i].faceId;
    if (f < fn()) deleteFace(f);
  }
}

void editMesh::deleteVertex(unsigned int v) { deleteVertexAndEdges(v, false); }

void editMesh::deleteVertexGuarded(unsigned int v) { deleteVertexAndEdges(v, true); }

void editMesh::deleteVertexAndEdges(unsigned int v, bool guarded) {
  if (isVertDeleted(v)) return;
  if (isVertSelected(v)) dropVertexFromSelection(v);
  setVertFlag(v, VERT_STATE_T::DELETED);
  ++delVn;
  const vert& r = vStore[v];
  for (unsigned int i = 0; i < r.veNum && r.veBase + i < ven(); ++i) {
    const unsigned int e = veStore[r.veBase + i];
    if (e >= en()) continue;
    if (guarded) {
      deleteEdgeGuarded(e, false);
    } else {
      deleteEdge(e);
    }
  }
}

void editMesh::deleteFaces(bool selectedOnly, bool rebuild) {
  deleteFaceSet(selectedOnly, rebuild, false);
}

void editMesh::deleteFacesUpdatingEdges(bool selectedOnly, bool rebuild) {
  deleteFaceSet(selectedOnly, rebuild, true);
}

void editMesh::deleteFaceSet(bool selectedOnly, bool rebuild, bool updateEdges) {
  checkMeshState();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f) || (selectedOnly && !isFaceSelected(f))) continue;
    if (updateEdges) {
      deleteFaceUpdatingEdges(f);
    } else {
      // delFn is left as it is here, unlike deleteFace
      setFaceFlag(f, FACE_STATE_T::DELETED);
      delFvn += fStore[f].fvNum;
    }
  }
  if (!updateEdges) clearGeomSelectionState();
  clearRenderValidity();
  if (rebuild) {
    computeEdges(true);
    computeVE();
  }
}

void editMesh::deleteEdges(bool selectedOnly) {
  checkMeshState();
  for (unsigned int e = 0; e < en(); ++e) {
    if (edgeIsDeleted(e) || (selectedOnly && !isEdgeSelected(e))) continue;
    deleteEdge(e);
  }
}

void editMesh::deleteWireEdges() {
  checkMeshState();
  for (unsigned int e = 0; e < en(); ++e) {
    if (edgeIsDeleted(e) || eStore[e].efNum != 0) continue;
    deselectEdge(e);
    setEdgeFlag(e, EDGE_STATE_T::DELETED);
    ++delEn;
  }
}

void editMesh::deleteWireEdgesGuarded() {
  checkMeshState();
  for (unsigned int e = 0; e < en(); ++e) {
    if (edgeIsDeleted(e)) continue;
    const edge& r = eStore[e];
    bool live = false;
    for (unsigned int i = 0; i < r.efNum && r.efBase + i < efn() && !live; ++i) {
      const unsigned int f = efStore[r.efBase + i].faceId;
      live = f < fn() && !isFaceDeleted(f);
    }
    if (live) continue;
    deselectEdge(e);
    setEdgeFlag(e, EDGE_STATE_T::DELETED);
    ++delEn;
  }
}

namespace {
// Vertices that are a corner of a live face; the deletion of "isolated" vertices never
// touches them, whatever state VE is in.
std::vector<unsigned char> cornerVertices(const editMesh& m) {
  std::vector<unsigned char> used(m.vn(), 0);
  for (unsigned int f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < m.fVNum(f); ++i) {
      const unsigned int v = m.fV(f, i);
      if (v < used.size()) used[v] = 1;
    }
  }
  return used;
}
}  // namespace

unsigned int editMesh::deleteIsolatedVertices() {
  checkMeshState();
  if (veInvalid) computeVE();
  const std::vector<unsigned char> used = cornerVertices(*this);
  unsigned int count = 0;
  for (unsigned int v = 0; v < vn(); ++v) {
    if (isVertDeleted(v) || vStore[v].veNum != 0 || used[v]) continue;
    deleteVertex(v);
    ++count;
  }
  return count;
}

unsigned int editMesh::deleteUnreferencedVertices() {
  checkMeshState();
  if (veInvalid) computeVE();
  const std::vector<unsigned char> used = cornerVertices(*this);
  unsigned int count = 0;
  for (unsigned int v = 0; v < vn(); ++v) {
    if (isVertDeleted(v) || used[v]) continue;
    const vert& r = vStore[v];
    bool live = false;
    for (unsigned int i = 0; i < r.veNum && r.veBase + i < ven() && !live; ++i) {
      const unsigned int e = veStore[r.veBase + i];
      live = e < en() && !edgeIsDeleted(e);
    }
    if (live) continue;
    deleteVertex(v);
    ++count;
  }
  return count;
}

namespace {
inline bool faceNormalOf(const editMesh& m, unsigned int f, point3<float>& n) {
  const editMesh::face& r = m.F(f);
  if (r.fvNum < 3) return false;
  const unsigned int a = m.FV(r.fvBase), b = m.FV(r.fvBase + 1), c = m.FV(r.fvBase + 2);
  const unsigned int nv = m.vn();
  if (a >= nv || b >= nv || c >= nv) return false;
  const point3<float>& p0 = m.vPos(a);
  const point3<float>& p1 = m.vPos(b);
  const point3<float>& p2 = m.vPos(c);
  n = point3<float>::cross(p1 - p0, p2 - p1);
  return true;
}
}  // namespace

void editMesh::computeFaceNormals() {
  checkMeshState();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    faceNormalOf(*this, f, fStore[f].normal);
  }
}

void editMesh::computeNormalizedFaceNormals() {
  checkMeshState();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    if (faceNormalOf(*this, f, fStore[f].normal)) normalizeFast(fStore[f].normal);
  }
}

void editMesh::computeNormalizedFaceNormal(unsigned int f) {
  if (faceNormalOf(*this, f, fStore[f].normal)) normalizeFast(fStore[f].normal);
}

void editMesh::computeVertexNormals() {
  checkMeshState();
  const unsigned int nv = vn();
  for (vert& v : vStore) v.normal.setZero();
  const faceWEdgeRecord* fv = fvStore.data();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const face& r = fStore[f];
    const point3<float> n = r.normal;
    for (unsigned int i = 0; i < r.fvNum; ++i) {
      const unsigned int v = fv[r.fvBase + i].vertId;
      if (v < nv) vStore[v].normal += n;
    }
  }
}

void editMesh::computeWeightedVertexNormals() {
  computeVertexNormals();
  std::vector<unsigned int> count(vn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < fVNum(f); ++i) {
      const unsigned int v = fV(f, i);
      if (v < count.size()) ++count[v];
    }
  }
  for (unsigned int v = 0; v < vn(); ++v)
    if (count[v]) vStore[v].normal *= 1.0f / float(count[v]);
}

void editMesh::computeNormalizedVertexNormals() {
  computeVertexNormals();
  for (vert& v : vStore) normalizeFast(v.normal);
}

// Both passes in one walk over the faces: each face's unit normal goes to its corners as
// soon as it is known. The result equals the two calls one after the other.
void editMesh::computeNormalizedNormals() {
  checkMeshState();
  const unsigned int nv = vn();
  for (vert& v : vStore) v.normal.setZero();
  const faceWEdgeRecord* fv = fvStore.data();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    face& r = fStore[f];
    if (faceNormalOf(*this, f, r.normal)) normalizeFast(r.normal);
    const point3<float> n = r.normal;
    for (unsigned int i = 0; i < r.fvNum; ++i) {
      const unsigned int v = fv[r.fvBase + i].vertId;
      if (v < nv) vStore[v].normal += n;
    }
  }
  for (vert& v : vStore) normalizeFast(v.normal);
}

void editMesh::computeNormalizedVertexNormal(unsigned int v) {
  point3<float> sum;
  const std::vector<unsigned int>& faces = getAdiacentFaces(v);
  for (unsigned int f : faces) sum += fStore[f].normal;
  normalizeFast(sum);
  vStore[v].normal = sum;
}

void editMesh::flipNormals() {
  for (vert& v : vStore) v.normal = -v.normal;
  for (face& f : fStore) f.normal = -f.normal;
}

void editMesh::selectVert(unsigned int v) {
  if (isVertSelected(v) || isVertDeleted(v)) return;
  setVertFlag(v, VERT_STATE_T::SELECTED);
  ++selVn;
  selVertSum += vStore[v].pos;
  selVertNor += vStore[v].normal;
}

void editMesh::dropVertexFromSelection(unsigned int v) {
  unsetVertFlag(v, VERT_STATE_T::SELECTED);
  --selVn;
  selVertSum -= vStore[v].pos;
  selVertNor -= vStore[v].normal;
}

void editMesh::deselectVert(unsigned int v) {
  if (isVertSelected(v)) dropVertexFromSelection(v);
}

bool editMesh::vertexHeldByFaceSelection(unsigned int v) const {
  if (selFn == 0) return false;
  const vert& r = vStore[v];
  if (isVEValid() && r.veBase + r.veNum <= ven()) {
    for (unsigned int i = 0; i < r.veNum; ++i) {
      const unsigned int e = veStore[r.veBase + i];
      if (e >= en()) continue;
      const edge& er = eStore[e];
      for (unsigned int k = 0; k < er.efNum && er.efBase + k < efn(); ++k) {
        const unsigned int f = efStore[er.efBase + k].faceId;
        if (f < fn() && isFaceSelected(f) && !isFaceDeleted(f)) return true;
      }
    }
    return false;
  }
  // Without adjacency, look at the faces themselves.
  for (unsigned int f = 0; f < fn(); ++f) {
    if (!isFaceSelected(f) || isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < fStore[f].fvNum; ++i)
      if (fV(f, i) == v) return true;
  }
  return false;
}

void editMesh::selectFace(unsigned int f) {
  if (isFaceSelected(f) || isFaceDeleted(f)) return;
  setFaceFlag(f, FACE_STATE_T::SELECTED);
  const face& r = fStore[f];
  ++selFn;
  selFvn += r.fvNum;
  maxSelFaceSize = std::max(maxSelFaceSize, r.fvNum);
  for (unsigned int i = 0; i < r.fvNum; ++i) {
    const unsigned int v = fvStore[r.fvBase + i].vertId;
    if (v < vn()) selectVert(v);
  }
}

void editMesh::deselectFace(unsigned int f) {
  if (!isFaceSelected(f)) return;
  unsetFaceFlag(f, FACE_STATE_T::SELECTED);
  const face& r = fStore[f];
  --selFn;
  selFvn -= r.fvNum;
  for (unsigned int i = 0; i < r.fvNum; ++i) {
    const unsigned int v = fvStore[r.fvBase + i].vertId;
    if (v < vn() && isVertSelected(v) && !vertexHeldByFaceSelection(v)) dropVertexFromSelection(v);
  }
}

void editMesh::selectEdge(unsigned int e) {
  if (isEdgeSelected(e) || edgeIsDeleted(e)) return;
  setEdgeFlag(e, EDGE_STATE_T::SELECTED);
  ++selEn;
  for (unsigned int v : eStore[e].v)
    if (v < vn()) selectVert(v);
}

void editMesh::selectSharedEdges(unsigned int a, unsigned int b) {
  if (a >= vn() || b >= vn()) return;
  const vert& r = vStore[a];
  if (size_t(r.veBase) + r.veNum > veStore.size()) return;
  for (unsigned int i = 0; i < r.veNum; ++i) {
    const unsigned int e = veStore[r.veBase + i];
    if (e >= en() || edgeIsDeleted(e) || isEdgeSelected(e)) continue;
    const edge& er = eStore[e];
    if ((er.v[0] == a && er.v[1] == b) || (er.v[0] == b && er.v[1] == a)) selectEdge(e);
  }
}

void editMesh::deselectEdge(unsigned int e) {
  if (!isEdgeSelected(e)) return;
  unsetEdgeFlag(e, EDGE_STATE_T::SELECTED);
  --selEn;
  for (unsigned int v : eStore[e].v)
    if (v < vn() && isVertSelected(v) && !vertexHeldByFaceSelection(v)) dropVertexFromSelection(v);
}

void editMesh::selectAllFaces() {
  checkMeshState();
  for (unsigned int f = 0; f < fn(); ++f) selectFace(f);
}

void editMesh::deselectAllFaces() {
  checkMeshState();
  // With no selected face left, no vertex is held: all of them go.
  for (unsigned char& b : fFlag) b &= uint8_t(~uint8_t(FACE_STATE_T::SELECTED));
  for (unsigned char& b : vFlag) b &= uint8_t(~uint8_t(VERT_STATE_T::SELECTED));
  selFn = selFvn = selVn = 0;
  selVertSum.setZero();
  selVertNor.setZero();
}

void editMesh::invertFaceSelection() {
  checkMeshState();
  std::vector<unsigned int> wasSelected;
  for (unsigned int f = 0; f < fn(); ++f)
    if (isFaceSelected(f)) wasSelected.push_back(f);
  // Select the others first so that shared vertices stay held.
  for (unsigned int f = 0; f < fn(); ++f)
    if (!isFaceSelected(f)) selectFace(f);
  for (unsigned int f : wasSelected) deselectFace(f);
}

void editMesh::clearGeomSelectionState() {
  for (unsigned char& b : vFlag) b &= uint8_t(~uint8_t(VERT_STATE_T::SELECTED));
  for (unsigned char& b : eFlag) b &= uint8_t(~uint8_t(EDGE_STATE_T::SELECTED));
  for (unsigned char& b : fFlag) b &= uint8_t(~uint8_t(FACE_STATE_T::SELECTED));
  selFn = selEn = selVn = selFvn = 0;
  selVertSum.setZero();
  selVertNor.setZero();
  maxSelFaceSize = 0;
}

point3<float> editMesh::getSelVertBarycenter() const {
  if (selVn == 0) return point3<float>();
  return selVertSum * (1.0f / float(selVn));
}

void editMesh::updateSelVertPosSum() {
  selVertSum.setZero();
  for (unsigned int v = 0; v < vn() && v < vFlag.size(); ++v)
    if (isVertSelected(v) && !isVertDeleted(v)) selVertSum += vStore[v].pos;
}

void editMesh::updateSelVertNorSum() {
  selVertNor.setZero();
  for (unsigned int v = 0; v < vn() && v < vFlag.size(); ++v)
    if (isVertSelected(v) && !isVertDeleted(v)) selVertNor += vStore[v].normal;
}

void editMesh::updateSelVertPosNorSum() {
  updateSelVertPosSum();
  updateSelVertNorSum();
}

void editMesh::clearEVEF(bool release) {
  evefInvalid = true;
  if (release) clearEdgeBuffers(true);
}

void editMesh::clearVE(bool release) {
  veInvalid = true;
  if (release) std::vector<unsigned int>().swap(veStore);
}

void editMesh::clearRenderValidity() {
  if (invalidationGuard.cV()) return;
  vertexRenderStateValid = false;
  edgeRenderStateValid = false;
  flatFaceRenderStateValid = false;
  smoothFaceRenderStateValid = false;
}

void editMesh::hideSelectedFaces() {
  hideSelected = true;
  hideUnselected = false;
  clearRenderValidity();
}

void editMesh::hideUnselectedFaces() {
  hideSelected = false;
  hideUnselected = true;
  clearRenderValidity();
}

void editMesh::showAllFaces() {
  hideSelected = false;
  hideUnselected = false;
  clearRenderValidity();
}

void editMesh::invalidateSelectedVertFlags() {
  if (!invalidationGuard.cV()) vertexRenderStateValid = false;
}

void editMesh::invalidateSelectedEdgeFlags() {
  if (!invalidationGuard.cV()) edgeRenderStateValid = false;
}

void editMesh::invalidateSelectedFaceFlags() {
  if (invalidationGuard.cV()) return;
  faceSelectionChanged = true;
  faceSelectionRenderStateDirty = true;
}

void editMesh::invalidateRenderData() {
  clearRenderValidity();
  selectionRenderStateValid = false;
  vertIndexInvalid = true;
  faceIndexInvalid = true;
}

void editMesh::computeBBox() {
  bool any = false;
  for (unsigned int v = 0; v < vn(); ++v) {
    if (v < vFlag.size() && isVertDeleted(v)) continue;
    const point3<float>& p = vStore[v].pos;
    if (!any) {
      bboxMin = bboxMax = p;
      any = true;
      continue;
    }
    bboxMin.x = std::min(bboxMin.x, p.x), bboxMax.x = std::max(bboxMax.x, p.x);
    bboxMin.y = std::min(bboxMin.y, p.y), bboxMax.y = std::max(bboxMax.y, p.y);
    bboxMin.z = std::min(bboxMin.z, p.z), bboxMax.z = std::max(bboxMax.z, p.z);
  }
  if (!any) {
    bboxMin = point3<float>(1.f, 1.f, 1.f);
    bboxMax = point3<float>(-1.f, -1.f, -1.f);
  }
  bboxDirty = false;
}

unsigned int editMesh::findSharedEdgeFromVertices(unsigned int a, unsigned int b) const {
  if (a >= vn()) return maxValue;
  const vert& r = vStore[a];
  if (size_t(r.veBase) + r.veNum > veStore.size()) return maxValue;
  for (unsigned int i = 0; i < r.veNum; ++i) {
    const unsigned int e = veStore[r.veBase + i];
    if (e >= en() || (e < eFlag.size() && edgeIsDeleted(e))) continue;
    const edge& er = eStore[e];
    if ((er.v[0] == a && er.v[1] == b) || (er.v[0] == b && er.v[1] == a)) return e;
  }
  return maxValue;
}

unsigned int editMesh::findCornerInFace(unsigned int f, unsigned int v) const {
  const face& r = fStore[f];
  for (unsigned int i = 0; i < r.fvNum; ++i)
    if (fvStore[r.fvBase + i].vertId == v) return i;
  return maxValue;
}

namespace {
// Side of f (corner i to corner i + 1) that joins the two ends of e, or n when none.
unsigned int sideOfEdge(const editMesh& m, unsigned int f, unsigned int e) {
  const unsigned int n = m.fVNum(f);
  const unsigned int a = m.eV(e, 0), b = m.eV(e, 1);
  for (unsigned int i = 0; i < n; ++i) {
    const unsigned int p = m.fV(f, i), q = m.fV(f, i + 1 == n ? 0 : i + 1);
    if ((p == a && q == b) || (p == b && q == a)) return i;
  }
  return n;
}
}  // namespace

unsigned int editMesh::nextEdge(unsigned int f, unsigned int e) const {
  const unsigned int n = fVNum(f);
  const unsigned int i = sideOfEdge(*this, f, e);
  if (i == n) return maxValue;
  return findSharedEdgeFromVertices(fV(f, (i + 1) % n), fV(f, (i + 2) % n));
}

unsigned int editMesh::nextNextEdge(unsigned int f, unsigned int e) const {
  const unsigned int n = fVNum(f);
  const unsigned int i = sideOfEdge(*this, f, e);
  if (i == n) return maxValue;
  return findSharedEdgeFromVertices(fV(f, (i + 2) % n), fV(f, (i + 3) % n));
}

bool editMesh::findEdgePairSharingVertInFace(unsigned int f, unsigned int v, unsigned int& eIn,
                                             unsigned int& eOut) const {
  eIn = eOut = maxValue;
  const unsigned int c = findCornerInFace(f, v);
  if (c == maxValue) return false;
  const unsigned int n = fVNum(f);
  eIn = findSharedEdgeFromVertices(fV(f, (c + n - 1) % n), v);
  eOut = findSharedEdgeFromVertices(v, fV(f, (c + 1) % n));
  return eIn != maxValue && eOut != maxValue;
}

unsigned int editMesh::otherFaceOfEdge(unsigned int e, unsigned int f) const {
  const edge& r = eStore[e];
  for (unsigned int i = 0; i < r.efNum; ++i) {
    const unsigned int g = efStore[r.efBase + i].faceId;
    if (g != f) return g;
  }
  return maxValue;
}

const std::vector<unsigned int>& editMesh::getAdiacentFaces(unsigned int v) {
  adjacentFaces.clear();
  const vert& r = vStore[v];
  if (size_t(r.veBase) + r.veNum > veStore.size()) return adjacentFaces;
  for (unsigned int i = 0; i < r.veNum; ++i) {
    const unsigned int e = veStore[r.veBase + i];
    if (e >= en()) continue;
    const edge& er = eStore[e];
    for (unsigned int k = 0; k < er.efNum && er.efBase + k < efn(); ++k) {
      const unsigned int f = efStore[er.efBase + k].faceId;
      if (f < fn() && !isFaceDeleted(f)) adjacentFaces.push_back(f);
    }
  }
  std::sort(adjacentFaces.begin(), adjacentFaces.end());
  adjacentFaces.erase(std::unique(adjacentFaces.begin(), adjacentFaces.end()), adjacentFaces.end());
  return adjacentFaces;
}

unsigned int editMesh::addAuxFloatData(const std::string& name) {
  auxFloat.items.push_back(std::make_unique<auxStore<float>>());
  auxFloat.items.back()->name = name;
  return auxFloatDataNum() - 1;
}

unsigned int editMesh::addAuxUintData(const std::string& name) {
  auxUint.items.push_back(std::make_unique<auxStore<unsigned int>>());
  auxUint.items.back()->name = name;
  return auxUintDataNum() - 1;
}

unsigned int editMesh::addAuxUcharData(const std::string& name) {
  auxUchar.items.push_back(std::make_unique<auxStore<unsigned char>>());
  auxUchar.items.back()->name = name;
  return auxUcharDataNum() - 1;
}

void editMesh::printStats(std::ostream& out) const {
  out << "vertex number   " << vn() << "\n"
      << "edge number     " << en() << "\n"
      << "face number     " << fn() << "\n"
      << "fv number       " << fvn() << "\n"
      << "ve number       " << ven() << "\n"
      << "ef number       " << efn() << "\n"
      << "uv number   " << uvn() << "\n"
      << "deleted v/e/f   " << delVn << " " << delEn << " " << delFn << "\n"
      << "dead fv/ve/ef   " << delFvn << " " << delVen << " " << delEfn << "\n"
      << "selected v/e/f  " << selVn << " " << selEn << " " << selFn << "\n";
}

void editMesh::printStats() const { printStats(std::cout); }

size_t editMesh::memoryUsage() const {
  return vStore.capacity() * sizeof(vert) + eStore.capacity() * sizeof(edge) +
         fStore.capacity() * sizeof(face) + fvStore.capacity() * sizeof(faceWEdgeRecord) +
         efStore.capacity() * sizeof(edgeFaceRecord) + veStore.capacity() * sizeof(unsigned int) +
         vFlag.capacity() + eFlag.capacity() + fFlag.capacity() +
         uvStore.capacity() * sizeof(MATH::point2<float>);
}

}  // namespace MESH
}  // namespace JEV
