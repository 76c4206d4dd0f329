#include "jev3d/algo/internal/workMesh.h"

#include <algorithm>

#include "jev3d/algo/internal/triangleAdjacency.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"

namespace JEV {
namespace MESH {
namespace ALGO {

using MATH::point3;

void workMesh::clear() {
  pos.clear(), nor.clear(), col.clear(), vFlag.clear();
  tri.clear(), fNor.clear(), fFlag.clear(), sourceFace.clear();
  ff.clear(), vfStart.clear(), vfWedge.clear();
  topologyValid = false;
}

void workMesh::reserveVertices(unsigned int n) {
  pos.reserve(n), vFlag.reserve(n);
  if (!nor.empty()) nor.reserve(n);
  if (!col.empty()) col.reserve(n);
}

unsigned int workMesh::addVertex(const point3<float>& p) {
  pos.push_back(p);
  vFlag.push_back(0);
  if (!nor.empty()) nor.emplace_back();
  if (!col.empty()) col.emplace_back(255, 255, 255, 255);
  return vn() - 1;
}

unsigned int workMesh::addFace(unsigned int a, unsigned int b, unsigned int c) {
  tri.insert(tri.end(), {a, b, c});
  if (!fNor.empty()) fNor.emplace_back();
  fFlag.push_back(0);
  sourceFace.push_back(NONE);
  topologyValid = false;
  return fn() - 1;
}

void workMesh::updateTopology() {
  computeVertexFace();
  computeFaceFace();
  updateBorderFlags();
}

namespace {

// Deleted faces as a skip list for the adjacency builders.
std::vector<unsigned char> deletedFaces(const std::vector<unsigned char>& fFlag) {
  std::vector<unsigned char> skip(fFlag.size());
  for (size_t f = 0; f < fFlag.size(); ++f) skip[f] = fFlag[f] & workMesh::DELETED;
  return skip;
}

}  // namespace

void workMesh::computeVertexFace() {
  const std::vector<unsigned char> skip = deletedFaces(fFlag);
  INTERNAL::buildVertexFace(tri.data(), fn(), vn(), skip.data(), vfStart, vfWedge);
}

void workMesh::computeFaceFace() {
  if (vfStart.size() != size_t(vn()) + 1) computeVertexFace();
  const std::vector<unsigned char> skip = deletedFaces(fFlag);
  INTERNAL::buildFaceFace(tri.data(), fn(), vn(), vfStart, vfWedge, skip.data(), ff);
  topologyValid = true;
}

void workMesh::updateBorderFlags() {
  constexpr unsigned char edgeBits[3] = {BORDER0, BORDER1, BORDER2};
  for (unsigned char& b : vFlag) b &= uint8_t(~BORDER);
  for (unsigned int f = 0; f < fn(); ++f) {
    fFlag[f] &= uint8_t(~(BORDER | BORDER0 | BORDER1 | BORDER2));
    if (isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < 3; ++i) {
      if (!isBorder(f, i)) continue;
      fFlag[f] |= uint8_t(edgeBits[i] | BORDER);
      const unsigned int a = V(f, i), b = V(f, (i + 1) % 3);
      if (a < vn()) vFlag[a] |= BORDER;
      if (b < vn()) vFlag[b] |= BORDER;
    }
  }
}

void workMesh::computeFaceNormals(bool normalize) {
  fNor.resize(fn());
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const point3<float> n = point3<float>::cross(P(f, 1) - P(f, 0), P(f, 2) - P(f, 0));
    fNor[f] = normalize ? n.getNormalized() : n;
  }
}

void workMesh::computeVertexNormals() {
  nor.resize(vn());
  std::vector<point3<float>> sum(vn());
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const point3<float> n = point3<float>::cross(P(f, 1) - P(f, 0), P(f, 2) - P(f, 0));
    for (unsigned int i = 0; i < 3; ++i) sum[V(f, i)] += n;
  }
  for (unsigned int v = 0; v < vn(); ++v)
    if (!(vFlag[v] & (DELETED | LOCKED))) nor[v] = sum[v].getNormalized();
}

void workMesh::compact(bool dropVertices) {
  std::vector<unsigned int> map(vn(), NONE);
  if (dropVertices) {
    std::vector<unsigned char> used(vn(), 0);
    for (unsigned int f = 0; f < fn(); ++f) {
      if (isFaceDeleted(f)) continue;
      bool live = true;
      for (unsigned int i = 0; i < 3 && live; ++i) live = V(f, i) < vn() && !isVertDeleted(V(f, i));
      if (live) used[V(f, 0)] = used[V(f, 1)] = used[V(f, 2)] = 1;
    }
    unsigned int next = 0;
    for (unsigned int v = 0; v < vn(); ++v) {
      if (!used[v] || isVertDeleted(v)) continue;
      map[v] = next;
      pos[next] = pos[v], vFlag[next] = vFlag[v];
      if (!nor.empty()) nor[next] = nor[v];
      if (!col.empty()) col[next] = col[v];
      ++next;
    }
    pos.resize(next), vFlag.resize(next);
    if (!nor.empty()) nor.resize(next);
    if (!col.empty()) col.resize(next);
  } else {
    for (unsigned int v = 0; v < vn(); ++v) map[v] = v;
  }
  // A face on a dropped vertex goes too: its corner would have no id left.
  unsigned int next = 0;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    unsigned int ids[3];
    for (unsigned int i = 0; i < 3; ++i) ids[i] = V(f, i) < map.size() ? map[V(f, i)] : NONE;
    if (ids[0] == NONE || ids[1] == NONE || ids[2] == NONE) continue;
    for (unsigned int i = 0; i < 3; ++i) tri[3 * next + i] = ids[i];
    if (!fNor.empty()) fNor[next] = fNor[f];
    fFlag[next] = fFlag[f], sourceFace[next] = sourceFace[f];
    ++next;
  }
  tri.resize(size_t(3) * next), fFlag.resize(next), sourceFace.resize(next);
  if (!fNor.empty()) fNor.resize(next);
  ff.clear(), vfStart.clear(), vfWedge.clear();
  topologyValid = false;
}

