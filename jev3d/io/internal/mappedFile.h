#pragma once

#include <cstddef>
#include <string>

namespace JEV {
namespace IO {

// A whole file mapped read-only into memory. Readers parse straight from the mapping, so
// reading costs no copy and no memory beyond the file's own pages.
class mappedFile {
 public:
  mappedFile() = default;
  ~mappedFile();
  mappedFile(const mappedFile&) = delete;
  mappedFile& operator=(const mappedFile&) = delete;

  // Maps the file at a UTF-8 path. False when it does not open or is not a regular file.
  // An empty file opens with size 0.
  bool open(const std::string& path);
  void close();

  const unsigned char* data() const { return bytes; }
  size_t size() const { return length; }
  const unsigned char* end() const { return bytes + length; }

 private:
  const unsigned char* bytes = nullptr;
  size_t length = 0;
  void* mapping = nullptr;
};

}  // namespace IO
}  // namespace JEV
