// Polylines on a mesh surface without a window: the pull onto the surface with its growing
// search, the curve's measures, files read back, and undo snapshots.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>
#include <string>

#include "jev3d/editing/polylineArrayUndoRedoRecord.h"
#include "jev3d/editing/polylineDescriptor.h"
#include "jev3d/editing/polylineUndoRedoRecord.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/math/triangleQueries.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/fileBytes.h"
#include "support/meshes.h"
#include "support/tempDir.h"

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::EDITING::polylineDescriptor;
using point3f = JEV::MATH::point3<float>;
using cpoint = polylineDescriptor::polylineControlPoint;

namespace {

// An editable mesh that counts the searches made in its face index.
class countingMesh : public editMeshInterface {
 public:
  explicit countingMesh(editMesh& m) : editMeshInterface(m) {}
  const JEV::MATH::triangleTree* getFaceIndex() const override {
    ++queries;
    return editMeshInterface::getFaceIndex();
  }
  mutable unsigned int queries = 0;
};

struct sphereFixture : ::testing::Test {
  void SetUp() override {
    testMeshes::makeSphere(mesh, 12, 16);
    testMeshes::finishMesh(mesh);
  }
  // The closest point of the live faces by testing every fan triangle.
  point3f bruteClosest(const point3f& p, unsigned int& face) const {
    float best = 1e30f;
    point3f at;
    for (unsigned int f = 0; f < mesh.fn(); ++f)
      for (unsigned int t = 0; t < mesh.getTriangleNumFace(f); ++t) {
        unsigned int a, b, c;
        mesh.getTriangle(f, t, a, b, c);
        float u = 0.f, v = 0.f;
        const point3f q =
            JEV::MATH::closestPointOnTriangle(p, mesh.vPos(a), mesh.vPos(b), mesh.vPos(c), u, v);
        if ((q - p).squaredNorm() < best) best = (q - p).squaredNorm(), at = q, face = f;
      }
    return at;
  }
  editMesh mesh;
};

polylineDescriptor sampleDescriptor(unsigned int n, unsigned int seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> u(-3.f, 3.f);
  polylineDescriptor d;
  for (unsigned int i = 0; i < n; ++i)
    d.controlPoints.emplace_back(point3f(u(rng), u(rng), u(rng)), i * 7 + 1, i % 3);
  d.CurrCP = int(n / 2);
  return d;
}

std::string captureFailures(polylineDescriptor& d, float maxDist) {
  ::testing::internal::CaptureStderr();
  d.updateControlPoint(maxDist);
  return ::testing::internal::GetCapturedStderr();
}

}  // namespace

TEST(polylineDescriptor, aNewDescriptorHasNoCurrentPointAndNothingToMeasure) {
  polylineDescriptor d;
  EXPECT_EQ(d.CurrCP.cV(), -1);
  EXPECT_EQ(d.getLength(true), 0.f);
  EXPECT_TRUE(d.computeAxisAlignedBox3f().isEmpty());
  EXPECT_EQ(d.updateControlPoint(), 0u);
}

TEST_F(sphereFixture, searchAttemptsGrowFromOneByDoublingUpToTheLimit) {
  countingMesh view(mesh);
  polylineDescriptor d;
  d.meshes.push_back(&view);
  // 5000 away: no radius of the eleven tries reaches the surface.
  d.controlPoints.emplace_back(point3f(5000.f, 0.f, 0.f), 3, 0);
  const struct {
    float limit;
    unsigned int tries;
    const char* lastRadius;
  } cases[] = {{0.5f, 1, "1"},  {1.0f, 1, "1"},
               {10.f, 4, "8"},  {16.f, 4, "8"},
               {17.f, 5, "16"}, {polylineDescriptor::NO_DISTANCE_LIMIT, 11, "1024"}};
  for (const auto& c : cases) {
    view.queries = 0;
    const std::string log = captureFailures(d, c.limit);
    EXPECT_EQ(view.queries, c.tries) << "limit " << c.limit;
    EXPECT_EQ(log, std::string("updateControlPoint() FAIL i 0   res 0 dist ") + c.lastRadius +
                       "  F==F_new 0\n");
    EXPECT_EQ(d.controlPoints[0].pos, point3f(5000.f, 0.f, 0.f));
    EXPECT_EQ(d.controlPoints[0].F, 3u);
  }
}

