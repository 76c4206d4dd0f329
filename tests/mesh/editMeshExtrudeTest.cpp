#include <gtest/gtest.h>

#include <algorithm>

#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using namespace testMeshes;
using namespace topologyChecks;

namespace {

// Moves the selected vertices by d, as a manipulator would after an extrusion.
void moveSelection(editMesh& m, const p3& d) {
  for (unsigned v = 0; v < m.vn(); ++v)
    if (!m.isVertDeleted(v) && m.isVertSelected(v)) m.vPos(v) += d;
  m.updateSelVertPosNorSum();
  m.computeNormalizedNormals();
}

bool usesOnly(const editMesh& m, unsigned f, unsigned firstId) {
  for (unsigned i = 0; i < m.fVNum(f); ++i)
    if (m.fV(f, i) < firstId) return false;
  return true;
}

}  // namespace

TEST(editMeshExtrudeRegion, oneFaceGetsFourWallsAndKeepsItsFlags) {
  editMesh m;
  makeGrid(m, 3, 3);
  finishMesh(m);
  const unsigned pinned = m.findSharedEdgeFromVertices(0, 1);
  const unsigned picked = m.findSharedEdgeFromVertices(14, 15);
  const unsigned side = m.findSharedEdgeFromVertices(5, 6);  // a side of the centre cell
  m.pinEdge(pinned);
  m.pinEdge(side);
  m.selectEdge(picked);
  m.selectFace(4);
  const unsigned vn = m.vn(), en = m.en(), fn = m.fn();

  m.extrudeRegion();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), vn + 4);
  EXPECT_EQ(m.fn(), fn + 4);
  EXPECT_EQ(m.en(), en + 4 + 4);  // the copied sides and the four uprights
  EXPECT_TRUE(usesOnly(m, 4, vn));
  EXPECT_TRUE(m.isFaceSelected(4));
  EXPECT_EQ(m.getSelFn(), 1u);
  // edge ids and flags survive; the side stays with its outside neighbour
  EXPECT_TRUE(m.isEdgePinned(pinned));
  EXPECT_TRUE(m.isEdgePinned(side));
  EXPECT_TRUE(m.isEdgeSelected(picked));
  EXPECT_EQ(m.getSelEn(), 1u);
  EXPECT_EQ(m.eV(side, 0), 5u);
  EXPECT_EQ(m.eV(side, 1), 6u);
  EXPECT_EQ(m.eFNum(side), 2u);
  // the selected vertices are the moved face's corners
  EXPECT_EQ(m.getSelVn(), 4u + 2u);
  for (unsigned i = 0; i < 4; ++i) EXPECT_TRUE(m.isVertSelected(m.fV(4, i)));
  for (unsigned v : {5u, 6u, 9u, 10u}) EXPECT_FALSE(m.isVertSelected(v));
  // the doubled sides start unpinned: only the two old edges carry pins
  unsigned pins = 0;
  for (unsigned e = 0; e < m.en(); ++e) pins += m.isEdgePinned(e);
  EXPECT_EQ(pins, 2u);
  // no normal is computed: the walls start with none
  for (unsigned f = fn; f < m.fn(); ++f) EXPECT_EQ(m.fNor(f), p3()) << f;

  m.deselectEdge(picked);
  moveSelection(m, p3(0.f, 0.f, 1.f));
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(borderEdges(m), 12u);
  EXPECT_TRUE(consistentlyOriented(m));
  EXPECT_NEAR(totalArea(m), 9.0 + 4.0, 1e-5);
  for (unsigned f = fn; f < m.fn(); ++f) {
    // each wall faces away from the raised cell
    p3 centre;
    for (unsigned i = 0; i < 4; ++i) centre += m.F2VPOS(f, i) * 0.25f;
    EXPECT_GT(m.fNor(f) * (centre - p3(1.5f, 1.5f, 0.5f)), 0.f) << f;
  }
}

TEST(editMeshExtrudeRegion, stripSharesItsInteriorEdges) {
  editMesh m;
  makeGrid(m, 5, 3);
  finishMesh(m);
  std::vector<unsigned> strip{6, 7, 8};  // row 1, cells 1 to 3
  const unsigned inner = m.findSharedEdgeFromVertices(8, 14);
  m.selectFace(6);
  m.selectFace(7);
  m.selectFace(8);
  const unsigned vn = m.vn(), fn = m.fn();
  m.extrudeRegion(strip);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), vn + 8);
  EXPECT_EQ(m.fn(), fn + 8);
  EXPECT_GE(m.eV(inner, 0), vn);  // the edge between two strip cells moved with them
  EXPECT_GE(m.eV(inner, 1), vn);
  EXPECT_EQ(m.eFNum(inner), 2u);
  EXPECT_EQ(m.getSelVn(), 8u);
  moveSelection(m, p3(0.f, 0.f, 2.f));
  ASSERT_MESH_VALID(m);
  EXPECT_NEAR(totalArea(m), 15.0 + 8.0 * 2.0, 1e-4);
  EXPECT_TRUE(consistentlyOriented(m));
  EXPECT_EQ(borderEdges(m), 16u);

  // a region reaching the mesh border: the border edges now bound the walls
  editMesh tray;
  makeStrip(tray, 3);
  finishMesh(tray);
  tray.selectAllFaces();
  tray.extrudeRegion();
  ASSERT_MESH_VALID(tray);
  EXPECT_EQ(tray.fn(), 3u + 8u);
  moveSelection(tray, p3(0.f, 0.f, 1.f));
  EXPECT_EQ(borderEdges(tray), 8u);
  EXPECT_TRUE(consistentlyOriented(tray));
  EXPECT_NEAR(totalArea(tray), 3.0 + 8.0, 1e-5);
}

