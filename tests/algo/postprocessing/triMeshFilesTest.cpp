// triMesh files: the extension dispatch, real scans read, filtered and written back, and
// bad files failing cleanly.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <tuple>

#include "algo/postprocessing/triMeshSupport.h"
#include "support/dataFiles.h"
#include "support/tempDir.h"

using namespace triMeshChecks;

TEST(triMeshFiles, ExtensionDispatchIgnoresCaseAndKnowsThePlyAliases) {
  tempDir dir;
  triMesh m;
  m.makeSphere(1.f, 6, 8);
  ASSERT_TRUE(m.writeToFile(dir.file("a.ply")));
  for (const char* name : {"b.PLY", "c.Tmp", "d.OCD", "e.m", "f.M"}) {
    std::filesystem::copy_file(dir.path("a.ply"), dir.path(name));
    triMesh r;
    ASSERT_TRUE(r.readFromFile(dir.file(name))) << name;
    EXPECT_EQ(r.vn(), m.vn()) << name;
    EXPECT_EQ(r.fn(), m.fn()) << name;
  }
  // A PLY file under an unknown name is not opened: the mesh keeps what it held.
  std::filesystem::copy_file(dir.path("a.ply"), dir.path("g.obj"));
  std::filesystem::copy_file(dir.path("a.ply"), dir.path("model"));
  triMesh keep;
  keep.makeCube();
  EXPECT_FALSE(keep.readFromFile(dir.file("g.obj")));
  EXPECT_FALSE(keep.readFromFile(dir.file("model")));
  EXPECT_EQ(keep.fn(), 12u);
  EXPECT_FALSE(m.writeToFile(dir.file("h.obj")));
  EXPECT_FALSE(std::filesystem::exists(dir.path("h.obj")));
  // STL and point lists by extension too, in either case.
  ASSERT_TRUE(m.writeToFile(dir.file("s.StL"), false));
  triMesh s;
  ASSERT_TRUE(s.readFromFile(dir.file("s.StL")));
  EXPECT_EQ(s.vn(), m.vn());  // read welds on exact positions
  EXPECT_EQ(s.fn(), m.fn());
  m.computeVertexFaceNormalizedNormals(true);
  ASSERT_TRUE(m.writeToFile(dir.file("p.PTS")));
  std::ifstream pts(dir.file("p.PTS"));
  unsigned lines = 0;
  for (std::string line; std::getline(pts, line);) ++lines;
  EXPECT_EQ(lines, m.vn());
}

TEST(triMeshFiles, StlSoupWeldsToTheExactPositionCount) {
  JEV3D_REQUIRE_DATA("stl/assimp_Spider_binary.stl");
  triMesh soup;
  ASSERT_TRUE(soup.readStlFromFile(dataFile("stl/assimp_Spider_binary.stl"), false));
  EXPECT_EQ(soup.fn(), 1368u);
  EXPECT_EQ(soup.vn(), 3u * 1368u);
  EXPECT_TRUE(soup.hasFN());
  for (unsigned f = 0; f < soup.fn(); ++f) EXPECT_EQ(soup.fV1(f), 3 * f + 1);
  const size_t distinct = distinctPositions(soup);
  EXPECT_EQ(soup.removeDuplicateVertices(), soup.vn() - distinct);
  EXPECT_EQ(soup.vn(), distinct);
  EXPECT_EQ(soup.vn(), 722u);  // the data set's own count
  triMesh welded;
  ASSERT_TRUE(welded.readFromFile(dataFile("stl/assimp_Spider_ascii.stl")));
  EXPECT_EQ(welded.vn(), 722u);
  // 56 degenerate faces in this model: corners that weld together.
  EXPECT_EQ(welded.removeDegenerateFace(), 56u);
}

TEST(triMeshFiles, ScanRoundTripMatchesAnIndependentCount) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  tempDir dir;
  triMesh m;
  ASSERT_TRUE(m.readFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  ASSERT_EQ(m.vn(), 35947u);
  ASSERT_EQ(m.fn(), 69451u);
  // Count the vertices the faces use, independently of the filter.
  std::set<unsigned> used(m.getFaces().begin(), m.getFaces().end());
  EXPECT_EQ(m.removeUnReferenceVertex(), 1113u);
  EXPECT_EQ(m.vn(), used.size());
  EXPECT_EQ(m.removeDuplicateFaces(), 0u);
  EXPECT_EQ(m.removeDegenerateFace(), 0u);
  std::vector<unsigned> piece, sizes;
  const unsigned pieces = m.getIsolatePieces(piece, sizes);
  const double area0 = [&] {
    double a = 0;
    for (unsigned f = 0; f < m.fn(); ++f)
      a += 0.5 * p3::cross(m.vPos(f, 1) - m.vPos(f, 0), m.vPos(f, 2) - m.vPos(f, 0)).norm();
    return a;
  }();
  ASSERT_TRUE(m.writeToFile(dir.file("bunny.ply"), true));
  triMesh back;
  ASSERT_TRUE(back.readFromFile(dir.file("bunny.ply")));
  EXPECT_EQ(back.vn(), 34834u);
  EXPECT_EQ(back.fn(), 69451u);
  EXPECT_EQ(back.getFaces(), m.getFaces());
  EXPECT_EQ(back.getVertices(), m.getVertices());
  EXPECT_EQ(back.getIsolatePieces(piece, sizes), pieces);
  ASSERT_TRUE(back.writeToFile(dir.file("bunny.stl"), true));
  triMesh stl;
  ASSERT_TRUE(stl.readFromFile(dir.file("bunny.stl")));
  EXPECT_EQ(stl.fn(), 69451u);
  EXPECT_EQ(stl.vn(), 34834u);  // every vertex is used and positions are distinct
  double area1 = 0;
  for (unsigned f = 0; f < stl.fn(); ++f)
    area1 +=
        0.5 * p3::cross(stl.vPos(f, 1) - stl.vPos(f, 0), stl.vPos(f, 2) - stl.vPos(f, 0)).norm();
  EXPECT_NEAR(area1, area0, 1e-6 * area0);
}

