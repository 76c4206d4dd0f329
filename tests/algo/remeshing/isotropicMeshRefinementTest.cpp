#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/isotropicMeshRefinement.h"
#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/io/ply/ioPly.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "remeshingChecks.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"
#include "support/surfaceDistance.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;
using remeshingChecks::meanLength;

namespace {

// Refusals are many; the tests that do not look at them keep them off the output.
std::ostream* const quiet = nullptr;

std::vector<unsigned> allFaces(const editMesh& m) {
  std::vector<unsigned> f;
  for (unsigned i = 0; i < m.fn(); ++i)
    if (!m.isFaceDeleted(i)) f.push_back(i);
  return f;
}

// Share of live edges whose length lies in [lo, hi].
double shareWithin(const editMesh& m, double lo, double hi) {
  unsigned in = 0, all = 0;
  for (unsigned e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e)) continue;
    const double l = (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm();
    ++all;
    in += l >= lo && l <= hi;
  }
  return all ? double(in) / all : 0.0;
}

// Standard deviation of the edge lengths over their mean.
double lengthSpread(const editMesh& m) {
  const double mean = meanLength(m);
  double sum = 0;
  for (unsigned e = 0; e < m.en(); ++e) {
    const double d = (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).norm() - mean;
    sum += d * d;
  }
  return std::sqrt(sum / m.en()) / mean;
}

surfaceDistance::stats distance(const editMesh& a, const editMesh& b) {
  std::vector<p3> pa, pb;
  std::vector<unsigned> ta, tb;
  INTERNAL::toTriangleSoup(a, pa, ta);
  INTERNAL::toTriangleSoup(b, pb, tb);
  return surfaceDistance::symmetric(pa, ta, pb, tb);
}

editMesh sphere() {
  editMesh m;
  testMeshes::makeSphere(m, 16, 32);
  testMeshes::finishMesh(m);
  return m;
}

// A bumpy open square of triangles, 20 x 20 cells.
editMesh bumpyGrid() {
  editMesh m;
  testMeshes::makeGrid(m, 20, 20, false);
  for (unsigned v = 0; v < m.vn(); ++v) {
    p3& p = m.vPos(v);
    p.z = 1.5f * std::sin(p.x * 0.3f) * std::cos(p.y * 0.25f);
  }
  testMeshes::finishMesh(m);
  return m;
}

using corners = std::tuple<float, float, float, float, float, float, float, float, float>;

std::multiset<corners> facePositions(const editMesh& m, bool selectedOnly, bool unselectedOnly) {
  std::multiset<corners> out;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f) || m.fVNum(f) != 3) continue;
    if ((selectedOnly && !m.isFaceSelected(f)) || (unselectedOnly && m.isFaceSelected(f))) continue;
    const p3 &a = m.F2VPOS(f, 0), &b = m.F2VPOS(f, 1), &c = m.F2VPOS(f, 2);
    out.emplace(a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z);
  }
  return out;
}

}  // namespace

TEST(isotropicMeshRefinement, sphereEdgesWithinBoundsVolumeAndShapeKept) {
  // Radius 10 and length 0.8: edges split above 0.8 and collapse below 0.3.
  editMesh in = sphere();
  for (unsigned v = 0; v < in.vn(); ++v) in.vPos(v) *= 10.f;
  in.computeNormalizedNormals();
  editMesh out;
  attributeList none, noneOut;
  const float length = 0.8f;
  recordingCallBack cb;
  const unsigned made =
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, length, &cb, quiet);
  ASSERT_GT(made, 0u);
  ASSERT_MESH_VALID(out);
  EXPECT_EQ(made, testMeshes::liveFaces(out));
  EXPECT_EQ(testMeshes::borderEdges(out), 0u);
  EXPECT_GE(shareWithin(out, 0.3, length), 0.9);
  EXPECT_NEAR(testMeshes::signedVolume(out), testMeshes::signedVolume(in),
              0.01 * testMeshes::signedVolume(in));
  EXPECT_LT(distance(in, out).maximum, 0.1);
  EXPECT_EQ(int(out.vn()) - int(testMeshes::liveEdges(out)) + int(out.fn()), 2);
  ASSERT_GE(cb.values.size(), 2u);
  EXPECT_EQ(cb.values.front(), 1.f);
  EXPECT_EQ(cb.values.back(), 100.f);
  EXPECT_TRUE(noneOut.empty());
}

