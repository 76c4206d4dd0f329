// Ten uniform Laplacian steps on a closed torus of 1000 x 500 vertices (500,000 vertices,
// 1,000,000 triangles); every step is an average over the previous positions.
//   laplacian10_500k/jev3d            computeLaplacianSmooth, 10 iterations, then the
//                                     normals it recomputes
//   laplacian10_500k/openmesh         OpenMesh's JacobiLaplaceSmootherT, uniform (C0),
//                                     tangential and normal, 10 steps
//   laplacian10_500k/openmesh_loop    a hand loop over OpenMesh's vertex circulators doing
//                                     our arithmetic, (p + 2 sum) / (1 + 2 valence), into a
//                                     scratch array, then update_normals
// The meshes are smoothed in place over and over: the work of a step does not depend on
// the positions.
//
// Filters without an installed peer, on a unit sphere of 100,000 vertices in triangles
// with every vertex pushed along its radius by up to 1% (a quarter of an edge): time per
// vertex ("s/vertex"), and the root mean square distance to the true sphere before ("noisy rms")
// and after ("rms").
//   noisy_sphere_100k/bilateral  computeBilateralSmooth, sigmas 0.5 and 0.5 (its
//                                lines on standard output are silenced), result applied
//   noisy_sphere_100k/twostep    computeTwoStep, feature angle 60, 3 rounds of 3 + 3
//   noisy_sphere_100k/laplacian  computeLaplacianSmooth, 3 steps, for reference
#include <benchmark/benchmark.h>

#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#include <OpenMesh/Tools/Smoother/JacobiLaplaceSmootherT.hh>
#include <cmath>
#include <iostream>
#include <random>
#include <vector>

#include "../support/torusGrid.h"
#include "jev3d/algo/smoothing/bilateralSmooth.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/algo/smoothing/twoStepSmooth.h"
#include "jev3d/mesh/editMesh.h"

namespace {

using JEV::MESH::editMesh;
using omTri = OpenMesh::TriMesh_ArrayKernelT<>;

constexpr unsigned RINGS = 1000, SEGMENTS = 500, STEPS = 10;

constexpr torusGrid torus{RINGS, SEGMENTS};

// Two triangles a cell.
template <class F>
void forEachTriangle(F&& tri) {
  torus.forEachCell([&](unsigned a, unsigned b, unsigned c, unsigned d) {
    tri(a, b, c);
    tri(a, c, d);
  });
}

editMesh& jev3dTorus() {
  static editMesh t = [] {
    editMesh m;
    m.allocateVertexArray(RINGS * SEGMENTS);
    m.allocateFaceArray(2 * RINGS * SEGMENTS);
    torus.forEachPoint([&](const OpenMesh::Vec3f& p) { m.addVertex(p[0], p[1], p[2]); });
    forEachTriangle([&](unsigned a, unsigned b, unsigned c) { m.addTriFace(a, b, c); });
    m.computeEdges(true);
    m.computeVE();
    m.computeNormalizedNormals();
    return m;
  }();
  return t;
}

omTri& openMeshTorus() {
  static omTri t = [] {
    omTri m;
    m.reserve(RINGS * SEGMENTS, 3 * RINGS * SEGMENTS, 2 * RINGS * SEGMENTS);
    std::vector<omTri::VertexHandle> handles;
    torus.forEachPoint([&](const OpenMesh::Vec3f& p) { handles.push_back(m.add_vertex(p)); });
    forEachTriangle([&](unsigned a, unsigned b, unsigned c) {
      m.add_face(handles[a], handles[b], handles[c]);
    });
    m.request_face_normals();
    m.request_vertex_normals();
    m.update_normals();
    return m;
  }();
  return t;
}

void vertexRate(benchmark::State& state) {
  state.counters["vertex steps/s"] = benchmark::Counter(
      double(RINGS) * SEGMENTS * STEPS, benchmark::Counter::kIsIterationInvariantRate);
}

void laplacianJev3d(benchmark::State& state) {
  editMesh& m = jev3dTorus();
  for (auto _ : state) {
    JEV::MESH::ALGO::SMOOTHING::computeLaplacianSmooth(m, STEPS, true, nullptr);
    benchmark::DoNotOptimize(m.vPos(0).x);
  }
  vertexRate(state);
}

void laplacianOpenMesh(benchmark::State& state) {
  omTri& m = openMeshTorus();
  for (auto _ : state) {
    OpenMesh::Smoother::JacobiLaplaceSmootherT<omTri> smoother(m);
    smoother.initialize(smoother.Tangential_and_Normal, smoother.C0);
    smoother.smooth(STEPS);
    benchmark::DoNotOptimize(m.point(m.vertex_handle(0))[0]);
  }
  vertexRate(state);
}

void laplacianOpenMeshLoop(benchmark::State& state) {
  omTri& m = openMeshTorus();
  std::vector<OpenMesh::Vec3f> next(m.n_vertices());
  for (auto _ : state) {
    for (unsigned s = 0; s < STEPS; ++s) {
      for (auto v : m.vertices()) {
        OpenMesh::Vec3f sum(0.f, 0.f, 0.f);
        unsigned count = 1;
        for (auto w : m.vv_range(v)) sum += m.point(w) * 2.f, count += 2;
        next[size_t(v.idx())] = (m.point(v) + sum) / float(count);
      }
      for (auto v : m.vertices()) m.set_point(v, next[size_t(v.idx())]);
    }
    m.update_normals();
    benchmark::DoNotOptimize(m.point(m.vertex_handle(0))[0]);
  }
  vertexRate(state);
}

// The noisy sphere, made once.
const editMesh& noisySphere() {
  static const editMesh m = [] {
    editMesh s;
    s.makeSphere(224, 448);  // 224 * 448 - 446 vertices, about 100,000
    s.checkMeshState();
    s.triangulate();
    std::mt19937 gen(1);
    for (unsigned v = 0; v < s.vn(); ++v)
      s.vPos(v) *= 1.f + 0.01f * float(double(gen()) / 4294967295.0 * 2.0 - 1.0);
    s.computeEdges(true);
    s.computeVE();
    s.computeNormalizedNormals();
    return s;
  }();
  return m;
}

double sphereRms(const editMesh& m) {
  double s = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    const double d = m.vPos(v).norm() - 1.0;
    s += d * d;
  }
  return std::sqrt(s / m.vn());
}