namespace {

// fromMesh for one kind of source: through the interface, or through the editable
// mesh's adapter, whose accessors inline.
template <class Source>
void readMesh(workMesh& w, const Source& source, bool keepSelection) {
  w.clear();
  const unsigned int nv = source.vn();
  w.pos.resize(nv);
  w.vFlag.assign(nv, 0);
  for (unsigned int v = 0; v < nv; ++v) {
    w.pos[v] = source.vPos(v);
    if (source.isVertDeleted(v)) w.vFlag[v] = workMesh::DELETED;
  }
  if (source.hasVN()) {
    w.nor.resize(nv);
    for (unsigned int v = 0; v < nv; ++v) w.nor[v] = source.vNor(v);
  }
  if (source.hasVC()) {
    w.col.resize(nv);
    for (unsigned int v = 0; v < nv; ++v) w.col[v] = source.vCol(v);
  }
  const bool readFlags = source.hasFaceFlags();
  const unsigned int nf = source.fn();
  size_t triangles = 0;
  for (unsigned int f = 0; f < nf; ++f) triangles += std::max(source.f2vNum(f), 2u) - 2;
  w.tri.reserve(3 * triangles), w.fFlag.reserve(triangles), w.sourceFace.reserve(triangles);
  for (unsigned int f = 0; f < nf; ++f) {
    if (readFlags && source.isFaceDeleted(f)) continue;
    const unsigned int n = source.f2vNum(f);
    bool valid = n >= 3;
    for (unsigned int i = 0; i < n && valid; ++i) valid = source.fV(f, i) < nv;
    if (!valid) continue;  // a corner past the vertices would be read out of bounds
    const bool selected = keepSelection && readFlags && source.isFaceSelected(f);
    for (unsigned int t = 0; t + 2 < n; ++t) {
      const unsigned int id = w.addFace(source.fV(f, 0), source.fV(f, t + 1), source.fV(f, t + 2));
      w.sourceFace[id] = f;
      if (selected) w.fFlag[id] |= workMesh::SELECTED;
    }
  }
}

}  // namespace

