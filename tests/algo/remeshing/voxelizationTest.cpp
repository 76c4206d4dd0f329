#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/voxelizationFunctor.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;

namespace {

struct soup {
  std::vector<p3> positions;
  std::vector<int> triangles;
  double volume = 0.0;
};

soup sphereSoup() {
  editMesh m;
  testMeshes::makeSphere(m, 48, 96);
  testMeshes::finishMesh(m);
  soup s;
  std::vector<unsigned> t;
  INTERNAL::toTriangleSoup(m, s.positions, t);
  s.triangles.assign(t.begin(), t.end());
  s.volume = testMeshes::signedVolume(m);
  return s;
}

uint64_t countOf(const volumeDescriptor& v, unsigned char value) {
  uint64_t n = 0;
  for (uint64_t i = 0; i < v.voxelCount(); ++i) n += v.voxels[i] == value;
  return n;
}

// Inside voxels, and half of those the surface crosses.
double voxelVolume(const volumeDescriptor& v) {
  return (double(countOf(v, VOXEL_INSIDE)) + 0.5 * double(countOf(v, VOXEL_ON_SURFACE))) * v.scale *
         v.scale * v.scale;
}

}  // namespace

TEST(voxelizationFunctor, sphereVolumeAndClassesOfEveryVoxel) {
  const soup s = sphereSoup();
  volumeDescriptor v;
  recordingCallBack cb;
  ASSERT_TRUE(voxelizationFunctor()(s.positions, s.triangles, 64u, v, &cb));
  EXPECT_EQ(cb.values.front(), 1.f);
  EXPECT_EQ(cb.values.back(), 100.f);
  EXPECT_NEAR(v.scale, 2.0 / 64.0, 1e-6);
  EXPECT_EQ(v.dimX, 67u);
  EXPECT_NEAR(voxelVolume(v), s.volume, 0.02 * s.volume);
  EXPECT_EQ(countOf(v, 0), 0u);  // every voxel classified
  // Voxel centres well inside or outside the unit sphere take the matching value.
  for (uint64_t k = 0; k < v.dimZ; ++k)
    for (uint64_t j = 0; j < v.dimY; ++j)
      for (uint64_t i = 0; i < v.dimX; ++i) {
        const double r = v.getVoxelCenter(i, j, k).norm();
        if (r < 1.0 - 2.0 * v.scale) {
          EXPECT_EQ(v.at(i, j, k), VOXEL_INSIDE);
        }
        if (r > 1.0 + 2.0 * v.scale) {
          EXPECT_EQ(v.at(i, j, k), VOXEL_OUTSIDE);
        }
      }
  EXPECT_TRUE(v.isVertInside(p3(0.f, 0.f, 0.f)));
  EXPECT_TRUE(v.isVertOnSurface(p3(0.f, 0.f, 1.f)));
  EXPECT_TRUE(v.isVertOutside(p3(5.f, 0.f, 0.f)));

  // The flat-array form and the frame form give the same grid.
  std::vector<float> flat;
  for (const p3& p : s.positions) flat.insert(flat.end(), {p.x, p.y, p.z});
  volumeDescriptor w, framed;
  ASSERT_TRUE(voxelizationFunctor()(flat, s.triangles, 64u, w));
  ASSERT_TRUE(voxelizationFunctor()(s.positions, s.triangles, v, framed));
  for (const volumeDescriptor* other : {&w, &framed}) {
    ASSERT_EQ(other->voxelCount(), v.voxelCount());
    EXPECT_EQ(std::memcmp(other->voxels, v.voxels, v.voxelCount()), 0);
  }
  ASSERT_TRUE(voxelizationFunctor()(flat, s.triangles, framed, framed));  // frame read first
  EXPECT_EQ(std::memcmp(framed.voxels, v.voxels, v.voxelCount()), 0);
}

