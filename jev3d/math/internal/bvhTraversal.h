#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "jev3d/math/internal/bvhBuilder.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {
namespace INTERNAL {

inline bool isFinite(const point3<float>& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// Box around everything in the tree.
inline void rootBounds(const std::vector<bvhNode>& nodes, point3<float>& lo, point3<float>& hi) {
  const bvhNode& root = nodes[0];
  for (int k = 0; k < 3; ++k) {
    lo[k] = root.lo[k][0], hi[k] = root.hi[k][0];
    for (int c = 1; c < 4; ++c) {
      if (root.count[c] == bvhNode::emptySlot) continue;
      lo[k] = std::min(lo[k], root.lo[k][c]), hi[k] = std::max(hi[k], root.hi[k][c]);
    }
  }
}

// A child on a traversal stack: an inner node (count 0) or a leaf, with its distance.
struct bvhEntry {
  std::uint32_t child;
  std::uint32_t count;
  float key;
};

// A stack deep enough for any tree the builder makes: each level leaves at most three
// siblings behind.
constexpr unsigned int bvhStackSize = 3 * bvhMaxDepth + 1;

// Squared distances from p to the four child boxes of a node; 0 inside.
inline void boxSquaredDistances(const bvhNode& n, const point3<float>& p, float* d) {
  float dx[4], dy[4], dz[4];
  for (int c = 0; c < 4; ++c) {
    const float lx = n.lo[0][c] - p.x, hx = p.x - n.hi[0][c];
    const float ly = n.lo[1][c] - p.y, hy = p.y - n.hi[1][c];
    const float lz = n.lo[2][c] - p.z, hz = p.z - n.hi[2][c];
    dx[c] = lx > hx ? lx : hx;
    dy[c] = ly > hy ? ly : hy;
    dz[c] = lz > hz ? lz : hz;
    dx[c] = dx[c] > 0.0f ? dx[c] : 0.0f;
    dy[c] = dy[c] > 0.0f ? dy[c] : 0.0f;
    dz[c] = dz[c] > 0.0f ? dz[c] : 0.0f;
    d[c] = dx[c] * dx[c] + dy[c] * dy[c] + dz[c] * dz[c];
  }
}

// Slab test of one ray against the four child boxes of nodes.
class rayBoxTest {
 public:
  rayBoxTest(const point3<float>& origin, const point3<float>& direction) {
    for (int k = 0; k < 3; ++k) {
      o[k] = origin[k];
      inv[k] = 1.0f / direction[k];
      nearHi[k] = std::signbit(direction[k]);
    }
  }

  // Entry distances of the ray into the four boxes for t in [0, tMax]; +inf where it
  // misses.
  void entries(const bvhNode& n, float tMax, float* tEntry) const {
    // Enlarging the exit a little keeps rounding from missing a box that a triangle
    // inside it touches. A zero direction component gives infinities, or NaN when the
    // origin lies on a face of the box, and the comparisons below let NaN impose nothing.
    constexpr float exitScale = 1.0f + 6.0f * std::numeric_limits<float>::epsilon();
    float t0[4] = {0.0f, 0.0f, 0.0f, 0.0f}, t1[4] = {tMax, tMax, tMax, tMax};
    for (int k = 0; k < 3; ++k) {
      const float* nearSide = nearHi[k] ? n.hi[k] : n.lo[k];
      const float* farSide = nearHi[k] ? n.lo[k] : n.hi[k];
      for (int c = 0; c < 4; ++c) {
        const float tn = (nearSide[c] - o[k]) * inv[k];
        const float tf = (farSide[c] - o[k]) * inv[k] * exitScale;
        t0[c] = tn > t0[c] ? tn : t0[c];
        t1[c] = tf < t1[c] ? tf : t1[c];
      }
    }
    for (int c = 0; c < 4; ++c) {
      tEntry[c] = t0[c] <= t1[c] ? t0[c] : std::numeric_limits<float>::infinity();
    }
  }

 private:
  float o[3];
  float inv[3];
  bool nearHi[3];
};

// Pushes the children whose key is not above bound onto the stack, nearest last, so that
// it comes off first. Returns whether any was pushed.
inline bool pushOrdered(const bvhNode& n, const float* key, float bound, bvhEntry* stack,
                        int& top) {
  bvhEntry found[4];
  int count = 0;
  for (int c = 0; c < 4; ++c) {
    if (n.count[c] == bvhNode::emptySlot || !(key[c] <= bound)) continue;
    // Insertion by decreasing key.
    int at = count++;
    while (at > 0 && found[at - 1].key < key[c]) found[at] = found[at - 1], --at;
    found[at] = {n.child[c], n.count[c], key[c]};
  }
  for (int i = 0; i < count; ++i) stack[top++] = found[i];
  return count > 0;
}

// Walks the tree nearest box first with a bound that the leaves shrink: visitLeaf(first,
// count, bound) tests a leaf and lowers bound when it finds something closer. keyOf(node,
// keys) gives the four children's distances in the same measure as the bound.
template <class KeyOf, class VisitLeaf>
void bvhNearestFirst(const std::vector<bvhNode>& nodes, float& bound, KeyOf keyOf,
                     VisitLeaf visitLeaf) {
  if (nodes.empty()) return;
  bvhEntry stack[bvhStackSize];
  int top = 0;
  bvhEntry current{0, 0, 0.0f};
  for (;;) {
    if (current.count == 0) {
      const bvhNode& n = nodes[current.child];
      float key[4];
      keyOf(n, key);
      if (pushOrdered(n, key, bound, stack, top)) {
        current = stack[--top];
        continue;
      }
    } else {
      visitLeaf(current.child, current.count, bound);
    }
    while (top > 0 && stack[top - 1].key > bound) --top;
    if (top == 0) return;
    current = stack[--top];
  }
}

// Walks every leaf whose key (as keyOf gives it) is not above bound, in no order.
template <class KeyOf, class VisitLeaf>
void bvhAllWithin(const std::vector<bvhNode>& nodes, float bound, KeyOf keyOf,
                  VisitLeaf visitLeaf) {
  if (nodes.empty()) return;
  bvhEntry stack[bvhStackSize];
  int top = 0;
  stack[top++] = {0, 0, 0.0f};
  while (top > 0) {
    const bvhEntry current = stack[--top];
    if (current.count != 0) {
      visitLeaf(current.child, current.count);
      continue;
    }
    const bvhNode& n = nodes[current.child];
    float key[4];
    keyOf(n, key);
    for (int c = 0; c < 4; ++c) {
      if (n.count[c] != bvhNode::emptySlot && key[c] <= bound) {
        stack[top++] = {n.child[c], n.count[c], key[c]};
      }
    }
  }
}

}  // namespace INTERNAL
}  // namespace MATH
}  // namespace JEV
