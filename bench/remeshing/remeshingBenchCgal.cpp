// decimate_1m/cgal: CGAL's edge collapse with the Garland-Heckbert plane policies, down
// to the edge count of the same face count as the other decimate_1m cases.
// isotropic_100k/cgal: CGAL's isotropic_remeshing of all faces, three iterations, to the
// same target length as isotropic_100k/jev3d.
// refine_100k/cgal: CGAL's split_long_edges down to half the input's mean edge length.
#include <CGAL/Polygon_mesh_processing/remesh.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/Surface_mesh_simplification/Policies/Edge_collapse/Count_stop_predicate.h>
#include <CGAL/Surface_mesh_simplification/Policies/Edge_collapse/GarlandHeckbert_plane_policies.h>
#include <CGAL/Surface_mesh_simplification/edge_collapse.h>

#include "remeshingBenchInput.h"

namespace {

using namespace remeshingBench;
using kernel = CGAL::Simple_cartesian<double>;
using cgalMesh = CGAL::Surface_mesh<kernel::Point_3>;
namespace SMS = CGAL::Surface_mesh_simplification;

void toCgal(const soup& in, cgalMesh& mesh) {
  std::vector<cgalMesh::Vertex_index> handles;
  handles.reserve(in.positions.size());
  for (const p3& p : in.positions)
    handles.push_back(mesh.add_vertex(kernel::Point_3(p.x, p.y, p.z)));
  for (size_t k = 0; k < in.triangles.size(); k += 3)
    mesh.add_face(handles[in.triangles[k]], handles[in.triangles[k + 1]],
                  handles[in.triangles[k + 2]]);
}

void fromCgal(const cgalMesh& mesh, soup& out) {
  out.positions.clear();
  out.triangles.clear();
  std::vector<unsigned> id(mesh.number_of_vertices() + mesh.number_of_removed_vertices());
  for (auto v : mesh.vertices()) {
    id[v.idx()] = unsigned(out.positions.size());
    const kernel::Point_3& p = mesh.point(v);
    out.positions.emplace_back(float(p.x()), float(p.y()), float(p.z()));
  }
  for (auto f : mesh.faces())
    for (auto v : CGAL::vertices_around_face(mesh.halfedge(f), mesh))
      out.triangles.push_back(id[v.idx()]);
}

// Times step on a fresh CGAL copy of in at each iteration; out gets the last result.
template <class Step>
void timeOnCopy(benchmark::State& state, const soup& in, soup& out, Step step) {
  for (auto _ : state) {
    state.PauseTiming();
    cgalMesh mesh;
    toCgal(in, mesh);
    state.ResumeTiming();
    step(mesh);
    state.PauseTiming();
    mesh.collect_garbage();
    fromCgal(mesh, out);
    state.ResumeTiming();
  }
}

void decimateCgal(benchmark::State& state) {
  const soup& in = millionTriangles();
  soup out;
  timeOnCopy(state, in, out, [&](cgalMesh& mesh) {
    // A triangle mesh with few borders has about 1.5 edges a face.
    const size_t edges = size_t(double(mesh.number_of_edges()) / double(mesh.number_of_faces()) *
                                double(in.count() / 10));
    SMS::GarlandHeckbert_plane_policies<cgalMesh, kernel> policies(mesh);
    SMS::Count_stop_predicate<cgalMesh> stop(edges);
    SMS::edge_collapse(
        mesh, stop,
        CGAL::parameters::get_cost(policies.get_cost()).get_placement(policies.get_placement()));
  });
  reportDistance(state, in, out);
}

void isotropicCgal(benchmark::State& state) {
  const soup& in = hundredThousandTriangles();
  const double length = meanEdgeLength(in);
  soup out;
  timeOnCopy(state, in, out, [&](cgalMesh& mesh) {
    CGAL::Polygon_mesh_processing::isotropic_remeshing(faces(mesh), length, mesh,
                                                       CGAL::parameters::number_of_iterations(3));
  });
  reportDistance(state, in, out);
  reportEdgeLengths(state, out, length);
  reportLengthBand(state, out, length);
}

void refineCgal(benchmark::State& state) {
  const soup& in = hundredThousandTriangles();
  const double length = meanEdgeLength(in);
  soup out;
  timeOnCopy(state, in, out, [&](cgalMesh& mesh) {
    CGAL::Polygon_mesh_processing::split_long_edges(edges(mesh), 0.5 * length, mesh);
  });
  state.counters["triangles"] = double(out.count());
  reportEdgeLengths(state, out, length);
}

}  // namespace

BENCHMARK(refineCgal)
    ->Name("refine_100k/cgal")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(isotropicCgal)
    ->Name("isotropic_100k/cgal")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(decimateCgal)
    ->Name("decimate_1m/cgal")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
