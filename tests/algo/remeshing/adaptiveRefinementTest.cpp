#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "jev3d/algo/remeshing/adaptiveRefinement.h"
#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/io/ply/ioPly.h"
#include "remeshingChecks.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;
using namespace remeshingChecks;

namespace {

using triangle = std::tuple<float, float, float, float, float, float, float, float, float>;

// The faces all of whose corners lie at least `reach` away from the square [lo, hi]², by
// their corner positions.
std::multiset<triangle> farFaces(const editMesh& m, float lo, float hi, float reach) {
  std::multiset<triangle> out;
  auto far = [&](const p3& p) {
    return p.x < lo - reach || p.x > hi + reach || p.y < lo - reach || p.y > hi + reach;
  };
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f) || m.fVNum(f) != 3) continue;
    if (!far(m.F2VPOS(f, 0)) || !far(m.F2VPOS(f, 1)) || !far(m.F2VPOS(f, 2))) continue;
    const p3 &a = m.F2VPOS(f, 0), &b = m.F2VPOS(f, 1), &c = m.F2VPOS(f, 2);
    out.emplace(a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z);
  }
  return out;
}

// A 20 x 20 grid with the vertices of [8, 11]² selected.
editMesh gridWithRegion() {
  editMesh m;
  testMeshes::makeGrid(m, 20, 20, false);
  testMeshes::finishMesh(m);
  for (unsigned v = 0; v < m.vn(); ++v) {
    const p3& p = m.vPos(v);
    if (p.x >= 8.f && p.x <= 11.f && p.y >= 8.f && p.y <= 11.f) m.selectVert(v);
  }
  return m;
}

unsigned passesRun(const std::string& out) {
  const auto at = out.find("numIters ");
  return at == std::string::npos ? 0u : unsigned(std::stoul(out.substr(at + 9)));
}

}  // namespace

TEST(adaptiveRefine, activeEdgesEndShortOrThePassesRunOutAndTheRestStays) {
  for (float length : {0.6f, 0.2f}) {
    editMesh m = gridWithRegion();
    // The region grows by a ring of faces a pass at most: five passes stay within six
    // cells of it.
    const std::multiset<triangle> rest = farFaces(m, 8.f, 11.f, 6.f);
    testing::internal::CaptureStdout();
    adaptiveRefine(m, length);
    const std::string out = testing::internal::GetCapturedStdout();
    ASSERT_MESH_VALID(m);
    const unsigned passes = passesRun(out);
    EXPECT_NE(out.find("updateEdgeTime 0\n"), std::string::npos);
    EXPECT_GE(passes, 1u);
    EXPECT_LE(passes, 5u);
    unsigned longActive = 0;
    for (unsigned e = 0; e < m.en(); ++e) {
      const unsigned a = m.eV(e, 0), b = m.eV(e, 1);
      if (!m.isVertSelected(a) && !m.isVertSelected(b)) continue;
      longActive += (m.vPos(a) - m.vPos(b)).norm() > length * 1.0001f;
    }
    if (passes < 5) {
      EXPECT_EQ(longActive, 0u) << length;
    }
    EXPECT_EQ(farFaces(m, 8.f, 11.f, 6.f), rest) << length;
    EXPECT_NEAR(area(m), 400.0, 1e-3);
    EXPECT_NEAR(borderLength(m), 80.0, 1e-3);
    for (unsigned v = 0; v < m.vn(); ++v) EXPECT_FLOAT_EQ(m.vPos(v).z, 0.f);
  }
}

TEST(adaptiveRefine, longLengthOrNoRegionChangesNoFace) {
  editMesh m = gridWithRegion();
  const unsigned faces = m.fn();
  testing::internal::CaptureStdout();
  adaptiveRefine(m, 10.f);
  EXPECT_EQ(passesRun(testing::internal::GetCapturedStdout()), 1u);
  EXPECT_EQ(m.fn(), faces);
  ASSERT_MESH_VALID(m);

  editMesh plain;
  testMeshes::makeGrid(plain, 6, 6, false);
  testMeshes::finishMesh(plain);
  const editMesh before(plain);
  testing::internal::CaptureStdout();
  adaptiveRefine(plain, 0.1f);
  testing::internal::GetCapturedStdout();
  ASSERT_EQ(plain.fn(), before.fn());
  for (unsigned v = 0; v < plain.vn(); ++v) EXPECT_EQ(plain.vPos(v), before.vPos(v));
  ASSERT_MESH_VALID(plain);
}

