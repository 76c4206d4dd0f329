#include "jev3d/algo/holefilling/internal/holeLoops.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

namespace {

// A face side as seen from its smaller vertex: the larger one, and whether the face walks
// the side from the larger id to the smaller.
struct side {
  int high;
  bool reversed;
  bool operator<(const side& o) const {
    return high != o.high ? high < o.high : reversed < o.reversed;
  }
};

// Exclusive prefix sums of counts, in place, with the total appended.
void toStarts(std::vector<unsigned int>& start) {
  unsigned int sum = 0;
  for (unsigned int& s : start) {
    const unsigned int c = s;
    s = sum;
    sum += c;
  }
  start.push_back(sum);
}

}  // namespace

// Sides are bucketed by their smaller vertex and each short bucket sorted on its own, so
// the build stays linear in the face count. Walking the buckets in vertex order meets
// every edge in ascending (smaller, larger) order, which is what keeps each row, and
// each vertex's outgoing border edges, ascending without a sort of their own.
void holeEdgeSet::build(unsigned int vertexCount, const std::vector<int>& corners,
                        const std::vector<unsigned int>& faceStart) {
  auto forEachSide = [&](auto&& visit) {
    for (size_t f = 0; f + 1 < faceStart.size(); ++f) {
      const unsigned int first = faceStart[f], n = faceStart[f + 1] - first;
      for (unsigned int i = 0; i < n; ++i) {
        const int a = corners[first + i], b = corners[first + (i + 1) % n];
        if (a == b || a < 0 || b < 0 || unsigned(a) >= vertexCount || unsigned(b) >= vertexCount)
          continue;
        visit(a, b);
      }
    }
  };
  std::vector<unsigned int> bucketStart(vertexCount, 0);
  forEachSide([&](int a, int b) { ++bucketStart[size_t(std::min(a, b))]; });
  toStarts(bucketStart);
  std::vector<side> sides(bucketStart.back());
  {
    std::vector<unsigned int> next(bucketStart.begin(), bucketStart.end() - 1);
    forEachSide([&](int a, int b) {
      sides[next[size_t(std::min(a, b))]++] = {std::max(a, b), a > b};
    });
  }

  // Edges in ascending order as (smaller, larger, border direction: 0 none, 1 forward,
  // -1 backward); a side seen once is a border edge, in its face's direction.
  struct edge {
    int a, b, border;
  };
  std::vector<edge> edges;
  edges.reserve(sides.size() / 2 + 16);
  rowStart.assign(vertexCount, 0);
  borderStart.assign(vertexCount, 0);
  for (unsigned int v = 0; v < vertexCount; ++v) {
    const auto first = sides.begin() + std::ptrdiff_t(bucketStart[v]);
    const auto last = sides.begin() + std::ptrdiff_t(bucketStart[v + 1]);
    std::sort(first, last);
    for (auto i = first; i != last;) {
      auto j = i;
      while (j != last && j->high == i->high) ++j;
      const int border = j - i == 1 ? (i->reversed ? -1 : 1) : 0;
      edges.push_back({int(v), i->high, border});
      ++rowStart[v], ++rowStart[size_t(i->high)];
      if (border) ++borderStart[size_t(border > 0 ? int(v) : i->high)];
      i = j;
    }
  }
  toStarts(rowStart);
  toStarts(borderStart);
  row.resize(rowStart.back());
  borderTarget.resize(borderStart.back());
  std::vector<unsigned int> nextRow(rowStart.begin(), rowStart.end() - 1);
  std::vector<unsigned int> nextBorder(borderStart.begin(), borderStart.end() - 1);
  for (const edge& e : edges) {
    row[nextRow[size_t(e.a)]++] = e.b;
    row[nextRow[size_t(e.b)]++] = e.a;
    if (e.border > 0) borderTarget[nextBorder[size_t(e.a)]++] = e.b;
    if (e.border < 0) borderTarget[nextBorder[size_t(e.b)]++] = e.a;
  }
}

bool holeEdgeSet::hasEdge(int a, int b) const {
  if (a < 0 || b < 0 || unsigned(a) >= vertexCount() || unsigned(b) >= vertexCount()) return false;
  const int* first = neighbours(a);
  const int* last = first + neighbourCount(a);
  return std::binary_search(first, last, b);
}

bool holeEdgeSet::traceLoops(std::vector<std::vector<int>>& loops) const {
  loops.clear();
  const unsigned int n = vertexCount();
  std::vector<unsigned int> nextOut(borderStart.begin(), borderStart.end() - 1);
  std::vector<int> placeInPath(n, -1);
  std::vector<int> path;
  auto takeEdgeOut = [&](int v) {
    return nextOut[size_t(v)] < borderStart[size_t(v) + 1] ? borderTarget[nextOut[size_t(v)]++]
                                                           : -1;
  };
  for (unsigned int s = 0; s < n; ++s) {
    while (nextOut[s] < borderStart[s + 1]) {
      path.assign(1, int(s));
      placeInPath[s] = 0;
      int cur = int(s);
      for (;;) {
        const int next = takeEdgeOut(cur);
        if (next < 0) {
          std::printf("\nCouldn't find an edge out of vert %d\n", cur);
          for (int v : path) placeInPath[size_t(v)] = -1;
          loops.clear();
          return false;
        }
        if (next == int(s)) break;
        const int seen = placeInPath[size_t(next)];
        if (seen >= 0) {
          // A pinch: the stretch since the last visit closes a loop of its own.
          loops.emplace_back(path.begin() + seen, path.end());
          for (size_t k = size_t(seen) + 1; k < path.size(); ++k) placeInPath[size_t(path[k])] = -1;
          path.resize(size_t(seen) + 1);
        } else {
          placeInPath[size_t(next)] = int(path.size());
          path.push_back(next);
        }
        cur = next;
      }
      for (int v : path) placeInPath[size_t(v)] = -1;
      loops.push_back(path);
    }
  }
  return true;
}

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
