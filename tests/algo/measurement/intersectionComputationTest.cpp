#include "jev3d/algo/measurement/intersectionComputation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "jev3d/math/mathBase.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::ALGO::MEASUREMENT::intersectionDescriptor;
using JEV::MESH::ALGO::MEASUREMENT::VOXEL::closestPointTransform;
using JEV::MESH::ALGO::MEASUREMENT::VOXEL::intersectionComputation;
using JEV::MESH::ALGO::MEASUREMENT::VOXEL::voxelModel;
using m4 = JEV::MATH::matrix4<float>;
using p3 = JEV::MATH::point3<float>;
constexpr float MAX_T = JEV::MATH::mathBase<float>::MAX_T();

void makeSphere(editMesh& m, float r) {
  testMeshes::makeSphere(m, 24, 48);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) *= r;
  testMeshes::finishMesh(m);
}

// Every voxel's distance by a fresh tree query, the transform's by propagation.
void expectTransformEqualsQueries(const voxelModel& model, float band) {
  const closestPointTransform& cpt = model.cpt;
  std::vector<unsigned> tris(model.triangles.begin(), model.triangles.end());
  JEV::MATH::triangleTree tree;
  tree.build(model.points.data(), model.points.size(), tris.data(), tris.size() / 3);
  unsigned inBand = 0, beyond = 0;
  float worst = 0;
  for (uint64_t k = 0; k < cpt.dimZ; ++k)
    for (uint64_t j = 0; j < cpt.dimY; ++j)
      for (uint64_t i = 0; i < cpt.dimX; ++i) {
        JEV::MATH::closestPointHit hit;
        ASSERT_TRUE(tree.closestPoint(cpt.center(i, j, k), MAX_T, hit));
        const float exact = std::sqrt(hit.squaredDistance);
        const uint64_t at = cpt.index(i, j, k);
        ASSERT_NE(cpt.triangles[at], closestPointTransform::NO_TRIANGLE);
        EXPECT_NEAR((cpt.closest[at] - cpt.center(i, j, k)).norm(), cpt.distances[at], 1e-5f);
        if (exact <= band * float(cpt.scale)) {
          ++inBand;
          EXPECT_NEAR(cpt.distances[at], exact, 1e-6f) << i << " " << j << " " << k;
        } else {
          ++beyond;
          // Never below the true distance: the point it names lies on the surface.
          EXPECT_GE(cpt.distances[at], exact * (1 - 1e-6f));
          worst = std::max(worst, cpt.distances[at] - exact);
        }
      }
  EXPECT_GT(inBand, 100u);
  EXPECT_GT(beyond, 100u);
  EXPECT_LT(worst, 1e-4f * float(cpt.scale)) << "propagated distances drift from the exact ones";
}

TEST(closestPointTransform, equalsPerVoxelQueriesOnSphere) {
  editMesh sphere;
  makeSphere(sphere, 1.0f);
  voxelModel model;
  intersectionComputation::editMeshToPointTri(editMeshInterface(sphere), model.points,
                                              model.triangles);
  ASSERT_TRUE(
      intersectionComputation::convertToVolume(model.points, model.triangles, 20, model.volume));
  // A grid wider than the volume's own, so that much of it lies beyond the band.
  JEV::MESH::ALGO::REMESHING::volumeDescriptor wide;
  ASSERT_TRUE(wide.frameBox(JEV::MATH::point3<double>(-2, -2, -2),
                            JEV::MATH::point3<double>(2, 2, 2), 0.2));
  recordingCallBack cb;
  ASSERT_TRUE(intersectionComputation::computeClosestPointTransform(model.points, model.triangles,
                                                                    wide, model.cpt, 1.5f, &cb));
  EXPECT_EQ(cb.values.front(), 1.0f);
  EXPECT_EQ(cb.values.back(), 100.0f);
  expectTransformEqualsQueries(model, 1.5f);
}

TEST(closestPointTransform, equalsPerVoxelQueriesOnCubeWithCorners) {
  editMesh cube;
  testMeshes::makeCube(cube);
  testMeshes::finishMesh(cube);
  voxelModel model;
  ASSERT_TRUE(intersectionComputation::prepare(editMeshInterface(cube), 16, model));
  expectTransformEqualsQueries(model, 2.0f);
  // The signed field: negative inside, positive outside, the centre half the edge deep.
  uint64_t i, j, k;
  ASSERT_TRUE(model.volume.getVoxelIndex(model.volume.cvt(p3(0.5f, 0.5f, 0.5f)), i, j, k));
  EXPECT_LT(model.sdf[model.cpt.index(i, j, k)], -0.4f);
  EXPECT_GT(model.sdf[model.cpt.index(0, 0, 0)], 0.0f);
}

