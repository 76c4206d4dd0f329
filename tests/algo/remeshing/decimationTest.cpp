#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/qECollapse.h"
#include "jev3d/io/ply/ioPly.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"
#include "support/surfaceDistance.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;

namespace {

struct soup {
  std::vector<p3> positions;
  std::vector<unsigned> triangles;
  unsigned count() const { return unsigned(triangles.size() / 3); }
};

soup sphereSoup(unsigned rings, unsigned segments) {
  editMesh m;
  testMeshes::makeSphere(m, rings, segments);
  testMeshes::finishMesh(m);
  soup s;
  INTERNAL::toTriangleSoup(m, s.positions, s.triangles);
  return s;
}

struct decimated {
  soup out;
  std::vector<unsigned> map;
  bool ok = false;
};

decimated run(const soup& in, unsigned target) {
  decimated d;
  d.ok = qECollapse::decimate(in.positions, in.triangles, target, d.out.positions, d.out.triangles,
                              d.map);
  return d;
}

// The result as a kernel mesh, checked by the kernel.
editMesh asMesh(const soup& s) {
  editMesh m;
  INTERNAL::fromTriangleSoup(m, s.positions, s.triangles);
  EXPECT_MESH_VALID(m);
  return m;
}

// Every used input vertex maps to an output vertex, and the map carries every output
// triangle's corners back to input vertices (it is onto).
void expectValidMap(const soup& in, const decimated& d) {
  ASSERT_EQ(d.map.size(), in.positions.size());
  std::vector<bool> reached(d.out.positions.size(), false);
  for (unsigned v : in.triangles) {
    ASSERT_LT(d.map[v], d.out.positions.size());
    reached[d.map[v]] = true;
  }
  for (bool r : reached) EXPECT_TRUE(r);
}

}  // namespace

TEST(qECollapse, sphereToTenPercentKeepsShapeClosedAndMapped) {
  const soup in = sphereSoup(64, 128);
  const unsigned target = in.count() / 10;
  const decimated d = run(in, target);
  ASSERT_TRUE(d.ok);
  EXPECT_LE(d.out.count(), target);
  EXPECT_GE(d.out.count(), target - 2);
  expectValidMap(in, d);
  const surfaceDistance::stats dist =
      surfaceDistance::symmetric(in.positions, in.triangles, d.out.positions, d.out.triangles);
  EXPECT_LT(dist.maximum, 0.01);  // unit radius
  EXPECT_LT(dist.mean, 0.002);
  editMesh out = asMesh(d.out);
  editMesh ref = asMesh(in);
  EXPECT_EQ(testMeshes::borderEdges(out), 0u);
  EXPECT_NEAR(testMeshes::signedVolume(out), testMeshes::signedVolume(ref),
              0.01 * testMeshes::signedVolume(ref));
  // Still a closed surface of genus 0: V - E + F = 2.
  EXPECT_EQ(int(out.vn()) - int(testMeshes::liveEdges(out)) + int(out.fn()), 2);
}

TEST(qECollapse, openGridKeepsItsBorderAndPlane) {
  editMesh g;
  testMeshes::makeGrid(g, 40, 30, false, {{10, 10}, {11, 10}, {25, 20}});
  testMeshes::finishMesh(g);
  soup in;
  INTERNAL::toTriangleSoup(g, in.positions, in.triangles);
  const decimated d = run(in, in.count() / 8);
  ASSERT_TRUE(d.ok);
  EXPECT_LE(d.out.count(), in.count() / 8);
  expectValidMap(in, d);
  for (const p3& p : d.out.positions) EXPECT_NEAR(p.z, 0.f, 1e-5f);
  // The border and the holes stay where they were.
  const surfaceDistance::stats dist =
      surfaceDistance::symmetric(in.positions, in.triangles, d.out.positions, d.out.triangles);
  EXPECT_LT(dist.maximum, 1e-3);
  editMesh out = asMesh(d.out);
  EXPECT_GT(testMeshes::borderEdges(out), 0u);
  double area = 0;
  for (size_t k = 0; k < d.out.triangles.size(); k += 3) {
    const p3 &a = d.out.positions[d.out.triangles[k]], &b = d.out.positions[d.out.triangles[k + 1]],
             &c = d.out.positions[d.out.triangles[k + 2]];
    area += 0.5 * double(p3::cross(b - a, c - a).z);
  }
  EXPECT_NEAR(area, 40.0 * 30.0 - 3.0, 1e-3);
}

