#include <gtest/gtest.h>

#include "jev3d/io/stl/ioStl.h"
#include "support/fileBytes.h"
#include "support/tempDir.h"

using JEV::IO::STL::ioStl;
using JEV::MATH::point3;

namespace {

void readAllWays(const std::string& path) {
  std::vector<point3<float>> positions, normals;
  if (ioStl::readStlFromFile(path, positions, normals)) {
    ASSERT_EQ(positions.size(), 3 * normals.size());
  }
  std::vector<float> flat, flatNormals;
  if (ioStl::readStlFromFile(path, flat, flatNormals)) {
    ASSERT_EQ(flat.size(), 3 * flatNormals.size());
  }
  unsigned v = 0, f = 0;
  ioStl::readStlInfoFromFile(path, v, f);
}

TEST(stlRobustness, damagedFilesOfBothFormsReturnWithoutCrashing) {
  tempDir dir;
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  std::vector<point3<float>> normals;
  for (unsigned i = 0; i < 12; ++i) {
    positions.push_back({float(i), float(i * i) * 0.5f, -float(i) / 3});
    if (i >= 2) {
      triangles.insert(triangles.end(), {i - 2, i - 1, i});
      normals.push_back({0, 0, 1});
    }
  }
  ASSERT_TRUE(ioStl::writeStlToFile(dir.file("a.stl"), positions, triangles, normals, false));
  ASSERT_TRUE(ioStl::writeStlToFile(dir.file("b.stl"), positions, triangles, normals, true));
  unsigned seed = 11;
  for (const char* name : {"a.stl", "b.stl"})
    forEachDamagedCopy(readBytes(dir.file(name)), dir.file("damaged.stl"), seed++, 200, 400,
                       readAllWays);
}

}  // namespace
