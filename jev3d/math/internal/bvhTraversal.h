#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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
#if defined(__SSE2__)
  const __m128 zero = _mm_setzero_ps();
  __m128 sum = zero;
  for (int k = 0; k < 3; ++k) {
    const __m128 q = _mm_set1_ps(p[k]);
    const __m128 below = _mm_sub_ps(_mm_load_ps(n.lo[k]), q);
    const __m128 above = _mm_sub_ps(q, _mm_load_ps(n.hi[k]));
    const __m128 gap = _mm_max_ps(_mm_max_ps(below, above), zero);
    sum = _mm_add_ps(sum, _mm_mul_ps(gap, gap));
  }
  _mm_storeu_ps(d, sum);
#else
  for (int c = 0; c < 4; ++c) {
    d[c] = 0.0f;
    for (int k = 0; k < 3; ++k) {
      const float gap = std::max(std::max(n.lo[k][c] - p[k], p[k] - n.hi[k][c]), 0.0f);
      d[c] += gap * gap;
    }
  }
#endif
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
  // misses. Moving the entry a little closer and the exit a little farther keeps rounding
  // from missing or postponing a box that a triangle inside it touches, as grazing rays do. A zero
  // direction component gives infinities, or NaN when the origin lies on a face of the box: the
  // minimum and maximum below let NaN impose nothing.
  void entries(const bvhNode& n, float tMax, float* tEntry) const {
    constexpr float exitScale = 1.0f + 6.0f * std::numeric_limits<float>::epsilon();
    constexpr float entryScale = 1.0f - 6.0f * std::numeric_limits<float>::epsilon();
#if defined(__SSE2__)
    __m128 t0 = _mm_setzero_ps(), t1 = _mm_set1_ps(tMax);
    for (int k = 0; k < 3; ++k) {
      const __m128 origin = _mm_set1_ps(o[k]), scale = _mm_set1_ps(inv[k]);
      const __m128 nearSide = _mm_load_ps(nearHi[k] ? n.hi[k] : n.lo[k]);
      const __m128 farSide = _mm_load_ps(nearHi[k] ? n.lo[k] : n.hi[k]);
      const __m128 tn =
          _mm_mul_ps(_mm_mul_ps(_mm_sub_ps(nearSide, origin), scale), _mm_set1_ps(entryScale));
      const __m128 tf =
          _mm_mul_ps(_mm_mul_ps(_mm_sub_ps(farSide, origin), scale), _mm_set1_ps(exitScale));
      // The second operand is returned when either is NaN.
      t0 = _mm_max_ps(tn, t0);
      t1 = _mm_min_ps(tf, t1);
    }
    const __m128 missed = _mm_cmpgt_ps(t0, t1);
    const __m128 inf = _mm_set1_ps(std::numeric_limits<float>::infinity());
    _mm_storeu_ps(tEntry, _mm_or_ps(_mm_and_ps(missed, inf), _mm_andnot_ps(missed, t0)));
#else
    for (int c = 0; c < 4; ++c) {
      float t0 = 0.0f, t1 = tMax;
      for (int k = 0; k < 3; ++k) {
        const float tn = ((nearHi[k] ? n.hi[k][c] : n.lo[k][c]) - o[k]) * inv[k] * entryScale;
        const float tf = ((nearHi[k] ? n.lo[k][c] : n.hi[k][c]) - o[k]) * inv[k] * exitScale;
        t0 = tn > t0 ? tn : t0;
        t1 = tf < t1 ? tf : t1;
      }
      tEntry[c] = t0 <= t1 ? t0 : std::numeric_limits<float>::infinity();
    }
#endif
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
template <class KeyOf, class VisitLeaf, class PrefetchLeaf>
void bvhNearestFirst(const std::vector<bvhNode>& nodes, float& bound, KeyOf keyOf,
                     VisitLeaf visitLeaf, PrefetchLeaf prefetchLeaf) {
  if (nodes.empty()) return;
  bvhEntry stack[bvhStackSize];
  int top = 0;
  bvhEntry current{0, 0, 0.0f};
  for (;;) {
    if (current.count == 0) {
      const bvhNode& n = nodes[current.child];
      float key[4];
      keyOf(n, key);
      const int before = top;
      if (pushOrdered(n, key, bound, stack, top)) {
        // Children that wait on the stack are fetched while the nearest one is walked.
        for (int i = before; i < top; ++i) {
          if (stack[i].count == 0) {
            const char* line = reinterpret_cast<const char*>(&nodes[stack[i].child]);
            __builtin_prefetch(line);
            __builtin_prefetch(line + 64);
          } else {
            prefetchLeaf(stack[i].child, stack[i].count);
          }
        }
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