TEST(voxelizationFunctor, boxesSpheresAndTheVoxelSurface) {
  const soup s = sphereSoup();
  std::vector<JEV::MATH::axisAlignedBox3<float>> inBoxes, onBoxes;
  std::vector<JEV::MATH::sphere3<float>> inSpheres, onSpheres;
  volumeDescriptor v;
  ASSERT_TRUE(voxelizationFunctor()(s.positions, s.triangles, 24u, inBoxes, onBoxes, v));
  EXPECT_EQ(inBoxes.size(), countOf(v, VOXEL_INSIDE));
  EXPECT_EQ(onBoxes.size(), countOf(v, VOXEL_ON_SURFACE));
  for (const auto& b : inBoxes) {
    EXPECT_NEAR(b.size().x, float(v.scale), 1e-5f);
    EXPECT_TRUE(v.isVertInside(b.center()));
  }
  ASSERT_TRUE(voxelizationFunctor()(s.positions, s.triangles, 24u, inSpheres, onSpheres, v));
  ASSERT_EQ(inSpheres.size(), inBoxes.size());
  EXPECT_EQ(inSpheres[0].center, inBoxes[0].center());
  EXPECT_NEAR(inSpheres[0].radius, float(v.scale * std::sqrt(3.0) / 2.0), 1e-5f);

  // The boundary of the filled voxels is closed and holds their volume.
  editMesh shell;
  v.toMesh(shell, true);
  ASSERT_MESH_VALID(shell);
  EXPECT_EQ(testMeshes::borderEdges(shell), 0u);
  const double filled = double(countOf(v, VOXEL_INSIDE) + countOf(v, VOXEL_ON_SURFACE));
  EXPECT_NEAR(testMeshes::signedVolume(shell), filled * v.scale * v.scale * v.scale, 1e-3);
  editMesh core;
  v.toMesh(core, false);
  EXPECT_NEAR(testMeshes::signedVolume(core),
              double(countOf(v, VOXEL_INSIDE)) * v.scale * v.scale * v.scale, 1e-3);
}

TEST(voxelizationFunctor, openSurfacesBadInputAndBadGrids) {
  // A wide hole lets the outside in.
  editMesh m;
  testMeshes::makeSphere(m, 16, 32);
  for (unsigned f = 0; f < 64; ++f) m.deleteFace(f);
  testMeshes::finishMesh(m);
  soup s;
  std::vector<unsigned> t;
  INTERNAL::toTriangleSoup(m, s.positions, t);
  s.triangles.assign(t.begin(), t.end());
  volumeDescriptor v;
  ASSERT_TRUE(voxelizationFunctor()(s.positions, s.triangles, 32u, v));
  EXPECT_EQ(countOf(v, VOXEL_INSIDE), 0u);
  EXPECT_GT(countOf(v, VOXEL_ON_SURFACE), 0u);

  // Bad triangles are skipped; nothing usable fails and empties the volume.
  std::vector<p3> p = {p3(0, 0, 0), p3(1, 0, 0), p3(0, 1, 0),
                       p3(std::numeric_limits<float>::infinity(), 0, 0)};
  ASSERT_TRUE(voxelizationFunctor()(p, {0, 1, 2, 0, 1, 3, -4, 1, 2, 0, 1, 99}, 8u, v));
  EXPECT_EQ(countOf(v, VOXEL_INSIDE), 0u);
  EXPECT_FALSE(voxelizationFunctor()(p, {0, 1, 3, -1, 1, 2}, 8u, v));
  EXPECT_TRUE(v.isEmpty());
  EXPECT_FALSE(voxelizationFunctor()(p, {0, 1, 2}, 0u, v));
  EXPECT_FALSE(voxelizationFunctor()(p, {0, 1, 2}, 100000u, v));
  volumeDescriptor frame;
  EXPECT_FALSE(voxelizationFunctor()(p, {0, 1, 2}, frame, v));  // no frame
  EXPECT_FALSE(frame.frameBox(JEV::MATH::point3<double>(0, 0, 0),
                              JEV::MATH::point3<double>(1e30, 1e30, 1e30), 1e-6));
  EXPECT_FALSE(
      frame.frameBox(JEV::MATH::point3<double>(1, 0, 0), JEV::MATH::point3<double>(0, 0, 0), 1.0));
  // A single triangle far off the frame marks nothing and fails.
  ASSERT_TRUE(
      frame.frameBox(JEV::MATH::point3<double>(0, 0, 0), JEV::MATH::point3<double>(1, 1, 1), 0.25));
  std::vector<p3> far = {p3(50, 50, 50), p3(51, 50, 50), p3(50, 51, 50)};
  EXPECT_FALSE(voxelizationFunctor()(far, {0, 1, 2}, frame, v));
}
