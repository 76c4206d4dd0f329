#include <gtest/gtest.h>

#include <algorithm>

#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

using JEV::MESH::editMesh;
using namespace testMeshes;
using namespace topologyChecks;

namespace {

// The vertex at p, or vn() when there is none.
unsigned vertexAt(const editMesh& m, const p3& p) {
  for (unsigned v = 0; v < m.vn(); ++v)
    if (!m.isVertDeleted(v) && near(m.vPos(v), p)) return v;
  return m.vn();
}

bool allQuads(const editMesh& m) {
  for (unsigned f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f) && m.fVNum(f) != 4) return false;
  return true;
}

}  // namespace

TEST(editMeshCatmullClark, cubeGivesTwentyFourQuadsAtTheKnownPoints) {
  editMesh m;
  m.makeCube();
  m.selectFace(0);
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 24u);
  EXPECT_TRUE(allQuads(m));
  EXPECT_EQ(m.vn(), 26u);
  EXPECT_EQ(liveEdges(m), 48u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_GT(signedVolume(m), 0.0);
  EXPECT_LT(signedVolume(m), 8.0);
  // corners go to 5/9 of the way out, edge points to (3/4, 3/4, 0), face points stay
  const float c = 5.f / 9.f;
  for (unsigned k = 0; k < 8; ++k) {
    const p3 expected(k & 1 ? c : -c, k & 2 ? c : -c, k & 4 ? c : -c);
    EXPECT_TRUE(near(m.vPos(k), expected)) << "corner " << k;
  }
  EXPECT_LT(vertexAt(m, p3(0.75f, 0.75f, 0.f)), m.vn());
  EXPECT_LT(vertexAt(m, p3(-0.75f, 0.f, 0.75f)), m.vn());
  EXPECT_LT(vertexAt(m, p3(0.f, 0.f, 1.f)), m.vn());
  EXPECT_LT(vertexAt(m, p3(0.f, -1.f, 0.f)), m.vn());
  // the selected face's four quads stay selected
  EXPECT_EQ(m.getSelFn(), 4u);
  EXPECT_EQ(m.getSelVn(), 9u);

  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 96u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_EQ(m.getSelFn(), 16u);
}

TEST(editMeshCatmullClark, openBordersFollowTheCurveRule) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 16u);
  // a corner moves a quarter of the way toward its two border neighbours' midpoint
  EXPECT_TRUE(near(m.vPos(0), p3(0.125f, 0.125f, 0.f)));
  EXPECT_TRUE(near(m.vPos(1), p3(1.f, 0.f, 0.f)));  // a straight border stays straight
  EXPECT_TRUE(near(m.vPos(4), p3(1.f, 1.f, 0.f)));  // symmetric interior vertex
  EXPECT_EQ(borderEdges(m), 16u);
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(editMeshCatmullClark, polygonsAndTrianglesBecomeQuads) {
  editMesh m;
  m.makeTetrahedron();
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 12u);
  EXPECT_TRUE(allQuads(m));
  EXPECT_TRUE(closedAndOriented(m));
  m.makeDodecahedron();
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 60u);
  EXPECT_TRUE(closedAndOriented(m));
}

TEST(editMeshCatmullClark, wireEdgesAreKeptOnRequest) {
  editMesh m;
  makeGrid(m, 1, 1);
  const unsigned a = m.addVertex(5.f, 5.f, 0.f), b = m.addVertex(6.f, 5.f, 0.f);
  m.addEdge(a, b);
  finishMesh(m);
  m.catmullClarkSubdivideVE(true);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.countWireEdges(), 1u);
  m.catmullClarkSubdivideVE(false);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.countWireEdges(), 0u);
}

TEST(editMeshCatmullClark, selectedFacesOnlyLeaveTheRestInPlace) {
  editMesh m;
  makeGrid(m, 3, 3);
  finishMesh(m);
  m.selectFace(4);  // the centre cell
  m.catmullClarkSubdivideSelected();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 12u);
  EXPECT_EQ(m.getSelFn(), 4u);
  // nothing outside the selection moved, its border vertices included
  for (unsigned v = 0; v < 16; ++v)
    EXPECT_TRUE(near(m.vPos(v), p3(float(v % 4), float(v / 4), 0.f))) << v;
  // the four neighbours took the border edge points: no crack
  unsigned pentagons = 0;
  for (unsigned f = 0; f < m.fn(); ++f) pentagons += m.fVNum(f) == 5;
  EXPECT_EQ(pentagons, 4u);
  EXPECT_EQ(borderEdges(m), 12u);
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(editMeshCatmullClark, updateFromMovedBaseMatchesAFreshStep) {
  editMesh base;
  base.makeCube();
  editMesh live;
  live.clone(&base);
  live.catmullClarkSubdivideVE();
  base.vPos(7) = p3(2.f, 2.f, 2.f);
  live.updateCatmullClarkFromMesh(&base);
  ASSERT_MESH_VALID(live);
  editMesh fresh;
  fresh.clone(&base);
  fresh.catmullClarkSubdivideVE();
  ASSERT_EQ(fresh.vn(), live.vn());
  for (unsigned v = 0; v < live.vn(); ++v) EXPECT_TRUE(near(live.vPos(v), fresh.vPos(v))) << v;
  // a base of another shape leaves it alone
  editMesh other;
  other.makeTetrahedron();
  const p3 before = live.vPos(0);
  live.updateCatmullClarkFromMesh(&other);
  EXPECT_TRUE(near(live.vPos(0), before));
}

