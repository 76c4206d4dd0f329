#include <gtest/gtest.h>

#include <cmath>
#include <iostream>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "smoothingMeshes.h"
#include "support/recordingCallBack.h"

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::POSTPROCESSING::triMesh;
using namespace smoothingMeshes;

namespace {

void taubin(editMesh& m, unsigned iterations, bool smoothBorder = false,
            JEV::SYSTEM::callBack* cb = nullptr) {
  editMeshInterface view(m);
  view.taubinSmoothing(iterations, 0.5f, -0.53f, smoothBorder, cb);
}

}  // namespace

TEST(taubinSmoothingTest, APlaneStaysAPlaneInBothMeshForms) {
  editMesh m;
  makeJitteredPlane(m, 10);
  const std::vector<p3> before = positions(m);
  taubin(m, 20, true);
  EXPECT_EQ(maxAbsZ(m), 0.f);
  EXPECT_FALSE(same(before[60], m.vPos(60)));  // an inner vertex did move, in the plane

  editMesh plane;
  makeJitteredPlane(plane, 10);
  triMesh scan;
  scan.importFrom(editMeshInterface(plane));
  scan.taubinSmoothing(20, 0.5f, -0.53f, true, nullptr);
  for (unsigned v = 0; v < scan.vn(); ++v) EXPECT_EQ(scan.vPos(v).z, 0.f);
}

TEST(taubinSmoothingTest, ANoisySpheresDeviationFallsAndBothMeshFormsAgree) {
  editMesh m;
  makeNoisySphere(m, 24, 32, 0.05f);
  triMesh scan;
  scan.importFrom(editMeshInterface(m));
  ASSERT_EQ(scan.vn(), m.vn());
  const double noisy = sphereDeviation(m);
  taubin(m, 10);
  const double smoothed = sphereDeviation(m);
  std::cout << "sphere deviation: noisy " << noisy << ", Taubin " << smoothed << "\n";
  EXPECT_LT(smoothed, 0.5 * noisy);
  EXPECT_MESH_VALID(m);

  scan.taubinSmoothing(10, 0.5f, -0.53f, false, nullptr);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_LT((scan.vPos(v) - m.vPos(v)).norm(), 1e-5f);
}

TEST(taubinSmoothingTest, VolumeShrinksFarLessThanUnderTheLaplacian) {
  editMesh taubinSphere;
  makeNoisySphere(taubinSphere, 24, 32, 0.05f);
  editMesh laplacianSphere = taubinSphere;
  const double before = testMeshes::signedVolume(taubinSphere);
  taubin(taubinSphere, 10);
  JEV::MESH::ALGO::SMOOTHING::computeLaplacianSmooth(laplacianSphere, 10, false, nullptr);
  const double taubinLoss = before - testMeshes::signedVolume(taubinSphere);
  const double laplacianLoss = before - testMeshes::signedVolume(laplacianSphere);
  std::cout << "volume lost in 10 steps: Taubin " << taubinLoss / before * 100 << "%, Laplacian "
            << laplacianLoss / before * 100 << "%\n";
  EXPECT_GT(laplacianLoss, 0.0);
  EXPECT_LT(std::fabs(taubinLoss), 0.2 * laplacianLoss);
}

TEST(taubinSmoothingTest, TheBorderStaysUnlessAskedAndNormalsAreRecomputed) {
  editMesh m;
  testMeshes::makeGrid(m, 6, 6, false);
  testMeshes::finishMesh(m);
  smoothingMeshes::noise n(5);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v).z = 0.2f * n();
  testMeshes::finishMesh(m);
  const std::vector<p3> before = positions(m);
  taubin(m, 3);
  for (unsigned j = 0; j <= 6; ++j)
    for (unsigned i = 0; i <= 6; ++i) {
      const unsigned v = j * 7 + i;
      const bool border = i == 0 || j == 0 || i == 6 || j == 6;
      EXPECT_EQ(same(before[v], m.vPos(v)), border) << v;
      EXPECT_NEAR(m.vNor(v).norm(), 1.f, 1e-4f) << v;
    }
  taubin(m, 3, true);
  EXPECT_FALSE(same(before[0], m.vPos(0)));
}

TEST(taubinSmoothingTest, ZeroStepsMoveNothingAndProgressRunsFromZeroTo100) {
  editMesh m;
  makeNoisySphere(m, 8, 12, 0.05f);
  const std::vector<p3> before = positions(m);
  recordingCallBack cb;
  taubin(m, 0, false, &cb);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_TRUE(same(before[v], m.vPos(v)));
  ASSERT_FALSE(cb.values.empty());
  EXPECT_EQ(cb.values.front(), 0.f);
  EXPECT_EQ(cb.values.back(), 100.f);

  recordingCallBack steps;
  taubin(m, 4, false, &steps);
  ASSERT_GE(steps.values.size(), 3u);
  EXPECT_EQ(steps.values.front(), 0.f);
  EXPECT_EQ(steps.values.back(), 100.f);
  for (size_t i = 1; i < steps.values.size(); ++i) EXPECT_GE(steps.values[i], steps.values[i - 1]);
}
