#include "jev3d/io/ply/ioPly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include "support/fileBytes.h"
#include "support/recordingCallBack.h"
#include "support/tempDir.h"

using JEV::CORE::color;
using JEV::IO::PLY::ioPly;
using JEV::IO::PLY::plyPolygonMesh;
using JEV::MATH::point2;
using JEV::MATH::point3;

namespace {

struct meshData {
  std::vector<point3<float>> positions;
  std::vector<point3<float>> normals;
  std::vector<color> colours;
  std::vector<point2<float>> texture;
  std::vector<unsigned> triangles;
};

// A tetrahedron with values that need every digit to survive a text round trip.
meshData tetrahedron() {
  meshData m;
  m.positions = {{0.1f, -2.5e-7f, 3.0f}, {1.0f / 3.0f, 0.0f, -1e20f}, {0, 1, 0}, {7, 8, 9.125f}};
  m.normals = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}, {0.57735026f, 0.57735026f, 0.57735026f}};
  m.colours = {{255, 0, 0, 255}, {0, 255, 0, 128}, {0, 0, 255, 0}, {1, 2, 3, 4}};
  m.texture = {{0, 0}, {1, 0}, {0, 1}, {0.25f, 0.75f}};
  m.triangles = {0, 1, 2, 0, 3, 1, 1, 3, 2, 2, 3, 0};
  return m;
}

struct readBack {
  meshData m;
  std::string textureName;
  bool ok = false;
};

readBack readFull(const std::string& path) {
  readBack r;
  r.ok = ioPly::readPlyFromFile(path, r.m.positions, r.m.normals, r.m.colours, r.m.texture,
                                r.m.triangles, r.textureName);
  return r;
}

std::string headerOf(const std::string& bytes) {
  return bytes.substr(0, bytes.find("end_header\n") + 11);
}

TEST(ioPly, roundTripsEveryAttributeExactlyInBothForms) {
  tempDir dir;
  const meshData m = tetrahedron();
  for (const bool binary : {false, true}) {
    const std::string path = dir.file(binary ? "b.ply" : "a.ply");
    ASSERT_TRUE(ioPly::writePlyToFile(path, m.positions, m.normals, m.colours, m.texture,
                                      m.triangles, binary));
    const readBack r = readFull(path);
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.m.positions, m.positions);
    EXPECT_EQ(r.m.normals, m.normals);
    EXPECT_EQ(r.m.colours, m.colours);
    EXPECT_EQ(r.m.texture, m.texture);
    EXPECT_EQ(r.m.triangles, m.triangles);
    EXPECT_EQ(headerOf(readBytes(path)),
              std::string("ply\n") +
                  (binary ? "format binary_big_endian 1.0\n" : "format ascii 1.0\n") +
                  "element vertex 4\n"
                  "property float x\nproperty float y\nproperty float z\n"
                  "property float nx\nproperty float ny\nproperty float nz\n"
                  "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                  "property uchar alpha\n"
                  "property float texture_u\nproperty float texture_v\n"
                  "element face 4\n"
                  "property list uchar int vertex_indices\n"
                  "end_header\n");
  }
}

TEST(ioPly, binaryWriterIsBigEndianAndAsciiIsOneLineAnElement) {
  tempDir dir;
  const std::vector<point3<float>> positions = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  const std::vector<unsigned> triangles = {0, 1, 2};
  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("b.ply"), positions, {}, {}, {}, triangles, true));
  const std::string b = readBytes(dir.file("b.ply"));
  const std::string data = b.substr(headerOf(b).size());
  // 1.0f is 3f 80 00 00; the face is the count byte and three big-endian ints.
  ASSERT_EQ(data.size(), 9u * 4 + 1 + 12);
  EXPECT_EQ(data.substr(0, 4), std::string("\x3f\x80\x00\x00", 4));
  EXPECT_EQ(data.substr(36), std::string("\x03\0\0\0\0\0\0\0\x01\0\0\0\x02", 13));

  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("a.ply"), positions, {}, {}, {}, triangles, false));
  const std::string a = readBytes(dir.file("a.ply"));
  EXPECT_EQ(a.substr(headerOf(a).size()), "1 2 3\n4 5 6\n7 8 9\n3 0 1 2\n");
  // Empty normals and colours: only the positions are described.
  EXPECT_EQ(headerOf(a),
            "ply\nformat ascii 1.0\nelement vertex 3\n"
            "property float x\nproperty float y\nproperty float z\n"
            "element face 1\nproperty list uchar int vertex_indices\nend_header\n");
}