TEST(triMeshFiles, DentalScanPiecesMatchAnIndependentCountAndTheLargestStays) {
  JEV3D_REQUIRE_DATA("ply/dental_Upper_1.ply");
  triMesh m;
  ASSERT_TRUE(m.readFromFile(dataFile("ply/dental_Upper_1.ply")));
  EXPECT_EQ(m.fn(), 24351u);
  // An independent count of the pieces joined through edges: union-find over the
  // faces of each edge, the edges found by sorting.
  std::vector<unsigned> parent(m.fn());
  for (unsigned f = 0; f < m.fn(); ++f) parent[f] = f;
  std::function<unsigned(unsigned)> root = [&](unsigned f) {
    return parent[f] == f ? f : parent[f] = root(parent[f]);
  };
  std::vector<std::tuple<unsigned, unsigned, unsigned>> sides;
  for (unsigned f = 0; f < m.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) {
      const unsigned a = m.fV(f, i), b = m.fV(f, (i + 1) % 3);
      sides.emplace_back(std::min(a, b), std::max(a, b), f);
    }
  std::sort(sides.begin(), sides.end());
  for (size_t k = 1; k < sides.size(); ++k)
    if (std::get<0>(sides[k]) == std::get<0>(sides[k - 1]) &&
        std::get<1>(sides[k]) == std::get<1>(sides[k - 1]))
      parent[root(std::get<2>(sides[k]))] = root(std::get<2>(sides[k - 1]));
  unsigned roots = 0;
  for (unsigned f = 0; f < m.fn(); ++f) roots += root(f) == f;
  EXPECT_GE(roots, 3u);  // three components by vertices; edges may split one further
  std::vector<unsigned> piece, sizes;
  ASSERT_EQ(m.getIsolatePieces(piece, sizes), roots);
  const unsigned largest = *std::max_element(sizes.begin(), sizes.end());
  EXPECT_EQ(m.removeMinorIsolatePieces(), 24351u - largest);
  EXPECT_EQ(m.getIsolatePieces(piece, sizes), 1u);
}

TEST(triMeshFiles, BadFilesFailWithoutACrash) {
  tempDir dir;
  triMesh m;
  EXPECT_FALSE(m.readFromFile(dir.file("missing.ply")));
  EXPECT_FALSE(m.readFromFile(dir.file("missing.stl")));
  // A good file cut in half, and one of noise.
  triMesh s;
  s.makeSphere(1.f, 10, 12);
  ASSERT_TRUE(s.writeToFile(dir.file("whole.ply"), true));
  const auto size = std::filesystem::file_size(dir.path("whole.ply"));
  std::filesystem::copy_file(dir.path("whole.ply"), dir.path("cut.ply"));
  std::filesystem::resize_file(dir.path("cut.ply"), size / 2);
  EXPECT_FALSE(m.readFromFile(dir.file("cut.ply")));
  {
    std::ofstream noise(dir.file("noise.stl"), std::ios::binary);
    noise << "solid x\nfacet normal 1 2\nvertex zz\n";
  }
  EXPECT_FALSE(m.readFromFile(dir.file("noise.stl")));
  for (const char* bad : {"ply/assimp_pond.0.ply", "ply/assimp_issue623.ply",
                          "stl/openscad_unparseable.stl", "stl/openscad_empty.stl"}) {
    if (!std::filesystem::exists(dataFile(bad))) continue;
    EXPECT_FALSE(m.readFromFile(dataFile(bad))) << bad;
  }
  // Nothing to write a bad mesh into: an index out of range is refused.
  triMesh broken;
  broken.makeQuad();
  broken.getFaces().push_back(0), broken.getFaces().push_back(1), broken.getFaces().push_back(99);
  EXPECT_FALSE(broken.writeToFile(dir.file("broken.ply")));
  EXPECT_FALSE(broken.writeToFile(dir.file("broken.stl")));
}