TEST(isotropicMeshRefinement, shortLengthsNineEdgesInTenWithinTheNarrowBand) {
  // Below 0.375 the collapse bound is 0.8·length: the band is [0.8, 1]·length, which
  // splits and collapses alone never settle into.
  const editMesh in = sphere();
  attributeList none, noneOut;
  for (const float length : {0.1f, 0.05f}) {
    editMesh out;
    recordingCallBack cb;
    ASSERT_GT(
        computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, length, &cb, quiet),
        0u);
    ASSERT_MESH_VALID(out);
    EXPECT_EQ(testMeshes::borderEdges(out), 0u);
    EXPECT_EQ(int(out.vn()) - int(testMeshes::liveEdges(out)) + int(out.fn()), 2);
    EXPECT_GE(shareWithin(out, 0.8 * length, length), 0.9) << length;
    EXPECT_LT(lengthSpread(out), 0.08) << length;
    EXPECT_NEAR(testMeshes::signedVolume(out), testMeshes::signedVolume(in),
                0.01 * testMeshes::signedVolume(in));
    EXPECT_LT(distance(in, out).maximum, 0.01);
    ASSERT_GE(cb.values.size(), 2u);
    EXPECT_EQ(cb.values.front(), 1.f);
    EXPECT_EQ(cb.values.back(), 100.f);
    for (size_t k = 1; k < cb.values.size(); ++k) EXPECT_GE(cb.values[k], cb.values[k - 1]);
  }

  // Below 0.375 every bound scales with the length, so the same sphere three times larger
  // at three times the length gives the same spread of lengths.
  const float length = 0.08f;
  editMesh out;
  ASSERT_GT(
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, length, nullptr, quiet),
      0u);
  editMesh large = in;
  for (unsigned v = 0; v < large.vn(); ++v) large.vPos(v) *= 3.f;
  large.computeNormalizedNormals();
  editMesh largeOut;
  ASSERT_GT(computeIsotropicMeshRefinement(large, none, allFaces(large), largeOut, noneOut,
                                           3.f * length, nullptr, quiet),
            0u);
  EXPECT_NEAR(shareWithin(largeOut, 2.4 * length, 3.0 * length),
              shareWithin(out, 0.8 * length, length), 0.03);
}

TEST(isotropicMeshRefinement, openBordersSlideAlongThemselvesInTheNarrowBand) {
  const editMesh in = bumpyGrid();
  editMesh out;
  attributeList none, noneOut;
  const float length = 0.3f;  // band [0.24, 0.3]
  ASSERT_GT(
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, length, nullptr, quiet),
      0u);
  ASSERT_MESH_VALID(out);
  // Nearly nine in ten: the square's corners stay where they are.
  EXPECT_GE(shareWithin(out, 0.8 * length, length), 0.88);
  // Border vertices stay on the square's outline: the surface keeps its extent.
  unsigned borderEdges = 0;
  for (unsigned e = 0; e < out.en(); ++e) {
    if (out.edgeIsDeleted(e) || !out.isEdgeBorder(e)) continue;
    ++borderEdges;
    for (unsigned k = 0; k < 2; ++k) {
      const p3& p = out.vPos(out.eV(e, k));
      const float off = std::min(std::min(std::fabs(p.x), std::fabs(p.x - 20.f)),
                                 std::min(std::fabs(p.y), std::fabs(p.y - 20.f)));
      EXPECT_LT(off, 1e-3f) << p.x << " " << p.y;
    }
  }
  EXPECT_NEAR(remeshingChecks::borderLength(out), remeshingChecks::borderLength(in), 0.5);
  EXPECT_GT(borderEdges, unsigned(80.0 / length));
  EXPECT_LT(distance(in, out).maximum, 0.02);
}

