// The edge set built from triangles, in whole and for some vertices only, against an
// ordered map of the face sides worked out here.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <vector>

#include "jev3d/algo/holefilling/internal/holeLoops.h"

using JEV::MESH::ALGO::HOLEFILLING_INTERNAL::holeEdgeSet;
using triangles = std::vector<std::array<int, 3>>;

namespace {

// Rows and directed border sides (sides whose edge no other side uses) of an ordered map.
struct reference {
  std::map<int, std::set<int>> rows;
  std::set<std::pair<int, int>> border;
};

reference referenceOf(int vertexCount, const triangles& faces) {
  std::map<std::pair<int, int>, std::vector<std::pair<int, int>>> uses;
  for (const auto& t : faces)
    for (int i = 0; i < 3; ++i) {
      const int a = t[size_t(i)], b = t[size_t(i + 1) % 3];
      if (a == b || a < 0 || b < 0 || a >= vertexCount || b >= vertexCount) continue;
      uses[{std::min(a, b), std::max(a, b)}].emplace_back(a, b);
    }
  reference r;
  for (const auto& e : uses) {
    r.rows[e.first.first].insert(e.first.second);
    r.rows[e.first.second].insert(e.first.first);
    if (e.second.size() == 1) r.border.insert(e.second[0]);
  }
  return r;
}

std::vector<int> rowOf(const holeEdgeSet& edges, int v) {
  return std::vector<int>(edges.neighbours(v), edges.neighbours(v) + edges.neighbourCount(v));
}

// A soup of triangles over n vertices from a fixed generator, with repeated corners,
// ids out of range, sides used three times and faces wound against their neighbours.
triangles soup(int n, int count) {
  unsigned state = 12345u;
  auto next = [&](int range) {
    state = state * 1664525u + 1013904223u;
    return int((state >> 8) % unsigned(range));
  };
  triangles faces;
  for (int f = 0; f < count; ++f) {
    const int a = next(n), b = a + 1 + next(4), c = a + 1 + next(6);
    faces.push_back({a, b, c});
  }
  faces.push_back({3, 3, 4});
  faces.push_back({-1, 2, 5});
  faces.push_back({7, n + 3, 8});
  return faces;
}

// A triangulated grid of nx by ny cells with the listed cells left out: its border has
// an outer loop, a hole, and two holes meeting at one vertex (a pinch).
triangles gridWithHoles(int nx, int ny, const std::set<std::pair<int, int>>& holes) {
  triangles faces;
  for (int j = 0; j < ny; ++j)
    for (int i = 0; i < nx; ++i) {
      if (holes.count({i, j})) continue;
      const int a = j * (nx + 1) + i, b = a + 1, c = a + nx + 2, d = a + nx + 1;
      faces.push_back({a, b, c});
      faces.push_back({a, c, d});
    }
  return faces;
}

}  // namespace

TEST(HoleEdgeSet, TrianglesGiveTheRowsAndBordersOfAnOrderedMap) {
  const int n = 60;
  const triangles faces = soup(n, 150);
  const reference ref = referenceOf(n, faces);
  holeEdgeSet edges;
  edges.buildTriangles(unsigned(n), faces);
  ASSERT_EQ(edges.vertexCount(), unsigned(n));
  for (int v = 0; v < n; ++v) {
    const auto it = ref.rows.find(v);
    const std::vector<int> expected = it == ref.rows.end()
                                          ? std::vector<int>()
                                          : std::vector<int>(it->second.begin(), it->second.end());
    EXPECT_EQ(rowOf(edges, v), expected) << "vertex " << v;
    for (int w = -1; w <= n; ++w)
      EXPECT_EQ(edges.hasEdge(v, w), it != ref.rows.end() && it->second.count(w) > 0)
          << v << "-" << w;
  }

  // On a grid with a hole and a pinch, every border side is walked once, its own way.
  const triangles grid = gridWithHoles(6, 5, {{1, 1}, {3, 2}, {4, 3}});
  holeEdgeSet gridEdges;
  gridEdges.buildTriangles(7 * 6, grid);
  std::vector<std::vector<int>> loops;
  ASSERT_TRUE(gridEdges.traceLoops(loops));
  EXPECT_EQ(loops.size(), 4u);
  std::set<std::pair<int, int>> walked;
  for (const auto& l : loops)
    for (size_t i = 0; i < l.size(); ++i)
      EXPECT_TRUE(walked.insert({l[i], l[(i + 1) % l.size()]}).second);
  EXPECT_EQ(walked, referenceOf(7 * 6, grid).border);
}

TEST(HoleEdgeSet, RowsOfSomeVerticesAreTheirRowsInTheWholeSet) {
  const int n = 60;
  const triangles faces = soup(n, 150);
  holeEdgeSet whole, some;
  whole.buildTriangles(unsigned(n), faces);
  std::vector<unsigned char> wanted(size_t(n), 0);
  for (int v = 0; v < n; v += 3) wanted[size_t(v)] = 1;
  wanted[size_t(n - 1)] = 1;
  some.buildRowsOf(unsigned(n), faces, wanted);
  ASSERT_EQ(some.vertexCount(), unsigned(n));
  for (int v = 0; v < n; ++v) {
    if (wanted[size_t(v)]) {
      EXPECT_EQ(rowOf(some, v), rowOf(whole, v)) << "vertex " << v;
    } else {
      EXPECT_EQ(some.neighbourCount(v), 0u) << "vertex " << v;
    }
    // Any pair with a wanted end is answered as the whole set answers it.
    for (int w = 0; w < n; ++w)
      if (wanted[size_t(v)] || wanted[size_t(w)]) {
        EXPECT_EQ(some.hasEdge(v, w), whole.hasEdge(v, w)) << v << "-" << w;
      }
  }
  // No border is kept: nothing to trace, and no failure either.
  std::vector<std::vector<int>> loops{{1, 2, 3}};
  EXPECT_TRUE(some.traceLoops(loops));
  EXPECT_TRUE(loops.empty());
  // A short mask counts as unwanted beyond its end.
  some.buildRowsOf(unsigned(n), faces, {0, 1});
  EXPECT_EQ(rowOf(some, 1), rowOf(whole, 1));
  EXPECT_EQ(some.neighbourCount(n - 1), 0u);
}
