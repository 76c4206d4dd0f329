// The general fill through the neutral mesh interface, on generated meshes and the
// shared bunny scan.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>

#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "orientation.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

using namespace JEV::MESH;
using namespace JEV::MESH::ALGO;
using testMeshes::p3;

namespace {

// Fills source into a fresh editable mesh and rebuilds its edges, VE and normals.
bool fillInto(editMesh& source, editMesh& target, unsigned maxSize = 0,
              bool triangulateOnly = false, const std::vector<std::vector<unsigned>>& loops = {}) {
  editMeshInterface from(source), to(target);
  const bool ok = computeHoleFilling(from, maxSize, to, triangulateOnly, loops);
  testMeshes::finishMesh(target);
  return ok;
}

// The unit sphere without the faces whose centroid lies above height.
void cappedSphere(editMesh& out, float height, unsigned rings = 24, unsigned segments = 48) {
  editMesh sphere;
  testMeshes::makeSphere(sphere, rings, segments);
  sphere.triangulate();
  std::vector<unsigned> keep;
  for (unsigned f = 0; f < sphere.fn(); ++f) {
    p3 c;
    for (unsigned i = 0; i < 3; ++i) c += sphere.vPos(sphere.fV(f, i));
    if (c.z / 3.f <= height) keep.push_back(f);
  }
  sphere.subset(&out, keep);
}

double rimMeanEdge(const editMesh& m) {
  double sum = 0;
  unsigned n = 0;
  for (unsigned e = 0; e < m.en(); ++e)
    if (m.isEdgeBorder(e)) sum += (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm(), ++n;
  return n ? sum / n : 0;
}

}  // namespace

TEST(HoleFilling, AClosedMeshHasNoLoopsAndComesBackAsItWas) {
  editMesh closed;
  testMeshes::makeSphere(closed, 8, 12);
  closed.triangulate();
  testMeshes::finishMesh(closed);
  editMeshInterface in(closed);
  std::vector<unsigned> sizes{7};
  EXPECT_TRUE(computeHoleFillingFindHoleDimension(in, sizes));
  EXPECT_TRUE(sizes.empty());
  editMesh out;
  ASSERT_TRUE(fillInto(closed, out));
  ASSERT_EQ(out.vn(), closed.vn());
  ASSERT_EQ(out.fn(), closed.fn());
  for (unsigned v = 0; v < out.vn(); ++v) EXPECT_EQ(out.vPos(v), closed.vPos(v));
  for (unsigned f = 0; f < out.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(out.fV(f, i), closed.fV(f, i));
}

TEST(HoleFilling, SizesAreSortedAndMaxSizeLeavesLongerLoopsOpen) {
  editMesh grid;
  // Holes of 4 and 8 corners (one cell, two cells), and the outer border of 24.
  testMeshes::makeGrid(grid, 6, 6, true, {{1, 1}, {3, 3}, {4, 3}});
  testMeshes::finishMesh(grid);
  editMeshInterface in(grid);
  std::vector<unsigned> sizes;
  ASSERT_TRUE(computeHoleFillingFindHoleDimension(in, sizes));
  EXPECT_EQ(sizes, (std::vector<unsigned>{4, 6, 24}));

  editMesh some;
  ASSERT_TRUE(fillInto(grid, some, 6));
  EXPECT_EQ(some.checkInvariants(), "");
  editMeshInterface filled(some);
  ASSERT_TRUE(computeHoleFillingFindHoleDimension(filled, sizes));
  EXPECT_EQ(sizes, (std::vector<unsigned>{24}));

  editMesh all;
  recordingCallBack progress;
  editMeshInterface from(grid), to(all);
  ASSERT_TRUE(computeHoleFilling(from, 0, to, true, &progress));
  EXPECT_EQ(progress.values.front(), 0.f);
  EXPECT_EQ(progress.values.back(), 100.f);
  testMeshes::finishMesh(all);
  EXPECT_EQ(testMeshes::borderEdges(all), 0u);
  EXPECT_TRUE(consistentlyOriented(all));
}

TEST(HoleFilling, AMaskRestrictsTheLoopsAndNamesTheirEnds) {
  editMesh grid;
  testMeshes::makeGrid(grid, 4, 4, true, {{1, 1}});
  testMeshes::finishMesh(grid);
  editMeshInterface in(grid);
  std::vector<std::vector<unsigned>> loops;
  std::vector<std::pair<unsigned, unsigned>> ends;
  ASSERT_TRUE(
      computeHoleFillingFindHole(in, std::vector<unsigned char>(grid.vn(), 0), loops, ends));
  ASSERT_EQ(loops.size(), 2u);
  EXPECT_TRUE(ends.empty());
  // Masking vertex (1, 1) of the hole drops it from that loop only.
  std::vector<unsigned char> mask(grid.vn(), 0);
  mask[1 * 5 + 1] = 1;
  ASSERT_TRUE(computeHoleFillingFindHole(in, mask, loops, ends));
  ASSERT_EQ(ends.size(), 2u);
  size_t hole = loops[0].size() == 16 ? 1 : 0;
  EXPECT_EQ(loops[hole].size(), 3u);
  EXPECT_EQ(ends[hole].second, 6u);
  EXPECT_EQ(ends[1 - hole], std::make_pair(0u, 0u));
}

TEST(HoleFilling, ATriangleHoleBecomesOneFace) {
  editMesh m;
  testMeshes::makeGrid(m, 3, 3, false);
  // Drop one triangle of the middle cell, away from the outer border.
  editMesh holed;
  std::vector<unsigned> keep;
  for (unsigned f = 0; f < m.fn(); ++f)
    if (f != 8) keep.push_back(f);
  m.subset(&holed, keep);
  editMesh out;
  ASSERT_TRUE(fillInto(holed, out, 3));
  EXPECT_EQ(out.fn(), holed.fn() + 1);
  EXPECT_EQ(out.vn(), holed.vn());
  EXPECT_EQ(out.checkInvariants(), "");
  EXPECT_TRUE(consistentlyOriented(out));
}

TEST(HoleFilling, ASphereWithItsCapCutAwayIsFilledBackCloseToTheSphere) {
  editMesh capped;
  cappedSphere(capped, 0.75f);
  const double rim = rimMeanEdge(capped);
  editMesh out;
  ASSERT_TRUE(fillInto(capped, out));
  EXPECT_EQ(out.checkInvariants(), "");
  EXPECT_EQ(testMeshes::borderEdges(out), 0u);
  EXPECT_TRUE(consistentlyOriented(out));
  ASSERT_GT(out.vn(), capped.vn() + 10);
  // The rim stays bit for bit.
  for (unsigned v = 0; v < capped.vn(); ++v)
    EXPECT_EQ(std::memcmp(&out.vPos(v), &capped.vPos(v), sizeof(p3)), 0);
  // The cap reaches up to z = 1; a flat lid would sag by 0.25 at the pole. The fairing
  // bends the patch up along the slope of the rim.
  double worst = 0, mean = 0;
  for (unsigned v = capped.vn(); v < out.vn(); ++v) {
    const double d = std::fabs(double(out.vPos(v).norm()) - 1.0);
    worst = std::max(worst, d);
    mean += d / (out.vn() - capped.vn());
  }
  EXPECT_LT(worst, 0.15);
  EXPECT_LT(mean, 0.06);
  // New sides near the rim's length: refinement splits sides down to the feature size,
  // so they end between half of it and the whole.
  double sum = 0;
  unsigned n = 0;
  for (unsigned e = 0; e < out.en(); ++e) {
    if (out.eV(e, 0) < capped.vn() && out.eV(e, 1) < capped.vn()) continue;
    const double len = (out.vPos(out.eV(e, 0)) - out.vPos(out.eV(e, 1))).norm();
    EXPECT_GT(len, 0.15 * rim);
    EXPECT_LT(len, 1.5 * rim);
    sum += len, ++n;
  }
  EXPECT_GT(sum / n, 0.45 * rim);
  EXPECT_LT(sum / n, 1.1 * rim);
}

// The triangulation of a fixed hole is pinned: ports of the ear queue compare against
// these faces, so a faster build of its inputs must not change one of them. Most of the
// grid is flat with unit cells, which keeps the feature size at 1 whichever faces it
// samples; the hole's rim is lifted so that the normals take part.
TEST(HoleFilling, TheTriangulationOfAFixedHoleStaysFaceForFace) {
  editMesh grid;
  std::vector<std::pair<unsigned, unsigned>> hole;
  for (unsigned j = 10; j < 16; ++j)
    for (unsigned i = 9 + (j % 3); i < 17 - (j % 2); ++i) hole.emplace_back(i, j);
  testMeshes::makeGrid(grid, 26, 26, false, hole);
  for (unsigned v = 0; v < grid.vn(); ++v) {
    p3& p = grid.vPos(v);
    const float dx = p.x - 13.f, dy = p.y - 13.f;
    if (dx * dx + dy * dy < 30.f) p.z = 0.05f * dx * dy - 0.1f * dx;
  }
  testMeshes::finishMesh(grid);
  editMesh out;
  ASSERT_TRUE(fillInto(grid, out, 100, true));
  EXPECT_EQ(out.checkInvariants(), "");
  EXPECT_TRUE(consistentlyOriented(out));
  ASSERT_EQ(out.vn(), grid.vn());
  uint32_t hash = 2166136261u;  // FNV-1a over the new faces' corners, in order
  for (unsigned f = grid.fn(); f < out.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i)
      for (int byte = 0; byte < 4; ++byte)
        hash = (hash ^ ((out.fV(f, i) >> (8 * byte)) & 0xFFu)) * 16777619u;
  EXPECT_EQ(out.fn() - grid.fn(), 36u);
  EXPECT_EQ(hash, 404551599u);
}

TEST(HoleFilling, TwoLoopsThroughOneVertexAndARimTouchingItselfCloseCleanly) {
  // Two holes sharing the grid vertex (2, 2).
  editMesh pinched;
  testMeshes::makeGrid(pinched, 4, 4, false, {{1, 1}, {2, 2}});
  testMeshes::finishMesh(pinched);
  // A ring of holes round cell (2, 2) except its corner (1, 1): the hole's rim comes back
  // to vertex (2, 2), which holds cell (2, 2) on to the rest.
  editMesh touching;
  testMeshes::makeGrid(touching, 5, 5, false,
                       {{2, 1}, {3, 1}, {3, 2}, {3, 3}, {2, 3}, {1, 3}, {1, 2}});
  testMeshes::finishMesh(touching);
  for (editMesh* m : {&pinched, &touching}) {
    for (bool triangulateOnly : {true, false}) {
      editMesh out;
      ASSERT_TRUE(fillInto(*m, out, 0, triangulateOnly));
      EXPECT_EQ(out.checkInvariants(), "");
      EXPECT_TRUE(consistentlyOriented(out));
      // Every loop closes, the grid's outer border too.
      EXPECT_EQ(testMeshes::borderEdges(out), 0u);
    }
  }
}

TEST(HoleFilling, FacesWoundAgainstEachOtherOnTheBorderFailWithTheTargetUntouched) {
  editMesh bad;
  for (int i = 0; i < 4; ++i) bad.addVertex(float(i & 1), float(i >> 1), 0.f);
  bad.addTriFace(0, 1, 3);
  bad.addTriFace(0, 2, 3);
  testMeshes::finishMesh(bad);
  editMesh target;
  testMeshes::makeCube(target);
  testMeshes::finishMesh(target);
  editMeshInterface from(bad), to(target);
  testing::internal::CaptureStdout();
  EXPECT_FALSE(computeHoleFilling(from, 0, to, false));
  EXPECT_FALSE(computeTessellateHole(from, to));
  std::vector<unsigned> sizes;
  EXPECT_FALSE(computeHoleFillingFindHoleDimension(from, sizes));
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(target.vn(), 8u);
  EXPECT_EQ(target.fn(), 6u);
}

TEST(HoleFilling, TheBunnysHolesCloseOneByOneIntoAnOrientedMeshWithoutBorder) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  POSTPROCESSING::triMesh bunny;
  ASSERT_TRUE(bunny.readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  editMesh mesh;
  editMeshInterface meshIn(mesh);
  bunny.copyTo(meshIn);
  testMeshes::finishMesh(mesh);
  ASSERT_EQ(mesh.checkInvariants(), "");
  std::vector<std::vector<unsigned>> loops;
  std::vector<std::pair<unsigned, unsigned>> ends;
  ASSERT_TRUE(computeHoleFillingFindHole(meshIn, {}, loops, ends));
  ASSERT_GE(loops.size(), 5u);
  const unsigned oldVertices = mesh.vn();
  std::vector<p3> rim;
  for (unsigned v = 0; v < oldVertices; ++v) rim.push_back(mesh.vPos(v));
  // One loop at a time; ids of old vertices stay, so the traced loops stay valid.
  for (const auto& loop : loops) {
    editMesh next;
    ASSERT_TRUE(fillInto(mesh, next, 0, false, {loop}));
    ASSERT_EQ(next.checkInvariants(), "");
    ASSERT_TRUE(consistentlyOriented(next));
    mesh = next;
  }
  EXPECT_EQ(testMeshes::borderEdges(mesh), 0u);
  for (unsigned v = 0; v < oldVertices; ++v)
    EXPECT_EQ(std::memcmp(&mesh.vPos(v), &rim[v], sizeof(p3)), 0);
  editMeshInterface closed(mesh);
  std::vector<unsigned> sizes;
  ASSERT_TRUE(computeHoleFillingFindHoleDimension(closed, sizes));
  EXPECT_TRUE(sizes.empty());
}

TEST(HoleFilling, TheFilterPeelsTheBorderAndFillsTheHolesInRange) {
  editMesh capped;
  cappedSphere(capped, 0.75f, 16, 32);
  editMeshInterface in(capped);
  computeHoleFillingFilter(in, 3, 1000, 1);
  testMeshes::finishMesh(capped);
  EXPECT_EQ(capped.checkInvariants(), "");
  EXPECT_EQ(testMeshes::borderEdges(capped), 0u);
  EXPECT_TRUE(consistentlyOriented(capped));
}
namespace {

// The band of a unit sphere between 30 and 40 degrees from the north pole, segments
// around, with the cap above it left open: one loop of segments rim vertices, and the
// stretched cells of a scan's edge (three times longer across the band than along it).
void openBand(editMesh& m, unsigned segments) {
  const double pi = 3.14159265358979323846, first = pi / 6, last = 2 * pi / 9;
  const double along = 2 * pi * std::sin(first) / segments;
  const unsigned rows = unsigned(std::ceil((last - first) / (3 * along)));
  for (unsigned r = 0; r <= rows; ++r)
    for (unsigned k = 0; k < segments; ++k) {
      const double t = first + (last - first) * r / rows, p = 2 * pi * k / segments;
      m.addVertex(float(std::sin(t) * std::cos(p)), float(std::sin(t) * std::sin(p)),
                  float(std::cos(t)));
    }
  for (unsigned r = 0; r < rows; ++r)
    for (unsigned k = 0; k < segments; ++k) {
      const unsigned a = r * segments + k, b = r * segments + (k + 1) % segments;
      m.addTriFace(a, a + segments, b + segments);
      m.addTriFace(a, b + segments, b);
    }
  testMeshes::finishMesh(m);
}

// Mean and largest distance of the vertices from oldCount on from the unit sphere.
std::pair<double, double> sphereDistance(const editMesh& m, unsigned oldCount) {
  double mean = 0, worst = 0;
  for (unsigned v = oldCount; v < m.vn(); ++v) {
    const double d = std::fabs(double(m.vPos(v).norm()) - 1.0);
    worst = std::max(worst, d);
    mean += d / (m.vn() - oldCount);
  }
  return {mean, worst};
}

// Mean, shortest and longest length of the edges with an end from oldCount on.
struct sideLengths {
  double mean = 0, shortest = 0, longest = 0;
};
sideLengths newSides(const editMesh& m, unsigned oldCount) {
  sideLengths out;
  out.shortest = 1e30;
  unsigned n = 0;
  for (unsigned e = 0; e < m.en(); ++e) {
    if (m.eV(e, 0) < oldCount && m.eV(e, 1) < oldCount) continue;
    const double len = (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm();
    out.shortest = std::min(out.shortest, len), out.longest = std::max(out.longest, len);
    out.mean += len, ++n;
  }
  if (n) out.mean /= n;
  return out;
}

}  // namespace

// The fixed rounds cannot carry the rim's slope across a patch of thousands of vertices;
// the faired path must, while keeping the rim and closing the hole like the rounds path.
TEST(HoleFillingFaired, ALargeLoopOnASphereIsFilledCloseToTheSphere) {
  editMesh band;
  openBand(band, 600);
  editMeshInterface in(band);
  std::vector<std::vector<unsigned>> loops;
  std::vector<std::pair<unsigned, unsigned>> ends;
  ASSERT_TRUE(computeHoleFillingFindHole(in, {}, loops, ends));
  std::vector<std::vector<unsigned>> top;
  for (const auto& l : loops)
    if (std::find(l.begin(), l.end(), 0u) != l.end()) top.push_back(l);
  ASSERT_EQ(top.size(), 1u);
  ASSERT_EQ(top[0].size(), 600u);

  editMesh rounds, faired;
  editMeshInterface roundsOut(rounds), fairedOut(faired);
  ASSERT_TRUE(computeHoleFilling(in, 0, roundsOut, false, top));
  recordingCallBack progress;
  ASSERT_TRUE(computeHoleFillingFaired(in, 0, fairedOut, top, &progress));
  EXPECT_EQ(progress.values.front(), 0.f);
  EXPECT_EQ(progress.values.back(), 100.f);
  testMeshes::finishMesh(faired);
  EXPECT_EQ(faired.checkInvariants(), "");
  EXPECT_TRUE(consistentlyOriented(faired));
  ASSERT_GT(faired.vn(), band.vn() + 1000);
  for (unsigned v = 0; v < band.vn(); ++v)
    EXPECT_EQ(std::memcmp(&faired.vPos(v), &band.vPos(v), sizeof(p3)), 0);
  // Only the band's lower rim is open now.
  editMeshInterface filled(faired);
  std::vector<unsigned> sizes;
  ASSERT_TRUE(computeHoleFillingFindHoleDimension(filled, sizes));
  EXPECT_EQ(sizes, std::vector<unsigned>{600});

  // A flat lid would sit 0.134 below the pole, and 0.05 on average.
  const auto near = sphereDistance(faired, band.vn());
  const auto flat = sphereDistance(rounds, band.vn());
  EXPECT_LT(near.first, 0.008);
  EXPECT_LT(near.second, 0.03);
  EXPECT_LT(near.first, 0.25 * flat.first);

  // The band's cells are three times longer across it than along the rim; the patch
  // takes the spacing across, so it is not many times denser than the band.
  const double along = 2 * 3.14159265358979323846 * 0.5 / 600;  // the open rim's sides
  const sideLengths sides = newSides(faired, band.vn());
  EXPECT_GT(sides.mean, 1.8 * along);
  EXPECT_LT(sides.mean, 3.0 * along);
}

TEST(HoleFillingFaired, ASphereCapIsFilledBackCloserThanByTheRounds) {
  editMesh capped;
  cappedSphere(capped, 0.75f);
  editMesh rounds, faired;
  editMeshInterface in(capped), roundsOut(rounds), fairedOut(faired);
  ASSERT_TRUE(computeHoleFilling(in, 0, roundsOut, false));
  ASSERT_TRUE(computeHoleFillingFaired(in, 0, fairedOut));
  testMeshes::finishMesh(faired);
  EXPECT_EQ(faired.checkInvariants(), "");
  EXPECT_EQ(testMeshes::borderEdges(faired), 0u);
  EXPECT_TRUE(consistentlyOriented(faired));
  const auto near = sphereDistance(faired, capped.vn());
  EXPECT_LT(near.first, 0.02);
  EXPECT_LT(near.second, 0.05);
  EXPECT_LT(near.first, 0.5 * sphereDistance(rounds, capped.vn()).first);
}

// The faired fill refines to the length of the mesh edges leaving the rim into the mesh,
// so its new sides come out near the rim's mean side length where the two agree, as on
// a sphere's grid: split at 1.4 times that scale, most end between three quarters of it
// and one and a half times it, and the flips and the fairing stretch a few. Two caps,
// on the sphere's own grid and on one with more rings.
TEST(HoleFillingFaired, NewSidesStayNearTheRimsMeanEdgeLength) {
  for (const unsigned rings : {24u, 40u}) {
    SCOPED_TRACE(rings);
    editMesh capped;
    cappedSphere(capped, 0.75f, rings, 48);
    testMeshes::finishMesh(capped);
    const double rim = rimMeanEdge(capped);
    // The mean length of the edges from the rim's corners into the mesh.
    std::vector<bool> isRimCorner(capped.vn(), false);
    for (unsigned e = 0; e < capped.en(); ++e)
      if (capped.isEdgeBorder(e))
        isRimCorner[capped.eV(e, 0)] = isRimCorner[capped.eV(e, 1)] = true;
    double ringSum = 0;
    unsigned ringCount = 0;
    for (unsigned e = 0; e < capped.en(); ++e)
      if (isRimCorner[capped.eV(e, 0)] != isRimCorner[capped.eV(e, 1)]) {
        ringSum += (capped.vPos(capped.eV(e, 0)) - capped.vPos(capped.eV(e, 1))).norm();
        ++ringCount;
      }
    ASSERT_GT(ringCount, 0u);
    const double scale = ringSum / ringCount;
    editMesh faired;
    editMeshInterface in(capped), out(faired);
    ASSERT_TRUE(computeHoleFillingFaired(in, 0, out));
    testMeshes::finishMesh(faired);
    EXPECT_EQ(faired.checkInvariants(), "");
    EXPECT_EQ(testMeshes::borderEdges(faired), 0u);
    ASSERT_GT(faired.vn(), capped.vn() + 10);
    const sideLengths sides = newSides(faired, capped.vn());
    EXPECT_GT(sides.shortest, 0.15 * rim);
    EXPECT_LT(sides.longest, 1.8 * rim);
    EXPECT_GT(sides.mean, 0.75 * rim);
    EXPECT_LT(sides.mean, 1.15 * rim);
    EXPECT_LT(std::fabs(scale - rim), 0.2 * rim);
  }
}

TEST(HoleFillingFaired, AFlatHoleStaysFlatAndAClosedMeshComesBackAsItWas) {
  editMesh grid;
  testMeshes::makeGrid(grid, 12, 12, false, {{4, 4}, {5, 4}, {5, 5}, {6, 5}, {6, 6}});
  testMeshes::finishMesh(grid);
  editMesh out;
  editMeshInterface in(grid), to(out);
  ASSERT_TRUE(computeHoleFillingFaired(in, 20, to));
  testMeshes::finishMesh(out);
  EXPECT_EQ(out.checkInvariants(), "");
  EXPECT_TRUE(consistentlyOriented(out));
  for (unsigned v = grid.vn(); v < out.vn(); ++v) EXPECT_NEAR(out.vPos(v).z, 0.f, 1e-5f);
  editMeshInterface filled(out);
  std::vector<unsigned> sizes;
  ASSERT_TRUE(computeHoleFillingFindHoleDimension(filled, sizes));
  EXPECT_EQ(sizes, std::vector<unsigned>{48});

  editMesh closed, back;
  testMeshes::makeSphere(closed, 8, 12);
  closed.triangulate();
  testMeshes::finishMesh(closed);
  editMeshInterface from(closed), into(back);
  ASSERT_TRUE(computeHoleFillingFaired(from, 0, into));
  EXPECT_EQ(back.vn(), closed.vn());
  EXPECT_EQ(back.fn(), closed.fn());
}

TEST(HoleFillingFaired, TheBunnysHolesCloseWithNewVerticesInsideItsBounds) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  POSTPROCESSING::triMesh bunny;
  ASSERT_TRUE(bunny.readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  editMesh mesh, out;
  editMeshInterface meshIn(mesh), to(out);
  bunny.copyTo(meshIn);
  testMeshes::finishMesh(mesh);
  ASSERT_TRUE(computeHoleFillingFaired(meshIn, 0, to));
  testMeshes::finishMesh(out);
  EXPECT_EQ(out.checkInvariants(), "");
  EXPECT_EQ(testMeshes::borderEdges(out), 0u);
  EXPECT_TRUE(consistentlyOriented(out));
  ASSERT_GT(out.vn(), mesh.vn());
  p3 lo = mesh.vPos(0), hi = lo;
  for (unsigned v = 0; v < mesh.vn(); ++v) {
    EXPECT_EQ(std::memcmp(&out.vPos(v), &mesh.vPos(v), sizeof(p3)), 0);
    for (int i = 0; i < 3; ++i)
      lo[i] = std::min(lo[i], mesh.vPos(v)[i]), hi[i] = std::max(hi[i], mesh.vPos(v)[i]);
  }
  // The holes are on the base: a patch bulging far out of the bunny's box went wrong.
  const p3 margin = (hi - lo) * 0.05f;
  for (unsigned v = mesh.vn(); v < out.vn(); ++v)
    for (int i = 0; i < 3; ++i) {
      EXPECT_GE(out.vPos(v)[i], lo[i] - margin[i]);
      EXPECT_LE(out.vPos(v)[i], hi[i] + margin[i]);
    }
}
