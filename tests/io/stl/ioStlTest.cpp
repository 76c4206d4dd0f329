#include "jev3d/io/stl/ioStl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/dataFiles.h"
#include "support/fileBytes.h"
#include "support/recordingCallBack.h"
#include "support/tempDir.h"

using JEV::IO::STL::ioStl;
using JEV::MATH::point3;

namespace {

struct soup {
  std::vector<point3<float>> positions;
  std::vector<point3<float>> normals;
  bool ok = false;
};

soup read(const std::string& path) {
  soup s;
  s.ok = ioStl::readStlFromFile(path, s.positions, s.normals);
  return s;
}

const std::vector<point3<float>> square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0.5f}};
const std::vector<unsigned> squareTriangles = {0, 1, 2, 0, 2, 3};
const std::vector<point3<float>> squareNormals = {{0, 0, 1}, {0, -0.4472136f, 0.8944272f}};

TEST(ioStl, asciiWriterWritesTheExactLines) {
  tempDir dir;
  const std::vector<point3<float>> positions = {
      {1, -2.5f, 1e-7f}, {123456.7f, 0, -0.0f}, {3.14159274f, 1e30f, 2}};
  ASSERT_TRUE(ioStl::writeStlToFile(dir.file("a.stl"), positions, {0, 1, 2}, {{0, 0, 1}}, false));
  EXPECT_EQ(readBytes(dir.file("a.stl")),
            "solid\n"
            "  facet normal  0.000000e+00  0.000000e+00  1.000000e+00\n"
            "    outer loop\n"
            "      vertex   1.000000e+00 -2.500000e+00  1.000000e-07\n"
            "      vertex   1.234567e+05  0.000000e+00 -0.000000e+00\n"
            "      vertex   3.141593e+00  1.000000e+30  2.000000e+00\n"
            "    endloop\n"
            "  endfacet\n"
            "endsolid\n");
  const soup s = read(dir.file("a.stl"));
  ASSERT_TRUE(s.ok);
  ASSERT_EQ(s.positions.size(), 3u);
  EXPECT_FLOAT_EQ(s.positions[1].x, 123456.7f);
  EXPECT_EQ(s.normals, (std::vector<point3<float>>{{0, 0, 1}}));
}

TEST(ioStl, binaryRoundTripsInBothArrayForms) {
  tempDir dir;
  ASSERT_TRUE(
      ioStl::writeStlToFile(dir.file("b.stl"), square, squareTriangles, squareNormals, true));
  const std::string bytes = readBytes(dir.file("b.stl"));
  ASSERT_EQ(bytes.size(), 84u + 2 * 50);
  EXPECT_EQ(bytes.substr(0, 80), std::string(80, ' '));
  EXPECT_EQ(bytes.substr(80, 4), std::string("\x02\0\0\0", 4));
  EXPECT_EQ(bytes.substr(84 + 48, 2), std::string("\0\0", 2));
  const soup s = read(dir.file("b.stl"));
  ASSERT_TRUE(s.ok);
  EXPECT_EQ(s.positions, (std::vector<point3<float>>{square[0], square[1], square[2], square[0],
                                                     square[2], square[3]}));
  EXPECT_EQ(s.normals, squareNormals);

  std::vector<float> flat, flatNormals;
  ASSERT_TRUE(ioStl::readStlFromFile(dir.file("b.stl"), flat, flatNormals));
  ASSERT_TRUE(ioStl::writeStlToFile(dir.file("c.stl"), flat, flatNormals, true));
  EXPECT_EQ(readBytes(dir.file("c.stl")), bytes);
  ASSERT_TRUE(ioStl::writeStlToFile(dir.file("d.stl"), flat, flatNormals, false));
  std::vector<float> again, againNormals;
  ASSERT_TRUE(ioStl::readStlFromFile(dir.file("d.stl"), again, againNormals));
  EXPECT_EQ(again, flat);
  EXPECT_EQ(againNormals, flatNormals);
}

TEST(ioStl, formIsToldBySizeOrByHighBytes) {
  tempDir dir;
  // A binary header that starts with "solid" is still binary: the size matches.
  ASSERT_TRUE(
      ioStl::writeStlToFile(dir.file("b.stl"), square, squareTriangles, squareNormals, true));
  std::string bytes = readBytes(dir.file("b.stl"));
  bytes.replace(0, 6, "solid ");
  writeBytes(dir.file("solid.stl"), bytes);
  EXPECT_EQ(read(dir.file("solid.stl")).positions.size(), 6u);

  // A text whose length matches 84 + 50·count for the word at offset 80 reads as binary.
  std::string text = "solid x\n" + std::string(72, ' ') + std::string("\x01\0\0\0", 4);
  text += std::string(50, 'a');
  writeBytes(dir.file("t.stl"), text);
  const soup t = read(dir.file("t.stl"));
  EXPECT_TRUE(t.ok);
  EXPECT_EQ(t.positions.size(), 3u);

  // A byte above 127 after offset 84 makes binary whatever the size; this one is short.
  std::string high = bytes.substr(0, bytes.size() - 1);
  high[90] = char(0xC0);
  writeBytes(dir.file("h.stl"), high);
  EXPECT_FALSE(read(dir.file("h.stl")).ok);
}

