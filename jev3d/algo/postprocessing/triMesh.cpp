// triMesh: storage, building, normals and adjacency, selection, queries, transforms,
// spatial indexes and the render hook. Files, filters and primitives have files of
// their own.

#include "jev3d/algo/postprocessing/triMesh.h"

#include <algorithm>
#include <limits>

#include "jev3d/algo/internal/triangleAdjacency.h"
#include "jev3d/math/triangleQueries.h"

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

using MATH::point3;

triMeshRenderHook::~triMeshRenderHook() = default;

triMesh::triMesh() = default;
triMesh::~triMesh() = default;

triMesh::triMesh(const triMesh& o)
    : meshInterface(o),
      world(o.world),
      vertices(o.vertices),
      normals(o.normals),
      colors(o.colors),
      faces(o.faces),
      faceNormals(o.faceNormals),
      faceFlags(o.faceFlags),
      ff(o.ff),
      boxRef(o.boxRef),
      boxVert(o.boxVert),
      boxRefValid(o.boxRefValid),
      boxVertValid(o.boxVertValid),
      renderHook(o.renderHook) {}

triMesh& triMesh::operator=(const triMesh& o) {
  if (this == &o) return *this;
  world = o.world;
  vertices = o.vertices, normals = o.normals, colors = o.colors;
  faces = o.faces, faceNormals = o.faceNormals, faceFlags = o.faceFlags, ff = o.ff;
  boxRef = o.boxRef, boxVert = o.boxVert;
  boxRefValid = o.boxRefValid, boxVertValid = o.boxVertValid;
  vertexTree.reset(), faceTree.reset();  // indexes are not carried over
  renderHook = o.renderHook;
  return *this;
}

unsigned int triMesh::f2fNum(unsigned int f) const {
  if (!hasFF()) return 0;
  unsigned int n = 0;
  for (unsigned int i = 0; i < 3; ++i) n += ff[3 * size_t(f) + i] != NONE;
  return n;
}

const MATH::axisAlignedBox3<float>& triMesh::getBoxRef() {
  if (!boxRefValid) computedBoundingBoxRef();
  return boxRef;
}

const MATH::axisAlignedBox3<float>& triMesh::getBoxVert() {
  if (!boxVertValid) computedBoundingBoxVert();
  return boxVert;
}

void triMesh::computedBoundingBoxRef() {
  boxRef.clear();
  for (const point3<float>& p : vertices) boxRef.extend(p * world);
  boxRefValid = true;
}

void triMesh::computedBoundingBoxVert() {
  boxVert.clear();
  for (const point3<float>& p : vertices) boxVert.extend(p);
  boxVertValid = true;
}

void triMesh::computeFaceFlags() { faceFlags.resize(fn()); }

void triMesh::clearSpatialIndexing() {
  vertexTree.reset();
  faceTree.reset();
}

void triMesh::clear() {
  vertices.clear(), normals.clear(), colors.clear();
  faces.clear(), faceNormals.clear(), faceFlags.clear(), ff.clear();
  boxRefValid = boxVertValid = false;
  clearSpatialIndexing();
}

void triMesh::facesChanged() {
  ff.clear();
  if (faceNormals.size() != fn()) faceNormals.clear();
  if (!faceFlags.empty()) faceFlags.resize(fn());
  clearSpatialIndexing();
  boxRefValid = boxVertValid = false;
}

void triMesh::positionsChanged() {
  clearSpatialIndexing();
  boxRefValid = boxVertValid = false;
}

unsigned int triMesh::addVertex(const point3<float>& p) {
  vertices.push_back(p);
  if (!normals.empty()) normals.emplace_back();
  if (!colors.empty()) colors.emplace_back(255, 255, 255, 255);
  positionsChanged();
  return vn() - 1;
}

unsigned int triMesh::addFace(unsigned int a, unsigned int b, unsigned int c) {
  faces.insert(faces.end(), {a, b, c});
  if (!faceNormals.empty()) faceNormals.emplace_back();
  if (!faceFlags.empty()) faceFlags.emplace_back();
  ff.clear();
  clearSpatialIndexing();
  return fn() - 1;
}

unsigned int triMesh::addFace(const unsigned int* ids, unsigned int n) {
  if (n < 3) return NONE;
  const unsigned int first = addFace(ids[0], ids[1], ids[2]);
  for (unsigned int t = 1; t + 2 < n; ++t) addFace(ids[0], ids[t + 1], ids[t + 2]);
  return first;
}

// Building

