#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/math/triangleQueries.h"
#include "jev3d/math/triangleTree.h"
#include "support/dataFiles.h"

using JEV::MATH::closestPointHit;
using JEV::MATH::rayHit;
using JEV::MATH::triangleTree;
using vec = JEV::MATH::point3<float>;

namespace {

struct triangleSoup {
  std::vector<vec> positions;
  std::vector<unsigned int> indices;
  std::size_t triangleCount() const { return indices.size() / 3; }
};

// Triangles of mixed sizes scattered in the unit cube, sharing no vertices.
triangleSoup randomSoup(std::mt19937& rng, int count) {
  std::uniform_real_distribution<float> unit(0.0f, 1.0f), offset(-0.05f, 0.05f);
  triangleSoup soup;
  for (int t = 0; t < count; ++t) {
    const vec centre(unit(rng), unit(rng), unit(rng));
    const float scale = (t % 10 == 0) ? 4.0f : 1.0f;
    for (int k = 0; k < 3; ++k) {
      soup.indices.push_back(unsigned(soup.positions.size()));
      soup.positions.push_back(centre + vec(offset(rng), offset(rng), offset(rng)) * scale);
    }
  }
  return soup;
}

// An n by n grid of unit squares in the plane z = 0, two triangles each, sharing vertices.
triangleSoup flatGrid(int n) {
  triangleSoup grid;
  for (int y = 0; y <= n; ++y) {
    for (int x = 0; x <= n; ++x) grid.positions.push_back(vec(float(x), float(y), 0.0f));
  }
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      const unsigned a = unsigned(y * (n + 1) + x), b = a + 1, c = a + unsigned(n) + 1, d = c + 1;
      grid.indices.insert(grid.indices.end(), {a, b, d, a, d, c});
    }
  }
  return grid;
}

triangleTree treeOf(const triangleSoup& soup, unsigned leafSize = 8) {
  triangleTree tree;
  tree.build(soup.positions.data(), soup.positions.size(), soup.indices.data(),
             soup.triangleCount(), leafSize);
  return tree;
}

closestPointHit bruteClosest(const triangleSoup& soup, const vec& p, float bound, bool& found) {
  closestPointHit best;
  best.squaredDistance = bound;
  found = false;
  for (std::size_t t = 0; t < soup.triangleCount(); ++t) {
    float u, v;
    const vec q = JEV::MATH::closestPointOnTriangle(p, soup.positions[soup.indices[3 * t]],
                                                    soup.positions[soup.indices[3 * t + 1]],
                                                    soup.positions[soup.indices[3 * t + 2]], u, v);
    const float d = (p - q).squaredNorm();
    if (d < best.squaredDistance || (!found && d == best.squaredDistance)) {
      best.squaredDistance = d, best.face = best.triangle = unsigned(t), best.point = q;
      found = true;
    }
  }
  return best;
}

float distanceToTriangle(const triangleSoup& soup, unsigned t, const vec& p) {
  float u, v;
  const vec q = JEV::MATH::closestPointOnTriangle(p, soup.positions[soup.indices[3 * t]],
                                                  soup.positions[soup.indices[3 * t + 1]],
                                                  soup.positions[soup.indices[3 * t + 2]], u, v);
  return (p - q).squaredNorm();
}

std::vector<rayHit> bruteHits(const triangleSoup& soup, const vec& o, const vec& d, float tMax) {
  std::vector<rayHit> hits;
  for (std::size_t t = 0; t < soup.triangleCount(); ++t) {
    rayHit h;
    if (JEV::MATH::intersectRayTriangle(
            o, d, soup.positions[soup.indices[3 * t]], soup.positions[soup.indices[3 * t + 1]],
            soup.positions[soup.indices[3 * t + 2]], tMax, h.t, h.u, h.v)) {
      h.face = h.triangle = unsigned(t);
      hits.push_back(h);
    }
  }
  std::sort(hits.begin(), hits.end(), [](const rayHit& a, const rayHit& b) {
    return a.t < b.t || (a.t == b.t && a.face < b.face);
  });
  return hits;
}

