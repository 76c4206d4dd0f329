#include "jev3d/algo/smoothing/twoStepSmooth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "smoothingMeshes.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::SMOOTHING::computeTwoStep;
using testMeshes::p3;
using namespace smoothingMeshes;

// The filter's knobs, named at the call.
struct twoStepParams {
  float featureAngleDeg = 60.f;
  int iterations = 3;
  int normalSteps = 4;
  int fitSteps = 4;
  bool keepBorder = false;
  bool selectedOnly = false;
};

editMesh smoothed(const editMesh& m, const twoStepParams& p, recordingCallBack* cb = nullptr) {
  editMesh out;
  computeTwoStep(&m, &out, p.featureAngleDeg, p.iterations, p.normalSteps, p.fitSteps, p.keepBorder,
                 p.selectedOnly, cb);
  return out;
}

bool samePositions(const editMesh& a, const editMesh& b) {
  if (a.vn() != b.vn()) return false;
  for (unsigned v = 0; v < a.vn(); ++v)
    if (!same(a.vPos(v), b.vPos(v))) return false;
  return true;
}

// A grid folded along x = 4 into a valley whose two sides' normals are 45 degrees apart.
editMesh valley() {
  editMesh m;
  testMeshes::makeGrid(m, 8, 8, false);
  const float slope = float(std::tan(22.5 * 3.14159265358979323846 / 180.0));
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v).z = slope * std::fabs(m.vPos(v).x - 4.f);
  finish(m);
  return m;
}

TEST(twoStepSmoothTest, PlaneStaysPlane) {
  editMesh m;
  makeJitteredPlane(m, 12);
  const editMesh out = smoothed(m, {});
  ASSERT_EQ(out.vn(), m.vn());
  EXPECT_EQ(maxAbsZ(out), 0.f);
  EXPECT_MESH_VALID(out);
}

TEST(twoStepSmoothTest, NoisySphereComesCloserToTheSphere) {
  editMesh m;
  makeNoisySphere(m, 40, 80, 0.02f);
  recordingCallBack cb;
  const editMesh out = smoothed(m, {}, &cb);
  EXPECT_LT(sphereDeviation(out), 0.7 * sphereDeviation(m));
  EXPECT_EQ(out.fn(), m.fn());
  ASSERT_GE(cb.values.size(), 2u);
  EXPECT_EQ(cb.values.front(), 0.f);
  EXPECT_EQ(cb.values.back(), 100.f);
}

// The cube's faces meet at right angles: below that feature angle no face sees across
// an edge, every face keeps its plane and nothing moves, corners included.
TEST(twoStepSmoothTest, CubeCornersStayBelowTheRightAngle) {
  editMesh m;
  makeFineCube(m, 2);
  for (float angle : {30.f, 60.f, 89.f}) {
    twoStepParams p;
    p.featureAngleDeg = angle;
    EXPECT_TRUE(samePositions(smoothed(m, p), m)) << angle;
  }
}

TEST(twoStepSmoothTest, FeatureAngleDecidesWhetherAFoldIsRounded) {
  const editMesh m = valley();
  twoStepParams p;
  p.featureAngleDeg = 30.f;  // the fold's 45 degrees are a feature
  const editMesh kept = smoothed(m, p);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_LT((kept.vPos(v) - m.vPos(v)).norm(), 1e-5f) << v;
  p.featureAngleDeg = 60.f;  // now both sides filter each other
  const editMesh out = smoothed(m, p);
  EXPECT_GT(out.vPos(4 * 9 + 4).z, 0.01f);  // the valley floor rises
}

// Above 90 degrees the cosine is clamped to 0: every angle there is the same filter.
TEST(twoStepSmoothTest, FeatureAnglesAboveTheRightAngleAllActAlike) {
  editMesh m;
  makeNoisyCube(m, 3, 0.03f);
  twoStepParams p;
  p.featureAngleDeg = 100.f;
  const editMesh a = smoothed(m, p);
  p.featureAngleDeg = 150.f;
  EXPECT_TRUE(samePositions(a, smoothed(m, p)));
  p.featureAngleDeg = 80.f;
  EXPECT_FALSE(samePositions(a, smoothed(m, p)));
}

TEST(twoStepSmoothTest, NoisyCubeKeepsItsEdgesBetterThanTheLaplacian) {
  twoStepParams p;
  p.featureAngleDeg = 40.f;
  const cubeEdgeDeviations d =
      cubeEdgesAfter("two-step", [&](const editMesh& m) { return smoothed(m, p); });
  EXPECT_LT(d.filtered, d.noisy);
  EXPECT_LT(d.filtered, 0.7 * d.laplacian);
}

