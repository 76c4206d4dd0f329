#include "jev3d/renderer/depthOrderingVector.h"

namespace JEV {
namespace RENDERING {

depthOrderingItem& depthOrderingVector::append(std::unique_ptr<depthOrderingItem> item) {
  entry e;
  e.index = int(entries.size());
  e.item = std::move(item);
  entries.push_back(e);
  return *entries.back().item;
}

}  // namespace RENDERING
}  // namespace JEV
