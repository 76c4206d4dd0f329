// The scan mesh's hot filters against peer libraries on the same data: a closed torus of
// 1,000,000 triangles (500,000 vertices).
//   weld_1M/jev3d            removeDuplicateVertices on the 3,000,000-corner soup
//   weld_1M/meshoptimizer    generateVertexRemap + remapVertexBuffer + remapIndexBuffer
//   faceface_1M/jev3d        computeFaceFaceTopology from the index list
//   faceface_1M/openmesh     add_vertex + add_face: OpenMesh's connectivity build
//   pieces_1M/jev3d          removeIsolatePieces(10) on the torus and 20,000 lone triangles
//   pieces_1M/cgal           keep_large_connected_components(10) on a Surface_mesh
//   normals_1M/jev3d         computeVertexFaceNormalizedNormals (unit face and vertex normals)
//   normals_1M/openmesh      update_normals on the built mesh
// Inputs are copied outside the timed region.
#include <benchmark/benchmark.h>
#include <meshoptimizer.h>

#include <CGAL/Polygon_mesh_processing/connected_components.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#include <cmath>
#include <vector>

#include "jev3d/algo/postprocessing/triMesh.h"

namespace {

using JEV::MESH::POSTPROCESSING::triMesh;
using p3 = JEV::MATH::point3<float>;

// A closed torus of nu x nv cells, two triangles a cell.
triMesh makeTorus(unsigned nu, unsigned nv) {
  triMesh m;
  const double pi = 3.14159265358979323846;
  for (unsigned j = 0; j < nv; ++j)
    for (unsigned i = 0; i < nu; ++i) {
      const double u = 2 * pi * i / nu, v = 2 * pi * j / nv;
      m.addVertex(p3(float((3 + std::cos(v)) * std::cos(u)), float((3 + std::cos(v)) * std::sin(u)),
                     float(std::sin(v))));
    }
  auto id = [&](unsigned i, unsigned j) { return (j % nv) * nu + i % nu; };
  for (unsigned j = 0; j < nv; ++j)
    for (unsigned i = 0; i < nu; ++i) {
      const unsigned a = id(i, j), b = id(i + 1, j), c = id(i + 1, j + 1), d = id(i, j + 1);
      m.addFace(a, b, c);
      m.addFace(a, c, d);
    }
  return m;
}

const triMesh& torus() {
  static const triMesh m = makeTorus(1000, 500);
  return m;
}

// Every corner its own vertex.
const std::vector<p3>& soup() {
  static const std::vector<p3> s = [] {
    std::vector<p3> out;
    const triMesh& t = torus();
    out.reserve(t.getFaces().size());
    for (unsigned i : t.getFaces()) out.push_back(t.vPos(i));
    return out;
  }();
  return s;
}

// The torus with 20,000 lone triangles beside it.
const triMesh& speckled() {
  static const triMesh m = [] {
    triMesh s = torus();
    for (unsigned k = 0; k < 20000; ++k) {
      const float x = 10.f + float(k % 200), y = float(k / 200);
      const unsigned a = s.addVertex(p3(x, y, 0)), b = s.addVertex(p3(x + 0.5f, y, 0)),
                     c = s.addVertex(p3(x, y + 0.5f, 0));
      s.addFace(a, b, c);
    }
    return s;
  }();
  return m;
}

void report(benchmark::State& state, size_t faces) {
  state.counters["faces/s"] =
      benchmark::Counter(double(faces), benchmark::Counter::kIsIterationInvariantRate);
}

void weldJev3d(benchmark::State& state) {
  triMesh m;
  for (auto _ : state) {
    state.PauseTiming();
    m.clear();
    m.getVertices() = soup();
    m.getFaces().resize(soup().size());
    for (unsigned i = 0; i < m.getFaces().size(); ++i) m.getFaces()[i] = i;
    state.ResumeTiming();
    benchmark::DoNotOptimize(m.removeDuplicateVertices());
  }
  state.counters["vertices"] = double(m.vn());
  report(state, torus().fn());
}

void weldMeshoptimizer(benchmark::State& state) {
  const std::vector<p3>& s = soup();
  std::vector<unsigned> remap(s.size()), indices(s.size());
  std::vector<p3> unique(s.size());
  size_t count = 0;
  for (auto _ : state) {
    count = meshopt_generateVertexRemap(remap.data(), nullptr, s.size(), s.data(), s.size(),
                                        sizeof(p3));
    meshopt_remapVertexBuffer(unique.data(), s.data(), s.size(), sizeof(p3), remap.data());
    meshopt_remapIndexBuffer(indices.data(), nullptr, s.size(), remap.data());
    benchmark::DoNotOptimize(indices.data());
  }
  state.counters["vertices"] = double(count);
  report(state, torus().fn());
}

void faceFaceJev3d(benchmark::State& state) {
  triMesh m = torus();
  for (auto _ : state) {
    m.computeFaceFaceTopology();
    benchmark::DoNotOptimize(m.f2f(0, 0));
  }
  report(state, m.fn());
}

using omMesh = OpenMesh::TriMesh_ArrayKernelT<>;

void buildOpenMesh(omMesh& om, const triMesh& m) {
  om.clear();
  om.reserve(m.vn(), m.vn() + m.fn() + 16, m.fn());
  std::vector<omMesh::VertexHandle> vh(m.vn());
  for (unsigned v = 0; v < m.vn(); ++v)
    vh[v] = om.add_vertex(omMesh::Point(m.vPos(v).x, m.vPos(v).y, m.vPos(v).z));
  for (unsigned f = 0; f < m.fn(); ++f) om.add_face(vh[m.fV0(f)], vh[m.fV1(f)], vh[m.fV2(f)]);
}

void faceFaceOpenMesh(benchmark::State& state) {
  omMesh om;
  for (auto _ : state) {
    state.PauseTiming();
    om.clear();
    om.garbage_collection();
    state.ResumeTiming();
    buildOpenMesh(om, torus());
    benchmark::DoNotOptimize(om.n_faces());
  }
  report(state, torus().fn());
}

void piecesJev3d(benchmark::State& state) {
  triMesh m;
  for (auto _ : state) {
    state.PauseTiming();
    m = speckled();
    state.ResumeTiming();
    benchmark::DoNotOptimize(m.removeIsolatePieces(10));
  }
  state.counters["faces_left"] = double(m.fn());
  report(state, speckled().fn());
}

using cgalMesh = CGAL::Surface_mesh<CGAL::Simple_cartesian<double>::Point_3>;

void piecesCgal(benchmark::State& state) {
  const triMesh& src = speckled();
  cgalMesh base;
  std::vector<cgalMesh::Vertex_index> vi(src.vn());
  for (unsigned v = 0; v < src.vn(); ++v)
    vi[v] = base.add_vertex(cgalMesh::Point(src.vPos(v).x, src.vPos(v).y, src.vPos(v).z));
  for (unsigned f = 0; f < src.fn(); ++f)
    base.add_face(vi[src.fV0(f)], vi[src.fV1(f)], vi[src.fV2(f)]);
  cgalMesh m;
  size_t left = 0;
  for (auto _ : state) {
    state.PauseTiming();
    m = base;
    state.ResumeTiming();
    CGAL::Polygon_mesh_processing::keep_large_connected_components(m, 10);
    benchmark::DoNotOptimize(left = m.number_of_faces());
  }
  state.counters["faces_left"] = double(left);
  report(state, src.fn());
}

void normalsJev3d(benchmark::State& state) {
  triMesh m = torus();
  for (auto _ : state) {
    m.computeVertexFaceNormalizedNormals(true);
    benchmark::DoNotOptimize(m.vNor(0));
  }
  report(state, m.fn());
}

void normalsOpenMesh(benchmark::State& state) {
  omMesh om;
  buildOpenMesh(om, torus());
  om.request_face_normals();
  om.request_vertex_normals();
  for (auto _ : state) {
    om.update_normals();
    benchmark::DoNotOptimize(om.normal(omMesh::VertexHandle(0)));
  }
  report(state, torus().fn());
}

}  // namespace

BENCHMARK(weldJev3d)->Name("weld_1M/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(weldMeshoptimizer)->Name("weld_1M/meshoptimizer")->Unit(benchmark::kMillisecond);
BENCHMARK(faceFaceJev3d)->Name("faceface_1M/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(faceFaceOpenMesh)->Name("faceface_1M/openmesh")->Unit(benchmark::kMillisecond);
BENCHMARK(piecesJev3d)->Name("pieces_1M/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(piecesCgal)->Name("pieces_1M/cgal")->Unit(benchmark::kMillisecond);
BENCHMARK(normalsJev3d)->Name("normals_1M/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(normalsOpenMesh)->Name("normals_1M/openmesh")->Unit(benchmark::kMillisecond);
