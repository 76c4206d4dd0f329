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
  created = true;
  return true;
}

bool mutex::create(const std::wstring& n) {
  destroy();
  name = n;
  int fd = ::open(INTERNAL::lockFilePath(n, "mutex").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  handleData* h = new handleData;
  h->fd = fd;
  handle.store(h);
  created = true;
  return true;
}

bool mutex::create(const std::string& n) { return create(IO::XML::utf8ToWstring(n)); }

void mutex::destroy() {
  created = false;
  handleData* h = handle.exchange(nullptr);
  if (!h) return;
  if (h->fd >= 0) ::close(h->fd);  // also drops a held lock
  delete h;
}

mutex::handleData* mutex::data() const {
  if (!created) return nullptr;
  handleData* h = handle.load(std::memory_order_acquire);
  if (h) return h;
  // Two threads may race to make it; the loser's copy goes.
  handleData* fresh = new handleData;
  if (handle.compare_exchange_strong(h, fresh, std::memory_order_acq_rel)) return fresh;
  delete fresh;
  return h;
}

unsigned long mutex::wait(unsigned long milliseconds) const {
  handleData* h = data();
  if (!h) return WAIT_FAILED;
  {
    std::lock_guard<std::mutex> g(h->ownerLock);
    if (h->depth > 0 && h->owner == std::this_thread::get_id()) {
      ++h->depth;
      return WAIT_OBJECT_0;
    }
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  if (milliseconds == INFINITE) {
    h->local.lock();
  } else if (!h->local.try_lock_until(deadline)) {
    return WAIT_TIMEOUT;
  }
  // flock has no time-out: poll the non-blocking form.
  while (h->fd >= 0 && ::flock(h->fd, LOCK_EX | LOCK_NB) != 0) {
    if (milliseconds != INFINITE && std::chrono::steady_clock::now() >= deadline) {
      h->local.unlock();
      return WAIT_TIMEOUT;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::lock_guard<std::mutex> g(h->ownerLock);
  h->owner = std::this_thread::get_id();
  h->depth = 1;
  return WAIT_OBJECT_0;
}

bool mutex::release() const {
  // Never taken means not owned.
  handleData* h = handle.load(std::memory_order_acquire);
  if (!h) return false;
  std::lock_guard<std::mutex> g(h->ownerLock);
  if (h->depth == 0 || h->owner != std::this_thread::get_id()) return false;
  if (--h->depth == 0) {
    h->owner = std::thread::id();
    if (h->fd >= 0) ::flock(h->fd, LOCK_UN);
    h->local.unlock();
  }
  return true;
}

}  // namespace SYSTEM
}  // namespace JEV
