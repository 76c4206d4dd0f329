#include <gtest/gtest.h>

#include <string>

#include "jev3d/algo/remeshing/meshProjection.h"
#include "support/meshes.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;

namespace {
editMesh sphereAt(const p3& centre, unsigned rings = 32) {
  editMesh m;
  testMeshes::makeSphere(m, rings, 2 * rings);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) += centre;
  testMeshes::finishMesh(m);
  return m;
}
}  // namespace

TEST(projectGridOnMesh, gridDrapesTheUpperHalfOfASphere) {
  const editMesh s = sphereAt(p3());
  editMesh grid;
  ASSERT_TRUE(projectGridOnMesh(s, p3(0.f, 0.f, -2.f), 0.1f, grid));
  ASSERT_MESH_VALID(grid);
  // About the disk's area over a cell's.
  EXPECT_GT(grid.vn(), 250u);
  EXPECT_LT(grid.vn(), 330u);
  for (unsigned v = 0; v < grid.vn(); ++v) {
    EXPECT_GE(grid.vPos(v).z, 0.f);
    EXPECT_NEAR(grid.vPos(v).norm(), 1.f, 0.01f);
  }
  for (unsigned f = 0; f < grid.fn(); ++f) EXPECT_GT(grid.fNor(f).z, 0.f);  // towards the viewer
  EXPECT_GT(testMeshes::liveFaces(grid), 400u);

  EXPECT_FALSE(projectGridOnMesh(s, p3(), 0.1f, grid));
  EXPECT_EQ(grid.vn(), 0u);
  EXPECT_FALSE(projectGridOnMesh(s, p3(0.f, 0.f, 1.f), 0.f, grid));
  EXPECT_FALSE(projectGridOnMesh(s, p3(0.f, 0.f, 1.f), 1e-6f, grid));  // too many nodes
  EXPECT_FALSE(projectGridOnMesh(editMesh(), p3(0.f, 0.f, 1.f), 0.1f, grid));
}

TEST(intersectionsRemoval, verticesInsideTheOtherMoveOntoIt) {
  const editMesh a = sphereAt(p3()), b = sphereAt(p3(1.f, 0.f, 0.f));
  editMesh result;
  const unsigned moved = intersectionsRemoval(a, b, result);
  ASSERT_MESH_VALID(result);
  ASSERT_EQ(result.vn(), a.vn());
  EXPECT_GT(moved, 0u);
  unsigned changed = 0;
  for (unsigned v = 0; v < a.vn(); ++v) {
    if (result.vPos(v) == a.vPos(v)) continue;
    ++changed;
    EXPECT_LT((a.vPos(v) - p3(1.f, 0.f, 0.f)).norm(), 1.f);                // it was inside b
    EXPECT_NEAR((result.vPos(v) - p3(1.f, 0.f, 0.f)).norm(), 1.f, 0.01f);  // now on it
  }
  EXPECT_EQ(changed, moved);
  // On the surface already: nothing moves.
  EXPECT_EQ(intersectionsRemoval(a, a, result), 0u);
  editMesh same = a;
  EXPECT_EQ(intersectionsRemoval(same, b, same), moved);
}

TEST(stressTests, repeatedRebuildsLeaveTheConnectivityAsOne) {
  editMesh m;
  testMeshes::makeGrid(m, 8, 8, false);
  testMeshes::finishMesh(m);
  const unsigned edges = m.en();
  testing::internal::CaptureStdout();
  computeEVEFStressTest(m, 3);
  computeEVEFOptiStressTest(m, 2);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(out.find("computeEVEFStressTest 3 rounds in "), std::string::npos);
  EXPECT_NE(out.find("computeEVEFOptiStressTest 2 rounds in "), std::string::npos);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.en(), edges);
}
