// Distances between meshes against CGAL: signed distance from 100k points to a 100k-face
// surface against a loop of closest-point queries on CGAL's AABB tree, and the largest
// distance from one scan's vertices to another scan against CGAL's
// max_distance_to_triangle_mesh. Each side builds its own index inside the timed loop.
// Times are wall-clock: the jev3d side measures long point lists on several threads.
#include <benchmark/benchmark.h>

#include <CGAL/AABB_face_graph_triangle_primitive.h>
#include <CGAL/AABB_traits.h>
#include <CGAL/AABB_tree.h>
#include <CGAL/Polygon_mesh_processing/distance.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>

#include <cmath>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "jev3d/algo/measurement/distance.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/math/mathBase.h"

namespace {

using vec = JEV::MATH::point3<float>;
using JEV::MESH::ALGO::MEASUREMENT::distance;
using JEV::MESH::POSTPROCESSING::triMesh;

using cgalKernel = CGAL::Simple_cartesian<double>;
using cgalMesh = CGAL::Surface_mesh<cgalKernel::Point_3>;
using cgalPrimitive = CGAL::AABB_face_graph_triangle_primitive<cgalMesh>;
using cgalTree = CGAL::AABB_tree<CGAL::AABB_traits<cgalKernel, cgalPrimitive>>;

constexpr float MAX_T = JEV::MATH::mathBase<float>::MAX_T();

struct surface {
  triMesh mesh;  // with its vertex normals
  cgalMesh cgal;
  std::vector<cgalKernel::Vector_3> cgalNormals;  // the same normals, per CGAL vertex
};

void fill(surface& s, const std::vector<vec>& positions, const std::vector<unsigned>& indices) {
  s.mesh.clear();
  for (const vec& p : positions) s.mesh.addVertex(p);
  for (std::size_t t = 0; t < indices.size(); t += 3) s.mesh.addFace(&indices[t], 3);
  s.mesh.computeVertexFaceNormalizedNormals();
  s.cgal.clear();
  for (const vec& p : positions) s.cgal.add_vertex(cgalKernel::Point_3(p.x, p.y, p.z));
  for (std::size_t t = 0; t < indices.size(); t += 3)
    s.cgal.add_face(cgalMesh::Vertex_index(indices[t]), cgalMesh::Vertex_index(indices[t + 1]),
                    cgalMesh::Vertex_index(indices[t + 2]));
  s.cgalNormals.clear();
  for (unsigned v = 0; v < s.mesh.vn(); ++v) {
    const vec& n = s.mesh.vNor(v);
    s.cgalNormals.emplace_back(n.x, n.y, n.z);
  }
}

// A bumpy torus grid of about faceCount faces, its vertices jittered like a scan's; with
// `lift` the surface is pushed out along its radius, for a second surface near the first.
void torus(int faceCount, unsigned seed, float lift, std::vector<vec>& positions,
           std::vector<unsigned>& indices) {
  const int nu = int(std::sqrt(faceCount / 2.0 * 2.5)), nv = faceCount / 2 / nu;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> jitter(-0.2f, 0.2f), noise(-0.01f, 0.01f);
  const float pi2 = 6.2831853f;
  positions.clear();
  indices.clear();
  for (int i = 0; i < nu; ++i)
    for (int j = 0; j < nv; ++j) {
      const float u = pi2 * (i + jitter(rng)) / nu, v = pi2 * (j + jitter(rng)) / nv;
      const float r = 0.4f * (1.0f + 0.15f * std::sin(7 * u) * std::sin(5 * v)) + lift +
                      (lift != 0.0f ? noise(rng) : 0.0f);
      positions.push_back(vec((1 + r * std::cos(v)) * std::cos(u),
                              (1 + r * std::cos(v)) * std::sin(u), r * std::sin(v)));
    }
  for (int i = 0; i < nu; ++i)
    for (int j = 0; j < nv; ++j) {
      const unsigned a = unsigned(i * nv + j), b = unsigned(((i + 1) % nu) * nv + j),
                     c = unsigned(i * nv + (j + 1) % nv),
                     d = unsigned(((i + 1) % nu) * nv + (j + 1) % nv);
      indices.insert(indices.end(), {a, b, d, a, d, c});
    }
}

struct signedCase {
  surface target;
  std::vector<vec> points;  // the vertices of a second, offset scan of the torus, in scan order
  std::vector<cgalKernel::Point_3> cgalPoints;
};

const signedCase& signedData() {
  static signedCase* data = [] {
    auto* d = new signedCase;
    std::vector<vec> positions;
    std::vector<unsigned> indices;
    torus(100000, 11, 0.0f, positions, indices);
    fill(d->target, positions, indices);
    torus(100000, 12, 0.004f, d->points, indices);
    for (const vec& p : d->points) d->cgalPoints.emplace_back(p.x, p.y, p.z);
    return d;
  }();
  return *data;
}

void signedDistanceJev3d(benchmark::State& state) {
  const signedCase& data = signedData();
  triMesh target(data.target.mesh);
  std::vector<float> d;
  std::vector<vec> closest;
  std::vector<unsigned> faces;
  for (auto _ : state) {
    distance::computeSignedDistance(data.points, &target, true, MAX_T, d, closest, faces);
    benchmark::DoNotOptimize(d.data());
  }
  double sum = 0;
  for (float x : d) sum += x;
  state.counters["mean"] = sum / double(d.size());
}

void signedDistanceCgal(benchmark::State& state) {
  const signedCase& data = signedData();
  const cgalMesh& mesh = data.target.cgal;
  std::vector<double> d(data.cgalPoints.size());
  for (auto _ : state) {
    cgalTree tree(faces(mesh).first, faces(mesh).second, mesh);
    tree.accelerate_distance_queries();
    for (std::size_t i = 0; i < data.cgalPoints.size(); ++i) {
      const auto& p = data.cgalPoints[i];
      const auto hit = tree.closest_point_and_primitive(p);
      // The same sign rule: the corners' normals blended at the closest point.
      const auto h = mesh.halfedge(hit.second);
      const auto v0 = mesh.source(h), v1 = mesh.target(h), v2 = mesh.target(mesh.next(h));
      const cgalKernel::Triangle_3 t(mesh.point(v0), mesh.point(v1), mesh.point(v2));
      const double area = std::sqrt(t.squared_area());
      const auto sub = [&](const cgalKernel::Point_3& a, const cgalKernel::Point_3& b) {
        return std::sqrt(cgalKernel::Triangle_3(hit.first, a, b).squared_area()) / area;
      };
      const auto n = data.target.cgalNormals[v0] * sub(mesh.point(v1), mesh.point(v2)) +
                     data.target.cgalNormals[v1] * sub(mesh.point(v2), mesh.point(v0)) +
                     data.target.cgalNormals[v2] * sub(mesh.point(v0), mesh.point(v1));
      const auto offset = p - hit.first;
      const double size = std::sqrt(offset.squared_length());
      d[i] = offset * n < 0 ? -size : size;
    }
    benchmark::DoNotOptimize(d.data());
  }
  double sum = 0;
  for (double x : d) sum += x;
  state.counters["mean"] = sum / double(d.size());
}

// Two scans of one object: the bunny as scanned, and the same bunny scanned again with
// its own noise and placed 1 mm off.
struct scanPair {
  surface first, second;
  std::vector<cgalKernel::Point_3> firstPoints;
  bool present = false;
};

const scanPair& scans() {
  static scanPair* data = [] {
    auto* d = new scanPair;
    const std::string path = std::string(JEV3D_DATA_DIR) + "/ply/stanford_bun_zipper.ply";
    triMesh read;
    if (!std::filesystem::exists(path) || !read.readPlyFromFile(path)) return d;
    // Only what faces use: CGAL's mesh needs no loose vertices for its test.
    read.removeUnReferenceVertex();
    std::vector<vec> positions(read.vn());
    std::vector<unsigned> indices;
    for (unsigned v = 0; v < read.vn(); ++v) positions[v] = read.vPos(v);
    for (unsigned f = 0; f < read.fn(); ++f)
      for (unsigned i = 0; i < 3; ++i) indices.push_back(read.fV(f, i));
    fill(d->first, positions, indices);
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> noise(-3e-4f, 3e-4f);
    for (vec& p : positions) p += vec(0.001f + noise(rng), noise(rng), noise(rng));
    fill(d->second, positions, indices);
    for (unsigned v = 0; v < d->first.mesh.vn(); ++v) {
      const vec& p = d->first.mesh.vPos(v);
      d->firstPoints.emplace_back(p.x, p.y, p.z);
    }
    d->present = true;
    return d;
  }();
  return *data;
}

void hausdorffJev3d(benchmark::State& state) {
  const scanPair& data = scans();
  if (!data.present) return state.SkipWithError("the shared scan data is not present");
  float result = 0;
  for (auto _ : state) {
    distance::computeMaxDistance(&data.first.mesh, &data.second.mesh, result);
    benchmark::DoNotOptimize(result);
  }
  state.counters["max"] = result;
}

void hausdorffCgal(benchmark::State& state) {
  const scanPair& data = scans();
  if (!data.present) return state.SkipWithError("the shared scan data is not present");
  double result = 0;
  for (auto _ : state) {
    result = CGAL::Polygon_mesh_processing::max_distance_to_triangle_mesh<CGAL::Sequential_tag>(
        data.firstPoints, data.second.cgal);
    benchmark::DoNotOptimize(result);
  }
  state.counters["max"] = result;
}

}  // namespace

BENCHMARK(signedDistanceJev3d)
    ->Name("signed_100k/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(signedDistanceCgal)
    ->Name("signed_100k/cgal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(hausdorffJev3d)
    ->Name("hausdorff_bunny/jev3d")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(hausdorffCgal)
    ->Name("hausdorff_bunny/cgal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
