#include "jev3d/math/matrix4.h"
#include "jev3d/math/quaternion.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "eigenOracle.h"

using namespace JEV::MATH;

static_assert(sizeof(matrix3f) == 9 * sizeof(float) && sizeof(matrix4d) == 16 * sizeof(double));
static_assert(std::is_trivially_copyable_v<matrix4f> && std::is_standard_layout_v<matrix4f>);

namespace {

template <class T>
class matrix4Typed : public ::testing::Test {
 public:
  static double tolerance() { return std::is_same_v<T, float> ? 2e-4 : 1e-11; }
};
using realTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(matrix4Typed, realTypes);

double distance(const point3d& a, const point3d& b) { return (a - b).norm(); }

}  // namespace

TEST(matrix4, translationLivesInRowThree) {
  matrix4f m;
  m.setTranslate(1, 2, 3);
  EXPECT_EQ(m[12], 1.0f);
  EXPECT_EQ(m[13], 2.0f);
  EXPECT_EQ(m[14], 3.0f);
  EXPECT_EQ(m(3, 1), 2.0f);
  EXPECT_EQ(point3f(0, 0, 0) * m, point3f(1, 2, 3));
  EXPECT_EQ(m * point3f(0, 0, 0), point3f(0, 0, 0));
  EXPECT_EQ(m.getTranslateVector(), point3f(1, 2, 3));
  m.setScale(4, 5, 6);
  EXPECT_EQ(m.getScaleVector(), point3f(4, 5, 6));
  EXPECT_EQ(matrix4f(true), matrix4f::ZERO());
  EXPECT_EQ(matrix4f(false), matrix4f::IDENTITY());
  // The column-major hand-over is the transpose of the storage.
  float cm[16];
  matrix4f::getTranslate(1, 2, 3).getColumnMajor(cm);
  EXPECT_EQ(cm[3], 1.0f);
  EXPECT_EQ(cm[7], 2.0f);
  EXPECT_EQ(cm[11], 3.0f);
  EXPECT_EQ(matrix4i::getRowsNumber(), 4);
  matrix4i zero(true);
  EXPECT_EQ(zero[5], 0);
  zero[5] = 3;
  EXPECT_EQ(zero.getNorm(), 3);
}

TEST(matrix4, homogeneousDivisionAndItsZeroRule) {
  matrix4d m;
  m(0, 3) = 1.0;  // w = x + 1
  EXPECT_EQ(point3d(1, 4, 6) * m, point3d(0.5, 2, 3));
  m(3, 3) = 0.0;                                      // w = x
  EXPECT_EQ(point3d(0, 4, 6) * m, point3d(0, 4, 6));  // w exactly 0: undivided
  // point4 keeps w and does not divide.
  const matrix4d p = matrix4d::getPerspectiveLHDeg(90.0, 1.0, 1.0, 10.0);
  const point4d v = point4d(1, 2, 5, 1) * p;
  EXPECT_DOUBLE_EQ(v.w, 5.0);
  point4d u(1, 2, 5, 1);
  u *= p;
  EXPECT_EQ(u, v);
  const point3d q = point3d(1, 2, 5) * p;
  EXPECT_DOUBLE_EQ(q.x, v.x / 5.0);
}

TEST(matrix4, zeroRules) {
  const matrix4f m = matrix4f::getTranslate(1, 2, 3) / 0.0f;
  for (int i = 0; i < 16; ++i) EXPECT_EQ(m[i], FLT_MAX);
  matrix4f n = matrix4f::getScale(2, 4, 8);
  n /= 0.0f;
  EXPECT_EQ(n[1], FLT_MAX);
  const quaternionf q = quaternionf(1, 2, 3, 4) / 0.0f;
  EXPECT_EQ(q, quaternionf(FLT_MAX, FLT_MAX, FLT_MAX, FLT_MAX));
  EXPECT_EQ(-matrix4f::getScale(2, 4, 8) + matrix4f::getScale(2, 4, 8) * 2.0f,
            matrix4f::getScale(2, 4, 8) - matrix4f(true) + matrix4f(true) * 2.0f);
  const matrix4f half = matrix4f::getScale(2, 4, 8) / 2.0f;
  EXPECT_EQ(half.getScaleVector(), point3f(1, 2, 4));
  EXPECT_EQ(half(3, 3), 0.5f);
  matrix4d singular = matrix4d::getScale(1, 0, 2);
  EXPECT_TRUE(singular.getInverse() == matrix4d::ZERO());
  singular.setInverse();
  EXPECT_TRUE(singular == matrix4d::ZERO());
}