TEST(ioPly, readsHandWrittenLittleEndianWithIntCountsAndUnknownParts) {
  tempDir dir;
  std::string bytes =
      "ply\nformat binary_little_endian 1.0\ncomment made by hand\n"
      "element vertex 3\nproperty double x\nproperty double y\nproperty double z\n"
      "property uchar quality\n"
      "element material 1\nproperty list int float weights\nproperty int id\n"
      "element face 1\nproperty list int uint vertex_indices\nproperty list uchar float uv\n"
      "end_header\n";
  auto put = [&](auto v) { bytes.append(reinterpret_cast<const char*>(&v), sizeof v); };
  for (int i = 0; i < 3; ++i) put(double(i) + 0.5), put(double(-i)), put(1e3 * i), put('q');
  put(int32_t(2)), put(1.5f), put(2.5f), put(int32_t(77));
  put(int32_t(3)), put(2u), put(0u), put(1u), put(uint8_t(6));
  for (int i = 0; i < 6; ++i) put(float(i));
  writeBytes(dir.file("le.ply"), bytes);

  const readBack r = readFull(dir.file("le.ply"));
  ASSERT_TRUE(r.ok);
  ASSERT_EQ(r.m.positions.size(), 3u);
  EXPECT_EQ(r.m.positions[2], point3<float>(2.5f, -2.0f, 2000.0f));
  EXPECT_EQ(r.m.triangles, (std::vector<unsigned>{2, 0, 1}));
  EXPECT_TRUE(r.m.normals.empty());
  EXPECT_TRUE(r.m.colours.empty());

  // Writing it back with binary true changes its byte order, not its values.
  ASSERT_TRUE(
      ioPly::writePlyToFile(dir.file("be.ply"), r.m.positions, {}, {}, {}, r.m.triangles, true));
  const readBack again = readFull(dir.file("be.ply"));
  ASSERT_TRUE(again.ok);
  EXPECT_EQ(again.m.positions, r.m.positions);
  EXPECT_EQ(again.m.triangles, r.m.triangles);
  EXPECT_NE(readBytes(dir.file("be.ply")).find("binary_big_endian"), std::string::npos);
}

TEST(ioPly, coloursWithoutAlphaReadOpaque) {
  tempDir dir;
  writeBytes(dir.file("c.ply"),
             "ply\nformat ascii 1.0\nelement vertex 3\n"
             "property float x\nproperty float y\nproperty float z\n"
             "property uchar red\nproperty uchar green\nproperty uchar blue\n"
             "element face 1\nproperty list uchar int vertex_indices\nend_header\n"
             "0 0 0 10 20 30\n1 0 0 40 50 60\n0 1 0 70 80 90\n3 0 1 2\n");
  const readBack r = readFull(dir.file("c.ply"));
  ASSERT_TRUE(r.ok);
  EXPECT_EQ(r.m.colours,
            (std::vector<color>{{10, 20, 30, 255}, {40, 50, 60, 255}, {70, 80, 90, 255}}));
  std::vector<float> p, n, t;
  std::vector<unsigned char> c;
  std::vector<unsigned> tri;
  std::string texture;
  ASSERT_TRUE(ioPly::readPlyFromFile(dir.file("c.ply"), p, n, c, t, tri, texture));
  EXPECT_EQ(c, (std::vector<unsigned char>{10, 20, 30, 255, 40, 50, 60, 255, 70, 80, 90, 255}));
  EXPECT_EQ(p, (std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}));
}

const char* const quadFile =
    "ply\nformat ascii 1.0\nelement vertex 5\n"
    "property float x\nproperty float y\nproperty float z\n"
    "element face 2\nproperty list uchar int vertex_indices\nend_header\n"
    "0 0 0\n1 0 0\n1 1 0\n0 1 0\n2 2 0\n3 1 4 2\n4 0 1 2 3\n";

