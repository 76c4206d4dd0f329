#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <random>
#include <type_traits>

using namespace JEV::MATH;

static_assert(std::is_trivially_copyable_v<point3f> && std::is_standard_layout_v<point3f>);
static_assert(sizeof(point2f) == 2 * sizeof(float) && sizeof(point3f) == 3 * sizeof(float) &&
              sizeof(point4d) == 4 * sizeof(double));

TEST(point3, arithmeticAndTheTwoProducts) {
  point3f a(1, 2, 3), b(4, -5, 6);
  EXPECT_EQ(a + b, point3f(5, -3, 9));
  EXPECT_EQ(a - b, point3f(-3, 7, -3));
  EXPECT_EQ(a + 1.0f, point3f(2, 3, 4));
  EXPECT_EQ(a - 1.0f, point3f(0, 1, 2));
  EXPECT_EQ(a * 2.0f, point3f(2, 4, 6));
  EXPECT_EQ(2.0f * a, point3f(2, 4, 6));
  EXPECT_EQ(a * b, 4.0f - 10.0f + 18.0f);  // `*` with a point is the dot product
  point3f c = a;
  c *= b;  // `*=` with a point is the component product
  EXPECT_EQ(c, point3f(4, -10, 18));
  c /= point3f(2, 5, 9);
  EXPECT_EQ(c, point3f(2, -2, 2));
  c(7.0f);
  EXPECT_EQ(c, point3f(7, 7, 7));
  EXPECT_EQ(a / 2.0f, point3f(0.5f, 1, 1.5f));
  EXPECT_EQ(point3f::cross(point3f::UNIT_X(), point3f::UNIT_Y()), point3f::UNIT_Z());
  EXPECT_EQ(point3f::UNIT_Y().cross(point3f::UNIT_Z()), point3f::UNIT_X());
  EXPECT_EQ(point3f(2, 0, 0).unitCross(point3f(0, 0, 3)), point3f(0, -1, 0));
  EXPECT_EQ(point3f::interpolate(a, b, 0.25f), point3f(1.75f, 0.25f, 3.75f));
  EXPECT_EQ(point3i(7, 8, 9) / 2, point3i(3, 4, 4));
}

TEST(point3, zeroRules) {
  const point3f q = point3f(1, 0, 0) / 0.0f;
  EXPECT_EQ(q, point3f(FLT_MAX, FLT_MAX, FLT_MAX));
  point3d d(1, 2, 3);
  d /= 0.0;
  EXPECT_EQ(d, point3d(DBL_MAX, DBL_MAX, DBL_MAX));
  point4f w(1, 2, 3, 4);
  w /= 0.0f;
  EXPECT_EQ(w, point4f(FLT_MAX, FLT_MAX, FLT_MAX, FLT_MAX));
  EXPECT_EQ(point2f(1, 1) / 0.0f, point2f(FLT_MAX, FLT_MAX));
  EXPECT_EQ(point3i(1, 2, 3) / 0, point3i(INT_MAX, INT_MAX, INT_MAX));

  point3f n(0, 0, 0);
  EXPECT_EQ(n.normalize(), point3f::ZERO());
  EXPECT_EQ(point3f(1e-30f, 0, 0).unitCross(point3f(2e-30f, 0, 0)), point3f::ZERO());
  point4f n4;
  EXPECT_EQ(n4.normalize(), point4f::ZERO());
  EXPECT_EQ(point2f().unitPerp(), point2f::ZERO());
}

TEST(point3, lengthsInDoublePrecision) {
  // Squares of these overflow float; the double intermediate keeps the length finite.
  point3f big(3e20f, 4e20f, 0);
  EXPECT_FLOAT_EQ(big.norm(), 5e20f);
  big.normalize();
  EXPECT_FLOAT_EQ(big.x, 0.6f);
  EXPECT_FLOAT_EQ(big.y, 0.8f);
  EXPECT_FLOAT_EQ(point4f(1e25f, 0, 0, 1e25f).length(), float(std::sqrt(2.0) * 1e25));
  EXPECT_EQ(point3f(1, 2, 2).norm(), 3.0f);
  EXPECT_EQ(point3f(1, 2, 2).squaredNorm(), 9.0f);
}

