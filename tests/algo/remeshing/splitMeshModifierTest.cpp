// Cutting a mesh in two along a closed curve drawn on it.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include "jev3d/algo/remeshing/splitMeshModifier.h"
#include "jev3d/io/ply/ioPly.h"
#include "jev3d/math/triangleTree.h"
#include "remeshingChecks.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"
#include "support/tempDir.h"

using JEV::MESH::editMesh;
using JEV::MESH::ALGO::REMESHING::splitMeshModifier;
using point3f = JEV::MATH::point3<float>;

namespace {

const double pi = 3.14159265358979323846;

// A circle of n points on the unit sphere around axis, at the height h along it, running
// counter-clockwise seen from the axis's end.
std::vector<point3f> circleOnSphere(point3f axis, float h, unsigned int n) {
  axis.normalize();
  point3f u = axis.cross(point3f(0.31f, 0.17f, 0.93f)).getNormalized();
  const point3f v = axis.cross(u);
  const float r = std::sqrt(1.f - h * h);
  std::vector<point3f> pts;
  for (unsigned int i = 0; i < n; ++i) {
    const double t = 2 * pi * i / n;
    pts.push_back(axis * h + u * float(r * std::cos(t)) + v * float(r * std::sin(t)));
  }
  return pts;
}

struct splitFixture : ::testing::Test {
  void SetUp() override {
    testMeshes::makeSphere(sphere, 16, 24);
    testMeshes::finishMesh(sphere);
  }
  // Connected pieces of the live faces, through shared vertices.
  static unsigned int pieces(const editMesh& m, std::vector<unsigned int>& label) {
    std::vector<unsigned int> parent(m.vn());
    for (unsigned int v = 0; v < m.vn(); ++v) parent[v] = v;
    auto find = [&](unsigned int v) {
      while (parent[v] != v) v = parent[v] = parent[parent[v]];
      return v;
    };
    for (unsigned int f = 0; f < m.fn(); ++f)
      for (unsigned int i = 1; i < m.fVNum(f); ++i) parent[find(m.fV(f, i))] = find(m.fV(f, 0));
    std::set<unsigned int> roots;
    label.assign(m.fn(), 0);
    for (unsigned int f = 0; f < m.fn(); ++f) roots.insert(label[f] = find(m.fV(f, 0)));
    return unsigned(roots.size());
  }
  void expectUnchanged(const editMesh& before) const {
    ASSERT_EQ(sphere.vn(), before.vn());
    ASSERT_EQ(sphere.fn(), before.fn());
    for (unsigned int v = 0; v < sphere.vn(); ++v) EXPECT_EQ(sphere.vPos(v), before.vPos(v));
    for (unsigned int f = 0; f < sphere.fn(); ++f) EXPECT_EQ(sphere.fV(f, 0), before.fV(f, 0));
    EXPECT_EQ(sphere.checkInvariants(), "");
  }
  editMesh sphere;
};

}  // namespace

