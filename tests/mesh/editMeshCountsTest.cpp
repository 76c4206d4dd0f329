// Counts, ids and selection that callers read after the topology operations: how far FV
// grows, what delFvn counts, which flags survive.

#include <gtest/gtest.h>

#include <limits>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
#include "support/meshes.h"
#include "support/tempDir.h"

using JEV::MESH::editMesh;
using namespace testMeshes;
using namespace topologyChecks;

TEST(editMeshSubdivisionCounts, facesAreRewrittenWithTheFaceMakers) {
  // Each face of k corners is written anew by makeQuadFace (its k corners left dead) and
  // k - 1 new faces append their four corners each: FV keeps everything it held.
  editMesh m;
  m.makeCube();
  ASSERT_EQ(m.fvn(), 24u);
  ASSERT_EQ(m.getDelFvn(), 0u);
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fn(), 24u);
  EXPECT_EQ(m.fvn(), 24u + 24u * 4u);
  EXPECT_EQ(m.getDelFvn(), 24u);
  // face 0 keeps its id and takes the first quad; the others follow at the end
  EXPECT_EQ(m.F2FVBASE(0), 24u);
  EXPECT_EQ(m.F2FVBASE(6), 24u + 4u);

  m.refine();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fn(), 96u);
  EXPECT_EQ(m.fvn(), 120u + 96u * 4u);
  EXPECT_EQ(m.getDelFvn(), 24u + 96u);

  editMesh t;
  t.addVertex(0.f, 0.f, 0.f);
  t.addVertex(1.f, 0.f, 0.f);
  t.addVertex(0.f, 1.f, 0.f);
  t.addTriFace(0, 1, 2);
  finishMesh(t);
  t.midpointTriangulate();
  ASSERT_MESH_VALID(t);
  EXPECT_EQ(t.fn(), 4u);
  EXPECT_EQ(t.fvn(), 3u + 4u * 3u);  // makeTriFace for each of the four
  EXPECT_EQ(t.getDelFvn(), 3u);
}

TEST(editMeshSubdivisionCounts, selectedStepRewritesTheNeighboursOnSplitEdges) {
  // 2x1 strip, face 0 selected: it becomes 4 quads; face 1 takes the point on the shared
  // edge as a fifth corner through makePolyFace.
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  m.selectFace(0);
  const unsigned fvn = m.fvn();
  m.refineSelected();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fVNum(1), 5u);
  EXPECT_EQ(m.fvn(), fvn + 4u * 4u + 5u);
  EXPECT_EQ(m.getDelFvn(), 4u + 4u);
  EXPECT_EQ(m.getSelFn(), 4u);
  EXPECT_FALSE(m.isFaceSelected(1));
}

TEST(editMeshCatmullClark, everyBoundaryVertexTakesTheBoundaryRule) {
  // Two unit squares touching at vertex 2 only: four border edges meet there.
  editMesh m;
  for (const p3& p :
       {p3(0, 0, 0), p3(1, 0, 0), p3(1, 1, 0), p3(0, 1, 0), p3(2, 1, 0), p3(2, 2, 0), p3(1, 2, 0)})
    m.addVertex(p);
  m.addQuadFace(0, 1, 2, 3);
  m.addQuadFace(2, 4, 5, 6);
  finishMesh(m);
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  // 0.75 of itself plus 0.125 of each of its four border neighbours (1, 3, 4, 6)
  EXPECT_TRUE(near(m.vPos(2), p3(1.25f, 1.25f, 0.f))) << m.vPos(2).x << " " << m.vPos(2).y;
  // an ordinary border corner: 0.75 (0, 0) + 0.125 ((1, 0) + (0, 1))
  EXPECT_TRUE(near(m.vPos(0), p3(0.125f, 0.125f, 0.f)));
}

TEST(editMeshCatmullClark, onlyFacesAreReselected) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  m.selectVert(8);  // a vertex on its own
  m.selectFace(0);
  m.catmullClarkSubdivideVE();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.getSelFn(), 4u);
  EXPECT_FALSE(m.isVertSelected(8));
  EXPECT_EQ(m.getSelVn(), 9u);  // the corners of face 0's four quads
}

TEST(editMeshTriangulateCounts, swapsInFreshStores) {
  editMesh m;
  m.makeCube();
  m.catmullClarkSubdivideVE();
  m.triangulate();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fn(), 48u);
  EXPECT_EQ(m.fvn(), 48u * 3u);
  EXPECT_EQ(m.getDelFvn(), 0u);
}

