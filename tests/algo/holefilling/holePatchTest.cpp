// The machinery of the general fill on plain arrays: loop tracing, the ear queue with
// its quality and penalties, and the improvement stages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <set>

#include "jev3d/algo/holefilling/internal/holeFill.h"
#include "jev3d/algo/holefilling/internal/holeLoops.h"
#include "jev3d/algo/holefilling/internal/holePatch.h"

using namespace JEV::MESH::ALGO::HOLEFILLING_INTERNAL;
using p3 = JEV::MATH::point3<float>;

namespace {

// A surface on arrays: positions, unit normals, triangles, and its edge set.
struct arraySurface {
  std::vector<p3> pos, nor;
  std::vector<int> corners;
  std::vector<unsigned int> start{0};
  holeEdgeSet edges;

  void face(int a, int b, int c) {
    corners.insert(corners.end(), {a, b, c});
    start.push_back(unsigned(corners.size()));
  }
  void finish() { edges.build(unsigned(pos.size()), corners, start); }
};

bool hasSide(const std::vector<patchFace>& faces, int a, int b) {
  for (const patchFace& f : faces)
    for (int k = 0; k < 3; ++k)
      if ((f.v[k] == a && f.v[(k + 1) % 3] == b) || (f.v[k] == b && f.v[(k + 1) % 3] == a))
        return true;
  return false;
}

// A flat ring of n points of radius 1 in the plane z = 0, normals -z: a loop that faces
// made from it by the ear queue close with normals along -z.
arraySurface flatLoop(int n) {
  arraySurface s;
  for (int i = 0; i < n; ++i) {
    const double t = 2 * 3.14159265358979 * i / n;
    s.pos.emplace_back(float(std::cos(t)), float(std::sin(t)), 0.f);
    s.nor.emplace_back(0.f, 0.f, -1.f);
  }
  return s;
}

}  // namespace

TEST(HoleLoops, TracesTheBorderInFaceOrderAndFailsOnAWalkThatCannotGoOn) {
  arraySurface s;
  s.pos.resize(4);
  s.face(0, 1, 2);
  s.face(0, 2, 3);
  s.finish();
  std::vector<std::vector<int>> loops;
  ASSERT_TRUE(s.edges.traceLoops(loops));
  ASSERT_EQ(loops.size(), 1u);
  EXPECT_EQ(loops[0], (std::vector<int>{0, 1, 2, 3}));
  EXPECT_TRUE(s.edges.hasEdge(2, 0));
  EXPECT_FALSE(s.edges.hasEdge(1, 3));

  // Two triangles wound against each other across 0-2: no border edge leaves vertex 2.
  arraySurface bad;
  bad.pos.resize(4);
  bad.face(0, 1, 2);
  bad.face(0, 3, 2);
  bad.finish();
  testing::internal::CaptureStdout();
  EXPECT_FALSE(bad.edges.traceLoops(loops));
  EXPECT_NE(testing::internal::GetCapturedStdout().find("Couldn't find an edge out of vert"),
            std::string::npos);
  EXPECT_TRUE(loops.empty());
}

