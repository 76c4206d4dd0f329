#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using namespace testMeshes;
using namespace topologyChecks;

namespace {

// A hexagon (vertices 0..5) with a triangle on its side 0-1 (apex 6).
void makeHexagonWithEar(editMesh& m) {
  for (unsigned k = 0; k < 6; ++k) m.addVertex(std::cos(1.0472f * k), std::sin(1.0472f * k), 0.f);
  m.addVertex(1.f, -0.5f, 0.f);
  m.addPolyFace({0, 1, 2, 3, 4, 5});
  m.addTriFace(1, 0, 6);
  finishMesh(m);
}

}  // namespace

TEST(editMeshSplitFace, keepsTheLowRangeInPlaceAndCountsDeadCorners) {
  editMesh m;
  makeHexagonWithEar(m);
  const unsigned rim = m.findSharedEdgeFromVertices(2, 3);
  m.pinEdge(rim);
  m.selectFace(0);
  const unsigned base = m.F2FVBASE(0), fvn = m.fvn(), delFvn = m.getDelFvn(), en = m.en();

  const unsigned g = m.splitFace(0, 4, 1);  // corners 1 and 4, either order
  ASSERT_EQ(g, 2u);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.F2FVBASE(0), base);
  ASSERT_EQ(m.fVNum(0), 4u);
  for (unsigned i = 0; i < 4; ++i) EXPECT_EQ(m.fV(0, i), 1 + i);
  EXPECT_EQ(m.F2FVBASE(g), fvn);
  ASSERT_EQ(m.fVNum(g), 4u);
  const unsigned rest[4] = {4, 5, 0, 1};
  for (unsigned i = 0; i < 4; ++i) EXPECT_EQ(m.fV(g, i), rest[i]);
  EXPECT_EQ(m.fvn(), fvn + 6);
  EXPECT_EQ(m.getDelFvn(), delFvn + 4);
  // the adjacency was patched: the diagonal is a new edge, the pin is still there
  EXPECT_EQ(m.en(), en + 1);
  EXPECT_TRUE(m.isEdgePinned(rim));
  EXPECT_EQ(m.eFNum(m.findSharedEdgeFromVertices(1, 4)), 2u);
  EXPECT_TRUE(m.isFaceSelected(g));
  EXPECT_EQ(m.getSelFn(), 2u);
  EXPECT_TRUE(consistentlyOriented(m));

  EXPECT_EQ(m.splitFace(0, 1, 2), m.getMaxValue());  // neighbouring corners
  EXPECT_EQ(m.splitFace(0, 1, 6), m.getMaxValue());  // not a corner of the face
  EXPECT_EQ(m.splitFace(1, 0, 6), m.getMaxValue());  // a triangle has no diagonal
  EXPECT_MESH_VALID(m);

  // without adjacency the split still happens; the next rebuild sees it
  editMesh raw;
  makeHexagonWithEar(raw);
  raw.invalidateEVEF();
  raw.invalidateVE();
  raw.splitFace(0, 0, 3);
  finishMesh(raw);
  EXPECT_MESH_VALID(raw);
  EXPECT_EQ(liveFaces(raw), 3u);
}

TEST(editMeshLoopCut, ringAcrossAStripSelectsTheNewLoop) {
  editMesh m;
  makeGrid(m, 3, 1);
  finishMesh(m);
  m.selectFace(0);
  m.loopCut(0u, 4u);  // through the left side of the strip
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 6u);
  EXPECT_EQ(m.vn(), 8u + 4u);
  // face 0's two halves stay selected; the loop was selected before the closing rebuild,
  // which drops edge selection: its four vertices stay selected
  EXPECT_EQ(m.getSelFn(), 2u);
  EXPECT_EQ(m.getSelEn(), 0u);
  EXPECT_EQ(m.getSelVn(), 8u);
  for (unsigned v = 8; v < 12; ++v) {
    EXPECT_TRUE(m.isVertSelected(v)) << v;
    EXPECT_FLOAT_EQ(m.vPos(v).y, 0.5f);
  }
  EXPECT_NEAR(totalArea(m), 3.0, 1e-6);
  EXPECT_TRUE(consistentlyOriented(m));
  EXPECT_EQ(borderEdges(m), 8u + 2u);
}