TEST(polylineDescriptor, aMeshWithoutFacesUsesEveryAttemptAndReportsEachPoint) {
  editMesh empty;
  editMeshInterface view(empty);
  polylineDescriptor d;
  d.meshes.push_back(&view);
  d.controlPoints.emplace_back(point3f(0.f, 0.f, 0.f), 0, 0);
  d.controlPoints.emplace_back(point3f(1.f, 0.f, 0.f), 0, 0);
  // A point naming a mesh the descriptor does not have stays put as well.
  d.controlPoints.emplace_back(point3f(2.f, 0.f, 0.f), 0, 4);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(d.updateControlPoint(), 3u);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "updateControlPoint() FAIL i 0   res 0 dist 1024  F==F_new 0\n"
            "updateControlPoint() FAIL i 1   res 0 dist 1024  F==F_new 0\n"
            "updateControlPoint() FAIL i 2   res 0 dist 1024  F==F_new 0\n");
}

TEST_F(sphereFixture, pointsOffTheSurfaceLandExactlyOnTheClosestSurfacePoint) {
  countingMesh view(mesh);
  polylineDescriptor d;
  d.meshes.push_back(&view);
  std::mt19937 rng(7);
  std::uniform_real_distribution<float> dir(-1.f, 1.f), radius(0.3f, 2.5f);
  for (int i = 0; i < 40; ++i) {
    const point3f p = point3f(dir(rng), dir(rng), dir(rng)).getNormalized() * radius(rng);
    d.controlPoints.emplace_back(p, 0, 0);
  }
  const polylineDescriptor before = d;
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(d.updateControlPoint(), 0u);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  for (size_t i = 0; i < d.controlPoints.size(); ++i) {
    unsigned int face = 0;
    const point3f expected = bruteClosest(before.controlPoints[i].pos, face);
    const point3f got = d.controlPoints[i].pos;
    EXPECT_LT((got - expected).norm(), 1e-5f) << i;
    // The face stored holds the point.
    unsigned int f2 = 0;
    EXPECT_LT((bruteClosest(got, f2) - got).norm(), 1e-5f);
    EXPECT_TRUE(mesh.isFaceValid(d.controlPoints[i].F));
    EXPECT_LT((got - before.controlPoints[i].pos).norm(),
              std::fabs(before.controlPoints[i].pos.norm() - 1.f) + 0.05f);
  }
  // A point already on the surface costs one search.
  view.queries = 0;
  d.controlPoints.resize(1);
  d.updateControlPoint();
  EXPECT_EQ(view.queries, 1u);
}

TEST(polylineDescriptor, measuresFollowTheChain) {
  polylineDescriptor d;
  d.controlPoints = {cpoint(point3f(0, 0, 0), 0, 0), cpoint(point3f(2, 0, 0), 0, 0),
                     cpoint(point3f(2, 2, 0), 0, 0), cpoint(point3f(0, 2, 0), 0, 0)};
  EXPECT_FLOAT_EQ(d.getLength(false), 6.f);
  EXPECT_FLOAT_EQ(d.getLength(true), 8.f);
  EXPECT_EQ(d.getBarycenter(), point3f(1, 1, 0));
  EXPECT_FLOAT_EQ(d.distanceFromPoint3(point3f(1, 1, 0)), 1.f);
  EXPECT_FLOAT_EQ(d.distanceFromPoint3(point3f(-1, 1, 0), true), 1.f);
  EXPECT_FLOAT_EQ(d.distanceFromPoint3(point3f(-1, 1, 0), false), std::sqrt(2.f));
  polylineDescriptor e;
  e.controlPoints = {cpoint(point3f(1, -1, 3), 0, 0), cpoint(point3f(1, 3, 3), 0, 0)};
  EXPECT_FLOAT_EQ(polylineDescriptor::distancePolylinePolyline(d, e), 3.f);
  const auto box = d.computeAxisAlignedBox3f();
  EXPECT_EQ(box.minimum, point3f(0, 0, 0));
  EXPECT_EQ(box.maximum, point3f(2, 2, 0));
  d.transform(JEV::MATH::matrix4<float>::getTranslate(0.f, 0.f, 5.f));
  EXPECT_EQ(d.controlPoints[2].pos, point3f(2, 2, 5));
  EXPECT_NE(d.getInfo().find("control points 4"), std::string::npos);
}

