#include "jobRunner.h"

#include <algorithm>

namespace EDITOR {

bool jobRunner::reporter::setValue(float p) {
  percent = std::clamp(p, 0.f, 100.f);
  return true;
}

bool jobRunner::reporter::incrementOf(float p) {
  percent = std::clamp(percent.load() + p, 0.f, 100.f);
  return true;
}

jobRunner::~jobRunner() {
  if (running) abandoned.push_back(std::move(running));
  for (auto& t : abandoned)
    if (t->thread.joinable()) t->thread.join();
}

bool jobRunner::start(const std::string& label, work w, finish done) {
  if (running) return false;
  running = std::make_unique<task>();
  running->run = std::move(w);
  running->done = std::move(done);
  runningLabel = label;
  task* t = running.get();
  t->thread = std::thread([t] {
    t->ok = t->run(&t->progress, t->message);
    t->ended = true;
  });
  return true;
}

bool jobRunner::poll() {
  abandoned.erase(std::remove_if(abandoned.begin(), abandoned.end(),
                                 [](std::unique_ptr<task>& t) {
                                   if (!t->ended) return false;
                                   t->thread.join();
                                   return true;
                                 }),
                  abandoned.end());
  if (!running || !running->ended) return false;
  running->thread.join();
  std::unique_ptr<task> t = std::move(running);
  t->done(t->ok, t->message);
  return true;
}

bool jobRunner::cancel() {
  if (!running) return false;
  abandoned.push_back(std::move(running));
  return true;
}

float jobRunner::progress() const { return running ? running->progress.percent.load() : 0.f; }

}  // namespace EDITOR
