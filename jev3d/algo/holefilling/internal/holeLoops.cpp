#include "jev3d/algo/holefilling/internal/holeLoops.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

namespace {

// A face side as an undirected key, smaller id in the high word, and whether the face
// walks it from the larger id to the smaller.
struct side {
  uint64_t key;
  bool reversed;
  bool operator<(const side& o) const { return key != o.key ? key < o.key : reversed < o.reversed; }
};

int low(uint64_t key) { return int(key >> 32); }
int high(uint64_t key) { return int(key & 0xFFFFFFFFu); }

// Counting sort of (vertex, value) pairs into rows; each row keeps the pairs' order.
void fillRows(unsigned int vertexCount, const std::vector<std::pair<int, int>>& pairs,
              std::vector<unsigned int>& start, std::vector<int>& values) {
  start.assign(size_t(vertexCount) + 1, 0);
  for (const auto& p : pairs) ++start[size_t(p.first) + 1];
  for (unsigned int v = 0; v < vertexCount; ++v) start[v + 1] += start[v];
  values.resize(pairs.size());
  std::vector<unsigned int> next(start.begin(), start.end() - 1);
  for (const auto& p : pairs) values[next[size_t(p.first)]++] = p.second;
}

}  // namespace

void holeEdgeSet::build(unsigned int vertexCount, const std::vector<int>& corners,
                        const std::vector<unsigned int>& faceStart) {
  std::vector<side> sides;
  sides.reserve(corners.size());
  for (size_t f = 0; f + 1 < faceStart.size(); ++f) {
    const unsigned int first = faceStart[f], n = faceStart[f + 1] - first;
    for (unsigned int i = 0; i < n; ++i) {
      const int a = corners[first + i], b = corners[first + (i + 1) % n];
      if (a == b || a < 0 || b < 0 || unsigned(a) >= vertexCount || unsigned(b) >= vertexCount)
        continue;
      const uint64_t lo = uint64_t(std::min(a, b)), hi = uint64_t(std::max(a, b));
      sides.push_back({lo << 32 | hi, a > b});
    }
  }
  std::sort(sides.begin(), sides.end());

  std::vector<std::pair<int, int>> links, border;
  for (size_t i = 0; i < sides.size();) {
    size_t j = i;
    while (j < sides.size() && sides[j].key == sides[i].key) ++j;
    const int a = low(sides[i].key), b = high(sides[i].key);
    links.emplace_back(a, b);
    links.emplace_back(b, a);
    if (j - i == 1)
      border.push_back(sides[i].reversed ? std::make_pair(b, a) : std::make_pair(a, b));
    i = j;
  }
  // Stable sort by first vertex keeps each row ascending, since keys were sorted.
  std::stable_sort(links.begin(), links.end());
  fillRows(vertexCount, links, rowStart, row);
  std::stable_sort(border.begin(), border.end());
  fillRows(vertexCount, border, borderStart, borderTarget);
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