TEST(isotropicMeshRefinement, frozenRestStaysBitForBitAndTheSeamCloses) {
  editMesh in = bumpyGrid();
  std::vector<unsigned> region;
  for (unsigned f = 0; f < in.fn(); ++f) {
    const p3 c = (in.F2VPOS(f, 0) + in.F2VPOS(f, 1) + in.F2VPOS(f, 2)) * (1.f / 3.f);
    if (c.x > 4.f && c.x < 15.f && c.y > 3.f && c.y < 16.f) region.push_back(f);
  }
  std::set<unsigned> listed(region.begin(), region.end());
  for (unsigned f = 0; f < in.fn(); ++f)
    if (listed.count(f)) in.selectFace(f);
  const std::multiset<corners> rest = facePositions(in, false, true);
  editMesh out;
  attributeList none, noneOut;
  ASSERT_GT(computeIsotropicMeshRefinement(in, none, region, out, noneOut, 0.4f, nullptr, quiet),
            0u);
  ASSERT_MESH_VALID(out);
  EXPECT_EQ(facePositions(out, false, true), rest);
  // The only border left is the square's own: no crack along the seam.
  for (unsigned e = 0; e < out.en(); ++e) {
    if (out.edgeIsDeleted(e) || !out.isEdgeBorder(e)) continue;
    const p3 &a = out.vPos(out.eV(e, 0)), &b = out.vPos(out.eV(e, 1));
    const bool outer = (a.x == 0.f && b.x == 0.f) || (a.x == 20.f && b.x == 20.f) ||
                       (a.y == 0.f && b.y == 0.f) || (a.y == 20.f && b.y == 20.f);
    EXPECT_TRUE(outer) << a.x << " " << a.y << " - " << b.x << " " << b.y;
  }
  // Remeshed faces are the selected ones, finer than before, on the bumps.
  EXPECT_GT(facePositions(out, true, false).size(), 2 * region.size());
  EXPECT_LT(distance(in, out).maximum, 0.05);
}

TEST(isotropicMeshRefinement, keptVerticesAndAttributesFollow) {
  editMesh in = bumpyGrid();
  const std::vector<unsigned> kept = {21 * 10 + 10, 21 * 5 + 7};
  attributeList attributes(in.vn()), attributesOut;
  for (unsigned v = 0; v < in.vn(); ++v) {
    const p3& p = in.vPos(v);
    attributes[v] = {p.x, p.y, 2.f * p.x - p.y, 1.f};
  }
  editMesh out;
  ASSERT_GT(computeIsotropicMeshRefinement(in, kept, attributes, allFaces(in), out, attributesOut,
                                           0.5f, nullptr, quiet),
            0u);
  ASSERT_MESH_VALID(out);
  ASSERT_EQ(attributesOut.size(), out.vn());
  for (unsigned v : kept) {
    bool found = false;
    for (unsigned w = 0; w < out.vn(); ++w) found = found || out.vPos(w) == in.vPos(v);
    EXPECT_TRUE(found) << v;
  }
  // Linear attributes interpolate exactly where the new vertices land on the input.
  for (unsigned v = 0; v < out.vn(); ++v) {
    const p3& p = out.vPos(v);
    EXPECT_NEAR(attributesOut[v].x, p.x, 0.05f);
    EXPECT_NEAR(attributesOut[v].y, p.y, 0.05f);
    EXPECT_NEAR(attributesOut[v].z, 2.f * attributesOut[v].x - attributesOut[v].y, 1e-3f);
    EXPECT_FLOAT_EQ(attributesOut[v].w, 1.f);
  }
}

TEST(isotropicMeshRefinement, paramsFormEvensOutAtTheMeanLength) {
  editMesh in = sphere();
  isotropicMeshParams params;
  params.firstSwitch = 1;
  params.secondSwitch = 1;
  const double mean = meanLength(in);
  editMesh out;
  attributeList none, noneOut;
  ASSERT_GT(computeIsotropicMeshRefinement(in, {}, none, allFaces(in), out, noneOut, params,
                                           nullptr, quiet),
            0u);
  ASSERT_MESH_VALID(out);
  EXPECT_GE(shareWithin(out, 0.7 * mean, 1.3 * mean), 0.85);
  EXPECT_LT(lengthSpread(out), 0.5 * lengthSpread(in));
  EXPECT_LT(distance(in, out).maximum, 0.02);
}

// A box of 1 x 1 x 3 cut into triangles, its long edges cut the coarsest: the remesher
// splits those, so points appear on the box's edges during the rounds.
editMesh stretchedBox() {
  editMesh cube, cut;
  testMeshes::makeCube(cube);
  testMeshes::finishMesh(cube);
  JEV::MESH::editMeshInterface from(cube), to(cut);
  EXPECT_TRUE(computeMidpoint(&from, &to, 0.2f, 8, false, false));
  for (unsigned v = 0; v < cut.vn(); ++v) cut.vPos(v).z *= 3.f;
  testMeshes::finishMesh(cut);
  return cut;
}

