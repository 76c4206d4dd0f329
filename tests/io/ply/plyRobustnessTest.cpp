#include <gtest/gtest.h>

#include "jev3d/io/ply/ioPly.h"
#include "support/fileBytes.h"
#include "support/tempDir.h"

using JEV::CORE::color;
using JEV::IO::PLY::ioPly;
using JEV::IO::PLY::plyPolygonMesh;
using JEV::MATH::point2;
using JEV::MATH::point3;

namespace {

// Every read of a damaged file returns, and what it returns is consistent.
void readAllWays(const std::string& path) {
  std::vector<point3<float>> positions, normals;
  std::vector<color> colours;
  std::vector<point2<float>> texture;
  std::vector<unsigned> triangles;
  std::string textureName;
  if (ioPly::readPlyFromFile(path, positions, normals, colours, texture, triangles, textureName)) {
    for (const unsigned i : triangles) ASSERT_LT(i, positions.size());
    ASSERT_TRUE(normals.empty() || normals.size() == positions.size());
    ASSERT_TRUE(colours.empty() || colours.size() == positions.size());
  }
  plyPolygonMesh mesh;
  if (ioPly::readPlyPolygonsFromFile(path, mesh)) {
    for (const unsigned i : mesh.corners) ASSERT_LT(i, mesh.positions.size());
  }
  unsigned v = 0, f = 0;
  bool a, b, c, d;
  ioPly::readPlyInfoFromFile(path, v, f, a, b, c, d);
}

TEST(plyRobustness, damagedFilesOfEveryFormReturnWithoutCrashing) {
  tempDir dir;
  std::vector<point3<float>> positions;
  std::vector<point3<float>> normals;
  std::vector<color> colours;
  std::vector<point2<float>> texture;
  std::vector<unsigned> triangles;
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 6; ++x) {
      positions.push_back({float(x) * 0.1f, float(y) * 0.3f, float(x * y)});
      normals.push_back({0, 0, 1});
      colours.push_back({uint8_t(x * 40), uint8_t(y * 40), 7, 200});
      texture.push_back({float(x) / 5, float(y) / 5});
    }
  }
  for (unsigned y = 0; y < 5; ++y) {
    for (unsigned x = 0; x < 5; ++x) {
      const unsigned i = y * 6 + x;
      triangles.insert(triangles.end(), {i, i + 1, i + 7, i, i + 7, i + 6});
    }
  }
  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("ascii.ply"), positions, normals, colours, texture,
                                    triangles, false));
  ASSERT_TRUE(ioPly::writePlyToFile(dir.file("be.ply"), positions, normals, colours, texture,
                                    triangles, true));
  // Little-endian with int counts, an unknown list element and a polygon.
  std::string le =
      "ply\nformat binary_little_endian 1.0\nelement vertex 4\nproperty float x\n"
      "property float y\nproperty float z\nproperty uchar red\nproperty uchar green\n"
      "property uchar blue\nelement note 2\nproperty list int short w\n"
      "element face 2\nproperty list int int vertex_indices\nend_header\n";
  auto put = [&](auto v) { le.append(reinterpret_cast<const char*>(&v), sizeof v); };
  for (int i = 0; i < 4; ++i)
    put(float(i)), put(float(i * i)), put(1.0f), put('r'), put('g'), put('b');
  put(int32_t(2)), put(int16_t(1)), put(int16_t(2)), put(int32_t(0));
  put(int32_t(3)), put(0), put(1), put(2), put(int32_t(4)), put(0), put(1), put(2), put(3);

  const std::string valid[] = {readBytes(dir.file("ascii.ply")), readBytes(dir.file("be.ply")), le};
  unsigned seed = 7;
  for (const std::string& bytes : valid) {
    writeBytes(dir.file("check.ply"), bytes);
    plyPolygonMesh mesh;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("check.ply"), mesh));
    // The reads' warnings are expected here; keep them out of the log.
    testing::internal::CaptureStderr();
    forEachDamagedCopy(bytes, dir.file("damaged.ply"), seed++, 150, 300, readAllWays);
    testing::internal::GetCapturedStderr();
  }
}

}  // namespace
