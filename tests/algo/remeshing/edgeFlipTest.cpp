#include <gtest/gtest.h>

#include <vector>

#include "jev3d/algo/remeshing/edgeFlip.h"
#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/io/ply/ioPly.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::REMESHING::edgeFlip;
using p3 = JEV::MATH::point3<float>;

namespace {

std::vector<unsigned> valences(const editMesh& m) {
  std::vector<unsigned> v(m.vn());
  for (unsigned i = 0; i < m.vn(); ++i) v[i] = m.vENum(i);
  return v;
}

// After flips: the kernel's check, and the valences as a rebuild from scratch sees them.
void expectConsistent(editMesh& m) {
  ASSERT_MESH_VALID(m);
  const std::vector<unsigned> patched = valences(m);
  editMesh rebuilt(m);
  testMeshes::finishMesh(rebuilt);
  EXPECT_EQ(valences(rebuilt), patched);
}

}  // namespace

TEST(edgeFlip, triangulatedCubeHasNoValenceSix) {
  editMesh m;
  testMeshes::makeCube(m);
  m.triangulate();
  testMeshes::finishMesh(m);
  EXPECT_EQ(edgeFlip::computeEdgeFlipping(m, {}, 10), 0u);
  ASSERT_MESH_VALID(m);
}

TEST(edgeFlip, highValencesComeDownAndTheFlipsArePatchedInPlace) {
  // A fan of 8 around vertex 0 and one of 8 around vertex 1, sharing the edge 0-1: both
  // ends of that edge have valence 8, its far corners 3.
  editMesh m;
  m.addVertex(0.f, 0.f, 0.f);
  m.addVertex(1.f, 0.f, 0.f);
  const unsigned top = m.addVertex(0.5f, 1.f, 0.f), bottom = m.addVertex(0.5f, -1.f, 0.f);
  std::vector<unsigned> left = {top}, right = {bottom};
  for (unsigned i = 1; i < 7; ++i) {
    const float a = 3.14159265f * (0.5f + float(i) / 7.f);
    left.push_back(m.addVertex(std::cos(a), std::sin(a), 0.f));
    right.push_back(m.addVertex(1.f - std::cos(a), -std::sin(a), 0.f));
  }
  left.push_back(bottom);
  right.push_back(top);
  for (size_t i = 0; i + 1 < left.size(); ++i) m.addTriFace(0, left[i], left[i + 1]);
  for (size_t i = 0; i + 1 < right.size(); ++i) m.addTriFace(1, right[i], right[i + 1]);
  m.addTriFace(0, 1, top);
  m.addTriFace(1, 0, bottom);
  testMeshes::finishMesh(m);
  const unsigned shared = m.findSharedEdgeFromVertices(0, 1);
  ASSERT_NE(shared, m.getMaxValue());
  ASSERT_EQ(m.vENum(0), 9u);  // 8 spokes and the edge to vertex 1
  ASSERT_EQ(m.vENum(1), 9u);
  m.selectEdge(shared);
  const std::vector<p3> before = [&] {
    std::vector<p3> p;
    for (unsigned v = 0; v < m.vn(); ++v) p.push_back(m.vPos(v));
    return p;
  }();

  EXPECT_EQ(edgeFlip::computeEdgeFlipping(static_cast<const editMesh&>(m), {shared}, 5), 1u);
  EXPECT_EQ(m.findSharedEdgeFromVertices(top, bottom), m.getMaxValue());  // dry run
  EXPECT_EQ(edgeFlip::computeEdgeFlipping(m, {shared}, 5), 1u);
  expectConsistent(m);
  EXPECT_EQ(m.findSharedEdgeFromVertices(0, 1), m.getMaxValue());
  EXPECT_EQ(m.findSharedEdgeFromVertices(top, bottom), shared);  // same id, same flags
  EXPECT_TRUE(m.isEdgeSelected(shared));
  EXPECT_EQ(m.vENum(0), 8u);
  EXPECT_EQ(m.vENum(top), 5u);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_EQ(m.vPos(v), before[v]);
  for (unsigned f = 0; f < m.fn(); ++f) EXPECT_GT(m.fNor(f).z, 0.f) << f;
  // The new edge joins two vertices of valence 5: it stays.
  EXPECT_EQ(edgeFlip::computeEdgeFlipping(m, {shared}, 5), 0u);
}

TEST(edgeFlip, gridsAndScansStayConsistent) {
  editMesh g;
  testMeshes::makeGrid(g, 12, 12, false);
  testMeshes::finishMesh(g);
  const unsigned dry = edgeFlip::computeEdgeFlipping(static_cast<const editMesh&>(g), {}, 3);
  const unsigned flips = edgeFlip::computeEdgeFlipping(g, {}, 3);
  EXPECT_EQ(flips, dry);
  EXPECT_GT(flips, 0u);
  expectConsistent(g);
  EXPECT_EQ(testMeshes::liveFaces(g), 12u * 12u * 2u);
  EXPECT_EQ(edgeFlip::computeEdgeFlipping(g, {}, 0), 0u);

  editMesh stale;
  testMeshes::makeGrid(stale, 3, 3, false);
  stale.checkMeshState();
  EXPECT_EQ(edgeFlip::computeEdgeFlipping(stale, {}, 3), 0u);  // no edges yet

  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  std::vector<p3> positions;
  std::vector<unsigned> triangles;
  unsigned vc = 0, tc = 0;
  ASSERT_TRUE(JEV::IO::PLY::ioPly::readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply"),
                                                   positions, vc, triangles, tc));
  editMesh scan;
  JEV::MESH::ALGO::REMESHING::INTERNAL::fromTriangleSoup(scan, positions, triangles);
  EXPECT_GT(edgeFlip::computeEdgeFlipping(scan, {}, 4), 0u);
  expectConsistent(scan);
}
