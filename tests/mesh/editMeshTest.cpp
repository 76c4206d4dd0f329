#include "jev3d/mesh/editMesh.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include "support/meshes.h"

using JEV::MESH::EDGE_STATE_T;
using JEV::MESH::editMesh;
using JEV::MESH::FACE_STATE_T;
using JEV::MESH::VERT_STATE_T;
using namespace testMeshes;

namespace {

std::vector<std::pair<unsigned, unsigned>> edgeList(const editMesh& m) {
  std::vector<std::pair<unsigned, unsigned>> out;
  for (unsigned e = 0; e < m.en(); ++e) out.emplace_back(m.eV(e, 0), m.eV(e, 1));
  return out;
}

}  // namespace

TEST(editMeshRecords, packingAndLimits) {
  EXPECT_EQ(sizeof(editMesh::vert), 40u);
  EXPECT_EQ(sizeof(editMesh::edge), 12u);
  EXPECT_EQ(sizeof(editMesh::face), 24u);
  EXPECT_EQ(sizeof(editMesh::edgeFaceRecord), 4u);
  EXPECT_EQ(sizeof(editMesh::faceWEdgeRecord), 16u);

  editMesh::edge e(3, 9);
  e.efBase = (1u << 26) - 1;
  e.efNum = 63;
  uint32_t words[3];
  std::memcpy(words, &e, sizeof(words));
  EXPECT_EQ(words[2], 0xFFFFFFFFu);
  e.efBase = 5;
  e.efNum = 2;
  std::memcpy(words, &e, sizeof(words));
  EXPECT_EQ(words[2], 5u | 2u << 26);
  e.efNum = e.efNum + 62;  // 64 wraps to 0
  EXPECT_EQ(e.efNum, 0u);

  const editMesh::edgeFaceRecord r(12345, 7);
  uint32_t w;
  std::memcpy(&w, &r, 4);
  EXPECT_EQ(w, 12345u | 7u << 26);
  EXPECT_EQ(r.word(), w);

  editMesh m;
  EXPECT_EQ(m.getMaxValue(), 16000000u);
  EXPECT_EQ(m.faceSelectionColor.toU32(), 0x4679ACE4u);
  EXPECT_EQ(m.currentEdgeColor, m.edgeColor);
  EXPECT_EQ(m.currentVertexColor, m.vertexColor);
  EXPECT_TRUE(m.edgesAreColoredWithDefaultColor());
  m.colorEdgesWithGhostColor();
  EXPECT_TRUE(m.edgesAreColoredWithGhostColor());
}