TYPED_TEST(matrix4Typed, productsAndInverseAgainstEigen) {
  using T = TypeParam;
  randomSource rnd(7);
  for (int i = 0; i < 20; ++i) {
    const matrix4<T> a = rnd.matrix4<T>(), b = rnd.matrix4<T>();
    const point4<T> v{T(rnd()), T(rnd()), T(rnd()), T(rnd())};
    const double tol = this->tolerance();
    EXPECT_LT(maxDiff(a * b, toEigen(a) * toEigen(b)), tol);
    EXPECT_LT(maxDiff(a.transposeTimes(b), toEigen(a).transpose() * toEigen(b)), tol);
    EXPECT_LT(maxDiff(a.timesTranspose(b), toEigen(a) * toEigen(b).transpose()), tol);
    EXPECT_LT((toEigen(v * a) - (toEigen(v).transpose() * toEigen(a)).transpose()).norm(), tol);
    EXPECT_LT((toEigen(a * v) - toEigen(a) * toEigen(v)).norm(), tol);
    EXPECT_NEAR(a.qForm(v, v), toEigen(v).dot(toEigen(a) * toEigen(v)), tol * 10);
    EXPECT_NEAR(a.determinant(), toEigen(a).determinant(), tol * 100);
    EXPECT_NEAR(a.getNorm(), toEigen(a).norm(), tol);
    EXPECT_LT(maxDiff(a.adjoint() * a, eMat4<T>::Identity() * a.determinant()), tol * 100);
    if (std::abs(toEigen(a).determinant()) > 0.1) {
      EXPECT_LT(maxDiff(a.getInverse(), toEigen(a).inverse()), tol * 100);
    }
    // The row-vector transform with translation equals Eigen's (p 1)·M.
    const point3<T> p(v.x, v.y, v.z);
    const matrix4<T> affine = a * matrix4<T>::getTranslate(T(1), T(2), T(3));
    Eigen::Matrix<T, 1, 4> h(p.x, p.y, p.z, T(1));
    h = h * toEigen(affine);
    if (std::abs(h(3)) > 0.1) {
      EXPECT_LT((toEigen(p * affine) - (h.template head<3>() / h(3)).transpose()).norm(),
                tol * 100);
    }
  }
  // p·(A·B) applies A first.
  const matrix4<T> t = matrix4<T>::getTranslate(T(1), T(0), T(0));
  const matrix4<T> s = matrix4<T>::getScale(T(2), T(2), T(2));
  EXPECT_EQ(point3<T>(1, 1, 1) * (t * s), point3<T>(4, 2, 2));
  EXPECT_EQ(point3<T>(1, 1, 1) * (s * t), point3<T>(3, 2, 2));
}

TEST(matrix4, rotationIsTheTransposeOfMatrix3s) {
  randomSource rnd(9);
  for (int i = 0; i < 10; ++i) {
    const point3d axis = rnd.point3<double>();  // not unit: matrix4 normalises a copy
    const double angle = rnd(-3, 3);
    const matrix4d r4 = matrix4d::getRotateRad(angle, axis);
    const matrix3d r3(angle, axis.getNormalized());
    EXPECT_LT(maxDiff(r4.getMatrix3(), toEigen(r3).transpose()), 1e-14);
    EXPECT_EQ(r4(3, 3), 1.0);
    EXPECT_EQ(r4(0, 3), 0.0);
    // Both move a point the same way, each in its own sense.
    const point3d p = rnd.point3<double>();
    EXPECT_LT(distance(p * r4, r3 * p), 1e-14);
  }
  const matrix4d quarter = matrix4d::getRotateDeg(90.0, point3d(0, 0, 1));
  EXPECT_NEAR(quarter(0, 1), 1.0, 1e-15);  // xy(1-c) + zs
  EXPECT_LT(distance(point3d(1, 0, 0) * quarter, point3d(0, 1, 0)), 1e-15);
}

