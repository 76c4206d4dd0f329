// Topology operations on a closed torus of 500 x 500 quads (250,000 faces).
//   catmullclark_250k/jev3d     catmullClarkSubdivideVE: one step, edges, VE and unit normals
//   catmullclark_250k/openmesh  OpenMesh's CatmullClarkT, one step, then update_normals
//   triangulate_250k/jev3d      triangulate: fans, edges, VE and the bounding box
// Each iteration starts from a fresh copy of the input, made outside the timing.
#include <benchmark/benchmark.h>

#include <OpenMesh/Core/Mesh/PolyMesh_ArrayKernelT.hh>
#include <OpenMesh/Tools/Subdivider/Uniform/CatmullClarkT.hh>
#include <vector>

#include "../support/torusGrid.h"
#include "jev3d/mesh/editMesh.h"

namespace {

using JEV::MESH::editMesh;
using omPoly = OpenMesh::PolyMesh_ArrayKernelT<>;

constexpr unsigned RINGS = 500, SEGMENTS = 500;

constexpr torusGrid torus{RINGS, SEGMENTS};

const editMesh& jev3dTorus() {
  static const editMesh m = [] {
    editMesh t;
    t.allocateVertexArray(RINGS * SEGMENTS);
    t.allocateFaceArray(RINGS * SEGMENTS);
    torus.forEachPoint([&](const OpenMesh::Vec3f& p) { t.addVertex(p[0], p[1], p[2]); });
    torus.forEachCell(
        [&](unsigned a, unsigned b, unsigned c, unsigned d) { t.addQuadFace(a, b, c, d); });
    t.computeEdges(true);
    t.computeVE();
    t.computeNormalizedNormals();
    return t;
  }();
  return m;
}

void buildOpenMesh(omPoly& mesh) {
  mesh.reserve(RINGS * SEGMENTS, 2 * RINGS * SEGMENTS, RINGS * SEGMENTS);
  std::vector<omPoly::VertexHandle> handles;
  torus.forEachPoint([&](const OpenMesh::Vec3f& p) { handles.push_back(mesh.add_vertex(p)); });
  torus.forEachCell([&](unsigned a, unsigned b, unsigned c, unsigned d) {
    mesh.add_face(handles[a], handles[b], handles[c], handles[d]);
  });
  mesh.request_face_normals();
  mesh.request_vertex_normals();
  mesh.update_normals();
}

void faceRate(benchmark::State& state) {
  state.counters["faces/s"] =
      benchmark::Counter(double(RINGS) * SEGMENTS, benchmark::Counter::kIsIterationInvariantRate);
}

// Times op on a fresh copy of the torus; copying and freeing stay outside the timing.
template <class Op>
void onCopies(benchmark::State& state, Op op) {
  const editMesh& input = jev3dTorus();
  for (auto _ : state) {
    state.PauseTiming();
    editMesh m(input);
    state.ResumeTiming();
    op(m);
    benchmark::DoNotOptimize(m.fn());
    state.PauseTiming();
    m = editMesh();
    state.ResumeTiming();
  }
  faceRate(state);
}

void catmullClarkJev3d(benchmark::State& state) {
  onCopies(state, [](editMesh& m) { m.catmullClarkSubdivideVE(); });
}

void catmullClarkOpenMesh(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto* mesh = new omPoly;
    buildOpenMesh(*mesh);
    state.ResumeTiming();
    OpenMesh::Subdivider::Uniform::CatmullClarkT<omPoly> subdivide;
    subdivide.attach(*mesh);
    subdivide(1);
    subdivide.detach();
    mesh->update_normals();
    benchmark::DoNotOptimize(mesh->n_faces());
    state.PauseTiming();
    delete mesh;
    state.ResumeTiming();
  }
  faceRate(state);
}

void triangulateJev3d(benchmark::State& state) {
  onCopies(state, [](editMesh& m) { m.triangulate(); });
}

}  // namespace

BENCHMARK(catmullClarkJev3d)->Name("catmullclark_250k/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(catmullClarkOpenMesh)->Name("catmullclark_250k/openmesh")->Unit(benchmark::kMillisecond);
BENCHMARK(triangulateJev3d)->Name("triangulate_250k/jev3d")->Unit(benchmark::kMillisecond);
