// The geodesic code's model loader: its three exception texts, OBJ and PLY forms,
// triangle strips, and bad files.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

#include "jev3d/algo/postprocessing/geodesicModel.h"
#include "support/dataFiles.h"
#include "support/tempDir.h"

using JEV::MESH::POSTPROCESSING::geodesicModel;

namespace {

std::string thrownBy(geodesicModel& m, const std::string& name) {
  try {
    m.load(name);
  } catch (const std::runtime_error& e) {
    return e.what();
  }
  return "";
}

void write(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace

TEST(geodesicModel, NamesAndMissingFilesThrowTheirTexts) {
  tempDir dir;
  geodesicModel m;
  EXPECT_EQ(thrownBy(m, "model"), "File name doesn't contain a dot!");
  EXPECT_EQ(thrownBy(m, dir.file("model.stl")), "This format can't be handled!");
  EXPECT_EQ(thrownBy(m, dir.file("missing.OBJ")), "Fail to read file!");
  EXPECT_EQ(thrownBy(m, dir.file("missing.ply")), "Fail to read file!");
}

TEST(geodesicModel, ObjPolygonsBecomeFans) {
  tempDir dir;
  write(dir.file("quad.obj"),
        "# a quad and a triangle by relative index\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
        "vn 0 0 1\nf 1//1 2//1 3//1 4//1\nf -4 -2 -1\n");
  geodesicModel m;
  ASSERT_EQ(thrownBy(m, dir.file("quad.obj")), "");
  ASSERT_EQ(m.vertices.size(), 4u);
  ASSERT_EQ(m.faces.size(), 3u);
  EXPECT_EQ(m.faces[1], (std::array<unsigned, 3>{0, 2, 3}));
  EXPECT_EQ(m.faces[2], (std::array<unsigned, 3>{0, 2, 3}));
  write(dir.file("bad.obj"), "v 0 0 0\nf 1 2 3\n");
  EXPECT_EQ(thrownBy(m, dir.file("bad.obj")), "Fail to read file!");
  write(dir.file("junk.obj"), "v 0 0 0\nf one two three\n");
  EXPECT_EQ(thrownBy(m, dir.file("junk.obj")), "Fail to read file!");
}

TEST(geodesicModel, PlyAsciiBinaryAndStrips) {
  tempDir dir;
  geodesicModel m;
  write(dir.file("a.ply"),
        "ply\nformat ascii 1.0\ncomment two triangles\nelement vertex 4\nproperty float32 x\n"
        "property float32 y\nproperty float32 z\nproperty uchar red\nelement face 1\n"
        "property list uint8 int32 vertex_indices\nend_header\n"
        "0 0 0 1\n1 0 0 2\n1 1 0 3\n0 1 0 4\n4 0 1 2 3\n");
  ASSERT_EQ(thrownBy(m, dir.file("a.ply")), "");
  EXPECT_EQ(m.vertices.size(), 4u);
  EXPECT_EQ(m.faces.size(), 2u);
  EXPECT_EQ(m.vertices[2].y, 1.0);
  // Big-endian binary with a strip of four vertices: two triangles, the second turned.
  std::string big =
      "ply\nformat binary_big_endian 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
      "property float z\nelement tristrips 1\nproperty list uchar int32 vertex_indices\n"
      "end_header\n";
  const float xyz[12] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0};
  for (float f : xyz) {
    unsigned char b[4];
    std::memcpy(b, &f, 4);
    big.append({char(b[3]), char(b[2]), char(b[1]), char(b[0])});
  }
  big.push_back(char(4));
  for (int i : {0, 1, 2, 3}) big.append({0, 0, 0, char(i)});
  write(dir.file("s.PLY"), big);
  ASSERT_EQ(thrownBy(m, dir.file("s.PLY")), "");
  ASSERT_EQ(m.faces.size(), 2u);
  EXPECT_EQ(m.faces[0], (std::array<unsigned, 3>{0, 1, 2}));
  EXPECT_EQ(m.faces[1], (std::array<unsigned, 3>{2, 1, 3}));
  EXPECT_EQ(m.vertices[3].x, 1.0);
  // Cut short, and an index past the vertices.
  write(dir.file("cut.ply"), big.substr(0, big.size() - 6));
  EXPECT_EQ(thrownBy(m, dir.file("cut.ply")), "Fail to read file!");
  std::string wild = big;
  wild[wild.size() - 1] = char(9);
  write(dir.file("wild.ply"), wild);
  EXPECT_EQ(thrownBy(m, dir.file("wild.ply")), "Fail to read file!");
  // A count far beyond the file is refused before anything is sized by it.
  std::string huge = big;
  huge.replace(huge.find("vertex 4"), 8, "vertex 4000000000");
  write(dir.file("huge.ply"), huge);
  EXPECT_EQ(thrownBy(m, dir.file("huge.ply")), "Fail to read file!");
}

TEST(geodesicModel, HeaderProblemsAreNamedThenFail) {
  tempDir dir;
  geodesicModel m;
  write(dir.file("nohead.ply"), "ply\nformat ascii 1.0\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(thrownBy(m, dir.file("nohead.ply")), "Fail to read file!");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "fail to read file\n");
  write(dir.file("magic.ply"), "PLX\nformat ascii 1.0\nend_header\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(thrownBy(m, dir.file("magic.ply")), "Fail to read file!");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error model\n");
  // "int" is not among the type names the loader understands.
  write(dir.file("int.ply"),
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty int x\nend_header\n1\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(thrownBy(m, dir.file("int.ply")), "Fail to read file!");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error model format\n");
  write(dir.file("fmt.ply"), "ply\nformat text 1.0\nend_header\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(thrownBy(m, dir.file("fmt.ply")), "Fail to read file!");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error model format\n");
}

TEST(geodesicModel, ReadsARealScanWithSizedTypeNames) {
  JEV3D_REQUIRE_DATA("ply/turk_airplane.ply");
  geodesicModel m;
  ASSERT_EQ(thrownBy(m, dataFile("ply/turk_airplane.ply")), "");
  EXPECT_EQ(m.vertices.size(), 1335u);
  EXPECT_EQ(m.faces.size(), 2452u);
}