TEST(matrix4, leftHandedProjectionsMapDepthToZeroOne) {
  const matrix4d p = matrix4d::getPerspectiveLHRad(M_PI / 2, 2.0, 1.0, 100.0);
  EXPECT_NEAR((point3d(0, 0, 1) * p).z, 0.0, 1e-15);
  EXPECT_NEAR((point3d(0, 0, 100) * p).z, 1.0, 1e-15);
  EXPECT_NEAR((point3d(2, 1, 1) * p).x, 1.0, 1e-15);  // right edge at aspect 2, fov 90°
  EXPECT_NEAR((point3d(2, 1, 1) * p).y, 1.0, 1e-15);
  EXPECT_LT(maxDiff(matrix4d::getPerspectiveLHDeg(90.0, 2.0, 1.0, 100.0), toEigen(p)), 1e-15);
  // A symmetric frustum is the same perspective.
  EXPECT_LT(maxDiff(matrix4d::getFrustumLH(-2, 2, -1, 1, 1, 100), toEigen(p)), 1e-15);

  const matrix4d o = matrix4d::getOrthoLH(-4, 4, -2, 2, 1, 11);
  EXPECT_LT(distance(point3d(-4, -2, 1) * o, point3d(-1, -1, 0)), 1e-15);
  EXPECT_LT(distance(point3d(4, 2, 11) * o, point3d(1, 1, 1)), 1e-15);

  // The orthographic case of setProjectionMatrix takes the whole angle, times 100.
  matrix4d q;
  const matrix4d returned = q.setProjectionMatrix(false, 10.0, 1.5, 0.5, 50.0);
  EXPECT_EQ(returned, q);
  const double h = std::tan(10.0 * M_PI / 180.0) * 0.5;
  EXPECT_LT(
      maxDiff(q, toEigen(matrix4d::getOrthoLH(-150 * h, 150 * h, -100 * h, 100 * h, 0.5, 50))),
      1e-15);
  EXPECT_EQ(q.setProjectionMatrix(true, 60.0, 1.5, 0.5, 50.0),
            matrix4d::getPerspectiveLHDeg(60.0, 1.5, 0.5, 50.0));

  // The view puts the eye at the origin and looks down +z.
  const point3d eye(3, 4, 5), at(0, 1, 2);
  const matrix4d v = matrix4d::getLookAtLH(eye, at, point3d(0, 1, 0));
  EXPECT_LT(distance(eye * v, point3d(0, 0, 0)), 1e-14);
  EXPECT_LT(distance(at * v, point3d(0, 0, (at - eye).norm())), 1e-14);
  EXPECT_GT((point3d(0, 10, 0) * v).y, 0.0);  // up stays up
  matrix4d nine;
  nine.setLookAtLH(3, 4, 5, 0, 1, 2, 0, 1, 0);
  EXPECT_EQ(nine, v);
}

TEST(matrix4, planarFormsActOnColumnVectors) {
  const point3d n = point3d(1, 2, 2).normalize(), onPlane(1, 1, 1);
  matrix4d r;
  r.setReflection(n, onPlane);
  const point3d p(3, -1, 2);
  const point3d mirrored = r * p;
  EXPECT_NEAR((mirrored - onPlane) * n, -((p - onPlane) * n), 1e-14);
  EXPECT_LT(distance(r * mirrored, p), 1e-14);

  const point3d dir(0, 0, -1);
  matrix4d o;
  o.setObliqueProjection(n, onPlane, dir);
  const point3d projected = o * p;
  EXPECT_NEAR((projected - onPlane) * n, 0.0, 1e-14);
  EXPECT_LT(point3d::cross(projected - p, dir).norm(), 1e-14);

  const point3d eye(5, 5, 9);
  matrix4d s;
  s.setPerspectiveProjection(n, onPlane, eye);
  const point3d shadow = s * p;
  EXPECT_NEAR((shadow - onPlane) * n, 0.0, 1e-13);
  EXPECT_LT(point3d::cross(shadow - eye, p - eye).norm(), 1e-12);  // on the ray from the eye
}

TYPED_TEST(matrix4Typed, jacobiAgainstEigen) {
  using T = TypeParam;
  randomSource rnd(13);
  for (int i = 0; i < 20; ++i) {
    matrix4<T> a = rnd.matrix4<T>();
    a = a + a.getTranspose();
    T values[4];
    matrix4<T> vectors;
    int rotations = -1;
    EXPECT_TRUE(matrix4<T>::jacobi(a, values, vectors, rotations));
    EXPECT_GT(rotations, 0);
    const double tol = std::is_same_v<T, float> ? 1e-4 : 1e-12;
    EXPECT_LT(maxDiff(vectors.transposeTimes(vectors), eMat4<T>::Identity()), tol);
    for (int k = 0; k < 4; ++k) {
      const point4<T> v = vectors.getColumn(k);
      EXPECT_LT((toEigen(a * v - v * values[k])).norm(), tol * 10);
    }
    std::sort(values, values + 4);
    const Eigen::SelfAdjointEigenSolver<eMat4<T>> oracle(toEigen(a));
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(values[k], oracle.eigenvalues()(k), tol * 10);
  }
  T values[4];
  matrix4<T> vectors(true);
  int rotations = -1;
  EXPECT_TRUE(
      matrix4<T>::jacobi(matrix4<T>::getScale(T(1), T(2), T(3)), values, vectors, rotations));
  EXPECT_EQ(rotations, 0);
  EXPECT_EQ(vectors, matrix4<T>::IDENTITY());
  EXPECT_EQ(values[2], T(3));
}