TEST(HoleLoops, TheEdgeSetMatchesAnOrderedMapOfTheFaceSides) {
  // A strip of triangles with a few faults: a third face on one edge, a repeated corner
  // and corners out of range.
  arraySurface s;
  s.pos.resize(40);
  for (int i = 0; i + 21 < 40; ++i) {
    s.face(i, i + 1, i + 20);
    s.face(i + 1, i + 21, i + 20);
  }
  s.face(30, 31, 9);  // a third face on 30-31
  s.face(7, 7, 12);   // a repeated corner: only its real sides count
  s.face(3, 45, -1);  // out of range
  s.finish();

  // The reference: an ordered map of undirected sides with their use counts and the
  // direction of the first use.
  std::map<std::pair<int, int>, std::pair<int, bool>> sides;
  for (size_t f = 0; f + 1 < s.start.size(); ++f)
    for (unsigned i = s.start[f]; i < s.start[f + 1]; ++i) {
      const unsigned next = i + 1 < s.start[f + 1] ? i + 1 : s.start[f];
      const int a = s.corners[i], b = s.corners[next];
      if (a == b || a < 0 || b < 0 || a >= 40 || b >= 40) continue;
      auto& use = sides[{std::min(a, b), std::max(a, b)}];
      if (use.first++ == 0) use.second = a < b;
    }
  std::map<int, std::vector<int>> rows;
  std::set<std::pair<int, int>> border;
  for (const auto& e : sides) {
    rows[e.first.first].push_back(e.first.second);
    rows[e.first.second].push_back(e.first.first);
    if (e.second.first == 1)
      border.insert(e.second.second ? e.first : std::make_pair(e.first.second, e.first.first));
  }
  for (int v = 0; v < 40; ++v) {
    std::vector<int> row = rows[v];
    std::sort(row.begin(), row.end());
    EXPECT_EQ(
        std::vector<int>(s.edges.neighbours(v), s.edges.neighbours(v) + s.edges.neighbourCount(v)),
        row)
        << "vertex " << v;
  }
  // Each border side of the reference is walked once, in its face's direction.
  std::vector<std::vector<int>> loops;
  testing::internal::CaptureStdout();
  const bool traced = s.edges.traceLoops(loops);
  testing::internal::GetCapturedStdout();
  ASSERT_TRUE(traced);
  std::set<std::pair<int, int>> walked;
  for (const auto& l : loops)
    for (size_t i = 0; i < l.size(); ++i)
      EXPECT_TRUE(walked.insert({l[i], l[(i + 1) % l.size()]}).second);
  EXPECT_EQ(walked, border);
}

TEST(HoleLoops, APinchedBorderGivesTwoLoopsWithoutRepeatedVertices) {
  // Two triangles touching at vertex 0 only.
  arraySurface s;
  s.pos.resize(5);
  s.face(0, 1, 2);
  s.face(0, 3, 4);
  s.finish();
  std::vector<std::vector<int>> loops;
  ASSERT_TRUE(s.edges.traceLoops(loops));
  ASSERT_EQ(loops.size(), 2u);
  for (const auto& l : loops) {
    EXPECT_EQ(l.size(), 3u);
    EXPECT_EQ(std::set<int>(l.begin(), l.end()).size(), l.size());
  }
}

TEST(HoleLoops, AMaskKeepsTheFreeCornersAndNamesTheFirstSteps) {
  std::vector<std::vector<int>> loops{{0, 1, 2, 3, 4, 5}, {6, 7, 8}};
  std::vector<std::pair<unsigned, unsigned>> ends;
  restrictLoops(loops, std::vector<unsigned char>(9, 0), ends);
  EXPECT_EQ(loops[0].size(), 6u);
  EXPECT_TRUE(ends.empty());

  std::vector<unsigned char> mask(9, 0);
  mask[2] = mask[3] = 1;
  restrictLoops(loops, mask, ends);
  EXPECT_EQ(loops[0], (std::vector<int>{0, 1, 4, 5}));
  EXPECT_EQ(loops[1], (std::vector<int>{6, 7, 8}));
  ASSERT_EQ(ends.size(), 2u);
  EXPECT_EQ(ends[0], std::make_pair(1u, 2u));
  EXPECT_EQ(ends[1], std::make_pair(0u, 0u));
}

TEST(EarQueue, AThreeCornerLoopBecomesOneFaceRunningAgainstTheLoop) {
  arraySurface s = flatLoop(3);
  s.finish();
  holeSurface h(s.pos, s.nor, s.edges, 1.f);
  std::vector<patchFace> faces;
  triangulateLoop(h, {0, 1, 2}, faces);
  ASSERT_EQ(faces.size(), 1u);
  // (2, 1, 0) up to where it starts.
  const int k = faces[0].v[0];
  EXPECT_EQ(faces[0].v[1], (k + 2) % 3);
  EXPECT_EQ(faces[0].v[2], (k + 1) % 3);
}

