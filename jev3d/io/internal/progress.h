#pragma once

#include <cstddef>

namespace JEV {
namespace SYSTEM {
class callBack;
}

namespace IO {

// The progress rule of the file readers and writers: open at 1, every 5000th step the
// percent of the loop mapped into [from, from + span], raised to 1 when it would be 0 and
// sent only when it differs from the callback's value, close at 100. A null callback is
// allowed.
class progress {
 public:
  explicit progress(SYSTEM::callBack* target) : cb(target) {}
  ~progress() { close(); }
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;

  void open();
  // Reports step i of count, when i is a multiple of `every` or when not onlyEvery.
  void step(size_t i, size_t count, float from, float span, bool onlyEvery = true);
  void close();

  static constexpr size_t every = 5000;

 private:
  SYSTEM::callBack* cb;
  bool closed = false;
};

}  // namespace IO
}  // namespace JEV
