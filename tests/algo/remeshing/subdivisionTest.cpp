#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "remeshingChecks.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using p3 = JEV::MATH::point3<float>;
using remeshingChecks::area;

namespace {

// The target of a subdivision as a finished, checked kernel mesh.
void finish(editMesh& m) {
  testMeshes::finishMesh(m);
  EXPECT_MESH_VALID(m);
}

double maxEdge(const editMesh& m) {
  double l = 0;
  for (unsigned e = 0; e < m.en(); ++e)
    l = std::max(l, double((m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm()));
  return l;
}

bool near(const p3& a, const p3& b, float eps = 1e-5f) { return (a - b).norm() < eps; }

}  // namespace

TEST(subdivision, centroidSplitsKeepIdsAndMapFaces) {
  editMesh src, dst;
  src.makeTetrahedron();
  finish(src);
  editMeshInterface from(src), to(dst);
  std::vector<unsigned> map;
  ASSERT_TRUE(computeSubdiv(&from, &to, 0.f, false, map));
  finish(dst);
  EXPECT_EQ(dst.vn(), 8u);
  EXPECT_EQ(testMeshes::liveFaces(dst), 12u);
  ASSERT_EQ(map.size(), 12u);
  for (unsigned f = 0; f < 12; ++f) EXPECT_EQ(map[f], f / 3);
  for (unsigned v = 0; v < 4; ++v) EXPECT_EQ(dst.vPos(v), src.vPos(v));
  const p3 c = (src.F2VPOS(2, 0) + src.F2VPOS(2, 1) + src.F2VPOS(2, 2)) * 0.33333334f;
  EXPECT_EQ(dst.vPos(4 + 2), c);
  EXPECT_NEAR(testMeshes::signedVolume(dst), testMeshes::signedVolume(src), 1e-6);
  EXPECT_EQ(testMeshes::borderEdges(dst), 0u);

  // Only large faces, only selected ones.
  ASSERT_TRUE(computeSubdiv(&from, &to, 1e9f, false, map));
  EXPECT_EQ(dst.fn(), 4u);
  src.selectFace(1);
  ASSERT_TRUE(computeSubdiv(&from, &to, 0.f, true, map));
  EXPECT_EQ(dst.fn(), 6u);
  EXPECT_EQ(map, (std::vector<unsigned>{0, 1, 1, 1, 2, 3}));
  EXPECT_FALSE(computeSubdiv(&from, &from, 0.f, false, map));
  EXPECT_FALSE(computeSubdiv(nullptr, &to, 0.f, false, map));
}

TEST(subdivision, loopStepOfATetrahedronAndACube) {
  editMesh src, dst;
  src.makeTetrahedron();
  finish(src);
  p3 centre;
  for (unsigned v = 0; v < 4; ++v) centre += src.vPos(v);
  ASSERT_TRUE(near(centre, p3(), 1e-5f));
  editMeshInterface from(src), to(dst);
  ASSERT_TRUE(computeSubdivLoop(&from, &to));
  finish(dst);
  EXPECT_EQ(dst.vn(), 10u);
  EXPECT_EQ(testMeshes::liveFaces(dst), 16u);
  EXPECT_EQ(testMeshes::borderEdges(dst), 0u);
  // With the corners summing to zero, a corner moves to a quarter of itself and an edge
  // point sits at a quarter of the sum of its ends.
  for (unsigned v = 0; v < 4; ++v) EXPECT_TRUE(near(dst.vPos(v), src.vPos(v) * 0.25f));
  for (unsigned v = 4; v < 10; ++v) {
    bool found = false;
    for (unsigned a = 0; a < 4; ++a)
      for (unsigned b = a + 1; b < 4; ++b)
        found = found || near(dst.vPos(v), (src.vPos(a) + src.vPos(b)) * 0.25f);
    EXPECT_TRUE(found) << v;
  }
  EXPECT_GT(testMeshes::signedVolume(dst), 0.0);

  editMesh cube, smooth;
  testMeshes::makeCube(cube);
  cube.triangulate();
  finish(cube);
  editMeshInterface c(cube), s(smooth);
  ASSERT_TRUE(computeSubdivLoop(&c, &s));
  finish(smooth);
  EXPECT_EQ(testMeshes::liveFaces(smooth), 48u);
  EXPECT_EQ(testMeshes::borderEdges(smooth), 0u);
  EXPECT_LT(testMeshes::signedVolume(smooth), 1.0);  // rounding shrinks it
  EXPECT_GT(testMeshes::signedVolume(smooth), 0.4);

  // On an open grid the inside stays flat and the border rule cuts each corner of the
  // square: (0, 0) goes to (1/8, 1/8), losing 1/16 of area at each of the four.
  editMesh grid, out;
  testMeshes::makeGrid(grid, 4, 4, false);
  finish(grid);
  editMeshInterface g(grid), o(out);
  ASSERT_TRUE(computeSubdivLoop(&g, &o));
  finish(out);
  for (unsigned v = 0; v < out.vn(); ++v) EXPECT_NEAR(out.vPos(v).z, 0.f, 1e-6f);
  EXPECT_NEAR(area(out), 15.75, 1e-4);
}

TEST(subdivision, midpointRoundsUntilEverySideIsShort) {
  editMesh grid, out;
  testMeshes::makeGrid(grid, 3, 3, false);
  finish(grid);
  editMeshInterface g(grid), o(out);
  recordingCallBack cb;
  ASSERT_TRUE(computeMidpoint(&g, &o, 0.3f, 10, false, false, &cb));
  finish(out);
  EXPECT_LE(maxEdge(out), 0.3 + 1e-6);
  EXPECT_NEAR(area(out), 9.0, 1e-4);
  EXPECT_EQ(cb.values.front(), 1.f);
  EXPECT_EQ(cb.values.back(), 100.f);
  // One round splitting only the diagonals (length sqrt 2): each triangle in two.
  ASSERT_TRUE(computeMidpoint(&g, &o, 1.2f, 1, false, false));
  finish(out);
  EXPECT_EQ(testMeshes::liveFaces(out), 36u);
  // Border sides left whole: the border keeps its 12 edges.
  ASSERT_TRUE(computeMidpoint(&g, &o, 0.3f, 10, false, true));
  finish(out);
  EXPECT_EQ(testMeshes::borderEdges(out), 12u);
  // Only the selected face's sides, and its neighbours take the midpoints: no crack.
  grid.selectFace(8);
  ASSERT_TRUE(computeMidpoint(&g, &o, 0.1f, 1, true, false));
  finish(out);
  EXPECT_EQ(testMeshes::borderEdges(out), 12u);
  EXPECT_NEAR(area(out), 9.0, 1e-4);
  // The face in four, its three neighbours in two each.
  EXPECT_EQ(testMeshes::liveFaces(out), 18u - 4u + 4u + 3u * 2u);

  editMesh copy;
  ASSERT_TRUE(midpointTriangulate(grid, 0.1f, copy, false));
  EXPECT_MESH_VALID(copy);
  EXPECT_EQ(testMeshes::liveFaces(copy), 72u);
  EXPECT_FALSE(midpointTriangulate(grid, 0.1f, grid, false));
}

TEST(subdivision, butterflyInterpolatesAndReproducesAQuadric) {
  // A regular grid lifted onto z = x² + y²: points with a full stencil land on it.
  editMesh grid, out;
  testMeshes::makeGrid(grid, 6, 6, false);
  for (unsigned v = 0; v < grid.vn(); ++v) {
    p3& p = grid.vPos(v);
    p.x *= 0.25f, p.y *= 0.25f;
    p.z = p.x * p.x + p.y * p.y;
  }
  finish(grid);
  editMeshInterface g(grid), o(out);
  ASSERT_TRUE(computeButterfly(&g, &o, 0.f, 1, false));
  finish(out);
  EXPECT_EQ(testMeshes::liveFaces(out), 4u * 72u);
  for (unsigned v = 0; v < grid.vn(); ++v) EXPECT_EQ(out.vPos(v), grid.vPos(v));
  unsigned checked = 0;
  for (unsigned v = grid.vn(); v < out.vn(); ++v) {
    const p3& p = out.vPos(v);
    if (p.x < 0.5f || p.x > 1.0f || p.y < 0.5f || p.y > 1.0f) continue;  // away from the border
    EXPECT_NEAR(p.z, p.x * p.x + p.y * p.y, 1e-5f) << p.x << " " << p.y;
    ++checked;
  }
  EXPECT_GT(checked, 10u);
}

TEST(subdivision, monteCarloSamplesLieOnTheSurface) {
  editMesh sphere, a, b;
  testMeshes::makeSphere(sphere, 24, 48);
  finish(sphere);
  editMeshInterface s(sphere), ta(a), tb(b);
  ASSERT_TRUE(computeMonteCarlo(&s, &ta, 5000));
  ASSERT_TRUE(computeMonteCarlo(&s, &tb, 5000));
  ASSERT_EQ(a.vn(), 5000u);
  EXPECT_EQ(a.fn(), 0u);
  p3 mean;
  for (unsigned v = 0; v < a.vn(); ++v) {
    EXPECT_NEAR(a.vPos(v).norm(), 1.f, 0.01f);
    EXPECT_NEAR(a.vNor(v).norm(), 1.f, 1e-4f);
    EXPECT_GT(a.vNor(v) * a.vPos(v), 0.9f);
    EXPECT_EQ(a.vPos(v), b.vPos(v));
    mean += a.vPos(v);
  }
  EXPECT_LT((mean * (1.f / 5000.f)).norm(), 0.05f);  // spread all round
  float sq = 0.f;
  elenSqr(sphere, 0, sq);
  EXPECT_FLOAT_EQ(sq, (sphere.vPos(sphere.eV(0, 0)) - sphere.vPos(sphere.eV(0, 1))).squaredNorm());
}
