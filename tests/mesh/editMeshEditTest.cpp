#include <gtest/gtest.h>

#include <algorithm>

#include "jev3d/mesh/editMesh.h"
#include "jev3d/system/callBack.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using namespace testMeshes;

namespace {

// On a live edge: a deleted edge keeps its list as it was.
bool efListsFace(const editMesh& m, unsigned f) {
  for (unsigned e = 0; e < m.en(); ++e)
    if (!m.edgeIsDeleted(e))
      for (unsigned i = 0; i < m.eFNum(e); ++i)
        if (m.eF(e, i) == f) return true;
  return false;
}

}  // namespace

TEST(editMeshDeletion, deleteFaceKeepsIdsAndCounts) {
  editMesh m;
  makeGrid(m, 3, 3);
  finishMesh(m);
  m.selectFace(4);
  m.deleteFace(4);
  EXPECT_EQ(m.fn(), 9u);
  EXPECT_EQ(m.getDelFn(), 1u);
  EXPECT_EQ(m.getDelFvn(), 4u);
  EXPECT_TRUE(m.isFaceDeleted(4));
  EXPECT_FALSE(m.isFaceSelected(4));
  EXPECT_EQ(m.getSelFn(), 0u);
  EXPECT_EQ(m.getSelVn(), 0u);
  EXPECT_TRUE(efListsFace(m, 4));  // EF is left as it was
  EXPECT_MESH_VALID(m);
  m.deleteFace(4);  // twice is once
  EXPECT_EQ(m.getDelFn(), 1u);

  m.deleteFaceUpdatingEdges(0);
  EXPECT_FALSE(efListsFace(m, 0));
  EXPECT_EQ(m.getDelFn(), 2u);
  EXPECT_EQ(m.getDelFvn(), 8u);
  EXPECT_EQ(m.getDelEfn(), 4u);
  EXPECT_EQ(m.eFNum(m.findSharedEdgeFromVertices(0, 1)), 0u);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshDeletion, edgesAndVerticesTakeTheirFacesAlong) {
  editMesh m;
  makeGrid(m, 2, 2);  // the centre vertex 4 has four faces and four edges
  finishMesh(m);
  const unsigned inner = m.findSharedEdgeFromVertices(1, 4);
  m.deleteEdge(inner);
  EXPECT_EQ(m.getDelEn(), 1u);
  EXPECT_EQ(m.getDelFn(), 2u);
  EXPECT_TRUE(m.isFaceDeleted(0));
  EXPECT_TRUE(m.isFaceDeleted(1));
  EXPECT_FALSE(efListsFace(m, 0));
  EXPECT_MESH_VALID(m);

  editMesh g;
  makeGrid(g, 2, 2);
  finishMesh(g);
  g.selectVert(4);
  g.deleteVertex(4);
  EXPECT_EQ(g.getDelVn(), 1u);
  EXPECT_EQ(g.getDelEn(), 4u);
  EXPECT_EQ(g.getDelFn(), 4u);
  EXPECT_EQ(g.getSelVn(), 0u);
  EXPECT_EQ(liveFaces(g), 0u);
  EXPECT_MESH_VALID(g);

  editMesh h;
  makeGrid(h, 2, 2);
  finishMesh(h);
  h.deleteVertexGuarded(4);
  EXPECT_EQ(h.getDelFn(), 4u);
  EXPECT_TRUE(efListsFace(h, 0));  // guarded: EF untouched
  EXPECT_MESH_VALID(h);
  const unsigned e = h.findSharedEdgeFromVertices(0, 1);
  h.deleteEdgeGuarded(e, true);
  EXPECT_TRUE(h.edgeIsDeleted(e));
  EXPECT_EQ(h.getDelFn(), 4u);
}

TEST(editMeshDeletion, deleteFacesLeavesDelFnAndClearsSelection) {
  editMesh m;
  makeGrid(m, 3, 1);
  finishMesh(m);
  m.selectFace(0);
  m.selectFace(1);
  m.selectEdge(m.findSharedEdgeFromVertices(3, 7));
  m.deleteFaces(true, false);
  EXPECT_TRUE(m.isFaceDeleted(0));
  EXPECT_TRUE(m.isFaceDeleted(1));
  EXPECT_FALSE(m.isFaceDeleted(2));
  EXPECT_EQ(m.getDelFn(), 0u);  // kept on purpose
  EXPECT_EQ(m.getDelFvn(), 8u);
  EXPECT_EQ(m.getSelFn() + m.getSelEn() + m.getSelVn() + m.getSelFvn(), 0u);
  EXPECT_EQ(m.getSelVertSum(), p3());
  EXPECT_MESH_VALID(m);

  m.addEdge(0, 7);
  m.deleteFaces(false, true);
  EXPECT_EQ(liveFaces(m), 0u);
  // rebuilt: only the wire edge survives
  ASSERT_EQ(m.en(), 1u);
  EXPECT_TRUE(m.isAWireEdge(0));
  EXPECT_MESH_VALID(m);
  m.deleteWireEdges();
  EXPECT_TRUE(m.edgeIsDeleted(0));
  EXPECT_EQ(m.getDelEn(), 1u);
}

