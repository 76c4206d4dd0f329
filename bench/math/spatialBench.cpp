// Spatial index against CGAL's AABB tree on the same data: build time, and closest-point
// queries for 200k points near the surface and 200k spread through the bounding box.
#include <benchmark/benchmark.h>

#include <CGAL/AABB_traits.h>
#include <CGAL/AABB_tree.h>
#include <CGAL/AABB_triangle_primitive.h>
#include <CGAL/Simple_cartesian.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "jev3d/math/triangleTree.h"

namespace {

using vec = JEV::MATH::point3<float>;

using cgalKernel = CGAL::Simple_cartesian<double>;
using cgalTriangles = std::vector<cgalKernel::Triangle_3>;
using cgalPrimitive = CGAL::AABB_triangle_primitive<cgalKernel, cgalTriangles::const_iterator>;
using cgalTree = CGAL::AABB_tree<CGAL::AABB_traits<cgalKernel, cgalPrimitive>>;

constexpr int queryCount = 200000;

struct testMesh {
  std::vector<vec> positions;
  std::vector<unsigned int> indices;
  std::vector<vec> nearQueries, uniformQueries;
};

// A bumpy torus with jittered vertices, about as regular as a scan, with faceCount faces.
testMesh makeMesh(int faceCount) {
  const int nu = int(std::sqrt(faceCount / 2.0 * 2.5)), nv = faceCount / 2 / nu;
  testMesh mesh;
  std::mt19937 rng(11);
  std::uniform_real_distribution<float> jitter(-0.2f, 0.2f);
  const float pi2 = 6.2831853f;
  for (int i = 0; i < nu; ++i) {
    for (int j = 0; j < nv; ++j) {
      const float u = pi2 * (i + jitter(rng)) / nu, v = pi2 * (j + jitter(rng)) / nv;
      const float r = 0.4f * (1.0f + 0.15f * std::sin(7 * u) * std::sin(5 * v));
      mesh.positions.push_back(vec((1 + r * std::cos(v)) * std::cos(u),
                                   (1 + r * std::cos(v)) * std::sin(u), r * std::sin(v)));
    }
  }
  for (int i = 0; i < nu; ++i) {
    for (int j = 0; j < nv; ++j) {
      const unsigned a = unsigned(i * nv + j), b = unsigned(((i + 1) % nu) * nv + j),
                     c = unsigned(i * nv + (j + 1) % nv),
                     d = unsigned(((i + 1) % nu) * nv + (j + 1) % nv);
      mesh.indices.insert(mesh.indices.end(), {a, b, d, a, d, c});
    }
  }

  vec lo = mesh.positions[0], hi = lo;
  for (const vec& p : mesh.positions) {
    for (int k = 0; k < 3; ++k) lo[k] = std::min(lo[k], p[k]), hi[k] = std::max(hi[k], p[k]);
  }
  std::uniform_real_distribution<float> unit(0.0f, 1.0f), offset(-0.02f, 0.02f);
  std::uniform_int_distribution<std::size_t> face(0, mesh.indices.size() / 3 - 1);
  for (int q = 0; q < queryCount; ++q) {
    const std::size_t f = face(rng);
    float s = unit(rng), t = unit(rng);
    if (s + t > 1) s = 1 - s, t = 1 - t;
    const vec& a = mesh.positions[mesh.indices[3 * f]];
    const vec& b = mesh.positions[mesh.indices[3 * f + 1]];
    const vec& c = mesh.positions[mesh.indices[3 * f + 2]];
    mesh.nearQueries.push_back(a + (b - a) * s + (c - a) * t +
                               vec(offset(rng), offset(rng), offset(rng)));
    mesh.uniformQueries.push_back(vec(lo.x + (hi.x - lo.x) * unit(rng),
                                      lo.y + (hi.y - lo.y) * unit(rng),
                                      lo.z + (hi.z - lo.z) * unit(rng)));
  }
  return mesh;
}

const testMesh& meshOf(int faceCount) {
  static std::map<int, testMesh> meshes;
  auto it = meshes.find(faceCount);
  if (it == meshes.end()) it = meshes.emplace(faceCount, makeMesh(faceCount)).first;
  return it->second;
}

void buildJev3d(const testMesh& mesh, JEV::MATH::triangleTree& tree) {
  tree.build(mesh.positions.data(), mesh.positions.size(), mesh.indices.data(),
             mesh.indices.size() / 3);
}

// CGAL's tree keeps iterators into the triangles, so both live together.
struct cgalIndex {
  cgalTriangles triangles;
  cgalTree tree;
};

void buildCgal(const testMesh& mesh, cgalIndex& index) {
  index.triangles.clear();
  index.triangles.reserve(mesh.indices.size() / 3);
  auto point = [&](unsigned i) {
    const vec& p = mesh.positions[i];
    return cgalKernel::Point_3(p.x, p.y, p.z);
  };
  for (std::size_t f = 0; f < mesh.indices.size(); f += 3) {
    index.triangles.emplace_back(point(mesh.indices[f]), point(mesh.indices[f + 1]),
                                 point(mesh.indices[f + 2]));
  }
  index.tree.clear();
  index.tree.insert(index.triangles.cbegin(), index.triangles.cend());
  index.tree.build();
  index.tree.accelerate_distance_queries();
}

void buildJev3dBench(benchmark::State& state, int faceCount) {
  const testMesh& mesh = meshOf(faceCount);
  for (auto _ : state) {
    JEV::MATH::triangleTree tree;
    buildJev3d(mesh, tree);
    benchmark::DoNotOptimize(tree.size());
  }
  state.SetItemsProcessed(state.iterations() * int64_t(mesh.indices.size() / 3));
}

void buildCgalBench(benchmark::State& state, int faceCount) {
  const testMesh& mesh = meshOf(faceCount);
  for (auto _ : state) {
    cgalIndex index;
    buildCgal(mesh, index);
    benchmark::DoNotOptimize(index.tree.size());
  }
  state.SetItemsProcessed(state.iterations() * int64_t(mesh.indices.size() / 3));
}

void closestJev3dBench(benchmark::State& state, int faceCount, bool near) {
  const testMesh& mesh = meshOf(faceCount);
  const std::vector<vec>& queries = near ? mesh.nearQueries : mesh.uniformQueries;
  JEV::MATH::triangleTree tree;
  buildJev3d(mesh, tree);
  double sum = 0;
  for (auto _ : state) {
    JEV::MATH::closestPointHit hit;
    for (const vec& q : queries) {
      tree.closestPoint(q, std::numeric_limits<float>::max(), hit);
      sum += hit.squaredDistance;
    }
  }
  // Both sides report the mean squared distance found, which must agree.
  state.counters["mean_d2"] = sum / double(state.iterations() * queries.size());
  state.SetItemsProcessed(state.iterations() * int64_t(queries.size()));
}

void closestCgalBench(benchmark::State& state, int faceCount, bool near) {
  const testMesh& mesh = meshOf(faceCount);
  const std::vector<vec>& queries = near ? mesh.nearQueries : mesh.uniformQueries;
  cgalIndex index;
  buildCgal(mesh, index);
  double sum = 0;
  for (auto _ : state) {
    for (const vec& q : queries) {
      const cgalKernel::Point_3 p(q.x, q.y, q.z);
      const auto found = index.tree.closest_point_and_primitive(p);
      sum += CGAL::squared_distance(p, found.first);
    }
  }
  // Both sides report the mean squared distance found, which must agree.
  state.counters["mean_d2"] = sum / double(state.iterations() * queries.size());
  state.SetItemsProcessed(state.iterations() * int64_t(queries.size()));
}

void registerAll() {
  for (int faces : {100000, 1000000}) {
    const std::string size = faces == 100000 ? "100k" : "1M";
    benchmark::RegisterBenchmark(("build_" + size + "/jev3d").c_str(), buildJev3dBench, faces)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("build_" + size + "/cgal").c_str(), buildCgalBench, faces)
        ->Unit(benchmark::kMillisecond);
    for (bool near : {true, false}) {
      const std::string name = std::string("closest_") + (near ? "near_" : "uniform_") + size;
      benchmark::RegisterBenchmark((name + "/jev3d").c_str(), closestJev3dBench, faces, near)
          ->Unit(benchmark::kMillisecond);
      benchmark::RegisterBenchmark((name + "/cgal").c_str(), closestCgalBench, faces, near)
          ->Unit(benchmark::kMillisecond);
    }
  }
}

[[maybe_unused]] const int registered = (registerAll(), 0);

}  // namespace