TEST(polylineDescriptor, refineBoundsSegmentsAndSimplifyDropsCollinearPoints) {
  polylineDescriptor d;
  d.controlPoints = {cpoint(point3f(0, 0, 0), 5, 1), cpoint(point3f(3, 0, 0), 6, 1),
                     cpoint(point3f(3, 1, 0), 7, 1)};
  d.refine(0.25f, false);
  ASSERT_EQ(d.controlPoints.size(), 17u);  // 12 + 4 segments and the last point
  for (size_t i = 0; i + 1 < d.controlPoints.size(); ++i)
    EXPECT_LE((d.controlPoints[i + 1].pos - d.controlPoints[i].pos).norm(), 0.25f + 1e-6f);
  EXPECT_EQ(d.controlPoints[12].pos, point3f(3, 0, 0));
  EXPECT_EQ(d.controlPoints[12].F, 6u);
  EXPECT_EQ(d.controlPoints[1].F, 5u);  // new points take the face of the one before
  EXPECT_FLOAT_EQ(d.getLength(false), 4.f);
  EXPECT_EQ(d.simplify(1e-4f), 14u);
  ASSERT_EQ(d.controlPoints.size(), 3u);
  EXPECT_EQ(d.controlPoints[1].pos, point3f(3, 0, 0));
  EXPECT_EQ(d.CurrCP.cV(), -1);

  std::vector<point3f> spline;
  d.exportToSpline(spline, 8, false);
  ASSERT_FALSE(spline.empty());
  EXPECT_LT((spline.front() - point3f(0, 0, 0)).norm(), 1e-6f);
  EXPECT_LT((spline.back() - point3f(3, 1, 0)).norm(), 1e-6f);
  // The curve stays inside the hull of its control points.
  for (const point3f& p : spline) EXPECT_TRUE(p.x >= -1e-6f && p.x <= 3.f + 1e-6f && p.z == 0.f);
}

TEST(polylineDescriptor, addControlPointAfterInsertsAndMakesItCurrent) {
  polylineDescriptor d;
  EXPECT_EQ(d.addControlPointAfter(-1, cpoint(point3f(1, 0, 0), 0, 0)), 0u);
  EXPECT_EQ(d.addControlPointAfter(0, cpoint(point3f(3, 0, 0), 0, 0)), 1u);
  EXPECT_EQ(d.addControlPointAfter(0, cpoint(point3f(2, 0, 0), 0, 0)), 1u);
  EXPECT_EQ(d.addControlPointAfter(99, cpoint(point3f(4, 0, 0), 0, 0)), 3u);
  EXPECT_EQ(d.CurrCP.cV(), 3);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(d.controlPoints[size_t(i)].pos.x, float(i + 1));
  d.setMeshIndexToAllCP(2);
  for (const cpoint& cp : d.controlPoints) EXPECT_EQ(cp.MeshIndex, 2u);
  d.clear();
  EXPECT_TRUE(d.controlPoints.empty());
  EXPECT_EQ(d.CurrCP.cV(), -1);
}

