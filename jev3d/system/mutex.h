#pragma once

#include <atomic>
#include <string>

namespace JEV {
namespace SYSTEM {

// Results of mutex::wait, with the values of the Win32 wait functions.
constexpr unsigned long WAIT_OBJECT_0 = 0x0;
constexpr unsigned long WAIT_ABANDONED = 0x80;
constexpr unsigned long WAIT_TIMEOUT = 0x102;
constexpr unsigned long WAIT_FAILED = 0xFFFFFFFFul;
// Timeout that never expires.
constexpr unsigned long INFINITE = 0xFFFFFFFFul;

// A lock, unnamed or named; either may be taken again by the thread that owns it. A named
// mutex is one lock for every process that opens the same name: it is an advisory lock on a
// file in the temporary directory, which the system drops when the holding process dies, so
// a crash never leaves it locked. An unnamed mutex allocates nothing until it is first
// taken: a window holds a lock for each of its 65,536 key fields, and few are ever used.
class mutex {
 public:
  explicit mutex(bool create = true);
  explicit mutex(const std::wstring& name);
  explicit mutex(const std::string& name);
  virtual ~mutex();
  mutex(const mutex&) = delete;
  mutex& operator=(const mutex&) = delete;

  // Creates the lock; a lock created before is destroyed first. False on failure.
  bool create();
  bool create(const std::wstring& name);
  // The same with a UTF-8 name.
  bool create(const std::string& name);
  void destroy();

  // Waits up to `milliseconds` (INFINITE for ever) to own the lock. Returns
  // WAIT_OBJECT_0 on success, WAIT_TIMEOUT, or WAIT_FAILED when nothing was created.
  unsigned long wait(unsigned long milliseconds) const;
  // Gives the lock back; false when this thread does not own it.
  bool release() const;

  const std::wstring& getName() const { return name; }

 private:
  struct handleData;
  // The lock's state, made on first use when unnamed; null before that.
  handleData* data() const;

  mutable std::atomic<handleData*> handle{nullptr};
  bool created = false;
  std::wstring name;
};

// Holds `lock` for the lifetime of the scope; the lock must have been created.
class scopedLock {
 public:
  explicit scopedLock(const mutex& lock) : held(lock) { held.wait(INFINITE); }
  ~scopedLock() { held.release(); }
  scopedLock(const scopedLock&) = delete;
  scopedLock& operator=(const scopedLock&) = delete;

 private:
  const mutex& held;
};

}  // namespace SYSTEM
}  // namespace JEV
