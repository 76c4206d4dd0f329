#include "jev3d/algo/smoothing/laplacianSmooth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "smoothingMeshes.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::SMOOTHING::computeLaplacianSmooth;
using JEV::MESH::ALGO::SMOOTHING::laplacianDescriptor;
using testMeshes::p3;
using namespace smoothingMeshes;

void expectNear(const p3& a, const p3& b, float tol = 1e-5f) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

// 2 x 2 quads, vertex (i, j) = 3j + i, with the middle vertex lifted off the plane.
editMesh liftedGrid() {
  editMesh m;
  testMeshes::makeGrid(m, 2, 2);
  m.vPos(4) = p3(1.3f, 0.8f, 0.5f);
  finish(m);
  return m;
}

TEST(laplacianDescriptorTest, ResizeGivesNullSumsAndUnitCountsAndClearFrees) {
  laplacianDescriptor d;
  d.resize(4);
  ASSERT_EQ(d.sum.size(), 4u);
  for (unsigned i = 0; i < 4; ++i) {
    EXPECT_EQ(d.count[i], 1u);
    EXPECT_EQ(d.sum[i].squaredNorm(), 0.f);
  }
  d.clear();
  EXPECT_TRUE(d.sum.empty());
  EXPECT_EQ(d.count.capacity(), 0u);
}

TEST(laplacianPassTest, InteriorEdgesCountTwiceAndBorderEdgesOnce) {
  editMesh m = liftedGrid();
  laplacianDescriptor d;
  d.resize(2);  // a stale size must not survive the pass
  computeLaplacianSmooth(m, d, nullptr);
  ASSERT_EQ(d.count.size(), 9u);
  // Corner: two border sides. Side middle: two border sides and one interior edge seen
  // from both faces. Centre: four interior edges, each seen twice.
  EXPECT_EQ(d.count[0], 3u);
  EXPECT_EQ(d.count[1], 5u);
  EXPECT_EQ(d.count[4], 9u);
  expectNear(d.sum[0], m.vPos(1) + m.vPos(3));
  expectNear(d.sum[1], m.vPos(0) + m.vPos(2) + m.vPos(4) * 2.f);
  expectNear(d.sum[4], (m.vPos(1) + m.vPos(3) + m.vPos(5) + m.vPos(7)) * 2.f);
  // The pass moves nothing.
  EXPECT_EQ(m.vPos(4).z, 0.5f);
}

TEST(laplacianPassTest, DeletedFacesAddNothingAndReportsRunFromZeroTo100) {
  editMesh m = liftedGrid();
  m.deleteFace(0);  // the cell at vertex 0
  laplacianDescriptor d;
  recordingCallBack cb;
  computeLaplacianSmooth(m, d, &cb);
  EXPECT_EQ(d.count[0], 1u);
  EXPECT_EQ(d.sum[0].squaredNorm(), 0.f);
  ASSERT_FALSE(cb.values.empty());
  EXPECT_EQ(cb.values.front(), 0.f);
  EXPECT_EQ(cb.values.back(), 100.f);
  EXPECT_TRUE(std::is_sorted(cb.values.begin(), cb.values.end()));
}

TEST(laplacianPassTest, FacesWithoutFlagsAreRead) {
  editMesh m = liftedGrid();
  m.faceFlags().clear();
  laplacianDescriptor d;
  computeLaplacianSmooth(m, d, nullptr);
  EXPECT_EQ(m.faceFlags().size(), m.fn());
  EXPECT_EQ(d.count[4], 9u);
}

// One step on the grid, worked out by hand from the counts above: every vertex becomes
// (itself + sum) / count.
TEST(laplacianSmoothTest, OneStepOnAGridGivesTheClosedFormPositions) {
  editMesh m = liftedGrid();
  const std::vector<p3> p = positions(m);
  computeLaplacianSmooth(m, 1, true, nullptr);
  expectNear(m.vPos(0), (p[0] + p[1] + p[3]) / 3.f);
  expectNear(m.vPos(2), (p[2] + p[1] + p[5]) / 3.f);
  expectNear(m.vPos(1), (p[1] + p[0] + p[2] + p[4] * 2.f) / 5.f);
  expectNear(m.vPos(7), (p[7] + p[6] + p[8] + p[4] * 2.f) / 5.f);
  expectNear(m.vPos(4), (p[4] + (p[1] + p[3] + p[5] + p[7]) * 2.f) / 9.f);
  // Concretely: the lifted centre sinks to 1/9 of its height, the sides rise to 1/5.
  EXPECT_NEAR(m.vPos(4).z, 0.5f / 9.f, 1e-6f);
  EXPECT_NEAR(m.vPos(1).z, 0.2f, 1e-6f);
}