TEST(polylineDescriptorFile, readsBackEqualWithEveryFloatBitKept) {
  tempDir dir;
  const polylineDescriptor d = sampleDescriptor(25, 3);
  ASSERT_TRUE(d.saveToXML(dir.file("curve.xml")));
  const std::string text = readBytes(dir.file("curve.xml"));
  EXPECT_NE(text.find("<?xml version=\"1.0\""), std::string::npos);
  EXPECT_NE(text.find("<polylineDescriptor>"), std::string::npos);
  EXPECT_NE(text.find("<POLYLINE CurrCP=\"12\">"), std::string::npos);
  EXPECT_NE(text.find("<CP24 F=\"169\" MeshIndex=\"0\">"), std::string::npos);
  polylineDescriptor back;
  ASSERT_TRUE(back.openFromXML(dir.file("curve.xml")));
  EXPECT_EQ(back, d);
  // An empty curve too.
  ASSERT_TRUE(polylineDescriptor().saveToXML(dir.file("empty.xml")));
  ASSERT_TRUE(back.openFromXML(dir.file("empty.xml")));
  EXPECT_EQ(back, polylineDescriptor());
}

TEST(polylineDescriptorFile, truncatedDamagedOrMalformedFilesFailAndChangeNothing) {
  tempDir dir;
  const polylineDescriptor d = sampleDescriptor(6, 5);
  ASSERT_TRUE(d.saveToXML(dir.file("curve.xml")));
  const std::string text = readBytes(dir.file("curve.xml"));
  const polylineDescriptor held = sampleDescriptor(3, 9);
  const std::string bad = dir.file("bad.xml");
  auto expectRefused = [&](const std::string& content, const std::string& what) {
    writeBytes(bad, content);
    polylineDescriptor target = held;
    EXPECT_FALSE(target.openFromXML(bad)) << what;
    EXPECT_EQ(target, held) << what;
  };
  // Every cut through the closing tags and points.
  for (size_t cut = 0; cut + 1 < text.size(); cut += 7)
    expectRefused(text.substr(0, cut), "cut at " + std::to_string(cut));
  expectRefused(replacedOnce(text, "F=\"8\"", "F=\"8x\""), "face not a number");
  expectRefused(replacedOnce(text, "MeshIndex=\"1\"", "MeshIndex=\"-1\""), "negative mesh");
  expectRefused(replacedOnce(text, "X=\"", "X=\"nan"), "coordinate not a number");
  expectRefused(replacedOnce(text, "Y=\"", "Y=\"1e99"), "coordinate beyond float");
  expectRefused(replacedOnce(text, "<CP3 ", "<CP7 "), "points out of order");
  expectRefused(replacedOnce(text, "CurrCP=\"3\"", "CurrCP=\"6\""), "current point past the end");
  expectRefused(replacedOnce(text, "<POS ", "<POSITION "), "point without position");
  expectRefused(replacedOnce(text, "<polylineDescriptor>", "<polyline>"), "another root");
  EXPECT_FALSE(polylineDescriptor().openFromXML(dir.file("missing.xml")));
  // Bytes changed at random: a read either fails and changes nothing, or gives a whole
  // descriptor.
  forEachDamagedCopy(text, bad, 11, 0, 300, [&](const std::string& path) {
    polylineDescriptor target = held;
    if (!target.openFromXML(path)) {
      EXPECT_EQ(target, held);
    } else {
      EXPECT_GE(target.CurrCP.cV(), -1);
      EXPECT_LT(target.CurrCP.cV(), int(target.controlPoints.size()));
    }
  });
}