void workMesh::fromMesh(const meshInterface& source, bool keepSelection) {
  if (auto* edit = dynamic_cast<const editMeshInterface*>(&source))
    readMesh(*this, *edit, keepSelection);
  else
    readMesh(*this, source, keepSelection);
}

void workMesh::fromEditMesh(const editMesh& source, bool keepSelection) {
  // The adapter is only read through here, so the cast writes nothing.
  const editMeshInterface view(const_cast<editMesh&>(source));
  fromMesh(view, keepSelection);
}

void workMesh::toMesh(meshInterface& target) const {
  toMeshWith(target, fn(), [this](auto emit) {
    for (unsigned int f = 0; f < fn(); ++f)
      if (!isFaceDeleted(f)) emit(V(f, 0), V(f, 1), V(f, 2));
  });
}

workMesh::meshWriter::meshWriter(const workMesh& w, meshInterface& to, size_t most)
    : target(to), map(w.vn(), NONE), maxFaces(most) {
  unsigned int live = 0;
  for (unsigned int v = 0; v < w.vn(); ++v)
    if (!w.isVertDeleted(v)) map[v] = live++;
  if (auto* view = dynamic_cast<editMeshInterface*>(&target)) {
    // What the building calls leave, written straight into the records: a cleared mesh,
    // default records filled in order, flags sized to the elements at the end.
    edit = &view->getMesh();
    edit->clear(false);
    std::vector<editMesh::vert>& vs = edit->vertStore();
    vs.resize(live);
    for (unsigned int v = 0; v < w.vn(); ++v) {
      const unsigned int to = map[v];
      if (to == NONE) continue;
      vs[to].pos = w.pos[v];
      if (w.hasNormals()) vs[to].normal = w.nor[v];
      if (w.hasColors()) edit->vCol(to) = w.col[v];
    }
    if (w.hasColors()) edit->setHasVC(true);
    // Sized for every face that may come and cut back to those written.
    edit->faceStore().resize(maxFaces);
    edit->fvRecords().resize(3 * maxFaces);
    return;
  }
  target.clear();
  target.vertexReserve(live);
  for (unsigned int v = 0; v < w.vn(); ++v)
    if (!w.isVertDeleted(v)) target.addVertex(w.pos[v]);
  if (w.hasNormals()) {
    target.vertexNormalResize(live);
    for (unsigned int v = 0; v < w.vn(); ++v)
      if (map[v] != NONE) target.vNor(map[v]) = w.nor[v];
  }
  if (w.hasColors()) {
    target.vertexColorResize(live);
    for (unsigned int v = 0; v < w.vn(); ++v)
      if (map[v] != NONE) target.vCol(map[v]) = w.col[v];
  }
  target.faceReserve(unsigned(maxFaces));
}

void workMesh::meshWriter::add(unsigned int a, unsigned int b, unsigned int c) {
  const unsigned int ids[3] = {id(a), id(b), id(c)};
  if (ids[0] == NONE || ids[1] == NONE || ids[2] == NONE) return;
  if (faces == maxFaces) return;  // an editable target has no record past them
  if (!edit) {
    target.addFace(ids, 3);
    ++faces;
    return;
  }
  editMesh::face& r = edit->faceStore()[faces];
  r.fvBase = 3 * faces;
  r.fvNum = 3;
  editMesh::faceWEdgeRecord* corners = &edit->fvRecords()[3 * faces];
  for (unsigned int i = 0; i < 3; ++i) corners[i] = {faces, ids[i], 0, 0, 0};
  ++faces;
}

void workMesh::meshWriter::finish() {
  if (!edit) return;
  edit->faceStore().resize(faces);
  edit->fvRecords().resize(3 * size_t(faces));
  edit->checkMeshState();
}

void workMesh::toEditMesh(editMesh& target) const {
  editMeshInterface view(target);
  toMesh(view);
  target.checkMeshState();
  target.computeEVEF();
  target.computeVE();
  target.computeNormalizedFaceNormals();
  if (!hasNormals()) target.computeNormalizedVertexNormals();
}

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