void triMesh::buildFrom(const std::vector<triMesh>& meshes) {
  std::vector<meshInterface*> parts;
  for (const triMesh& m : meshes) parts.push_back(const_cast<triMesh*>(&m));  // read only
  buildFrom(parts);
}

void triMesh::buildFrom(const std::vector<triMesh*>& meshes) {
  buildFrom(std::vector<meshInterface*>(meshes.begin(), meshes.end()));
}

void triMesh::buildFrom(const std::vector<meshInterface*>& list) {
  // This mesh among the parts is read from a copy, as it is emptied first.
  std::vector<meshInterface*> meshes = list;
  std::unique_ptr<triMesh> self;
  for (meshInterface*& m : meshes)
    if (m == this) {
      if (!self) self = std::make_unique<triMesh>(*this);
      m = self.get();
    }
  clear();
  bool allNormals = true, allColors = true;
  for (const meshInterface* m : meshes)
    if (m) allNormals &= m->hasVN() || m->vn() == 0, allColors &= m->hasVC() || m->vn() == 0;
  for (const meshInterface* m : meshes)
    if (m) add(*m);
  if (!allNormals) normals.clear();
  if (!allColors) colors.clear();
}

void triMesh::add(const meshInterface& other) {
  if (&other == this) {  // the loops below would chase the vertices they append
    const triMesh copy(*this);
    add(copy);
    return;
  }
  const unsigned int base = vn();
  const bool keepNormals = other.hasVN() && (base == 0 || hasVN());
  const bool keepColors = other.hasVC() && (base == 0 || hasVC());
  if (!keepNormals) normals.clear();
  if (!keepColors) colors.clear();
  std::vector<unsigned int> map(other.vn(), NONE);
  for (unsigned int v = 0; v < other.vn(); ++v) {
    if (other.isVertDeleted(v)) continue;
    map[v] = unsigned(vertices.size());
    vertices.push_back(other.vPos(v));
    if (keepNormals) normals.push_back(other.vNor(v));
    if (keepColors) colors.push_back(other.vCol(v));
  }
  const bool otherFlags = other.hasFaceFlags();
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < other.fn(); ++f) {
    if (otherFlags && other.isFaceDeleted(f)) continue;
    const unsigned int n = other.f2vNum(f);
    ids.resize(n);
    bool valid = n >= 3;
    for (unsigned int i = 0; i < n && valid; ++i) {
      const unsigned int v = other.fV(f, i);
      valid = v < map.size() && map[v] != NONE;  // a bad corner drops its face
      if (valid) ids[i] = map[v];
    }
    if (valid) addFace(ids.data(), n);
  }
  facesChanged();
  faceNormals.clear();
}

void triMesh::importFrom(const meshInterface& other) {
  if (&other == this) return;
  clear();
  add(other);
}

void triMesh::subset(const std::vector<unsigned int>& faceIds, triMesh& target) const {
  if (&target == this) return;
  target.clear();
  std::vector<unsigned int> map(vn(), NONE);
  for (unsigned int f : faceIds) {
    if (f >= fn()) continue;
    unsigned int t[3];
    bool valid = true;
    for (unsigned int i = 0; i < 3 && valid; ++i) valid = fV(f, i) < vn();
    if (!valid) continue;
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int v = fV(f, i);
      if (map[v] == NONE) {
        map[v] = unsigned(target.vertices.size());
        target.vertices.push_back(vertices[v]);
        if (hasVN()) target.normals.push_back(normals[v]);
        if (hasVC()) target.colors.push_back(colors[v]);
      }
      t[i] = map[v];
    }
    target.faces.insert(target.faces.end(), t, t + 3);
  }
  target.world = world;
}

void triMesh::subsetFromSelectedFace(triMesh& target) const {
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < fn(); ++f)
    if (isFaceSelected(f)) ids.push_back(f);
  subset(ids, target);
}

void triMesh::subSet(const std::vector<unsigned char>& mask, triMesh& target) const {
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < fn() && f < mask.size(); ++f)
    if (mask[f]) ids.push_back(f);
  subset(ids, target);
}

// Normals and adjacency

void triMesh::computeVertexFaceNormals() {
  faceNormals.assign(fn(), point3<float>());
  normals.assign(vn(), point3<float>());
  const unsigned int nv = vn();
  for (unsigned int f = 0; f < fn(); ++f) {
    const unsigned int a = fV0(f), b = fV1(f), c = fV2(f);
    if (a >= nv || b >= nv || c >= nv) continue;  // leaves a bad face without a normal
    const point3<float> n =
        point3<float>::cross(vertices[b] - vertices[a], vertices[c] - vertices[a]);
    faceNormals[f] = n;
    normals[a] += n, normals[b] += n, normals[c] += n;
  }
}