TEST(editMeshExtrudeRegion, listedFacesTakeSelectedCornersWithoutCounting) {
  editMesh m;
  makeGrid(m, 3, 3);
  finishMesh(m);
  m.selectFace(0);  // corners 0, 1, 5, 4; 5 is shared with the region below
  const unsigned selVn = m.getSelVn();
  const p3 sum = m.getSelVertSum();
  std::vector<unsigned> centre{4};
  m.extrudeRegion(centre);
  // the region's new corners carry the bit, its old ones lost it, the counters stand
  for (unsigned i = 0; i < 4; ++i) EXPECT_TRUE(m.isVertSelected(m.fV(4, i)));
  for (unsigned v : {5u, 6u, 9u, 10u}) EXPECT_FALSE(m.isVertSelected(v));
  EXPECT_EQ(m.getSelVn(), selVn);
  EXPECT_EQ(m.getSelVertSum(), sum);
  EXPECT_FALSE(m.isFaceSelected(4));
  EXPECT_EQ(m.getSelFn(), 1u);
  // the caller that wants counters for the bits recounts them
  unsigned bits = 0;
  for (unsigned v = 0; v < m.vn(); ++v) bits += m.isVertSelected(v);
  EXPECT_EQ(bits, 4u + 3u);
  m.setSelVn(bits);
  m.updateSelVertPosNorSum();
  ASSERT_MESH_VALID(m);
}

TEST(editMeshExtrudeRegion, closedMeshHasNoWalls) {
  editMesh m;
  m.makeCube();
  m.selectAllFaces();
  m.pinEdge(3);
  const unsigned vn = m.vn(), en = m.en(), fn = m.fn();
  m.extrudeRegion();
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), vn);
  EXPECT_EQ(m.en(), en);
  EXPECT_EQ(m.fn(), fn);
  EXPECT_TRUE(m.isEdgePinned(3));
  EXPECT_EQ(m.getSelFn(), 6u);
  EXPECT_EQ(m.getSelVn(), 8u);
  EXPECT_TRUE(closedAndOriented(m));
}

TEST(editMeshExtrudeFaces, eachFaceGetsItsOwnWalls) {
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  std::vector<unsigned> both;  // empty: the selection, filled in
  m.selectFace(0);
  m.selectFace(1);
  m.extrudeFaces(both);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(both.size(), 2u);
  EXPECT_EQ(m.vn(), 6u + 8u);
  EXPECT_EQ(m.fn(), 2u + 8u);
  moveSelection(m, p3(0.f, 0.f, 1.f));
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(consistentlyOriented(m));
  EXPECT_NEAR(totalArea(m), 2.0 + 8.0, 1e-5);
  // the middle edge now carries the two walls that rise from it
  EXPECT_EQ(m.eFNum(m.findSharedEdgeFromVertices(1, 4)), 2u);
}

TEST(editMeshExtractRegion, detachesTheFaces) {
  editMesh m;
  makeGrid(m, 3, 3);
  finishMesh(m);
  std::vector<unsigned> centre{4};
  const unsigned pinned = m.findSharedEdgeFromVertices(5, 6);
  m.pinEdge(pinned);
  m.extractRegion(centre);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), 16u + 4u);
  EXPECT_EQ(m.fn(), 9u);
  EXPECT_EQ(borderEdges(m), 12u + 4u + 4u);  // outer border, the hole, the piece
  EXPECT_TRUE(m.isEdgePinned(pinned));
  EXPECT_TRUE(usesOnly(m, 4, 16));
  EXPECT_TRUE(consistentlyOriented(m));
}

TEST(editMeshExtractRegion, cappedPiecesAreBothClosed) {
  editMesh m;
  m.makeSphere(6, 10);
  const double volume = signedVolume(m);
  std::vector<unsigned> cap;
  for (unsigned f = 0; f < 20; ++f) cap.push_back(f);  // the fan and the first band
  EXPECT_EQ(m.extractCappedRegion(cap), 2u);
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_EQ(borderEdges(m), 0u);
  // the two caps face away from each other, so the volumes still add up
  EXPECT_NEAR(signedVolume(m), volume, 1e-5);
  editMesh piece;
  m.subset(&piece, cap);
  EXPECT_GT(signedVolume(piece), 0.0);

  // a region that reaches an open border closes only the piece
  editMesh g;
  makeGrid(g, 2, 1);
  finishMesh(g);
  std::vector<unsigned> left{0};
  EXPECT_EQ(g.extractCappedRegion(left), 1u);
  ASSERT_MESH_VALID(g);
  EXPECT_TRUE(consistentlyOriented(g));
  EXPECT_EQ(borderEdges(g), 4u);  // the right cell alone is open
}