TEST_F(splitFixture, aClosedCurveCutsTheSphereIntoTwoPiecesMeetingAlongIt) {
  const editMesh original = sphere;
  const double areaBefore = remeshingChecks::area(sphere);
  const point3f axis = point3f(0.3f, 0.2f, 1.f).getNormalized();
  const std::vector<point3f> curve = circleOnSphere(axis, 0.4f, 14);
  recordingCallBack progress;
  splitMeshModifier split;
  ASSERT_TRUE(split.exec(sphere, curve, &progress)) << split.getError();
  EXPECT_EQ(split.getError(), "");
  EXPECT_EQ(sphere.checkInvariants(), "");
  EXPECT_FLOAT_EQ(progress.values.front(), 1.f);
  EXPECT_FLOAT_EQ(progress.values.back(), 100.f);

  std::vector<unsigned int> label;
  EXPECT_EQ(pieces(sphere, label), 2u);
  // The selected side is one whole piece and the other side the other.
  std::set<unsigned int> selectedPieces, otherPieces;
  for (unsigned int f = 0; f < sphere.fn(); ++f)
    (sphere.isFaceSelected(f) ? selectedPieces : otherPieces).insert(label[f]);
  EXPECT_EQ(selectedPieces.size(), 1u);
  EXPECT_EQ(otherPieces.size(), 1u);
  EXPECT_NE(*selectedPieces.begin(), *otherPieces.begin());

  // Both sides' borders are the curve, vertex for vertex at the same positions.
  const auto& left = split.getCutLoop(0);
  const auto& right = split.getCutLoop(1);
  ASSERT_EQ(left.size(), right.size());
  ASSERT_GT(left.size(), curve.size());
  std::set<std::pair<unsigned int, unsigned int>> loopEdges;
  for (size_t i = 0; i < left.size(); ++i) {
    EXPECT_EQ(sphere.vPos(left[i]), sphere.vPos(right[i]));
    EXPECT_NE(left[i], right[i]);
    for (const auto* loop : {&left, &right}) {
      const unsigned int a = (*loop)[i], b = (*loop)[(i + 1) % loop->size()];
      loopEdges.insert({std::min(a, b), std::max(a, b)});
    }
  }
  unsigned int border = 0;
  for (unsigned int e = 0; e < sphere.en(); ++e) {
    if (sphere.edgeIsDeleted(e) || !sphere.isEdgeBorder(e)) continue;
    ++border;
    const unsigned int a = sphere.eV(e, 0), b = sphere.eV(e, 1);
    EXPECT_TRUE(loopEdges.count({std::min(a, b), std::max(a, b)})) << a << " " << b;
  }
  EXPECT_EQ(border, loopEdges.size());

  // The curve lies on the original surface and passes by every control point.
  std::vector<point3f> pos;
  std::vector<unsigned int> tris;
  for (unsigned int v = 0; v < original.vn(); ++v) pos.push_back(original.vPos(v));
  for (unsigned int f = 0; f < original.fn(); ++f)
    for (unsigned int t = 0; t < original.getTriangleNumFace(f); ++t) {
      unsigned int a, b, c;
      original.getTriangle(f, t, a, b, c);
      tris.insert(tris.end(), {a, b, c});
    }
  JEV::MATH::triangleTree surface;
  surface.build(pos.data(), pos.size(), tris.data(), tris.size() / 3);
  for (unsigned int v : left) {
    JEV::MATH::closestPointHit hit;
    ASSERT_TRUE(surface.closestPoint(sphere.vPos(v), 1.f, hit));
    EXPECT_LT(hit.squaredDistance, 1e-10f);
  }
  for (const point3f& p : curve) {
    JEV::MATH::closestPointHit onSurface;
    ASSERT_TRUE(surface.closestPoint(p, 1.f, onSurface));
    float nearest = 1e9f;
    for (unsigned int v : left)
      nearest = std::min(nearest, (sphere.vPos(v) - onSurface.point).norm());
    EXPECT_LT(nearest, 1e-3f);
  }
  EXPECT_NEAR(remeshingChecks::area(sphere), areaBefore, 1e-5 * areaBefore);

  // The left of the curve, run counter-clockwise around the axis, is the cap the axis
  // leaves through; it is the smaller piece.
  unsigned int capFace = 0;
  float best = 1e9f;
  double selectedArea = 0;
  for (unsigned int f = 0; f < sphere.fn(); ++f) {
    point3f c(0, 0, 0);
    for (unsigned int i = 0; i < sphere.fVNum(f); ++i) c += sphere.F2VPOS(f, i);
    c /= float(sphere.fVNum(f));
    if ((c - axis).norm() < best) best = (c - axis).norm(), capFace = f;
    if (sphere.isFaceSelected(f))
      selectedArea += JEV::MESH::ALGO::REMESHING::computeAreaFace(sphere, f);
  }
  EXPECT_TRUE(sphere.isFaceSelected(capFace));
  // The cap's share of the polygonal sphere's area is about that of the round one.
  EXPECT_NEAR(selectedArea / areaBefore, (1 - 0.4) / 2, 0.01);
}

TEST_F(splitFixture, aCurrentFaceIndexOfTheMeshGivesTheSameCut) {
  const std::vector<point3f> curve = circleOnSphere(point3f(0.2f, -0.5f, 1.f), 0.3f, 11);
  editMesh indexed = sphere;
  // Ids of the mesh's own index skip a deleted face, which the cut must map back.
  indexed.deleteFace(0);
  sphere.deleteFace(0);
  indexed.computeFABBTree(4);
  ASSERT_NE(indexed.getFABBTree(), nullptr);
  splitMeshModifier a, b;
  ASSERT_TRUE(a.exec(sphere, curve)) << a.getError();
  ASSERT_TRUE(b.exec(indexed, curve)) << b.getError();
  ASSERT_EQ(indexed.vn(), sphere.vn());
  ASSERT_EQ(indexed.fn(), sphere.fn());
  for (unsigned int v = 0; v < sphere.vn(); ++v) EXPECT_EQ(indexed.vPos(v), sphere.vPos(v));
  EXPECT_EQ(a.getCutLoop(1), b.getCutLoop(1));
  EXPECT_EQ(indexed.checkInvariants(), "");
}

