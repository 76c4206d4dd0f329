// The neutral mesh interface over an editMesh: border marks and copies between meshes.

#include <gtest/gtest.h>

#include "jev3d/mesh/editMeshInterface.h"
#include "support/meshes.h"

using JEV::MESH::editMeshInterface;
using namespace testMeshes;

TEST(meshInterface, BorderVerticesOfAGridWithAHole) {
  editMesh m;
  makeGrid(m, 4, 4, true, {{2, 2}});
  finishMesh(m);
  editMeshInterface view(m);
  std::vector<unsigned char> mask;
  view.markBorderVertex(mask);
  ASSERT_EQ(mask.size(), m.vn());
  unsigned marked = 0;
  for (unsigned char b : mask) marked += b;
  EXPECT_EQ(marked, 16u + 4u);  // the outer ring and the four corners of the hole
  EXPECT_EQ(mask[12], 1);       // (2, 2), a corner of the missing cell
  EXPECT_EQ(mask[6], 0);        // (1, 1), inside
}

TEST(meshInterface, CopyDropsDeletedElementsAndKeepsColours) {
  editMesh m;
  makeCube(m);
  addIsolatedVertices(m, 2);
  finishMesh(m);
  m.setHasVC(true);
  m.vCol(3) = JEV::CORE::color(10, 20, 30);
  m.deleteFace(0);
  m.deleteVertex(8);  // an isolated one
  editMesh out;
  editMeshInterface from(m), to(out);
  std::vector<unsigned> map;
  from.copyTo(to, map);
  EXPECT_EQ(out.vn(), 9u);
  EXPECT_EQ(map[8], 0xFFFFFFFFu);
  EXPECT_EQ(map[9], 8u);
  EXPECT_EQ(out.fn(), 5u);
  EXPECT_TRUE(out.hasVC());
  EXPECT_EQ(out.vCol(3), JEV::CORE::color(10, 20, 30));
  to.computeVertexFaceNormalizedNormals();
  EXPECT_NEAR(out.fNor(0).norm(), 1.f, 1e-6f);
  out.computeEVEF();
  out.computeVE();
  EXPECT_MESH_VALID(out);
  EXPECT_EQ(borderEdges(out), 4u);
}