// Two region faces on an edge of three faces used to get a copied edge and a wall each:
// two edges joined the same copies, and a later extraction broke the EF lists.
TEST(editMeshExtrudeRegion, facesMeetingOnANonManifoldEdgeShareOneCopy) {
  editMesh m;
  makeFan(m, 3);
  finishMesh(m);
  std::vector<unsigned> fins{0, 2};
  m.extrudeRegion(fins);
  recountVertexSelection(m);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fn(), 3u + 5u);  // one wall on the shared edge, two on each other side
  const unsigned a2 = m.fV(0, 0), b2 = m.fV(0, 1);
  EXPECT_EQ(m.fV(2, 0), a2);
  EXPECT_EQ(m.fV(2, 1), b2);
  unsigned copies = 0;
  for (unsigned e = 0; e < m.en(); ++e)
    if (!m.edgeIsDeleted(e) && std::min(m.eV(e, 0), m.eV(e, 1)) == std::min(a2, b2) &&
        std::max(m.eV(e, 0), m.eV(e, 1)) == std::max(a2, b2)) {
      ++copies;
      EXPECT_EQ(m.eFNum(e), 3u);  // both fins and the wall
    }
  EXPECT_EQ(copies, 1u);
  EXPECT_EQ(m.eFNum(m.findSharedEdgeFromVertices(0, 1)), 2u);  // the third fin and the wall

  std::vector<unsigned> all{0, 2, 1};
  m.extractRegion(all);
  EXPECT_MESH_VALID(m);
  editMesh capped;
  makeFan(capped, 3);
  finishMesh(capped);
  capped.extractCappedRegion(fins);
  EXPECT_MESH_VALID(capped);
}

TEST(editMeshExtrudeEdges, borderChainGrowsAStrip) {
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  m.selectEdge(m.findSharedEdgeFromVertices(0, 1));
  m.extrudeEdges({m.findSharedEdgeFromVertices(0, 1), m.findSharedEdgeFromVertices(1, 2)});
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), 6u + 3u);
  EXPECT_EQ(m.fn(), 4u);
  EXPECT_EQ(m.getSelEn(), 0u);
  EXPECT_EQ(m.getSelVn(), 3u);
  for (unsigned v = 6; v < 9; ++v) EXPECT_TRUE(m.isVertSelected(v));
  moveSelection(m, p3(0.f, -1.f, 0.f));
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(consistentlyOriented(m));
  EXPECT_NEAR(totalArea(m), 4.0, 1e-5);
  EXPECT_EQ(borderEdges(m), 8u);
  for (unsigned f = 2; f < 4; ++f) EXPECT_GT(m.fNor(f).z, 0.99f);  // continues the surface
}

TEST(editMeshExtrudeVertices, cornerBecomesAPyramid) {
  editMesh m;
  m.makeCube();
  m.selectVert(7);
  m.extrudeVertices({7});
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.vn(), 8u + 3u);
  EXPECT_EQ(liveFaces(m), 6u + 3u);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(signedVolume(m), 8.0, 1e-5);
  for (unsigned v = 8; v < 11; ++v)  // a third of the way along each edge
    EXPECT_NEAR((m.vPos(v) - m.vPos(7)).norm(), 2.f / 3.f, 1e-5f);
  EXPECT_TRUE(m.isVertSelected(7));
  moveSelection(m, p3(1.f, 1.f, 1.f));
  ASSERT_MESH_VALID(m);
  EXPECT_GT(signedVolume(m), 8.0);
}

TEST(editMeshMakeSolid, openSheetBecomesABox) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  m.makeSolid(0.5f, 2, false, true);
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_NEAR(std::fabs(signedVolume(m)), 4.0 * 0.5, 1e-4);
  EXPECT_GT(signedVolume(m), 0.0);  // the sheet faced +z and stays on top
  EXPECT_EQ(liveFaces(m), 4u + 4u + 8u * 2u);
  EXPECT_EQ(m.getSelFn(), 4u);
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (!m.isFaceSelected(f)) continue;
    EXPECT_NEAR(m.F2VPOS(f, 0).z, -0.5f, 1e-5f);
    EXPECT_LT(m.fNor(f).z, -0.99f);
  }
}

TEST(editMeshMakeSolid, closedMeshBecomesAHollowShell) {
  editMesh m;
  m.makeCube();
  m.makeSolid(0.25f);
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_EQ(liveFaces(m), 12u);
  EXPECT_NEAR(signedVolume(m), 8.0 - 1.5 * 1.5 * 1.5, 1e-4);

  m.makeCube();
  std::vector<float> perVertex(8, 0.f);
  perVertex[0] = 0.5f;
  m.makeSolid(perVertex, 1, true, false);
  ASSERT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_GT(m.vPos(0).norm(), std::sqrt(3.f));  // centered: half of it goes outward
}