TYPED_TEST(matrix4Typed, rigidMatchRecoversAKnownTransformFromNoisyPoints) {
  using T = TypeParam;
  randomSource rnd(19);
  for (int trial = 0; trial < 10; ++trial) {
    const point3<T> axis = rnd.unit3<T>();
    const T angle = T(rnd(-3, 3));
    const point3<T> shift = rnd.point3<T>(-10, 10);
    const matrix4<T> truth =
        matrix4<T>::getRotateRad(angle, axis) * matrix4<T>::getTranslate(shift.x, shift.y, shift.z);
    std::vector<point3<T>> a, b;
    for (int i = 0; i < 200; ++i) {
      const point3<T> p = rnd.point3<T>(-5, 5);
      a.push_back(p);
      b.push_back(p * truth + rnd.point3<T>(-0.01, 0.01));
    }
    matrix4<T> found;
    EXPECT_TRUE(matrix4<T>::computeRigidMatchMatrix(found, a, b));
    EXPECT_LT(maxDiff(found.getMatrix3(), toEigen(truth.getMatrix3())), 3e-3) << trial;
    EXPECT_LT((found.getTranslateVector() - shift).norm(), T(3e-2)) << trial;
    EXPECT_LT(std::abs(found.getMatrix3().determinant() - T(1)), 1e-4);
    // Eigen's Umeyama on the same points agrees.
    Eigen::MatrixXd ea(3, a.size()), eb(3, b.size());
    for (size_t i = 0; i < a.size(); ++i) {
      ea.col(i) = toEigen(a[i]).template cast<double>();
      eb.col(i) = toEigen(b[i]).template cast<double>();
    }
    const Eigen::MatrixXd umeyama = Eigen::umeyama(ea, eb, false);
    EXPECT_LT(maxDiff(found, umeyama.transpose().cast<T>()), 1e-3) << trial;
    matrix4<T> rotationOnly;
    matrix4<T>::computeRigidMatchMatrix(rotationOnly, a, b, false);
    EXPECT_EQ(rotationOnly.getTranslateVector(), point3<T>::ZERO());
  }
}

TEST(matrix4, randomTransformsAreTheDocumentedProduct) {
  const matrix4d m = matrix4d::getRandomTransform(30.0, 1.0, 2.0, 3.0);
  const matrix4d expected = matrix4d::getTranslate(2, 3, 31) * matrix4d::getScale(33, 2, 2) *
                            matrix4d::getRotateDeg(30.0, point3d(1, 2, 3));
  EXPECT_LT(maxDiff(m, toEigen(expected)), 1e-12);
  EXPECT_EQ(matrix4d::getRandomTransform(5u), matrix4d::getRandomTransform(5u));
  EXPECT_NE(matrix4d::getRandomTransform(5u), matrix4d::getRandomTransform(6u));
  // The seeded form draws the angle and then x, y, z from the C generator.
  std::srand(5);
  const auto draw = [] { return (mathBase<double>::rand15() + 1) / 32767.0; };
  const double angle = draw() * 360.0, x = draw() + 1.0, y = draw() + 1.0, z = draw() + 1.0;
  EXPECT_EQ(matrix4d::getRandomTransform(5u), matrix4d::getRandomTransform(angle, x, y, z));
}

TEST(matrix4, interpolatedRotationsFollowTheQuaternionSlerp) {
  const point3d axis = point3d(0, 1, 1).normalize();
  const matrix4d a = matrix4d::getRotateRad(0.2, axis), b = matrix4d::getRotateRad(1.0, axis);
  EXPECT_LT(maxDiff(matrix4d::interpolateRotationMatricex(a, b, 0.0), toEigen(a)), 1e-12);
  EXPECT_LT(maxDiff(matrix4d::interpolateRotationMatricex(a, b, 1.0), toEigen(b)), 1e-12);
  EXPECT_LT(maxDiff(matrix4d::interpolateRotationMatricex(a, b, 0.25),
                    toEigen(matrix4d::getRotateRad(0.4, axis))),
            1e-12);
}