TEST(polylineUndo, snapshotsPutThePolylineBackAndForth) {
  polylineDescriptor live = sampleDescriptor(4, 1);
  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  stack.push(new JEV::SYSTEM::polylineUndoRedoRecord(live, &live));
  const polylineDescriptor first = live;
  live.addControlPointAfter(1, cpoint(point3f(9, 9, 9), 2, 0));
  stack.push(new JEV::SYSTEM::polylineUndoRedoRecord(live, &live));
  const polylineDescriptor inserted = live;
  live.controlPoints[0].pos = point3f(-1, -1, -1);
  stack.push(new JEV::SYSTEM::polylineUndoRedoRecord(live, &live));
  const polylineDescriptor moved = live;

  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(live, inserted);
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(live, first);
  EXPECT_FALSE(stack.undo());
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(live, inserted);
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(live, moved);
  // Records weigh their points, and drop when the descriptor they belong to goes away.
  JEV::SYSTEM::polylineUndoRedoRecord small(first), large(inserted);
  EXPECT_GT(large.getNumBytes(), small.getNumBytes());
  EXPECT_EQ(stack.eraseIfCondition(&live), 3u);
}

TEST(polylineUndo, arraySnapshotsRestoreEverySchemeAtOnce) {
  std::vector<polylineDescriptor> set = {sampleDescriptor(2, 1), sampleDescriptor(3, 2)};
  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  stack.push(new JEV::SYSTEM::polylineArrayUndoRedoRecord(set, &set));
  const auto before = set;
  set.push_back(sampleDescriptor(5, 3));
  set[0].clear();
  auto* record = new JEV::SYSTEM::polylineArrayUndoRedoRecord(set, &set);
  EXPECT_GE(record->getNumBytes(), set[2].getNumBytes() + set[1].getNumBytes());
  stack.push(record);
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(set, before);
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(set.size(), 3u);
  EXPECT_TRUE(set[0].controlPoints.empty());
}

TEST(polylineDescriptor, geodesicPathsFollowTheEdgesBetweenTheControlPoints) {
  editMesh grid;
  testMeshes::makeGrid(grid, 6, 4, true);
  testMeshes::finishMesh(grid);
  editMeshInterface view(grid);
  polylineDescriptor::geodesicGraph graph;
  polylineDescriptor::computeGeodesicGraph(view, graph);
  ASSERT_EQ(graph.offsets.size(), grid.vn() + 1u);
  // An inner vertex of a quad grid has four neighbours one unit away, a corner two.
  const unsigned int inner = 1 * 7 + 1;
  EXPECT_EQ(graph.offsets[inner + 1] - graph.offsets[inner], 4u);
  EXPECT_EQ(graph.offsets[1] - graph.offsets[0], 2u);
  for (float l : graph.lengths) EXPECT_FLOAT_EQ(l, 1.f);
  // Only the first column of cells.
  polylineDescriptor::computeGeodesicGraph(view, {0, 6, 12, 18, 99}, graph);
  EXPECT_EQ(graph.offsets[3] - graph.offsets[2], 0u);

  polylineDescriptor d;
  d.controlPoints = {cpoint(point3f(0.1f, 0.1f, 0), 0, 0), cpoint(point3f(3.9f, 0.2f, 0), 0, 0),
                     cpoint(point3f(4.1f, 2.8f, 0), 0, 0)};
  std::vector<unsigned int> path;
  ASSERT_TRUE(d.computeGeodesicGraph(view, graph, path));
  // 4 steps along the bottom row, then 3 up the column at x = 4.
  ASSERT_EQ(path.size(), 8u);
  EXPECT_EQ(path.front(), 0u);
  EXPECT_EQ(path[4], 4u);
  EXPECT_EQ(path.back(), 3u * 7 + 4);
  for (size_t i = 0; i + 1 < path.size(); ++i)
    EXPECT_FLOAT_EQ((grid.vPos(path[i]) - grid.vPos(path[i + 1])).norm(), 1.f);
  ASSERT_TRUE(d.computeGeodesicGraph(view, graph, path, true));
  EXPECT_EQ(path.size(), 4u + 3u + 7u);  // back from (4, 3) to (0, 0) in 7 steps
  d.controlPoints.resize(1);
  EXPECT_FALSE(d.computeGeodesicGraph(view, graph, path));
  EXPECT_TRUE(path.empty());
}
