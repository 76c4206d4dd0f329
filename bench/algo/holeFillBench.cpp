// Hole filling against CGAL's triangulate_hole (triangulation only) and
// triangulate_refine_and_fair_hole, on the shared bunny's holes and on one round hole of
// 2,000 rim vertices cut into a unit sphere. Our refine-and-fair side is
// computeHoleFillingFaired (what jevmesh fill-holes runs); jev3dRounds is
// computeHoleFilling's fixed fairing rounds, for reference. Each case reports the patch's triangle
// count, its smallest angle in degrees and, on the sphere, the mean and largest distance
// of the new vertices from it.
#include <benchmark/benchmark.h>

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/border.h>
#include <CGAL/Polygon_mesh_processing/triangulate_hole.h>
#include <CGAL/Surface_mesh.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <vector>

#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/algo/postprocessing/triMesh.h"

namespace {

using JEV::MESH::POSTPROCESSING::triMesh;
using p3 = JEV::MATH::point3<float>;
using K = CGAL::Exact_predicates_inexact_constructions_kernel;
using cgalMesh = CGAL::Surface_mesh<K::Point_3>;
namespace PMP = CGAL::Polygon_mesh_processing;

// A surface as arrays, and which of its loops to fill (a vertex on each).
struct holeCase {
  std::vector<p3> pos;
  std::vector<unsigned> tri;
  std::vector<unsigned> loopVertices;  // empty: every loop
  bool onSphere = false;
};

// The band of a unit sphere between 30 and 40 degrees from the north pole, 2,000
// segments around: the cap above it is the hole.
holeCase sphereBand() {
  holeCase c;
  const unsigned seg = 2000, rows = 24;
  const double pi = 3.14159265358979323846, t0 = pi / 6, dt = (pi / 18) / rows;
  for (unsigned r = 0; r <= rows; ++r)
    for (unsigned s = 0; s < seg; ++s) {
      const double t = t0 + r * dt, p = 2 * pi * s / seg;
      c.pos.emplace_back(float(std::sin(t) * std::cos(p)), float(std::sin(t) * std::sin(p)),
                         float(std::cos(t)));
    }
  for (unsigned r = 0; r < rows; ++r)
    for (unsigned s = 0; s < seg; ++s) {
      const unsigned a = r * seg + s, b = r * seg + (s + 1) % seg, d = a + seg, e = b + seg;
      c.tri.insert(c.tri.end(), {a, d, e, a, e, b});
    }
  c.loopVertices = {0};
  c.onSphere = true;
  return c;
}

const holeCase* bunnyCase() {
  static holeCase c;
  static bool loaded = false;
  if (!loaded) {
    loaded = true;
    const std::string path = std::string(JEV3D_DATA_DIR) + "/ply/stanford_bun_zipper.ply";
    triMesh m;
    if (!std::filesystem::exists(path) || !m.readPlyFromFile(path)) return nullptr;
    m.removeUnReferenceVertex();
    for (unsigned v = 0; v < m.vn(); ++v) c.pos.push_back(m.vPos(v));
    for (unsigned f = 0; f < m.fn(); ++f)
      for (unsigned i = 0; i < 3; ++i) c.tri.push_back(m.fV(f, i));
  }
  return c.pos.empty() ? nullptr : &c;
}

const holeCase& bandCase() {
  static const holeCase c = sphereBand();
  return c;
}

double angleDeg(const p3& a, const p3& b, const p3& c) {
  const p3 u = b - a, v = c - a;
  const double cosine = double(u * v) / (double(u.norm()) * double(v.norm()) + 1e-30);
  return std::acos(std::max(-1.0, std::min(1.0, cosine))) * 180.0 / 3.14159265358979323846;
}

// Counters for a patch: its triangles and new vertices as positions.
void report(benchmark::State& state, const std::vector<std::array<p3, 3>>& faces,
            const std::vector<p3>& added, bool onSphere) {
  double smallest = 180;
  for (const auto& f : faces)
    for (int k = 0; k < 3; ++k)
      smallest =
          std::min(smallest, angleDeg(f[size_t(k)], f[size_t(k + 1) % 3], f[size_t(k + 2) % 3]));
  state.counters["triangles"] = double(faces.size());
  state.counters["minAngleDeg"] = faces.empty() ? 0 : smallest;
  if (onSphere && !added.empty()) {
    double sum = 0, worst = 0;
    for (const p3& p : added) {
      const double d = std::fabs(double(p.norm()) - 1.0);
      sum += d, worst = std::max(worst, d);
    }
    state.counters["meanDistance"] = sum / double(added.size());
    state.counters["maxDistance"] = worst;
  }
}

// What our side runs: the triangulation, the fixed fairing rounds of computeHoleFilling,
// or the settled fairing of computeHoleFillingFaired.
enum class ours { TRIANGULATE, ROUNDS, FAIRED };

void runJev3d(benchmark::State& state, const holeCase* c, ours mode) {
  if (!c) {
    state.SkipWithError("shared data folder not present");
    return;
  }
  triMesh source;
  for (const p3& p : c->pos) source.addVertex(p);
  for (size_t i = 0; i < c->tri.size(); i += 3) source.addFace(&c->tri[i], 3);
  std::vector<std::vector<unsigned>> loops, chosen;
  std::vector<std::pair<unsigned, unsigned>> ends;
  JEV::MESH::ALGO::computeHoleFillingFindHole(source, {}, loops, ends);
  for (const auto& l : loops)
    if (c->loopVertices.empty() || std::find(l.begin(), l.end(), c->loopVertices[0]) != l.end())
      chosen.push_back(l);
  triMesh out;
  for (auto _ : state) {
    if (mode == ours::FAIRED)
      JEV::MESH::ALGO::computeHoleFillingFaired(source, 0, out, chosen);
    else
      JEV::MESH::ALGO::computeHoleFilling(source, 0, out, mode == ours::TRIANGULATE, chosen);
    benchmark::DoNotOptimize(out.fn());
  }
  std::vector<std::array<p3, 3>> faces;
  for (unsigned f = source.fn(); f < out.fn(); ++f)
    faces.push_back({out.vPos(out.fV(f, 0)), out.vPos(out.fV(f, 1)), out.vPos(out.fV(f, 2))});
  std::vector<p3> added;
  for (unsigned v = source.vn(); v < out.vn(); ++v) added.push_back(out.vPos(v));
  report(state, faces, added, c->onSphere);
}

// With fromArrays, CGAL's timing includes building its halfedge mesh from the arrays and
// finding the border cycles: the work our side does inside its call, which takes and
// returns a plain indexed mesh. Without, only the filling itself is timed.
void runCgal(benchmark::State& state, const holeCase* c, bool fair, bool fromArrays = false) {
  if (!c) {
    state.SkipWithError("shared data folder not present");
    return;
  }
  auto build = [&](cgalMesh& m) {
    m.clear();
    std::vector<cgalMesh::Vertex_index> ids;
    for (const p3& p : c->pos) ids.push_back(m.add_vertex(K::Point_3(p.x, p.y, p.z)));
    for (size_t i = 0; i < c->tri.size(); i += 3)
      m.add_face(ids[c->tri[i]], ids[c->tri[i + 1]], ids[c->tri[i + 2]]);
  };
  cgalMesh base;
  build(base);
  std::vector<cgalMesh::Face_index> faces;
  std::vector<cgalMesh::Vertex_index> added;
  cgalMesh mesh;
  for (auto _ : state) {
    if (!fromArrays) state.PauseTiming();
    if (fromArrays)
      build(mesh);
    else
      mesh = base;
    faces.clear(), added.clear();
    std::vector<cgalMesh::Halfedge_index> cycles;
    PMP::extract_boundary_cycles(mesh, std::back_inserter(cycles));
    if (!fromArrays) state.ResumeTiming();
    for (auto h : cycles) {
      if (!c->loopVertices.empty()) {
        bool wanted = false;
        for (auto g : CGAL::halfedges_around_face(h, mesh))
          wanted = wanted || std::size_t(mesh.target(g)) == c->loopVertices[0];
        if (!wanted) continue;
      }
      if (fair)
        PMP::triangulate_refine_and_fair_hole(mesh, h, std::back_inserter(faces),
                                              std::back_inserter(added));
      else
        PMP::triangulate_hole(mesh, h, std::back_inserter(faces));
    }
    benchmark::DoNotOptimize(faces.size());
  }
  auto at = [&](cgalMesh::Vertex_index v) {
    const K::Point_3& q = mesh.point(v);
    return p3(float(q.x()), float(q.y()), float(q.z()));
  };
  std::vector<std::array<p3, 3>> tris;
  for (auto f : faces) {
    std::array<p3, 3> t;
    int k = 0;
    for (auto v : CGAL::vertices_around_face(mesh.halfedge(f), mesh))
      if (k < 3) t[size_t(k++)] = at(v);
    tris.push_back(t);
  }
  std::vector<p3> verts;
  for (auto v : added) verts.push_back(at(v));
  report(state, tris, verts, c->onSphere);
}

void bunnyTriangulateJev3d(benchmark::State& s) { runJev3d(s, bunnyCase(), ours::TRIANGULATE); }
void bunnyTriangulateCgal(benchmark::State& s) { runCgal(s, bunnyCase(), false); }
void bunnyFairJev3d(benchmark::State& s) { runJev3d(s, bunnyCase(), ours::FAIRED); }
void bunnyFairJev3dRounds(benchmark::State& s) { runJev3d(s, bunnyCase(), ours::ROUNDS); }
void bunnyFairCgal(benchmark::State& s) { runCgal(s, bunnyCase(), true); }
void bunnyTriangulateFromArraysCgal(benchmark::State& s) { runCgal(s, bunnyCase(), false, true); }
void bunnyFairFromArraysCgal(benchmark::State& s) { runCgal(s, bunnyCase(), true, true); }
void loop2000TriangulateJev3d(benchmark::State& s) { runJev3d(s, &bandCase(), ours::TRIANGULATE); }
void loop2000TriangulateCgal(benchmark::State& s) { runCgal(s, &bandCase(), false); }
void loop2000FairJev3d(benchmark::State& s) { runJev3d(s, &bandCase(), ours::FAIRED); }
void loop2000FairJev3dRounds(benchmark::State& s) { runJev3d(s, &bandCase(), ours::ROUNDS); }
void loop2000FairCgal(benchmark::State& s) { runCgal(s, &bandCase(), true); }

}  // namespace

