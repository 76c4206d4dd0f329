// Whole-mesh and selection motions, winding reversal, flag replacement, the one-ring
// region and the edge collapse.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "jev3d/math/matrix4.h"
#include "support/meshes.h"

using JEV::MATH::matrix4;
using JEV::MESH::editMesh;
using namespace testMeshes;

TEST(editMeshMotion, TranslateMovesEveryLiveVertexAndKeepsVolume) {
  editMesh m;
  makeSphere(m, 8, 12);
  finishMesh(m);
  const double volume = signedVolume(m);
  m.selectFace(0);
  const p3 before = m.getSelVertSum();
  const unsigned sel = m.getSelVn();
  m.translate(p3(1, 2, 3));
  EXPECT_EQ(m.vPos(0), p3(1, 2, 4));  // the north pole
  EXPECT_NEAR(signedVolume(m), volume, 1e-4);
  EXPECT_NEAR((m.getSelVertSum() - before - p3(1, 2, 3) * float(sel)).norm(), 0.f, 1e-5f);
  EXPECT_TRUE(m.isBBoxDirty());
  EXPECT_MESH_VALID(m);
}

TEST(editMeshMotion, TransformScalesVolumeByTheDeterminantAndCarriesNormals) {
  editMesh m;
  makeSphere(m, 10, 16);
  finishMesh(m);
  const double volume = signedVolume(m);
  matrix4<float> s;
  s(0, 0) = 2.f;  // stretch x by 2, then move
  s(3, 0) = 5.f;
  m.transform(s);
  EXPECT_NEAR(signedVolume(m), 2.0 * volume, 1e-3);
  // The normal of a point of the ellipsoid x²/4 + y² + z² = 1 is (x/4, y, z), normalised.
  for (unsigned v = 0; v < m.vn(); ++v) {
    const p3 p = m.vPos(v) - p3(5, 0, 0);
    const p3 expected = p3(p.x / 4.f, p.y, p.z).getNormalized();
    const p3 got = m.vNor(v);
    EXPECT_NEAR(got.norm(), 1.f, 1e-5f);
    // Vertex normals were averages of facets, so only the general direction is exact.
    EXPECT_GT(got * expected, 0.95f) << v;
  }
  EXPECT_MESH_VALID(m);
}

TEST(editMeshMotion, SelectedVerticesMoveAloneAndSumsFollow) {
  editMesh m;
  makeGrid(m, 3, 3);
  finishMesh(m);
  m.selectFace(4);  // the middle quad: vertices 5, 6, 9, 10
  const p3 untouched = m.vPos(0);
  m.translateSelectedVertices(p3(0, 0, 1));
  EXPECT_EQ(m.vPos(5).z, 1.f);
  EXPECT_EQ(m.vPos(10).z, 1.f);
  EXPECT_EQ(m.vPos(0), untouched);
  matrix4<float> r;
  r.setRotateRad(3.14159265f / 2, 0.f, 0.f, 1.f);
  m.transformSelectedVertices(r);
  EXPECT_EQ(m.vPos(0), untouched);
  p3 sum;
  for (unsigned v : {5u, 6u, 9u, 10u}) sum += m.vPos(v);
  EXPECT_NEAR((m.getSelVertSum() - sum).norm(), 0.f, 1e-4f);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshWinding, ReverseFaceOrderTurnsTheVolumeAndKeepsEdges) {
  editMesh m;
  makeSphere(m, 6, 9);
  finishMesh(m);
  const double volume = signedVolume(m);
  const unsigned edges = m.en();
  m.selectEdge(3);
  const p3 n0 = m.fNor(0);
  m.reverseFaceOrder();
  EXPECT_NEAR(signedVolume(m), -volume, 1e-5);
  EXPECT_EQ(m.en(), edges);
  EXPECT_TRUE(m.isEdgeSelected(3));
  EXPECT_EQ(m.fNor(0), -n0);
  EXPECT_MESH_VALID(m);  // the EF corner names still point at the right sides
  m.reverseFaceOrder();
  EXPECT_NEAR(signedVolume(m), volume, 1e-5);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshFlags, ReplaceAllFaceFlagsFitsTheListToTheFaces) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  m.replaceAllFaceFlags({0x04, 0x00});
  ASSERT_EQ(m.faceFlags().size(), 4u);
  EXPECT_TRUE(m.isFaceSelected(0));
  EXPECT_FALSE(m.isFaceSelected(3));
  m.replaceAllFaceFlags(std::vector<unsigned char>(9, 0x04));
  EXPECT_EQ(m.faceFlags().size(), 4u);
  EXPECT_TRUE(m.isFaceSelected(3));
}