TEST(editMeshConstruction, addsGrowStoresAndFlags) {
  editMesh m;
  const unsigned a = m.addVertex(p3(1, 2, 3), p3(0, 0, 1));
  EXPECT_EQ(m.vPos(a), p3(1, 2, 3));
  EXPECT_EQ(m.vNor(a), p3(0, 0, 1));
  EXPECT_EQ(m.V(a).col[0].toU32(), 0u);
  EXPECT_EQ(m.V(a).col[1].toU32(), 0u);
  m.vCol(a) = JEV::CORE::color(1, 2, 3);
  m.vertexColorLayer = 1;
  m.vCol(a) = JEV::CORE::color(4, 5, 6);
  EXPECT_EQ(m.V(a).col[0], JEV::CORE::color(1, 2, 3));
  EXPECT_EQ(m.V(a).col[1], JEV::CORE::color(4, 5, 6));
  m.vertexColorLayer = 0;
  m.addVertex(2, 0, 0);
  m.addVertex(0, 2, 0);
  m.addVertex(2, 2, 0);
  EXPECT_EQ(m.vertFlags().size(), 4u);

  EXPECT_EQ(m.addPolyFace({}), m.getMaxValue());  // no face yet
  const unsigned f0 = m.addTriFace(0, 1, 2, true);
  EXPECT_EQ(m.addPolyFace({}), f0);  // an empty list is ignored
  EXPECT_EQ(m.fn(), 1u);
  const unsigned f1 = m.addPolyFace({1, 3, 2});
  EXPECT_EQ(m.faceFlags().size(), 2u);
  EXPECT_EQ(m.fvn(), 6u);
  EXPECT_EQ(m.F2FVBASE(f1), 3u);
  EXPECT_EQ(m.F2W(f1, 1).vertId, 3u);
  EXPECT_EQ(m.F2W(f1, 1).faceId, f1);
  EXPECT_EQ(m.F2W(f1, 1).zero, 0u);

  // make* point the face at new corners: the old ones become dead entries
  m.makeQuadFace(f0, 0, 1, 3, 2);
  EXPECT_EQ(m.F2FVBASE(f0), 6u);
  EXPECT_EQ(m.fvn(), 10u);
  EXPECT_EQ(m.getDelFvn(), 3u);
  unsigned ids[4];
  m.getFV(f0, ids);
  EXPECT_EQ(std::vector<unsigned>(ids, ids + 4), (std::vector<unsigned>{0, 1, 3, 2}));

  // modifyFace rewrites in place when the corners fit
  const unsigned tri[3] = {0, 1, 2};
  m.modifyFace(f0, tri, 3);
  EXPECT_EQ(m.F2FVBASE(f0), 6u);
  EXPECT_EQ(m.fVNum(f0), 3u);
  EXPECT_EQ(m.getDelFvn(), 4u);

  m.fNor(f1) = p3(0, 0, 4);
  const unsigned g = m.cloneFace(f1);
  EXPECT_EQ(m.fVNum(g), 3u);
  EXPECT_EQ(m.fV(g, 1), 3u);
  EXPECT_EQ(m.fNor(g), p3(0, 0, 4));

  m.deleteFace(g);
  finishMesh(m);
  EXPECT_MESH_VALID(m);

  EXPECT_EQ(m.expandVertexArray(10), 4u);
  EXPECT_GE(m.vertStore().capacity(), 14u);
  std::vector<editMesh::vert> part;
  m.cloneVertexData(2, 10, part);
  ASSERT_EQ(part.size(), 2u);
  EXPECT_EQ(part[1].pos, p3(2, 2, 0));
}

TEST(editMeshConstruction, addEdgeOnTwoFacesFindsTheCorners) {
  editMesh m;
  makeGrid(m, 2, 1);  // faces (0,1,4,3) and (1,2,5,4)
  const unsigned e = m.addEdge(4, 1, 0, 1);
  EXPECT_EQ(m.eFNum(e), 2u);
  EXPECT_EQ(m.E2EFBASE(e), 0u);
  EXPECT_EQ(m.eF(e, 0), 0u);
  EXPECT_EQ(m.E2F(e, 0).corner, 2u);  // vertex 4 in face 0
  EXPECT_EQ(m.eF(e, 1), 1u);
  EXPECT_EQ(m.E2F(e, 1).corner, 0u);  // vertex 1 in face 1
  const unsigned missing = m.addEdge(0, 5, 0, 0);
  EXPECT_EQ(m.E2F(missing, 1).corner, m.getMaxValue() & 63u);
}

TEST(editMeshCopy, isDeepAndIndependent) {
  editMesh a;
  makeCube(a);
  finishMesh(a);
  a.selectFace(2);
  const unsigned aux = a.addAuxFloatData("weight");
  a.auxFloatData(aux).assign(8, 0.5f);
  editMesh b(a);
  EXPECT_MESH_VALID(b);
  b.vPos(0) = p3(9, 9, 9);
  b.auxFloatData(aux)[0] = 2.f;
  b.deleteFace(0);
  EXPECT_EQ(a.vPos(0), p3(0, 0, 0));
  EXPECT_EQ(a.auxFloatData(aux)[0], 0.5f);
  EXPECT_EQ(a.auxFloatDataName(aux), "weight");
  EXPECT_FALSE(a.isFaceDeleted(0));
  EXPECT_EQ(b.getSelFn(), 1u);
  a = b;
  EXPECT_TRUE(a.isFaceDeleted(0));
  EXPECT_EQ(a.auxFloatData(aux)[0], 2.f);
  a.clear(false);
  EXPECT_EQ(a.vn() + a.fn() + a.en() + a.auxFloatDataNum(), 0u);
  EXPECT_FALSE(a.hasVC());
}