// The iterated form is the pass followed by (position + sum) / count, on triangles and
// with a deleted face as much as on the grid's quads.
TEST(laplacianSmoothTest, OneStepIsThePassOverThePreviousPositions) {
  editMesh m;
  makeNoisySphere(m, 12, 24, 0.1f);
  m.deleteFace(5);
  laplacianDescriptor d;
  computeLaplacianSmooth(m, d, nullptr);
  const std::vector<p3> p = positions(m);
  computeLaplacianSmooth(m, 1, true, nullptr);
  for (unsigned v = 0; v < m.vn(); ++v)
    expectNear(m.vPos(v), (p[v] + d.sum[v]) / float(d.count[v]), 1e-6f);
}

TEST(laplacianSmoothTest, PinnedBorderStaysAndStillPulls) {
  editMesh m = liftedGrid();
  const std::vector<p3> p = positions(m);
  computeLaplacianSmooth(m, 1, false, nullptr);
  for (unsigned v = 0; v < 9; ++v)
    if (v != 4) {
      EXPECT_TRUE(same(m.vPos(v), p[v])) << v;
    }
  expectNear(m.vPos(4), (p[4] + (p[1] + p[3] + p[5] + p[7]) * 2.f) / 9.f);
}

TEST(laplacianSmoothTest, BorderFoundWithoutEdgesToo) {
  editMesh m;
  testMeshes::makeOpenCone(m, 12);
  m.checkMeshState();  // no edges built
  const std::vector<p3> p = positions(m);
  computeLaplacianSmooth(m, 3, false, nullptr);
  for (unsigned v = 1; v < m.vn(); ++v) EXPECT_TRUE(same(m.vPos(v), p[v])) << v;
  EXPECT_LT(m.vPos(0).z, 1.f);  // the apex sinks toward its rim
}

TEST(laplacianSmoothTest, SmoothBorderMovesTheRim) {
  editMesh m;
  testMeshes::makeOpenCone(m, 12);
  finish(m);
  computeLaplacianSmooth(m, 1, true, nullptr);
  for (unsigned v = 1; v < m.vn(); ++v) EXPECT_GT(m.vPos(v).z, 0.f) << v;
  EXPECT_MESH_VALID(m);
}

TEST(laplacianSmoothTest, VertexOfNoFaceStays) {
  editMesh m = liftedGrid();
  const unsigned lone = m.addVertex(5.f, 6.f, 7.f);
  finish(m);
  computeLaplacianSmooth(m, 4, true, nullptr);
  EXPECT_TRUE(same(m.vPos(lone), p3(5.f, 6.f, 7.f)));
}

TEST(laplacianSmoothTest, ZeroIterationsMovesNothingYetDropsTheCaches) {
  editMesh m;
  makeNoisySphere(m, 8, 16, 0.05f);
  const std::vector<p3> p = positions(m);
  for (unsigned v = 0; v < m.vn(); ++v) m.vNor(v) = p3(3.f, 0.f, 0.f);
  m.computeBBox();
  m.computeFABBTree(4);
  ASSERT_NE(m.getFABBTree(), nullptr);
  ASSERT_FALSE(m.isBBoxDirty());
  recordingCallBack cb;
  computeLaplacianSmooth(m, 0, false, &cb);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_TRUE(same(m.vPos(v), p[v]));
  EXPECT_TRUE(m.isBBoxDirty());
  EXPECT_EQ(m.getFABBTree(), nullptr);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_NEAR(m.vNor(v).norm(), 1.f, 1e-4f);
  EXPECT_GT(m.vNor(0).z, 0.9f);  // the north pole faces up again
  ASSERT_FALSE(cb.values.empty());
  EXPECT_EQ(cb.values.front(), 0.f);
  EXPECT_EQ(cb.values.back(), 100.f);
}

