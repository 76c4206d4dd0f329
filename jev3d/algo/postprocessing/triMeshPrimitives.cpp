// triMesh primitives: quad, cube, sphere, cone and cylinder, wound outward.

#include <algorithm>
#include <cmath>

#include "jev3d/algo/postprocessing/triMesh.h"

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

using MATH::point3;

namespace {

constexpr double PI = 3.14159265358979323846;

// A ring of segments vertices of radius r at height z, starting on +x.
unsigned int addRing(triMesh& m, float r, float z, unsigned int segments) {
  const unsigned int first = m.vn();
  for (unsigned int s = 0; s < segments; ++s) {
    const double a = 2 * PI * s / segments;
    m.addVertex(point3<float>(float(r * std::cos(a)), float(r * std::sin(a)), z));
  }
  return first;
}

// Quads between two rings (the lower first), split into triangles facing outward.
void joinRings(triMesh& m, unsigned int lower, unsigned int upper, unsigned int segments) {
  for (unsigned int s = 0; s < segments; ++s) {
    const unsigned int t = (s + 1) % segments;
    m.addFace(lower + s, lower + t, upper + t);
    m.addFace(lower + s, upper + t, upper + s);
  }
}

// A fan from centre to a ring; up says whether it faces +z.
void capRing(triMesh& m, unsigned int centre, unsigned int ring, unsigned int segments, bool up) {
  for (unsigned int s = 0; s < segments; ++s) {
    const unsigned int t = (s + 1) % segments;
    if (up)
      m.addFace(centre, ring + s, ring + t);
    else
      m.addFace(centre, ring + t, ring + s);
  }
}

}  // namespace

void triMesh::makeQuad(float size) {
  clear();
  const float h = size * 0.5f;
  addVertex(point3<float>(-h, -h, 0)), addVertex(point3<float>(h, -h, 0));
  addVertex(point3<float>(h, h, 0)), addVertex(point3<float>(-h, h, 0));
  addFace(0, 1, 2), addFace(0, 2, 3);
}

void triMesh::makeCube(float size) {
  clear();
  const float h = size * 0.5f;
  for (unsigned int k = 0; k < 8; ++k)
    addVertex(point3<float>(k & 1 ? h : -h, k & 2 ? h : -h, k & 4 ? h : -h));
  const unsigned int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                    {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  for (const auto& q : quads) addFace(q, 4);
}

void triMesh::makeSphere(float radius, unsigned int rings, unsigned int segments) {
  clear();
  rings = std::max(rings, 2u), segments = std::max(segments, 3u);
  const unsigned int north = addVertex(point3<float>(0, 0, radius));
  unsigned int previous = NONE;
  for (unsigned int r = 1; r < rings; ++r) {
    const double t = PI * r / rings;
    const unsigned int ring =
        addRing(*this, float(radius * std::sin(t)), float(radius * std::cos(t)), segments);
    if (previous == NONE)
      capRing(*this, north, ring, segments, true);
    else
      joinRings(*this, ring, previous, segments);
    previous = ring;
  }
  const unsigned int south = addVertex(point3<float>(0, 0, -radius));
  capRing(*this, south, previous, segments, false);
}

void triMesh::makeCone(float radius, float height, unsigned int segments) {
  clear();
  segments = std::max(segments, 3u);
  const unsigned int base = addRing(*this, radius, -height * 0.5f, segments);
  const unsigned int apex = addVertex(point3<float>(0, 0, height * 0.5f));
  const unsigned int bottom = addVertex(point3<float>(0, 0, -height * 0.5f));
  capRing(*this, apex, base, segments, true);
  capRing(*this, bottom, base, segments, false);
}

void triMesh::makeCylinder(float radius, float height, unsigned int segments) {
  clear();
  segments = std::max(segments, 3u);
  const unsigned int lower = addRing(*this, radius, -height * 0.5f, segments);
  const unsigned int upper = addRing(*this, radius, height * 0.5f, segments);
  joinRings(*this, lower, upper, segments);
  capRing(*this, addVertex(point3<float>(0, 0, height * 0.5f)), upper, segments, true);
  capRing(*this, addVertex(point3<float>(0, 0, -height * 0.5f)), lower, segments, false);
}

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
