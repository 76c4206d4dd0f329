#include "jev3d/math/mathBase.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

using JEV::MATH::mathBase;

TEST(mathBase, constantsOfBothWidths) {
  EXPECT_EQ(mathBase<float>::EPSILON(), 1.1920929e-07f);
  EXPECT_EQ(mathBase<float>::ZERO_TOLERANCE(), 1e-06f);
  EXPECT_EQ(mathBase<float>::MAX_T(), 3.4028235e+38f);
  EXPECT_EQ(mathBase<float>::MIN_T(), 1.1754944e-38f);
  EXPECT_EQ(mathBase<double>::EPSILON(), 2.220446049250313e-16);
  EXPECT_EQ(mathBase<double>::ZERO_TOLERANCE(), 1e-08);
  EXPECT_EQ(mathBase<double>::MAX_T(), DBL_MAX);
  EXPECT_EQ(mathBase<double>::MIN_T(), DBL_MIN);
  EXPECT_EQ(mathBase<float>::PI(), float(M_PI));
  EXPECT_EQ(mathBase<double>::PI(), M_PI);
  EXPECT_DOUBLE_EQ(mathBase<double>::DEG_TO_RAD() * 180.0, M_PI);
  EXPECT_DOUBLE_EQ(mathBase<double>::RAD_TO_DEG() * M_PI, 180.0);
}

TEST(mathBase, clampedInverseTrigonometry) {
  using M = mathBase<double>;
  EXPECT_EQ(M::aCos(-1.0), M::PI());
  EXPECT_EQ(M::aCos(-7.0), M::PI());
  EXPECT_EQ(M::aCos(1.0), 0.0);
  EXPECT_EQ(M::aCos(3.0), 0.0);
  EXPECT_DOUBLE_EQ(M::aCos(0.5), std::acos(0.5));
  EXPECT_EQ(M::aSin(-1.0), -M::HALF_PI());
  EXPECT_EQ(M::aSin(2.0), M::HALF_PI());
  EXPECT_DOUBLE_EQ(M::aSin(0.5), std::asin(0.5));
}

TEST(mathBase, signAndRoundOffAreStrict) {
  using M = mathBase<float>;
  EXPECT_EQ(M::sign(2.5f), 1.0f);
  EXPECT_EQ(M::sign(-0.1f), -1.0f);
  EXPECT_EQ(M::sign(0.0f), 0.0f);
  EXPECT_EQ(M::sign(-0.0f), 0.0f);
  EXPECT_EQ(M::sign(NAN), 0.0f);
  EXPECT_EQ(M::roundOff(0.0001f), 0.0001f);
  EXPECT_EQ(M::roundOff(0.00009f), 0.0f);
  EXPECT_EQ(M::roundOff(-0.00009f), 0.0f);
  EXPECT_EQ(M::invSqrt(4.0f), 0.5f);
}

TEST(mathBase, randomDrawsStayInRangeAndRepeatWithSeed) {
  using M = mathBase<double>;
  const double first = M::intervalRandom(-3.0, 5.0, 77);
  for (int i = 0; i < 200; ++i) {
    const double v = M::intervalRandom(-3.0, 5.0);
    EXPECT_GE(v, -3.0);
    EXPECT_LE(v, 5.0);
    const double u = M::unitRandom();
    EXPECT_GE(u, 0.0);
    EXPECT_LE(u, 1.0);
    const double s = M::symmetricRandom();
    EXPECT_GE(s, -1.0);
    EXPECT_LE(s, 1.0);
  }
  EXPECT_EQ(M::intervalRandom(-3.0, 5.0, 77), first);
}
