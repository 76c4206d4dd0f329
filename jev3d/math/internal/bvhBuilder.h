#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace JEV {
namespace MATH {
namespace INTERNAL {

// Box of one primitive handed to the builder. The fourth lanes are 0: they make both
// halves four floats wide for the vector units.
struct alignas(32) bvhPrimitive {
  float lo[4];
  float hi[4];
};

// One node of the 4-wide hierarchy that queries walk. The boxes of the (up to) four
// children are stored by axis, so that one pass of vector instructions tests all four.
struct alignas(64) bvhNode {
  float lo[3][4];
  float hi[3][4];
  std::uint32_t child[4];  // inner child: node index; leaf: first primitive in leaf order
  std::uint8_t count[4];   // 0 for an inner child, the primitives of a leaf, or emptySlot
  std::uint8_t pad[12];

  static constexpr std::uint8_t emptySlot = 0xFF;
};
static_assert(sizeof(bvhNode) == 128, "a node is two cache lines");

// Deepest tree the builder makes; traversals size their stacks from it.
constexpr unsigned int bvhMaxDepth = 64;

// Largest leaf the builder makes, whatever it is asked: bigger leaves only slow queries.
constexpr unsigned int bvhMaxLeafSize = 16;

// Asks the system to back the whole pages of [data, data + bytes) with huge pages when it
// first touches them. Queries jump about arrays of tens of megabytes, and with 4 KB pages
// nearly every step would also miss the address cache.
void adviseHugePages(const void* data, std::size_t bytes);

// Reserves room for n elements, advised for huge pages before anything touches it.
template <class T>
void reserveOnHugePages(std::vector<T>& v, std::size_t n) {
  v.reserve(n);
  adviseHugePages(v.data(), v.capacity() * sizeof(T));
}

// Builds a hierarchy over the primitives with at most leafSize primitives in a leaf, by a
// binned surface area heuristic on the centroids. The primitives and their ids (one per
// primitive, carried along) are reordered in place into the leaf order. Node 0 is the
// root. No primitives give no nodes.
void buildBvh(std::vector<bvhPrimitive>& primitives, std::vector<std::uint32_t>& ids,
              unsigned int leafSize, std::vector<bvhNode>& nodes);

}  // namespace INTERNAL
}  // namespace MATH
}  // namespace JEV