TEST(editMeshDeletion, wireAndIsolatedLeftovers) {
  editMesh m;
  makeGrid(m, 2, 1);
  addIsolatedVertices(m, 3);
  finishMesh(m);
  m.deleteFaceUpdatingEdges(0);
  m.deleteWireEdgesGuarded();
  // edges of face 0 only: 0-1, 0-3, 3-4; 1-4 still has face 1
  EXPECT_EQ(m.getDelEn(), 3u);
  EXPECT_FALSE(m.edgeIsDeleted(m.findSharedEdgeFromVertices(1, 4)));
  EXPECT_EQ(m.deleteIsolatedVertices(), 3u);
  EXPECT_EQ(m.deleteUnreferencedVertices(), 2u);  // vertices 0 and 3
  EXPECT_TRUE(m.isVertDeleted(0));
  EXPECT_TRUE(m.isVertDeleted(3));
  EXPECT_FALSE(m.isVertDeleted(1));
  EXPECT_EQ(m.getDelVn(), 5u);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshCompaction, mapsAndRebuild) {
  editMesh m;
  makeGrid(m, 2, 2);
  addIsolatedVertices(m, 2);
  finishMesh(m);
  m.deleteVertex(0);  // with edges 0-1, 0-3 and face 0
  EXPECT_EQ(m.deleteIsolatedVertices(), 2u);
  EXPECT_MESH_VALID(m);
  const unsigned none = 0xFFFFFFFFu;

  std::vector<unsigned> fmap, vmap, emap;
  ASSERT_TRUE(m.compactFaces(fmap));
  EXPECT_EQ(fmap, (std::vector<unsigned>{none, 0, 1, 2}));
  EXPECT_EQ(m.fn(), 3u);
  EXPECT_EQ(m.getDelFn(), 1u);  // counters are the caller's to reset
  ASSERT_TRUE(m.compactVertices(vmap));
  EXPECT_EQ(vmap, (std::vector<unsigned>{none, 0, 1, 2, 3, 4, 5, 6, 7, none, none}));
  EXPECT_EQ(m.vn(), 8u);
  EXPECT_EQ(m.vPos(vmap[4]), p3(1, 1, 0));
  unsigned ids[4];
  m.getFV(0, ids);  // old face 1 was (1, 2, 5, 4)
  EXPECT_EQ(std::vector<unsigned>(ids, ids + 4), (std::vector<unsigned>{0, 1, 4, 3}));
  ASSERT_TRUE(m.compactEdges(emap));
  EXPECT_EQ(emap[0], none);
  EXPECT_EQ(m.en(), 10u);
  // VE keeps its flag but only each vertex's first entry was renamed: the caller rebuilds
  EXPECT_TRUE(m.isVEValid());
  m.setDelVn(0);
  m.setDelEn(0);
  m.setDelFn(0);
  m.computeVE();
  EXPECT_MESH_VALID(m);

  editMesh fresh;
  fresh.vertStore() = m.vertStore();
  fresh.checkMeshState();
  for (unsigned f = 0; f < m.fn(); ++f) {
    m.getFV(f, ids);
    fresh.addFace(ids, m.fVNum(f));
  }
  finishMesh(fresh);
  EXPECT_EQ(fresh.en(), m.en());
}

TEST(editMeshCompaction, faceIdsInEFFollowTheMap) {
  editMesh m;
  makeSphere(m, 6, 8);
  finishMesh(m);
  for (unsigned f = 0; f < m.fn(); f += 4) m.deleteFaceUpdatingEdges(f);
  m.deleteWireEdgesGuarded();
  ASSERT_MESH_VALID(m);
  std::vector<unsigned> fmap, emap;
  ASSERT_TRUE(m.compactFaces(fmap));
  ASSERT_TRUE(m.compactEdges(emap));
  m.setDelFn(0);
  m.setDelEn(0);
  m.computeVE();
  EXPECT_MESH_VALID(m);
  // the same lists as a rebuild from scratch, up to edge order
  editMesh fresh(m);
  fresh.computeEdges(false);
  fresh.computeVE();
  ASSERT_EQ(fresh.en(), m.en());
  for (unsigned e = 0; e < m.en(); ++e) {
    const unsigned g = fresh.findSharedEdgeFromVertices(m.eV(e, 0), m.eV(e, 1));
    ASSERT_NE(g, fresh.getMaxValue());
    ASSERT_EQ(fresh.eFNum(g), m.eFNum(e));
    for (unsigned k = 0; k < m.eFNum(e); ++k) {
      EXPECT_EQ(fresh.eF(g, k), m.eF(e, k));
      EXPECT_EQ(fresh.E2F(g, k).corner, m.E2F(e, k).corner);
    }
  }
}

