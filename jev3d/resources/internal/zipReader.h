#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace JEV {
namespace CORE {
namespace INTERNAL {

// Reads named files out of a ZIP archive held in memory, through minizip. The archive is
// untrusted: a damaged directory, a missing name, a bad CRC or an entry larger than
// `maxEntry` gives false and a message in `error`.
class zipReader {
 public:
  static constexpr size_t maxEntry = size_t(64) << 20;

  zipReader(const unsigned char* data, size_t size);
  ~zipReader();
  zipReader(const zipReader&) = delete;
  zipReader& operator=(const zipReader&) = delete;

  // False when the archive could not be opened; see error().
  bool isOpen() const { return handle != nullptr; }
  // The whole file `name` (case-sensitive) into `bytes`.
  bool read(const std::string& name, std::vector<unsigned char>& bytes);
  // The names of all files, in directory order; false on a damaged directory.
  bool names(std::vector<std::string>& out);
  const std::string& error() const { return message; }

  // minizip's view of the memory: position and bounds.
  struct memoryFile {
    const unsigned char* data = nullptr;
    size_t size = 0;
    size_t position = 0;
  };

 private:
  memoryFile file;
  void* handle = nullptr;
  std::string message;
};

}  // namespace INTERNAL
}  // namespace CORE
}  // namespace JEV
