#include "jev3d/io/internal/outputFile.h"

namespace JEV {
namespace IO {

outputFile::outputFile() : buffer(size_t(1) << 20) {}

outputFile::~outputFile() { close(); }

bool outputFile::open(const std::string& path) {
  close();
  file = std::fopen(path.c_str(), "wb");
  owned = true;
  failed = false;
  return file != nullptr;
}

void outputFile::attach(FILE* stream) {
  close();
  file = stream;
  owned = false;
  failed = false;
}

bool outputFile::flush() {
  if (used && file && std::fwrite(buffer.data(), 1, used, file) != used) failed = true;
  used = 0;
  return !failed;
}

bool outputFile::close() {
  if (!file) return !failed;
  flush();
  if (owned) {
    if (std::fclose(file) != 0) failed = true;
  } else if (std::fflush(file) != 0) {
    failed = true;
  }
  file = nullptr;
  return !failed;
}

}  // namespace IO
}  // namespace JEV
