#include "jev3d/algo/measurement/signedDistanceComputation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "jev3d/algo/measurement/distance.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/meshes.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::ALGO::MEASUREMENT::signedDistanceComputation;
using JEV::MESH::ALGO::MEASUREMENT::VOXEL::intersectionComputation;
using JEV::MESH::ALGO::MEASUREMENT::VOXEL::voxelModel;
using m4 = JEV::MATH::matrix4<float>;
using p3 = JEV::MATH::point3<float>;
constexpr float MAX_T = JEV::MATH::mathBase<float>::MAX_T();

// The voxel route gives what the exact per-vertex search gives, on placed models, inside,
// outside and beyond the grid.
TEST(signedDistanceComputation, agreesWithTheExactSearch) {
  editMesh target, probe;
  testMeshes::makeSphere(target, 16, 32);
  testMeshes::finishMesh(target);
  testMeshes::makeSphere(probe, 12, 24);
  for (unsigned v = 0; v < probe.vn(); ++v) probe.vPos(v) *= 1.6f;
  testMeshes::finishMesh(probe);
  probe.deleteVertex(0);
  voxelModel model;
  editMeshInterface targetView(target), probeView(probe);
  ASSERT_TRUE(intersectionComputation::prepare(targetView, 24, model));

  const m4 targetAt = m4::getTranslate(2, 0, 0), probeAt = m4::getTranslate(2.8f, 0.3f, 0);
  std::vector<float> d;
  std::vector<p3> closest;
  std::vector<unsigned> faces;
  ASSERT_TRUE(
      signedDistanceComputation::compute(model, targetAt, probeView, probeAt, d, closest, faces));

  // The same placement done by hand, then the exact search of the distance functions.
  editMesh placedTarget = target, placedProbe = probe;
  placedTarget.transform(targetAt);
  placedProbe.transform(probeAt);
  editMeshInterface pt(placedTarget), pp(placedProbe);
  std::vector<float> exact;
  std::vector<p3> exactClosest;
  std::vector<unsigned> exactFaces;
  ASSERT_TRUE(JEV::MESH::ALGO::MEASUREMENT::distance::computeSignedDistance(
      &pp, &pt, true, MAX_T, exact, exactClosest, exactFaces));
  unsigned inside = 0, outside = 0;
  EXPECT_EQ(d[0], MAX_T);
  EXPECT_EQ(faces[0], 0xFFFFFFFFu);
  for (unsigned v = 1; v < probe.vn(); ++v) {
    EXPECT_NEAR(d[v], exact[v], 1e-4f) << v;
    // Points at equal distance may differ; the distance to the one named may not.
    EXPECT_NEAR((closest[v] - placedProbe.vPos(v)).norm(), std::fabs(exact[v]), 1e-4f) << v;
    EXPECT_LT(faces[v], target.fn());
    inside += d[v] < 0;
    outside += d[v] > 0;
  }
  EXPECT_GT(inside, 10u);
  EXPECT_GT(outside, 20u);

  voxelModel none;
  EXPECT_FALSE(signedDistanceComputation::compute(none, probeView, d));
  EXPECT_EQ(d.size(), probe.vn());
}

}  // namespace
