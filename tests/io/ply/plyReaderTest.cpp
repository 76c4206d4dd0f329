#include "jev3d/io/ply/plyReader.h"

#include <gtest/gtest.h>

#include "jev3d/io/ply/ioPly.h"
#include "support/fileBytes.h"
#include "support/tempDir.h"

using namespace JEV::IO::PLY;
using JEV::MATH::point3;

namespace {

const char* const simpleHeader =
    "ply\nformat ascii 1.0\nelement vertex 3\n"
    "property float x\nproperty float y\nproperty float z\n"
    "element face 1\nproperty list uchar int vertex_indices\nend_header\n";

bool readTriangles(const std::string& path, std::vector<point3<float>>& positions,
                   std::vector<unsigned>& triangles) {
  unsigned v = 0, t = 0;
  return ioPly::readPlyFromFile(path, positions, v, triangles, t);
}

TEST(plyReader, parsesTheHeaderGrammar) {
  tempDir dir;
  writeBytes(dir.file("h.ply"),
             "ply\r\nformat binary_big_endian 1.5 \r\ncomment  first words here\r\n"
             "obj_info scanner 7\nelement vertex 2\nproperty float32 x\n"
             "something else entirely\nproperty list uint8 int32 idx\n"
             "element extra 0\nend_header\n"
             "\0\0\0\0\0\0\0\0\0\0\0\0\0\0");
  plyReader reader;
  ASSERT_TRUE(reader.open(dir.file("h.ply")));
  EXPECT_EQ(reader.getFileType(), PLY_BINARY_BE);
  EXPECT_FLOAT_EQ(reader.getVersion(), 1.5f);
  EXPECT_EQ(reader.getComments(), std::vector<std::string>{"first words here"});
  EXPECT_EQ(reader.getObjInfo(), std::vector<std::string>{"scanner 7"});
  ASSERT_EQ(reader.getElements().size(), 2u);
  const plyElement& v = reader.getElements()[0];
  EXPECT_EQ(v.count, 2);
  ASSERT_EQ(v.properties.size(), 2u);
  EXPECT_EQ(v.properties[0].type, PLY_FLOAT);
  EXPECT_TRUE(v.properties[1].isList);
  EXPECT_EQ(v.properties[1].countType, PLY_UCHAR);
  EXPECT_EQ(v.properties[1].type, PLY_INT);
  EXPECT_EQ(v.findProperty("idx"), 1);
  EXPECT_EQ(reader.findElement("extra"), &reader.getElements()[1]);
  EXPECT_EQ(reader.findElement("face"), nullptr);
}

TEST(plyReader, refusesBadHeaders) {
  tempDir dir;
  const char* const bad[] = {
      "",
      "plyx\nformat ascii 1.0\nend_header\n",
      "ply\nformat ascii\nend_header\n",
      "ply\nformat binary 1.0\nend_header\n",
      "ply\nelement vertex 1\nend_header\n0\n",
      "ply\nformat ascii 1.0\nproperty float x\nend_header\n",
      "ply\nformat ascii 1.0\nelement vertex -1\nend_header\n",
      "ply\nformat ascii 1.0\nelement vertex 99999999999\nend_header\n",
      "ply\nformat ascii 1.0\nelement vertex 1\nproperty quad x\nend_header\n",
      "ply\nformat ascii 1.0\nelement vertex 1\nproperty list float int x\nend_header\n",
      "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n",
      "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nend_header",
  };
  for (const char* text : bad) {
    writeBytes(dir.file("bad.ply"), text);
    plyReader reader;
    EXPECT_FALSE(reader.open(dir.file("bad.ply"))) << text;
  }
  plyReader reader;
  EXPECT_FALSE(reader.open(dir.file("missing.ply")));
}

TEST(plyReader, readsIntoStridedRecordsWithConversions) {
  tempDir dir;
  writeBytes(dir.file("r.ply"),
             "ply\nformat ascii 1.0\nelement point 3\nproperty double a\n"
             "property float red\nproperty int b\nproperty list uchar uchar skip\n"
             "end_header\n"
             "1.25 0.5 -7 2 1 1\n+2.5 1 300 0\n-1e3 7.0 4.0 3 1 2 3\n");
  struct record {
    float a;
    unsigned char red;
    unsigned char b;
  };
  std::vector<record> records(3);
  plyReader reader;
  ASSERT_TRUE(reader.open(dir.file("r.ply")));
  ASSERT_NE(reader.nextElement(), nullptr);
  const plyPropertyDescription a = {"a", PLY_DOUBLE, PLY_FLOAT, offsetof(record, a)};
  const plyPropertyDescription red = {"red", PLY_FLOAT, PLY_UCHAR, offsetof(record, red)};
  const plyPropertyDescription b = {"b", PLY_INT, PLY_UCHAR, offsetof(record, b)};
  const plyPropertyDescription missing = {"nope", PLY_INT, PLY_INT, 0};
  EXPECT_TRUE(reader.storeProperty(a, records.data(), sizeof(record)));
  EXPECT_TRUE(reader.storeProperty(red, records.data(), sizeof(record)));
  EXPECT_TRUE(reader.storeProperty(b, records.data(), sizeof(record)));
  EXPECT_FALSE(reader.storeProperty(missing, records.data(), sizeof(record)));
  ASSERT_TRUE(reader.getElements(1));
  EXPECT_EQ(reader.elementsLeft(), 2u);
  ASSERT_TRUE(reader.getElements(5));
  EXPECT_EQ(reader.nextElement(), nullptr);
  EXPECT_FALSE(reader.failed());

  EXPECT_EQ(records[0].a, 1.25f);
  EXPECT_EQ(records[1].a, 2.5f);
  EXPECT_EQ(records[2].a, -1000.0f);
  // Reals into a byte are fractions of 255; integers saturate.
  EXPECT_EQ(records[0].red, 128);
  EXPECT_EQ(records[1].red, 255);
  EXPECT_EQ(records[2].red, 255);
  EXPECT_EQ(records[0].b, 0);
  EXPECT_EQ(records[1].b, 255);
  EXPECT_EQ(records[2].b, 4);
}

TEST(plyReader, hostileCountsFailFastWithoutAllocating) {
  tempDir dir;
  const std::string tail = "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n";
  const std::string cases[] = {
      // A count the file cannot hold, in both forms.
      "ply\nformat ascii 1.0\nelement vertex 2000000000\nproperty float x\nproperty float y\n"
      "property float z\nend_header\n" +
          tail,
      "ply\nformat binary_little_endian 1.0\nelement vertex 2000000000\nproperty float x\n"
      "property float y\nproperty float z\nend_header\n" +
          tail,
      // A list count of 255 with three items behind it.
      std::string(simpleHeader).substr(0, std::string(simpleHeader).size()) +
          "0 0 0\n1 0 0\n0 1 0\n255 0 1 2\n",
      // A huge or negative count in an unknown list.
      "ply\nformat ascii 1.0\nelement blob 1\nproperty list int float w\nend_header\n"
      "2000000000 1 2 3\n",
      "ply\nformat binary_little_endian 1.0\nelement blob 1\nproperty list int float w\n"
      "end_header\n\xff\xff\xff\x7f\0\0\0\0",
      "ply\nformat binary_little_endian 1.0\nelement blob 1\nproperty list int float w\n"
      "end_header\n\xff\xff\xff\xff\0\0\0\0",
      // Indices that name no vertex.
      std::string(simpleHeader) + "0 0 0\n1 0 0\n0 1 0\n3 0 1 3\n",
      std::string(simpleHeader) + "0 0 0\n1 0 0\n0 1 0\n3 0 -1 2\n",
      // A value that is not a number, and a file that ends early.
      std::string(simpleHeader) + "0 0 0\n1 zero 0\n0 1 0\n3 0 1 2\n",
      std::string(simpleHeader) + "0 0 0\n1 0 0\n0 1 0\n3 0 1",
  };
  for (const std::string& text : cases) {
    writeBytes(dir.file("h.ply"), text);
    std::vector<point3<float>> positions;
    std::vector<unsigned> triangles;
    EXPECT_FALSE(readTriangles(dir.file("h.ply"), positions, triangles)) << text;
    plyPolygonMesh mesh;
    EXPECT_FALSE(ioPly::readPlyPolygonsFromFile(dir.file("h.ply"), mesh)) << text;
  }
}

TEST(plyReader, lastLineWithoutNewlineStillReads) {
  tempDir dir;
  writeBytes(dir.file("n.ply"), std::string(simpleHeader) + "0 0 0\n1 0 0\n0 1 0\n3 0 1 2");
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  ASSERT_TRUE(readTriangles(dir.file("n.ply"), positions, triangles));
  EXPECT_EQ(triangles, (std::vector<unsigned>{0, 1, 2}));
}

TEST(plyReader, missingCoordinatesFailTheRead) {
  tempDir dir;
  writeBytes(dir.file("xy.ply"),
             "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
             "end_header\n1 2\n");
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  EXPECT_FALSE(readTriangles(dir.file("xy.ply"), positions, triangles));
  // A file of points alone is fine.
  writeBytes(dir.file("p.ply"),
             "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
             "property float z\nend_header\n1 2 3 4 5 6\n");
  ASSERT_TRUE(readTriangles(dir.file("p.ply"), positions, triangles));
  EXPECT_EQ(positions, (std::vector<point3<float>>{{1, 2, 3}, {4, 5, 6}}));
  EXPECT_TRUE(triangles.empty());
}

}  // namespace
