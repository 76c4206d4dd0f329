#pragma once

#include <vector>

#include "jev3d/system/delegate.h"
#include "jev3d/system/event.h"
#include "jev3d/system/job.h"
#include "jev3d/system/sharedPointer.h"
#include "jev3d/system/thread.h"

namespace JEV {
namespace SYSTEM {

// Runs `jobDelegate` once for each of `jobs`, each on a thread of its own, with at most
// `threadCount` at once. Derived classes fill `jobs` and set `jobDelegate`, whose
// function takes the job as its one argument (`void f(job*)` or `void f(void*)`).
// Not reentrant: `execute` and `wait` belong to one controlling thread.
class threadJob {
 public:
  // `threadCount` starts at the hardware's concurrency.
  threadJob();
  explicit threadJob(const sharedPointer<delegate>& jobDelegate);
  // Waits for jobs still running.
  virtual ~threadJob();
  threadJob(const threadJob&) = delete;
  threadJob& operator=(const threadJob&) = delete;

  // How many jobs may run at once; 0 counts as 1.
  void setThreadCount(unsigned count) { threadCount = count ? count : 1; }
  unsigned getThreadCount() const { return threadCount; }

  // Starts the jobs in list order, each as soon as a slot is free (the lowest free slot is
  // taken). With `waitForAll` it returns when all have finished; otherwise it returns
  // after the last has started, and `wait` finishes the run. Always true.
  virtual bool execute(bool waitForAll = true);
  // Waits for the jobs of an `execute(false)`; returns at once when none ran.
  virtual void wait();

 protected:
  // Runs one job on its thread, then sets the job's event.
  void delegateSingleJob(void* job);

  std::vector<job*> jobs;
  sharedPointer<delegate> jobDelegate;
  unsigned threadCount;
  std::vector<event*> events;
  std::vector<thread*> threads;
};

}  // namespace SYSTEM
}  // namespace JEV