TEST(EarQueue, QualityMatchesValuesWorkedByHand) {
  // Right triangle a (0,0,0), b (1,0,0), c (0,1,0); the face (c, b, a) faces -z, as do
  // the vertex normals: each d = 1 gives 0.5. Longest side sqrt 2, feature size 1:
  // s = 1 + sqrt 2. Unit sides u = (1,0,0), v = (-1,1,0)/sqrt 2, w = (0,-1,0):
  // A = (1 - 1/sqrt 2)^2 + 1 + (1 - 1/sqrt 2)^2.
  arraySurface s;
  s.pos = {p3(0, 0, 0), p3(1, 0, 0), p3(0, 1, 0), p3(5, 5, 0)};
  s.nor.assign(4, p3(0, 0, -1));
  s.finish();
  holeSurface h(s.pos, s.nor, s.edges, 1.f);
  const double r = std::sqrt(2.0), sc = 1 + r, k = 1 - 1 / r;
  const double expected = std::sqrt(sc) * 1.5 - (2 * k * k + 1) * sc;
  EXPECT_NEAR(earQuality(h, 0, 1, 2, 1.f), expected, 1e-5);
  EXPECT_NEAR(expected, -0.497766, 1e-6);
  // The one-angle form: A = u.v + 2.
  EXPECT_NEAR(earQuality(h, 0, 1, 2, 1.f, true), std::sqrt(sc) * 1.5 - (2 - 1 / r) * sc, 1e-5);
  // Feature size 2 halves the length measure: s = 1 + sqrt 2 / 2.
  const double s2 = 1 + r / 2;
  EXPECT_NEAR(earQuality(h, 0, 1, 2, 2.f), std::sqrt(s2) * 1.5 - (2 * k * k + 1) * s2, 1e-5);
  // Repeated ids, and a vertex normal against the face: the penalty.
  EXPECT_EQ(earQuality(h, 0, 1, 1, 1.f), EAR_CLOSES_EDGE);
  EXPECT_EQ(earQuality(h, 2, 1, 2, 1.f), EAR_CLOSES_EDGE);
  s.nor[1] = p3(0, 0, 1);
  EXPECT_EQ(earQuality(h, 0, 1, 2, 1.f), EAR_CLOSES_EDGE);
  // Half-turned normal at b: d1 = 0 adds nothing.
  s.nor[1] = p3(1, 0, 0);
  EXPECT_NEAR(earQuality(h, 0, 1, 2, 1.f), std::sqrt(sc) * 1.0 - (2 * k * k + 1) * sc, 1e-5);
}

TEST(EarQueue, EarsClosingAnExistingEdgeComeLast) {
  // A flat square loop 0..3 whose diagonal 0-2 is already an edge of the mesh (through a
  // face elsewhere): ears at 1 and 3 close it, so the queue cuts 0 and 2 instead.
  arraySurface s = flatLoop(4);
  s.pos.emplace_back(0.f, 0.f, 5.f);
  s.nor.emplace_back(0.f, 0.f, -1.f);
  s.face(0, 2, 4);
  s.finish();
  holeSurface h(s.pos, s.nor, s.edges, 1.f);
  std::vector<patchFace> faces;
  triangulateLoop(h, {0, 1, 2, 3}, faces);
  ASSERT_EQ(faces.size(), 2u);
  EXPECT_FALSE(hasSide(faces, 0, 2));
  EXPECT_TRUE(hasSide(faces, 1, 3));

  // A hexagon with the long diagonal 0-3 taken: that side becomes closable only after a
  // cut (the second penalty), and the queue avoids it all the same.
  arraySurface hex = flatLoop(6);
  hex.pos.emplace_back(0.f, 0.f, 5.f);
  hex.nor.emplace_back(0.f, 0.f, -1.f);
  hex.face(0, 3, 6);
  hex.finish();
  holeSurface hh(hex.pos, hex.nor, hex.edges, 1.f);
  faces.clear();
  triangulateLoop(hh, {0, 1, 2, 3, 4, 5}, faces);
  ASSERT_EQ(faces.size(), 4u);
  EXPECT_FALSE(hasSide(faces, 0, 3));
}

