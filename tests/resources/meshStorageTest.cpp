#include "jev3d/resources/meshStorage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/stl/ioStl.h"
#include "jev3d/resources/resourceInstance.h"
#include "support/fileBytes.h"
#include "support/tempDir.h"

using namespace JEV;
using MATH::point3;

namespace {

using meshPointer = SYSTEM::sharedPointer<MESH::mesh>;
using meshUser = CORE::resourceInstance<CORE::meshStorage, CORE::meshClient, meshPointer>;

// A unit square in z = 0 as two triangles facing +z, and a fifth point off to the side.
const std::vector<point3<float>> squarePositions = {
    {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 2}};
const std::vector<unsigned> squareTriangles = {0, 1, 2, 0, 2, 3};

}  // namespace

TEST(meshStorage, plyWithoutNormalsGetsThemComputed) {
  tempDir dir;
  const std::string path = dir.file("square.ply");
  ASSERT_TRUE(
      IO::PLY::ioPly::writePlyToFile(path, squarePositions, {}, {}, {}, squareTriangles, true));
  CORE::meshStorage s(nullptr);
  ASSERT_TRUE(s.loadMeshFromFile(path, "square"));
  meshUser user(&s);
  ASSERT_TRUE(user.connectToResourceStorage("square"));
  const MESH::mesh& m = *user.getSharedResource();
  EXPECT_EQ(m.getPositions(), squarePositions);
  EXPECT_EQ(m.getTriangles(), squareTriangles);
  ASSERT_EQ(m.getNormals().size(), squarePositions.size());
  for (int v = 0; v < 4; ++v) {
    EXPECT_FLOAT_EQ(m.getNormals()[size_t(v)].z, 1.0f) << v;
  }
  // The lone point has no face and keeps the null normal.
  EXPECT_FLOAT_EQ(m.getNormals()[4].norm(), 0.0f);
  EXPECT_EQ(m.getBoxMin(), point3<float>(0, 0, 0));
  EXPECT_EQ(m.getBoxMax(), point3<float>(1, 1, 2));
  EXPECT_FALSE(m.isCached());
}

TEST(meshStorage, stlGivesThreeCornersAFacetWithTheFacetNormal) {
  tempDir dir;
  const std::string path = dir.file("square.stl");
  const std::vector<point3<float>> facetNormals = {{0, 0, 1}, {0, 0, 1}};
  ASSERT_TRUE(
      IO::STL::ioStl::writeStlToFile(path, squarePositions, squareTriangles, facetNormals, true));
  CORE::meshStorage s(nullptr);
  ASSERT_TRUE(s.loadMeshFromFile(path, "square"));
  const MESH::mesh& m = *s.getEntry("square")->getPayload();
  ASSERT_EQ(m.getPositions().size(), 6u);
  EXPECT_EQ(m.getPositions()[4], squarePositions[2]);
  EXPECT_EQ(m.getTriangles(), (std::vector<unsigned>{0, 1, 2, 3, 4, 5}));
  for (const auto& n : m.getNormals()) EXPECT_EQ(n, point3<float>(0, 0, 1));
  EXPECT_EQ(m.getBoxMax(), point3<float>(1, 1, 0));
}

TEST(meshStorage, aFileThatDoesNotReadLeavesNothingAndKeepsTheOldMesh) {
  tempDir dir;
  const std::string good = dir.file("square.ply");
  const std::string bad = dir.file("bad.ply");
  ASSERT_TRUE(
      IO::PLY::ioPly::writePlyToFile(good, squarePositions, {}, {}, {}, squareTriangles, false));
  const std::string text = readBytes(good);
  writeBytes(bad, text.substr(0, text.size() - 12));
  CORE::meshStorage s(nullptr);
  EXPECT_FALSE(s.loadMeshFromFile(bad, "square"));
  EXPECT_FALSE(s.loadMeshFromFile(dir.file("missing.stl"), "square"));
  EXPECT_EQ(s.getEntryCount(), 0);
  ASSERT_TRUE(s.loadMeshFromFile(good, "square"));
  EXPECT_FALSE(s.loadMeshFromFile(bad, "square", 0, true));
  EXPECT_EQ(s.getEntry("square")->getPayload()->getTriangles().size(), 6u);
  s.getEntry("square")->getPayload()->clear();
  EXPECT_TRUE(s.getEntry("square")->getPayload()->getPositions().empty());
}
