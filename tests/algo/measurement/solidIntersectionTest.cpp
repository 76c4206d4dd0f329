#include "jev3d/algo/measurement/solidIntersection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::MEASUREMENT::solidIntersection;
using m4 = JEV::MATH::matrix4<float>;

editMesh sphere(float r) {
  editMesh m;
  testMeshes::makeSphere(m, 16, 32);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) *= r;
  testMeshes::finishMesh(m);
  return m;
}

TEST(solidIntersection, overlappingAndDisjointSolids) {
  solidIntersection test;
  const editMesh unit = sphere(1.0f), small = sphere(0.3f);
  test.addModelToTest(unit, m4::IDENTITY(), false);                    // 0
  test.addModelToTest(unit, m4::getTranslate(1.5f, 0, 0), false);      // 1: overlaps 0
  test.addModelToTest(unit, m4::getTranslate(0, 5, 0), false);         // 2: apart from 0, 1, 4
  test.addModelToTest(small, m4::getTranslate(0, 5.2f, 0), false);     // 3: inside 2
  test.addModelToTest(unit, m4::getTranslate(2.2f, 1.95f, 0), false);  // 4: box touches 1 only
  EXPECT_EQ(test.getModel(1).mesh.vPos(0).x, 1.5f);                    // the copy is placed

  const auto pairs = test.findPairToTest();
  const std::vector<std::pair<unsigned, unsigned>> expected = {{0, 1}, {1, 4}, {2, 3}};
  EXPECT_EQ(pairs, expected);

  recordingCallBack cb;
  ASSERT_TRUE(test.test(&cb, 32));
  EXPECT_EQ(cb.values.front(), 1.0f);
  EXPECT_EQ(cb.values.back(), 100.0f);
  EXPECT_NE(std::find(cb.values.begin(), cb.values.end(), 95.0f), cb.values.end());
  EXPECT_NE(std::find(cb.values.begin(), cb.values.end(), 99.0f), cb.values.end());

  EXPECT_EQ(test.getModel(0).intersectsWith, std::vector<unsigned>{1});
  EXPECT_EQ(test.getModel(1).intersectsWith, std::vector<unsigned>{0});
  EXPECT_EQ(test.getModel(2).intersectsWith, std::vector<unsigned>{3});
  EXPECT_EQ(test.getModel(3).intersectsWith, std::vector<unsigned>{2});
  EXPECT_FALSE(test.getModel(4).intersects);
  // Depths: model 0's vertices at x = 1 lie 0.5 inside model 1; the small sphere wholly
  // inside model 2, every vertex of it below zero.
  const auto& depth0 = test.getModel(0).depth;
  EXPECT_NEAR(*std::min_element(depth0.begin(), depth0.end()), -0.5f, 0.03f);
  const auto& depth3 = test.getModel(3).depth;
  EXPECT_TRUE(std::all_of(depth3.begin(), depth3.end(), [](float d) { return d < -0.4f; }));
  for (float d : test.getModel(4).depth) EXPECT_EQ(d, 0.0f);
}

TEST(solidIntersection, smoothingRunsOnTheCopyOnly) {
  editMesh noisy = sphere(1.0f);
  for (unsigned v = 0; v < noisy.vn(); ++v) noisy.vPos(v) *= 1.0f + 0.05f * float(v % 3);
  const editMesh before = noisy;
  solidIntersection test;
  test.addModelToTest(noisy, m4::IDENTITY(), true);
  test.addModelToTest(noisy, m4::IDENTITY(), false);
  for (unsigned v = 0; v < noisy.vn(); ++v) EXPECT_EQ(noisy.vPos(v), before.vPos(v));
  double movedSmooth = 0, movedPlain = 0;
  for (unsigned v = 0; v < noisy.vn(); ++v) {
    movedSmooth += (test.getModel(0).mesh.vPos(v) - noisy.vPos(v)).norm();
    movedPlain += (test.getModel(1).mesh.vPos(v) - noisy.vPos(v)).norm();
  }
  EXPECT_GT(movedSmooth, 1.0);
  EXPECT_EQ(movedPlain, 0.0);
  EXPECT_EQ(test.getModel(0).mesh.checkInvariants(), "");
  EXPECT_TRUE(test.test(nullptr, 24));
  EXPECT_TRUE(test.getModel(0).intersects);

  solidIntersection one;
  one.addModelToTest(noisy, m4::IDENTITY(), false);
  EXPECT_FALSE(one.test(nullptr, 24));
}

}  // namespace
