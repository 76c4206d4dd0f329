#include <gtest/gtest.h>

#include "jev3d/io/ply/ioPly.h"
#include "support/dataFiles.h"

using JEV::CORE::color;
using JEV::IO::PLY::ioPly;
using JEV::IO::PLY::plyPolygonMesh;
using JEV::MATH::point2;
using JEV::MATH::point3;

namespace {

struct fullRead {
  std::vector<point3<float>> positions, normals;
  std::vector<color> colours;
  std::vector<point2<float>> texture;
  std::vector<unsigned> triangles;
  std::string textureName;
  bool ok = false;
};

fullRead readFull(const std::string& relative) {
  fullRead r;
  r.ok = ioPly::readPlyFromFile(dataFile(relative), r.positions, r.normals, r.colours, r.texture,
                                r.triangles, r.textureName);
  return r;
}

struct expected {
  const char* file;
  size_t vertices;
  size_t faces;
  bool normals;
  bool colours;
  bool texture;
};

TEST(plyRealFiles, triangleFilesReadWithTheirCounts) {
  const expected files[] = {
      {"ply/stanford_bun_zipper.ply", 35947, 69451, false, false, false},
      {"ply/stanford_bun_zipper_res4.ply", 453, 948, false, false, false},
      {"ply/stanford_bun_zipper_res4_BE.ply", 453, 948, false, false, false},
      {"ply/cyberware_horse.ply", 48485, 96966, true, false, false},
      {"ply/isti_gargoyle.ply", 25002, 50000, true, true, false},
      {"ply/dental_Upper_1.ply", 12983, 24351, false, false, false},
      {"ply/armadillo.ply", 43243, 86482, false, false, false},
      {"ply/turk_big_dodge.ply", 8477, 16646, false, false, false},
      {"ply/turk_airplane.ply", 1335, 2452, false, false, false},
      {"ply/assimp_float-color.ply", 3, 1, false, true, false},
      {"ply/assimp_points.ply", 4, 0, true, true, false},
      {"ply/open3d_knot_facetexcoord.ply", 1440, 2880, true, false, true},
  };
  for (const expected& e : files) {
    JEV3D_REQUIRE_DATA(e.file);
    const fullRead r = readFull(e.file);
    ASSERT_TRUE(r.ok) << e.file;
    EXPECT_EQ(r.positions.size(), e.vertices) << e.file;
    EXPECT_EQ(r.triangles.size(), 3 * e.faces) << e.file;
    EXPECT_EQ(r.normals.size(), e.normals ? e.vertices : 0) << e.file;
    EXPECT_EQ(r.colours.size(), e.colours ? e.vertices : 0) << e.file;
    EXPECT_EQ(r.texture.size(), e.texture ? e.vertices : 0) << e.file;
    for (const unsigned i : r.triangles) ASSERT_LT(i, e.vertices) << e.file;

    unsigned vertices = 0, faces = 0;
    bool normals = false, colours = false, reserved = false, texture = false;
    ASSERT_TRUE(ioPly::readPlyInfoFromFile(dataFile(e.file), vertices, faces, normals, colours,
                                           reserved, texture));
    EXPECT_EQ(vertices, e.vertices);
    EXPECT_EQ(faces, e.faces);
    EXPECT_EQ(normals, e.normals);
    EXPECT_EQ(colours, e.colours);
    EXPECT_EQ(texture, e.texture);
  }
}

TEST(plyRealFiles, bigEndianCopyHoldsTheSameValues) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper_res4_BE.ply");
  const fullRead ascii = readFull("ply/stanford_bun_zipper_res4.ply");
  const fullRead big = readFull("ply/stanford_bun_zipper_res4_BE.ply");
  ASSERT_TRUE(ascii.ok && big.ok);
  EXPECT_EQ(ascii.positions, big.positions);
  EXPECT_EQ(ascii.triangles, big.triangles);
}

TEST(plyRealFiles, floatColoursAndRgbaReadAsBytes) {
  JEV3D_REQUIRE_DATA("ply/assimp_float-color.ply");
  const fullRead f = readFull("ply/assimp_float-color.ply");
  ASSERT_TRUE(f.ok);
  EXPECT_EQ(f.colours[0], color(0, 0, 255, 255));
  const fullRead g = readFull("ply/isti_gargoyle.ply");
  ASSERT_TRUE(g.ok);
  // The first vertex's bytes in the file are 196 196 196 255.
  EXPECT_EQ(g.colours[0], color(196, 196, 196, 255));
  EXPECT_EQ(g.colours[1], color(153, 153, 153, 255));
}

TEST(plyRealFiles, quadFilesFailAsTrianglesAndReadAsPolygons) {
  for (const auto& [file, vertices, faces] :
       {std::tuple<const char*, size_t, size_t>{"ply/spot_quads.ply", 2930, 2928},
        {"ply/assimp_cube_quads.ply", 8, 6}}) {
    JEV3D_REQUIRE_DATA(file);
    EXPECT_FALSE(readFull(file).ok) << file;
    plyPolygonMesh mesh;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dataFile(file), mesh)) << file;
    EXPECT_EQ(mesh.positions.size(), vertices);
    EXPECT_EQ(mesh.cornerCounts, std::vector<unsigned>(faces, 4u));
    EXPECT_EQ(mesh.corners.size(), 4 * faces);
  }
}

TEST(plyRealFiles, brokenFilesFail) {
  for (const char* file : {"ply/assimp_issue623.ply", "ply/assimp_pond.0.ply"}) {
    JEV3D_REQUIRE_DATA(file);
    EXPECT_FALSE(readFull(file).ok) << file;
  }
}

}  // namespace
