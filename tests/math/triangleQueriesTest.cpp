// The watertight ray/triangle test, alone and through triangleTree: rays through shared
// edges and vertices meet exactly one triangle and never slip between them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "jev3d/math/triangleQueries.h"
#include "jev3d/math/triangleTree.h"

using JEV::MATH::rayHit;
using JEV::MATH::triangleTree;
using vec = JEV::MATH::point3<float>;

namespace {

constexpr float unbounded = std::numeric_limits<float>::max();

struct mesh {
  std::vector<vec> positions;
  std::vector<unsigned int> indices;
  std::size_t triangleCount() const { return indices.size() / 3; }
  vec corner(std::size_t t, int i) const { return positions[indices[3 * t + std::size_t(i)]]; }

  triangleTree tree() const {
    triangleTree t;
    t.build(positions.data(), positions.size(), indices.data(), triangleCount(), 4);
    return t;
  }
};

// An n by n grid of unit squares in the plane z = 0, each split along a diagonal that
// alternates, so that vertices have four or eight triangles around them.
mesh flatGrid(int n) {
  mesh grid;
  for (int y = 0; y <= n; ++y) {
    for (int x = 0; x <= n; ++x) grid.positions.push_back(vec(float(x), float(y), 0.0f));
  }
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      const unsigned a = unsigned(y * (n + 1) + x), b = a + 1, c = a + unsigned(n) + 1, d = c + 1;
      if ((x + y) % 2 == 0) {
        grid.indices.insert(grid.indices.end(), {a, b, d, a, d, c});
      } else {
        grid.indices.insert(grid.indices.end(), {a, b, c, b, d, c});
      }
    }
  }
  return grid;
}

// A closed, consistently wound sphere of rings by segments quads split in two, with fans
// of `segments` triangles at the poles.
mesh uvSphere(int rings, int segments) {
  mesh s;
  const float pi = 3.14159265f;
  s.positions.push_back(vec(0, 0, 1));
  for (int r = 1; r < rings; ++r) {
    const float polar = pi * float(r) / float(rings);
    for (int k = 0; k < segments; ++k) {
      const float around = 2.0f * pi * float(k) / float(segments);
      s.positions.push_back(vec(std::sin(polar) * std::cos(around),
                                std::sin(polar) * std::sin(around), std::cos(polar)));
    }
  }
  s.positions.push_back(vec(0, 0, -1));
  const unsigned south = unsigned(s.positions.size() - 1);
  const auto ring = [&](int r, int k) { return unsigned(1 + (r - 1) * segments + k % segments); };
  for (int k = 0; k < segments; ++k) {
    s.indices.insert(s.indices.end(), {0u, ring(1, k), ring(1, k + 1)});
    for (int r = 1; r + 1 < rings; ++r) {
      const unsigned a = ring(r, k), b = ring(r + 1, k), c = ring(r + 1, k + 1), d = ring(r, k + 1);
      s.indices.insert(s.indices.end(), {a, b, c, a, c, d});
    }
    s.indices.insert(s.indices.end(), {ring(rings - 1, k), south, ring(rings - 1, k + 1)});
  }
  return s;
}

float squaredDistanceToTriangle(const mesh& m, std::size_t t, const vec& p) {
  float u, v;
  const vec q =
      JEV::MATH::closestPointOnTriangle(p, m.corner(t, 0), m.corner(t, 1), m.corner(t, 2), u, v);
  return (q - p).squaredNorm();
}

// Every triangle of the list that the ray meets, by the scalar test.
std::vector<std::size_t> trianglesMet(const mesh& m, const vec& o, const vec& d) {
  std::vector<std::size_t> met;
  for (std::size_t t = 0; t < m.triangleCount(); ++t) {
    float tHit, u, v;
    if (JEV::MATH::intersectRayTriangle(o, d, m.corner(t, 0), m.corner(t, 1), m.corner(t, 2),
                                        unbounded, tHit, u, v)) {
      met.push_back(t);
    }
  }
  return met;
}

}  // namespace

TEST(watertightRays, sharedEdgesAndVerticesOfAGridAreMetExactlyOnce) {
  // Directions whose shear is exact in float, so that a ray aimed at a grid point passes
  // exactly through it: straight down, slanted, from below and grazing at a few degrees.
  const std::vector<vec> directions = {vec(0, 0, -1),       vec(1, 2, -4),     vec(-3, 1, -8),
                                       vec(2, -1, 4),       vec(4, 1, -0.25f), vec(-1, 8, 0.5f),
                                       vec(16, -2, -0.125f)};
  const int n = 6;
  const mesh grid = flatGrid(n);
  const triangleTree tree = grid.tree();
  std::vector<rayHit> hits;
  int aims = 0;
  for (const vec& d : directions) {
    for (int y = 1; y < n; ++y) {
      for (int x = 1; x < n; ++x) {
        // A vertex, the midpoints of the edges leaving it and of the cell's diagonal.
        for (const vec& offset : {vec(0, 0, 0), vec(0.5f, 0, 0), vec(0, 0.5f, 0),
                                  vec(0.5f, 0.5f, 0), vec(0.25f, 0.25f, 0)}) {
          const vec target = vec(float(x), float(y), 0.0f) + offset;
          const vec origin = target - d;  // t = 1 at the target
          const std::vector<std::size_t> met = trianglesMet(grid, origin, d);
          ASSERT_EQ(met.size(), 1u) << x << " " << y << " aim " << offset.x << " " << offset.y
                                    << " dir " << d.x << " " << d.y << " " << d.z;
          EXPECT_LE(squaredDistanceToTriangle(grid, met[0], target), 1e-12f);
          ASSERT_EQ(tree.allHits(origin, d, unbounded, hits), 1u);
          EXPECT_EQ(hits[0].face, met[0]);
          EXPECT_NEAR(hits[0].t, 1.0f, 1e-6f);
          rayHit first;
          ASSERT_TRUE(tree.firstHit(origin, d, unbounded, first));
          EXPECT_EQ(first.face, met[0]);
          ++aims;
        }
      }
    }
  }
  EXPECT_EQ(aims, int(directions.size()) * (n - 1) * (n - 1) * 5);
}