TEST(editMeshCompaction, edgesLeftAloneWhileInvalid) {
  editMesh m;
  addIsolatedVertices(m, 1);
  makeGrid(m, 1, 1);  // vertices 1..4
  m.computeEVEF();    // edges exist, but their flag still says invalid
  m.computeVE();
  const unsigned before = m.eV(0, 0);
  EXPECT_FALSE(m.compactEdges());
  m.deleteVertex(0);
  ASSERT_TRUE(m.compactVertices());
  EXPECT_EQ(m.eV(0, 0), before);  // stale on purpose: the caller rebuilds
  EXPECT_EQ(m.fV(0, 0), 0u);
  EXPECT_NE(m.checkInvariants(), "");
  m.setDelVn(0);
  m.computeEVEF();
  m.computeVE();
  EXPECT_MESH_VALID(m);
}

TEST(editMeshSelection, facesCloseOverTheirVertices) {
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  m.selectFace(0);
  EXPECT_EQ(m.getSelFn(), 1u);
  EXPECT_EQ(m.getSelFvn(), 4u);
  EXPECT_EQ(m.getSelVn(), 4u);
  EXPECT_EQ(m.getSelVertSum(), p3(2, 2, 0));
  EXPECT_EQ(m.getSelVertBarycenter(), p3(0.5f, 0.5f, 0));
  EXPECT_EQ(m.getMaxSelFaceSize(), 4u);
  m.selectFace(1);
  EXPECT_EQ(m.getSelVn(), 6u);
  EXPECT_MESH_VALID(m);

  // vertices 1 and 4 are held by face 1
  m.deselectFace(0);
  EXPECT_FALSE(m.isVertSelected(0));
  EXPECT_TRUE(m.isVertSelected(1));
  EXPECT_TRUE(m.isVertSelected(4));
  EXPECT_EQ(m.getSelVn(), 4u);
  EXPECT_EQ(m.getMaxSelFaceSize(), 4u);
  EXPECT_MESH_VALID(m);

  m.invertFaceSelection();
  EXPECT_TRUE(m.isFaceSelected(0));
  EXPECT_FALSE(m.isFaceSelected(1));
  EXPECT_EQ(m.getSelVn(), 4u);
  EXPECT_TRUE(m.isVertSelected(1));
  EXPECT_FALSE(m.isVertSelected(2));
  EXPECT_MESH_VALID(m);

  m.selectAllFaces();
  EXPECT_EQ(m.getSelVn(), 6u);
  m.deselectAllFaces();
  EXPECT_EQ(m.getSelVn() + m.getSelFn() + m.getSelFvn(), 0u);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshSelection, anEdgeAloneDoesNotHoldAVertex) {
  editMesh m;
  makeGrid(m, 2, 1);
  finishMesh(m);
  const unsigned e01 = m.findSharedEdgeFromVertices(0, 1);
  const unsigned e03 = m.findSharedEdgeFromVertices(0, 3);
  const unsigned e12 = m.findSharedEdgeFromVertices(1, 2);
  m.selectEdge(e01);
  m.selectEdge(e03);
  EXPECT_EQ(m.getSelEn(), 2u);
  EXPECT_EQ(m.getSelVn(), 3u);
  m.deselectEdge(e01);
  // vertex 0 goes although e03 is still selected
  EXPECT_FALSE(m.isVertSelected(0));
  EXPECT_FALSE(m.isVertSelected(1));
  EXPECT_TRUE(m.isVertSelected(3));
  EXPECT_EQ(m.getSelVn(), 1u);
  EXPECT_MESH_VALID(m);

  m.clearGeomSelectionState();
  m.selectFace(0);
  m.selectEdge(e12);
  m.deselectEdge(e12);
  EXPECT_TRUE(m.isVertSelected(1));  // held by face 0
  EXPECT_FALSE(m.isVertSelected(2));
  EXPECT_MESH_VALID(m);
}

