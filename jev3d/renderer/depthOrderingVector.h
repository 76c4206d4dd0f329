#pragma once

#include <memory>
#include <vector>

#include "jev3d/renderer/depthOrderingItem.h"

namespace JEV {
namespace RENDERING {

// Meshes collected during a walk to be drawn at its end in passes: those drawn first,
// then blended ones sorted back to front, then those drawn last (see
// renderer::renderDepthOrdering). Each entry keeps its insertion index.
class depthOrderingVector {
 public:
  struct entry {
    int index = 0;  // length of the sequence at insertion
    std::shared_ptr<depthOrderingItem> item;
  };

  depthOrderingVector() = default;
  // A copy shares the items with its source; the last vector holding an item frees it.
  depthOrderingVector(const depthOrderingVector&) = default;
  depthOrderingVector& operator=(const depthOrderingVector&) = default;
  virtual ~depthOrderingVector() = default;

  // Appends `item`, taking it over, with its index.
  depthOrderingItem& append(std::unique_ptr<depthOrderingItem> item);
  void clear() { entries.clear(); }
  int size() const { return int(entries.size()); }
  bool empty() const { return entries.empty(); }
  entry& operator[](int i) { return entries[size_t(i)]; }
  const entry& operator[](int i) const { return entries[size_t(i)]; }

 private:
  std::vector<entry> entries;
};

}  // namespace RENDERING
}  // namespace JEV
