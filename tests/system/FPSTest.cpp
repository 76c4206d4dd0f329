#include "jev3d/system/FPS.h"

#include <gtest/gtest.h>

#include "jev3d/system/updateContext.h"

using JEV::SYSTEM::FPS;
using JEV::SYSTEM::updateContext;

TEST(FPS, firstUpdateOnlyResumesAndTheTotalContinuesAfterAPause) {
  FPS f;
  EXPECT_TRUE(f.isPaused());
  f.update(false, 5000);
  EXPECT_FALSE(f.isPaused());
  EXPECT_EQ(f.getTotalTime(), 0u);
  EXPECT_EQ(f.getElapsedTime(), 0u);
  f.update(false, 5040);
  EXPECT_EQ(f.getElapsedTime(), 40u);
  EXPECT_EQ(f.getTotalTime(), 40u);
  f.update(true, 5100);
  EXPECT_EQ(f.getElapsedTime(), 0u);
  EXPECT_EQ(f.getTotalTime(), 40u);
  // A long pause leaves no jump: the total goes on from where it stopped.
  f.update(false, 9000);
  EXPECT_EQ(f.getTotalTime(), 40u);
  f.update(false, 9025);
  EXPECT_EQ(f.getElapsedTime(), 25u);
  EXPECT_EQ(f.getTotalTime(), 65u);
}

TEST(FPS, averageOfTheLastSamplesIsTakenAboutOnceASecond) {
  FPS f;
  EXPECT_FLOAT_EQ(f.getFps(), 10.0f);
  f.add(20, 2000);  // first average: one sample
  EXPECT_FLOAT_EQ(f.getAverage(), 20.0f);
  f.add(40, 2500);  // within the second: unchanged
  EXPECT_FLOAT_EQ(f.getAverage(), 20.0f);
  f.add(60, 3100);
  EXPECT_FLOAT_EQ(f.getAverage(), 40.0f);
  EXPECT_FLOAT_EQ(f.getFps(), 25.0f);
  // Only the last 32 samples count.
  for (int i = 0; i < 32; ++i) f.add(10, 3200);
  f.add(10, 5000);
  EXPECT_FLOAT_EQ(f.getAverage(), 10.0f);
}

TEST(updateContext, pausedFreezesTheCountersAndTheFieldsNotify) {
  updateContext u;
  int notified = 0;
  struct counter {
    int* n;
    void hit() { ++*n; }
  } c{&notified};
  u.frameElapsed.registerEventOnChangeValue(JEV::SYSTEM::makeDelegate(&c, &counter::hit));
  u.updateFPSTime();
  u.updateFPSTime();
  EXPECT_EQ(notified, 2);
  u.paused = true;
  u.updateFPSTime();
  EXPECT_EQ(u.frameElapsed.cV(), 0u);
  EXPECT_TRUE(u.frameCounter.isPaused());
  EXPECT_EQ(u.topBoundingVolume(), nullptr);
  u.popBoundingVolume();  // empty: nothing happens
}
