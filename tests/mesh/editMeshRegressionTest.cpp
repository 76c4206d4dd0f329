#include <gtest/gtest.h>

#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
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

// Deleting a vertex deletes its edges, but the VE lists of their other ends keep them;
// compacting the vertices renames only live edges, so those deleted edges keep the old
// ids, and the check accepts them.
TEST(editMeshRegression, compactVerticesLeavesDeletedEdgesWithStaleIds) {
  editMesh m;
  testMeshes::makeGrid(m, 2, 2);
  testMeshes::finishMesh(m);
  const unsigned e01 = m.findSharedEdgeFromVertices(0, 1);
  const unsigned e12 = m.findSharedEdgeFromVertices(1, 2);
  m.deleteVertex(0);
  m.compactVertices();
  ASSERT_EQ(m.vn(), 8u);
  EXPECT_MESH_VALID(m);
  ASSERT_TRUE(m.edgeIsDeleted(e01));
  EXPECT_EQ(m.eV(e01, 0), 0u);  // old ids 0 and 1, not renamed
  EXPECT_EQ(m.eV(e01, 1), 1u);
  EXPECT_EQ(m.eV(e12, 0), 0u);  // live: old 1-2 is now 0-1
  EXPECT_EQ(m.eV(e12, 1), 1u);
  bool listed = false;
  for (unsigned i = 0; i < m.vENum(0); ++i) listed = listed || m.vE(0, i) == e01;
  EXPECT_TRUE(listed);
}

namespace {

using namespace testMeshes;

// Meshes with the awkward parts real data has: deleted faces, an edge on three faces,
// faces of one and two corners, unused vertices, a wire edge, a selection.
std::vector<editMesh> awkwardMeshes() {
  std::vector<editMesh> out(4);
  makeGrid(out[0], 3, 3);
  finishMesh(out[0]);
  out[0].selectFace(4);
  out[0].deleteFace(0);

  makeFan(out[1], 3);
  makeDegenerateFaces(out[1]);
  addIsolatedVertices(out[1], 2);
  out[1].addEdge(0, out[1].vn() - 1);
  finishMesh(out[1]);
  out[1].selectFace(0);

  makeSphere(out[2], 5, 7);
  makeOpenCone(out[2], 5);
  finishMesh(out[2]);
  out[2].deleteFaceUpdatingEdges(3);
  out[2].selectFace(10);

  makeGridWithHoles(out[3], 4, 3, {{1, 1}, {2, 1}});
  out[3].invalidateEVEF();  // adjacency stale when the operation starts
  return out;
}

}  // namespace

TEST(editMeshRegression, everyOperationKeepsTheInvariantsOnAwkwardMeshes) {
  using op = void (*)(editMesh&);
  const std::vector<std::pair<const char*, op>> ops = {
      {"extrudeRegion", [](editMesh& m) { m.extrudeRegion(); }},
      {"extrudeFaces", [](editMesh& m) { m.extrudeFaces(); }},
      {"extractRegion", [](editMesh& m) { m.extractRegion(); }},
      {"extractCappedRegion", [](editMesh& m) { m.extractCappedRegion(); }},
      {"extrudeEdges",
       [](editMesh& m) {
         m.extrudeEdges({0, 1, 2, m.en() - 1});
       }},
      {"extrudeVertices",
       [](editMesh& m) {
         m.extrudeVertices({0, 1, m.vn() - 1});
       }},
      {"splitFace", [](editMesh& m) { m.splitFace(2, m.fV(2, 0), m.fV(2, 2)); }},
      {"loopCut", [](editMesh& m) { m.loopCut(m.en() / 2); }},
      {"catmullClark", [](editMesh& m) { m.catmullClarkSubdivideVE(); }},
      {"catmullClarkSelected", [](editMesh& m) { m.catmullClarkSubdivideSelected(); }},
      {"refine", [](editMesh& m) { m.refine(); }},
      {"refineSelected", [](editMesh& m) { m.refineSelected(); }},
      {"midpointTriangulate", [](editMesh& m) { m.midpointTriangulate(false, true); }},
      {"midpointSelected", [](editMesh& m) { m.midpointTriangulate(true, false); }},
      {"triangulate", [](editMesh& m) { m.triangulate(); }},
      {"mirrorMesh", [](editMesh& m) { m.mirrorMesh(2, p3(1.f, 0.f, 0.f)); }},
      {"flatten",
       [](editMesh& m) {
         m.flatten({1, 2, 3}, p3());
       }},
      {"makeSolid", [](editMesh& m) { m.makeSolid(0.1f, 2); }},
  };
  for (const auto& [name, run] : ops) {
    unsigned k = 0;
    for (editMesh& m : awkwardMeshes()) {
      run(m);
      if (!m.isEVEFValid() || !m.isVEValid()) finishMesh(m);  // the ones that leave it stale
      EXPECT_EQ(m.checkInvariants(), "") << name << " on mesh " << k;
      ++k;
    }
  }
}

TEST(editMeshRegression, catmullClarkCountedFacesDeletedSinceTheLastRebuild) {
  editMesh lingering, rebuilt;
  makeGrid(lingering, 3, 3);
  finishMesh(lingering);
  lingering.deleteFace(4);  // EF still lists it until the next rebuild
  makeGridWithHoles(rebuilt, 3, 3, {{1, 1}});
  finishMesh(rebuilt);
  lingering.catmullClarkSubdivideVE();
  rebuilt.catmullClarkSubdivideVE();
  EXPECT_MESH_VALID(lingering);
  for (unsigned v = 0; v < 16; ++v)
    EXPECT_LT((lingering.vPos(v) - rebuilt.vPos(v)).norm(), 1e-6f) << v;
  // a corner of the hole follows the border rule
  EXPECT_LT((lingering.vPos(5) - p3(1.125f, 1.125f, 0.f)).norm(), 1e-6f);
}

TEST(editMeshRegression, extrudeRegionLeftInteriorEdgesBehindNextToALingeringDeletedFace) {
  editMesh m;
  makeGrid(m, 3, 1);
  const unsigned extra = m.addTriFace(1, 2, 6);  // a third face on the edge 1-2
  finishMesh(m);
  m.deleteFace(extra);  // still listed on the edge until the next rebuild
  std::vector<unsigned> strip{0, 1, 2};
  m.extrudeRegion(strip);
  topologyChecks::recountVertexSelection(m);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fn(), 4u + 8u);  // walls on the eight border edges only
  // the edges between the cells moved with them
  for (unsigned e = 0; e < m.en(); ++e)
    if (m.eFNum(e) == 2 && m.eF(e, 0) < 3 && m.eF(e, 1) < 3) {
      EXPECT_GE(m.eV(e, 0), 8u);
      EXPECT_GE(m.eV(e, 1), 8u);
    }
}

TEST(editMeshRegression, extrudingAOneCornerFaceMadeDuplicateEdges) {
  // A wall raised on a one-corner face repeated its corner: a later split added an edge
  // beside an existing one, and an extraction then broke the face lists on the edges.
  editMesh m;
  makeDegenerateFaces(m);
  makeCube(m);
  finishMesh(m);
  const unsigned faces = m.fn(), vertices = m.vn();
  std::vector<unsigned int> degenerate = {0, 1};
  m.extrudeFaces(degenerate);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fn(), faces);
  EXPECT_EQ(m.vn(), vertices);
  std::vector<unsigned int> mixed = {0, 2};
  m.extractRegion(mixed);
  ASSERT_MESH_VALID(m);
  EXPECT_EQ(m.fVNum(0), 1u);
  EXPECT_GT(m.vn(), vertices);  // the triangle moved onto copies of its corners
}