TEST(editMeshEdges, idsFollowFirstAppearanceAndEFNamesTheNextCorner) {
  editMesh m;
  makeGrid(m, 2, 1);
  ASSERT_TRUE(m.computeEVEF());
  const std::vector<std::pair<unsigned, unsigned>> expected = {{0, 1}, {1, 4}, {3, 4}, {0, 3},
                                                               {1, 2}, {2, 5}, {4, 5}};
  EXPECT_EQ(edgeList(m), expected);
  // the shared edge 1-4: face 0 meets it from corner 1 (next 2), face 1 from corner 3
  // (next 0)
  EXPECT_EQ(m.eFNum(1), 2u);
  EXPECT_EQ(m.eF(1, 0), 0u);
  EXPECT_EQ(m.E2F(1, 0).corner, 2u);
  EXPECT_EQ(m.eF(1, 1), 1u);
  EXPECT_EQ(m.E2F(1, 1).corner, 0u);
  EXPECT_EQ(m.E2EFBASE(1), 1u);
  unsigned ef[2];
  m.getEF(1, ef);
  EXPECT_EQ(ef[1], 1u);
  for (unsigned e = 0; e < m.en(); ++e) EXPECT_LT(m.eV(e, 0), m.eV(e, 1));
  EXPECT_EQ(m.efn(), 8u);
  EXPECT_TRUE(m.isEdgeBorder(0));
  EXPECT_FALSE(m.isEdgeBorder(1));
  m.computeVE();
  EXPECT_MESH_VALID(m);
}

TEST(editMeshEdges, closedMeshesHaveTwoFacesOnEveryEdge) {
  for (int shape = 0; shape < 2; ++shape) {
    editMesh m;
    if (shape == 0) {
      makeCube(m);
    } else {
      makeSphere(m, 8, 12);
    }
    finishMesh(m);
    ASSERT_MESH_VALID(m);
    EXPECT_EQ(borderEdges(m), 0u);
    for (unsigned e = 0; e < m.en(); ++e) EXPECT_EQ(m.eFNum(e), 2u);
    // Euler characteristic of a sphere
    EXPECT_EQ(int(m.vn()) - int(m.en()) + int(m.fn()), 2);
    EXPECT_GT(signedVolume(m), 0.0);  // wound outward
  }
  editMesh cube;
  makeCube(cube);
  finishMesh(cube);
  EXPECT_NEAR(signedVolume(cube), 1.0, 1e-6);
  for (unsigned v = 0; v < 8; ++v) EXPECT_EQ(cube.vENum(v), 3u);
}

TEST(editMeshEdges, openMeshesHaveBorders) {
  editMesh cone;
  makeOpenCone(cone, 10);
  finishMesh(cone);
  EXPECT_MESH_VALID(cone);
  EXPECT_EQ(borderEdges(cone), 10u);
  EXPECT_EQ(cone.vENum(0), 10u);

  editMesh holes;
  makeGridWithHoles(holes, 4, 4, {{1, 1}, {2, 2}});
  finishMesh(holes);
  EXPECT_MESH_VALID(holes);
  EXPECT_EQ(holes.fn(), 14u);
  EXPECT_EQ(borderEdges(holes), 16u + 8u);
}

TEST(editMeshEdges, nonManifoldEdgesAndTheLimitOfAnEdge) {
  editMesh fan;
  makeFan(fan, 3);
  finishMesh(fan);
  EXPECT_MESH_VALID(fan);
  EXPECT_EQ(fan.eFNum(0), 3u);
  EXPECT_EQ(fan.findSharedEdgeFromVertices(1, 0), 0u);

  editMesh wide;
  makeFan(wide, 64);
  finishMesh(wide);
  // the 64th face wraps efNum to 0: the edge lists no face, which the check reports
  EXPECT_EQ(wide.eFNum(0), 0u);
  EXPECT_TRUE(wide.isAWireEdge(0));
  const std::string report = wide.checkInvariants();
  EXPECT_NE(report.find("missing from the EF lists"), std::string::npos) << report;
}

