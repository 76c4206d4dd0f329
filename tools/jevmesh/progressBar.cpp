#include "progressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "jev3d/system/delegate.h"

namespace JEVMESH {

progressBar::progressBar(std::string l, bool quiet)
    : label(std::move(l)), shown(!quiet && isatty(STDERR_FILENO)) {
  progress.onChange = JEV::SYSTEM::makeDelegate(this, &progressBar::draw);
}

progressBar::~progressBar() { finish(); }

void progressBar::draw() {
  const int percent = std::clamp(int(progress.value.cV()), 0, 100);
  if (percent == lastDrawn) return;  // reports come far more often than the bar moves
  lastDrawn = percent;
  constexpr int width = 40;
  const int filled = percent * width / 100;
  std::fprintf(stderr, "\r%s [%.*s%*s] %3d%%", label.c_str(), filled,
               "########################################", width - filled, "", percent);
  std::fflush(stderr);
}

void progressBar::finish() {
  if (shown && lastDrawn >= 0) std::fputc('\n', stderr);
  lastDrawn = -1;
  shown = false;
}

}  // namespace JEVMESH
