// What the tests that pin an algorithm's output bit for bit share: a byte checksum, the
// checksum of a whole mesh, and the sphere band whose rims are the fill's holes.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/mesh/meshInterface.h"

namespace pinnedOutput {

// FNV-1a over raw bytes.
struct byteHash {
  uint64_t h = 14695981039346656037ull;
  void add(const void* data, size_t n) {
    const unsigned char* b = static_cast<const unsigned char*>(data);
    for (size_t i = 0; i < n; ++i) h = (h ^ b[i]) * 1099511628211ull;
  }
  void add(unsigned int v) { add(&v, sizeof v); }
};

// Everything an algorithm writes to its target, in order: counts, every vertex's
// position, normal and colour where held, and every face's corners.
inline uint64_t meshHash(const JEV::MESH::meshInterface& m) {
  byteHash h;
  h.add(m.vn());
  h.add(m.fn());
  h.add(unsigned(m.hasVN()) | unsigned(m.hasVC()) << 1);
  for (unsigned v = 0; v < m.vn(); ++v) {
    h.add(&m.vPos(v), sizeof(JEV::MATH::point3<float>));
    if (m.hasVN()) h.add(&m.vNor(v), sizeof(JEV::MATH::point3<float>));
    if (m.hasVC()) h.add(&m.vCol(v), sizeof(JEV::CORE::color));
  }
  for (unsigned f = 0; f < m.fn(); ++f) {
    h.add(m.f2vNum(f));
    for (unsigned i = 0; i < m.f2vNum(f); ++i) h.add(m.fV(f, i));
  }
  return h.h;
}

// The band of a unit sphere from 30 to 30 + 180 / spanDivisor degrees off the north pole,
// segments around and rows high: two round loops of segments rim vertices each.
inline JEV::MESH::POSTPROCESSING::triMesh sphereBand(unsigned segments, unsigned rows,
                                                     double spanDivisor) {
  JEV::MESH::POSTPROCESSING::triMesh m;
  const double pi = 3.14159265358979323846, t0 = pi / 6, dt = (pi / spanDivisor) / rows;
  for (unsigned r = 0; r <= rows; ++r)
    for (unsigned s = 0; s < segments; ++s) {
      const double t = t0 + r * dt, p = 2 * pi * s / segments;
      m.addVertex(JEV::MATH::point3<float>(float(std::sin(t) * std::cos(p)),
                                           float(std::sin(t) * std::sin(p)), float(std::cos(t))));
    }
  for (unsigned r = 0; r < rows; ++r)
    for (unsigned s = 0; s < segments; ++s) {
      const unsigned a = r * segments + s, b = r * segments + (s + 1) % segments;
      m.addFace(a, a + segments, b + segments);
      m.addFace(a, b + segments, b);
    }
  return m;
}

}  // namespace pinnedOutput