TEST(editMeshLoopCut, listFormRewritesOnlyTheListedFaces) {
  // strip of three quads, vertices 0..3 at y = 0 and 4..7 at y = 1
  editMesh m;
  makeGrid(m, 3, 1);
  finishMesh(m);
  m.selectFace(0);
  const unsigned fvn = m.fvn(), delFvn = m.getDelFvn();
  std::vector<unsigned> faces{0};
  std::vector<unsigned> edges{m.findSharedEdgeFromVertices(0, 4),
                              m.findSharedEdgeFromVertices(1, 5)};
  m.loopCut(faces, edges);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), 8u + 2u);  // one vertex per listed edge, in list order
  EXPECT_FLOAT_EQ(m.vPos(8).x, 0.f);
  EXPECT_FLOAT_EQ(m.vPos(9).x, 1.f);
  EXPECT_EQ(m.fn(), 4u);
  EXPECT_EQ(m.fVNum(1), 4u);  // its neighbour keeps the side 1-5 whole
  // face 0 written anew with 6 corners (its 4 dead), then split: the new face starts as
  // a copy of all 6 at the end of FV, and each half leaves 2 of its 6 unused
  EXPECT_EQ(m.fvn(), fvn + 6u + 6u);
  EXPECT_EQ(m.getDelFvn(), delFvn + 4u + 2u + 2u);
  EXPECT_EQ(m.getSelFn(), 2u);
  EXPECT_EQ(m.getSelEn(), 0u);
  EXPECT_EQ(m.getSelVn(), 6u);
  EXPECT_TRUE(m.isVertSelected(8) && m.isVertSelected(9));
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(editMeshLoopCut, closedRingOnATorusStaysClosed) {
  editMesh m;
  m.makeTorus(8, 6, 2.f, 0.5f);
  const double volume = signedVolume(m);
  m.loopCut(m.findSharedEdgeFromVertices(0, 6));  // along a ring of the tube
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 48u + 6u);
  EXPECT_EQ(m.getSelEn(), 0u);
  EXPECT_EQ(m.getSelVn(), 6u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), volume, 1e-4);
}

TEST(editMeshLoopCut, ringEndingAtATriangleLeavesNoCrack) {
  editMesh m;
  m.makeCube();
  m.splitFace(1, m.fV(1, 0), m.fV(1, 2));  // the top becomes two triangles
  finishMesh(m);
  // the ring from the bottom edge 0-1 runs over the y = -1 side, the bottom and the y = 1
  // side, and stops at the top's triangles, which take the midpoints as corners
  m.loopCut(0u, 1u);
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), 8.0, 1e-5);
  EXPECT_EQ(liveFaces(m), 6u + 1u + 3u);
  EXPECT_EQ(m.getSelEn(), 0u);
  EXPECT_EQ(m.getSelVn(), 4u);  // the loop's midpoints
}

TEST(editMeshMirror, copiesEveryVertexAndFaceWithoutWelding) {
  editMesh m;
  m.makeCube();
  m.selectFace(5);  // x = 1
  const unsigned fvn = m.fvn(), delFvn = m.getDelFvn();
  m.mirrorMesh(5, p3(2.f, 0.f, 0.f));
  ASSERT_MESH_VALID(m);
  // nothing is shared or deleted: the face in the plane and its four corners are doubled
  EXPECT_EQ(m.vn(), 16u);
  EXPECT_EQ(m.fn(), 12u);
  EXPECT_EQ(liveFaces(m), 12u);
  EXPECT_EQ(m.getDelFn(), 0u);
  EXPECT_EQ(m.fvn(), fvn + 24u);
  EXPECT_EQ(m.getDelFvn(), delFvn);
  for (unsigned v = 0; v < 8; ++v) {
    EXPECT_FLOAT_EQ(m.vPos(8 + v).x, 2.f - m.vPos(v).x) << v;
    EXPECT_EQ(m.vPos(8 + v).y, m.vPos(v).y);
  }
  // face f's copy is 6 + f, on the copies of its corners, in the other turn
  for (unsigned f = 0; f < 6; ++f)
    for (unsigned i = 0; i < 4; ++i) EXPECT_EQ(m.fV(6 + f, i), 8 + m.fV(f, (4 - i) % 4));
  EXPECT_TRUE(closedAndOriented(m));  // two closed boxes touching on x = 1
  EXPECT_NEAR(signedVolume(m), 16.0, 1e-4);
  // the copies are not selected; the original selection stays
  EXPECT_EQ(m.getSelFn(), 1u);
  EXPECT_TRUE(m.isFaceSelected(5));
  EXPECT_FALSE(m.isFaceSelected(11));
  EXPECT_EQ(m.getSelVn(), 4u);
}

