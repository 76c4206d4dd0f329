#include <gtest/gtest.h>

#include <limits>

#include "jev3d/algo/remeshing/volumeDescriptor.h"
#include "support/meshes.h"

using namespace JEV::MESH::ALGO::REMESHING;
using p3 = JEV::MATH::point3<float>;
using p3d = JEV::MATH::point3<double>;

namespace {
volumeDescriptor smallGrid() {
  volumeDescriptor v;
  EXPECT_TRUE(v.allocate(4, 3, 2, p3d(-1.0, 0.0, 10.0), 0.5));
  return v;
}
}  // namespace

TEST(volumeDescriptor, layoutConversionsAndRounding) {
  volumeDescriptor v = smallGrid();
  EXPECT_FALSE(v.isEmpty());
  EXPECT_TRUE(v.isValid());
  EXPECT_EQ(v.voxelCount(), 24u);
  for (uint64_t n = 0; n < v.voxelCount(); ++n) EXPECT_EQ(v.voxels[n], 0);
  // x fastest: voxel (1, 2, 1) sits at ((3·1) + 2)·4 + 1.
  v.at(1, 2, 1) = VOXEL_INSIDE;
  EXPECT_EQ(v.voxels[21], VOXEL_INSIDE);
  const p3d c = v.getVoxelCenter(1, 2, 1);
  EXPECT_EQ(c, p3d(-0.5, 1.0, 10.5));
  EXPECT_EQ(v.cvt(c), p3d(1.0, 2.0, 1.0));
  uint64_t i, j, k, index;
  // Rounding by +0.5 and truncation: 1.49 goes to 1, 1.5 to 2.
  ASSERT_TRUE(v.getVoxelIndex(p3d(1.49, 1.5, 0.2), i, j, k));
  EXPECT_EQ(i, 1u);
  EXPECT_EQ(j, 2u);
  EXPECT_EQ(k, 0u);
  ASSERT_TRUE(v.getVoxelIndex(p3d(1.0, 2.0, 1.0), index));
  EXPECT_EQ(index, 21u);
  // Reaching the dimension, or lying below the first voxel, is outside; no wrap.
  EXPECT_FALSE(v.getVoxelIndex(p3d(3.5, 0.0, 0.0), i, j, k));
  EXPECT_FALSE(v.getVoxelIndex(p3d(-0.6, 0.0, 0.0), i, j, k));
  EXPECT_FALSE(v.getVoxelIndex(p3d(-1e30, 0.0, 0.0), i, j, k));
  EXPECT_FALSE(v.getVoxelIndex(p3d(std::numeric_limits<double>::quiet_NaN(), 0, 0), i, j, k));
  EXPECT_TRUE(v.getVoxelIndex(p3d(-0.4, 0.0, 0.0), i, j, k));
  EXPECT_EQ(i, 0u);
  v.clamp(p3d(-7.0, 99.0, 1e300), i, j, k);
  EXPECT_EQ(i, 0u);
  EXPECT_EQ(j, 2u);
  EXPECT_EQ(k, 1u);
}

TEST(volumeDescriptor, voxelValuesAndTheOutsideOfTheGrid) {
  volumeDescriptor v = smallGrid();
  v.at(0, 0, 0) = VOXEL_INSIDE;
  v.at(1, 0, 0) = VOXEL_ON_SURFACE;
  v.at(2, 0, 0) = VOXEL_OUTSIDE;
  const p3 in(-1.f, 0.f, 10.f), surface(-0.5f, 0.f, 10.f), out(0.f, 0.f, 10.f);
  const p3 far(100.f, 0.f, 10.f), below(-1e30f, -1e30f, -1e30f);
  EXPECT_TRUE(v.isVertInside(in));
  EXPECT_TRUE(v.isVertOnSurface(surface));
  EXPECT_TRUE(v.isVertOutside(out));
  EXPECT_EQ(v.vertexToVoxel(far), VOXEL_OUTSIDE);
  EXPECT_EQ(v.vertexToVoxel(below), VOXEL_OUTSIDE);
  EXPECT_FALSE(v.isVertInside(far));
  EXPECT_FALSE(v.isVertOnSurface(far));
  EXPECT_TRUE(v.isVertOutside(far));
  std::vector<unsigned char> inside;
  v.isPointInside({in, surface, out, far}, inside);
  EXPECT_EQ(inside, (std::vector<unsigned char>{1, 1, 0, 0}));
  JEV::MESH::editMesh m;
  m.addVertex(in);
  m.addVertex(far);
  m.checkMeshState();
  v.isPointInside(m, inside);
  EXPECT_EQ(inside, (std::vector<unsigned char>{1, 0}));
}

TEST(volumeDescriptor, copiesOwnTheirVoxelsAndBadGridsAreRefused) {
  volumeDescriptor v = smallGrid();
  v.at(3, 2, 1) = VOXEL_ON_SURFACE;
  volumeDescriptor w(v);
  ASSERT_NE(w.voxels, v.voxels);
  EXPECT_EQ(w.at(3, 2, 1), VOXEL_ON_SURFACE);
  w.at(3, 2, 1) = VOXEL_OUTSIDE;
  EXPECT_EQ(v.at(3, 2, 1), VOXEL_ON_SURFACE);
  v = w;
  EXPECT_EQ(v.at(3, 2, 1), VOXEL_OUTSIDE);
  v.clear();
  EXPECT_TRUE(v.isEmpty());
  EXPECT_FALSE(v.isValid());
  EXPECT_EQ(v.vertexToVoxel(p3()), VOXEL_OUTSIDE);
  EXPECT_FALSE(v.allocate(0, 1, 1, p3d(), 1.0));
  EXPECT_FALSE(v.allocate(1, 1, 1, p3d(), 0.0));
  EXPECT_FALSE(v.allocate(1, 1, 1, p3d(), std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(v.allocate(1u << 31, 1u << 31, 1u << 31, p3d(), 1.0));
  EXPECT_TRUE(v.isEmpty());
}