void expectClosestLikeBruteForce(const triangleTree& tree, const triangleSoup& soup, const vec& p,
                                 float bound) {
  bool found;
  const closestPointHit expected = bruteClosest(soup, p, bound, found);
  closestPointHit hit;
  ASSERT_EQ(tree.closestPoint(p, bound, hit), found);
  if (!found) return;
  EXPECT_EQ(hit.squaredDistance, expected.squaredDistance);
  EXPECT_EQ(hit.face, hit.triangle);
  // A different face is only allowed at exactly the same distance.
  if (hit.face != expected.face) {
    EXPECT_EQ(distanceToTriangle(soup, hit.face, p), expected.squaredDistance);
  } else {
    EXPECT_EQ(hit.point.x, expected.point.x);
    EXPECT_EQ(hit.point.y, expected.point.y);
    EXPECT_EQ(hit.point.z, expected.point.z);
  }
  EXPECT_EQ((hit.point - p).squaredNorm(), hit.squaredDistance);
}

vec randomDirection(std::mt19937& rng) {
  std::normal_distribution<float> normal;
  return vec(normal(rng), normal(rng), normal(rng));
}

constexpr float unbounded = std::numeric_limits<float>::max();

}  // namespace

TEST(triangleQueries, closestPointIsOnTriangleAndNoFartherThanCorners) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<float> coord(-2.0f, 2.0f);
  for (int i = 0; i < 2000; ++i) {
    const vec a(coord(rng), coord(rng), coord(rng)), b(coord(rng), coord(rng), coord(rng)),
        c(coord(rng), coord(rng), coord(rng)), p(coord(rng), coord(rng), coord(rng));
    float u, v;
    const vec q = JEV::MATH::closestPointOnTriangle(p, a, b, c, u, v);
    EXPECT_GE(u, 0.0f);
    EXPECT_GE(v, 0.0f);
    EXPECT_LE(u + v, 1.0f + 1e-5f);
    const vec fromWeights = a + (b - a) * u + (c - a) * v;
    EXPECT_NEAR((fromWeights - q).squaredNorm(), 0.0f, 1e-8f);
    const float d = (p - q).squaredNorm();
    EXPECT_LE(d, (p - a).squaredNorm() + 1e-5f);
    EXPECT_LE(d, (p - b).squaredNorm() + 1e-5f);
    EXPECT_LE(d, (p - c).squaredNorm() + 1e-5f);
    // No point of a coarse sampling of the triangle is closer.
    for (int s = 0; s <= 10; ++s) {
      for (int t = 0; s + t <= 10; ++t) {
        const vec sample = a + (b - a) * (s / 10.0f) + (c - a) * (t / 10.0f);
        EXPECT_LE(d, (p - sample).squaredNorm() + 1e-5f);
      }
    }
  }
}

TEST(triangleQueries, flatTrianglesGiveFinitePointsOnTheirEdges) {
  const vec a(0, 0, 0), b(1, 1, 1), c(2, 2, 2), p(0.5f, 2.0f, -1.0f);
  float u, v;
  const vec q = JEV::MATH::closestPointOnTriangle(p, a, b, c, u, v);
  EXPECT_TRUE(std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z));
  EXPECT_NEAR(q.x, q.y, 1e-6f);
  EXPECT_NEAR(q.y, q.z, 1e-6f);
  const vec point(3, 3, 3);
  const vec r = JEV::MATH::closestPointOnTriangle(vec(0, 1, 0), point, point, point, u, v);
  EXPECT_EQ(r.x, 3.0f);
  float t;
  EXPECT_FALSE(
      JEV::MATH::intersectRayTriangle(vec(1, 0, -1), vec(0, 0, 1), a, b, c, unbounded, t, u, v));
  EXPECT_FALSE(JEV::MATH::intersectRayTriangle(vec(0, 1, 0), vec(1, 0, 0), point, point, point,
                                               unbounded, t, u, v));
}

TEST(triangleTree, closestPointEqualsBruteForceOnRandomSoups) {
  std::mt19937 rng(1234);
  const triangleSoup soup = randomSoup(rng, 1500);
  std::uniform_real_distribution<float> around(-0.3f, 1.3f);
  for (unsigned leafSize : {1u, 4u, 16u, 1000u}) {
    triangleTree tree;
    tree.build(soup.positions.data(), soup.positions.size(), soup.indices.data(),
               soup.triangleCount(), leafSize);
    ASSERT_EQ(tree.size(), soup.triangleCount());
    for (int q = 0; q < 300; ++q) {
      const vec p(around(rng), around(rng), around(rng));
      expectClosestLikeBruteForce(tree, soup, p, unbounded);
      expectClosestLikeBruteForce(tree, soup, p, 0.0004f);
    }
  }
}