void triMesh::computeVertexFaceNormalizedNormals(bool areaWeighted) {
  computeVertexFaceNormals();
  for (point3<float>& n : faceNormals) n.normalize();
  if (!areaWeighted) {
    normals.assign(vn(), point3<float>());
    const unsigned int nv = vn();
    for (unsigned int f = 0; f < fn(); ++f)
      for (unsigned int i = 0; i < 3; ++i)
        if (fV(f, i) < nv) normals[fV(f, i)] += faceNormals[f];
  }
  for (point3<float>& n : normals) n.normalize();
}

void triMesh::computeFaceFaceTopology() {
  std::vector<unsigned int> start, wedges;
  ALGO::INTERNAL::buildVertexFace(faces.data(), fn(), vn(), nullptr, start, wedges);
  ALGO::INTERNAL::buildFaceFace(faces.data(), fn(), vn(), start, wedges, nullptr, ff);
}

void triMesh::ensureFaceFace() {
  if (!hasFF()) computeFaceFaceTopology();
}

// Selection

void triMesh::selectAllFaces() {
  computeFaceFlags();
  for (SYSTEM::flags<char>& f : faceFlags) f.setFlag(TRIMESH_FACE_SELECTED);
}

void triMesh::deselectAllFaces() {
  for (SYSTEM::flags<char>& f : faceFlags) f.clearFlag(TRIMESH_FACE_SELECTED);
}

void triMesh::invertSelectedFaces() {
  computeFaceFlags();
  for (SYSTEM::flags<char>& f : faceFlags)
    f.setFlag(TRIMESH_FACE_SELECTED, !f.isFlagSet(TRIMESH_FACE_SELECTED));
}

void triMesh::selectFace(unsigned int f, bool selected) {
  computeFaceFlags();
  if (f < fn()) faceFlags[f].setFlag(TRIMESH_FACE_SELECTED, selected);
}

namespace {

// Selects the faces of m whose three corners pass test.
template <class Test>
void selectWhere(triMesh& m, Test test) {
  m.computeFaceFlags();
  const unsigned int nv = m.vn();
  for (unsigned int f = 0; f < m.fn(); ++f) {
    if (m.fV0(f) >= nv || m.fV1(f) >= nv || m.fV2(f) >= nv) continue;
    if (test(m.vPos(m.fV0(f)), m.vPos(m.fV1(f)), m.vPos(m.fV2(f))))
      m.fFlags(f).setFlag(TRIMESH_FACE_SELECTED);
  }
}

}  // namespace

void triMesh::selectFacesWithAxisAlignedBox(const MATH::axisAlignedBox3<float>& box) {
  selectWhere(*this, [&](const point3<float>& a, const point3<float>& b, const point3<float>& c) {
    return box.intersectsTriangle(a, b, c);
  });
}

void triMesh::selectFacesWithCapsule(const MATH::capsule3<float>& capsule) {
  selectWhere(*this, [&](const point3<float>& a, const point3<float>& b, const point3<float>& c) {
    return capsule.intersectsTriangle(a, b, c);
  });
}

void triMesh::selectFacesWithSphere(const MATH::sphere3<float>& sphere) {
  selectWhere(*this, [&](const point3<float>& a, const point3<float>& b, const point3<float>& c) {
    return sphere.intersectsTriangle(a, b, c);
  });
}

void triMesh::selectFacesWithRect(const MATH::matrix4<float>& viewProjection, float x0, float y0,
                                  float x1, float y1) {
  auto inside = [&](const point3<float>& p) {
    const point3<float> q = p * viewProjection;
    return q.x >= x0 && q.x <= x1 && q.y >= y0 && q.y <= y1;
  };
  selectWhere(*this, [&](const point3<float>& a, const point3<float>& b, const point3<float>& c) {
    return inside(a) && inside(b) && inside(c);
  });
}

unsigned int triMesh::eraseSelectedFaces() {
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) marks[f] = isFaceSelected(f);
  return removeFace(marks);
}

unsigned int triMesh::selectIsolatePieces(unsigned int minFaces) {
  std::vector<unsigned int> piece, sizes;
  getIsolatePieces(piece, sizes);
  computeFaceFlags();
  unsigned int n = 0;
  for (unsigned int f = 0; f < fn(); ++f)
    if (piece[f] != NONE && sizes[piece[f]] < minFaces) {
      faceFlags[f].setFlag(TRIMESH_FACE_SELECTED);
      ++n;
    }
  return n;
}

