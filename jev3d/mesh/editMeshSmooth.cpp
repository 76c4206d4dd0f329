#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {

using MATH::point3;

void editMesh::smooth(bool selectedOnly) {
  if (!isEVEFValid() || !isVEValid() || vFlag.size() < vn() || eFlag.size() < en()) return;
  const unsigned int n = vn();
  // A vertex is pinned by any border edge at it; found once from the edges, not per vertex.
  std::vector<unsigned char> pinned(n, 0);
  for (unsigned int e = 0; e < en(); ++e) {
    if (edgeIsDeleted(e) || !isEdgeBorder(e)) continue;
    for (unsigned int k = 0; k < 2; ++k)
      if (eStore[e].v[k] < n) pinned[eStore[e].v[k]] = 1;
  }
  std::vector<point3<float>> next(n);
  for (unsigned int v = 0; v < n; ++v) {
    next[v] = vStore[v].pos;
    if (pinned[v] || isVertDeleted(v) || (selectedOnly && !isVertSelected(v))) continue;
    point3<float> sum;
    unsigned int count = 0;
    for (unsigned int i = 0; i < vStore[v].veNum; ++i) {
      const unsigned int e = veStore[vStore[v].veBase + i];
      if (e >= en() || edgeIsDeleted(e)) continue;
      const unsigned int w = eStore[e].v[0] == v ? eStore[e].v[1] : eStore[e].v[0];
      if (w >= n) continue;
      sum += vStore[w].pos;
      ++count;
    }
    if (count) next[v] = sum / float(count);
  }
  for (unsigned int v = 0; v < n; ++v) vStore[v].pos = next[v];
  updateBBox();
  invalidateRenderData();
}

}  // namespace MESH
}  // namespace JEV