TEST(triangleTree, closestPointTiesOnAGridKeepTheDistance) {
  const triangleSoup grid = flatGrid(20);
  triangleTree tree;
  tree.build(grid.positions.data(), grid.positions.size(), grid.indices.data(),
             grid.triangleCount());
  std::mt19937 rng(5);
  std::uniform_int_distribution<int> cell(-2, 22);
  std::uniform_real_distribution<float> height(-3.0f, 3.0f);
  for (int q = 0; q < 500; ++q) {
    // On grid lines and vertices, where many faces are equally close.
    const vec p(float(cell(rng)), float(cell(rng)) + (q % 2) * 0.5f, height(rng));
    expectClosestLikeBruteForce(tree, grid, p, unbounded);
  }
}

TEST(triangleTree, boundIsInclusiveAndFailureLeavesHitUntouched) {
  const triangleSoup grid = flatGrid(2);
  triangleTree tree;
  tree.build(grid.positions.data(), grid.positions.size(), grid.indices.data(),
             grid.triangleCount());
  closestPointHit hit;
  hit.face = 77;
  EXPECT_FALSE(tree.closestPoint(vec(1, 1, 2), 3.99f, hit));
  EXPECT_EQ(hit.face, 77u);
  ASSERT_TRUE(tree.closestPoint(vec(1, 1, 2), 4.0f, hit));
  EXPECT_EQ(hit.squaredDistance, 4.0f);
  EXPECT_EQ(hit.point.z, 0.0f);
  EXPECT_FALSE(tree.closestPoint(vec(1, 1, 2), -1.0f, hit));
  EXPECT_FALSE(tree.closestPoint(vec(1, 1, 2), std::nanf(""), hit));
  EXPECT_FALSE(tree.closestPoint(vec(std::nanf(""), 1, 2), unbounded, hit));
}

TEST(triangleTree, firstHitEqualsBruteForceOnRandomSoups) {
  std::mt19937 rng(99);
  const triangleSoup soup = randomSoup(rng, 1500);
  std::uniform_real_distribution<float> around(-0.5f, 1.5f);
  for (unsigned leafSize : {1u, 4u, 16u}) {
    triangleTree tree;
    tree.build(soup.positions.data(), soup.positions.size(), soup.indices.data(),
               soup.triangleCount(), leafSize);
    int hitCount = 0;
    for (int q = 0; q < 400; ++q) {
      const vec o(around(rng), around(rng), around(rng));
      const vec d = randomDirection(rng);
      const float tMax = (q % 3 == 0) ? 0.2f : unbounded;
      const std::vector<rayHit> expected = bruteHits(soup, o, d, tMax);
      rayHit hit;
      ASSERT_EQ(tree.firstHit(o, d, tMax, hit), !expected.empty());
      if (expected.empty()) continue;
      ++hitCount;
      EXPECT_EQ(hit.t, expected.front().t);
      if (hit.face == expected.front().face) {
        EXPECT_EQ(hit.u, expected.front().u);
        EXPECT_EQ(hit.v, expected.front().v);
      }
    }
    EXPECT_GT(hitCount, 40);
  }
}

TEST(triangleTree, allHitsEqualBruteForceOnRandomSoups) {
  std::mt19937 rng(4321);
  const triangleSoup soup = randomSoup(rng, 1500);
  const triangleTree tree = treeOf(soup);
  std::uniform_real_distribution<float> around(-0.5f, 1.5f);
  std::size_t total = 0;
  std::vector<rayHit> hits;
  for (int q = 0; q < 300; ++q) {
    const vec o(around(rng), around(rng), around(rng));
    const vec d = randomDirection(rng);
    const std::vector<rayHit> expected = bruteHits(soup, o, d, unbounded);
    ASSERT_EQ(tree.allHits(o, d, unbounded, hits), expected.size());
    for (std::size_t i = 0; i < hits.size(); ++i) {
      EXPECT_EQ(hits[i].t, expected[i].t);
      EXPECT_EQ(hits[i].face, expected[i].face);
    }
    total += hits.size();
  }
  EXPECT_GT(total, 80u);
}