TEST(point3, comparisonIsByteWise) {
  EXPECT_NE(point3f(0.0f, 1, 2), point3f(-0.0f, 1, 2));
  EXPECT_EQ(point3f(1, 2, 3), point3f(1, 2, 3));
  // A byte order, not a numeric order: the sign bit makes -1 compare above 2.
  const point3f neg(-1, 0, 0), pos(2, 0, 0);
  EXPECT_EQ(neg < pos, std::memcmp(&neg, &pos, sizeof neg) < 0);
  EXPECT_EQ(point3f::compareArrays(neg, neg), 0);
  EXPECT_TRUE(neg <= neg && neg >= neg);
  EXPECT_NE(neg<pos, neg> pos);
  EXPECT_NE(point2d(0.0, 0.0), point2d(0.0, -0.0));
  EXPECT_NE(point4f(0, 0, 0, 0.0f), point4f(0, 0, 0, -0.0f));
}

TEST(point3, widenNarrowAndRawCopy) {
  const point3f p(1, 2, 3);
  EXPECT_EQ(p.xyz1(), point4f(1, 2, 3, 1));
  EXPECT_EQ(p.xyz0(), point4f(1, 2, 3, 0));
  EXPECT_EQ(point4f(4, 5, 6, 7).xyz(), point3f(4, 5, 6));
  const double raw[4] = {9, 8, 7, 6};
  point3d q;
  q.from(raw);
  EXPECT_EQ(q, point3d(9, 8, 7));
  point4d r;
  r.from(raw);
  EXPECT_EQ(r, point4d(9, 8, 7, 6));
  point2d s;
  s.from(raw + 2);
  EXPECT_EQ(s, point2d(7, 6));
  EXPECT_EQ(&p[2], &p.z);
}

TEST(point3, epsilonClearIsStrict) {
  point3f p(1e-4f, -5e-5f, 0.5f);
  p.setComponentsToZeroIfLessThanEpsilon(1e-4f);
  EXPECT_EQ(p, point3f(1e-4f, 0, 0.5f));
}

TEST(point3, orthonormalBases) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> u(-1, 1);
  for (int i = 0; i < 50; ++i) {
    point3d w(u(rng), u(rng), u(rng)), a, b;
    const point3d dir = w.getNormalized();
    point3d::generateOrthonormalBasis(a, b, w, false);
    EXPECT_NEAR((w - dir).norm(), 0.0, 1e-15);
    EXPECT_NEAR(a.norm(), 1.0, 1e-12);
    EXPECT_NEAR(b.norm(), 1.0, 1e-12);
    EXPECT_NEAR(a * b, 0.0, 1e-12);
    EXPECT_NEAR(a * w, 0.0, 1e-12);
    EXPECT_NEAR(b * w, 0.0, 1e-12);
    EXPECT_NEAR((point3d::cross(a, b) - w).norm(), 0.0, 1e-12);  // right-handed

    point3d g[3] = {{u(rng), u(rng), u(rng)}, {u(rng), u(rng), u(rng)}, {u(rng), u(rng), u(rng)}};
    const point3d g0 = g[0].getNormalized();
    point3d::orthonormalize(g);
    EXPECT_NEAR((g[0] - g0).norm(), 0.0, 1e-12);  // the first vector keeps its direction
    EXPECT_NEAR(g[0] * g[1], 0.0, 1e-12);
    EXPECT_NEAR(g[0] * g[2], 0.0, 1e-12);
    EXPECT_NEAR(g[1] * g[2], 0.0, 1e-12);
    EXPECT_NEAR(g[2].norm(), 1.0, 1e-12);
  }
  // The two branches: |x| >= |y| leaves u in the xz plane, otherwise in the yz plane.
  point3f a, b, w(0, 0, 1);
  point3f::generateOrthonormalBasis(a, b, w, true);
  EXPECT_EQ(a, point3f(-1, 0, 0));
  EXPECT_EQ(b, point3f(0, -1, 0));
  w = point3f(0, 1, 0);
  point3f::generateOrthonormalBasis(a, b, w, true);
  EXPECT_EQ(a, point3f(0, 0, -1));
  EXPECT_EQ(b, point3f(-1, 0, 0));

  point2d p(3, 4), q;
  point2d::generateOrthonormalBasis(q, p, false);
  EXPECT_DOUBLE_EQ(q.dotPerp(p), 1.0);
  EXPECT_EQ(point2d(1, 2).perp(), point2d(2, -1));
  EXPECT_EQ(point2d(1, 2).dotPerp(point2d(3, 4)), 4.0 - 6.0);
}

