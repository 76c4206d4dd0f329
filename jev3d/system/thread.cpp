#include "jev3d/system/thread.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

namespace JEV {
namespace SYSTEM {

struct thread::sharedState {
  std::mutex lock;
  std::condition_variable changed;
  bool suspended = true;
  bool ending = false;
  bool started = false;
  bool finished = false;
  pid_t threadId = 0;
};

namespace {

int niceOf(THREAD_PRIORITY level) {
  switch (level) {
    case PRIORITY_IDLE:
      return 19;
    case PRIORITY_LOWEST:
      return 10;
    case PRIORITY_BELOW_NORMAL:
      return 5;
    case PRIORITY_NORMAL:
      return 0;
    case PRIORITY_ABOVE_NORMAL:
      return -5;
    case PRIORITY_HIGHEST:
      return -10;
    case PRIORITY_TIME_CRITICAL:
      return -20;
  }
  return 0;
}

bool applyPriority(pid_t threadId, THREAD_PRIORITY level) {
  return ::setpriority(PRIO_PROCESS, static_cast<id_t>(threadId), niceOf(level)) == 0;
}

// Named locks of thread::wait(name), one per name for the life of the process, so that
// release(name) finds the lock that wait(name) took.
mutex& namedLock(const std::wstring& name) {
  static std::mutex registryLock;
  static std::map<std::wstring, std::unique_ptr<mutex>> registry;
  std::lock_guard<std::mutex> g(registryLock);
  auto& entry = registry[name];
  if (!entry) entry = std::make_unique<mutex>(name);
  return *entry;
}

}  // namespace

thread::thread(bool doCreate) {
  if (doCreate) create();
}

thread::thread(const sharedPointer<delegate>& d, bool doCreate) : runDelegate(d) {
  if (doCreate) create();
}

thread::~thread() {
  if (!handle.joinable()) return;
  bool reap;
  {
    std::lock_guard<std::mutex> g(state->lock);
    if (!state->started) {
      state->ending = true;
      state->changed.notify_all();
    }
    reap = !state->started || state->finished;
  }
  if (reap && handle.get_id() != std::this_thread::get_id()) {
    handle.join();
  } else {
    handle.detach();
  }
}

void thread::run() {
  if (runDelegate.get()) runDelegate->invoke();
}

void thread::entry(thread* self, std::shared_ptr<sharedState> s) {
  {
    std::unique_lock<std::mutex> l(s->lock);
    s->changed.wait(l, [&] { return !s->suspended || s->ending; });
    if (s->ending) {
      s->finished = true;
      s->changed.notify_all();
      return;
    }
    s->started = true;
    s->threadId = ::gettid();
  }
  if (self->priority != PRIORITY_NORMAL) applyPriority(s->threadId, self->priority);
  self->run();
  // From here on only the shared state is touched: the object may be gone.
  std::lock_guard<std::mutex> g(s->lock);
  s->finished = true;
  s->changed.notify_all();
}

bool thread::create() {
  if (handle.joinable()) return false;
  state = std::make_shared<sharedState>();
  handle = std::thread(&thread::entry, this, state);
  return true;
}

bool thread::isCreate() const { return handle.joinable(); }

std::thread::native_handle_type thread::getHandleThread() const {
  return handle.joinable() ? const_cast<std::thread&>(handle).native_handle()
                           : std::thread::native_handle_type();
}

uint32_t thread::getThreadId() const {
  if (!state) return 0;
  std::lock_guard<std::mutex> g(state->lock);
  return static_cast<uint32_t>(state->threadId);
}

bool thread::postThreadMessage(unsigned, uint64_t, int64_t) { return false; }

void thread::sleep(long milliseconds) {
  if (milliseconds > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

bool thread::setPriority(THREAD_PRIORITY level) {
  priority = level;
  const uint32_t id = getThreadId();
  return id == 0 || applyPriority(static_cast<pid_t>(id), level);
}

bool thread::suspend() {
  if (!state) return false;
  std::lock_guard<std::mutex> g(state->lock);
  if (state->suspended) return false;
  state->suspended = true;
  return true;
}

bool thread::resume() {
  if (!state) return false;
  std::lock_guard<std::mutex> g(state->lock);
  if (!state->suspended) return false;
  state->suspended = false;
  state->changed.notify_all();
  return true;
}

bool thread::isSuspend() const {
  if (!state) return true;
  std::lock_guard<std::mutex> g(state->lock);
  return state->suspended;
}

bool thread::waitWhileSuspended() const {
  if (!state) return false;
  std::unique_lock<std::mutex> l(state->lock);
  state->changed.wait(l, [&] { return !state->suspended || state->ending; });
  return !state->ending;
}

void thread::requestEnd() {
  if (!state) return;
  std::lock_guard<std::mutex> g(state->lock);
  state->ending = true;
  state->changed.notify_all();
}

bool thread::join(unsigned long milliseconds) {
  if (!handle.joinable() || handle.get_id() == std::this_thread::get_id()) return false;
  {
    std::unique_lock<std::mutex> l(state->lock);
    auto done = [&] { return state->finished; };
    if (milliseconds == INFINITE) {
      state->changed.wait(l, done);
    } else if (!state->changed.wait_for(l, std::chrono::milliseconds(milliseconds), done)) {
      return false;
    }
  }
  handle.join();
  return true;
}

bool thread::wait(const mutex& lock, long milliseconds) {
  const unsigned long limit =
      milliseconds < 0 ? INFINITE : static_cast<unsigned long>(milliseconds);
  return lock.wait(limit) == WAIT_OBJECT_0;
}

bool thread::wait(const std::wstring& name, long milliseconds) {
  return wait(namedLock(name), milliseconds);
}

bool thread::release(const mutex& lock) { return lock.release(); }

bool thread::release(const std::wstring& name) { return namedLock(name).release(); }

}  // namespace SYSTEM
}  // namespace JEV
