// Boxes, spheres, rays, planes and capsules, each against cases whose answer is known by
// construction.

#include <gtest/gtest.h>

#include "jev3d/math/axisAlignedBox3.h"
#include "jev3d/math/capsule3.h"
#include "jev3d/math/plane3.h"
#include "jev3d/math/ray3.h"
#include "jev3d/math/sphere3.h"

using namespace JEV::MATH;
using p3 = point3<float>;

TEST(axisAlignedBox3, EmptyUntilExtendedThenHoldsItsPoints) {
  axisAlignedBox3<float> b;
  EXPECT_TRUE(b.isEmpty());
  EXPECT_FALSE(b.contains(p3(0, 0, 0)));
  EXPECT_EQ(b.diagonal(), 0.f);
  b.extend(p3(1, 2, 3));
  b.extend(p3(-1, 0, 5));
  EXPECT_FALSE(b.isEmpty());
  EXPECT_EQ(b.minimum, p3(-1, 0, 3));
  EXPECT_EQ(b.maximum, p3(1, 2, 5));
  EXPECT_TRUE(b.contains(p3(1, 2, 5)));  // boundary counts
  EXPECT_FALSE(b.contains(p3(1.01f, 2, 5)));
  EXPECT_FLOAT_EQ(b.diagonal(), std::sqrt(12.f));
  EXPECT_EQ(b.center(), p3(0, 1, 4));
}

TEST(axisAlignedBox3, BoxOverlapAndDistance) {
  const axisAlignedBox3<float> a(p3(0, 0, 0), p3(1, 1, 1));
  EXPECT_TRUE(a.intersects(axisAlignedBox3<float>(p3(1, 1, 1), p3(2, 2, 2))));
  EXPECT_FALSE(a.intersects(axisAlignedBox3<float>(p3(1.5f, 0, 0), p3(2, 1, 1))));
  EXPECT_FALSE(a.intersects(axisAlignedBox3<float>()));
  EXPECT_FLOAT_EQ(a.squaredDistance(p3(3, 0.5f, 0.5f)), 4.f);
  EXPECT_FLOAT_EQ(a.squaredDistance(p3(2, 2, 0.5f)), 2.f);
  EXPECT_EQ(a.squaredDistance(p3(0.5f, 0.5f, 0.5f)), 0.f);
}

TEST(axisAlignedBox3, TriangleTestSeparatesOnEveryKindOfAxis) {
  const axisAlignedBox3<float> b(p3(-1, -1, -1), p3(1, 1, 1));
  // A large triangle through the box with no corner inside.
  EXPECT_TRUE(b.intersectsTriangle(p3(-10, -10, 0), p3(10, -10, 0), p3(0, 10, 0)));
  // Separated along a box axis.
  EXPECT_FALSE(b.intersectsTriangle(p3(2, 0, 0), p3(3, 0, 0), p3(2, 1, 0)));
  // Separated by the triangle's plane: the plane x + y + z = 3.5 misses the corner (1,1,1).
  EXPECT_FALSE(b.intersectsTriangle(p3(3.5f, 0, 0), p3(0, 3.5f, 0), p3(0, 0, 3.5f)));
  EXPECT_TRUE(b.intersectsTriangle(p3(2.9f, 0, 0), p3(0, 2.9f, 0), p3(0, 0, 2.9f)));
  // Every box axis overlaps the sliver; its plane x + y = 2.2 passes beyond the corner.
  EXPECT_FALSE(b.intersectsTriangle(p3(2.2f, 0, -5), p3(0, 2.2f, -5), p3(0, 2.2f, 5)));
  EXPECT_TRUE(
      b.intersectsTriangle(p3(0.5f, 0.5f, 0.5f), p3(0.6f, 0.5f, 0.5f), p3(0.5f, 0.6f, 0.5f)));
}

TEST(axisAlignedBox3, RaySlabsGiveEntryAndExit) {
  const axisAlignedBox3<float> b(p3(0, 0, 0), p3(2, 2, 2));
  float t0 = 0.f, t1 = 100.f;
  ASSERT_TRUE(b.intersectsRay(p3(-1, 1, 1), p3(1, 0, 0), t0, t1));
  EXPECT_FLOAT_EQ(t0, 1.f);
  EXPECT_FLOAT_EQ(t1, 3.f);
  t0 = 0.f, t1 = 100.f;
  EXPECT_FALSE(b.intersectsRay(p3(-1, 3, 1), p3(1, 0, 0), t0, t1));
  t0 = 0.f, t1 = 0.5f;  // too short to reach
  EXPECT_FALSE(b.intersectsRay(p3(-1, 1, 1), p3(1, 0, 0), t0, t1));
}

TEST(sphere3, ContainsBoxesAndTriangles) {
  const sphere3<float> s(p3(0, 0, 0), 1.f);
  EXPECT_TRUE(s.contains(p3(1, 0, 0)));
  EXPECT_FALSE(s.contains(p3(0.8f, 0.8f, 0)));
  EXPECT_TRUE(s.intersects(sphere3<float>(p3(2, 0, 0), 1.f)));
  EXPECT_FALSE(s.intersects(sphere3<float>(p3(2.1f, 0, 0), 1.f)));
  EXPECT_TRUE(s.intersects(axisAlignedBox3<float>(p3(0.5f, 0.5f, -1), p3(2, 2, 1))));
  EXPECT_FALSE(s.intersects(axisAlignedBox3<float>(p3(0.8f, 0.8f, -1), p3(2, 2, 1))));
  // A triangle whose corners are all outside but whose middle passes through the ball.
  EXPECT_TRUE(s.intersectsTriangle(p3(-5, -5, 0.5f), p3(5, -5, 0.5f), p3(0, 5, 0.5f)));
  EXPECT_FALSE(s.intersectsTriangle(p3(-5, -5, 1.5f), p3(5, -5, 1.5f), p3(0, 5, 1.5f)));
  const axisAlignedBox3<float> bb = s.box();
  EXPECT_EQ(bb.minimum, p3(-1, -1, -1));
  EXPECT_EQ(bb.maximum, p3(1, 1, 1));
}