// Times filter on copies of the noisy sphere and reports its error.
template <class Filter>
void onNoisySphere(benchmark::State& state, Filter filter) {
  const editMesh& input = noisySphere();
  double rms = 0;
  for (auto _ : state) {
    state.PauseTiming();
    editMesh m(input);
    state.ResumeTiming();
    filter(m);
    state.PauseTiming();
    rms = sphereRms(m);
    state.ResumeTiming();
  }
  state.counters["s/vertex"] =
      benchmark::Counter(double(input.vn()), benchmark::Counter::kIsIterationInvariantRate |
                                                 benchmark::Counter::kInvert);
  state.counters["noisy rms"] = sphereRms(input);
  state.counters["rms"] = rms;
}

void bilateralNoisySphere(benchmark::State& state) {
  std::vector<JEV::MATH::point3<float>> result;
  onNoisySphere(state, [&](editMesh& m) {
    std::streambuf* shown = std::cout.rdbuf(nullptr);
    JEV::MESH::ALGO::SMOOTHING::computeBilateralSmooth(m, 0.5f, 0.5f, result, nullptr);
    std::cout.rdbuf(shown);
    for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) = result[v];
  });
}

void twoStepNoisySphere(benchmark::State& state) {
  onNoisySphere(state, [](editMesh& m) {
    JEV::MESH::ALGO::SMOOTHING::computeTwoStep(&m, &m, 60.f, 3, 3, 3, false, false, nullptr);
  });
}

void laplacianNoisySphere(benchmark::State& state) {
  onNoisySphere(state, [](editMesh& m) {
    JEV::MESH::ALGO::SMOOTHING::computeLaplacianSmooth(m, 3, true, nullptr);
  });
}

}  // namespace

BENCHMARK(laplacianJev3d)->Name("laplacian10_500k/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(laplacianOpenMesh)->Name("laplacian10_500k/openmesh")->Unit(benchmark::kMillisecond);
BENCHMARK(laplacianOpenMeshLoop)
    ->Name("laplacian10_500k/openmesh_loop")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(bilateralNoisySphere)->Name("noisy_sphere_100k/bilateral")->Unit(benchmark::kMillisecond);
BENCHMARK(twoStepNoisySphere)->Name("noisy_sphere_100k/twostep")->Unit(benchmark::kMillisecond);
BENCHMARK(laplacianNoisySphere)->Name("noisy_sphere_100k/laplacian")->Unit(benchmark::kMillisecond);
