#include <gtest/gtest.h>

#include "jev3d/mesh/editMesh.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;

TEST(editMeshRegression, computeEdgesDoubledWireEdgesOfAMeshWithoutFaces) {
  editMesh m;
  const unsigned a = m.addVertex(0.f, 0.f, 0.f), b = m.addVertex(1.f, 0.f, 0.f);
  m.addEdge(a, b);
  ASSERT_TRUE(m.computeEdges(true));
  m.computeVE();
  EXPECT_EQ(m.en(), 1u);
  EXPECT_EQ(m.countWireEdges(), 1u);
  EXPECT_MESH_VALID(m);
}