TEST(editMeshSelection, deselectionWithoutAdjacencyReadsTheFaces) {
  editMesh m;
  makeGrid(m, 2, 1);
  m.selectFace(0);
  m.selectFace(1);
  m.deselectFace(0);
  EXPECT_TRUE(m.isVertSelected(1));
  EXPECT_FALSE(m.isVertSelected(0));
  EXPECT_EQ(m.getSelVn(), 4u);
  EXPECT_MESH_VALID(m);
}

TEST(editMeshSelection, sumsFollowMovedVerticesOnRequest) {
  editMesh m;
  makeCube(m);
  finishMesh(m);
  m.selectFace(0);
  m.vPos(0) = p3(-1, -1, -1);
  EXPECT_NE(m.checkInvariants().find("selVertSum"), std::string::npos);
  m.updateSelVertPosNorSum();
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(m.getSelVertSum(), p3(1, 1, -1));
}

namespace {
struct progressLog {
  JEV::SYSTEM::callBack* cb;
  std::vector<float> seen;
  void record() { seen.push_back(cb->value.cV()); }
};
}  // namespace

TEST(editMeshEdges, progressReachesTheReporter) {
  editMesh m;
  makeSphere(m, 6, 8);
  JEV::SYSTEM::callBack cb;
  progressLog log{&cb, {}};
  cb.onChange = JEV::SYSTEM::makeDelegate(&log, &progressLog::record);
  int progress = -1;
  ASSERT_TRUE(m.computeEdgesOpt(progress, &cb));
  EXPECT_EQ(progress, 100);
  ASSERT_GE(log.seen.size(), 3u);
  EXPECT_FLOAT_EQ(log.seen.front(), 0.f);
  EXPECT_FLOAT_EQ(log.seen.back(), 100.f);
  EXPECT_TRUE(std::is_sorted(log.seen.begin(), log.seen.end()));
  EXPECT_MESH_VALID(m);
}

TEST(editMeshCheck, reportsWhatIsWrong) {
  editMesh m;
  makeGrid(m, 2, 2);
  finishMesh(m);
  ASSERT_MESH_VALID(m);

  editMesh a(m);
  a.setSelFn(3);
  EXPECT_NE(a.checkInvariants().find("selFn is 3"), std::string::npos);

  editMesh b(m);
  b.setVertFlag(4, JEV::MESH::VERT_STATE_T::DELETED);
  EXPECT_NE(b.checkInvariants().find("which is deleted"), std::string::npos);

  editMesh c(m);
  c.addTriFace(0, 1, 3);  // not in the edges yet
  EXPECT_NE(c.checkInvariants().find("missing from the EF lists"), std::string::npos);
  finishMesh(c);
  EXPECT_MESH_VALID(c);

  editMesh d(m);
  d.E2F(0, 0).corner = 3;
  EXPECT_NE(d.checkInvariants().find("names side"), std::string::npos);

  editMesh e(m);
  e.VE(0) = 7;
  EXPECT_NE(e.checkInvariants().find("does not end at it"), std::string::npos);
  e.invalidateVE();
  EXPECT_MESH_VALID(e);  // a VE marked stale is not read

  editMesh f(m);
  f.faceFlags().pop_back();
  EXPECT_NE(f.checkInvariants().find("fFlag holds"), std::string::npos);
  f.checkMeshState();
  EXPECT_MESH_VALID(f);

  editMesh g(m);
  for (unsigned k = 0; k < 30; ++k) g.addTriFace(0, 1, 3);
  EXPECT_NE(g.checkInvariants(5).find("... and "), std::string::npos);
}

TEST(editMeshRenderState, hidingHonoursTheGuard) {
  editMesh m;
  m.vertexRenderStateValid = m.edgeRenderStateValid = true;
  m.invalidationGuard = true;
  m.hideSelectedFaces();
  EXPECT_TRUE(m.hideSelected);
  EXPECT_TRUE(m.vertexRenderStateValid);
  m.invalidationGuard = false;
  m.hideUnselectedFaces();
  EXPECT_FALSE(m.hideSelected);
  EXPECT_TRUE(m.hideUnselected);
  EXPECT_FALSE(m.vertexRenderStateValid);
  EXPECT_FALSE(m.edgeRenderStateValid);
  m.showAllFaces();
  EXPECT_FALSE(m.hideUnselected);

  // the guard is a field: linked to an application's flag, it reads the flag
  JEV::SYSTEM::fieldBase<bool> editing(true);
  m.invalidationGuard.connect(&editing, true);
  m.vertexRenderStateValid = true;
  m.showAllFaces();
  EXPECT_TRUE(m.vertexRenderStateValid);
  editing = false;
  m.invalidateSelectedVertFlags();
  EXPECT_FALSE(m.vertexRenderStateValid);
  m.invalidationGuard.disconnect();
}