TEST(triangleTree, axisAlignedRaysFindEveryCellOfAFlatGrid) {
  // The boxes have no thickness in z and the rays have zero components: the slab test
  // must not lose them to rounding or to 0·inf.
  const int n = 16;
  const triangleSoup grid = flatGrid(n);
  triangleTree tree;
  tree.build(grid.positions.data(), grid.positions.size(), grid.indices.data(),
             grid.triangleCount());
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      for (float fx : {0.25f, 0.75f}) {
        const vec o(x + fx, y + 0.5f, 5.0f);
        rayHit hit;
        ASSERT_TRUE(tree.firstHit(o, vec(0, 0, -1), unbounded, hit)) << x << " " << y;
        EXPECT_EQ(hit.t, 5.0f);
        EXPECT_EQ(hit.face / 2, unsigned(y * n + x));
        ASSERT_TRUE(tree.firstHit(vec(o.x, o.y, -2.0f), vec(0, 0, 3), unbounded, hit));
      }
    }
  }
  // Origins on the boundary planes of the boxes, moving inside the plane of the grid: an
  // inner plane runs along edges that two cells share, and one of them takes the ray.
  rayHit hit;
  for (int x = 1; x < n; ++x) {
    ASSERT_TRUE(tree.firstHit(vec(float(x), 3.5f, 1.0f), vec(0, 0, -1), unbounded, hit)) << x;
    EXPECT_EQ(hit.t, 1.0f);
  }
  // On the outer border an edge has one triangle, which takes the ray on one of two
  // opposite sides only: the edge rule gives each edge to one side.
  const bool left = tree.firstHit(vec(0.0f, 0.5f, 1.0f), vec(0, 0, -1), unbounded, hit);
  const bool right = tree.firstHit(vec(float(n), 0.5f, 1.0f), vec(0, 0, -1), unbounded, hit);
  EXPECT_NE(left, right);
  EXPECT_FALSE(tree.firstHit(vec(0.5f, 0.5f, 1.0f), vec(0, 0, 1), unbounded, hit));
  EXPECT_FALSE(tree.firstHit(vec(0.5f, 0.5f, 1.0f), vec(0, 0, -1), 0.5f, hit));
}

TEST(triangleTree, facesOfAFanAreReportedByTheirFaceIdAndHitOnce) {
  // A square as one polygon face split along its diagonal, plus a second face above.
  const std::vector<vec> positions = {vec(0, 0, 0), vec(1, 0, 0), vec(1, 1, 0), vec(0, 1, 0),
                                      vec(0, 0, 1), vec(1, 0, 1), vec(1, 1, 1)};
  const std::vector<unsigned> indices = {0, 1, 2, 0, 2, 3, 4, 5, 6};
  const std::vector<unsigned> faceIds = {40, 40, 41};
  triangleTree tree;
  tree.build(positions.data(), positions.size(), indices.data(), 3, 4, faceIds.data());
  std::vector<rayHit> hits;
  // Straight through the shared diagonal and the second face.
  ASSERT_EQ(tree.allHits(vec(0.5f, 0.5f, -1.0f), vec(0, 0, 1), unbounded, hits), 2u);
  EXPECT_EQ(hits[0].face, 40u);
  EXPECT_EQ(hits[1].face, 41u);
  EXPECT_FLOAT_EQ(hits[1].t, 2.0f);
  closestPointHit hit;
  ASSERT_TRUE(tree.closestPoint(vec(0.2f, 0.7f, -0.5f), unbounded, hit));
  EXPECT_EQ(hit.face, 40u);
  EXPECT_EQ(hit.triangle, 1u);
}

