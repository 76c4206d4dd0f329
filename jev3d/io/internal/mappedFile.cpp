#include "jev3d/io/internal/mappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace JEV {
namespace IO {

mappedFile::~mappedFile() { close(); }

bool mappedFile::open(const std::string& path) {
  close();
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat info;
  if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(fd);
    return false;
  }
  length = size_t(info.st_size);
  if (length == 0) {
    ::close(fd);
    static const unsigned char none = 0;
    bytes = &none;
    return true;
  }
  // Populating at once costs less than taking a fault every few pages while parsing.
  void* m = mmap(nullptr, length, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
  ::close(fd);
  if (m == MAP_FAILED) {
    length = 0;
    return false;
  }
  madvise(m, length, MADV_SEQUENTIAL);
  mapping = m;
  bytes = static_cast<const unsigned char*>(m);
  return true;
}

void mappedFile::close() {
  if (mapping) munmap(mapping, length);
  mapping = nullptr;
  bytes = nullptr;
  length = 0;
}

}  // namespace IO
}  // namespace JEV