TEST(watertightRays, poleFansAndEdgesOfAClosedSphereAreNeverMissed) {
  const mesh sphere = uvSphere(24, 48);
  const triangleTree tree = sphere.tree();
  // Aims at every vertex (the poles carry fans of 48 triangles), at edge midpoints and at
  // random points, from the centre and from outside through the centre.
  std::vector<vec> aims(sphere.positions);
  for (std::size_t t = 0; t < sphere.triangleCount(); ++t) {
    for (int i = 0; i < 3; ++i)
      aims.push_back((sphere.corner(t, i) + sphere.corner(t, (i + 1) % 3)) * 0.5f);
  }
  std::mt19937 rng(3);
  std::normal_distribution<float> normal;
  for (int i = 0; i < 2000; ++i) aims.push_back(vec(normal(rng), normal(rng), normal(rng)));
  const vec centre(0.01f, -0.02f, 0.015f);
  std::vector<rayHit> hits;
  for (const vec& aim : aims) {
    const vec d = aim - centre;
    rayHit hit;
    ASSERT_TRUE(tree.firstHit(centre, d, unbounded, hit)) << aim.x << " " << aim.y << " " << aim.z;
    ASSERT_EQ(tree.allHits(centre, d, unbounded, hits), 1u);
    // From outside the line crosses the convex surface once going in and once going out.
    const vec outside = centre + d * (3.0f / std::sqrt(d.squaredNorm()));
    ASSERT_EQ(tree.allHits(outside, centre - outside, unbounded, hits), 2u)
        << aim.x << " " << aim.y << " " << aim.z;
    EXPECT_LT(hits[0].t, hits[1].t);
  }
}

TEST(watertightRays, grazingLinesCrossAClosedSurfaceAnEvenNumberOfTimes) {
  // Lines that only just touch the sphere meet its silhouette, where a front and a back
  // triangle share an edge: both or neither take the ray, so a closed surface is always
  // entered as often as it is left.
  const mesh sphere = uvSphere(16, 32);
  const triangleTree tree = sphere.tree();
  std::mt19937 rng(11);
  std::normal_distribution<float> normal;
  std::uniform_real_distribution<float> skim(0.97f, 1.0f);
  std::vector<rayHit> hits;
  int crossing = 0;
  for (int i = 0; i < 4000; ++i) {
    vec axis(normal(rng), normal(rng), normal(rng));
    axis.normalize();
    vec side = vec::cross(axis, vec(normal(rng), normal(rng), normal(rng)));
    side.normalize();
    // A line at distance near 1 from the centre, or aimed at a vertex near the silhouette.
    const vec through =
        i % 2 == 0 ? side * skim(rng) : sphere.positions[std::size_t(i) % sphere.positions.size()];
    const vec origin = through - axis * 4.0f;
    const std::size_t count = tree.allHits(origin, axis, unbounded, hits);
    ASSERT_EQ(count % 2, 0u) << i;
    crossing += count > 0;
    rayHit first;
    ASSERT_EQ(tree.firstHit(origin, axis, unbounded, first), count > 0);
    if (count > 0) {
      EXPECT_EQ(first.t, hits[0].t);
    }
  }
  EXPECT_GT(crossing, 1000);
}

TEST(watertightRays, hitWeightsAndDistanceAreThoseOfTheTriangle) {
  std::mt19937 rng(21);
  std::uniform_real_distribution<float> coord(-2.0f, 2.0f);
  int hits = 0;
  for (int i = 0; i < 5000; ++i) {
    const vec a(coord(rng), coord(rng), coord(rng)), b(coord(rng), coord(rng), coord(rng)),
        c(coord(rng), coord(rng), coord(rng)), o(coord(rng), coord(rng), coord(rng));
    const vec target = a * 0.3f + b * 0.3f + c * 0.4f;
    const vec d = (i % 2 ? target : vec(coord(rng), coord(rng), coord(rng))) - o;
    float t, u, v;
    if (!JEV::MATH::intersectRayTriangle(o, d, a, b, c, unbounded, t, u, v)) continue;
    ++hits;
    EXPECT_GE(t, 0.0f);
    EXPECT_GE(u, -1e-6f);
    EXPECT_GE(v, -1e-6f);
    EXPECT_LE(u + v, 1.0f + 1e-5f);
    const vec onRay = o + d * t, onTriangle = a + (b - a) * u + (c - a) * v;
    EXPECT_LT((onRay - onTriangle).squaredNorm(), 1e-8f);
    // A limit below the hit loses it.
    EXPECT_FALSE(JEV::MATH::intersectRayTriangle(o, d, a, b, c, t * 0.999f, t, u, v));
  }
  EXPECT_GT(hits, 2500);
  // No direction, or one that is not finite, meets nothing.
  float t, u, v;
  EXPECT_FALSE(JEV::MATH::intersectRayTriangle(vec(0.2f, 0.2f, 1), vec(0, 0, 0), vec(0, 0, 0),
                                               vec(1, 0, 0), vec(0, 1, 0), unbounded, t, u, v));
  EXPECT_FALSE(JEV::MATH::intersectRayTriangle(vec(0.2f, 0.2f, 1), vec(0, 0, std::nanf("")),
                                               vec(0, 0, 0), vec(1, 0, 0), vec(0, 1, 0), unbounded,
                                               t, u, v));
}
