#include "jev3d/math/quaternion.h"

#include <gtest/gtest.h>

#include <cmath>

#include "eigenOracle.h"

using namespace JEV::MATH;

namespace {

Eigen::Quaterniond toEigen(const quaterniond& q) { return Eigen::Quaterniond(q.w, q.x, q.y, q.z); }

quaterniond randomUnit(randomSource& rnd) {
  quaterniond q(rnd(), rnd(), rnd(), rnd());
  return q.normalize();
}

double distance(const quaterniond& a, const quaterniond& b) { return (a - b).norm(); }

}  // namespace

TEST(quaternion, scalarFirstStorageAndConstants) {
  static_assert(sizeof(quaternionf) == 4 * sizeof(float));
  const quaterniond q(1, 2, 3, 4);
  EXPECT_EQ(q[0], 1.0);
  EXPECT_EQ(q[3], 4.0);
  EXPECT_EQ(quaterniond::IDENTITY(), quaterniond(1, 0, 0, 0));
  EXPECT_EQ(quaterniond::ZERO(), quaterniond(0, 0, 0, 0));
  EXPECT_EQ(quaternion<int>::IDENTITY().w, 1);
  const quaterniond axisAngle(point3d(0, 0, 1), M_PI / 2);
  EXPECT_NEAR(axisAngle.w, std::cos(M_PI / 4), 1e-15);
  EXPECT_NEAR(axisAngle.z, std::sin(M_PI / 4), 1e-15);
  EXPECT_EQ(quaterniond(point3d(0, 0, 2), M_PI).z, 2.0);  // axis used as given
}

TEST(quaternion, productAndMatricesAgainstEigen) {
  randomSource rnd(51);
  for (int i = 0; i < 20; ++i) {
    const quaterniond a = randomUnit(rnd), b = randomUnit(rnd);
    const Eigen::Quaterniond product = toEigen(a) * toEigen(b);
    EXPECT_LT(distance(a * b, quaterniond(product.w(), product.x(), product.y(), product.z())),
              1e-15);
    matrix3d r;
    a.toRotationMatrix(r);
    EXPECT_LT(maxDiff(r, toEigen(a).toRotationMatrix()), 1e-14);
    matrix3d t;
    a.ToMatrix(t);
    EXPECT_LT(maxDiff(t, toEigen(a).toRotationMatrix().transpose()), 1e-14);
    matrix4d t4(true);
    a.ToMatrix(t4);
    EXPECT_LT(maxDiff(t4.getMatrix3(), toEigen(t)), 1e-15);
    EXPECT_EQ(t4(3, 3), 1.0);
    EXPECT_EQ(t4(0, 3), 0.0);
    EXPECT_EQ(t4(3, 0), 0.0);
    point3d columns[3];
    a.toRotationMatrix(columns);
    EXPECT_EQ(columns[1], r.getColumn(1));
    const point3d v = rnd.point3<double>();
    EXPECT_LT((toEigen(a.rotate(v)) - toEigen(a) * toEigen(v)).norm(), 1e-14);
    // Row-vector points through ToMatrix turn the same way as rotate.
    EXPECT_LT((v * t4 - a.rotate(v)).norm(), 1e-14);
    EXPECT_LT(((a * b).rotate(v) - a.rotate(b.rotate(v))).norm(), 1e-14);
  }
  matrix3d r;
  quaterniond(0.5, 0.5, 0.5, 0.5).toRotationMatrix(r);
  EXPECT_NEAR(r(0, 1), 0.0, 1e-15);  // 2xy - 2wz
  EXPECT_NEAR(r(1, 0), 1.0, 1e-15);  // 2xy + 2wz
}

TEST(quaternion, fromRotationMatrixInEveryBranch) {
  randomSource rnd(53);
  // Random rotations, then half-turns about each axis so the trace is not positive and
  // each diagonal element leads once.
  std::vector<quaterniond> cases;
  for (int i = 0; i < 20; ++i) cases.push_back(randomUnit(rnd));
  cases.push_back(quaterniond(0.1, 0.99, 0.05, 0.05).normalize());
  cases.push_back(quaterniond(0.1, 0.05, 0.99, 0.05).normalize());
  cases.push_back(quaterniond(0.1, 0.05, 0.05, 0.99).normalize());
  cases.push_back(quaterniond(0, 0, 0, 1));
  for (const quaterniond& q : cases) {
    matrix3d r;
    q.toRotationMatrix(r);
    quaterniond back(r);
    if (back.dot(q) < 0) back = -back;  // q and -q are the same rotation
    EXPECT_LT(distance(back, q), 1e-12);
  }
  // The int instantiation rebuilds the identity.
  quaternion<int> qi(0, 0, 0, 0);
  qi.fromRotationMatrix(matrix3<int>());
  EXPECT_EQ(qi.w, 1);
}

TEST(quaternion, inverseConjugateAndZeroRule) {
  const quaterniond q(1, 2, 3, 4);
  EXPECT_EQ(q.conjugate(), quaterniond(1, -2, -3, -4));
  EXPECT_LT(distance(q * q.inverse(), quaterniond::IDENTITY()), 1e-15);
  EXPECT_EQ(quaterniond::ZERO().inverse(), quaterniond::ZERO());
  quaterniond zero = quaterniond::ZERO();
  EXPECT_EQ(zero.normalize(), quaterniond::ZERO());
}