TEST(editMeshEdges, facesOfOneAndTwoCorners) {
  editMesh m;
  makeDegenerateFaces(m);
  addIsolatedVertices(m, 2);
  finishMesh(m);
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(m.getTriangleNumFace(0), 0u);
  EXPECT_EQ(m.getTriangleNumFace(1), 0u);
  EXPECT_EQ(m.getTriangleNumFace(2), 1u);
  // one corner: a loop edge onto itself; two corners: one edge met twice
  EXPECT_EQ(m.eV(0, 0), 0u);
  EXPECT_EQ(m.eV(0, 1), 0u);
  EXPECT_EQ(m.eFNum(0), 1u);
  EXPECT_EQ(m.eFNum(1), 2u);
  EXPECT_EQ(m.eF(1, 0), 1u);
  EXPECT_EQ(m.eF(1, 1), 1u);
  EXPECT_EQ(m.en(), 5u);
  // isolated vertices have no edges
  EXPECT_EQ(m.vENum(6), 0u);
  EXPECT_EQ(m.vENum(7), 0u);
  // a 1- or 2-corner face keeps the normal it had
  m.fNor(0) = p3(1, 2, 3);
  m.computeFaceNormals();
  EXPECT_EQ(m.fNor(0), p3(1, 2, 3));
}

TEST(editMeshEdges, rebuildDropsPinsSelectionAndWireEdgesUnlessKept) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  m.pinEdge(3);
  m.selectEdge(5);
  EXPECT_TRUE(m.isEdgePinned(3));
  EXPECT_EQ(m.getSelEn(), 1u);
  const unsigned wire = m.addEdge(0, 8);
  m.addEdge(2, 6);
  EXPECT_EQ(m.countWireEdges(), 2u);
  const unsigned faceEdges = wire;
  m.computeVE();
  EXPECT_MESH_VALID(m);

  ASSERT_TRUE(m.computeEVEF());
  m.computeVE();
  EXPECT_EQ(m.en(), faceEdges);  // wire edges gone
  EXPECT_FALSE(m.isEdgePinned(3));
  EXPECT_FALSE(m.isEdgeSelected(5));
  EXPECT_EQ(m.getSelEn(), 0u);
  EXPECT_MESH_VALID(m);

  m.addEdge(0, 8);
  m.addEdge(2, 6);
  m.pinEdge(0);
  ASSERT_TRUE(m.computeEdges(true));
  m.computeVE();
  ASSERT_EQ(m.en(), faceEdges + 2);
  EXPECT_EQ(m.eV(faceEdges, 0), 0u);
  EXPECT_EQ(m.eV(faceEdges, 1), 8u);
  EXPECT_EQ(m.eV(faceEdges + 1, 0), 2u);
  EXPECT_TRUE(m.isAWireEdge(faceEdges + 1));
  EXPECT_FALSE(m.isEdgePinned(0));
  EXPECT_EQ(m.findSharedEdgeFromVertices(8, 0), faceEdges);
  EXPECT_MESH_VALID(m);

  ASSERT_TRUE(m.computeEdges(false));
  EXPECT_EQ(m.en(), faceEdges);
}

TEST(editMeshEdges, evefFlagAndProgress) {
  editMesh m;
  makeCube(m);
  EXPECT_FALSE(m.isEVEFValid());
  m.computeEVEF();
  EXPECT_FALSE(m.isEVEFValid());  // computeEVEF leaves the flag alone
  int progress = -1;
  ASSERT_TRUE(m.computeEdgesOpt(progress));
  EXPECT_EQ(progress, 100);
  EXPECT_TRUE(m.isEVEFValid());
  EXPECT_FALSE(m.isVEValid());  // new edge ids make VE stale
  m.computeVE();
  EXPECT_TRUE(m.isVEValid());
  m.invalidateEVEF();
  EXPECT_FALSE(m.isEVEFValid());
  m.clearVE(true);
  EXPECT_FALSE(m.hasVE());

  editMesh empty;
  EXPECT_TRUE(empty.computeEVEF());
  empty.addVertex(0, 0, 0);
  empty.computeVE();
  EXPECT_EQ(empty.en(), 0u);
  EXPECT_EQ(empty.vENum(0), 0u);
}