TEST(ioStl, asciiEdgeCases) {
  tempDir dir;
  writeBytes(dir.file("empty.stl"), "solid\nendsolid\n");
  const soup e = read(dir.file("empty.stl"));
  EXPECT_TRUE(e.ok);
  EXPECT_TRUE(e.positions.empty());

  writeBytes(dir.file("nonl.stl"), "solid x facet normal 0 0 1");
  EXPECT_FALSE(read(dir.file("nonl.stl")).ok);
  writeBytes(dir.file("zero.stl"), "");
  EXPECT_FALSE(read(dir.file("zero.stl")).ok);

  const std::string facet =
      "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\n"
      "endfacet";
  // The last record with no newline and no endsolid is dropped; with a newline it is kept.
  writeBytes(dir.file("last.stl"), "solid\n" + facet + "\n" + facet);
  const soup last = read(dir.file("last.stl"));
  EXPECT_TRUE(last.ok);
  EXPECT_EQ(last.positions.size(), 3u);
  writeBytes(dir.file("kept.stl"), "solid\n" + facet + "\n" + facet + "\n");
  EXPECT_EQ(read(dir.file("kept.stl")).positions.size(), 6u);

  // Keywords are taken by position, not compared; two solids read whole.
  writeBytes(dir.file("words.stl"),
             "solid a\nf n 1 2 3\no l\nv 4 5 6\nv 7 8 9\nv 10 11 12\ne\ne\nendsolid a\n"
             "solid b\n" +
                 facet + "\nendsolid b\n");
  const soup w = read(dir.file("words.stl"));
  ASSERT_TRUE(w.ok);
  ASSERT_EQ(w.positions.size(), 6u);
  EXPECT_EQ(w.normals[0], point3<float>(1, 2, 3));
  EXPECT_EQ(w.positions[2], point3<float>(10, 11, 12));
  EXPECT_EQ(w.positions[4], point3<float>(1, 0, 0));

  writeBytes(dir.file("bad.stl"), "solid\nfacet normal 0 zero 1\n" + facet + "\n");
  EXPECT_FALSE(read(dir.file("bad.stl")).ok);
}

TEST(ioStl, infoCountsFacetsWithItsTwoRules) {
  tempDir dir;
  ASSERT_TRUE(
      ioStl::writeStlToFile(dir.file("b.stl"), square, squareTriangles, squareNormals, true));
  ASSERT_TRUE(
      ioStl::writeStlToFile(dir.file("a.stl"), square, squareTriangles, squareNormals, false));
  unsigned vertices = 0, faces = 0;
  ASSERT_TRUE(ioStl::readStlInfoFromFile(dir.file("b.stl"), vertices, faces));
  EXPECT_EQ(faces, 2u);
  EXPECT_EQ(vertices, 6u);
  const std::string narrow = dir.file("a.stl");
  ASSERT_TRUE(
      ioStl::readStlInfoFromFile(std::wstring(narrow.begin(), narrow.end()), vertices, faces));
  EXPECT_EQ(faces, 2u);
  EXPECT_EQ(vertices, 0u);  // a third of the facets, on purpose
}

TEST(ioStl, fewerNormalsThanFacetsFailsAndLeavesAnEmptyFile) {
  tempDir dir;
  for (const bool binary : {false, true}) {
    EXPECT_FALSE(ioStl::writeStlToFile(dir.file("n.stl"), square, squareTriangles,
                                       {squareNormals[0]}, binary));
    EXPECT_TRUE(std::filesystem::exists(dir.path("n.stl")));
    EXPECT_EQ(std::filesystem::file_size(dir.path("n.stl")), 0u);
    EXPECT_FALSE(ioStl::writeStlToFile(dir.file("f.stl"), std::vector<float>(18, 1.0f),
                                       std::vector<float>(3, 0.0f), binary));
    EXPECT_EQ(std::filesystem::file_size(dir.path("f.stl")), 0u);
  }
  EXPECT_FALSE(ioStl::writeStlToFile(dir.file("i.stl"), square, {0, 1, 4}, squareNormals, true));
}