TEST(ioPly, aQuadFailsTheTriangleReadsButNotThePolygonRead) {
  tempDir dir;
  writeBytes(dir.file("q.ply"), quadFile);
  EXPECT_FALSE(readFull(dir.file("q.ply")).ok);
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  unsigned vertexCount = 0, triangleCount = 0;
  EXPECT_FALSE(
      ioPly::readPlyFromFile(dir.file("q.ply"), positions, vertexCount, triangles, triangleCount));

  plyPolygonMesh mesh;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("q.ply"), mesh));
  EXPECT_EQ(mesh.positions.size(), 5u);
  EXPECT_EQ(mesh.cornerCounts, (std::vector<unsigned>{3, 4}));
  EXPECT_EQ(mesh.corners, (std::vector<unsigned>{1, 4, 2, 0, 1, 2, 3}));

  // And the polygon writer gives the same polygons back, in both forms.
  for (const bool binary : {false, true}) {
    ASSERT_TRUE(ioPly::writePlyPolygonsToFile(dir.file("p.ply"), mesh, binary));
    plyPolygonMesh again;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("p.ply"), again));
    EXPECT_EQ(again.positions, mesh.positions);
    EXPECT_EQ(again.cornerCounts, mesh.cornerCounts);
    EXPECT_EQ(again.corners, mesh.corners);
  }
}

TEST(ioPly, twoVertexElementsNumberTheSecondsFacesAfterTheFirst) {
  tempDir dir;
  writeBytes(dir.file("two.ply"),
             "ply\nformat ascii 1.0\n"
             "element vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
             "element face 1\nproperty list uchar int vertex_indices\n"
             "element vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
             "element face 1\nproperty list uchar int vertex_indices\nend_header\n"
             "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n5 5 5\n6 5 5\n5 6 5\n3 2 1 0\n");
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  unsigned vertexCount = 0, triangleCount = 0;
  ASSERT_TRUE(ioPly::readPlyFromFile(dir.file("two.ply"), positions, vertexCount, triangles,
                                     triangleCount));
  EXPECT_EQ(vertexCount, 6u);
  EXPECT_EQ(triangleCount, 2u);
  EXPECT_EQ(triangles, (std::vector<unsigned>{0, 1, 2, 5, 4, 3}));
  EXPECT_EQ(positions[5], point3<float>(5, 6, 5));
}

TEST(ioPly, textureNameIsKeptOnlyWhenTheFileExists) {
  tempDir dir;
  writeBytes(dir.file("skin.png"), "png");
  const std::string body =
      "element vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
      "element face 0\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 1 0\n";
  writeBytes(dir.file("t.ply"),
             "ply\nformat ascii 1.0\ncomment texture_file " + dir.file("skin.png") + "\n" + body);
  EXPECT_EQ(readFull(dir.file("t.ply")).textureName, dir.file("skin.png"));
  writeBytes(dir.file("beside.ply"),
             "ply\nformat ascii 1.0\ncomment texture_file skin.png\n" + body);
  EXPECT_EQ(readFull(dir.file("beside.ply")).textureName, "skin.png");
  writeBytes(dir.file("m.ply"), "ply\nformat ascii 1.0\ncomment texture_file gone.png\n" + body);
  const readBack r = readFull(dir.file("m.ply"));
  EXPECT_TRUE(r.ok);
  EXPECT_EQ(r.textureName, "");
}

TEST(ioPly, infoReadsTheHeaderAndNeverSetsTheThirdFlag) {
  tempDir dir;
  const meshData m = tetrahedron();
  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("m.ply"), m.positions, m.normals, m.colours, m.texture,
                                    m.triangles, true));
  unsigned vertices = 0, faces = 0;
  bool normals = false, colours = false, reserved = true, texture = false;
  const std::string narrow = dir.file("m.ply");
  const std::wstring wide(narrow.begin(), narrow.end());
  ASSERT_TRUE(
      ioPly::readPlyInfoFromFile(wide, vertices, faces, normals, colours, reserved, texture));
  EXPECT_EQ(vertices, 4u);
  EXPECT_EQ(faces, 4u);
  EXPECT_TRUE(normals && colours && texture);
  EXPECT_FALSE(reserved);

  ASSERT_TRUE(
      ioPly::writePlyToFile(dir.file("p.ply"), m.positions, {}, {}, {}, m.triangles, false));
  ASSERT_TRUE(ioPly::readPlyInfoFromFile(dir.file("p.ply"), vertices, faces, normals, colours,
                                         reserved, texture));
  EXPECT_FALSE(normals || colours || texture || reserved);
  EXPECT_FALSE(ioPly::readPlyInfoFromFile(dir.file("none.ply"), vertices, faces, normals, colours,
                                          reserved, texture));
}

TEST(ioPly, writersRefuseArraysThatDoNotMatch) {
  tempDir dir;
  meshData m = tetrahedron();
  m.normals.pop_back();
  EXPECT_FALSE(ioPly::writePlyToFile(dir.file("a.ply"), m.positions, m.normals, m.colours,
                                     m.texture, m.triangles, false));
  m = tetrahedron();
  m.triangles.back() = 4;
  EXPECT_FALSE(
      ioPly::writePlyToFile(dir.file("b.ply"), m.positions, {}, {}, {}, m.triangles, true));
}