TEST(point3, extremes) {
  const point3f pts[3] = {{1, 5, -2}, {-3, 7, 0}, {2, -1, 4}};
  point3f lo, hi;
  point3f::computeExtremes(3, pts, lo, hi);
  EXPECT_EQ(lo, point3f(-3, -1, -2));
  EXPECT_EQ(hi, point3f(2, 7, 4));
  point3f::computeExtremes(1, pts, lo, hi);
  EXPECT_EQ(lo, pts[0]);
  EXPECT_EQ(hi, pts[0]);
  point3f::computeExtremes(0, pts, lo, hi);
  EXPECT_EQ(lo, point3f::ZERO());
  const point4f p4[2] = {{1, 2, 3, 4}, {0, 5, 1, 9}};
  point4f lo4, hi4;
  point4f::computeExtremes(2, p4, lo4, hi4);
  EXPECT_EQ(lo4, point4f(0, 2, 1, 4));
  EXPECT_EQ(hi4, point4f(1, 5, 3, 9));
}

TEST(point3, triangleBarycentricsReconstructThePoint) {
  const point3d v0(0, 0, 0), v1(2, 0, 1), v2(0, 3, 1);
  const point3d p = v0 * 0.2 + v1 * 0.3 + v2 * 0.5;
  const point3d b = point3d::getBarycentrics(p, v0, v1, v2);
  EXPECT_NEAR(b.x, 0.2, 1e-12);
  EXPECT_NEAR(b.y, 0.3, 1e-12);
  EXPECT_NEAR(b.z, 0.5, 1e-12);
  // A point off the plane gets the coordinates of its projection.
  const point3d n = point3d::cross(v1 - v0, v2 - v0).normalize();
  const point3d off = point3d::getBarycentrics(p + n * 4.0, v0, v1, v2);
  EXPECT_NEAR((off - b).norm(), 0.0, 1e-12);

  double b2[3];
  point2d::getBarycentrics(point2d(1, 1), point2d(0, 0), point2d(4, 0), point2d(0, 4), b2);
  EXPECT_DOUBLE_EQ(b2[0], 0.5);
  EXPECT_DOUBLE_EQ(b2[1], 0.25);
  EXPECT_DOUBLE_EQ(b2[2], 0.25);
}

TEST(point3, tetrahedronBarycentricsInEveryCase) {
  const point3d v0(10, 0, 0), v1(0, 20, 0), v2(0, 0, 30), v3(1, 1, 1);
  const double w[4] = {0.1, 0.2, 0.3, 0.4};
  const point3d p = v0 * w[0] + v1 * w[1] + v2 * w[2] + v3 * w[3];
  double b[4];
  p.getBarycentrics(v0, v1, v2, v3, b);
  for (int k = 0; k < 4; ++k) EXPECT_NEAR(b[k], w[k], 1e-12);

  // Flat: v3 in the plane of the other three; the point lies in the largest face.
  const point3d f0(0, 0, 0), f1(4, 0, 0), f2(0, 4, 0), f3(1, 1, 0);
  const point3d fp(1, 2, 0);
  fp.getBarycentrics(f0, f1, f2, f3, b);
  EXPECT_NEAR(b[0] + b[1] + b[2] + b[3], 1.0, 1e-12);
  EXPECT_EQ(b[3], 0.0);
  const point3d back = f0 * b[0] + f1 * b[1] + f2 * b[2] + f3 * b[3];
  EXPECT_NEAR((back - fp).norm(), 0.0, 1e-12);

  // On a line: the longest edge carries the point.
  const point3d l0(0, 0, 0), l1(1, 0, 0), l2(5, 0, 0), l3(2, 0, 0);
  point3d(4, 0, 0).getBarycentrics(l0, l1, l2, l3, b);
  EXPECT_DOUBLE_EQ(b[0], 0.2);
  EXPECT_DOUBLE_EQ(b[2], 0.8);
  EXPECT_EQ(b[1], 0.0);
  EXPECT_EQ(b[3], 0.0);

  // Everything in one point.
  point3d(3, 3, 3).getBarycentrics(l0, l0, l0, l0, b);
  EXPECT_EQ(b[0], 1.0);
  EXPECT_EQ(b[1] + b[2] + b[3], 0.0);
}
