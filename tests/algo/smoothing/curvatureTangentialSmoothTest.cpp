#include "jev3d/algo/smoothing/curvatureTangentialSmooth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "smoothingMeshes.h"
#include "support/meshes.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::SMOOTHING::computeCurvatureTangentialSmooth;
using testMeshes::p3;
using namespace smoothingMeshes;

// Spread of the edge lengths: their standard deviation over their mean.
double edgeLengthSpread(const editMesh& m) {
  double s = 0, s2 = 0;
  unsigned k = 0;
  for (unsigned e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e)) continue;
    const double l = (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm();
    s += l, s2 += l * l, ++k;
  }
  const double mean = s / k;
  return std::sqrt(std::max(0.0, s2 / k - mean * mean)) / mean;
}

TEST(curvatureTangentialSmoothTest, PlaneStaysPlaneAndItsSamplingEvensOut) {
  editMesh m;
  makeJitteredPlane(m, 12);
  const double before = edgeLengthSpread(m);
  computeCurvatureTangentialSmooth(m, 5, false);
  EXPECT_EQ(maxAbsZ(m), 0.f);
  EXPECT_LT(edgeLengthSpread(m), 0.8 * before);
  EXPECT_MESH_VALID(m);
}

TEST(curvatureTangentialSmoothTest, MovesOnlyAcrossTheStartingNormals) {
  editMesh m;
  makeNoisySphere(m, 16, 32, 0.05f);
  m.computeNormalizedNormals();
  const std::vector<p3> p = positions(m);
  std::vector<p3> n(m.vn());
  for (unsigned v = 0; v < m.vn(); ++v) n[v] = m.vNor(v);
  computeCurvatureTangentialSmooth(m, 4, false);
  double moved = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    const p3 d = m.vPos(v) - p[v];
    EXPECT_NEAR(d * n[v], 0.f, 1e-5f) << v;
    moved += d.norm();
  }
  EXPECT_GT(moved, 0.0);
}

TEST(curvatureTangentialSmoothTest, NoisySphereComesCloserToTheSphere) {
  editMesh m;
  makeNoisySphere(m, 40, 80, 0.02f);
  const double before = sphereDeviation(m);
  computeCurvatureTangentialSmooth(m, 3, false);
  EXPECT_LT(sphereDeviation(m), before);
}

TEST(curvatureTangentialSmoothTest, SelectedOnlyMovesOnlyTheSelection) {
  editMesh m;
  makeJitteredPlane(m, 8);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v).z = 0.1f * float(v % 3);
  finish(m);
  const unsigned chosen = 4 * 9 + 4;
  m.selectVert(chosen);
  const std::vector<p3> p = positions(m);
  computeCurvatureTangentialSmooth(m, 2, true);
  for (unsigned v = 0; v < m.vn(); ++v)
    if (v != chosen) {
      EXPECT_TRUE(same(m.vPos(v), p[v])) << v;
    }
  EXPECT_FALSE(same(m.vPos(chosen), p[chosen]));
}

TEST(curvatureTangentialSmoothTest, ZeroIterationsMovesNothing) {
  editMesh m;
  makeNoisySphere(m, 8, 16, 0.05f);
  const std::vector<p3> p = positions(m);
  computeCurvatureTangentialSmooth(m, 0, false);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_TRUE(same(m.vPos(v), p[v]));
}

TEST(curvatureTangentialSmoothTest, BuildsStaleEdgesFirst) {
  editMesh m;
  makeJitteredPlane(m, 6);
  m.invalidateEVEF();
  m.invalidateVE();
  const std::vector<p3> p = positions(m);
  computeCurvatureTangentialSmooth(m, 1, false);
  EXPECT_TRUE(m.isVEValid());
  EXPECT_FALSE(same(m.vPos(3 * 7 + 3), p[3 * 7 + 3]));
  EXPECT_MESH_VALID(m);
}

}  // namespace
