#pragma once

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace JEV {
namespace IO {

// A file written through one large buffer, so that writers can format value by value
// without a library call per value.
class outputFile {
 public:
  outputFile();
  ~outputFile();
  outputFile(const outputFile&) = delete;
  outputFile& operator=(const outputFile&) = delete;

  // Opens (creating or truncating) a UTF-8 path with "wb"; false when it does not open.
  bool open(const std::string& path);
  // Writes into an open stream that the caller keeps and closes.
  void attach(FILE* stream);
  // Flushes and closes what open() opened; false if any write failed.
  bool close();
  // Flushes the buffer to the stream; false if the write failed.
  bool flush();
  bool isOpen() const { return file != nullptr; }

  // Room for at least n bytes at the returned position; commit() what was used.
  char* reserve(size_t n) {
    if (used + n > buffer.size()) {
      flush();
      if (n > buffer.size()) buffer.resize(n);
    }
    return buffer.data() + used;
  }
  void commit(char* endOfWritten) { used = size_t(endOfWritten - buffer.data()); }
  void put(const void* bytes, size_t n) {
    std::memcpy(reserve(n), bytes, n);
    used += n;
  }
  void put(const char* text) { put(text, std::strlen(text)); }
  void put(const std::string& text) { put(text.data(), text.size()); }

 private:
  FILE* file = nullptr;
  bool owned = false;
  bool failed = false;
  std::vector<char> buffer;
  size_t used = 0;
};

}  // namespace IO
}  // namespace JEV
