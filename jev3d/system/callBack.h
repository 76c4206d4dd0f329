#pragma once

#include <cstdint>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/mutex.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {

// 0 is for one thread; any other mode takes the reporter's lock on every report.
enum CALLBACK_ACCESS_MODE { CALLBACK_UNSYNCHRONISED = 0, CALLBACK_SYNCHRONISED = 1 };

// The record a reporter sends to another process after each report: three 32-bit words in
// the machine's byte order, 12 bytes in all.
struct interprocessRecord {
  uint32_t value;  // the bits of the float `value`
  uint32_t id;
  uint32_t echo;
};
static_assert(sizeof(interprocessRecord) == 12, "the record is 12 bytes on the wire");

// Delivers a record to `target`, synchronously. The platform binding installs one; with
// none installed, records go nowhere.
using interprocessSender = void (*)(void* target, const interprocessRecord& record);

// The progress reporter handed to long operations, by pointer, possibly null. They call
// `setValue` with a percentage (0 or 1 first, 100 last); `value` then holds that share of
// the range from `minValue` to `maxValue`, and observers hear of it through the field,
// `onChange`, and the record sent to a target process, in that order.
class callBack {
 public:
  callBack();
  callBack(CALLBACK_ACCESS_MODE mode, float value, float minValue, float maxValue);
  virtual ~callBack() = default;
  callBack(const callBack&) = delete;
  callBack& operator=(const callBack&) = delete;

  // Adds `percent` (clamped to 0..100) of the range to `value`, plus `minValue` (kept on
  // purpose; nothing in the usual range that starts at 0), and clamps the result to the
  // range. Synchronised modes go through syncIncrementOf with 5000 ms. False only when
  // the lock was not had in time.
  virtual bool incrementOf(float percent);
  // Sets `value` to `percent` (clamped to 0..100) of the range. Synchronised modes go
  // through syncSetValue with 5000 ms. False only when the lock was not had in time.
  virtual bool setValue(float percent);
  // The same under the lock, waiting for it at most `timeOut` ms; false, with the value
  // unchanged, when that fails. The lock is released before `onChange` runs.
  virtual bool syncIncrementOf(float percent, long timeOut);
  virtual bool syncSetValue(float percent, long timeOut);
  // Sends the record (value bits, id, echo) to the target, when one is set.
  virtual void sendInterprocessMessage();

  void setAccessMode(CALLBACK_ACCESS_MODE mode) { accessMode = mode; }
  CALLBACK_ACCESS_MODE getAccessMode() const { return accessMode; }
  // The process to report to, as the platform binding names it (null for none).
  void setInterprocessCommunicationsHandle(void* target) { targetWindow = target; }
  void setInterprocessCommunicationsId(unsigned long id) { ipcId = id; }
  void setInterprocessCommunicationsEcho(unsigned long echo) { ipcEcho = echo; }

  // Installs the platform's sender for every reporter (null to remove it).
  static void setInterprocessSender(interprocessSender sender);

  fieldBase<float> value;
  fieldBase<float> minValue;
  fieldBase<float> maxValue;
  // Invoked with no argument after each report.
  sharedPointer<delegate> onChange;

 protected:
  enum class step { SET, INCREMENT };
  // One report: compute, store and notify (under the lock when `timeOut` is not
  // negative), then onChange and the record.
  bool report(step kind, float percent, long timeOut);

  CALLBACK_ACCESS_MODE accessMode = CALLBACK_UNSYNCHRONISED;
  mutex lock;
  interprocessRecord record{};
  void* targetWindow = nullptr;
  unsigned long ipcId = 0;
  unsigned long ipcEcho = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