TEST(EarQueue, ALoopOfNCornersGivesNMinusTwoFacesUsingEveryCorner) {
  for (int n : {4, 5, 17, 200}) {
    arraySurface s = flatLoop(n);
    s.finish();
    holeSurface h(s.pos, s.nor, s.edges, 0.1f);
    std::vector<int> loop;
    for (int i = 0; i < n; ++i) loop.push_back(i);
    std::vector<patchFace> faces;
    triangulateLoop(h, loop, faces);
    ASSERT_EQ(faces.size(), size_t(n - 2));
    double area = 0;
    for (const patchFace& f : faces) {
      const p3 c = p3::cross(s.pos[size_t(f.v[1])] - s.pos[size_t(f.v[0])],
                             s.pos[size_t(f.v[2])] - s.pos[size_t(f.v[0])]);
      EXPECT_LT(c.z, 1e-6f) << "every face turns to -z";
      area += 0.5 * std::fabs(c.z);
    }
    // A triangulation without overlap covers the polygon's area exactly.
    EXPECT_NEAR(area, 0.5 * n * std::sin(2 * 3.14159265358979 / n), 1e-4);
  }
}

TEST(PatchImprovement, RefinementAndFairingKeepTheRimAndLinkEverySideOnce) {
  const int n = 40;
  arraySurface s = flatLoop(n);
  s.finish();
  const float edge = float(2 * std::sin(3.14159265358979 / n));
  holeSurface h(s.pos, s.nor, s.edges, edge);
  std::vector<int> loop;
  for (int i = 0; i < n; ++i) loop.push_back(i);
  std::vector<int> corners;
  fillLoops(h, {loop}, 0, patchFinish::REFINE_AND_FAIR, corners, nullptr, 0.f, 100.f);
  ASSERT_GT(h.added.size(), 10u);
  // Closed up against the rim: every inner side twice, each rim side once, opposite.
  std::multiset<std::pair<int, int>> sides;
  for (size_t i = 0; i < corners.size(); i += 3)
    for (int k = 0; k < 3; ++k)
      sides.insert({corners[i + size_t(k)], corners[i + size_t(k + 1) % 3]});
  for (const auto& sd : sides) {
    EXPECT_EQ(sides.count(sd), 1u);
    const bool rim = sd.first < n && sd.second < n && (sd.second + 1) % n == sd.first;
    if (!rim) {
      EXPECT_EQ(sides.count({sd.second, sd.first}), 1u) << sd.first << " " << sd.second;
    }
  }
  for (int i = 0; i < n; ++i) EXPECT_EQ(sides.count({(i + 1) % n, i}), 1u);
  // Flat rim, flat fill; and new sides near the rim's length.
  double sum = 0;
  size_t count = 0;
  for (const auto& v : h.added) EXPECT_NEAR(v.pos.z, 0.f, 1e-5f);
  for (const auto& sd : sides) {
    sum += (h.position(sd.first) - h.position(sd.second)).norm();
    ++count;
  }
  // Refinement splits down to the feature size: sides end between half of it and all.
  EXPECT_GT(sum / double(count), 0.45 * edge);
  EXPECT_LT(sum / double(count), 1.1 * edge);
  for (const auto& sd : sides) {
    const float len = (h.position(sd.first) - h.position(sd.second)).norm();
    EXPECT_GT(len, 0.08f * edge);
    EXPECT_LT(len, 1.5f * edge);
  }
}