TEST(triangleTree, degenerateFacesMatchBruteForceWithoutNaN) {
  std::mt19937 rng(17);
  triangleSoup soup = randomSoup(rng, 300);
  std::uniform_real_distribution<float> unit(0.0f, 1.0f);
  // Collinear corners, repeated corners and single points, mixed into the soup.
  for (int i = 0; i < 300; ++i) {
    const vec a(unit(rng), unit(rng), unit(rng)), b(unit(rng), unit(rng), unit(rng));
    const unsigned base = unsigned(soup.positions.size());
    soup.positions.insert(soup.positions.end(), {a, b, a + (b - a) * 0.3f});
    if (i % 3 == 0) soup.indices.insert(soup.indices.end(), {base, base + 1, base + 2});
    if (i % 3 == 1) soup.indices.insert(soup.indices.end(), {base, base + 1, base});
    if (i % 3 == 2) soup.indices.insert(soup.indices.end(), {base, base, base});
  }
  triangleTree tree;
  tree.build(soup.positions.data(), soup.positions.size(), soup.indices.data(),
             soup.triangleCount());
  ASSERT_EQ(tree.size(), soup.triangleCount());
  for (int q = 0; q < 300; ++q) {
    const vec p(unit(rng), unit(rng), unit(rng));
    expectClosestLikeBruteForce(tree, soup, p, unbounded);
    closestPointHit hit;
    ASSERT_TRUE(tree.closestPoint(p, unbounded, hit));
    EXPECT_TRUE(std::isfinite(hit.point.x) && std::isfinite(hit.u) && std::isfinite(hit.v));
  }
}

TEST(triangleTree, stackedEqualTrianglesBuildAndQuery) {
  // Every centroid is the same: the build must still split and stay shallow.
  const std::vector<vec> positions = {vec(0, 0, 0), vec(1, 0, 0), vec(0, 1, 0)};
  std::vector<unsigned> indices;
  for (int i = 0; i < 5000; ++i) indices.insert(indices.end(), {0, 1, 2});
  triangleTree tree;
  tree.build(positions.data(), positions.size(), indices.data(), 5000, 1);
  closestPointHit hit;
  ASSERT_TRUE(tree.closestPoint(vec(0.25f, 0.25f, 3.0f), unbounded, hit));
  EXPECT_EQ(hit.squaredDistance, 9.0f);
  std::vector<rayHit> hits;
  EXPECT_EQ(tree.allHits(vec(0.25f, 0.25f, 3.0f), vec(0, 0, -1), unbounded, hits), 5000u);
}

TEST(triangleTree, emptyAndInvalidInputFindNothing) {
  triangleTree tree;
  closestPointHit hit;
  rayHit ray;
  std::vector<rayHit> hits(3);
  EXPECT_FALSE(tree.closestPoint(vec(0, 0, 0), unbounded, hit));
  EXPECT_FALSE(tree.firstHit(vec(0, 0, 0), vec(1, 0, 0), unbounded, ray));
  EXPECT_EQ(tree.allHits(vec(0, 0, 0), vec(1, 0, 0), unbounded, hits), 0u);
  EXPECT_TRUE(hits.empty());
  vec lo, hi;
  EXPECT_FALSE(tree.bounds(lo, hi));

  // Indices out of range and corners that are not finite leave their triangles out.
  const float nan = std::nanf("");
  const std::vector<vec> positions = {vec(0, 0, 0), vec(1, 0, 0), vec(0, 1, 0), vec(nan, 0, 0),
                                      vec(0, std::numeric_limits<float>::infinity(), 0)};
  const std::vector<unsigned> indices = {0, 1, 9, 0, 1, 3, 0, 4, 2, 0, 1, 2};
  tree.build(positions.data(), positions.size(), indices.data(), 4);
  ASSERT_EQ(tree.size(), 1u);
  ASSERT_TRUE(tree.closestPoint(vec(0.1f, 0.1f, 1.0f), unbounded, hit));
  EXPECT_EQ(hit.face, 3u);
  ASSERT_TRUE(tree.bounds(lo, hi));
  EXPECT_EQ(hi.x, 1.0f);
  EXPECT_FALSE(tree.firstHit(vec(0.1f, 0.1f, 1.0f), vec(nan, 0, -1), unbounded, ray));

  tree.build(positions.data(), positions.size(), indices.data(), 0);
  EXPECT_TRUE(tree.empty());
  EXPECT_FALSE(tree.closestPoint(vec(0, 0, 0), unbounded, hit));
}