TEST(isotropicMeshRefinement, sharpEdgesStayWhereAsked) {
  const editMesh in = stretchedBox();
  attributeList none, noneOut;
  auto remeshed = [&](unsigned keepSharp) {
    isotropicMeshParams params;
    params.secondSwitch = keepSharp;
    editMesh out;
    EXPECT_GT(computeIsotropicMeshRefinement(in, {}, none, allFaces(in), out, noneOut, params,
                                             nullptr, quiet),
              0u);
    return out;
  };
  const editMesh kept = remeshed(1), rounded = remeshed(0);
  ASSERT_MESH_VALID(kept);
  // The long edges were split, and their new points stayed on them.
  auto onLongEdges = [](const editMesh& m) {
    unsigned n = 0;
    for (unsigned v = 0; v < m.vn(); ++v) {
      const p3& p = m.vPos(v);
      n += (p.x == 0.f || p.x == 1.f) && (p.y == 0.f || p.y == 1.f);
    }
    return n;
  };
  EXPECT_GT(onLongEdges(kept), onLongEdges(in));
  // Every point of the box's edges and corners is still on the result, to rounding; left
  // free, the relaxation and the collapses cut them.
  EXPECT_LT(distance(in, kept).maximum, 1e-4);
  EXPECT_GT(distance(in, rounded).maximum, 1e-2);
  EXPECT_NEAR(testMeshes::signedVolume(kept), 3.0, 1e-3);
}

TEST(isotropicMeshRefinement, slicesBesideAnEdgeThatNeverSplitsStayBounded) {
  // Three overlapping triangles in one plane on one edge: the edge is non-manifold and
  // never splits, and splits beside it cut slivers that are always long again.
  editMesh in;
  const std::vector<p3> positions = {
      {0.f, 0.f, 0.f}, {1.f, 0.f, 0.f}, {0.5f, 0.5f, 0.f}, {0.5f, -0.5f, 0.f}, {0.3f, 0.2f, 0.f}};
  INTERNAL::fromTriangleSoup(in, positions, {0, 1, 2, 1, 0, 3, 0, 1, 4});
  editMesh out;
  attributeList none, noneOut;
  const unsigned made =
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, 0.01f, nullptr, quiet);
  // Their area, 0.6, holds about 14,000 triangles of sides 0.01.
  EXPECT_GT(made, 5000u);
  EXPECT_LT(made, 50000u);
}

TEST(isotropicMeshRefinement, lengthsFarBelowTheSurfaceAreRefused) {
  editMesh in = sphere();
  editMesh out;
  testMeshes::makeCube(out);
  attributeList none, noneOut;
  EXPECT_EQ(
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, 1e-5f, nullptr, quiet),
      0u);
  EXPECT_EQ(out.fn(), 0u);
}

TEST(isotropicMeshRefinement, refusalsAreLoggedAndBadCallsGiveNothing) {
  editMesh in = bumpyGrid();
  editMesh out;
  attributeList none, noneOut;
  std::ostringstream log;
  ASSERT_GT(
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, 0.3f, nullptr, &log),
      0u);
  const std::set<std::string> known = {
      "edge flip rejected: edge exists",
      "edge flip rejected: degenerate tet",
      "edge flip rejected: normal inversion",
      "edge flip rejected: area too small",
      "edge flip rejected: area change too great",
      "Even mid-point subdivision introduces collision.  Backing out."};
  std::istringstream lines(log.str());
  std::string line;
  while (std::getline(lines, line)) {
    if (line.rfind("edge flip rejected: volume change = ", 0) != 0) {
      EXPECT_TRUE(known.count(line)) << line;
    }
  }

  // A disc whose spoke flip would improve the valences but fold a triangle over.
  editMesh fan;
  testMeshes::makePulledDisc(fan);
  testMeshes::finishMesh(fan);
  std::ostringstream fanLog;
  ASSERT_GT(
      computeIsotropicMeshRefinement(fan, none, allFaces(fan), out, noneOut, 5.f, nullptr, &fanLog),
      0u);
  ASSERT_MESH_VALID(out);
  EXPECT_NE(fanLog.str().find("edge flip rejected: normal inversion\n"), std::string::npos)
      << fanLog.str();
  for (unsigned f = 0; f < out.fn(); ++f) EXPECT_GT(out.fNor(f).z, 0.f);
  // By default the refusals go to standard output; a null stream keeps them back.
  testing::internal::CaptureStdout();
  ASSERT_GT(computeIsotropicMeshRefinement(fan, none, allFaces(fan), out, noneOut, 5.f), 0u);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), fanLog.str());
  testing::internal::CaptureStdout();
  ASSERT_GT(
      computeIsotropicMeshRefinement(fan, none, allFaces(fan), out, noneOut, 5.f, nullptr, quiet),
      0u);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

  out.makeCube();
  EXPECT_EQ(computeIsotropicMeshRefinement(in, none, {}, out, noneOut, 0.3f, nullptr, quiet), 0u);
  EXPECT_EQ(out.fn(), 0u);
  EXPECT_EQ(
      computeIsotropicMeshRefinement(in, none, allFaces(in), out, noneOut, 0.f, nullptr, quiet),
      0u);
  EXPECT_EQ(computeIsotropicMeshRefinement(in, none, {99999u}, out, noneOut, 0.3f, nullptr, quiet),
            0u);
}

