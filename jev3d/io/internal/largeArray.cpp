#include "jev3d/io/internal/largeArray.h"

#include <sys/mman.h>

#include <cstdint>

namespace JEV {
namespace IO {

void adviseHugePages(const void* data, size_t bytes) {
  constexpr uintptr_t huge = uintptr_t(2) << 20;
  if (bytes < 2 * huge) return;
  const uintptr_t first = (reinterpret_cast<uintptr_t>(data) + huge - 1) & ~(huge - 1);
  const uintptr_t last = (reinterpret_cast<uintptr_t>(data) + bytes) & ~(huge - 1);
  if (last > first) madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}

}  // namespace IO
}  // namespace JEV