TEST(editMeshEdges, cornersOutOfRangeAreSkippedNotFollowed) {
  editMesh m;
  makeGrid(m, 1, 1);
  m.addTriFace(0, 1, 77);
  ASSERT_TRUE(m.computeEVEF());
  m.computeVE();
  EXPECT_EQ(m.en(), 4u);  // only 0-1 of the bad face exists, and it is the grid's
  EXPECT_EQ(m.eFNum(0), 2u);
  EXPECT_NE(m.checkInvariants().find("out of range"), std::string::npos);
}

TEST(editMeshEdges, facesBuiltByHandOverSharedCornersStayInBounds) {
  editMesh m;
  makeGrid(m, 2, 2);
  // every face reads the last 8 of the 16 corners: 32 corners to pack from 16 entries
  for (unsigned f = 0; f < m.fn(); ++f) {
    m.F(f).fvBase = 8;
    m.F(f).fvNum = 8;
  }
  ASSERT_TRUE(m.computeEVEF());
  m.computeVE();
  ASSERT_GT(m.en(), 0u);
  EXPECT_EQ(m.eFNum(0), 2u);  // the first two faces fit; the others are left out
  EXPECT_NE(m.checkInvariants(), "");
}

TEST(editMeshVE, listsEdgesInEdgeOrderAndExtends) {
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  // vertex 1 is on edges 0 (0-1), 1 (1-4) and 4 (1-2)
  ASSERT_EQ(m.vENum(1), 3u);
  unsigned ve[3];
  m.getVE(1, ve);
  EXPECT_EQ(std::vector<unsigned>(ve, ve + 3), (std::vector<unsigned>{0, 1, 4}));

  const unsigned wire = m.addEdge(1, 5);
  m.addEdgesToVE({1, 5}, {{wire}, {wire}});
  EXPECT_EQ(m.getDelVen(), 3u + 2u);
  EXPECT_EQ(m.vENum(1), 4u);
  EXPECT_EQ(m.vE(1, 3), wire);
  EXPECT_EQ(m.vE(1, 0), 0u);
  EXPECT_EQ(m.findSharedEdgeFromVertices(5, 1), wire);
  EXPECT_MESH_VALID(m);

  m.computeVE(false);
  EXPECT_EQ(m.getDelVen(), 0u);
  m.deleteEdge(wire);
  m.computeVE(true);
  EXPECT_EQ(m.vENum(1), 3u);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshLookups, cornersAndNextEdges) {
  editMesh m;
  makeGrid(m, 2, 1);  // face 0 is (0,1,4,3), edges 0-1 (0), 1-4 (1), 3-4 (2), 0-3 (3)
  finishMesh(m);
  const unsigned none = m.getMaxValue();
  EXPECT_EQ(m.findCornerInFace(0, 4), 2u);
  EXPECT_EQ(m.findCornerInFace(0, 5), none);
  EXPECT_EQ(m.findSharedEdgeFromVertices(0, 4), none);
  EXPECT_EQ(m.nextEdge(0, 0), 1u);
  EXPECT_EQ(m.nextNextEdge(0, 0), 2u);
  EXPECT_EQ(m.nextEdge(0, 3), 0u);
  EXPECT_EQ(m.nextEdge(0, 4), none);  // 1-2 is not on face 0
  unsigned eIn, eOut;
  ASSERT_TRUE(m.findEdgePairSharingVertInFace(0, 4, eIn, eOut));
  EXPECT_EQ(eIn, 1u);
  EXPECT_EQ(eOut, 2u);
  EXPECT_FALSE(m.findEdgePairSharingVertInFace(0, 5, eIn, eOut));
  EXPECT_EQ(m.otherFaceOfEdge(1, 0), 1u);
  EXPECT_EQ(m.otherFaceOfEdge(0, 0), none);
  EXPECT_EQ(m.getAdiacentFaces(4), (std::vector<unsigned>{0, 1}));
  EXPECT_TRUE(m.isVertexValid(5));
  EXPECT_FALSE(m.isVertexValid(6));
  EXPECT_FALSE(m.isEdgeValid(7));
  EXPECT_FALSE(m.isFaceValid(2));
  m.deleteFace(1);
  EXPECT_FALSE(m.isFaceValid(1));
}