TEST(editMeshPrimitiveCounts, cubeReusesTheStoresInPlace) {
  editMesh m;
  makeGrid(m, 2, 2);  // 9 vertices, 4 quads, 16 corners
  finishMesh(m);
  m.deleteFace(3);
  m.addAuxFloatData("weight");
  m.makeCube();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), 8u);
  EXPECT_EQ(m.fn(), 6u);
  EXPECT_EQ(liveFaces(m), 6u);  // the reused face 3 is not deleted any more
  EXPECT_EQ(m.getDelFn(), 0u);
  // FV is not cleared: the six quads are appended, and makeQuadFace counts the corners
  // the reused faces 0..3 held as dead
  EXPECT_EQ(m.fvn(), 16u + 24u);
  EXPECT_EQ(m.getDelFvn(), 4u + 16u);
  EXPECT_EQ(m.auxFloatDataNum(), 1u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), 8.0, 1e-5);
}

TEST(editMeshFlagStores, followTheElementCounts) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  m.vertFlags().resize(40, 0);
  m.edgeFlags().resize(2);
  m.faceFlags().resize(30, 0);
  m.checkMeshState();
  EXPECT_EQ(m.vertFlags().size(), m.vn());
  EXPECT_EQ(m.edgeFlags().size(), m.en());
  EXPECT_EQ(m.faceFlags().size(), m.fn());
  m.resizeVertexData(5);
  m.computeVertexFlags();
  EXPECT_EQ(m.vertFlags().size(), 5u);
  m.resizeFaceData(1);
  m.computeFaceFlags();
  EXPECT_EQ(m.faceFlags().size(), 1u);
}

TEST(editMeshFlattenCounts, aFaceWithoutCornersCountsAsTheLargestFloat) {
  editMesh m;
  makeGrid(m, 1, 1);
  const unsigned empty = m.addFace();
  finishMesh(m);
  m.vPos(2).z = 1.f;
  m.flatten({0, empty}, p3(0.f, 0.f, 1.f));
  // the reference point is the mean of (0.5, 0.5, 0.25) and the largest float on each
  // axis: the face is pushed to its z
  const float z = 0.5f * (0.25f + std::numeric_limits<float>::max());
  for (unsigned v = 0; v < 4; ++v) EXPECT_FLOAT_EQ(m.vPos(v).z, z) << v;
}

TEST(editMeshRenderRequests, areRaisedUnlessTheGuardReadsTrue) {
  editMesh m;
  m.needDiscardRenderChunks();
  m.needDeleteRenderChunks();
  EXPECT_TRUE(m.renderChunksDiscardPending);
  EXPECT_TRUE(m.renderChunksDeletePending);
  editMesh guarded;
  guarded.discardGuard = true;
  guarded.needDiscardRenderChunks();
  guarded.needDeleteRenderChunks();
  EXPECT_FALSE(guarded.renderChunksDiscardPending);
  EXPECT_FALSE(guarded.renderChunksDeletePending);
}

TEST(editMeshSaveToPly, writesTheLiveFacesAndVertices) {
  editMesh m;
  makeGrid(m, 2, 2);
  m.addVertex(9.f, 9.f, 9.f);
  finishMesh(m);
  m.deleteFace(0);
  m.deleteVertex(9);
  m.setHasVC(true);
  m.vCol(4) = JEV::CORE::color::fromU32(0xFF0000FFu);
  tempDir dir;
  for (bool binary : {true, false}) {
    const std::string path = dir.file(binary ? "grid.ply" : "grid-ascii.ply");
    ASSERT_TRUE(m.saveMeshToPly(path, binary));
    JEV::IO::PLY::plyPolygonMesh back;
    ASSERT_TRUE(JEV::IO::PLY::ioPly::readPlyPolygonsFromFile(path, back));
    EXPECT_EQ(back.positions.size(), 9u);
    EXPECT_EQ(back.cornerCounts, (std::vector<unsigned>{4, 4, 4}));
    ASSERT_EQ(back.corners.size(), 12u);
    for (unsigned i = 0; i < 4; ++i) EXPECT_EQ(back.corners[i], m.fV(1, i));
    ASSERT_EQ(back.colours.size(), 9u);
    EXPECT_EQ(back.colours[4], m.vCol(4));
    EXPECT_EQ(back.normals.size(), 9u);
  }
  EXPECT_FALSE(m.saveMeshToPly(dir.file("missing/dir/grid.ply")));
}
