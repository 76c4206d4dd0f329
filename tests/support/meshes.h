#pragma once

// Meshes built in code for the mesh tests. Each generator appends to the given mesh, so
// pieces can be combined; finishMesh runs the closing sequence of an edit.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace testMeshes {

using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;

// Edges (keeping wire edges), VE and unit normals, in the order an edit ends with.
inline void finishMesh(editMesh& m) {
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
}

// nx by ny cells over [0, nx] x [0, ny] at z = 0, normals +z. Vertex (i, j) is
// j * (nx + 1) + i. Quads, or each cell split into two triangles along its diagonal; the
// cells listed in holes are left out, each leaving a boundary loop.
inline void makeGrid(editMesh& m, unsigned nx, unsigned ny, bool quads = true,
                     const std::vector<std::pair<unsigned, unsigned>>& holes = {}) {
  const unsigned base = m.vn();
  for (unsigned j = 0; j <= ny; ++j)
    for (unsigned i = 0; i <= nx; ++i) m.addVertex(float(i), float(j), 0.f);
  auto id = [&](unsigned i, unsigned j) { return base + j * (nx + 1) + i; };
  for (unsigned j = 0; j < ny; ++j)
    for (unsigned i = 0; i < nx; ++i) {
      if (std::find(holes.begin(), holes.end(), std::make_pair(i, j)) != holes.end()) continue;
      const unsigned a = id(i, j), b = id(i + 1, j), c = id(i + 1, j + 1), d = id(i, j + 1);
      if (quads) {
        m.addQuadFace(a, b, c, d);
      } else {
        m.addTriFace(a, b, c);
        m.addTriFace(a, c, d);
      }
    }
}

inline void makeGridWithHoles(editMesh& m, unsigned nx, unsigned ny,
                              const std::vector<std::pair<unsigned, unsigned>>& holes) {
  makeGrid(m, nx, ny, true, holes);
}

// Unit cube [0,1]^3, six quads wound outward.
inline void makeCube(editMesh& m) {
  const unsigned b = m.vn();
  for (unsigned k = 0; k < 8; ++k) m.addVertex(float(k & 1), float((k >> 1) & 1), float(k >> 2));
  m.addQuadFace(b + 0, b + 2, b + 3, b + 1);  // z = 0
  m.addQuadFace(b + 4, b + 5, b + 7, b + 6);  // z = 1
  m.addQuadFace(b + 0, b + 1, b + 5, b + 4);  // y = 0
  m.addQuadFace(b + 2, b + 6, b + 7, b + 3);  // y = 1
  m.addQuadFace(b + 0, b + 4, b + 6, b + 2);  // x = 0
  m.addQuadFace(b + 1, b + 3, b + 7, b + 5);  // x = 1
}

// Closed unit sphere: two poles, rings - 1 latitude rings of segments vertices, triangle
// caps and quads between, all wound outward.
inline void makeSphere(editMesh& m, unsigned rings, unsigned segments) {
  const unsigned b = m.vn();
  const double pi = 3.14159265358979323846;
  m.addVertex(0.f, 0.f, 1.f);
  for (unsigned r = 1; r < rings; ++r) {
    const double t = pi * r / rings;
    for (unsigned s = 0; s < segments; ++s) {
      const double p = 2 * pi * s / segments;
      m.addVertex(float(std::sin(t) * std::cos(p)), float(std::sin(t) * std::sin(p)),
                  float(std::cos(t)));
    }
  }
  const unsigned south = m.addVertex(0.f, 0.f, -1.f);
  auto ring = [&](unsigned r, unsigned s) { return b + 1 + (r - 1) * segments + s % segments; };
  for (unsigned s = 0; s < segments; ++s) m.addTriFace(b, ring(1, s), ring(1, s + 1));
  for (unsigned r = 1; r + 1 < rings; ++r)
    for (unsigned s = 0; s < segments; ++s)
      m.addQuadFace(ring(r, s), ring(r + 1, s), ring(r + 1, s + 1), ring(r, s + 1));
  for (unsigned s = 0; s < segments; ++s)
    m.addTriFace(south, ring(rings - 1, s + 1), ring(rings - 1, s));
}

