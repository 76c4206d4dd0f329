#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "jev3d/math/pointTree.h"

using JEV::MATH::pointTree;
using vec = JEV::MATH::point3<float>;

namespace {

constexpr float unbounded = std::numeric_limits<float>::max();

std::vector<vec> randomPoints(std::mt19937& rng, int count) {
  std::uniform_real_distribution<float> unit(0.0f, 1.0f);
  std::vector<vec> points;
  for (int i = 0; i < count; ++i) points.push_back(vec(unit(rng), unit(rng), unit(rng)));
  return points;
}

std::vector<unsigned> bruteWithin(const std::vector<vec>& points, const vec& p, float radius) {
  std::vector<unsigned> ids;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if ((points[i] - p).squaredNorm() <= radius * radius) ids.push_back(unsigned(i));
  }
  return ids;
}

}  // namespace

TEST(pointTree, nearestEqualsBruteForceOnRandomPoints) {
  std::mt19937 rng(2024);
  // Clustered as well as uniform points: half of them on a few small blobs.
  std::vector<vec> points = randomPoints(rng, 3000);
  std::normal_distribution<float> blob(0.0f, 0.01f);
  for (std::size_t i = 0; i < points.size(); i += 2) {
    points[i] = vec(0.5f + blob(rng), 0.5f + blob(rng), float(i % 3) * 0.4f + blob(rng));
  }
  std::uniform_real_distribution<float> around(-0.5f, 1.5f);
  for (unsigned leafSize : {1u, 8u, 16u}) {
    pointTree tree;
    tree.build(points.data(), points.size(), leafSize);
    ASSERT_EQ(tree.size(), points.size());
    for (int q = 0; q < 500; ++q) {
      const vec p(around(rng), around(rng), around(rng));
      const float bound = (q % 2) ? unbounded : 0.002f;
      float best = bound;
      bool found = false;
      for (const vec& x : points) {
        const float d = (x - p).squaredNorm();
        if (d < best || (!found && d == best)) best = d, found = true;
      }
      unsigned id = 0;
      float d = -1.0f;
      ASSERT_EQ(tree.nearest(p, bound, id, d), found);
      if (!found) continue;
      EXPECT_EQ(d, best);
      EXPECT_EQ((points[id] - p).squaredNorm(), best);
    }
  }
}

TEST(pointTree, withinRadiusEqualsBruteForce) {
  std::mt19937 rng(77);
  const std::vector<vec> points = randomPoints(rng, 4000);
  pointTree tree;
  tree.build(points.data(), points.size());
  std::uniform_real_distribution<float> around(-0.2f, 1.2f), radii(0.0f, 0.3f);
  std::size_t total = 0;
  std::vector<unsigned> ids;
  for (int q = 0; q < 300; ++q) {
    const vec p(around(rng), around(rng), around(rng));
    const float radius = radii(rng);
    tree.withinRadius(p, radius, ids);
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(ids, bruteWithin(points, p, radius));
    total += ids.size();
  }
  EXPECT_GT(total, 1000u);
  // A point exactly at the radius counts.
  const vec at = points[10] + vec(0.0f, 0.0f, 0.125f);
  tree.withinRadius(at, 0.125f, ids);
  EXPECT_NE(std::find(ids.begin(), ids.end(), 10u), ids.end());
}

TEST(pointTree, allPointsEqual) {
  const std::vector<vec> points(20000, vec(1.5f, -2.0f, 3.0f));
  pointTree tree;
  tree.build(points.data(), points.size(), 1);
  unsigned id = 0;
  float d = 0.0f;
  ASSERT_TRUE(tree.nearest(vec(1.5f, -2.0f, 4.0f), unbounded, id, d));
  EXPECT_EQ(d, 1.0f);
  EXPECT_LT(id, points.size());
  std::vector<unsigned> ids;
  EXPECT_EQ(tree.withinRadius(vec(1.5f, -2.0f, 3.0f), 0.0f, ids), points.size());
  EXPECT_EQ(tree.withinRadius(vec(1.5f, -2.0f, 3.5f), 0.4f, ids), 0u);
  vec lo, hi;
  ASSERT_TRUE(tree.bounds(lo, hi));
  EXPECT_EQ(lo.z, 3.0f);
  EXPECT_EQ(hi.z, 3.0f);
}

TEST(pointTree, idsAreReportedAndInvalidPointsLeftOut) {
  const float nan = std::nanf("");
  const std::vector<vec> points = {vec(0, 0, 0), vec(nan, 0, 0), vec(2, 0, 0),
                                   vec(0, -std::numeric_limits<float>::infinity(), 0)};
  const std::vector<unsigned> ids = {10, 11, 12, 13};
  pointTree tree;
  tree.build(points.data(), points.size(), 8, ids.data());
  EXPECT_EQ(tree.size(), 2u);
  unsigned id = 0;
  float d = 0.0f;
  ASSERT_TRUE(tree.nearest(vec(1.5f, 0, 0), unbounded, id, d));
  EXPECT_EQ(id, 12u);
  EXPECT_EQ(d, 0.25f);
  EXPECT_FALSE(tree.nearest(vec(1.0f, 5.0f, 0), 1.0f, id, d));
  EXPECT_EQ(id, 12u);
  EXPECT_FALSE(tree.nearest(vec(nan, 0, 0), unbounded, id, d));
  std::vector<unsigned> found;
  EXPECT_EQ(tree.withinRadius(vec(1, 0, 0), 1.0f, found), 2u);
  EXPECT_EQ(tree.withinRadius(vec(1, 0, 0), nan, found), 0u);
}

TEST(pointTree, emptyTreeFindsNothing) {
  pointTree tree;
  unsigned id = 5;
  float d = 0.0f;
  std::vector<unsigned> ids(4, 1u);
  EXPECT_FALSE(tree.nearest(vec(0, 0, 0), unbounded, id, d));
  EXPECT_EQ(tree.withinRadius(vec(0, 0, 0), 10.0f, ids), 0u);
  EXPECT_TRUE(ids.empty());
  tree.build(nullptr, 0);
  EXPECT_TRUE(tree.empty());
  EXPECT_FALSE(tree.nearest(vec(0, 0, 0), unbounded, id, d));
  EXPECT_EQ(id, 5u);
}