// Every step reads the previous positions only: numbering the vertices differently (and
// listing the faces backwards) permutes the result and changes nothing else.
TEST(laplacianSmoothTest, RenumberingVerticesOnlyPermutesTheResult) {
  editMesh a;
  makeNoisySphere(a, 10, 20, 0.1f);
  std::vector<unsigned> perm(a.vn());
  std::iota(perm.begin(), perm.end(), 0u);
  noise r(5);
  for (unsigned i = unsigned(perm.size()); i > 1; --i)
    std::swap(perm[i - 1], perm[unsigned((r() + 1.f) * 0.5f * float(i - 1))]);
  editMesh b;
  std::vector<p3> moved(a.vn());
  for (unsigned v = 0; v < a.vn(); ++v) moved[perm[v]] = a.vPos(v);
  for (const p3& p : moved) b.addVertex(p);
  for (unsigned f = a.fn(); f-- > 0;)
    b.addTriFace(perm[a.fV(f, 0)], perm[a.fV(f, 1)], perm[a.fV(f, 2)]);
  finish(b);

  computeLaplacianSmooth(a, 3, true, nullptr);
  computeLaplacianSmooth(b, 3, true, nullptr);
  for (unsigned v = 0; v < a.vn(); ++v) {
    const p3 d = a.vPos(v) - b.vPos(perm[v]);
    EXPECT_LT(d.norm(), 1e-6f) << v;
  }
}

TEST(laplacianSmoothTest, PlaneStaysPlane) {
  editMesh m;
  makeJitteredPlane(m, 12);
  computeLaplacianSmooth(m, 5, true, nullptr);
  EXPECT_EQ(maxAbsZ(m), 0.f);
  for (unsigned f = 0; f < m.fn(); ++f) EXPECT_GT(m.fNor(f).z, 0.999f);
}

TEST(laplacianSmoothTest, NoisySphereComesCloserToTheSphere) {
  editMesh m;
  makeNoisySphere(m, 40, 80, 0.02f);
  const double before = sphereDeviation(m);
  recordingCallBack cb;
  computeLaplacianSmooth(m, 2, false, &cb);
  const double after = sphereDeviation(m);
  EXPECT_LT(after, 0.7 * before);
  EXPECT_EQ(cb.values.front(), 0.f);
  EXPECT_EQ(cb.values.back(), 100.f);
  EXPECT_MESH_VALID(m);
}

// Through the neutral interface the same steps run; the caches are dropped by the
// interface's own clear operations (an editMesh behind it gets zeroed normals).
TEST(laplacianSmoothTest, InterfaceFormSmoothesAlikeAndClearsTheNormals) {
  editMesh a, b;
  makeNoisySphere(a, 10, 20, 0.1f);
  makeNoisySphere(b, 10, 20, 0.1f);
  JEV::MESH::editMeshInterface view(b);
  computeLaplacianSmooth(a, 2, false, nullptr);
  computeLaplacianSmooth(view, 2, false, nullptr);
  for (unsigned v = 0; v < a.vn(); ++v) {
    EXPECT_TRUE(same(a.vPos(v), b.vPos(v))) << v;
    EXPECT_EQ(b.vNor(v).squaredNorm(), 0.f);
  }
  laplacianDescriptor d;
  computeLaplacianSmooth(view, d, nullptr);
  EXPECT_EQ(d.count.size(), b.vn());
}

TEST(laplacianSmoothTest, AlgoNamespaceFormIsTheSameSmoothing) {
  editMesh a = liftedGrid(), b = liftedGrid();
  computeLaplacianSmooth(a, 2, true, nullptr);
  JEV::MESH::ALGO::computeLaplacianSmooth(b, 2, true, nullptr);
  for (unsigned v = 0; v < a.vn(); ++v) EXPECT_TRUE(same(a.vPos(v), b.vPos(v)));
}

}  // namespace
