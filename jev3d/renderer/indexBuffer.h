#pragma once

#include <cstdint>
#include <vector>

namespace JEV {
namespace RENDERING {

class renderGL;

// The device handle of an index list: a device name, or the indices in client memory,
// 16 or 32 bits wide. A copy copies the name, not the device object.
class indexBuffer {
 public:
  enum INDEX_TYPE { INDEX_16 = 0, INDEX_32 = 1 };

  indexBuffer() = default;
  virtual ~indexBuffer() = default;

  unsigned getIndexNumber() const { return indexCount; }
  unsigned getName() const { return name; }
  INDEX_TYPE getIndexType() const { return INDEX_TYPE(indexType); }
  const std::vector<uint8_t>& getData() const { return data; }

 private:
  friend class renderGL;

  void setData(unsigned bytes, const void* source);
  void clearData();

  unsigned name = 0;
  uint32_t indexType = INDEX_32;
  uint32_t indexCount = 0;
  std::vector<uint8_t> data;
};

}  // namespace RENDERING
}  // namespace JEV
