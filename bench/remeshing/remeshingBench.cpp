// Remeshing against its peers, on the generated scan-like blob (remeshingBenchInput.h).
//   decimate_1m/jev3d          qECollapse::decimate to 10% of about 1,000,000 triangles
//   decimate_1m/meshoptimizer  meshopt_simplify to the same index count, no error bound
//   decimate_1m/openmesh       (remeshingBenchOpenMesh.cpp)
//   decimate_1m/cgal           (remeshingBenchCgal.cpp)
//   isotropic_100k/jev3d       computeIsotropicMeshRefinement of all faces of about 100,000
//                              triangles (three rounds) to the input's mean edge length
//   isotropic_100k/cgal        (remeshingBenchCgal.cpp)
//   loop_100k/jev3d            computeSubdivLoop, one step of about 100,000 triangles
//   loop_100k/openmesh         (remeshingBenchOpenMesh.cpp)
//   refine_100k/jev3d          computeMidpoint rounds until no edge is above half the
//                              input's mean edge length
//   refine_100k/openmesh, refine_100k/cgal  (remeshingBenchOpenMesh.cpp, remeshingBenchCgal.cpp)
// Counters: triangles left, and the largest and mean distance between result and input,
// both ways, over the input's box diagonal; for remeshing also the mean edge length over
// the target and the spread of the edge lengths, and for isotropic remeshing the share of
// edges within the bounds the remesher keeps to.
#include <meshoptimizer.h>

#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/isotropicMeshRefinement.h"
#include "jev3d/algo/remeshing/qECollapse.h"
#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "remeshingBenchInput.h"

namespace {

using namespace remeshingBench;

void decimateJev3d(benchmark::State& state) {
  const soup& in = millionTriangles();
  soup out;
  std::vector<unsigned> map;
  for (auto _ : state)
    JEV::MESH::ALGO::REMESHING::qECollapse::decimate(
        in.positions, in.triangles, unsigned(in.count() / 10), out.positions, out.triangles, map);
  reportDistance(state, in, out);
}

void decimateMeshoptimizer(benchmark::State& state) {
  const soup& in = millionTriangles();
  soup out;
  out.positions = in.positions;  // meshoptimizer keeps the input's vertices
  for (auto _ : state) {
    out.triangles.resize(in.triangles.size());
    const size_t n = meshopt_simplify(out.triangles.data(), in.triangles.data(),
                                      in.triangles.size(), &in.positions[0].x, in.positions.size(),
                                      sizeof(p3), in.triangles.size() / 10, 1.0f);
    out.triangles.resize(n);
  }
  reportDistance(state, in, out);
}

void isotropicJev3d(benchmark::State& state) {
  namespace REMESHING = JEV::MESH::ALGO::REMESHING;
  const soup& in = hundredThousandTriangles();
  const double length = meanEdgeLength(in);
  JEV::MESH::editMesh mesh, result;
  REMESHING::INTERNAL::fromTriangleSoup(mesh, in.positions, in.triangles);
  std::vector<unsigned> faces(mesh.fn());
  for (unsigned f = 0; f < mesh.fn(); ++f) faces[f] = f;
  REMESHING::attributeList none, noneOut;
  for (auto _ : state)
    REMESHING::computeIsotropicMeshRefinement(mesh, none, faces, result, noneOut, float(length),
                                              nullptr, nullptr);
  soup out;
  REMESHING::INTERNAL::toTriangleSoup(result, out.positions, out.triangles);
  reportDistance(state, in, out);
  reportEdgeLengths(state, out, length);
  reportLengthBand(state, out, length);
}

// Runs step from a kernel mesh of the 100k input into another, then reports the result.
template <class Step>
void subdivisionCase(benchmark::State& state, Step step) {
  namespace REMESHING = JEV::MESH::ALGO::REMESHING;
  const soup& in = hundredThousandTriangles();
  JEV::MESH::editMesh mesh, result;
  REMESHING::INTERNAL::fromTriangleSoup(mesh, in.positions, in.triangles);
  JEV::MESH::editMeshInterface from(mesh), to(result);
  const double length = meanEdgeLength(in);  // outside the timing, as the peers have it
  for (auto _ : state) step(from, to, length);
  soup out;
  REMESHING::INTERNAL::toTriangleSoup(result, out.positions, out.triangles);
  state.counters["triangles"] = double(out.count());
  reportEdgeLengths(state, out, length);
}

void loopJev3d(benchmark::State& state) {
  subdivisionCase(state, [](auto& from, auto& to, double) {
    JEV::MESH::ALGO::REMESHING::computeSubdivLoop(&from, &to);
  });
}

void refineJev3d(benchmark::State& state) {
  subdivisionCase(state, [](auto& from, auto& to, double length) {
    JEV::MESH::ALGO::REMESHING::computeMidpoint(&from, &to, float(0.5 * length), 20, false, false);
  });
}

}  // namespace

BENCHMARK(loopJev3d)
    ->Name("loop_100k/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(refineJev3d)
    ->Name("refine_100k/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(isotropicJev3d)
    ->Name("isotropic_100k/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(decimateJev3d)
    ->Name("decimate_1m/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(decimateMeshoptimizer)
    ->Name("decimate_1m/meshoptimizer")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
