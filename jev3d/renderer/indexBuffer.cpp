#include "jev3d/renderer/indexBuffer.h"

namespace JEV {
namespace RENDERING {

void indexBuffer::setData(unsigned bytes, const void* source) {
  data.assign(static_cast<const uint8_t*>(source), static_cast<const uint8_t*>(source) + bytes);
}

void indexBuffer::clearData() { std::vector<uint8_t>().swap(data); }

}  // namespace RENDERING
}  // namespace JEV