TEST(twoStepSmoothTest, SelectedOnlyMovesVerticesWhoseFacesAreAllSelected) {
  editMesh m;
  makeNoisySphere(m, 20, 40, 0.03f);
  for (unsigned f = 0; f < m.fn(); ++f) {
    const p3 c = (m.vPos(m.fV(f, 0)) + m.vPos(m.fV(f, 1)) + m.vPos(m.fV(f, 2))) / 3.f;
    if (c.z > 0.f) m.selectFace(f);
  }
  twoStepParams p;
  p.selectedOnly = true;
  const editMesh out = smoothed(m, p);
  unsigned moved = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    bool all = true;
    for (unsigned f = 0; f < m.fn(); ++f)
      for (unsigned i = 0; i < 3; ++i)
        if (m.fV(f, i) == v && !m.isFaceSelected(f)) all = false;
    if (!all) {
      EXPECT_TRUE(same(out.vPos(v), m.vPos(v))) << v;
    } else {
      moved += !same(out.vPos(v), m.vPos(v));
    }
  }
  EXPECT_GT(moved, 100u);
}

TEST(twoStepSmoothTest, KeepBorderWithSelectionHoldsTheFacesOnTheBorder) {
  editMesh m;
  makeJitteredPlane(m, 10);
  noise r(9);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v).z = 0.05f * r();
  finish(m);
  m.selectAllFaces();
  twoStepParams p;
  p.selectedOnly = true;
  p.keepBorder = true;
  const editMesh out = smoothed(m, p);
  // Vertices within one ring of the border touch a face that touches it.
  unsigned moved = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    const unsigned i = v % 11, j = v / 11;
    const bool nearBorder = i <= 1 || j <= 1 || i >= 9 || j >= 9;
    if (nearBorder) {
      EXPECT_TRUE(same(out.vPos(v), m.vPos(v))) << v;
    } else {
      moved += !same(out.vPos(v), m.vPos(v));
    }
  }
  EXPECT_GT(moved, 40u);
}

// Without selectedOnly the border pass only rewrites face selection, which the fitting
// does not read: the result is the same as without keepBorder.
TEST(twoStepSmoothTest, KeepBorderAloneChangesNothing) {
  editMesh m;
  makeNoisyCube(m, 2, 0.03f);
  m.deleteFace(3);  // open the cube
  finish(m);
  twoStepParams p;
  const editMesh a = smoothed(m, p);
  p.keepBorder = true;
  EXPECT_TRUE(samePositions(a, smoothed(m, p)));
}

TEST(twoStepSmoothTest, TargetDropsDeletedVerticesAndZeroIterationsMoveNothing) {
  editMesh m;
  makeNoisySphere(m, 8, 16, 0.05f);
  const unsigned lone = m.addVertex(9.f, 9.f, 9.f);
  finish(m);
  m.setVertFlag(lone, JEV::MESH::VERT_STATE_T::DELETED);
  twoStepParams p;
  p.iterations = 0;
  const editMesh out = smoothed(m, p);
  ASSERT_EQ(out.vn(), m.vn() - 1);
  for (unsigned v = 0; v + 1 < m.vn(); ++v) EXPECT_TRUE(same(out.vPos(v), m.vPos(v)));
  EXPECT_MESH_VALID(out);
}

TEST(twoStepSmoothTest, NullSourceEmptiesTheTargetAndNullTargetIsSkipped) {
  editMesh m;
  makeNoisySphere(m, 8, 16, 0.05f);
  computeTwoStep(static_cast<const editMesh*>(nullptr), &m, 60.f, 2, 2, 2, false, false, nullptr);
  EXPECT_EQ(m.vn(), 0u);
  EXPECT_EQ(m.fn(), 0u);
  editMesh n;
  makeNoisySphere(n, 8, 16, 0.05f);
  const std::vector<p3> before = positions(n);
  computeTwoStep(&n, nullptr, 60.f, 2, 2, 2, false, false, nullptr);
  for (unsigned v = 0; v < n.vn(); ++v) EXPECT_TRUE(same(n.vPos(v), before[v]));
}

TEST(twoStepSmoothTest, SourceAndTargetMayBeOneMesh) {
  editMesh m;
  makeNoisySphere(m, 20, 40, 0.03f);
  const editMesh expected = smoothed(m, {});
  computeTwoStep(&m, &m, 60.f, 3, 4, 4, false, false, nullptr);
  EXPECT_TRUE(samePositions(m, expected));
  EXPECT_MESH_VALID(m);
}

}  // namespace
