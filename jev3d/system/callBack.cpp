#include "jev3d/system/callBack.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace JEV {
namespace SYSTEM {

namespace {

constexpr long DEFAULT_TIMEOUT_MS = 5000;

std::atomic<interprocessSender>& installedSender() {
  static std::atomic<interprocessSender> sender{nullptr};
  return sender;
}

float clampPercent(float percent) { return std::clamp(percent, 0.0f, 100.0f); }

}  // namespace

callBack::callBack() : callBack(CALLBACK_UNSYNCHRONISED, 0.0f, 0.0f, 100.0f) {}

callBack::callBack(CALLBACK_ACCESS_MODE mode, float v, float minV, float maxV)
    : value(v), minValue(minV), maxValue(maxV), accessMode(mode) {}

void callBack::setInterprocessSender(interprocessSender sender) { installedSender() = sender; }

bool callBack::incrementOf(float percent) {
  if (accessMode != CALLBACK_UNSYNCHRONISED) return syncIncrementOf(percent, DEFAULT_TIMEOUT_MS);
  return report(step::INCREMENT, percent, -1);
}

bool callBack::setValue(float percent) {
  if (accessMode != CALLBACK_UNSYNCHRONISED) return syncSetValue(percent, DEFAULT_TIMEOUT_MS);
  return report(step::SET, percent, -1);
}

bool callBack::syncIncrementOf(float percent, long timeOut) {
  return report(step::INCREMENT, percent, std::max(timeOut, 0L));
}

bool callBack::syncSetValue(float percent, long timeOut) {
  return report(step::SET, percent, std::max(timeOut, 0L));
}

bool callBack::report(step kind, float percent, long timeOut) {
  const bool locked = timeOut >= 0;
  if (locked && lock.wait(static_cast<unsigned long>(timeOut)) != WAIT_OBJECT_0) return false;
  const float low = minValue.cV();
  const float high = maxValue.cV();
  const float p = clampPercent(percent);
  if (kind == step::SET) {
    value.setValue((high - low) * p / 100.0f + low);
  } else {
    const float next = p / 100.0f * (high - low) + low + value.cV();
    value.setValue(std::clamp(next, std::min(low, high), std::max(low, high)));
  }
  if (locked) lock.release();
  if (onChange.get()) onChange->invoke();
  sendInterprocessMessage();
  return true;
}

void callBack::sendInterprocessMessage() {
  if (!targetWindow) return;
  const float v = value.cV();
  std::memcpy(&record.value, &v, sizeof v);
  record.id = static_cast<uint32_t>(ipcId);
  record.echo = static_cast<uint32_t>(ipcEcho);
  if (interprocessSender sender = installedSender()) sender(targetWindow, record);
}

}  // namespace SYSTEM
}  // namespace JEV
