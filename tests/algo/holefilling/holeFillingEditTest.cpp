// The editing path of hole filling, on the editable mesh.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "jev3d/algo/holefilling/holeFilling.h"
#include "orientation.h"
#include "support/meshes.h"

using namespace JEV::MESH;
using namespace JEV::MESH::ALGO;
using namespace JEV::MESH::ALGO::HOLEFILLING;
using testMeshes::p3;

namespace {

// A 6 x 6 grid of quads with a one-cell hole, a two-cell hole and its outer border.
void holedGrid(editMesh& m) {
  testMeshes::makeGrid(m, 6, 6, true, {{1, 1}, {3, 3}, {4, 3}});
  testMeshes::finishMesh(m);
}

}  // namespace

TEST(HoleFillingEdit, LoopsComeOutReadyForClosingFaces) {
  editMesh m;
  holedGrid(m);
  loopList loops;
  ASSERT_TRUE(trivialHoleFilling(m, loops));
  ASSERT_EQ(loops.size(), 3u);
  for (auto loop : loops) {
    // Already in the closing order: the check keeps it as it is.
    const auto before = loop;
    EXPECT_EQ(checkStartingLoopOrientation(m, loop), HOLE_FILLING_DONE);
    EXPECT_EQ(loop, before);
    // The other way round is turned back.
    std::vector<unsigned> reversed(before.rbegin(), before.rend());
    EXPECT_EQ(checkStartingLoopOrientation(m, reversed), HOLE_FILLING_DONE);
    EXPECT_EQ(reversed, before);
  }
  std::vector<unsigned> one{3}, apart{0, 14};
  EXPECT_EQ(checkStartingLoopOrientation(m, one), HOLE_FILLING_BAD_LOOP);
  EXPECT_EQ(checkStartingLoopOrientation(m, apart), HOLE_FILLING_BAD_LOOP);
}

TEST(HoleFillingEdit, PolygonFacesCloseTheChosenLoops) {
  editMesh m;
  holedGrid(m);
  loopList loops;
  ASSERT_TRUE(trivialHoleFilling(m, loops));
  const unsigned faces = m.fn();
  // Only the loop through vertex (1, 1).
  EXPECT_EQ(addPolyFacesContaining(m, loops, {1 * 7 + 1}), 1u);
  EXPECT_EQ(m.fn(), faces + 1);
  EXPECT_EQ(m.fVNum(faces), 4u);
  EXPECT_EQ(m.checkInvariants(), "");
  EXPECT_TRUE(consistentlyOriented(m));
  ASSERT_TRUE(trivialHoleFilling(m, loops));
  ASSERT_EQ(loops.size(), 2u);
  // Every loop but the outer border (which holds vertex 0).
  EXPECT_EQ(addPolyFacesNotContaining(m, loops, {0}), 1u);
  EXPECT_EQ(m.checkInvariants(), "");
  EXPECT_TRUE(consistentlyOriented(m));
  ASSERT_TRUE(trivialHoleFilling(m, loops));
  EXPECT_EQ(loops.size(), 1u);
  EXPECT_EQ(addPolyFaces(m, loops), 1u);
  EXPECT_EQ(testMeshes::borderEdges(m), 0u);
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(HoleFillingEdit, DiscardsKeepTheSlotsAndTheGreatestLoopIsTheFirstOfEquals) {
  loopList loops{{1, 2, 3}, {4, 5, 6, 7}, {8, 9, 10, 11}, {}};
  EXPECT_EQ(getGreatestLoop(loops), (std::vector<unsigned>{4, 5, 6, 7}));
  EXPECT_TRUE(getGreatestLoop({}).empty());
  loopList a = loops;
  EXPECT_EQ(discardPolyFacesGreaterThan(a, 3), 2u);
  EXPECT_EQ(a.size(), 4u);
  EXPECT_TRUE(a[1].empty() && a[2].empty());
  EXPECT_EQ(a[0].size(), 3u);
  loopList b = loops;
  EXPECT_EQ(discardLoopsContaining(b, {2, 9}), 2u);
  EXPECT_TRUE(b[0].empty() && b[2].empty());
  EXPECT_EQ(b[1].size(), 4u);
  loopList c = loops;
  EXPECT_EQ(discardLoopsNotContaining(c, {2, 9}), 1u);
  EXPECT_TRUE(c[1].empty());
  EXPECT_EQ(c[0].size(), 3u);
}

TEST(HoleFillingEdit, FansUseOneCentreAndATriangleLoopUsesNone) {
  std::vector<JEV::MATH::point3<int>> faces;
  unsigned next = 100;
  triangulateFan({1, 2, 3}, next, faces);
  EXPECT_EQ(next, 100u);
  ASSERT_EQ(faces.size(), 1u);
  EXPECT_EQ(faces[0], JEV::MATH::point3<int>(1, 2, 3));
  triangulateFan({4, 5, 6, 7, 8}, next, faces);
  EXPECT_EQ(next, 101u);
  ASSERT_EQ(faces.size(), 6u);
  for (size_t i = 1; i < faces.size(); ++i) EXPECT_EQ(faces[i].z, 100);
  triangulateFan({4, 5}, next, faces);
  EXPECT_EQ(faces.size(), 6u);
}

TEST(HoleFillingEdit, TriangulateHoleClosesEveryLoopAndKeepsTheRim) {
  editMesh m;
  holedGrid(m);
  std::vector<p3> before;
  for (unsigned v = 0; v < m.vn(); ++v) before.push_back(m.vPos(v));
  computeHoleFillingParams params;
  EXPECT_EQ(computeTriangulateHole(m, params), HOLE_FILLING_DONE);
  EXPECT_EQ(m.checkInvariants(), "");
  EXPECT_EQ(testMeshes::borderEdges(m), 0u);
  EXPECT_TRUE(consistentlyOriented(m));
  for (unsigned v = 0; v < before.size(); ++v)
    EXPECT_EQ(std::memcmp(&m.vPos(v), &before[v], sizeof(p3)), 0);
  // Three fans, one centre each, at the barycentres of their loops.
  ASSERT_EQ(m.vn(), before.size() + 3);
  EXPECT_NEAR(m.vPos(unsigned(before.size())).z, 0.f, 1e-6f);
}

TEST(HoleFillingEdit, TheLoopChoiceFillsOnlyTheListedLoops) {
  editMesh m;
  holedGrid(m);
  computeHoleFillingParams params;
  params.loopChoice = 1;
  params.fillVertices = {1 * 7 + 1};
  const unsigned faces = m.fn();
  EXPECT_EQ(computeTriangulateHole(m, params), HOLE_FILLING_DONE);
  EXPECT_EQ(m.fn(), faces + 4);
  EXPECT_EQ(m.checkInvariants(), "");
  loopList loops;
  ASSERT_TRUE(trivialHoleFilling(m, loops));
  EXPECT_EQ(loops.size(), 2u);
}