TEST(editMeshRegion, OneRingGrowsBySharedVertices) {
  editMesh m;
  makeGrid(m, 5, 5);
  finishMesh(m);
  std::vector<unsigned> ring;
  m.computeRegionOneRing({12}, ring);  // the centre cell: the 3x3 block around it
  EXPECT_EQ(ring, (std::vector<unsigned>{6, 7, 8, 11, 12, 13, 16, 17, 18}));
  m.computeRegionOneRing({0}, ring);
  EXPECT_EQ(ring, (std::vector<unsigned>{0, 1, 5, 6}));
  m.deleteFace(7);
  m.selectFace(12);
  m.selectRegionOneRing();
  EXPECT_EQ(m.getSelFn(), 8u);  // the deleted one stays out
  EXPECT_FALSE(m.isFaceSelected(7));
  EXPECT_MESH_VALID(m);
}

TEST(editMeshCollapse, InteriorEdgeOfATriangleGridLosesTwoFaces) {
  editMesh m;
  makeGrid(m, 4, 4, false);
  finishMesh(m);
  const unsigned a = 6, b = 7;  // two interior vertices joined by a grid edge
  const unsigned e = m.findSharedEdgeFromVertices(a, b);
  ASSERT_NE(e, m.getMaxValue());
  ASSERT_TRUE(m.canCollapseEdge(e));
  const unsigned live = liveFaces(m);
  ASSERT_TRUE(m.collapseEdge(e, p3(1.5f, 1, 0)));
  EXPECT_EQ(liveFaces(m), live - 2);
  EXPECT_TRUE(m.isVertDeleted(b));
  EXPECT_EQ(m.vPos(a), p3(1.5f, 1, 0));
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned i = 0; i < m.fVNum(f); ++i) EXPECT_NE(m.fV(f, i), b);
  }
  finishMesh(m);
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(borderEdges(m), 16u);  // the boundary is untouched
  // Still a disc: V - E + F = 1.
  unsigned liveV = 0;
  for (unsigned v = 0; v < m.vn(); ++v) liveV += !m.isVertDeleted(v);
  EXPECT_EQ(int(liveV) - int(liveEdges(m)) + int(liveFaces(m)), 1);
}

TEST(editMeshCollapse, RefusesWhatWouldPinchOrFold) {
  editMesh m;
  makeGrid(m, 1, 1, false);  // two triangles: 0 1 3, 0 3 2
  finishMesh(m);
  // The diagonal joins two border vertices across the inside: it would pinch.
  const unsigned diag = m.findSharedEdgeFromVertices(0, 3);
  EXPECT_FALSE(m.canCollapseEdge(diag));
  EXPECT_FALSE(m.collapseEdge(diag, p3()));
  EXPECT_EQ(liveFaces(m), 2u);
  // A tetrahedron: every edge has a third common neighbour beyond its two triangles.
  editMesh t;
  t.makeTetrahedron();
  t.checkMeshState();
  t.computeEVEF();
  t.computeVE();
  for (unsigned e = 0; e < t.en(); ++e) EXPECT_FALSE(t.canCollapseEdge(e));
  // A border edge of the grid collapses and takes one triangle.
  const unsigned border = m.findSharedEdgeFromVertices(0, 1);
  ASSERT_TRUE(m.collapseEdge(border, p3(0.5f, 0, 0)));
  EXPECT_EQ(liveFaces(m), 1u);
  finishMesh(m);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshCollapse, QuadOnTheEdgeBecomesATriangle) {
  editMesh m;
  makeGrid(m, 3, 3);  // interior vertices 5 6 9 10; quads 1 and 4 share the edge 5-6
  finishMesh(m);
  const unsigned e = m.findSharedEdgeFromVertices(5, 6);
  ASSERT_TRUE(m.collapseEdge(e, p3(1.5f, 1, 0)));
  EXPECT_EQ(m.fVNum(1), 3u);
  EXPECT_EQ(m.fVNum(4), 3u);
  EXPECT_EQ(liveFaces(m), 9u);
  finishMesh(m);
  EXPECT_MESH_VALID(m);
}