TEST(editMeshNormals, faceAndVertexNormals) {
  editMesh m;
  makeGrid(m, 3, 3, false);
  m.computeFaceNormals();
  // unnormalised: twice the area of the triangle
  EXPECT_EQ(m.fNor(0), p3(0, 0, 1));
  m.computeVertexNormals();
  // corner vertex 0 is in the two triangles of cell 0
  EXPECT_EQ(m.vNor(0), p3(0, 0, 2));
  m.computeWeightedVertexNormals();
  EXPECT_EQ(m.vNor(0), p3(0, 0, 1));
  m.flipNormals();
  EXPECT_FLOAT_EQ(m.vNor(0).z, -1.f);
  EXPECT_FLOAT_EQ(m.fNor(0).z, -1.f);
  EXPECT_FLOAT_EQ(m.fNor(0).x, 0.f);

  editMesh s;
  makeSphere(s, 16, 24);
  finishMesh(s);
  for (unsigned v = 0; v < s.vn(); ++v) {
    EXPECT_NEAR(s.vNor(v).norm(), 1.0f, 1e-5f);
    EXPECT_GT(s.vNor(v) * s.vPos(v), 0.99f);
  }
  // the one-pass form gives exactly what the two passes give
  editMesh t(s);
  s.vPos(3) = t.vPos(3) = p3(0.2f, 0.1f, 0.9f);
  s.computeNormalizedFaceNormals();
  s.computeNormalizedVertexNormals();
  t.computeNormalizedNormals();
  for (unsigned v = 0; v < s.vn(); ++v) EXPECT_EQ(s.vNor(v), t.vNor(v));
  for (unsigned f = 0; f < s.fn(); ++f) EXPECT_EQ(s.fNor(f), t.fNor(f));
  s.vPos(0) = p3(0, 0, 2);
  s.computeNormalizedFaceNormal(0);
  s.computeNormalizedVertexNormal(0);
  EXPECT_NEAR(s.vNor(0).norm(), 1.0f, 1e-5f);
}

TEST(editMeshNormals, normalizeFastMatchesExactNormalisation) {
  const p3 samples[] = {p3(3, 4, 0), p3(1e-20f, 0, 0), p3(1e18f, -2e18f, 3e17f),
                        p3(0.1f, 0.2f, 0.3f)};
  for (p3 p : samples) {
    p3 exact = p.getNormalized();
    editMesh::normalizeFast(p);
    // two Newton steps from the bit-trick guess leave about 5e-6 of relative error
    EXPECT_NEAR(p.x, exact.x, 1e-5f);
    EXPECT_NEAR(p.y, exact.y, 1e-5f);
    EXPECT_NEAR(p.z, exact.z, 1e-5f);
  }
  p3 zero;
  editMesh::normalizeFast(zero);
  EXPECT_EQ(zero, p3());
}

TEST(editMeshStats, printsEveryStore) {
  editMesh m;
  makeCube(m);
  finishMesh(m);
  std::ostringstream out;
  m.printStats(out);
  EXPECT_NE(out.str().find("face number     6"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("uv number   0"), std::string::npos);
  EXPECT_GT(m.memoryUsage(), 8 * sizeof(editMesh::vert));
  m.computeBBox();
  EXPECT_EQ(m.getBBoxMin(), p3(0, 0, 0));
  EXPECT_EQ(m.getBBoxMax(), p3(1, 1, 1));
}
