#include "jev3d/system/limitSingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/system/internal/lockFile.h"

namespace JEV {
namespace SYSTEM {

limitSingleInstance::~limitSingleInstance() { setOff(); }

void limitSingleInstance::setOn(const std::wstring& name) {
  setOff();
  const std::string path = INTERNAL::lockFilePath(name, "instance");
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) {
    lastError = static_cast<uint32_t>(errno);
    return;
  }
  // Whoever gets the exclusive lock is alone; everyone then keeps a shared hold, so the
  // name stays taken while any instance lives, as a named system object would.
  if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
    lastError = 0;
  } else if (errno == EWOULDBLOCK) {
    lastError = ERROR_ALREADY_EXISTS;
  } else {
    lastError = static_cast<uint32_t>(errno);
    ::close(fd);
    return;
  }
  // Another starter may hold the exclusive lock for an instant while it probes.
  for (int attempt = 0; ::flock(fd, LOCK_SH | LOCK_NB) != 0 && attempt < 100; ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  handle = fd;
}

void limitSingleInstance::setOn(const std::string& name) { setOn(IO::XML::utf8ToWstring(name)); }

void limitSingleInstance::setOff() {
  if (handle >= 0) ::close(handle);
  handle = -1;
}

}  // namespace SYSTEM
}  // namespace JEV
