#include "jev3d/platform/platform.h"

#include <atomic>

#include "jev3d/platform/sdlPlatform.h"

namespace JEV {
namespace PLATFORM {

namespace {

std::atomic<platform*> installed{nullptr};

}  // namespace

platform& current() {
  if (platform* p = installed.load()) return *p;
  // Made on first use, so that a process that never opens a window never starts SDL.
  static sdlPlatform sdl;
  return sdl;
}

void setCurrent(platform* p) { installed.store(p); }

}  // namespace PLATFORM
}  // namespace JEV