TEST(editMeshMirror, deletedElementsAreCopiedDeleted) {
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  m.deleteFace(0);
  const unsigned nv = m.vn();
  m.mirrorMesh(1, p3(0.f, 1.f, 0.f));
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), 2 * nv);
  EXPECT_EQ(m.fn(), 4u);
  EXPECT_TRUE(m.isFaceDeleted(2));
  EXPECT_FALSE(m.isFaceDeleted(3));
  EXPECT_EQ(m.getDelFn(), 2u);
  EXPECT_EQ(liveFaces(m), 2u);
}

TEST(editMeshMirror, openHalfAcrossASelectionOfFaces) {
  editMesh m;
  m.makeSphere(8, 16);
  // keep the northern half, capped at the equator by a polygon facing down
  std::vector<unsigned> south;
  for (unsigned f = 0; f < m.fn(); ++f) {
    bool below = false;
    for (unsigned i = 0; i < m.fVNum(f); ++i) below = below || m.F2VPOS(f, i).z < -1e-6f;
    if (below) m.deleteFace(f);
  }
  std::vector<unsigned> ring;
  for (unsigned v = 0; v < m.vn(); ++v)
    if (std::fabs(m.vPos(v).z) < 1e-6f) ring.push_back(v);
  ASSERT_EQ(ring.size(), 16u);
  std::reverse(ring.begin(), ring.end());
  const unsigned cap = m.addPolyFace(ring);
  finishMesh(m);
  const double half = signedVolume(m);
  EXPECT_GT(half, 0.0);
  m.mirrorMesh(std::vector<unsigned>{cap}, p3(0.f, 0.f, 1.f));
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), 2 * half, 1e-4);
}

TEST(editMeshFlatten, projectsOntoTheMeanPlane) {
  editMesh m;
  makeGrid(m, 2, 2);
  m.vPos(4).z = 0.9f;
  m.vPos(0).z = 0.3f;
  finishMesh(m);
  m.selectFace(0);
  m.flatten({0, 1, 2, 3}, p3(0.f, 0.f, 3.f));
  ASSERT_MESH_VALID(m);
  const float z = m.vPos(8).z;
  for (unsigned v = 0; v < 9; ++v) EXPECT_NEAR(m.vPos(v).z, z, 1e-6f);
  EXPECT_GT(z, 0.f);
  for (unsigned f = 0; f < 4; ++f) EXPECT_TRUE(near(m.fNor(f), p3(0.f, 0.f, 1.f)));
  for (unsigned v = 0; v < 9; ++v) EXPECT_TRUE(near(m.vNor(v), p3(0.f, 0.f, 1.f))) << v;

  // with no normal given, the faces' own mean normal
  editMesh tilted;
  makeGrid(tilted, 1, 1);
  tilted.vPos(3).z = 0.2f;
  finishMesh(tilted);
  tilted.flatten({0}, p3());
  ASSERT_MESH_VALID(tilted);
  const p3 n = tilted.fNor(0);
  for (unsigned v = 1; v < 4; ++v) EXPECT_NEAR((tilted.vPos(v) - tilted.vPos(0)) * n, 0.f, 1e-5f);
}

TEST(editMeshClosingSequence, dropsPinsAndEdgeSelectionButKeepsWireEdges) {
  using op = void (*)(editMesh&);
  const std::vector<std::pair<const char*, op>> ops = {
      {"extrudeVertices", [](editMesh& m) { m.extrudeVertices({0}); }},
      {"extrudeEdges", [](editMesh& m) { m.extrudeEdges({0}); }},
      {"refine", [](editMesh& m) { m.refine(); }},
      {"midpointTriangulate", [](editMesh& m) { m.midpointTriangulate(); }},
      {"mirrorMesh", [](editMesh& m) { m.mirrorMesh(0, p3(1.f, 0.f, 0.f)); }},
      {"loopCut", [](editMesh& m) { m.loopCut(0u, 1u); }},
  };
  for (const auto& [name, run] : ops) {
    editMesh m;
    makeGrid(m, 2, 2);
    const unsigned a = m.addVertex(9.f, 9.f, 0.f), b = m.addVertex(9.f, 8.f, 0.f);
    m.addEdge(a, b);
    finishMesh(m);
    for (unsigned e = 0; e < 4; ++e) m.pinEdge(e);
    m.selectEdge(5);
    run(m);
    EXPECT_MESH_VALID(m) << name;
    unsigned pins = 0;
    for (unsigned e = 0; e < m.en(); ++e) pins += m.isEdgePinned(e);
    EXPECT_EQ(pins, 0u) << name;
    EXPECT_EQ(m.countWireEdges(), 1u) << name;
    EXPECT_EQ(m.getSelEn(), 0u) << name;
  }
}
