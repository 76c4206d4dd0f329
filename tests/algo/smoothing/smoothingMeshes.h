#pragma once

// Noisy shapes with known true surfaces, and how far a mesh lies from them, for the
// smoothing tests.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <random>
#include <vector>

#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "support/meshes.h"

namespace smoothingMeshes {

using JEV::MESH::editMesh;
using testMeshes::p3;

// Uniform in [-1, 1] from a fixed generator, the same on every platform.
class noise {
 public:
  explicit noise(uint32_t seed) : gen(seed) {}
  float operator()() { return float(double(gen()) / 4294967295.0 * 2.0 - 1.0); }

 private:
  std::mt19937 gen;
};

// Edges, VE and unit normals after building or moving.
inline void finish(editMesh& m) { testMeshes::finishMesh(m); }

// The unit sphere in triangles, every vertex pushed along its radius by up to amplitude.
inline void makeNoisySphere(editMesh& m, unsigned rings, unsigned segments, float amplitude,
                            uint32_t seed = 7) {
  testMeshes::makeSphere(m, rings, segments);
  m.checkMeshState();
  m.triangulate();
  noise n(seed);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) *= 1.f + amplitude * n();
  finish(m);
}

// Root mean square of |p| - 1 over the live vertices: the distance to the unit sphere.
inline double sphereDeviation(const editMesh& m) {
  double s = 0;
  unsigned k = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    if (m.isVertDeleted(v)) continue;
    const double d = m.vPos(v).norm() - 1.0;
    s += d * d, ++k;
  }
  return k ? std::sqrt(s / k) : 0.0;
}

// The cube [-1, 1]^3 with each side cut into 2^steps x 2^steps quads, in triangles.
inline void makeFineCube(editMesh& m, unsigned steps) {
  m.makeCube();
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  for (unsigned s = 0; s < steps; ++s) m.refine();
  m.triangulate();
  finish(m);
}

// makeFineCube with every vertex moved in a random direction by up to amplitude.
inline void makeNoisyCube(editMesh& m, unsigned steps, float amplitude, uint32_t seed = 11) {
  makeFineCube(m, steps);
  noise n(seed);
  for (unsigned v = 0; v < m.vn(); ++v) {
    const float x = n(), y = n(), z = n();
    m.vPos(v) += p3(x, y, z) * amplitude;
  }
  finish(m);
}

// Distance from p to the surface of the cube [-1, 1]^3.
inline double cubeDistance(const p3& p) {
  const double a[3] = {std::fabs(p.x) - 1.0, std::fabs(p.y) - 1.0, std::fabs(p.z) - 1.0};
  const double out = std::sqrt(std::max(a[0], 0.0) * std::max(a[0], 0.0) +
                               std::max(a[1], 0.0) * std::max(a[1], 0.0) +
                               std::max(a[2], 0.0) * std::max(a[2], 0.0));
  const double in = std::max({a[0], a[1], a[2]});
  return in > 0 ? out : -in;
}

// Root mean square distance to the true cube over the vertices within `band` of one of its
// edges (at least two coordinates near +-1): how sharp the edges stayed.
inline double cubeEdgeDeviation(const editMesh& m, double band = 0.2) {
  double s = 0;
  unsigned k = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    if (m.isVertDeleted(v)) continue;
    const p3& p = m.vPos(v);
    const int near =
        (std::fabs(p.x) > 1 - band) + (std::fabs(p.y) > 1 - band) + (std::fabs(p.z) > 1 - band);
    if (near < 2) continue;
    const double d = cubeDistance(p);
    s += d * d, ++k;
  }
  return k ? std::sqrt(s / k) : 0.0;
}

// How far a noisy cube lies from the true one near its edges: as made, after a filter,
// and after three Laplacian steps.
struct cubeEdgeDeviations {
  double noisy, filtered, laplacian;
};

// Runs filter (a mesh in, the filtered mesh out) and the Laplacian on the same noisy cube
// and prints the three deviations under name.
template <class Filter>
cubeEdgeDeviations cubeEdgesAfter(const char* name, Filter filter) {
  editMesh m;
  makeNoisyCube(m, 4, 0.03f);
  const editMesh out = filter(m);
  editMesh laplacian = m;
  JEV::MESH::ALGO::SMOOTHING::computeLaplacianSmooth(laplacian, 3, false, nullptr);
  const cubeEdgeDeviations d{cubeEdgeDeviation(m), cubeEdgeDeviation(out),
                             cubeEdgeDeviation(laplacian)};
  std::cout << "cube edge deviation: noisy " << d.noisy << ", " << name << " " << d.filtered
            << ", Laplacian " << d.laplacian << "\n";
  return d;
}

// Bit-for-bit equal points.
inline bool same(const p3& a, const p3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// The positions of every vertex.
inline std::vector<p3> positions(const editMesh& m) {
  std::vector<p3> out(m.vn());
  for (unsigned v = 0; v < m.vn(); ++v) out[v] = m.vPos(v);
  return out;
}

// A grid in the plane z = 0 with each vertex jittered inside the plane by up to 0.3.
inline void makeJitteredPlane(editMesh& m, unsigned n, bool quads = false) {
  testMeshes::makeGrid(m, n, n, quads);
  noise r(3);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) += p3(0.3f * r(), 0.3f * r(), 0.f);
  finish(m);
}

// Largest |z| over the live vertices.
inline float maxAbsZ(const editMesh& m) {
  float z = 0;
  for (unsigned v = 0; v < m.vn(); ++v)
    if (!m.isVertDeleted(v)) z = std::max(z, std::fabs(m.vPos(v).z));
  return z;
}

}  // namespace smoothingMeshes
