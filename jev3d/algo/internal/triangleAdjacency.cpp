#include "jev3d/algo/internal/triangleAdjacency.h"

#include <cstddef>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace INTERNAL {

namespace {

bool usable(const unsigned int* tri, unsigned int f, unsigned int vertexCount,
            const unsigned char* skip) {
  if (skip && skip[f]) return false;
  const unsigned int* t = tri + size_t(3) * f;
  return t[0] < vertexCount && t[1] < vertexCount && t[2] < vertexCount;
}

}  // namespace

void buildVertexFace(const unsigned int* tri, unsigned int faceCount, unsigned int vertexCount,
                     const unsigned char* skip, std::vector<unsigned int>& start,
                     std::vector<unsigned int>& wedges) {
  // Counting sort of the corners by vertex: counts, prefix sums, then a fill in face
  // order.
  start.assign(size_t(vertexCount) + 1, 0);
  for (unsigned int f = 0; f < faceCount; ++f) {
    if (!usable(tri, f, vertexCount, skip)) continue;
    const unsigned int* t = tri + size_t(3) * f;
    ++start[t[0] + 1], ++start[t[1] + 1], ++start[t[2] + 1];
  }
  for (unsigned int v = 0; v < vertexCount; ++v) start[v + 1] += start[v];
  wedges.resize(start[vertexCount]);
  std::vector<unsigned int> next(start.begin(), start.end() - 1);
  for (unsigned int f = 0; f < faceCount; ++f) {
    if (!usable(tri, f, vertexCount, skip)) continue;
    const unsigned int* t = tri + size_t(3) * f;
    for (unsigned int i = 0; i < 3; ++i) wedges[next[t[i]]++] = 3 * f + i;
  }
}

void buildFaceFace(const unsigned int* tri, unsigned int faceCount, unsigned int vertexCount,
                   const std::vector<unsigned int>& start, const std::vector<unsigned int>& wedges,
                   const unsigned char* skip, std::vector<unsigned int>& ff) {
  ff.assign(size_t(3) * faceCount, NO_WEDGE);
  // The sides sharing an edge are found among the corners at its first end: a face g
  // with a at corner j holds the edge a-b as its side j (a then b) or as side j + 2
  // (b then a). Once a ring is linked every member is set, so each edge is done once.
  std::vector<unsigned int> ring;
  for (unsigned int f = 0; f < faceCount; ++f) {
    if (!usable(tri, f, vertexCount, skip)) continue;
    const unsigned int* t = tri + size_t(3) * f;
    for (unsigned int i = 0; i < 3; ++i) {
      if (ff[3 * f + i] != NO_WEDGE) continue;
      const unsigned int a = t[i], b = t[i == 2 ? 0 : i + 1];
      if (a == b) continue;
      ring.clear();
      for (unsigned int k = start[a]; k < start[a + 1]; ++k) {
        const unsigned int w = wedges[k], g = w / 3, j = w % 3;
        const unsigned int* s = tri + size_t(3) * g;
        if (s[j == 2 ? 0 : j + 1] == b)
          ring.push_back(3 * g + j);
        else if (s[j == 0 ? 2 : j - 1] == b)
          ring.push_back(3 * g + (j == 0 ? 2 : j - 1));
      }
      if (ring.size() < 2) continue;
      for (size_t k = 0; k < ring.size(); ++k) ff[ring[k]] = ring[k + 1 == ring.size() ? 0 : k + 1];
    }
  }
}

}  // namespace INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
