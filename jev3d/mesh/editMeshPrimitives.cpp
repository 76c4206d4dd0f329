#include <algorithm>
#include <cmath>

#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/internal/topologyTools.h"

namespace JEV {
namespace MESH {

using MATH::point3;
using namespace INTERNAL;

namespace {

constexpr double PI = 3.14159265358979323846;

point3<float> polar(double radius, double angle, double z) {
  return point3<float>(float(radius * std::cos(angle)), float(radius * std::sin(angle)), float(z));
}

// Adds a face of a convex solid centred on the origin, turned to face away from it.
void addOutwardFace(editMesh& m, std::vector<unsigned int> ids) {
  point3<float> centre, normal;
  for (unsigned int v : ids) centre += m.vPos(v);
  for (size_t i = 0; i < ids.size(); ++i) {
    const point3<float>& p = m.vPos(ids[i]);
    const point3<float>& q = m.vPos(ids[(i + 1) % ids.size()]);
    normal += point3<float>::cross(p, q);
  }
  if (normal * centre < 0.f) std::reverse(ids.begin(), ids.end());
  m.addPolyFace(ids);
}

// Two unit vectors completing axis to a right-handed frame (u, w, axis).
void frameAround(const point3<float>& axis, point3<float>& u, point3<float>& w) {
  const point3<float> helper =
      std::fabs(axis.x) < 0.9f ? point3<float>(1.f, 0.f, 0.f) : point3<float>(0.f, 1.f, 0.f);
  u = point3<float>::cross(helper, axis).normalize();
  w = point3<float>::cross(axis, u);
}

// Rings of `segments` vertices, one per (radius, z) pair; returns the first id of each.
std::vector<unsigned int> addRings(editMesh& m, unsigned int segments,
                                   const std::vector<std::pair<double, double>>& rings) {
  std::vector<unsigned int> first;
  for (const auto& [radius, z] : rings) {
    first.push_back(m.vn());
    for (unsigned int s = 0; s < segments; ++s)
      m.addVertex(polar(radius, 2 * PI * s / segments, z));
  }
  return first;
}

// Quads between two rings, facing outward when the lower ring comes first.
void joinRings(editMesh& m, unsigned int segments, unsigned int lower, unsigned int upper) {
  for (unsigned int s = 0; s < segments; ++s) {
    const unsigned int t = (s + 1) % segments;
    m.addQuadFace(lower + s, lower + t, upper + t, upper + s);
  }
}

// Triangles from a ring to a point above it (up) or below it.
void fanToPoint(editMesh& m, unsigned int segments, unsigned int ring, unsigned int apex, bool up) {
  for (unsigned int s = 0; s < segments; ++s) {
    const unsigned int t = (s + 1) % segments;
    if (up) {
      m.addTriFace(ring + s, ring + t, apex);
    } else {
      m.addTriFace(ring + t, ring + s, apex);
    }
  }
}

// One polygon over a ring, facing +z (top) or -z.
void capRing(editMesh& m, unsigned int segments, unsigned int ring, bool top) {
  std::vector<unsigned int> ids(segments);
  for (unsigned int s = 0; s < segments; ++s) ids[s] = ring + (top ? s : segments - 1 - s);
  m.addPolyFace(ids);
}

// Empties the vertex and face stores in place for a new shape: capacity, the aux stores,
// UV and the vertex colour flag stay; edges of the old mesh go, since they would name
// vertices the new one does not have.
void restartShape(editMesh& m) {
  m.resizeVertexData(0);
  m.resizeFaceData(0);
  m.resizeFVData(0);
  m.setDelFvn(0);
  m.clearEdgeBuffers(false);
  m.clearGeomSelectionState();
  m.clearAllFlags(false);
  m.setDelVn(0);
  m.setDelFn(0);
}

// The end of a whole-mesh build: edges of the faces alone (an old mesh's wire edges do
// not belong to the shape), VE and unit normals.
void closeShape(editMesh& m) {
  m.checkMeshState();
  m.computeEdges(false);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
  m.invalidateRenderData();
  m.updateBBox();
}

}  // namespace

void editMesh::makeCube() {
  resizeVertexData(8);
  resizeFaceData(6);
  clearGeomSelectionState();
  // The records are reused where they stand: bytes that marked the old elements deleted
  // would leave the cube's own elements deleted, so the flags start from 0.
  fFlag.assign(6, 0);
  vFlag.assign(8, 0);
  vFlag.resize(12, 0);  // the edge count goes to the vertex store: kept on purpose
  delVn = delFn = 0;
  for (unsigned int k = 0; k < 8; ++k) {
    V(k) = vert();
    vPos(k) = point3<float>(k & 1 ? 1.f : -1.f, k & 2 ? 1.f : -1.f, k & 4 ? 1.f : -1.f);
  }
  // makeQuadFace appends the corners and counts whatever a reused face held as dead
  makeQuadFace(0, 0, 2, 3, 1);  // z = -1
  makeQuadFace(1, 4, 5, 7, 6);  // z = 1
  makeQuadFace(2, 0, 1, 5, 4);  // y = -1
  makeQuadFace(3, 2, 6, 7, 3);  // y = 1
  makeQuadFace(4, 0, 4, 6, 2);  // x = -1
  makeQuadFace(5, 1, 3, 7, 5);  // x = 1
  for (unsigned int f = 0; f < 6; ++f) F(f).chunkId = 0;
  closeShape(*this);
}

void editMesh::makeTetrahedron() {
  restartShape(*this);
  const float s = float(1.0 / std::sqrt(3.0));
  addVertex(s, s, s);
  addVertex(s, -s, -s);
  addVertex(-s, s, -s);
  addVertex(-s, -s, s);
  addOutwardFace(*this, {0, 1, 2});
  addOutwardFace(*this, {0, 1, 3});
  addOutwardFace(*this, {0, 2, 3});
  addOutwardFace(*this, {1, 2, 3});
  closeTopologyEdit(*this);
}

void editMesh::makeOctahedron() {
  restartShape(*this);
  for (int axis = 0; axis < 3; ++axis)
    for (float sign : {1.f, -1.f}) {
      point3<float> p;
      p[axis] = sign;
      addVertex(p);
    }
  // one face per octant: a vertex from each axis pair
  for (unsigned int k = 0; k < 8; ++k)
    addOutwardFace(*this, {k & 1, 2 + ((k >> 1) & 1), 4 + ((k >> 2) & 1)});
  closeTopologyEdit(*this);
}

void editMesh::makeDodecahedron() {
  restartShape(*this);
  UV().clear();
  const double phi = (1.0 + std::sqrt(5.0)) / 2.0, inv = 1.0 / phi;
  const double scale = 1.0 / std::sqrt(3.0);
  auto add = [&](double x, double y, double z) {
    addVertex(float(x * scale), float(y * scale), float(z * scale));
  };
  for (int k = 0; k < 8; ++k) add(k & 1 ? 1 : -1, k & 2 ? 1 : -1, k & 4 ? 1 : -1);
  for (int k = 0; k < 4; ++k) {
    const double a = k & 1 ? 1 : -1, b = k & 2 ? 1 : -1;
    add(0, a * inv, b * phi);
    add(a * inv, b * phi, 0);
    add(a * phi, 0, b * inv);
  }
  // each face is centred on a vertex direction of the dual icosahedron: the five
  // vertices furthest along it, in turn around it
  std::vector<point3<float>> centres;
  for (int k = 0; k < 4; ++k) {
    const float a = k & 1 ? 1.f : -1.f, b = k & 2 ? 1.f : -1.f, p = float(phi);
    centres.emplace_back(0.f, a * p, b);
    centres.emplace_back(a, 0.f, b * p);
    centres.emplace_back(a * p, b, 0.f);
  }
  for (const point3<float>& c : centres) {
    std::vector<std::pair<float, unsigned int>> along;
    for (unsigned int v = 0; v < 20; ++v) along.emplace_back(-(vPos(v) * c), v);
    std::sort(along.begin(), along.end());
    point3<float> u, w;
    frameAround(point3<float>(c).normalize(), u, w);
    std::vector<std::pair<float, unsigned int>> around;
    for (int i = 0; i < 5; ++i) {
      const point3<float>& p = vPos(along[i].second);
      around.emplace_back(std::atan2(p * w, p * u), along[i].second);
    }
    std::sort(around.begin(), around.end());
    std::vector<unsigned int> ids;
    for (const auto& a : around) ids.push_back(a.second);
    addOutwardFace(*this, ids);
  }
  closeTopologyEdit(*this);
}

void editMesh::makeQuad() {
  makeQuad(point3<float>(-1.f, -1.f, 0.f), point3<float>(1.f, -1.f, 0.f),
           point3<float>(1.f, 1.f, 0.f), point3<float>(-1.f, 1.f, 0.f));
}

void editMesh::makeQuad(const point3<float>& p0, const point3<float>& p1, const point3<float>& p2,
                        const point3<float>& p3) {
  restartShape(*this);
  addQuadFace(addVertex(p0), addVertex(p1), addVertex(p2), addVertex(p3));
  closeTopologyEdit(*this);
}

void editMesh::makeCone(unsigned int segments, float radius, float height, float topRadius) {
  restartShape(*this);
  segments = std::max(3u, segments);
  const double h = height * 0.5;
  if (topRadius == 0.f) {
    const unsigned int base = addRings(*this, segments, {{radius, -h}})[0];
    fanToPoint(*this, segments, base, addVertex(0.f, 0.f, float(h)), true);
    capRing(*this, segments, base, false);
  } else {
    const std::vector<unsigned int> r = addRings(*this, segments, {{radius, -h}, {topRadius, h}});
    joinRings(*this, segments, r[0], r[1]);
    capRing(*this, segments, r[0], false);
    capRing(*this, segments, r[1], true);
  }
  closeTopologyEdit(*this);
}

void editMesh::makeCone(int segments, int stacks, int capRings) {
  restartShape(*this);
  const unsigned int n = unsigned(std::max(3, segments));
  const unsigned int rows = unsigned(std::max(1, stacks));
  const unsigned int caps = unsigned(std::max(1, capRings));
  std::vector<std::pair<double, double>> side;
  for (unsigned int r = 0; r < rows; ++r)
    side.emplace_back(1.0 - double(r) / rows, -1.0 + 2.0 * r / rows);
  const std::vector<unsigned int> ring = addRings(*this, n, side);
  for (unsigned int r = 0; r + 1 < rows; ++r) joinRings(*this, n, ring[r], ring[r + 1]);
  fanToPoint(*this, n, ring.back(), addVertex(0.f, 0.f, 1.f), true);
  // the base: rings inward from the side's first ring, then a fan to the centre
  std::vector<std::pair<double, double>> inner;
  for (unsigned int k = 1; k < caps; ++k) inner.emplace_back(1.0 - double(k) / caps, -1.0);
  std::vector<unsigned int> base{ring[0]};
  for (unsigned int first : addRings(*this, n, inner)) base.push_back(first);
  for (size_t k = 0; k + 1 < base.size(); ++k) joinRings(*this, n, base[k + 1], base[k]);
  fanToPoint(*this, n, base.back(), addVertex(0.f, 0.f, -1.f), false);
  closeTopologyEdit(*this);
}

void editMesh::makeTorus(unsigned int rings, unsigned int segments, float majorRadius,
                         float minorRadius) {
  makeTorus(false, false, false, rings, segments, majorRadius, minorRadius);
}

void editMesh::makeTorus(bool triangles, bool append, bool selectNew, unsigned int rings,
                         unsigned int segments, float majorRadius, float minorRadius) {
  if (!append) restartShape(*this);
  rings = std::max(3u, rings);
  segments = std::max(3u, segments);
  const unsigned int base = vn(), firstFace = fn();
  for (unsigned int i = 0; i < rings; ++i)
    for (unsigned int j = 0; j < segments; ++j) {
      const double t = 2 * PI * i / rings, p = 2 * PI * j / segments;
      addVertex(polar(majorRadius + minorRadius * std::cos(p), t, minorRadius * std::sin(p)));
    }
  auto id = [&](unsigned int i, unsigned int j) {
    return base + (i % rings) * segments + j % segments;
  };
  for (unsigned int i = 0; i < rings; ++i)
    for (unsigned int j = 0; j < segments; ++j) {
      const unsigned int a = id(i, j), b = id(i + 1, j), c = id(i + 1, j + 1), d = id(i, j + 1);
      if (triangles) {
        addTriFace(a, b, c);
        addTriFace(a, c, d);
      } else {
        addQuadFace(a, b, c, d);
      }
    }
  closeTopologyEdit(*this);
  if (selectNew)
    for (unsigned int f = firstFace; f < fn(); ++f) selectFace(f);
}

void editMesh::makeTorus(const point3<float>& centre, const point3<float>& axis, unsigned int rings,
                         unsigned int segments, float majorRadius, float minorRadius) {
  makeTorus(rings, segments, majorRadius, minorRadius);
  point3<float> z = axis;
  if (z.squaredNorm() == 0.f) z = point3<float>(0.f, 0.f, 1.f);
  z.normalize();
  point3<float> u, w;
  frameAround(z, u, w);
  for (unsigned int v = 0; v < vn(); ++v) {
    const point3<float> p = vPos(v);
    vPos(v) = centre + u * p.x + w * p.y + z * p.z;
  }
  computeNormalizedNormals();
}

void editMesh::makeCylinder(unsigned int segments, unsigned int stacks) {
  restartShape(*this);
  segments = std::max(3u, segments);
  stacks = std::max(1u, stacks);
  std::vector<std::pair<double, double>> rows;
  for (unsigned int r = 0; r <= stacks; ++r) rows.emplace_back(1.0, -1.0 + 2.0 * r / stacks);
  const std::vector<unsigned int> ring = addRings(*this, segments, rows);
  for (unsigned int r = 0; r < stacks; ++r) joinRings(*this, segments, ring[r], ring[r + 1]);
  capRing(*this, segments, ring.front(), false);
  capRing(*this, segments, ring.back(), true);
  closeTopologyEdit(*this);
}

void editMesh::makeSphere(unsigned int rings, unsigned int segments) {
  restartShape(*this);
  rings = std::max(2u, rings);
  segments = std::max(3u, segments);
  const unsigned int north = addVertex(0.f, 0.f, 1.f);
  std::vector<std::pair<double, double>> rows;
  for (unsigned int r = 1; r < rings; ++r) {
    const double t = PI * r / rings;
    rows.emplace_back(std::sin(t), std::cos(t));
  }
  const std::vector<unsigned int> ring = addRings(*this, segments, rows);
  const unsigned int south = addVertex(0.f, 0.f, -1.f);
  // rows run from north to south: join each lower ring to the one above it
  fanToPoint(*this, segments, ring.front(), north, true);
  for (size_t r = 0; r + 1 < ring.size(); ++r) joinRings(*this, segments, ring[r + 1], ring[r]);
  fanToPoint(*this, segments, ring.back(), south, false);
  closeTopologyEdit(*this);
}

void editMesh::makeCircle(const point3<float>& centre, const point3<float>& normal, float radius,
                          unsigned int segments, bool filled) {
  restartShape(*this);
  segments = std::max(3u, segments);
  point3<float> z = normal;
  if (z.squaredNorm() == 0.f) z = point3<float>(0.f, 0.f, 1.f);
  z.normalize();
  point3<float> u, w;
  frameAround(z, u, w);
  std::vector<unsigned int> ids;
  for (unsigned int s = 0; s < segments; ++s) {
    const double a = 2 * PI * s / segments;
    ids.push_back(
        addVertex(centre + u * float(radius * std::cos(a)) + w * float(radius * std::sin(a)), z));
  }
  if (filled) {
    addPolyFace(ids);
  } else {
    for (unsigned int s = 0; s < segments; ++s) addEdge(ids[s], ids[(s + 1) % segments]);
  }
  closeTopologyEdit(*this);
}

bool editMesh::subset(editMesh* target, const std::vector<unsigned int>& faces) const {
  return subset(target, faces, {});
}

bool editMesh::subset(editMesh* target, const std::vector<unsigned int>& faces,
                      const std::vector<unsigned int>& verts) const {
  if (!target || target == this) return false;
  target->clear(false);
  std::vector<uint32_t> renamed(vn(), NO_ID);
  auto take = [&](uint32_t v) {
    if (renamed[v] == NO_ID) renamed[v] = target->addVertex(V(v));
    return renamed[v];
  };
  std::vector<unsigned int> ids;
  for (unsigned int f : faces) {
    if (!isFaceValid(f)) continue;
    ids.clear();
    bool valid = true;
    for (uint32_t i = 0; i < fVNum(f) && valid; ++i) valid = isVertexValid(fV(f, i));
    if (!valid) continue;
    for (uint32_t i = 0; i < fVNum(f); ++i) ids.push_back(take(fV(f, i)));
    const unsigned int g = target->addPolyFace(ids);
    if (!ids.empty()) target->fNor(g) = fNor(f);
  }
  for (unsigned int v : verts)
    if (isVertexValid(v)) take(v);
  target->setHasVC(hasVC());
  closeTopologyEdit(*target);
  return true;
}

bool editMesh::clone(const editMesh* src) {
  if (!src || src == this) return false;
  *this = *src;
  invalidateRenderData();
  return true;
}

}  // namespace MESH
}  // namespace JEV
