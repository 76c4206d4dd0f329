#pragma once

#include "jev3d/system/event.h"

namespace JEV {
namespace SYSTEM {

// A unit of work for threadJob; derived classes carry the data. The runner stores in it
// the event that tells the job is finished.
class job {
 public:
  job() = default;
  virtual ~job() = default;

  event* getDoneEvent() const { return doneEvent; }
  void setDoneEvent(event* e) { doneEvent = e; }

 private:
  event* doneEvent = nullptr;
};

}  // namespace SYSTEM
}  // namespace JEV