// Cone with its apex at z = 1 over a unit circle at z = 0, left open at the base: one
// boundary loop of `segments` edges.
inline void makeOpenCone(editMesh& m, unsigned segments) {
  const unsigned apex = m.addVertex(0.f, 0.f, 1.f);
  const double pi = 3.14159265358979323846;
  for (unsigned s = 0; s < segments; ++s)
    m.addVertex(float(std::cos(2 * pi * s / segments)), float(std::sin(2 * pi * s / segments)),
                0.f);
  for (unsigned s = 0; s < segments; ++s)
    m.addTriFace(apex, apex + 1 + s, apex + 1 + (s + 1) % segments);
}

// A row of n quads: 2 (n + 1) vertices, a boundary all round.
inline void makeStrip(editMesh& m, unsigned n) { makeGrid(m, n, 1, true); }

// k triangles sharing the edge between the first two vertices: a non-manifold edge for
// k > 2, and past the 63-face limit of an edge for k = 64.
inline void makeFan(editMesh& m, unsigned k) {
  const unsigned a = m.addVertex(0.f, 0.f, 0.f);
  const unsigned b = m.addVertex(1.f, 0.f, 0.f);
  const double pi = 3.14159265358979323846;
  for (unsigned i = 0; i < k; ++i) {
    const double t = 2 * pi * i / k;
    const unsigned c = m.addVertex(0.5f, float(std::cos(t)), float(std::sin(t)));
    m.addTriFace(a, b, c);
  }
}

// A flat disc of ten triangles around the origin whose first rim vertex is pulled in to
// half the radius: flipping its spoke would even the valences but fold a triangle over.
inline void makePulledDisc(editMesh& m) {
  const unsigned centre = m.addVertex(0.f, 0.f, 0.f);
  for (unsigned i = 0; i < 10; ++i) {
    const float t = float(i) * 0.6283185f, radius = i == 0 ? 0.5f : 1.f;
    m.addVertex(radius * std::cos(t), radius * std::sin(t), 0.f);
  }
  for (unsigned i = 0; i < 10; ++i) m.addTriFace(centre, centre + 1 + i, centre + 1 + (i + 1) % 10);
}

// A face of 1 corner, one of 2 corners, and a triangle: 6 vertices.
inline void makeDegenerateFaces(editMesh& m) {
  const unsigned b = m.vn();
  for (unsigned k = 0; k < 6; ++k) m.addVertex(float(k), float(k % 2), 0.f);
  const unsigned one[1] = {b};
  const unsigned two[2] = {b + 1, b + 2};
  m.addFace(one, 1);
  m.addFace(two, 2);
  m.addTriFace(b + 3, b + 4, b + 5);
}

// n vertices used by no face.
inline void addIsolatedVertices(editMesh& m, unsigned n) {
  for (unsigned k = 0; k < n; ++k) m.addVertex(float(k), -5.f, 0.f);
}

// Live faces, and live edges with fewer than two faces.
inline unsigned liveFaces(const editMesh& m) {
  unsigned n = 0;
  for (unsigned f = 0; f < m.fn(); ++f) n += !m.isFaceDeleted(f);
  return n;
}
inline unsigned liveEdges(const editMesh& m) {
  unsigned n = 0;
  for (unsigned e = 0; e < m.en(); ++e) n += !m.edgeIsDeleted(e);
  return n;
}
inline unsigned borderEdges(const editMesh& m) {
  unsigned n = 0;
  for (unsigned e = 0; e < m.en(); ++e) n += !m.edgeIsDeleted(e) && m.isEdgeBorder(e);
  return n;
}

// Volume enclosed by the live faces (fans from corner 0), positive when wound outward.
inline double signedVolume(const editMesh& m) {
  double v = 0;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned t = 0; t < m.getTriangleNumFace(f); ++t) {
      unsigned a, b, c;
      m.getTriangle(f, t, a, b, c);
      const p3 &p = m.vPos(a), &q = m.vPos(b), &r = m.vPos(c);
      v += p.x * (double(q.y) * r.z - double(q.z) * r.y) -
           p.y * (double(q.x) * r.z - double(q.z) * r.x) +
           p.z * (double(q.x) * r.y - double(q.y) * r.x);
    }
  }
  return v / 6.0;
}

}  // namespace testMeshes

// The invariant check of the kernel, as every mesh test runs it after each edit.
#define EXPECT_MESH_VALID(m) EXPECT_EQ((m).checkInvariants(), "")
#define ASSERT_MESH_VALID(m) ASSERT_EQ((m).checkInvariants(), "")