TEST(adaptiveRefine, regionRefinementPutsTheFacesBackWithoutACrack) {
  editMesh m;
  testMeshes::makeGrid(m, 8, 8, false);
  testMeshes::finishMesh(m);
  std::vector<unsigned> faces = {40, 41, 42, 43, 56, 57};
  testing::internal::CaptureStdout();
  adaptiveMeshRefinement(m, faces, 0.4f);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(out.find("starting adaptiveRefine...\n"), std::string::npos);
  EXPECT_NE(out.find("adaptiveRefine done in "), std::string::npos);
  EXPECT_NE(out.find(" msecs\n"), std::string::npos);
  ASSERT_MESH_VALID(m);
  EXPECT_GT(faces.size(), 6u);
  for (unsigned f : faces) EXPECT_TRUE(m.isFaceSelected(f));
  EXPECT_NEAR(borderLength(m), 32.0, 1e-3);  // only the square's own border
  EXPECT_NEAR(area(m), 64.0, 1e-3);
}

TEST(localSmoothing, spikeFlattensWithinTheRadiusOnly) {
  editMesh m;
  testMeshes::makeGrid(m, 12, 12, false);
  testMeshes::finishMesh(m);
  const unsigned spike = 6 * 13 + 6;
  m.vPos(spike).z = 2.f;
  const unsigned far = 1 * 13 + 1;
  std::vector<unsigned char> moved;
  localSmoothing(m, {spike}, 3.f, &moved);
  EXPECT_LT(m.vPos(spike).z, 0.5f);
  EXPECT_EQ(moved[spike], 1);
  EXPECT_EQ(moved[far], 0);
  EXPECT_EQ(m.vPos(far), p3(1.f, 1.f, 0.f));
  ASSERT_MESH_VALID(m);
  // A radius of zero moves nothing.
  const p3 now = m.vPos(spike);
  localSmoothing(m, {spike}, 0.f, &moved);
  EXPECT_EQ(m.vPos(spike), now);
}

TEST(localSmoothing, reachStopsAtFiveRingsAndMovesAsTheBrush) {
  editMesh m;
  testMeshes::makeGrid(m, 16, 16, false);
  testMeshes::finishMesh(m);
  const unsigned centre = 8 * 17 + 8;
  m.vPos(centre).z = 2.f;
  // Ring distance of every vertex from the centre, walked over the edges.
  std::vector<unsigned> ring(m.vn(), ~0u);
  std::vector<unsigned> queue = {centre};
  ring[centre] = 0;
  for (size_t i = 0; i < queue.size(); ++i)
    for (unsigned j = 0; j < m.vENum(queue[i]); ++j)
      for (unsigned s = 0; s < 2; ++s) {
        const unsigned w = m.eV(m.vE(queue[i], j), s);
        if (ring[w] == ~0u) ring[w] = ring[queue[i]] + 1, queue.push_back(w);
      }
  const editMesh before = m;
  std::vector<unsigned char> moved;
  localSmoothing(m, {centre}, 100.f, &moved);  // the radius reaches the whole grid
  ASSERT_MESH_VALID(m);
  unsigned reached = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    EXPECT_EQ(moved[v], ring[v] <= 5 ? 1 : 0) << v;
    reached += moved[v];
    if (ring[v] > 5) {
      EXPECT_EQ(m.vPos(v), before.vPos(v)) << v;
    }
  }
  EXPECT_GT(reached, 60u);
  // 150 rounds of the half-weighted umbrella settle the spike close to the plane; the
  // rim of the neighbourhood held in place keeps it from reaching it exactly.
  EXPECT_LT(m.vPos(centre).z, 0.2f);
  EXPECT_GT(m.vPos(centre).z, 0.f);
}

TEST(adaptiveRefine, scanRegionStaysConsistent) {
  JEV3D_REQUIRE_DATA("ply/dental_Upper_1.ply");
  std::vector<p3> positions;
  std::vector<unsigned> triangles;
  unsigned vc = 0, tc = 0;
  ASSERT_TRUE(JEV::IO::PLY::ioPly::readPlyFromFile(dataFile("ply/dental_Upper_1.ply"), positions,
                                                   vc, triangles, tc));
  editMesh scan;
  INTERNAL::fromTriangleSoup(scan, positions, triangles);
  const double mean = meanLength(scan);
  const p3 centre = scan.vPos(0);
  for (unsigned v = 0; v < scan.vn(); ++v)
    if ((scan.vPos(v) - centre).norm() < 20.f * mean) scan.selectVert(v);
  const unsigned before = scan.fn();
  testing::internal::CaptureStdout();
  adaptiveRefine(scan, float(0.5 * mean));
  testing::internal::GetCapturedStdout();
  ASSERT_MESH_VALID(scan);
  EXPECT_GT(scan.fn(), before);
}
