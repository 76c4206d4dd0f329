#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/renderer/vertexDeclaration.h"

namespace JEV {
namespace RENDERING {

class renderGL;

// The device handles of a vertex set: one stream a component of the declaration, each
// with its device name (hardware buffers) or its bytes (client memory) and its element
// count, so that positions, normals, colours and coordinates can be replaced one by one.
// A copy copies names and pointers, not device objects: whoever holds a copy must not
// discard it.
class vertexBuffer {
 public:
  explicit vertexBuffer(int mask = 0);
  virtual ~vertexBuffer() = default;

  // Takes the declaration of `mask` and sizes every stream, all empty. False for an empty
  // mask.
  bool setMaskComponent(int mask);
  // The element count of the component's stream, 0xFFFFFFFF when absent.
  unsigned getNum(vertexDeclaration::VERTEX_COMPONENTS component) const;
  const vertexDeclaration& getDeclaration() const { return declaration; }
  unsigned getStreamCount() const { return unsigned(names.size()); }
  unsigned getName(unsigned stream) const { return names[stream]; }
  const std::vector<uint8_t>& getData(unsigned stream) const { return data[stream]; }

 private:
  friend class renderGL;

  // Replaces the stream's bytes by a copy of `bytes` bytes at `source`.
  void setData(unsigned stream, unsigned bytes, const void* source);
  void clearData(unsigned stream);

  std::vector<unsigned> names;
  std::vector<void*> pointers;
  std::vector<std::vector<uint8_t>> data;
  std::vector<unsigned> counts;
  vertexDeclaration declaration;
};

}  // namespace RENDERING
}  // namespace JEV
