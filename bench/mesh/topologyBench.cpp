// Topology operations on a closed torus of 500 x 500 quads (250,000 faces).
//   catmullclark_250k/jev3d     catmullClarkSubdivideVE: one step, edges, VE and unit normals
//   catmullclark_250k/openmesh  OpenMesh's CatmullClarkT, one step, then update_normals
//   triangulate_250k/jev3d      triangulate: fans, edges, VE and the bounding box
// Each iteration starts from a fresh copy of the input, made outside the timing.
#include <benchmark/benchmark.h>

#include <OpenMesh/Core/Mesh/PolyMesh_ArrayKernelT.hh>
#include <OpenMesh/Tools/Subdivider/Uniform/CatmullClarkT.hh>
#include <cmath>
#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace {

using JEV::MESH::editMesh;
using omPoly = OpenMesh::PolyMesh_ArrayKernelT<>;

constexpr unsigned RINGS = 500, SEGMENTS = 500;

// Vertex (i, j) of the torus: i around the axis, j around the tube.
OpenMesh::Vec3f torusPoint(unsigned i, unsigned j) {
  const double pi = 3.14159265358979323846;
  const double u = 2 * pi * i / RINGS, v = 2 * pi * j / SEGMENTS;
  return OpenMesh::Vec3f(float((3 + std::cos(v)) * std::cos(u)),
                         float((3 + std::cos(v)) * std::sin(u)), float(std::sin(v)));
}

unsigned torusId(unsigned i, unsigned j) { return (j % SEGMENTS) * RINGS + i % RINGS; }

template <class F>
void forEachCell(F&& cell) {
  for (unsigned j = 0; j < SEGMENTS; ++j)
    for (unsigned i = 0; i < RINGS; ++i)
      cell(torusId(i, j), torusId(i + 1, j), torusId(i + 1, j + 1), torusId(i, j + 1));
}

const editMesh& jev3dTorus() {
  static const editMesh m = [] {
    editMesh t;
    t.allocateVertexArray(RINGS * SEGMENTS);
    t.allocateFaceArray(RINGS * SEGMENTS);
    for (unsigned j = 0; j < SEGMENTS; ++j)
      for (unsigned i = 0; i < RINGS; ++i) {
        const OpenMesh::Vec3f p = torusPoint(i, j);
        t.addVertex(p[0], p[1], p[2]);
      }
    forEachCell([&](unsigned a, unsigned b, unsigned c, unsigned d) { t.addQuadFace(a, b, c, d); });
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
  for (unsigned j = 0; j < SEGMENTS; ++j)
    for (unsigned i = 0; i < RINGS; ++i) handles.push_back(mesh.add_vertex(torusPoint(i, j)));
  forEachCell([&](unsigned a, unsigned b, unsigned c, unsigned d) {
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