TEST_F(splitFixture, theCurveRunBackwardsSelectsTheOtherSide) {
  std::vector<point3f> curve = circleOnSphere(point3f(0, 0, 1), 0.1f, 9);
  std::reverse(curve.begin(), curve.end());
  splitMeshModifier split;
  ASSERT_TRUE(split.exec(sphere, curve)) << split.getError();
  EXPECT_EQ(sphere.checkInvariants(), "");
  for (unsigned int f = 0; f < sphere.fn(); ++f) {
    float z = 0;
    for (unsigned int i = 0; i < sphere.fVNum(f); ++i) z += sphere.F2VPOS(f, i).z;
    z /= float(sphere.fVNum(f));
    if (std::fabs(z - 0.1f) > 0.15f) {
      EXPECT_EQ(sphere.isFaceSelected(f), z < 0.1f) << f;
    }
  }
}

TEST_F(splitFixture, aCurveThatCrossesItselfFailsAndLeavesTheMeshAlone) {
  // A figure eight on the upper half, its crossing away from any vertex.
  std::vector<point3f> eight;
  for (unsigned int i = 0; i < 24; ++i) {
    const double t = 2 * pi * i / 24;
    eight.push_back(
        point3f(float(0.07 + 0.6 * std::sin(t)), float(0.11 + 0.5 * std::sin(2 * t)), 1.f)
            .getNormalized());
  }
  const editMesh before = sphere;
  splitMeshModifier split;
  EXPECT_FALSE(split.exec(sphere, eight));
  EXPECT_NE(split.getError().find("crosses itself"), std::string::npos) << split.getError();
  expectUnchanged(before);
  EXPECT_TRUE(split.getCutLoop(0).empty());
}

TEST_F(splitFixture, aCurveOffTheMeshOrTooShortFailsAndLeavesTheMeshAlone) {
  const editMesh before = sphere;
  splitMeshModifier split;
  std::vector<point3f> curve = circleOnSphere(point3f(0, 0, 1), 0.3f, 8);
  curve[3] = curve[3] * 1.5f;
  EXPECT_FALSE(split.exec(sphere, curve));
  EXPECT_EQ(split.getError(), "a control point lies off the mesh");
  expectUnchanged(before);
  // The same point is accepted under a looser limit.
  split.maxDistance = 0.6f;
  editMesh loose = sphere;
  EXPECT_TRUE(split.exec(loose, curve)) << split.getError();

  EXPECT_FALSE(split.exec(sphere, {point3f(0, 0, 1), point3f(0, 1, 0)}));
  EXPECT_EQ(split.getError(), "the curve has fewer than 3 distinct points");
  editMesh empty;
  EXPECT_FALSE(split.exec(empty, curve));
  EXPECT_EQ(split.getError(), "the mesh has no faces");
  expectUnchanged(before);
}

TEST(splitMeshModifier, onAnOpenSheetALoopCutsOutADiscButNotOverAHole) {
  editMesh grid;
  // A hole in cell (3, 2), right under the curve's first side.
  testMeshes::makeGrid(grid, 6, 6, false, {{3, 2}});
  testMeshes::finishMesh(grid);
  const editMesh before = grid;
  const std::vector<point3f> overHole = {point3f(1.2f, 2.3f, 0), point3f(5.1f, 2.6f, 0),
                                         point3f(4.1f, 4.2f, 0)};
  splitMeshModifier split;
  EXPECT_FALSE(split.exec(grid, overHole));
  EXPECT_EQ(split.getError(), "the curve leaves the surface over a border edge");
  EXPECT_EQ(grid.fn(), before.fn());
  EXPECT_EQ(grid.checkInvariants(), "");
  // A control point beyond the rim is off the sheet by more than 1% of its size.
  EXPECT_FALSE(
      split.exec(grid, {point3f(1.2f, 1.3f, 0), point3f(8.f, 1.6f, 0), point3f(1.1f, 4.2f, 0)}));
  EXPECT_EQ(split.getError(), "a control point lies off the mesh");

  const std::vector<point3f> quad = {point3f(1.2f, 0.3f, 0), point3f(4.6f, 0.7f, 0),
                                     point3f(5.1f, 4.2f, 0), point3f(1.5f, 3.9f, 0)};
  ASSERT_TRUE(split.exec(grid, quad)) << split.getError();
  EXPECT_EQ(grid.checkInvariants(), "");
  double selected = 0;
  for (unsigned int f = 0; f < grid.fn(); ++f)
    if (grid.isFaceSelected(f)) selected += JEV::MESH::ALGO::REMESHING::computeAreaFace(grid, f);
  // The quadrilateral's area by the shoelace formula, less the hole inside it.
  double twice = 0;
  for (size_t i = 0; i < quad.size(); ++i) {
    const point3f &a = quad[i], &b = quad[(i + 1) % quad.size()];
    twice += double(a.x) * b.y - double(b.x) * a.y;
  }
  EXPECT_NEAR(selected, 0.5 * std::fabs(twice) - 1.0, 1e-3);
}

