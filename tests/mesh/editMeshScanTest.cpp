#include <gtest/gtest.h>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

using JEV::IO::PLY::ioPly;
using JEV::IO::PLY::plyPolygonMesh;
using JEV::MESH::editMesh;
using namespace testMeshes;
using namespace topologyChecks;

namespace {

bool loadPolygons(const std::string& relative, editMesh& m) {
  plyPolygonMesh p;
  if (!ioPly::readPlyPolygonsFromFile(dataFile(relative), p)) return false;
  for (const p3& q : p.positions) m.addVertex(q);
  size_t at = 0;
  for (unsigned n : p.cornerCounts) {
    m.addFace(&p.corners[at], n);
    at += n;
  }
  finishMesh(m);
  return true;
}

}  // namespace

TEST(editMeshScans, quadCowSubdividesIntoAClosedSmoothedCow) {
  JEV3D_REQUIRE_DATA("ply/spot_quads.ply");
  editMesh m;
  ASSERT_TRUE(loadPolygons("ply/spot_quads.ply", m));
  ASSERT_TRUE(closedAndOriented(m));
  const double volume = signedVolume(m);

  editMesh refined;
  refined.clone(&m);
  refined.refine();
  EXPECT_MESH_VALID(refined);
  EXPECT_TRUE(closedAndOriented(refined));
  // the quads are not flat: splitting them at their centroids moves the surface a hair
  EXPECT_NEAR(signedVolume(refined), volume, 1e-4 * volume);

  m.catmullClarkSubdivideVE();
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 4u * 2928u);
  EXPECT_TRUE(closedAndOriented(m));
  // smoothing pulls a convex-ish surface in a little, never inside out
  EXPECT_LT(signedVolume(m), volume);
  EXPECT_GT(signedVolume(m), 0.9 * volume);

  m.triangulate();
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 8u * 2928u);
  EXPECT_TRUE(closedAndOriented(m));
}

TEST(editMeshScans, nonManifoldBunnyKeepsTheInvariantsThroughEveryStep) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper_res4.ply");
  editMesh m;
  ASSERT_TRUE(loadPolygons("ply/stanford_bun_zipper_res4.ply", m));
  ASSERT_MESH_VALID(m);
  for (unsigned f = 0; f < m.fn(); f += 7) m.selectFace(f);
  m.extrudeRegion();
  EXPECT_MESH_VALID(m);
  m.midpointTriangulate(true, true);
  EXPECT_MESH_VALID(m);
  m.catmullClarkSubdivideVE();
  EXPECT_MESH_VALID(m);
  m.loopCut(m.en() / 3);
  EXPECT_MESH_VALID(m);
  m.mirrorMesh(0, p3(0.f, 1.f, 0.f));
  EXPECT_MESH_VALID(m);
  const double area = totalArea(m);
  m.triangulate();
  EXPECT_MESH_VALID(m);
  EXPECT_NEAR(totalArea(m), area, 1e-3 * area);
}