TEST(ioStl, streamingWriterJoinsParts) {
  tempDir dir;
  FILE* file = ioStl::writeStlHeaderToFile(dir.file("s.stl"), 3);
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(ioStl::addDataToFile(file, square, squareTriangles, squareNormals));
  EXPECT_TRUE(ioStl::addDataToFile(file, square, {3, 2, 1}, {{1, 0, 0}}));
  EXPECT_FALSE(ioStl::addDataToFile(file, square, {3, 2, 1}, {}));
  EXPECT_TRUE(ioStl::closeFile(file));
  EXPECT_FALSE(ioStl::closeFile(nullptr));
  const soup s = read(dir.file("s.stl"));
  ASSERT_TRUE(s.ok);
  ASSERT_EQ(s.positions.size(), 9u);
  EXPECT_EQ(s.positions[6], square[3]);
  EXPECT_EQ(s.normals[2], point3<float>(1, 0, 0));
  EXPECT_EQ(ioStl::writeStlHeaderToFile(dir.file("no/such/dir.stl"), 1), nullptr);
}

TEST(ioStl, realFilesReadWithThreeCornersAFacet) {
  const std::pair<const char*, size_t> files[] = {
      {"stl/prusa_endstop-block_ascii_crlf.stl", 308},
      {"stl/openscad_import_bin_solid.stl", 46},
      {"stl/prusa_plug-aligner_materialise_color.stl", 48},
      {"stl/prusa_raspberry_cover_nonmanifold.stl", 706},
      {"stl/assimp_Spider_ascii.stl", 1368},
      {"stl/assimp_Spider_binary.stl", 1368},
      {"stl/assimp_sphereWithHole.stl", 285},
      {"stl/assimp_triangle_with_two_solids.stl", 2},
      {"stl/assimp_3DSMaxExport.STL", 2000},
      {"stl/openscad_issue1580-back-to-back.stl", 10},
      {"stl/openscad_empty2.stl", 0},
  };
  for (const auto& [file, facets] : files) {
    JEV3D_REQUIRE_DATA(file);
    const soup s = read(dataFile(file));
    ASSERT_TRUE(s.ok) << file;
    EXPECT_EQ(s.positions.size(), 3 * facets) << file;
    EXPECT_EQ(s.normals.size(), facets) << file;
    unsigned vertices = 0, faces = 0;
    ASSERT_TRUE(ioStl::readStlInfoFromFile(dataFile(file), vertices, faces));
    EXPECT_EQ(faces, facets) << file;
  }
  const soup a = read(dataFile("stl/assimp_Spider_ascii.stl"));
  const soup b = read(dataFile("stl/assimp_Spider_binary.stl"));
  ASSERT_EQ(a.positions.size(), b.positions.size());
  for (size_t i = 0; i < a.positions.size(); ++i)
    ASSERT_NEAR((a.positions[i] - b.positions[i]).norm(), 0.0f, 1e-3f) << i;
  for (const char* file : {"stl/openscad_empty.stl", "stl/openscad_unparseable.stl"}) {
    EXPECT_FALSE(read(dataFile(file)).ok) << file;
  }
}

}  // namespace

namespace {

TEST(ioStl, progressReportsEveryFiveThousandFacets) {
  tempDir dir;
  const std::vector<float> positions(9 * 12000, 0.5f), normals(3 * 12000, 0.0f);
  for (const bool binary : {true, false}) {
    recordingCallBack writing;
    ASSERT_TRUE(ioStl::writeStlToFile(dir.file("p.stl"), positions, normals, binary, &writing));
    // Facets 0, 5000 and 10000 of 12000: 1 (raised from 0), 41, 83.
    EXPECT_EQ(writing.values, (std::vector<float>{1, 41, 83, 100}));
    recordingCallBack reading;
    std::vector<float> p, n;
    ASSERT_TRUE(ioStl::readStlFromFile(dir.file("p.stl"), p, n, &reading));
    EXPECT_EQ(p, positions);
    EXPECT_EQ(reading.values, (std::vector<float>{1, 41, 83, 100}));
  }
}

TEST(ioStl, asciiReadProgressIsTheFacetIndexOverTheCount) {
  // The first 5000 records carry long runs of blanks, so that the bytes read and the
  // facets read part ways: progress follows the facets.
  tempDir dir;
  std::string text = "solid padded\n";
  const std::string pad(600, ' ');
  for (int f = 0; f < 12000; ++f) {
    text += "facet normal 0 0 1" + std::string(f < 5000 ? pad : "") + "\nouter loop\n";
    for (int k = 0; k < 3; ++k)
      text += "vertex " + std::to_string(f) + " " + std::to_string(k) + " 0\n";
    text += "endloop\nendfacet\n";
  }
  text += "endsolid padded\n";
  const std::string path = dir.file("padded.stl");
  writeBytes(path, text);
  recordingCallBack reading;
  std::vector<point3<float>> p, n;
  ASSERT_TRUE(ioStl::readStlFromFile(path, p, n, &reading));
  EXPECT_EQ(n.size(), 12000u);
  EXPECT_EQ(p.capacity(), 36000u);  // reserved exactly from the counting pass
  EXPECT_EQ(reading.values, (std::vector<float>{1, 41, 83, 100}));
}

}  // namespace
