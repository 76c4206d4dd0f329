// Adjacency rebuild of the mesh kernel against OpenMesh building the same mesh from the
// same index list. Both end with full adjacency and unit face and vertex normals.
//   rebuild_<mesh>/jev3d     computeEVEF + computeVE + normals on filled V and F stores
//   build_<mesh>/jev3d       the same, filling the stores from the index list first
//   rebuild_<mesh>/openmesh  add_vertex + add_face + update_normals
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <OpenMesh/Core/Mesh/PolyMesh_ArrayKernelT.hh>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#include <cmath>
#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace {

using JEV::MESH::editMesh;

// A closed torus of nu x nv cells, as triangles (two per cell) or quads.
struct indexedMesh {
  std::vector<float> positions;  // xyz per vertex
  std::vector<unsigned> corners;
  unsigned cornersPerFace = 3;
  unsigned vertexCount() const { return unsigned(positions.size() / 3); }
  unsigned faceCount() const { return unsigned(corners.size() / cornersPerFace); }
};

indexedMesh makeTorus(unsigned nu, unsigned nv, bool quads) {
  indexedMesh m;
  m.cornersPerFace = quads ? 4 : 3;
  const double pi = 3.14159265358979323846;
  for (unsigned j = 0; j < nv; ++j)
    for (unsigned i = 0; i < nu; ++i) {
      const double u = 2 * pi * i / nu, v = 2 * pi * j / nv;
      m.positions.push_back(float((3 + std::cos(v)) * std::cos(u)));
      m.positions.push_back(float((3 + std::cos(v)) * std::sin(u)));
      m.positions.push_back(float(std::sin(v)));
    }
  auto id = [&](unsigned i, unsigned j) { return (j % nv) * nu + i % nu; };
  for (unsigned j = 0; j < nv; ++j)
    for (unsigned i = 0; i < nu; ++i) {
      const unsigned a = id(i, j), b = id(i + 1, j), c = id(i + 1, j + 1), d = id(i, j + 1);
      if (quads) {
        m.corners.insert(m.corners.end(), {a, b, c, d});
      } else {
        m.corners.insert(m.corners.end(), {a, b, c, a, c, d});
      }
    }
  return m;
}

const indexedMesh& tri1M() {
  static const indexedMesh m = makeTorus(1000, 500, false);
  return m;
}
const indexedMesh& quad250k() {
  static const indexedMesh m = makeTorus(500, 500, true);
  return m;
}

void fillStores(editMesh& m, const indexedMesh& src) {
  const unsigned nv = src.vertexCount(), nf = src.faceCount(), k = src.cornersPerFace;
  m.allocateVertexArray(nv);
  m.allocateFaceArray(nf);
  m.allocateFVArray(nf * k);
  for (unsigned v = 0; v < nv; ++v)
    m.addVertex(src.positions[3 * v], src.positions[3 * v + 1], src.positions[3 * v + 2]);
  for (unsigned f = 0; f < nf; ++f) m.addFace(&src.corners[size_t(f) * k], k);
}

void rebuild(editMesh& m) {
  m.computeEVEF();
  m.computeVE();
  m.computeNormalizedNormals();
}

size_t heapInUse() {
  const struct mallinfo2 mi = mallinfo2();
  return mi.uordblks + mi.hblkhd;
}

void report(benchmark::State& state, const indexedMesh& src, size_t bytes) {
  state.counters["faces/s"] =
      benchmark::Counter(src.faceCount(), benchmark::Counter::kIsIterationInvariantRate);
  state.counters["bytes/face"] = double(bytes) / src.faceCount();
}

void rebuildJev3d(benchmark::State& state, const indexedMesh& src) {
  editMesh m;
  fillStores(m, src);
  for (auto _ : state) {
    rebuild(m);
    benchmark::DoNotOptimize(m.en());
  }
  report(state, src, m.memoryUsage());
}

void buildJev3d(benchmark::State& state, const indexedMesh& src) {
  size_t bytes = 0;
  for (auto _ : state) {
    editMesh m;
    fillStores(m, src);
    rebuild(m);
    benchmark::DoNotOptimize(m.en());
    bytes = m.memoryUsage();
  }
  report(state, src, bytes);
}

template <class M>
size_t buildOpenMesh(M& mesh, const indexedMesh& src) {
  const size_t before = heapInUse();
  const unsigned nv = src.vertexCount(), nf = src.faceCount(), k = src.cornersPerFace;
  mesh.reserve(nv, size_t(nf) * 3 / 2 + nv, nf);
  std::vector<typename M::VertexHandle> handles(nv);
  for (unsigned v = 0; v < nv; ++v)
    handles[v] = mesh.add_vertex(typename M::Point(src.positions[3 * v], src.positions[3 * v + 1],
                                                   src.positions[3 * v + 2]));
  std::vector<typename M::VertexHandle> face(k);
  for (unsigned f = 0; f < nf; ++f) {
    for (unsigned i = 0; i < k; ++i) face[i] = handles[src.corners[size_t(f) * k + i]];
    mesh.add_face(face);
  }
  mesh.request_face_normals();
  mesh.request_vertex_normals();
  mesh.update_normals();
  return heapInUse() - before;
}

template <class M>
void rebuildOpenMesh(benchmark::State& state, const indexedMesh& src) {
  size_t bytes = 0;
  for (auto _ : state) {
    M mesh;
    bytes = buildOpenMesh(mesh, src);
    benchmark::DoNotOptimize(mesh.n_edges());
  }
  report(state, src, bytes);
}

using omTri = OpenMesh::TriMesh_ArrayKernelT<>;
using omPoly = OpenMesh::PolyMesh_ArrayKernelT<>;

void rebuildTriJev3d(benchmark::State& s) { rebuildJev3d(s, tri1M()); }
void buildTriJev3d(benchmark::State& s) { buildJev3d(s, tri1M()); }
void rebuildTriOpenMesh(benchmark::State& s) { rebuildOpenMesh<omTri>(s, tri1M()); }
void rebuildQuadJev3d(benchmark::State& s) { rebuildJev3d(s, quad250k()); }
void buildQuadJev3d(benchmark::State& s) { buildJev3d(s, quad250k()); }
void rebuildQuadOpenMesh(benchmark::State& s) { rebuildOpenMesh<omPoly>(s, quad250k()); }

}  // namespace

BENCHMARK(rebuildTriJev3d)->Name("rebuild_tri1M/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(rebuildTriOpenMesh)->Name("rebuild_tri1M/openmesh")->Unit(benchmark::kMillisecond);
BENCHMARK(buildTriJev3d)->Name("build_tri1M/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(rebuildQuadJev3d)->Name("rebuild_quad250k/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(rebuildQuadOpenMesh)->Name("rebuild_quad250k/openmesh")->Unit(benchmark::kMillisecond);
BENCHMARK(buildQuadJev3d)->Name("build_quad250k/jev3d")->Unit(benchmark::kMillisecond);