BENCHMARK(bunnyTriangulateJev3d)->Name("bunnyTriangulate/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyTriangulateCgal)->Name("bunnyTriangulate/cgal")->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyFairJev3d)->Name("bunnyRefineFair/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyFairJev3dRounds)->Name("bunnyRefineFair/jev3dRounds")->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyFairCgal)->Name("bunnyRefineFair/cgal")->Unit(benchmark::kMillisecond);
// Our calls again beside CGAL's timed from the same arrays.
BENCHMARK(bunnyTriangulateJev3d)
    ->Name("bunnyTriangulateFromArrays/jev3d")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyTriangulateFromArraysCgal)
    ->Name("bunnyTriangulateFromArrays/cgal")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyFairJev3d)->Name("bunnyRefineFairFromArrays/jev3d")->Unit(benchmark::kMillisecond);
BENCHMARK(bunnyFairFromArraysCgal)
    ->Name("bunnyRefineFairFromArrays/cgal")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(loop2000TriangulateJev3d)
    ->Name("loop2000Triangulate/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(loop2000TriangulateCgal)
    ->Name("loop2000Triangulate/cgal")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(loop2000FairJev3d)
    ->Name("loop2000RefineFair/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(loop2000FairJev3dRounds)
    ->Name("loop2000RefineFair/jev3dRounds")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(loop2000FairCgal)
    ->Name("loop2000RefineFair/cgal")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