TEST(ioPly, readsOnSeveralThreadsAtOnce) {
  tempDir dir;
  const meshData m = tetrahedron();
  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("a.ply"), m.positions, m.normals, m.colours, m.texture,
                                    m.triangles, false));
  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("b.ply"), m.positions, m.normals, m.colours, m.texture,
                                    m.triangles, true));
  std::vector<std::thread> threads;
  std::vector<int> good(8, 0);
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      for (int k = 0; k < 20; ++k) {
        const readBack r = readFull(dir.file(t % 2 ? "a.ply" : "b.ply"));
        const std::string out = dir.file("w" + std::to_string(t) + ".ply");
        const bool wrote = ioPly::writePlyToFile(out, r.m.positions, r.m.normals, r.m.colours,
                                                 r.m.texture, r.m.triangles, t % 3 == 0);
        good[size_t(t)] += r.ok && wrote && r.m.positions == m.positions &&
                           r.m.colours == m.colours && r.m.triangles == m.triangles;
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(good, std::vector<int>(8, 20));
}

}  // namespace

namespace {

TEST(ioPly, progressRunsFromOneToAHundredInBothHalves) {
  tempDir dir;
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  for (unsigned i = 0; i < 12000; ++i) positions.push_back({float(i), 0.5f * float(i), 2});
  for (unsigned i = 0; i + 2 < 12000; ++i) triangles.insert(triangles.end(), {i, i + 1, i + 2});
  for (const bool binary : {true, false}) {
    recordingCallBack writing;
    ASSERT_TRUE(ioPly::writePlyToFile(dir.file("p.ply"), positions, {}, {}, {}, triangles, binary,
                                      &writing));
    recordingCallBack reading;
    std::vector<point3<float>> readPositions;
    std::vector<unsigned> readTriangles;
    unsigned v = 0, t = 0;
    ASSERT_TRUE(
        ioPly::readPlyFromFile(dir.file("p.ply"), readPositions, v, readTriangles, t, &reading));
    // Runs of 5000 elements join up without a seam.
    EXPECT_EQ(readPositions, positions);
    EXPECT_EQ(readTriangles, triangles);
    for (const std::vector<float>& values : {writing.values, reading.values}) {
      ASSERT_GE(values.size(), 4u);
      EXPECT_EQ(values.front(), 1.0f);
      EXPECT_EQ(values.back(), 100.0f);
      EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
      // Vertices fill the first half (0, 5000, 10000 of 12000), faces the second.
      EXPECT_NE(std::find(values.begin(), values.end(), 41.0f), values.end());
      EXPECT_NE(std::find(values.begin(), values.end(), 70.0f), values.end());
    }
  }
  unsigned v = 0, t = 0;
  // A failed read still closes the bar.
  recordingCallBack failing;
  EXPECT_FALSE(ioPly::readPlyFromFile(dir.file("none.ply"), positions, v, triangles, t, &failing));
  EXPECT_EQ(failing.values, (std::vector<float>{1.0f, 100.0f}));
}

}  // namespace

namespace {

TEST(ioPly, polygonsOfMoreThan255CornersTakeAnIntCount) {
  tempDir dir;
  plyPolygonMesh disc;
  for (unsigned i = 0; i < 300; ++i) {
    const float a = float(i) * 6.2831853f / 300;
    disc.positions.push_back({std::cos(a), std::sin(a), 0});
    disc.colours.push_back({uint8_t(i), 0, 0, 255});
    disc.corners.push_back(i);
  }
  disc.cornerCounts = {300};
  for (const bool binary : {false, true}) {
    ASSERT_TRUE(ioPly::writePlyPolygonsToFile(dir.file("disc.ply"), disc, binary));
    EXPECT_NE(readBytes(dir.file("disc.ply")).find("property list int int vertex_indices"),
              std::string::npos);
    plyPolygonMesh again;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("disc.ply"), again));
    EXPECT_EQ(again.positions, disc.positions);
    EXPECT_EQ(again.colours, disc.colours);
    EXPECT_EQ(again.cornerCounts, disc.cornerCounts);
    EXPECT_EQ(again.corners, disc.corners);
  }
  // Corner counts that do not add up to the corners are refused.
  disc.cornerCounts = {299};
  EXPECT_FALSE(ioPly::writePlyPolygonsToFile(dir.file("bad.ply"), disc, true));
}

}  // namespace