TEST(editMeshRefine, splitsWithoutMovingAndKeepsTheSelection) {
  editMesh m;
  m.makeCube();
  const double volume = signedVolume(m);
  m.selectFace(2);
  m.refine();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 24u);
  EXPECT_TRUE(allQuads(m));
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), volume, 1e-5);
  EXPECT_LT(vertexAt(m, p3(1.f, 1.f, 0.f)), m.vn());
  EXPECT_EQ(m.getSelFn(), 4u);
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (!m.isFaceSelected(f)) continue;
    for (unsigned i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(m.vPos(m.fV(f, i)).y, -1.f);
  }

  m.refineSelected();  // only the four selected quads split again
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.getSelFn(), 16u);
  EXPECT_NEAR(signedVolume(m), volume, 1e-5);
  EXPECT_EQ(borderEdges(m), 0u);
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(editMeshMidpointTriangulate, splitsTrianglesInFourAndPolygonsAroundACentre) {
  editMesh m;
  m.makeTetrahedron();
  const double volume = signedVolume(m);
  m.midpointTriangulate();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 16u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), volume, 1e-5);

  m.makeCube();
  m.midpointTriangulate(false, true);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 48u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), 8.0, 1e-5);

  m.makeCube();
  m.midpointTriangulate(false, false);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 36u);
  EXPECT_EQ(m.vn(), 20u);
  EXPECT_TRUE(closedAndOriented(m));
}

TEST(editMeshMidpointTriangulate, selectedOnlyKeepsNeighboursJoined) {
  editMesh m;
  makeGrid(m, 2, 1, false);  // four triangles
  finishMesh(m);
  m.selectFace(0);
  m.midpointTriangulate(true, true);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.getSelFn(), 4u);
  EXPECT_EQ(liveFaces(m), 7u);
  EXPECT_NEAR(totalArea(m), 2.0, 1e-5);
  EXPECT_EQ(borderEdges(m), 7u);  // the six border sides, one of them cut in half
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(editMeshTriangulate, fansFromCornerZero) {
  editMesh m;
  const unsigned b = m.vn();
  for (unsigned k = 0; k < 5; ++k) m.addVertex(std::cos(1.2566f * k), std::sin(1.2566f * k), 0.f);
  const unsigned tri = m.addTriFace(b, b + 1, b + 2);
  const unsigned pentagon = m.addPolyFace({b, b + 1, b + 2, b + 3, b + 4});
  makeGrid(m, 1, 1);  // a quad on vertices 5..8
  const unsigned two[2] = {b, b + 1};
  m.addFace(two, 2);
  const unsigned gone = m.addTriFace(b, b + 2, b + 4);
  finishMesh(m);
  m.selectFace(pentagon);
  m.deleteFace(gone);
  const double before = area(m, tri) + area(m, pentagon) + 1.0;
  m.triangulate();
  ASSERT_MESH_VALID(m);
  ASSERT_EQ(m.fn(), 1u + 3u + 2u);
  EXPECT_EQ(m.getDelFn(), 0u);
  EXPECT_EQ(m.getDelFvn(), 0u);
  // the triangle as it was, then the pentagon's fan, then the quad's two triangles
  const unsigned expected[6][3] = {{0, 1, 2}, {0, 1, 2}, {0, 2, 3},
                                   {0, 3, 4}, {5, 6, 8}, {5, 8, 7}};
  for (unsigned f = 0; f < 6; ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(m.fV(f, i), expected[f][i]) << f << " " << i;
  EXPECT_NEAR(totalArea(m), before, 1e-5);
  EXPECT_EQ(m.getSelFn(), 3u);
  for (unsigned f = 1; f < 4; ++f) EXPECT_TRUE(m.isFaceSelected(f));

  m.makeTorus(12, 8, 2.f, 0.5f);
  const double volume = signedVolume(m);
  m.triangulate();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 12u * 8u * 2u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), volume, 1e-4);
}

TEST(editMeshTopologyProgress, longStepsReportFromOneToAHundred) {
  editMesh m;
  m.makeTorus(8, 6, 2.f, 0.5f);
  recordingCallBack cc, refined, midpoint, triangles;
  m.catmullClarkSubdivideVE(true, &cc);
  m.refine(true, &refined);
  m.midpointTriangulate(false, true, &midpoint);
  m.triangulate(&triangles);
  EXPECT_MESH_VALID(m);
  for (const std::vector<float>& values :
       {cc.values, refined.values, midpoint.values, triangles.values}) {
    ASSERT_GE(values.size(), 3u);
    EXPECT_EQ(values.front(), 1.0f);
    EXPECT_EQ(values.back(), 100.0f);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
  }
}
