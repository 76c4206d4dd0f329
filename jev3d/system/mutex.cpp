#include "jev3d/system/mutex.h"

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/system/internal/lockFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <mutex>
#include <thread>

namespace JEV {
namespace SYSTEM {

struct mutex::handleData {
  // Threads of this process are excluded by `local`; other processes by the file lock.
  std::timed_mutex local;
  int fd = -1;  // named form only
  // The owner may take the lock again, so recursion is counted here; a release by
  // any other thread is refused.
  std::mutex ownerLock;
  std::thread::id owner;
  int depth = 0;
};

mutex::mutex(bool doCreate) {
  if (doCreate) create();
}

mutex::mutex(const std::wstring& n) { create(n); }

mutex::mutex(const std::string& n) : mutex(IO::XML::utf8ToWstring(n)) {}

mutex::~mutex() { destroy(); }

bool mutex::create() {
  destroy();
  handle = new handleData;
  return true;
}

bool mutex::create(const std::wstring& n) {
  destroy();
  name = n;
  int fd = ::open(INTERNAL::lockFilePath(n, "mutex").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  handle = new handleData;
  handle->fd = fd;
  return true;
}

void mutex::destroy() {
  if (!handle) return;
  if (handle->fd >= 0) ::close(handle->fd);  // also drops a held lock
  delete handle;
  handle = nullptr;
}

unsigned long mutex::wait(unsigned long milliseconds) const {
  if (!handle) return WAIT_FAILED;
  {
    std::lock_guard<std::mutex> g(handle->ownerLock);
    if (handle->depth > 0 && handle->owner == std::this_thread::get_id()) {
      ++handle->depth;
      return WAIT_OBJECT_0;
    }
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  if (milliseconds == INFINITE) {
    handle->local.lock();
  } else if (!handle->local.try_lock_until(deadline)) {
    return WAIT_TIMEOUT;
  }
  // flock has no time-out: poll the non-blocking form.
  while (handle->fd >= 0 && ::flock(handle->fd, LOCK_EX | LOCK_NB) != 0) {
    if (milliseconds != INFINITE && std::chrono::steady_clock::now() >= deadline) {
      handle->local.unlock();
      return WAIT_TIMEOUT;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::lock_guard<std::mutex> g(handle->ownerLock);
  handle->owner = std::this_thread::get_id();
  handle->depth = 1;
  return WAIT_OBJECT_0;
}

bool mutex::release() const {
  if (!handle) return false;
  std::lock_guard<std::mutex> g(handle->ownerLock);
  if (handle->depth == 0 || handle->owner != std::this_thread::get_id()) return false;
  if (--handle->depth == 0) {
    handle->owner = std::thread::id();
    if (handle->fd >= 0) ::flock(handle->fd, LOCK_UN);
    handle->local.unlock();
  }
  return true;
}

}  // namespace SYSTEM
}  // namespace JEV
