#include <gtest/gtest.h>

#include "jev3d/mesh/editMesh.h"
#include "support/meshes.h"

namespace {

using JEV::MESH::editMesh;
using testMeshes::p3;

// 2 x 2 quads with the middle vertex 4 lifted and moved off its place.
editMesh liftedGrid() {
  editMesh m;
  testMeshes::makeGrid(m, 2, 2);
  m.vPos(4) = p3(1.3f, 0.8f, 0.5f);
  testMeshes::finishMesh(m);
  return m;
}

TEST(editMeshSmoothTest, InteriorGoesToTheMeanOfItsNeighboursAndTheBorderStays) {
  editMesh m = liftedGrid();
  m.computeBBox();
  m.smooth(false);
  EXPECT_NEAR(m.vPos(4).x, 1.f, 1e-6f);
  EXPECT_NEAR(m.vPos(4).y, 1.f, 1e-6f);
  EXPECT_EQ(m.vPos(4).z, 0.f);
  EXPECT_EQ(m.vPos(1).z, 0.f);
  EXPECT_EQ(m.vPos(0).x, 0.f);
  EXPECT_TRUE(m.isBBoxDirty());
  EXPECT_MESH_VALID(m);
}

TEST(editMeshSmoothTest, StepReadsOldPositionsOnly) {
  // A closed sphere pins nothing: every vertex must land on the umbrella of a copy.
  editMesh m;
  testMeshes::makeSphere(m, 6, 8);
  testMeshes::finishMesh(m);
  m.vPos(0) = p3(0.f, 0.f, 2.f);
  const editMesh old = m;
  m.smooth(false);
  for (unsigned v = 0; v < m.vn(); ++v) {
    p3 sum;
    for (unsigned i = 0; i < old.vENum(v); ++i) {
      const unsigned e = old.vE(v, i);
      sum += old.vPos(old.eV(e, 0) == v ? old.eV(e, 1) : old.eV(e, 0));
    }
    const p3 want = sum / float(old.vENum(v));
    EXPECT_NEAR((m.vPos(v) - want).norm(), 0.f, 1e-6f) << v;
  }
}

TEST(editMeshSmoothTest, SelectedOnlyMovesTheSelection) {
  editMesh m;
  testMeshes::makeSphere(m, 6, 8);
  testMeshes::finishMesh(m);
  const p3 before2 = m.vPos(2);
  m.vPos(1) *= 1.5f;
  const p3 lifted = m.vPos(1);
  m.selectVert(2);
  m.smooth(true);
  EXPECT_EQ(m.vPos(1).x, lifted.x);
  EXPECT_NE(m.vPos(2).x, before2.x);
}

TEST(editMeshSmoothTest, NothingMovesWithoutEdges) {
  editMesh m = liftedGrid();
  m.invalidateVE();
  m.smooth(false);
  EXPECT_EQ(m.vPos(4).x, 1.3f);
}

}  // namespace