TEST(triangleTree, copiesAreIndependentOfTheSourceData) {
  triangleSoup grid = flatGrid(4);
  triangleTree tree;
  tree.build(grid.positions.data(), grid.positions.size(), grid.indices.data(),
             grid.triangleCount());
  const triangleTree copy = tree;
  grid.positions.assign(grid.positions.size(), vec(100, 100, 100));
  tree.clear();
  closestPointHit hit;
  EXPECT_FALSE(tree.closestPoint(vec(1, 1, 1), unbounded, hit));
  ASSERT_TRUE(copy.closestPoint(vec(1.5f, 1.5f, 1.0f), unbounded, hit));
  EXPECT_EQ(hit.squaredDistance, 1.0f);
}

TEST(triangleTree, realScansMatchBruteForce) {
  // A low-resolution scan with duplicate faces and non-manifold edges, and a full one.
  for (const char* file : {"ply/stanford_bun_zipper_res4.ply", "ply/armadillo.ply"}) {
    JEV3D_REQUIRE_DATA(file);
    const std::string path = dataFile(file);
    triangleSoup scan;
    unsigned vertexCount = 0, triangleCount = 0;
    ASSERT_TRUE(JEV::IO::PLY::ioPly::readPlyFromFile(std::wstring(path.begin(), path.end()),
                                                     scan.positions, vertexCount, scan.indices,
                                                     triangleCount));
    triangleTree tree;
    tree.build(scan.positions.data(), scan.positions.size(), scan.indices.data(),
               scan.triangleCount());
    ASSERT_EQ(tree.size(), scan.triangleCount());
    vec lo, hi;
    ASSERT_TRUE(tree.bounds(lo, hi));
    std::mt19937 rng(31);
    std::uniform_real_distribution<float> unit(-0.1f, 1.1f);
    for (int q = 0; q < 60; ++q) {
      const vec p(lo.x + (hi.x - lo.x) * unit(rng), lo.y + (hi.y - lo.y) * unit(rng),
                  lo.z + (hi.z - lo.z) * unit(rng));
      expectClosestLikeBruteForce(tree, scan, p, unbounded);
      const vec centre = (lo + hi) * 0.5f;
      const std::vector<rayHit> expected = bruteHits(scan, p, centre - p, unbounded);
      rayHit hit;
      ASSERT_EQ(tree.firstHit(p, centre - p, unbounded, hit), !expected.empty());
      if (!expected.empty()) {
        EXPECT_EQ(hit.t, expected.front().t);
      }
    }
  }
}

TEST(triangleTree, largeSoupsBuiltInTwoHalvesMatchBruteForce) {
  // Big enough that the two halves of the root are built on two threads and spliced.
  std::mt19937 rng(808);
  const triangleSoup soup = randomSoup(rng, 50000);
  const triangleTree tree = treeOf(soup);
  ASSERT_EQ(tree.size(), soup.triangleCount());
  vec lo, hi;
  ASSERT_TRUE(tree.bounds(lo, hi));
  for (const vec& p : soup.positions) {
    EXPECT_TRUE(lo.x <= p.x && lo.y <= p.y && lo.z <= p.z);
    EXPECT_TRUE(p.x <= hi.x && p.y <= hi.y && p.z <= hi.z);
  }
  std::uniform_real_distribution<float> around(-0.3f, 1.3f);
  for (int q = 0; q < 150; ++q) {
    const vec p(around(rng), around(rng), around(rng));
    expectClosestLikeBruteForce(tree, soup, p, unbounded);
    const vec d = randomDirection(rng);
    const std::vector<rayHit> expected = bruteHits(soup, p, d, unbounded);
    rayHit hit;
    ASSERT_EQ(tree.firstHit(p, d, unbounded, hit), !expected.empty());
    if (!expected.empty()) {
      EXPECT_EQ(hit.t, expected.front().t);
    }
  }
  // Every triangle is reachable: its own centroid finds it at distance 0.
  for (std::size_t t = 0; t < soup.triangleCount(); t += 97) {
    const vec centroid =
        (soup.positions[soup.indices[3 * t]] + soup.positions[soup.indices[3 * t + 1]] +
         soup.positions[soup.indices[3 * t + 2]]) /
        3.0f;
    closestPointHit hit;
    ASSERT_TRUE(tree.closestPoint(centroid, unbounded, hit));
    EXPECT_LE(hit.squaredDistance, 1e-12f);
  }
}
