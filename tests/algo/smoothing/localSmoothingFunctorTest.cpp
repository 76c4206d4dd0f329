#include "jev3d/algo/smoothing/localSmoothingFunctor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "smoothingMeshes.h"
#include "support/meshes.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::SMOOTHING::localSmoothingFunctor;
using testMeshes::p3;
using namespace smoothingMeshes;

// 8 x 8 quads over [0, 8]^2 with the middle vertex (4, 4) = 40 lifted.
editMesh bumpGrid() {
  editMesh m;
  testMeshes::makeGrid(m, 8, 8);
  m.vPos(40).z = 1.f;
  finish(m);
  return m;
}

TEST(localSmoothingFunctorTest, NeighbourAverageCountsTheVertexOncePerEdge) {
  editMesh m = bumpGrid();
  p3 a;
  localSmoothingFunctor::vertexNeighbourAverage(m, 40, a);
  // (4 * (4, 4, 1) + (3, 4) + (5, 4) + (4, 3) + (4, 5)) / 8
  EXPECT_NEAR(a.x, 4.f, 1e-6f);
  EXPECT_NEAR(a.y, 4.f, 1e-6f);
  EXPECT_NEAR(a.z, 0.5f, 1e-6f);
  const unsigned lone = m.addVertex(3.f, 3.f, 3.f);
  finish(m);
  localSmoothingFunctor::vertexNeighbourAverage(m, lone, a);
  EXPECT_EQ(a.squaredNorm(), 0.f);
}

TEST(localSmoothingFunctorTest, ZeroRingsChangeNothing) {
  editMesh m = bumpGrid();
  const std::vector<p3> p = positions(m);
  std::vector<unsigned char> modified(3, 7);
  localSmoothingFunctor(0).localSmoothing(m, {40}, 10.f, modified);
  ASSERT_EQ(modified.size(), m.vn());
  for (unsigned v = 0; v < m.vn(); ++v) {
    EXPECT_EQ(modified[v], 0);
    EXPECT_TRUE(same(m.vPos(v), p[v]));
  }
}

TEST(localSmoothingFunctorTest, ReachStopsAtTheRingsAndTheRadius) {
  editMesh m = bumpGrid();
  const std::vector<p3> p = positions(m);
  std::vector<unsigned char> modified;
  localSmoothingFunctor(2).localSmoothing(m, {40}, 10.f, modified);
  for (unsigned v = 0; v < m.vn(); ++v) {
    const int di = std::abs(int(v % 9) - 4), dj = std::abs(int(v / 9) - 4);
    const bool inRings = di + dj <= 2;
    EXPECT_EQ(modified[v] != 0, inRings) << v;
    if (!inRings) {
      EXPECT_TRUE(same(m.vPos(v), p[v])) << v;
    }
  }
  EXPECT_LT(m.vPos(40).z, 0.5f);  // the bump flattens
  EXPECT_GT(m.vPos(41).z, 0.f);

  editMesh n = bumpGrid();
  localSmoothingFunctor(3).localSmoothing(n, {40}, 1.5f, modified);
  for (unsigned v = 0; v < n.vn(); ++v)
    if ((n.vPos(v) - p3(4.f, 4.f, 0.f)).norm() > 2.f) {
      EXPECT_EQ(modified[v], 0) << v;
    }
}

TEST(localSmoothingFunctorTest, VertexAtTheRadiusIsFlaggedButStays) {
  editMesh m = bumpGrid();
  m.vPos(40).z = 0.f;
  m.vPos(42).z = 1.f;  // pulls on 41, which lies exactly one unit from the centre
  std::vector<unsigned char> modified;
  localSmoothingFunctor(1).localSmoothing(m, {40}, 1.f, modified);
  EXPECT_EQ(modified[41], 1);
  EXPECT_EQ(m.vPos(41).z, 0.f);
  EXPECT_EQ(modified[42], 0);
}

TEST(localSmoothingFunctorTest, MaskKeepsVerticesInPlace) {
  editMesh m = bumpGrid();
  std::vector<unsigned char> mask(m.vn(), 1), modified;
  mask[40] = 0;
  localSmoothingFunctor(2).localSmoothing(m, mask, {40}, 10.f, modified);
  EXPECT_EQ(m.vPos(40).z, 1.f);
  EXPECT_EQ(modified[40], 0);
  EXPECT_GT(m.vPos(41).z, 0.f);
  EXPECT_EQ(modified[41], 1);
}

TEST(localSmoothingFunctorTest, LoneCentreIsPulledToTheOrigin) {
  editMesh m = bumpGrid();
  const unsigned lone = m.addVertex(3.f, 3.f, 3.f);
  finish(m);
  std::vector<unsigned char> modified;
  localSmoothingFunctor(1).localSmoothing(m, {lone}, 1.f, modified);
  EXPECT_EQ(m.vPos(lone).squaredNorm(), 0.f);
  EXPECT_EQ(modified[lone], 1);
}

TEST(localSmoothingFunctorTest, RadiiFormReadsOneRadiusPerCentre) {
  editMesh m = bumpGrid();
  m.vPos(10).z = 1.f;  // a second bump at (1, 1)
  finish(m);
  std::vector<unsigned char> mask(m.vn(), 1), modified;
  localSmoothingFunctor(2).localSmoothing(m, mask, {40, 10}, std::vector<float>{2.f, 0.f},
                                          modified);
  EXPECT_LT(m.vPos(40).z, 1.f);
  EXPECT_EQ(modified[41], 1);
  // A zero radius reaches the second centre's own point and nothing else.
  EXPECT_EQ(modified[11], 0);
  EXPECT_EQ(modified[10], 1);
  EXPECT_LT(m.vPos(10).z, 1.f);
}

TEST(localSmoothingFunctorTest, PlaneStaysPlane) {
  editMesh m;
  makeJitteredPlane(m, 10);
  std::vector<unsigned char> modified;
  localSmoothingFunctor(3).localSmoothing(m, {60, 17, 100}, 3.f, modified);
  EXPECT_EQ(maxAbsZ(m), 0.f);
}

TEST(localSmoothingFunctorTest, NoisySphereComesCloserToTheSphereUnderTheBrush) {
  editMesh m;
  makeNoisySphere(m, 40, 80, 0.02f);
  std::vector<unsigned> centres;
  for (unsigned v = 0; v < m.vn(); v += 97) centres.push_back(v);
  editMesh before = m;
  std::vector<unsigned char> modified;
  localSmoothingFunctor(3).localSmoothing(m, centres, 0.3f, modified);
  double was = 0, now = 0;
  unsigned k = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    if (!modified[v]) continue;
    const double a = before.vPos(v).norm() - 1.0, b = m.vPos(v).norm() - 1.0;
    was += a * a, now += b * b, ++k;
  }
  ASSERT_GT(k, 100u);
  EXPECT_LT(now, 0.7 * was);
}

}  // namespace
