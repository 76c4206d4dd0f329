#include "jev3d/io/internal/progress.h"

#include "jev3d/system/callBack.h"

namespace JEV {
namespace IO {

namespace {
void send(SYSTEM::callBack* cb, float percent, bool onlyIfChanged) {
  if (!cb || (onlyIfChanged && float(cb->value) == percent)) return;
  cb->setValue(percent);
}
}  // namespace

void progress::open() {
  closed = false;
  send(cb, 1.0f, false);
}

void progress::step(size_t i, size_t count, float from, float span, bool onlyEvery) {
  if (!cb || count == 0 || (onlyEvery && i % every != 0)) return;
  float percent = float(double(i) * span / double(count)) + from;
  if (int(percent) == 0) percent = 1.0f;
  send(cb, float(int(percent)), true);
}

void progress::close() {
  if (closed) return;
  closed = true;
  send(cb, 100.0f, false);
}

}  // namespace IO
}  // namespace JEV