TEST(qECollapse, badTrianglesAreDroppedAndEmptyInputFails) {
  soup in = sphereSoup(8, 16);
  const unsigned good = in.count();
  const unsigned n = unsigned(in.positions.size());
  in.positions.push_back(p3(std::numeric_limits<float>::quiet_NaN(), 0.f, 0.f));
  in.positions.push_back(p3(5.f, 5.f, 5.f));  // used by no triangle
  in.triangles.insert(in.triangles.end(), {0u, 1u, n + 7, 2u, 2u, 3u, 0u, 1u, n});
  const decimated d = run(in, good);
  ASSERT_TRUE(d.ok);
  EXPECT_EQ(d.out.count(), good);
  EXPECT_EQ(d.map[n], 0xFFFFFFFFu);
  EXPECT_EQ(d.map[n + 1], 0xFFFFFFFFu);
  for (float c : {d.out.positions[0].x, d.out.positions[0].y}) EXPECT_TRUE(std::isfinite(c));

  std::vector<p3> p;
  std::vector<unsigned> t, m;
  EXPECT_FALSE(qECollapse::decimate({}, {}, 10, p, t, m));
  EXPECT_FALSE(qECollapse::decimate({p3(), p3(1, 0, 0)}, {0, 1, 1}, 1, p, t, m));
  EXPECT_TRUE(p.empty() && t.empty() && m.empty());
}

TEST(qECollapse, farAndHugeCoordinatesDecimateAsNearOnes) {
  const soup base = sphereSoup(32, 64);
  for (double scale : {1e-4, 1.0, 1e6, 1e15}) {
    soup in = base;
    const JEV::MATH::point3<double> offset(-300.0 * scale, 200.0 * scale, 70.0 * scale);
    for (p3& p : in.positions)
      p = p3(float(p.x * scale + offset.x), float(p.y * scale + offset.y),
             float(p.z * scale + offset.z));
    decimated d = run(in, in.count() / 10);
    ASSERT_TRUE(d.ok);
    EXPECT_LE(d.out.count(), in.count() / 10);
    // Measured back in the unit frame, where the distance queries have room.
    for (p3& p : d.out.positions)
      p = p3(float((p.x - offset.x) / scale), float((p.y - offset.y) / scale),
             float((p.z - offset.z) / scale));
    const surfaceDistance::stats dist = surfaceDistance::symmetric(
        base.positions, base.triangles, d.out.positions, d.out.triangles);
    EXPECT_LT(dist.maximum, 0.03) << scale;
  }
}

TEST(qECollapse, nonManifoldEdgeStaysAndTargetAboveCountChangesNothing) {
  // Three fans meet on one edge: its ends are locked.
  soup in = sphereSoup(16, 32);
  const unsigned n = unsigned(in.positions.size());
  in.positions.push_back(p3(0.f, 0.f, 2.f));
  in.triangles.insert(in.triangles.end(), {0u, 1u, n});
  const decimated d = run(in, 10);
  ASSERT_TRUE(d.ok);
  const p3 north = in.positions[0], first = in.positions[1];
  EXPECT_EQ(d.out.positions[d.map[0]], north);
  EXPECT_EQ(d.out.positions[d.map[1]], first);

  const decimated same = run(in, in.count() + 5);
  EXPECT_EQ(same.out.count(), in.count());
  EXPECT_EQ(same.out.positions.size(), in.positions.size());
}

TEST(qECollapse, quickDecimateReportsProgress) {
  const soup in = sphereSoup(32, 64);
  recordingCallBack cb;
  soup out;
  std::vector<unsigned> map;
  ASSERT_TRUE(computeQuickDecimate(in.positions, in.triangles, in.count() / 4, out.positions,
                                   out.triangles, map, &cb));
  ASSERT_GE(cb.values.size(), 2u);
  EXPECT_EQ(cb.values.front(), 1.0f);
  EXPECT_EQ(cb.values.back(), 100.0f);
  EXPECT_LE(out.count(), in.count() / 4);
}

TEST(qECollapse, scansDecimateToValidMeshesNearTheInput) {
  for (const char* name : {"ply/stanford_bun_zipper.ply", "ply/dental_Upper_1.ply"}) {
    JEV3D_REQUIRE_DATA(name);
    soup in;
    unsigned vc = 0, tc = 0;
    ASSERT_TRUE(
        JEV::IO::PLY::ioPly::readPlyFromFile(dataFile(name), in.positions, vc, in.triangles, tc));
    const decimated d = run(in, in.count() / 10);
    ASSERT_TRUE(d.ok);
    EXPECT_LE(d.out.count(), in.count() / 10);
    expectValidMap(in, d);
    editMesh out = asMesh(d.out);
    editMesh ref = asMesh(in);
    ref.computeBBox();
    const double size = double((ref.getBBoxMax() - ref.getBBoxMin()).norm());
    const surfaceDistance::stats dist =
        surfaceDistance::symmetric(in.positions, in.triangles, d.out.positions, d.out.triangles);
    EXPECT_LT(dist.maximum, 0.01 * size) << name;
    EXPECT_LT(dist.mean, 0.001 * size) << name;
  }
}
