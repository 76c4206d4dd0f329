#pragma once

#include <string>

#include "jev3d/system/callBack.h"

namespace JEVMESH {

// A progress bar on standard error, fed by a callBack. It draws only when standard error is
// a terminal and the user did not ask for quiet; otherwise reports go nowhere.
class progressBar {
 public:
  progressBar(std::string label, bool quiet);
  ~progressBar();
  progressBar(const progressBar&) = delete;
  progressBar& operator=(const progressBar&) = delete;

  // The reporter to hand to a long operation; null when nothing is drawn.
  JEV::SYSTEM::callBack* reporter() { return shown ? &progress : nullptr; }
  // Ends the bar's line, so that later output starts on a fresh one.
  void finish();

 private:
  void draw();

  JEV::SYSTEM::callBack progress;
  std::string label;
  bool shown;
  int lastDrawn = -1;
};

}  // namespace JEVMESH
