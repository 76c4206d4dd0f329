#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <jev3d/system/callBack.h>

namespace EDITOR {

// Runs one long edit at a time on a thread of its own, so that the window keeps drawing
// and orbiting while it works. The work gets copies of what it reads and a progress
// reporter; the main thread polls for its end and only then applies the result.
//
// The library's algorithms cannot be stopped half way, so cancel abandons the job: the
// interface is free at once, the thread runs to its end in the background and its result
// is thrown away. Nothing of the document is touched by a job.
class jobRunner {
 public:
  // Runs on the job's thread; fills `message` (the status line's text) and says whether
  // the result is to be applied.
  using work = std::function<bool(JEV::SYSTEM::callBack* progress, std::string& message)>;
  // Runs on the main thread, from poll, unless the job was cancelled.
  using finish = std::function<void(bool ok, const std::string& message)>;

  jobRunner() = default;
  // Waits for every thread still running, abandoned ones included.
  ~jobRunner();
  jobRunner(const jobRunner&) = delete;
  jobRunner& operator=(const jobRunner&) = delete;

  // False, starting nothing, while another job runs.
  bool start(const std::string& label, work w, finish done);
  // Delivers the end of the running job, if it has ended; true when it did. Also reaps
  // abandoned threads that are done.
  bool poll();
  // Abandons the running job; false when none runs.
  bool cancel();
  bool isBusy() const { return running != nullptr; }
  // The running job's progress, 0 to 100.
  float progress() const;
  const std::string& label() const { return runningLabel; }

 private:
  // Progress reports land in an atomic, read by the main thread.
  class reporter : public JEV::SYSTEM::callBack {
   public:
    bool setValue(float percent) override;
    bool incrementOf(float percent) override;
    std::atomic<float> percent{0.f};
  };
  struct task {
    work run;
    finish done;
    reporter progress;
    std::atomic<bool> ended{false};
    bool ok = false;
    std::string message;
    std::thread thread;
  };

  std::unique_ptr<task> running;
  std::string runningLabel;
  std::vector<std::unique_ptr<task>> abandoned;
};

}  // namespace EDITOR
