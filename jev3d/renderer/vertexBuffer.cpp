#include "jev3d/renderer/vertexBuffer.h"

#include <cstring>

namespace JEV {
namespace RENDERING {

vertexBuffer::vertexBuffer(int mask) { setMaskComponent(mask); }

bool vertexBuffer::setMaskComponent(int mask) {
  declaration.clear();
  declaration.setMaskComponent(mask);
  const size_t streams = declaration.getComponentCount();
  names.assign(streams, 0);
  pointers.assign(streams, nullptr);
  data.assign(streams, {});
  counts.assign(streams, 0);
  return mask != 0;
}

unsigned vertexBuffer::getNum(vertexDeclaration::VERTEX_COMPONENTS component) const {
  const unsigned stream = declaration.getVertexComponentPosition(component);
  return stream < counts.size() ? counts[stream] : 0xFFFFFFFFu;
}

void vertexBuffer::setData(unsigned stream, unsigned bytes, const void* source) {
  data[stream].assign(static_cast<const uint8_t*>(source),
                      static_cast<const uint8_t*>(source) + bytes);
  pointers[stream] = data[stream].data();
}

void vertexBuffer::clearData(unsigned stream) {
  std::vector<uint8_t>().swap(data[stream]);
  pointers[stream] = nullptr;
}

}  // namespace RENDERING
}  // namespace JEV