TEST_F(splitFixture, verboseRunsNameTheirStagesAndDebugRunsWriteTheirMeshes) {
  tempDir dir;
  splitMeshModifier split;
  split.verbose = true;
  split.debugPath = dir.dir().string();
  ::testing::internal::CaptureStdout();
  ASSERT_TRUE(split.exec(sphere, circleOnSphere(point3f(1, 0, 0), -0.2f, 10)));
  const std::string log = ::testing::internal::GetCapturedStdout();
  for (const char* mark : {"splitMeshModifier::exec(), after init data\n", "numExpectedSplit ",
                           "splitMeshModifier::exec(), after initSplitTable\n",
                           "splitMeshModifier::exec(), after initOutTriangulation\n",
                           "splitMeshModifier::exec(), done in "})
    EXPECT_NE(log.find(mark), std::string::npos) << mark;
  EXPECT_NE(log.find(" msecs\n"), std::string::npos);
  for (const char* name : {"splitMeshfinalBeforeAdvanceMultiSplit.obj",
                           "splitMeshfinalBeforeAdvanceMultiSplit.ply", "splitMeshfinalResult.obj"})
    EXPECT_GT(std::filesystem::file_size(dir.path(name)), 100u) << name;
}

TEST(splitMeshModifier, smallRingsOnAScannedHorseCutOutDiscs) {
  const char* name = "ply/cyberware_horse.ply";
  JEV3D_REQUIRE_DATA(name);
  std::vector<point3f> positions;
  std::vector<unsigned> triangles;
  unsigned vc = 0, tc = 0;
  ASSERT_TRUE(JEV::IO::PLY::ioPly::readPlyFromFile(dataFile(name), positions, vc, triangles, tc));
  editMesh horse;
  for (const point3f& p : positions) horse.addVertex(p);
  for (size_t t = 0; t + 2 < triangles.size(); t += 3)
    horse.addTriFace(triangles[t], triangles[t + 1], triangles[t + 2]);
  testMeshes::finishMesh(horse);
  horse.computeBBox();
  const float diagonal = (horse.getBBoxMax() - horse.getBBoxMin()).norm();
  const double areaBefore = remeshingChecks::area(horse);

  // Rings of radius 1% of the size in the tangent planes of vertices spread over the scan.
  const unsigned int tries = 10;
  unsigned int cut = 0;
  for (unsigned int k = 0; k < tries; ++k) {
    const unsigned int v = k * (horse.vn() / tries);
    const point3f centre = horse.vPos(v), normal = horse.vNor(v).getNormalized();
    const point3f u = normal.cross(point3f(0.36f, 0.48f, 0.8f)).getNormalized();
    const point3f w = normal.cross(u);
    std::vector<point3f> ring;
    for (int i = 0; i < 12; ++i) {
      const double t = 2 * pi * i / 12;
      ring.push_back(centre + (u * float(std::cos(t)) + w * float(std::sin(t))) * 0.01f * diagonal);
    }
    editMesh work = horse;
    splitMeshModifier split;
    if (!split.exec(work, ring)) {
      // A failure leaves the mesh as it was.
      EXPECT_EQ(work.fn(), horse.fn()) << split.getError();
      continue;
    }
    ++cut;
    EXPECT_EQ(work.checkInvariants(), "") << v;
    EXPECT_NEAR(remeshingChecks::area(work), areaBefore, 1e-4 * areaBefore) << v;
    double selected = 0;
    for (unsigned int f = 0; f < work.fn(); ++f)
      if (work.isFaceSelected(f)) selected += JEV::MESH::ALGO::REMESHING::computeAreaFace(work, f);
    // About the disc's area, on a surface that may curve within it.
    const double disc = pi * std::pow(0.01 * diagonal, 2);
    EXPECT_GT(selected, 0.5 * disc) << v;
    EXPECT_LT(selected, 3.0 * disc) << v;
    for (size_t i = 0; i < split.getCutLoop(0).size(); ++i)
      EXPECT_EQ(work.vPos(split.getCutLoop(0)[i]), work.vPos(split.getCutLoop(1)[i]));
  }
  std::cout << "rings cut: " << cut << " of " << tries << "\n";
  EXPECT_GE(cut, tries * 3 / 4);
}
