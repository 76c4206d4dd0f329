// Remeshing against its peers, on the generated scan-like blob (remeshingBenchInput.h).
//   decimate_1m/jev3d          qECollapse::decimate to 10% of about 1,000,000 triangles
//   decimate_1m/meshoptimizer  meshopt_simplify to the same index count, no error bound
//   decimate_1m/openmesh       (remeshingBenchOpenMesh.cpp)
//   decimate_1m/cgal           (remeshingBenchCgal.cpp)
// Counters: triangles left, and the largest and mean distance between result and input,
// both ways, over the input's box diagonal.
#include <meshoptimizer.h>

#include "jev3d/algo/remeshing/qECollapse.h"
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

}  // namespace

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
