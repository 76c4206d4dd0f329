#pragma once

#include <cstddef>
#include <vector>

namespace JEV {
namespace IO {

// Asks the system to back the 2 MB-aligned inside of a large block with huge pages. A
// reader fills tens of megabytes of fresh arrays: first touching them 2 MB at a time costs
// a fraction of touching them 4 KB at a time. Advisory; does nothing for small blocks.
void adviseHugePages(const void* data, size_t bytes);

// reserve() for an array that a reader is about to fill.
template <class T>
void reserveLarge(std::vector<T>& v, size_t n) {
  v.reserve(n);
  adviseHugePages(v.data(), v.capacity() * sizeof(T));
}

}  // namespace IO
}  // namespace JEV