TEST(closestPointTransform, equalsPerVoxelQueriesOnTorus) {
  // Not convex: voxels in the hole and beyond the rim see different sides.
  editMesh torus;
  torus.makeTorus(32, 16, 1.f, 0.35f);
  testMeshes::finishMesh(torus);
  voxelModel model;
  ASSERT_TRUE(intersectionComputation::prepare(editMeshInterface(torus), 24, model));
  expectTransformEqualsQueries(model, 2.0f);
}

TEST(closestPointTransform, emptyInputGivesEmptyTransform) {
  voxelModel model;
  editMesh empty;
  EXPECT_FALSE(intersectionComputation::prepare(editMeshInterface(empty), 16, model));
  EXPECT_TRUE(model.isEmpty());
  JEV::MESH::ALGO::REMESHING::volumeDescriptor frame;
  closestPointTransform cpt;
  EXPECT_FALSE(
      intersectionComputation::computeClosestPointTransform({p3(0, 0, 0)}, {0, 0, 7}, frame, cpt));
  EXPECT_TRUE(cpt.isEmpty());
}

TEST(intersectionComputation, signedDistanceFollowsTheSurface) {
  editMesh sphere;
  makeSphere(sphere, 1.0f);
  voxelModel model;
  ASSERT_TRUE(intersectionComputation::prepare(editMeshInterface(sphere), 32, model));
  for (float r : {0.0f, 0.3f, 0.8f, 0.97f, 1.03f, 1.05f}) {
    const p3 p = p3(1, 2, 2) * (r / 3.0f);
    EXPECT_NEAR(intersectionComputation::signedDistance(model, p), r - 1.0f, 0.02f) << r;
  }
  EXPECT_EQ(intersectionComputation::signedDistance(model, p3(5, 0, 0)), MAX_T);
}

TEST(intersectionComputation, overlappingAndDisjointSolids) {
  editMesh big, small;
  makeSphere(big, 1.0f);
  makeSphere(small, 0.5f);
  voxelModel a, b;
  ASSERT_TRUE(intersectionComputation::prepare(editMeshInterface(big), 32, a));
  ASSERT_TRUE(intersectionComputation::prepare(editMeshInterface(small), 32, b));
  intersectionDescriptor result;

  // The small sphere pushed half into the big one's side.
  ASSERT_TRUE(
      intersectionComputation::compute(a, m4::IDENTITY(), b, m4::getTranslate(1, 0, 0), result));
  EXPECT_TRUE(result.intersects);
  EXPECT_GT(result.firstInsideSecond, 0u);
  EXPECT_GT(result.secondInsideFirst, 0u);
  EXPECT_NEAR(result.secondDepth, -0.5f, 0.03f);
  ASSERT_EQ(result.secondDistances.size(), b.points.size());
  for (std::size_t v = 0; v < b.points.size(); ++v) {
    const p3 placed = b.points[v] + p3(1, 0, 0);
    if (result.secondDistances[v] < MAX_T) {
      EXPECT_NEAR(result.secondDistances[v], placed.norm() - 1.0f, 0.02f);
    }
  }

  // Wholly inside: no surface crossing, yet the solids intersect.
  ASSERT_TRUE(intersectionComputation::compute(a, m4::IDENTITY(), b, m4::IDENTITY(), result));
  EXPECT_TRUE(result.intersects);
  EXPECT_EQ(result.secondInsideFirst, b.points.size());
  EXPECT_EQ(result.firstInsideSecond, 0u);

  // Apart.
  ASSERT_TRUE(
      intersectionComputation::compute(a, m4::IDENTITY(), b, m4::getTranslate(1.6f, 0, 0), result));
  EXPECT_FALSE(result.intersects);
  EXPECT_EQ(result.firstInsideSecond + result.secondInsideFirst, 0u);
  EXPECT_EQ(result.firstDepth, 0.0f);

  voxelModel none;
  EXPECT_FALSE(intersectionComputation::compute(a, m4::IDENTITY(), none, m4::IDENTITY(), result));
}

}  // namespace