TEST(ray3, HitsTrianglesFromEitherSideAndMeasuresDistance) {
  const ray3<float> r(p3(0.25f, 0.25f, 5), p3(0, 0, -2));
  float t, u, v;
  ASSERT_TRUE(r.intersectTriangle(p3(0, 0, 0), p3(1, 0, 0), p3(0, 1, 0), t, u, v));
  EXPECT_FLOAT_EQ(t, 2.5f);
  EXPECT_FLOAT_EQ(u, 0.25f);
  EXPECT_FLOAT_EQ(v, 0.25f);
  EXPECT_EQ(r.pointAt(t), p3(0.25f, 0.25f, 0));
  ASSERT_TRUE(r.intersectTriangle(p3(0, 0, 0), p3(0, 1, 0), p3(1, 0, 0), t, u, v));  // back side
  EXPECT_FALSE(r.intersectTriangle(p3(0, 0, 0), p3(1, 0, 0), p3(0, 1, 0), t, u, v, 2.f));
  EXPECT_FALSE(r.intersectTriangle(p3(1, 1, 0), p3(2, 1, 0), p3(1, 2, 0), t, u, v));
  EXPECT_FLOAT_EQ(r.squaredDistance(p3(1.25f, 0.25f, 0)), 1.f);
  EXPECT_FLOAT_EQ(r.squaredDistance(p3(0.25f, 0.25f, 7)), 4.f);  // behind the origin
}

TEST(plane3, SidesProjectionsAndCuts) {
  const plane3<float> p = plane3<float>::fromPointNormal(p3(0, 0, 2), p3(0, 0, 5));
  EXPECT_FLOAT_EQ(p.signedDistance(p3(7, 1, 5)), 3.f);
  EXPECT_EQ(p.side(p3(0, 0, 3)), 1);
  EXPECT_EQ(p.side(p3(0, 0, 1)), -1);
  EXPECT_EQ(p.side(p3(4, 4, 2)), 0);
  EXPECT_EQ(p.project(p3(1, 2, 9)), p3(1, 2, 2));
  p3 hit;
  ASSERT_TRUE(p.intersectSegment(p3(0, 0, 0), p3(0, 0, 4), hit));
  EXPECT_EQ(hit, p3(0, 0, 2));
  EXPECT_FALSE(p.intersectSegment(p3(0, 0, 3), p3(1, 0, 4), hit));
  p3 a, b;
  ASSERT_TRUE(p.intersectTriangle(p3(0, 0, 0), p3(4, 0, 4), p3(0, 4, 4), a, b));
  EXPECT_EQ(a, p3(2, 0, 2));
  EXPECT_EQ(b, p3(0, 2, 2));
  EXPECT_FALSE(p.intersectTriangle(p3(0, 0, 3), p3(4, 0, 4), p3(0, 4, 4), a, b));
}

TEST(capsule3, SegmentDistanceAndTriangleContact) {
  EXPECT_FLOAT_EQ(squaredSegmentDistance(p3(0, 0, 0), p3(2, 0, 0), p3(1, 1, -1), p3(1, 1, 1)), 1.f);
  EXPECT_FLOAT_EQ(squaredSegmentDistance(p3(0, 0, 0), p3(1, 0, 0), p3(3, 0, 0), p3(5, 0, 0)), 4.f);
  EXPECT_FLOAT_EQ(squaredSegmentDistance(p3(0, 0, 0), p3(1, 0, 0), p3(0, 2, 0), p3(1, 2, 0)), 4.f);
  EXPECT_FLOAT_EQ(squaredSegmentDistance(p3(1, 1, 1), p3(1, 1, 1), p3(0, 0, 0), p3(2, 0, 0)), 2.f);
  const capsule3<float> c(p3(0, 0, 0), p3(0, 0, 4), 1.f);
  EXPECT_TRUE(c.contains(p3(1, 0, 2)));
  EXPECT_TRUE(c.contains(p3(0, 0, 5)));
  EXPECT_FALSE(c.contains(p3(0.8f, 0.8f, 2)));
  EXPECT_FALSE(c.contains(p3(0, 0, 5.1f)));
  // The axis pierces a large triangle.
  EXPECT_TRUE(c.intersectsTriangle(p3(-9, -9, 2), p3(9, -9, 2), p3(0, 9, 2)));
  // An edge passes near the axis though the triangle lies away from it.
  EXPECT_TRUE(c.intersectsTriangle(p3(0.9f, -5, 2), p3(0.9f, 5, 2), p3(5, 0, 2)));
  EXPECT_FALSE(c.intersectsTriangle(p3(1.1f, -5, 2), p3(1.1f, 5, 2), p3(5, 0, 2)));
  // Close to an end cap only.
  EXPECT_TRUE(c.intersectsTriangle(p3(-1, -1, 4.9f), p3(1, -1, 4.9f), p3(0, 1, 4.9f)));
}
