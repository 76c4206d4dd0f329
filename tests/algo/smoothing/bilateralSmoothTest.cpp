#include "jev3d/algo/smoothing/bilateralSmooth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "jev3d/mesh/editMeshInterface.h"
#include "smoothingMeshes.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::SMOOTHING::computeBilateralSmooth;
using testMeshes::p3;
using namespace smoothingMeshes;

// The filter's result written into a copy of the mesh, and its standard output.
editMesh filtered(const editMesh& m, float sigmaSpace, float sigmaRange,
                  std::string* printed = nullptr) {
  std::vector<p3> result;
  testing::internal::CaptureStdout();
  computeBilateralSmooth(m, sigmaSpace, sigmaRange, result, nullptr);
  const std::string out = testing::internal::GetCapturedStdout();
  if (printed) *printed = out;
  EXPECT_EQ(result.size(), m.vn());
  editMesh copy = m;
  for (unsigned v = 0; v < copy.vn() && v < result.size(); ++v) copy.vPos(v) = result[v];
  return copy;
}

TEST(bilateralSmoothTest, PlaneStaysPlaneAndTheInputIsUntouched) {
  editMesh m;
  makeJitteredPlane(m, 12);
  const std::vector<p3> before = positions(m);
  const editMesh out = filtered(m, 2.f, 1.f);
  EXPECT_EQ(maxAbsZ(out), 0.f);
  double moved = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    EXPECT_TRUE(same(m.vPos(v), before[v]));
    moved += (out.vPos(v) - before[v]).norm();
  }
  EXPECT_GT(moved, 0.0);
}

TEST(bilateralSmoothTest, NoisySphereComesCloserToTheSphere) {
  editMesh m;
  makeNoisySphere(m, 40, 80, 0.02f);
  const editMesh out = filtered(m, 0.5f, 0.5f);
  EXPECT_LT(sphereDeviation(out), 0.7 * sphereDeviation(m));
}

TEST(bilateralSmoothTest, NoisyCubeKeepsItsEdgesBetterThanTheLaplacian) {
  const cubeEdgeDeviations d =
      cubeEdgesAfter("bilateral", [](const editMesh& m) { return filtered(m, 0.5f, 0.5f); });
  EXPECT_LT(d.filtered, d.noisy);
  EXPECT_LT(d.filtered, 0.7 * d.laplacian);
}

TEST(bilateralSmoothTest, WritesItsStepsAndNeverCallsBack) {
  editMesh m;
  makeNoisySphere(m, 10, 20, 0.05f);
  JEV::MESH::editMeshInterface view(m);
  std::vector<p3> result;
  recordingCallBack cb;
  testing::internal::CaptureStdout();
  computeBilateralSmooth(view, 2.f, 1.f, result, &cb);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_TRUE(cb.values.empty());
  EXPECT_EQ(out.rfind("bilateral smoothing ", 0), 0u) << out;
  const size_t smoothing = out.find("\rSmoothing... "), done = out.find("Done.  Filtering took ");
  ASSERT_NE(smoothing, std::string::npos) << out;
  ASSERT_NE(done, std::string::npos) << out;
  EXPECT_LT(smoothing, done);
  EXPECT_NE(out.find(" sec.\ndone\ndone\n", done), std::string::npos) << out;
}

TEST(bilateralSmoothTest, EmptyMeshGivesAnEmptyResultAndALoneVertexStays) {
  editMesh empty;
  std::vector<p3> result(3);
  testing::internal::CaptureStdout();
  computeBilateralSmooth(empty, 2.f, 1.f, result, nullptr);
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(result.empty());

  editMesh m;
  makeNoisySphere(m, 10, 20, 0.05f);
  const unsigned lone = m.addVertex(4.f, 5.f, 6.f);
  finish(m);
  const editMesh out = filtered(m, 2.f, 1.f);
  EXPECT_TRUE(same(out.vPos(lone), p3(4.f, 5.f, 6.f)));
}

TEST(bilateralSmoothTest, NarrowRangeHoldsAStepThatAWideOneRounds) {
  // A grid whose right half is raised by one unit: the range width decides whether the
  // two levels filter each other.
  editMesh m;
  testMeshes::makeGrid(m, 12, 12, false);
  for (unsigned v = 0; v < m.vn(); ++v)
    if (m.vPos(v).x > 6.f) m.vPos(v).z = 1.f;
  finish(m);
  const unsigned low = 6 * 13 + 5;  // next to the step, on the low side
  const float narrow = std::abs(filtered(m, 2.f, 0.2f).vPos(low).z),
              wide = filtered(m, 2.f, 5.f).vPos(low).z;
  EXPECT_LT(narrow, 0.005f);
  EXPECT_GT(wide, 10.f * narrow);
}

}  // namespace