unsigned int triMesh::getSelectedFaceCount() const {
  unsigned int n = 0;
  for (unsigned int f = 0; f < fn(); ++f) n += isFaceSelected(f);
  return n;
}

// Queries

bool triMesh::getRayIntersect(const MATH::ray3<float>& ray, unsigned int& face,
                              point3<float>& point) const {
  const float far = std::numeric_limits<float>::max();
  if (faceTree) {
    MATH::rayHit hit;
    if (!faceTree->firstHit(ray.origin, ray.direction, far, hit)) return false;
    face = hit.face;
    point = ray.pointAt(hit.t);
    return true;
  }
  float best = far;
  bool found = false;
  const unsigned int nv = vn();
  const MATH::watertightRay sheared(ray.origin, ray.direction);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (fV0(f) >= nv || fV1(f) >= nv || fV2(f) >= nv) continue;
    float t, u, v;
    if (MATH::intersectRayTriangle(sheared, vertices[fV0(f)], vertices[fV1(f)], vertices[fV2(f)],
                                   best, t, u, v) &&
        (!found || t < best)) {
      best = t, face = f, found = true;
    }
  }
  if (found) point = ray.pointAt(best);
  return found;
}

unsigned int triMesh::getPlaneIntersect(const MATH::plane3<float>& plane,
                                        std::vector<point3<float>>& segments) const {
  segments.clear();
  const unsigned int nv = vn();
  for (unsigned int f = 0; f < fn(); ++f) {
    if (fV0(f) >= nv || fV1(f) >= nv || fV2(f) >= nv) continue;
    point3<float> a, b;
    if (plane.intersectTriangle(vertices[fV0(f)], vertices[fV1(f)], vertices[fV2(f)], a, b)) {
      segments.push_back(a);
      segments.push_back(b);
    }
  }
  return unsigned(segments.size() / 2);
}

bool triMesh::isABackFace(unsigned int f, const point3<float>& viewDirection) const {
  const point3<float> n =
      hasFN() ? faceNormals[f]
              : point3<float>::cross(vPos(f, 1) - vPos(f, 0), vPos(f, 2) - vPos(f, 0));
  return n * viewDirection > 0.f;
}

// Transforms and colour

void triMesh::transform(const MATH::matrix4<float>& m) {
  for (point3<float>& p : vertices) p = p * m;
  // Normals follow the inverse transpose of the linear part.
  MATH::matrix4<float> linear = m;
  linear[3] = linear[7] = linear[11] = linear[12] = linear[13] = linear[14] = 0.f;
  linear[15] = 1.f;
  const MATH::matrix4<float> nm = linear.getInverse().getTranspose();
  for (point3<float>& n : normals) n = (n * nm).normalize();
  for (point3<float>& n : faceNormals) n = (n * nm).normalize();
  positionsChanged();
}

void triMesh::reverseFaceOrder() {
  for (unsigned int f = 0; f < fn(); ++f)
    std::swap(faces[3 * size_t(f) + 1], faces[3 * size_t(f) + 2]);
  for (point3<float>& n : normals) n = -n;
  for (point3<float>& n : faceNormals) n = -n;
  ff.clear();
  clearSpatialIndexing();
}

void triMesh::setVertexColor(const CORE::color& c) { colors.assign(vn(), c); }

void triMesh::setVertexColorAlpha(unsigned char alpha) {
  if (!hasVC()) colors.assign(vn(), CORE::color(255, 255, 255, 255));
  for (CORE::color& c : colors) c.a = alpha;
}

// Spatial indexes

void triMesh::computeVABBTree(unsigned int leafSize) {
  vertexTree = std::make_unique<MATH::pointTree>();
  vertexTree->build(vertices.data(), vertices.size(), leafSize);
}

void triMesh::computeFABBTree(unsigned int leafSize) {
  faceTree = std::make_unique<MATH::triangleTree>();
  faceTree->build(vertices.data(), vertices.size(), faces.data(), fn(), leafSize);
}

// Rendering

bool triMesh::cache() { return renderHook && renderHook->cache(*this); }
bool triMesh::isCached() const { return renderHook && renderHook->isCached(*this); }
void triMesh::discard() {
  if (renderHook) renderHook->discard(*this);
}
void triMesh::draw() {
  if (renderHook) renderHook->draw(*this);
}
void triMesh::render(RENDERING::renderingContext* context) {
  if (renderHook) renderHook->render(*this, context);
}
void triMesh::updateRenderMatrix() {
  if (renderHook) renderHook->updateRenderMatrix(*this);
}

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
