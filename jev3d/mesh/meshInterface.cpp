#include "jev3d/mesh/meshInterface.h"

#include <algorithm>
#include <cstdint>

namespace JEV {
namespace MESH {

meshInterface::~meshInterface() = default;

void meshInterface::markBorderVertex(std::vector<unsigned char>& mask) const {
  mask.assign(vn(), 0);
  // Every side of every live face as a pair of vertex ids, smaller first; a pair seen
  // once is a border edge.
  std::vector<uint64_t> sides;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const unsigned int n = f2vNum(f);
    for (unsigned int i = 0; i < n; ++i) {
      const uint64_t a = fV(f, i), b = fV(f, (i + 1) % n);
      if (a == b) continue;
      sides.push_back(a < b ? (a << 32 | b) : (b << 32 | a));
    }
  }
  std::sort(sides.begin(), sides.end());
  for (size_t i = 0; i < sides.size();) {
    size_t j = i + 1;
    while (j < sides.size() && sides[j] == sides[i]) ++j;
    if (j - i == 1) {
      const uint64_t a = sides[i] >> 32, b = sides[i] & 0xFFFFFFFFu;
      if (a < mask.size()) mask[a] = 1;
      if (b < mask.size()) mask[b] = 1;
    }
    i = j;
  }
}

void meshInterface::copyTo(meshInterface& target) const {
  std::vector<unsigned int> map;
  copyTo(target, map);
}

void meshInterface::copyTo(meshInterface& target, std::vector<unsigned int>& map) const {
  target.clear();
  map.assign(vn(), 0xFFFFFFFFu);
  unsigned int live = 0;
  for (unsigned int v = 0; v < vn(); ++v)
    if (!isVertDeleted(v)) map[v] = live++;
  target.vertexReserve(live);
  for (unsigned int v = 0; v < vn(); ++v)
    if (!isVertDeleted(v)) target.addVertex(vPos(v));
  if (hasVN()) {
    target.vertexNormalResize(live);
    for (unsigned int v = 0; v < vn(); ++v)
      if (!isVertDeleted(v)) target.vNor(map[v]) = vNor(v);
  }
  if (hasVC()) {
    target.vertexColorResize(live);
    for (unsigned int v = 0; v < vn(); ++v)
      if (!isVertDeleted(v)) target.vCol(map[v]) = vCol(v);
  }
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (isFaceDeleted(f)) continue;
    const unsigned int n = f2vNum(f);
    ids.resize(n);
    bool valid = n >= 3;
    for (unsigned int i = 0; i < n && valid; ++i) {
      const unsigned int v = fV(f, i);
      valid = v < vn() && map[v] != 0xFFFFFFFFu;
      if (valid) ids[i] = map[v];
    }
    if (valid) target.addFace(ids.data(), n);
  }
}

}  // namespace MESH
}  // namespace JEV
