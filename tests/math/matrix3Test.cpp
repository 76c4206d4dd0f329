#include "jev3d/math/matrix3.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "eigenOracle.h"

using namespace JEV::MATH;

namespace {

template <class T>
class matrix3Typed : public ::testing::Test {
 public:
  static double tolerance() { return std::is_same_v<T, float> ? 2e-4 : 1e-11; }
};
using realTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(matrix3Typed, realTypes);

// Rx, Ry, Rz about the unit axes, built by Eigen: the reference for the Euler tables.
eMat3<double> axisRotation(int axis, double angle) {
  return Eigen::AngleAxisd(angle, Eigen::Vector3d::Unit(axis)).toRotationMatrix();
}

}  // namespace

TEST(matrix3, storageAndConstructors) {
  const matrix3d m(1, 2, 3, 4, 5, 6, 7, 8, 9);
  EXPECT_EQ(m[matrix3d::indexOf(1, 2)], 6.0);
  EXPECT_EQ(m(2, 0), 7.0);
  EXPECT_EQ(matrix3d(false), matrix3d::IDENTITY());
  EXPECT_EQ(matrix3d(true), matrix3d::ZERO());
  EXPECT_EQ(matrix3d(), matrix3d::IDENTITY());
  EXPECT_EQ(matrix3d(point3d(1, 2, 3), point3d(4, 5, 6), point3d(7, 8, 9)), m);
  EXPECT_EQ(matrix3d(point3d(1, 4, 7), point3d(2, 5, 8), point3d(3, 6, 9), true), m);
  const point3d rows[3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  EXPECT_EQ(matrix3d(rows, false), m);
  EXPECT_EQ(matrix3d(point3d(1, 2, 3), point3d(4, 5, 6)), matrix3d(4, 5, 6, 8, 10, 12, 12, 15, 18));
  EXPECT_EQ(matrix3d(2.0, 3.0, 4.0), matrix3d(2, 0, 0, 0, 3, 0, 0, 0, 4));
  EXPECT_EQ(m.getRow(1), point3d(4, 5, 6));
  EXPECT_EQ(m.getColumn(1), point3d(2, 5, 8));
  double cm[9];
  m.getColumnMajor(cm);
  EXPECT_EQ(matrix3d(cm), m.getTranspose());
  matrix3i identity;
  identity.setIdentity();
  EXPECT_EQ(identity(1, 1), 1);
  EXPECT_EQ(identity(1, 0), 0);
  EXPECT_EQ(matrix3i::indexOf(2, 1), 7);
  // Two-dimensional homogeneous forms work with row vectors: the translation is in row 2.
  matrix3d t;
  t.setTranslate(5, 6);
  EXPECT_EQ(point3d(1, 1, 1) * t, point3d(6, 7, 1));
}

TEST(matrix3, zeroRules) {
  const matrix3f m = matrix3f(1, 2, 3, 4, 5, 6, 7, 8, 9) / 0.0f;
  for (int i = 0; i < 9; ++i) EXPECT_EQ(m[i], FLT_MAX);
  matrix3d singular(1, 2, 3, 2, 4, 6, 0, 1, 1);
  EXPECT_TRUE(singular.inverse() == matrix3d::ZERO());
}

TYPED_TEST(matrix3Typed, productsAgainstEigen) {
  using T = TypeParam;
  randomSource rnd(3);
  for (int i = 0; i < 20; ++i) {
    const matrix3<T> a = rnd.matrix3<T>(), b = rnd.matrix3<T>();
    const point3<T> u = rnd.point3<T>(), v = rnd.point3<T>();
    const double tol = this->tolerance();
    EXPECT_LT(maxDiff(a * b, toEigen(a) * toEigen(b)), tol);
    EXPECT_LT(maxDiff(a.transposeTimes(b), toEigen(a).transpose() * toEigen(b)), tol);
    EXPECT_LT(maxDiff(a.timesTranspose(b), toEigen(a) * toEigen(b).transpose()), tol);
    EXPECT_LT(maxDiff(a.timesDiagonal(u), toEigen(a) * toEigen(u).asDiagonal()), tol);
    EXPECT_LT(maxDiff(a.diagonalTimes(u), toEigen(u).asDiagonal() * toEigen(a)), tol);
    EXPECT_LT(maxDiff(a.getTranspose(), toEigen(a).transpose()), tol);
    // Row vector from the left, column vector from the right.
    EXPECT_LT((toEigen(u * a) - (toEigen(u).transpose() * toEigen(a)).transpose()).norm(), tol);
    EXPECT_LT((toEigen(a * u) - toEigen(a) * toEigen(u)).norm(), tol);
    EXPECT_NEAR(a.qForm(u, v), toEigen(u).dot(toEigen(a) * toEigen(v)), tol);
    EXPECT_NEAR(a.determinant(), toEigen(a).determinant(), tol * 10);
    EXPECT_NEAR(a.getTrace(), toEigen(a).trace(), tol);
    EXPECT_LT(maxDiff(a.adjoint() * a, eMat3<T>::Identity() * a.determinant()), tol * 10);
    if (std::abs(toEigen(a).determinant()) > 0.1) {
      EXPECT_LT(maxDiff(a.inverse(), toEigen(a).inverse()), tol * 100);
    }
  }
}

TEST(matrix3, rotationIsColumnFormAndAxisIsUsedAsGiven) {
  matrix3d r;
  r.setRotateRad(M_PI / 2, point3d(0, 0, 1));
  EXPECT_NEAR(r(0, 1), -1.0, 1e-15);  // xy(1-c) - zs
  EXPECT_NEAR((r * point3d(1, 0, 0) - point3d(0, 1, 0)).norm(), 0.0, 1e-15);
  randomSource rnd(5);
  for (int i = 0; i < 10; ++i) {
    const point3d axis = rnd.unit3<double>();
    const double angle = rnd(-3, 3);
    r.setRotateRad(angle, axis);
    EXPECT_LT(maxDiff(r, Eigen::AngleAxisd(angle, toEigen(axis)).toRotationMatrix()), 1e-14);
  }
  // A non-unit axis is not normalised: the result is not a rotation.
  r.setRotateRad(1.0, point3d(0, 0, 2));
  EXPECT_GT(std::abs(r.determinant() - 1.0), 0.1);
  matrix3d deg;
  deg.setRotateDeg(90.0, point3d(0, 0, 1));
  EXPECT_NEAR(deg(1, 0), 1.0, 1e-15);
}

TEST(matrix3, eulerOrdersMatchTheProductOfAxisRotationsAndRoundTrip) {
  using builder = matrix3d& (matrix3d::*)(double, double, double);
  using reader = bool (matrix3d::*)(double&, double&, double&) const;
  struct order {
    const char* name;
    int axes[3];
    builder from;
    reader to;
  };
  const order orders[6] = {
      {"XYZ", {0, 1, 2}, &matrix3d::fromEulerAnglesXYZ, &matrix3d::toEulerAnglesXYZ},
      {"XZY", {0, 2, 1}, &matrix3d::fromEulerAnglesXZY, &matrix3d::toEulerAnglesXZY},
      {"YXZ", {1, 0, 2}, &matrix3d::fromEulerAnglesYXZ, &matrix3d::toEulerAnglesYXZ},
      {"YZX", {1, 2, 0}, &matrix3d::fromEulerAnglesYZX, &matrix3d::toEulerAnglesYZX},
      {"ZXY", {2, 0, 1}, &matrix3d::fromEulerAnglesZXY, &matrix3d::toEulerAnglesZXY},
      {"ZYX", {2, 1, 0}, &matrix3d::fromEulerAnglesZYX, &matrix3d::toEulerAnglesZYX}};
  randomSource rnd(17);
  for (const order& o : orders) {
    SCOPED_TRACE(o.name);
    for (int i = 0; i < 20; ++i) {
      const double a = rnd(-3.1, 3.1), b = rnd(-1.5, 1.5), c = rnd(-3.1, 3.1);
      matrix3d m;
      (m.*o.from)(a, b, c);
      const eMat3<double> expected =
          axisRotation(o.axes[0], a) * axisRotation(o.axes[1], b) * axisRotation(o.axes[2], c);
      EXPECT_LT(maxDiff(m, expected), 1e-14);
      double ra, rb, rc;
      EXPECT_TRUE((m.*o.to)(ra, rb, rc));
      EXPECT_NEAR(ra, a, 1e-9);
      EXPECT_NEAR(rb, b, 1e-9);
      EXPECT_NEAR(rc, c, 1e-9);
    }
    // Gimbal lock on both sides: false, last angle 0, and the angles still rebuild it.
    for (double middle : {M_PI / 2, -M_PI / 2}) {
      matrix3d m;
      (m.*o.from)(0.4, middle, -0.9);
      // Snap the pivot to exactly ±1 as a lock reading would see it.
      for (int k = 0; k < 9; ++k) m[k] = std::round(m[k] * 1e12) / 1e12;
      double ra, rb, rc;
      EXPECT_FALSE((m.*o.to)(ra, rb, rc));
      EXPECT_EQ(rc, 0.0);
      EXPECT_NEAR(std::abs(rb), M_PI / 2, 1e-15);
      matrix3d back;
      (back.*o.from)(ra, rb, rc);
      EXPECT_LT(maxDiff(back, toEigen(m)), 1e-9);
    }
  }
  matrix3d lock(0, 0, 1, 0, 1, 0, -1, 0, 0);
  double x = 5, y = 5, z = 5;
  EXPECT_FALSE(lock.toEulerAnglesXYZ(x, y, z));
  EXPECT_EQ(z, 0.0);
  EXPECT_NEAR(y, M_PI / 2, 1e-15);
}

TEST(matrix3, axisAngleInEveryBranch) {
  randomSource rnd(23);
  for (int i = 0; i < 20; ++i) {
    const point3d axis = rnd.unit3<double>();
    const double angle = rnd(0.01, 3.1);
    point3d a;
    double t;
    matrix3d(angle, axis).toAxisAngle(a, t);
    EXPECT_NEAR(t, angle, 1e-9);
    EXPECT_NEAR((a - axis).norm(), 0.0, 1e-9);
  }
  point3d a;
  double t;
  matrix3d::IDENTITY().toAxisAngle(a, t);
  EXPECT_EQ(t, 0.0);
  EXPECT_EQ(a, point3d(1, 0, 0));
  // An exact half-turn (trace -1): the axis comes from the diagonal, the first of the
  // tied largest elements taken positive.
  const matrix3d half(0, 0, 1, 0, -1, 0, 1, 0, 0);
  half.toAxisAngle(a, t);
  EXPECT_EQ(t, M_PI);
  EXPECT_NEAR(a.x, std::sqrt(0.5), 1e-15);
  EXPECT_EQ(a.y, 0.0);
  EXPECT_NEAR(a.z, std::sqrt(0.5), 1e-15);
  const matrix3d halfY(-1, 0, 0, 0, 1, 0, 0, 0, -1);
  halfY.toAxisAngle(a, t);
  EXPECT_EQ(a, point3d(0, 1, 0));
}

TEST(matrix3, slerpTakesAFractionOfTheRelativeRotation) {
  const point3d axis = point3d(1, 1, 0).normalize();
  const matrix3d r1(1.2, axis);
  const matrix3d half = matrix3d::slerp(0.5, matrix3d::IDENTITY(), r1);
  EXPECT_LT(maxDiff(half, toEigen(matrix3d(0.6, axis))), 1e-12);
  const matrix3d r0(0.3, axis);
  EXPECT_LT(maxDiff(matrix3d::slerp(0.5, r0, r1), toEigen(matrix3d(0.45, axis))), 1e-12);
}

TEST(matrix3, orthonormalizeWorksOnColumnsInOrder) {
  matrix3d m(2, 1, 0, 0, 1, 1, 0, 0, 3);
  m.orthonormalize();
  EXPECT_LT(maxDiff(m.transposeTimes(m), eMat3<double>::Identity()), 1e-14);
  EXPECT_EQ(m.getColumn(0), point3d(1, 0, 0));
}

TYPED_TEST(matrix3Typed, singularValueDecompositionAgainstEigen) {
  using T = TypeParam;
  randomSource rnd(31);
  for (int i = 0; i < 60; ++i) {
    matrix3<T> a = rnd.matrix3<T>();
    if (i % 4 == 1) a.setRow(2, a.getRow(0) * T(2) - a.getRow(1));     // rank 2
    if (i % 4 == 2) a = matrix3<T>(rnd.point3<T>(), rnd.point3<T>());  // rank 1
    if (i % 4 == 3) a = matrix3<T>(T(rnd(-3, 3)), T(rnd(-3, 3)), T(0)) * a;
    matrix3<T> l, d, rt;
    a.singularValueDecomposition(l, d, rt);
    const double scale = toEigen(a).norm();
    // The iteration stops at a superdiagonal of 1e-4 relative, in both widths.
    const double tol = 5e-4 * scale;
    EXPECT_LT(maxDiff(l * d * rt, toEigen(a)), tol) << i;
    EXPECT_LT(maxDiff(l.transposeTimes(l), eMat3<T>::Identity()), 1e-4);
    EXPECT_LT(maxDiff(rt.timesTranspose(rt), eMat3<T>::Identity()), 1e-4);
    Eigen::Matrix<T, 3, 1> values(d(0, 0), d(1, 1), d(2, 2));
    EXPECT_GE(values.minCoeff(), T(0));
    std::sort(values.data(), values.data() + 3, std::greater<T>());
    // Dynamic size keeps GCC's fixed-size vector paths (and their false warnings) away.
    const Eigen::JacobiSVD<Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>> oracle(toEigen(a));
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(values(k), oracle.singularValues()(k), tol) << i;
    matrix3<T> back;
    back.singularValueComposition(l, d, rt);
    EXPECT_LT(maxDiff(back, toEigen(a)), tol);
  }
  matrix3<T> l, d, rt;
  matrix3<T>::ZERO().singularValueDecomposition(l, d, rt);
  EXPECT_EQ(d, matrix3<T>::ZERO());
}

TYPED_TEST(matrix3Typed, eigenDecompositionAgainstEigen) {
  using T = TypeParam;
  randomSource rnd(37);
  for (int i = 0; i < 40; ++i) {
    matrix3<T> a = rnd.matrix3<T>();
    a = a + a.getTranspose();
    if (i % 5 == 0) a(0, 2) = a(2, 0) = T(0);  // no reflection needed
    matrix3<T> rot, diag;
    a.eigenDecomposition(rot, diag);
    const double tol = std::is_same_v<T, float> ? 1e-4 : 1e-12;
    EXPECT_LT(maxDiff(rot * diag.timesTranspose(rot), toEigen(a)), tol * 10);
    EXPECT_NEAR(rot.determinant(), T(1), tol);  // a rotation, not a reflection
    const Eigen::SelfAdjointEigenSolver<eMat3<T>> oracle(toEigen(a));
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(diag(k, k), oracle.eigenvalues()(k), tol * 10);
    EXPECT_LE(diag(0, 0), diag(1, 1));
    EXPECT_LE(diag(1, 1), diag(2, 2));
    EXPECT_EQ(diag(0, 1), T(0));
  }
}

TYPED_TEST(matrix3Typed, qduDecomposition) {
  using T = TypeParam;
  randomSource rnd(41);
  for (int i = 0; i < 20; ++i) {
    const matrix3<T> a = rnd.matrix3<T>();
    matrix3<T> q, d, u;
    a.qDUDecomposition(q, d, u);
    const double tol = std::is_same_v<T, float> ? 1e-4 : 1e-12;
    EXPECT_LT(maxDiff(q * d * u, toEigen(a)), tol * 10);
    EXPECT_LT(maxDiff(q.transposeTimes(q), eMat3<T>::Identity()), tol);
    EXPECT_EQ(u(1, 0), T(0));
    EXPECT_EQ(u(2, 0), T(0));
    EXPECT_EQ(u(2, 1), T(0));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(u(k, k), T(1));
  }
}

TEST(matrix3, crossCovarianceAgainstADirectSum) {
  randomSource rnd(43);
  std::vector<point3d> a, b;
  for (int i = 0; i < 30; ++i)
    a.push_back(rnd.point3<double>()), b.push_back(rnd.point3<double>(0, 5));
  point3d meanA, meanB;
  matrix3d s;
  s.setCrossCovariance(a, b, meanA, meanB);
  Eigen::Vector3d ma = Eigen::Vector3d::Zero(), mb = Eigen::Vector3d::Zero();
  for (int i = 0; i < 30; ++i) ma += toEigen(a[i]) / 30.0, mb += toEigen(b[i]) / 30.0;
  eMat3<double> expected = eMat3<double>::Zero();
  for (int i = 0; i < 30; ++i) expected += (toEigen(b[i]) - mb) * (toEigen(a[i]) - ma).transpose();
  EXPECT_LT(maxDiff(s, expected), 1e-12);
  EXPECT_LT((toEigen(meanA) - ma).norm(), 1e-14);
  EXPECT_LT((toEigen(meanB) - mb).norm(), 1e-14);

  std::vector<point3d> none;
  s.setCrossCovariance(none, b, meanA, meanB);
  EXPECT_EQ(meanA, point3d(DBL_MAX, DBL_MAX, DBL_MAX));
}
