#include "jev3d/system/threadJob.h"

#include <thread>

namespace JEV {
namespace SYSTEM {

namespace {

unsigned hardwareThreads() {
  const unsigned n = std::thread::hardware_concurrency();
  return n ? n : 1;
}

}  // namespace

threadJob::threadJob() : threadCount(hardwareThreads()) {}

threadJob::threadJob(const sharedPointer<delegate>& d)
    : jobDelegate(d), threadCount(hardwareThreads()) {}

threadJob::~threadJob() { wait(); }

bool threadJob::execute(bool waitForAll) {
  // A run left open by execute(false) is finished first: its threads still use the events.
  wait();
  events.resize(threadCount);
  threads.assign(threadCount, nullptr);
  for (event*& e : events) e = new event(true);

  for (job* j : jobs) {
    const int slot = event::waitForAny(events);
    thread*& occupant = threads[static_cast<size_t>(slot)];
    if (occupant) {
      // Its job is done: the thread is only returning.
      occupant->join();
      delete occupant;
    }
    occupant =
        new thread(makeDelegate1(this, &threadJob::delegateSingleJob, static_cast<void*>(j)));
    j->setDoneEvent(events[static_cast<size_t>(slot)]);
    events[static_cast<size_t>(slot)]->reset();
    occupant->resume();
  }

  if (waitForAll) wait();
  return true;
}

void threadJob::wait() {
  if (events.empty()) return;
  event::waitForAll(events);
  for (thread* t : threads) {
    if (t) t->join();
    delete t;
  }
  for (event* e : events) delete e;
  events.clear();
  threads.clear();
}

void threadJob::delegateSingleJob(void* j) {
  if (jobDelegate.get()) jobDelegate->invoke(j);
  static_cast<job*>(j)->getDoneEvent()->set();
}

}  // namespace SYSTEM
}  // namespace JEV
