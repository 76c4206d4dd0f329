#include "jev3d/math/internal/bvhBuilder.h"

#include <algorithm>
#include <limits>
#include <system_error>
#include <thread>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace JEV {
namespace MATH {
namespace INTERNAL {

namespace {

constexpr int binCount = 16;

// Past this depth every split is a median split, which bounds the depth by bvhMaxDepth
// for up to 2^32 primitives whatever the heuristic did above.
constexpr unsigned int medianOnlyDepth = bvhMaxDepth - 32;

constexpr float huge = std::numeric_limits<float>::max();

// Box over four lanes, written so that the compiler keeps each half in one vector register.
struct box4 {
  float lo[4];
  float hi[4];

  // Left uninitialised by construction: bin arrays are reset only in the part in use.
  static box4 none() {
    box4 b;
    b.reset();
    return b;
  }
  void reset() {
    for (int k = 0; k < 4; ++k) lo[k] = huge, hi[k] = -huge;
  }

  void grow(const float* l, const float* h) {
    for (int k = 0; k < 4; ++k) {
      lo[k] = l[k] < lo[k] ? l[k] : lo[k];
      hi[k] = h[k] > hi[k] ? h[k] : hi[k];
    }
  }
  void grow(const box4& b) { grow(b.lo, b.hi); }
  // Half the surface area; empty boxes give 0.
  float halfArea() const {
    const float dx = std::max(hi[0] - lo[0], 0.0f), dy = std::max(hi[1] - lo[1], 0.0f),
                dz = std::max(hi[2] - lo[2], 0.0f);
    return dx * dy + dy * dz + dz * dx;
  }
};

// Twice the centroid in every lane, which saves a multiplication per use.
inline void centroid2(const bvhPrimitive& p, float* c) {
  for (int k = 0; k < 4; ++k) c[k] = p.lo[k] + p.hi[k];
}

// Box and centroid box of a range, as the builder needs them for every node.
struct rangeBounds {
  box4 bounds = box4::none(), centroids = box4::none();
};

rangeBounds boundsOf(const std::vector<bvhPrimitive>& prims, std::uint32_t begin,
                     std::uint32_t end) {
  rangeBounds r;
  for (std::uint32_t i = begin; i < end; ++i) {
    float c[4];
    centroid2(prims[i], c);
    r.bounds.grow(prims[i].lo, prims[i].hi);
    r.centroids.grow(c, c);
  }
  return r;
}

// Node of the binary tree that the build makes before it is collapsed to four wide.
struct binaryNode {
  box4 bounds = box4::none();
  std::uint32_t index;  // first primitive of a leaf, or the left child (right is next)
  std::uint32_t count;  // 0 for inner nodes
};

struct buildTask {
  std::uint32_t node, begin, end, depth;
  rangeBounds range;
};

struct splitResult {
  std::uint32_t mid;
  rangeBounds left, right;
};

// Moves the primitives for which goesLeft holds before the others, ids alike; returns the
// first of the others.
template <class Predicate>
std::uint32_t partitionRange(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
                             std::uint32_t begin, std::uint32_t end, Predicate goesLeft) {
  std::uint32_t i = begin, j = end;
  for (;;) {
    while (i < j && goesLeft(prims[i])) ++i;
    while (i < j && !goesLeft(prims[j - 1])) --j;
    if (i >= j) return i;
    std::swap(prims[i], prims[j - 1]);
    std::swap(ids[i], ids[j - 1]);
    ++i, --j;
  }
}

// Binned SAH split along axis. Returns mid at begin when no bin boundary separates the
// centroids. The child boxes come from the bins, which spares a pass over each child.
splitResult sahSplit(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
                     std::uint32_t begin, std::uint32_t end, int axis, float cLo, float cExtent) {
  // Large ranges fill two sets of bins from alternate primitives: neighbours often fall in
  // one bin, and one set would chain every update on the previous one. Small ranges are
  // many, and there clearing the bins costs more than the chain.
  const int sets = end - begin >= 1024 ? 2 : 1;
  // Left uninitialised but for the sets in use: small ranges are many.
  box4 bins[2][binCount], cents[2][binCount];
  std::uint32_t counts[2][binCount];
  for (int set = 0; set < sets; ++set) {
    for (int k = 0; k < binCount; ++k)
      bins[set][k].reset(), cents[set][k].reset(), counts[set][k] = 0;
  }
  // Slightly below binCount / extent so that the largest centroid lands in the last bin.
  const float scale = float(binCount) * (1.0f - 1e-5f) / cExtent;
  auto binOf = [&](const bvhPrimitive& p) {
    const int k = int((p.lo[axis] + p.hi[axis] - cLo) * scale);
    return std::min(std::max(k, 0), binCount - 1);
  };
  auto add = [&](const bvhPrimitive& p, int set) {
    float c[4];
    centroid2(p, c);
    const int k = binOf(p);
    bins[set][k].grow(p.lo, p.hi);
    cents[set][k].grow(c, c);
    ++counts[set][k];
  };
  std::uint32_t i = begin;
  if (sets == 2) {
    for (; i + 1 < end; i += 2) add(prims[i], 0), add(prims[i + 1], 1);
    for (int k = 0; k < binCount; ++k) {
      bins[0][k].grow(bins[1][k]);
      cents[0][k].grow(cents[1][k]);
      counts[0][k] += counts[1][k];
    }
  }
  for (; i < end; ++i) add(prims[i], 0);

  // Costs of the binCount - 1 planes between bins: right sides first, then left sides.
  float rightArea[binCount];
  std::uint32_t rightCount[binCount];
  box4 acc = box4::none();
  std::uint32_t n = 0;
  for (int k = binCount - 1; k > 0; --k) {
    acc.grow(bins[0][k]);
    n += counts[0][k];
    rightArea[k] = acc.halfArea();
    rightCount[k] = n;
  }
  acc.reset();
  n = 0;
  float bestCost = std::numeric_limits<float>::infinity();
  int best = -1;
  for (int k = 0; k < binCount - 1; ++k) {
    acc.grow(bins[0][k]);
    n += counts[0][k];
    if (n == 0 || rightCount[k + 1] == 0) continue;
    const float cost = float(n) * acc.halfArea() + float(rightCount[k + 1]) * rightArea[k + 1];
    if (cost < bestCost) bestCost = cost, best = k;
  }
  splitResult result{begin, {}, {}};
  if (best < 0) return result;
  for (int k = 0; k < binCount; ++k) {
    rangeBounds& side = k <= best ? result.left : result.right;
    side.bounds.grow(bins[0][k]);
    side.centroids.grow(cents[0][k]);
  }
  result.mid = partitionRange(prims, ids, begin, end,
                              [&](const bvhPrimitive& p) { return binOf(p) <= best; });
  return result;
}

// Splits [begin, end) at its middle along axis; with no extent the order is kept.
splitResult medianSplit(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
                        std::uint32_t begin, std::uint32_t end, int axis, bool hasExtent) {
  const std::uint32_t mid = begin + (end - begin) / 2;
  if (hasExtent) {
    std::vector<std::uint32_t> order(end - begin);
    for (std::uint32_t i = 0; i < order.size(); ++i) order[i] = begin + i;
    std::nth_element(order.begin(), order.begin() + (mid - begin), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) {
                       return prims[a].lo[axis] + prims[a].hi[axis] <
                              prims[b].lo[axis] + prims[b].hi[axis];
                     });
    std::vector<bvhPrimitive> movedPrims(order.size());
    std::vector<std::uint32_t> movedIds(order.size());
    for (std::uint32_t i = 0; i < order.size(); ++i) {
      movedPrims[i] = prims[order[i]];
      movedIds[i] = ids[order[i]];
    }
    std::copy(movedPrims.begin(), movedPrims.end(), prims.begin() + begin);
    std::copy(movedIds.begin(), movedIds.end(), ids.begin() + begin);
  }
  return {mid, boundsOf(prims, begin, mid), boundsOf(prims, mid, end)};
}

// Splits one task: a leaf when it is small enough, otherwise an inner node whose two
// children are appended to tree and pushed as tasks, the left on top.
void splitTask(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
               unsigned int leafSize, const buildTask& task, std::vector<binaryNode>& tree,
               std::vector<buildTask>& tasks) {
  tree[task.node].bounds = task.range.bounds;
  const std::uint32_t count = task.end - task.begin;
  if (count <= leafSize) {
    tree[task.node].index = task.begin;
    tree[task.node].count = count;
    return;
  }

  const box4& c = task.range.centroids;
  int axis = 0;
  for (int k = 1; k < 3; ++k) {
    if (c.hi[k] - c.lo[k] > c.hi[axis] - c.lo[axis]) axis = k;
  }
  const float extent = c.hi[axis] - c.lo[axis];
  // Equal centroids (all points equal, stacked faces) still split, in index order; an
  // overflowing extent is left to the median split too.
  const bool hasExtent = extent > 0.0f && extent <= huge;
  splitResult split{task.begin, {}, {}};
  if (hasExtent && task.depth < medianOnlyDepth) {
    split = sahSplit(prims, ids, task.begin, task.end, axis, c.lo[axis], extent);
  }
  if (split.mid == task.begin || split.mid == task.end) {
    split = medianSplit(prims, ids, task.begin, task.end, axis, hasExtent);
  }

  const std::uint32_t left = std::uint32_t(tree.size());
  tree.resize(left + 2);
  tree[task.node].index = left;
  tree[task.node].count = 0;
  // Right first, so that the left subtree is built next.
  tasks.push_back({left + 1, split.mid, task.end, task.depth + 1, split.right});
  tasks.push_back({left, task.begin, split.mid, task.depth + 1, split.left});
}

// Builds the subtree of root into tree, the root at tree[0]. It only touches the
// primitives of its own range.
void buildSubtree(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
                  unsigned int leafSize, buildTask root, std::vector<binaryNode>& tree) {
  tree.reserve(2 * ((root.end - root.begin) / leafSize) + 4);
  tree.resize(1);
  std::vector<buildTask> tasks;
  tasks.reserve(2 * bvhMaxDepth);
  root.node = 0;
  tasks.push_back(root);
  while (!tasks.empty()) {
    const buildTask task = tasks.back();
    tasks.pop_back();
    splitTask(prims, ids, leafSize, task, tree, tasks);
  }
}

// Below this many primitives a second thread costs more than it saves.
constexpr std::size_t parallelBuildSize = 32768;

void buildBinary(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
                 unsigned int leafSize, std::vector<binaryNode>& tree) {
  const buildTask root{0, 0, std::uint32_t(prims.size()), 0, boundsOf(prims, 0, prims.size())};
  if (prims.size() < parallelBuildSize || std::thread::hardware_concurrency() < 2) {
    buildSubtree(prims, ids, leafSize, root, tree);
    return;
  }
  // The two halves of the root own disjoint ranges: one is built on a second thread.
  tree.resize(1);
  std::vector<buildTask> halves;
  splitTask(prims, ids, leafSize, root, tree, halves);
  std::vector<binaryNode> left, right;
  auto buildRight = [&] { buildSubtree(prims, ids, leafSize, halves[0], right); };
  std::thread worker;
  try {
    worker = std::thread(buildRight);
  } catch (const std::system_error&) {
    buildRight();  // no thread to be had: the same work, in turn
  }
  buildSubtree(prims, ids, leafSize, halves[1], left);
  if (worker.joinable()) worker.join();

  // Root, the two half roots, then the rest of each half: local node j of the left half
  // lands at j + 2, of the right half at j + left.size() + 1, children staying adjacent.
  const std::uint32_t leftShift = 2, rightShift = std::uint32_t(left.size()) + 1;
  tree.resize(3 + (left.size() - 1) + (right.size() - 1));
  const auto place = [&](const binaryNode& n, std::uint32_t shift) {
    binaryNode moved = n;
    if (moved.count == 0) moved.index += shift;
    return moved;
  };
  tree[1] = place(left[0], leftShift);
  tree[2] = place(right[0], rightShift);
  for (std::size_t j = 1; j < left.size(); ++j) tree[j + leftShift] = place(left[j], leftShift);
  for (std::size_t j = 1; j < right.size(); ++j) tree[j + rightShift] = place(right[j], rightShift);
}

// Collapses the binary tree: each 4-wide node takes the children of a binary node and
// keeps opening the largest inner one until it holds four.
void collapse(const std::vector<binaryNode>& tree, std::vector<bvhNode>& nodes) {
  // Every inner node of the wide tree stands for at least one inner binary node; the room
  // is reserved whole so that the advice covers it.
  reserveOnHugePages(nodes, tree.size() / 2 + 1);
  nodes.resize(1);
  std::vector<std::pair<std::uint32_t, std::uint32_t>> pending;  // binary node, wide node
  pending.push_back({0, 0});
  while (!pending.empty()) {
    const auto [from, to] = pending.back();
    pending.pop_back();
    std::uint32_t slots[4] = {from, 0, 0, 0};
    int used = 1;
    if (tree[from].count == 0) {
      slots[0] = tree[from].index, slots[1] = tree[from].index + 1, used = 2;
      while (used < 4) {
        int open = -1;
        float largest = -1.0f;
        for (int s = 0; s < used; ++s) {
          const binaryNode& b = tree[slots[s]];
          if (b.count == 0 && b.bounds.halfArea() > largest)
            largest = b.bounds.halfArea(), open = s;
        }
        if (open < 0) break;
        const std::uint32_t opened = slots[open];
        slots[open] = tree[opened].index;
        slots[used++] = tree[opened].index + 1;
      }
    }
    for (int s = 0; s < 4; ++s) {
      bvhNode& node = nodes[to];
      if (s >= used) {
        for (int k = 0; k < 3; ++k) node.lo[k][s] = huge, node.hi[k][s] = -huge;
        node.child[s] = 0;
        node.count[s] = bvhNode::emptySlot;
        continue;
      }
      const binaryNode& b = tree[slots[s]];
      for (int k = 0; k < 3; ++k) node.lo[k][s] = b.bounds.lo[k], node.hi[k][s] = b.bounds.hi[k];
      if (b.count != 0) {
        node.child[s] = b.index;
        node.count[s] = std::uint8_t(b.count);
      } else {
        node.count[s] = 0;
        node.child[s] = std::uint32_t(nodes.size());
        pending.push_back({slots[s], std::uint32_t(nodes.size())});
        nodes.emplace_back();  // invalidates `node`, which is taken afresh each slot
      }
    }
  }
}

}  // namespace

void adviseHugePages(const void* data, std::size_t bytes) {
#if defined(__linux__)
  constexpr std::uintptr_t huge = std::uintptr_t(2) << 20;
  const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(data) + huge - 1) & ~(huge - 1);
  const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(data) + bytes) & ~(huge - 1);
  // Only advice: a system without huge pages refuses it and nothing changes.
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
  (void)data, (void)bytes;
#endif
}

void buildBvh(std::vector<bvhPrimitive>& prims, std::vector<std::uint32_t>& ids,
              unsigned int leafSize, std::vector<bvhNode>& nodes) {
  nodes.clear();
  if (prims.empty()) return;
  leafSize = std::min(std::max(leafSize, 1u), bvhMaxLeafSize);
  std::vector<binaryNode> tree;
  buildBinary(prims, ids, leafSize, tree);
  collapse(tree, nodes);
}

}  // namespace INTERNAL
}  // namespace MATH
}  // namespace JEV
