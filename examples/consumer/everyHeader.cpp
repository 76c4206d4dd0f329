// Every installed header in one translation unit, and a call into each library that
// needs no display.
#include "everyInstalledHeader.h"

#include <jev3d/math/matrix4.h>
#include <jev3d/platform/scriptedPlatform.h>

using namespace JEV;

int main() {
  PLATFORM::scriptedPlatform platform;
  int width = 0, height = 0;
  platform.getScreenSize(width, height);

  MATH::matrix4<float> m;
  m.setIdentity();
  const bool inverts = m.getInverse() == m;
  return width > 0 && height > 0 && inverts ? 0 : 1;
}
