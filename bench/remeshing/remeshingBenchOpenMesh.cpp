// decimate_1m/openmesh: OpenMesh's decimater with its quadric module (no error bound)
// down to the same face count as the other decimate_1m cases.
// loop_100k/openmesh: OpenMesh's Loop subdivider, one step.
// refine_100k/openmesh: OpenMesh's longest-edge subdivider down to half the input's mean
// edge length.
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#include <OpenMesh/Tools/Decimater/DecimaterT.hh>
#include <OpenMesh/Tools/Decimater/ModQuadricT.hh>
#include <OpenMesh/Tools/Subdivider/Uniform/LongestEdgeT.hh>
#include <OpenMesh/Tools/Subdivider/Uniform/LoopT.hh>

#include "remeshingBenchInput.h"

namespace {

using namespace remeshingBench;
using omTri = OpenMesh::TriMesh_ArrayKernelT<>;

void toOpenMesh(const soup& in, omTri& mesh) {
  mesh.reserve(in.positions.size(), in.count() * 3 / 2 + 16, in.count());
  std::vector<omTri::VertexHandle> handles;
  handles.reserve(in.positions.size());
  for (const p3& p : in.positions) handles.push_back(mesh.add_vertex(omTri::Point(p.x, p.y, p.z)));
  for (size_t k = 0; k < in.triangles.size(); k += 3)
    mesh.add_face(handles[in.triangles[k]], handles[in.triangles[k + 1]],
                  handles[in.triangles[k + 2]]);
}

void fromOpenMesh(const omTri& mesh, soup& out) {
  out.positions.clear();
  out.triangles.clear();
  for (auto v : mesh.vertices()) {
    const omTri::Point& p = mesh.point(v);
    out.positions.emplace_back(p[0], p[1], p[2]);
  }
  for (auto f : mesh.faces())
    for (auto v : mesh.fv_range(f)) out.triangles.push_back(unsigned(v.idx()));
}

// Times step on a fresh OpenMesh copy of in at each iteration; out gets the last result.
template <class Step>
void timeOnCopy(benchmark::State& state, const soup& in, soup& out, Step step) {
  for (auto _ : state) {
    state.PauseTiming();
    omTri mesh;
    toOpenMesh(in, mesh);
    state.ResumeTiming();
    step(mesh);
    state.PauseTiming();
    fromOpenMesh(mesh, out);
    state.ResumeTiming();
  }
}

void decimateOpenMesh(benchmark::State& state) {
  const soup& in = millionTriangles();
  soup out;
  timeOnCopy(state, in, out, [&](omTri& mesh) {
    OpenMesh::Decimater::DecimaterT<omTri> decimater(mesh);
    OpenMesh::Decimater::ModQuadricT<omTri>::Handle quadric;
    decimater.add(quadric);
    decimater.module(quadric).unset_max_err();
    decimater.initialize();
    decimater.decimate_to_faces(0, in.count() / 10);
    // While the decimater lives: it holds the status flags the collection reads.
    mesh.garbage_collection();
  });
  reportDistance(state, in, out);
}

void loopOpenMesh(benchmark::State& state) {
  const soup& in = hundredThousandTriangles();
  soup out;
  timeOnCopy(state, in, out, [](omTri& mesh) {
    OpenMesh::Subdivider::Uniform::LoopT<omTri> loop;
    loop.attach(mesh);
    loop(1);
    loop.detach();
  });
  state.counters["triangles"] = double(out.count());
  reportEdgeLengths(state, out, meanEdgeLength(in));
}

void refineOpenMesh(benchmark::State& state) {
  const soup& in = hundredThousandTriangles();
  soup out;
  timeOnCopy(state, in, out, [&](omTri& mesh) {
    OpenMesh::Subdivider::Uniform::LongestEdgeT<omTri> longest;
    longest.attach(mesh);
    longest.set_max_edge_length(0.5 * meanEdgeLength(in));
    longest(20);
    longest.detach();
  });
  state.counters["triangles"] = double(out.count());
  reportEdgeLengths(state, out, meanEdgeLength(in));
}

}  // namespace

BENCHMARK(loopOpenMesh)
    ->Name("loop_100k/openmesh")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(refineOpenMesh)
    ->Name("refine_100k/openmesh")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(decimateOpenMesh)
    ->Name("decimate_1m/openmesh")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
