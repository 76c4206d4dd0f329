#include "jev3d/fields/fieldDelegates.h"

namespace JEV {
namespace SYSTEM {

namespace {

// Holds `lock` when there is one.
class optionalLock {
 public:
  explicit optionalLock(const mutex* lock) : held(lock) {
    if (held) held->wait(INFINITE);
  }
  ~optionalLock() {
    if (held) held->release();
  }
  optionalLock(const optionalLock&) = delete;
  optionalLock& operator=(const optionalLock&) = delete;

 private:
  const mutex* held;
};

}  // namespace

fieldDelegates::fieldDelegates(const fieldDelegates&) {}

fieldDelegates& fieldDelegates::operator=(const fieldDelegates&) { return *this; }

fieldDelegates::~fieldDelegates() {
  delete delegateMutex;
  delegateMutex = nullptr;
}

void fieldDelegates::registerEventOnChangeValue(const sharedPointer<delegate>& d) {
  optionalLock guard(delegateMutex);
  delegates.push_back(d);
}

void fieldDelegates::removeEventOnChangeValue(const sharedPointer<delegate>& d) {
  optionalLock guard(delegateMutex);
  for (auto it = delegates.begin(); it != delegates.end(); ++it) {
    if (sameDelegate(*it, d)) {
      delegates.erase(it);
      return;
    }
  }
}

int fieldDelegates::getDelegatesCount() const {
  optionalLock guard(delegateMutex);
  return static_cast<int>(delegates.size());
}

void fieldDelegates::setMultiThreadingDelegate() {
  if (!delegateMutex) delegateMutex = new mutex(true);
}

std::weak_ptr<void> fieldDelegates::getLifeToken() {
  if (!life) life = std::make_shared<char>(0);
  return life;
}

void fieldDelegates::invokeOwnDelegatesCopied() const {
  std::vector<sharedPointer<delegate>> copy;
  {
    // Copied under the lock too: the copy touches every holder's count.
    optionalLock guard(delegateMutex);
    if (delegates.empty()) return;
    copy = delegates;
  }
  for (const auto& d : copy) {
    if (!d.isNull()) d->invoke();
  }
}

}  // namespace SYSTEM
}  // namespace JEV