TEST(quaternion, axisAngle) {
  point3d axis;
  double angle;
  quaterniond::IDENTITY().toAxisAngle(axis, angle);
  EXPECT_EQ(angle, 0.0);
  EXPECT_EQ(axis, point3d(1, 0, 0));
  const point3d a = point3d(1, -1, 2).normalize();
  quaterniond(a, 2.5).toAxisAngle(axis, angle);
  EXPECT_NEAR(angle, 2.5, 1e-14);
  EXPECT_LT((axis - a).norm(), 1e-14);
}

TEST(quaternion, slerpWithoutShortArcFlip) {
  randomSource rnd(59);
  for (int i = 0; i < 10; ++i) {
    quaterniond p = randomUnit(rnd), q = randomUnit(rnd);
    if (p.dot(q) < 0) q = -q;
    quaterniond s;
    s.slerp(0.3, p, q);
    const Eigen::Quaterniond e = toEigen(p).slerp(0.3, toEigen(q));
    EXPECT_LT(distance(s, quaterniond(e.w(), e.x(), e.y(), e.z())), 1e-12);
    EXPECT_LT(distance(s.slerp(0.0, p, q), p), 1e-15);
    EXPECT_LT(distance(s.slerp(1.0, p, q), q), 1e-12);
    // Against -q it takes the long arc: the midpoint of p and -q, not of p and q.
    quaterniond longWay;
    longWay.slerp(0.5, p, -q);
    EXPECT_LT(distance(longWay, (p - q).normalize()), 1e-12);
    EXPECT_GT(distance(longWay, (p + q).normalize()), 0.5);
  }
  // q with -q: the path passes through a quaternion of small norm and stays unnormalised.
  const quaterniond q = quaterniond(1, 2, 3, 4).normalize();
  quaterniond mid;
  mid.slerp(0.5, q, -q);
  EXPECT_LT(mid.norm(), 1e-6);
  quaterniond spun;
  spun.slerpExtraSpins(0.0, q, quaterniond(0.9, 0.1, 0, 0).normalize(), 1);
  EXPECT_LT(distance(spun, q), 1e-12);
}

TEST(quaternion, alignCarriesOneVectorOntoTheOther) {
  randomSource rnd(61);
  for (int i = 0; i < 10; ++i) {
    const point3d v1 = rnd.unit3<double>(), v2 = rnd.unit3<double>();
    quaterniond q;
    q.align(v1, v2);
    EXPECT_NEAR(q.norm(), 1.0, 1e-12);
    EXPECT_LT((q.rotate(v1) - v2).norm(), 1e-12);
  }
  for (const point3d& v : {point3d(1, 0, 0), point3d(0, 1, 0), point3d(0.6, 0, 0.8),
                           point3d(0.2, 0.9, -0.3).normalize()}) {
    quaterniond q;
    q.align(v, -v);
    EXPECT_EQ(q.w, 0.0);
    EXPECT_NEAR(q.vec() * v, 0.0, 1e-15);
    EXPECT_NEAR(q.vec().norm(), 1.0, 1e-12);
    EXPECT_LT((q.rotate(v) + v).norm(), 1e-12);
  }
}

TEST(quaternion, swingTwistDecompositions) {
  randomSource rnd(67);
  for (int i = 0; i < 10; ++i) {
    const quaterniond q = randomUnit(rnd);
    const point3d axis = rnd.unit3<double>();
    quaterniond swing, twist;
    q.decomposeSwingTimesTwist(axis, swing, twist);
    EXPECT_LT(distance(swing * twist, q), 1e-12);
    EXPECT_LT(point3d::cross(twist.vec(), axis).norm(), 1e-12);  // twist turns about axis
    EXPECT_LT((swing.rotate(axis) - q.rotate(axis)).norm(), 1e-12);
    quaterniond twist2, swing2;
    q.decomposeTwistTimesSwing(axis, twist2, swing2);
    EXPECT_LT(distance(twist2 * swing2, q), 1e-12);
    EXPECT_EQ(swing2, swing);
  }
}

TEST(quaternion, expLogAndSquad) {
  randomSource rnd(71);
  for (int i = 0; i < 10; ++i) {
    const quaterniond q = randomUnit(rnd);
    EXPECT_LT(distance(q.log().exp(), q), 1e-12);
    EXPECT_EQ(q.log().w, 0.0);
  }
  EXPECT_EQ(quaterniond::IDENTITY().log(), quaterniond(0, 0, 0, 0));
  EXPECT_EQ(quaterniond::ZERO().exp(), quaterniond::IDENTITY());

  // Equally spaced keys on one great circle: the control point is the key itself.
  const point3d axis = point3d(1, 2, 3).normalize();
  const quaterniond q0(axis, 0.2), q1(axis, 0.5), q2(axis, 0.8);
  quaterniond a1;
  a1.intermediate(q0, q1, q2);
  EXPECT_LT(distance(a1, q1), 1e-12);
  quaterniond s;
  EXPECT_LT(distance(s.squad(0.0, q0, q0, q1, q1), q0), 1e-12);
  EXPECT_LT(distance(s.squad(1.0, q0, q0, q1, q1), q1), 1e-12);
  EXPECT_LT(distance(s.squad(0.5, q0, q0, q1, q1), quaterniond(axis, 0.35)), 1e-12);
}

TEST(quaternion, floatMembersNarrowAfterDoubleWork) {
  quaternionf q(3e20f, 4e20f, 0, 0);
  EXPECT_FLOAT_EQ(q.norm(), 5e20f);
  q.normalize();
  EXPECT_FLOAT_EQ(q.w, 0.6f);
}
