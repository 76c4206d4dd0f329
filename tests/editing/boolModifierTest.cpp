#include "jev3d/editing/modifier/boolModifier_impl.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <utility>

#include "support/meshes.h"

using JEV::MESH::editMesh;
using JEV::MESH::dataExchange::editMeshNode;
using JEV::MESH::dataExchange::fromEditMesh;
using JEV::MESH::dataExchange::toEditMesh;
using JEV::MESH::EDITING::MODIFIER::boolModifier_impl;
using p3 = JEV::MATH::point3<float>;

namespace {

void translate(editMesh& m, const p3& d) {
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) = m.vPos(v) + d;
}

// Every edge of the live faces is used exactly twice, once in each direction: closed and
// consistently oriented.
bool closedAndOriented(const editMesh& m) {
  std::map<std::pair<unsigned, unsigned>, int> used;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned n = m.fVNum(f);
    for (unsigned i = 0; i < n; ++i) ++used[{m.fV(f, i), m.fV(f, (i + 1) % n)}];
  }
  for (const auto& [e, count] : used)
    if (count != 1 || used.count({e.second, e.first}) == 0) return false;
  return !used.empty();
}

bool intersect(const editMesh& a, const editMesh& b, editMesh& out) {
  editMeshNode ea, eb, er;
  fromEditMesh(a, ea);
  fromEditMesh(b, eb);
  if (!boolModifier_impl<editMeshNode>().and_(ea, eb, er)) return false;
  return toEditMesh(er, out);
}

}  // namespace

TEST(boolModifier, overlappingCubesGiveTheirExactCommonBox) {
  editMesh a, b, out;
  testMeshes::makeCube(a);
  testMeshes::makeCube(b);
  translate(b, p3(0.5f, 0.25f, -0.5f));
  ASSERT_TRUE(intersect(a, b, out));
  EXPECT_MESH_VALID(out);
  EXPECT_TRUE(closedAndOriented(out));
  EXPECT_EQ(testMeshes::borderEdges(out), 0u);
  // [0.5, 1] x [0.25, 1] x [0, 0.5]
  EXPECT_NEAR(testMeshes::signedVolume(out), 0.5 * 0.75 * 0.5, 1e-6);
  out.computeBBox();
  EXPECT_FLOAT_EQ(out.getBBoxMin().x, 0.5f);
  EXPECT_FLOAT_EQ(out.getBBoxMin().y, 0.25f);
  EXPECT_FLOAT_EQ(out.getBBoxMax().z, 0.5f);
}

TEST(boolModifier, twoSpheresGiveAClosedOrientedLens) {
  editMesh a, b, out;
  testMeshes::makeSphere(a, 16, 24);
  testMeshes::makeSphere(b, 16, 24);
  translate(b, p3(1.f, 0.1f, 0.05f));
  const double va = testMeshes::signedVolume(a);
  ASSERT_GT(va, 0.0);
  ASSERT_TRUE(intersect(a, b, out));
  EXPECT_MESH_VALID(out);
  EXPECT_TRUE(closedAndOriented(out));
  const double v = testMeshes::signedVolume(out);
  // A lens of two unit balls about 1 apart holds about 0.4 of one ball.
  EXPECT_GT(v, 0.2 * va);
  EXPECT_LT(v, 0.6 * va);
}

TEST(boolModifier, disjointMeshesGiveAnEmptyResult) {
  editMesh a, b, out;
  testMeshes::makeCube(a);
  testMeshes::makeCube(b);
  translate(b, p3(3.f, 0.f, 0.f));
  ASSERT_TRUE(intersect(a, b, out));
  EXPECT_EQ(testMeshes::liveFaces(out), 0u);
}

TEST(boolModifier, openSelfIntersectingOrEmptyInputIsRefused) {
  editMesh cube, open, crossed;
  testMeshes::makeCube(cube);
  testMeshes::makeOpenCone(open, 12);
  // Two cubes through each other in one mesh: closed, but intersecting itself.
  testMeshes::makeCube(crossed);
  testMeshes::makeCube(crossed);
  for (unsigned v = 8; v < 16; ++v) crossed.vPos(v) = crossed.vPos(v) + p3(0.5f, 0.5f, 0.5f);
  testMeshes::finishMesh(crossed);

  editMeshNode ea, eb, er;
  const boolModifier_impl<editMeshNode> boolean;
  fromEditMesh(cube, ea);
  fromEditMesh(open, eb);
  er.fFunc()->addFace(std::array<unsigned, 3>{0, 1, 2}.data(), 3, false);
  EXPECT_FALSE(boolean.and_(ea, eb, er));
  EXPECT_EQ(er.fn(), 0u);  // the result is left empty
  fromEditMesh(crossed, eb);
  EXPECT_FALSE(boolean.and_(ea, eb, er));
  editMeshNode empty;
  EXPECT_FALSE(boolean.and_(empty, ea, er));
  // A corner naming a vertex the record does not have.
  editMeshNode broken;
  fromEditMesh(cube, broken);
  broken.corners[3] = 99;
  EXPECT_FALSE(boolean.and_(broken, ea, er));
}

TEST(dataExchange, recordsCarryFacesAndCornersBothWays) {
  editMesh m, back;
  testMeshes::makeGrid(m, 2, 2, true);
  m.addTriFace(0, 1, 4);
  testMeshes::finishMesh(m);
  m.deleteFace(1);
  editMeshNode e;
  fromEditMesh(m, e);
  EXPECT_EQ(e.fn(), 4u);
  EXPECT_EQ(e.fFunc()->cornerCount(), 3u * 4u + 3u);
  EXPECT_EQ(e.f2vNum(3), 3u);
  EXPECT_EQ(e.faces[3].first, 12u);
  ASSERT_TRUE(toEditMesh(e, back));
  EXPECT_MESH_VALID(back);
  EXPECT_EQ(back.fn(), 4u);
  EXPECT_NEAR(testMeshes::signedVolume(back), 0.0, 1e-9);
  JEV::MESH::dataExchange::triMesh t;
  unsigned quad[4] = {0, 1, 2, 3}, tri[3] = {0, 1, 2};
  EXPECT_EQ(t.fFunc()->addFace(quad, 4, false), -1);
  EXPECT_EQ(t.fFunc()->addFace(tri, 3, false), 0);
  EXPECT_EQ(t.fFunc()->faceCount(), 1u);
}