TEST(isotropicMeshRefinement, sameMeshAsResultAndScans) {
  editMesh m = sphere();
  attributeList none, noneOut;
  const double volume = testMeshes::signedVolume(m);
  ASSERT_GT(computeIsotropicMeshRefinement(m, none, allFaces(m), m, noneOut, 0.1f, nullptr, quiet),
            0u);
  ASSERT_MESH_VALID(m);
  EXPECT_NEAR(testMeshes::signedVolume(m), volume, 0.01 * volume);

  // The dental scan reaches a little less: small, sharply curved teeth in three pieces,
  // with long open borders where the valences cannot be evened out.
  const std::pair<const char*, double> scans[] = {{"ply/stanford_bun_zipper.ply", 0.9},
                                                  {"ply/dental_Upper_1.ply", 0.87}};
  for (const auto& [name, share] : scans) {
    JEV3D_REQUIRE_DATA(name);
    std::vector<p3> positions;
    std::vector<unsigned> triangles;
    unsigned vc = 0, tc = 0;
    ASSERT_TRUE(JEV::IO::PLY::ioPly::readPlyFromFile(dataFile(name), positions, vc, triangles, tc));
    editMesh scan;
    INTERNAL::fromTriangleSoup(scan, positions, triangles);
    const double mean = meanLength(scan);
    editMesh out;
    const float length = float(1.5 * mean);
    ASSERT_GT(computeIsotropicMeshRefinement(scan, none, allFaces(scan), out, noneOut, length,
                                             nullptr, quiet),
              0u)
        << name;
    ASSERT_MESH_VALID(out);
    EXPECT_GE(shareWithin(out, std::min(0.3, 0.8 * length), length), share) << name;
    scan.computeBBox();
    const double size = (scan.getBBoxMax() - scan.getBBoxMin()).norm();
    EXPECT_LT(distance(scan, out).mean, 0.002 * size) << name;
  }
}

TEST(isotropicMeshRefinement, anyMeshThroughItsInterface) {
  editMesh in = sphere();
  JEV::MESH::editMeshInterface source(in);
  JEV::MESH::POSTPROCESSING::triMesh out;
  attributeList attributes(in.vn(), {1.f, 2.f, 3.f, 4.f}), attributesOut;
  const unsigned made = computeIsotropicMeshRefinement(source, attributes, allFaces(in), out,
                                                       attributesOut, 0.1f, nullptr, quiet);
  ASSERT_GT(made, 0u);
  EXPECT_EQ(out.fn(), made);
  ASSERT_EQ(attributesOut.size(), out.vn());
  for (const auto& a : attributesOut) EXPECT_NEAR(a.z, 3.f, 1e-5f);
  editMesh back;
  JEV::MESH::editMeshInterface view(back);
  out.copyTo(view);
  testMeshes::finishMesh(back);
  ASSERT_MESH_VALID(back);
  EXPECT_EQ(testMeshes::borderEdges(back), 0u);
  EXPECT_NEAR(testMeshes::signedVolume(back), testMeshes::signedVolume(in),
              0.01 * testMeshes::signedVolume(in));
}
