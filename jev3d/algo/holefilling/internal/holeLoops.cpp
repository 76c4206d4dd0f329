#include "jev3d/algo/holefilling/internal/holeLoops.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <utility>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

namespace {

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

// The rows come out ascending without a comparison sort: the face sides, bucketed by
// their first vertex in face order, are transposed twice (walking the buckets in vertex
// order leaves each new bucket ascending), giving per vertex the sorted targets of its
// sides and the sorted sources of the sides into it. One merge of the two lists per
// vertex then gives its row, each neighbour once, and the use count of each edge: an
// edge used by one side only is a border edge, in that side's direction. Rows in vertex
// order are what an ordered map from vertex to neighbour set would iterate, and each
// vertex's border targets come out ascending, the order the tracer relies on.
template <class ForEachSide>
void holeEdgeSet::buildFromSides(unsigned int vertexCount, ForEachSide forEachSide) {
  std::vector<unsigned int> outStart(vertexCount, 0), inStart(vertexCount, 0);
  forEachSide([&](int a, int b) { ++outStart[size_t(a)], ++inStart[size_t(b)]; });
  toStarts(outStart);
  toStarts(inStart);
  const size_t sideCount = outStart.back();

  // Every entry is written before it is read: no zero fill.
  const std::unique_ptr<int[]> target(new int[sideCount]), source(new int[sideCount]);
  std::vector<unsigned int> next(outStart.begin(), outStart.end() - 1);
  forEachSide([&](int a, int b) { target[next[size_t(a)]++] = b; });
  next.assign(inStart.begin(), inStart.end() - 1);
  for (unsigned int a = 0; a < vertexCount; ++a)
    for (unsigned int k = outStart[a]; k < outStart[a + 1]; ++k)
      source[next[size_t(target[k])]++] = int(a);
  next.assign(outStart.begin(), outStart.end() - 1);
  for (unsigned int b = 0; b < vertexCount; ++b)
    for (unsigned int k = inStart[b]; k < inStart[b + 1]; ++k)
      target[next[size_t(source[k])]++] = int(b);

  rowStart.resize(size_t(vertexCount) + 1);
  borderStart.resize(size_t(vertexCount) + 1);
  row.clear();
  row.reserve(2 * sideCount);
  borderTarget.clear();
  rowStart[0] = borderStart[0] = 0;
  for (unsigned int v = 0; v < vertexCount; ++v) {
    const int* out = target.get() + outStart[v];
    const int* outEnd = target.get() + outStart[v + 1];
    const int* in = source.get() + inStart[v];
    const int* inEnd = source.get() + inStart[v + 1];
    // Inside a surface both lists are the same set (each edge walked once either way):
    // the row is that list, with no border edge. Plain loops: the lists are a few long.
    const ptrdiff_t n = outEnd - out;
    bool inside = n == inEnd - in;
    for (ptrdiff_t k = 0; inside && k < n; ++k)
      inside = out[k] == in[k] && (k == 0 || out[k] != out[k - 1]);
    if (inside) {
      for (ptrdiff_t k = 0; k < n; ++k) row.push_back(out[k]);
      rowStart[v + 1] = unsigned(row.size());
      borderStart[v + 1] = unsigned(borderTarget.size());
      continue;
    }
    while (out != outEnd || in != inEnd) {
      const int w = in == inEnd || (out != outEnd && *out < *in) ? *out : *in;
      unsigned int outUses = 0, inUses = 0;
      for (; out != outEnd && *out == w; ++out) ++outUses;
      for (; in != inEnd && *in == w; ++in) ++inUses;
      row.push_back(w);
      if (outUses == 1 && inUses == 0) borderTarget.push_back(w);
    }
    rowStart[v + 1] = unsigned(row.size());
    borderStart[v + 1] = unsigned(borderTarget.size());
  }
}

void holeEdgeSet::build(unsigned int vertexCount, const std::vector<int>& corners,
                        const std::vector<unsigned int>& faceStart) {
  buildFromSides(vertexCount, [&](auto&& visit) {
    for (size_t f = 0; f + 1 < faceStart.size(); ++f) {
      const unsigned int first = faceStart[f], n = faceStart[f + 1] - first;
      for (unsigned int i = 0; i < n; ++i) {
        const int a = corners[first + i], b = corners[first + (i + 1) % n];
        if (a == b || a < 0 || b < 0 || unsigned(a) >= vertexCount || unsigned(b) >= vertexCount)
          continue;
        visit(a, b);
      }
    }
  });
}

void holeEdgeSet::buildTriangles(unsigned int vertexCount,
                                 const std::vector<std::array<int, 3>>& triangles) {
  buildFromSides(vertexCount, [&](auto&& visit) {
    // unsigned() sends negative ids out of range too.
    const auto side = [&](int x, int y) {
      if (x != y && unsigned(x) < vertexCount && unsigned(y) < vertexCount) visit(x, y);
    };
    for (const std::array<int, 3>& t : triangles)
      side(t[0], t[1]), side(t[1], t[2]), side(t[2], t[0]);
  });
}

void holeEdgeSet::buildRowsOf(unsigned int vertexCount,
                              const std::vector<std::array<int, 3>>& triangles,
                              const std::vector<unsigned char>& wanted) {
  const auto isWanted = [&](int v) {
    return unsigned(v) < vertexCount && size_t(v) < wanted.size() && wanted[size_t(v)];
  };
  // (wanted vertex, neighbour) for every side at a wanted vertex.
  std::vector<std::pair<int, int>> links;
  const auto side = [&](int x, int y) {
    if (x == y || unsigned(x) >= vertexCount || unsigned(y) >= vertexCount) return;
    if (isWanted(x)) links.emplace_back(x, y);
    if (isWanted(y)) links.emplace_back(y, x);
  };
  for (const std::array<int, 3>& t : triangles)
    if (isWanted(t[0]) || isWanted(t[1]) || isWanted(t[2]))
      side(t[0], t[1]), side(t[1], t[2]), side(t[2], t[0]);
  std::sort(links.begin(), links.end());
  links.erase(std::unique(links.begin(), links.end()), links.end());
  rowStart.assign(size_t(vertexCount) + 1, 0);
  row.resize(links.size());
  for (size_t k = 0; k < links.size(); ++k) {
    ++rowStart[size_t(links[k].first) + 1];
    row[k] = links[k].second;
  }
  for (size_t v = 0; v < vertexCount; ++v) rowStart[v + 1] += rowStart[v];
  borderStart.assign(size_t(vertexCount) + 1, 0);
  borderTarget.clear();
}

// Rows are symmetric, so either end's row answers; looking in both lets a set built for
// some vertices answer every pair with one of them at an end.
bool holeEdgeSet::hasEdge(int a, int b) const {
  if (a < 0 || b < 0 || unsigned(a) >= vertexCount() || unsigned(b) >= vertexCount()) return false;
  const auto inRow = [this](int v, int w) {
    const int* first = neighbours(v);
    return std::binary_search(first, first + neighbourCount(v), w);
  };
  return inRow(a, b) || inRow(b, a);
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
