#include "jev3d/system/callBack.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "jev3d/system/event.h"

using namespace JEV::SYSTEM;

namespace {

struct order {
  std::vector<std::string> seen;
  callBack* reporter = nullptr;
  void onField() { seen.push_back("field " + std::to_string(reporter->value.cV())); }
  void onChange() { seen.push_back("onChange"); }
};

// Exposes the lock so that a test can hold it from another thread.
struct lockableCallBack : callBack {
  using callBack::callBack;
  using callBack::lock;
};

std::vector<std::pair<void*, interprocessRecord>> sentRecords;
void recordSender(void* target, const interprocessRecord& r) { sentRecords.push_back({target, r}); }

}  // namespace

TEST(callBackTest, SetValueMapsAPercentageOntoTheRangeAndClamps) {
  callBack progress(CALLBACK_UNSYNCHRONISED, 0, 10, 30);
  EXPECT_TRUE(progress.setValue(50));
  EXPECT_FLOAT_EQ(progress.value.cV(), 20);
  EXPECT_TRUE(progress.setValue(-1));
  EXPECT_FLOAT_EQ(progress.value.cV(), 10) << "-1 counts as 0 percent";
  EXPECT_TRUE(progress.setValue(250));
  EXPECT_FLOAT_EQ(progress.value.cV(), 30);

  callBack plain;
  EXPECT_EQ(plain.minValue.cV(), 0.0f);
  EXPECT_EQ(plain.maxValue.cV(), 100.0f);
  plain.setValue(1);
  EXPECT_FLOAT_EQ(plain.value.cV(), 1);
}

TEST(callBackTest, IncrementIsAPercentOfTheRangeClampedToIt) {
  callBack progress;
  progress.incrementOf(10);
  progress.incrementOf(15);
  EXPECT_FLOAT_EQ(progress.value.cV(), 25);
  progress.incrementOf(150);
  EXPECT_FLOAT_EQ(progress.value.cV(), 100) << "150 counts as 100 percent, then clamped";

  // minValue is added at every step, not once.
  callBack shifted(CALLBACK_UNSYNCHRONISED, 10, 10, 110);
  shifted.incrementOf(10);
  EXPECT_FLOAT_EQ(shifted.value.cV(), 10 + 10 + 10);
  shifted.incrementOf(10);
  EXPECT_FLOAT_EQ(shifted.value.cV(), 30 + 10 + 10);
  shifted.incrementOf(-5);
  EXPECT_FLOAT_EQ(shifted.value.cV(), 50 + 0 + 10);
}

TEST(callBackTest, ObserversHearTheFieldThenOnChangeAndEqualWritesNotify) {
  callBack progress;
  order o;
  o.reporter = &progress;
  progress.value.registerEventOnChangeValue(makeDelegate(&o, &order::onField));
  progress.onChange = makeDelegate(&o, &order::onChange);
  progress.setValue(40);
  progress.setValue(40);
  const std::vector<std::string> expected = {"field 40.000000", "onChange", "field 40.000000",
                                             "onChange"};
  EXPECT_EQ(o.seen, expected);
}

TEST(callBackTest, SynchronisedReportTimesOutWhileAnotherThreadHoldsTheLock) {
  lockableCallBack progress(CALLBACK_SYNCHRONISED, 0, 0, 100);
  EXPECT_TRUE(progress.setValue(30));
  EXPECT_FLOAT_EQ(progress.value.cV(), 30);

  event held, done;
  std::thread holder([&] {
    progress.lock.wait(INFINITE);
    held.set();
    done.wait();
    progress.lock.release();
  });
  held.wait();
  EXPECT_FALSE(progress.syncSetValue(80, 20));
  EXPECT_FALSE(progress.syncIncrementOf(10, 0));
  EXPECT_FLOAT_EQ(progress.value.cV(), 30) << "unchanged after a time-out";
  done.set();
  holder.join();
  EXPECT_TRUE(progress.syncSetValue(80, 1000));
  EXPECT_FLOAT_EQ(progress.value.cV(), 80);
}

TEST(callBackTest, SynchronisedReportsFromManyThreadsAllCount) {
  callBack progress(CALLBACK_SYNCHRONISED, 0, 0, 1000);
  std::vector<std::thread> workers;
  for (int t = 0; t < 4; ++t) {
    workers.emplace_back([&] {
      for (int i = 0; i < 50; ++i) progress.incrementOf(0.1f);
    });
  }
  for (auto& w : workers) w.join();
  EXPECT_NEAR(progress.value.cV(), 200.0f, 0.01f);
}

TEST(callBackTest, RecordGoesToTheTargetThroughTheInstalledSender) {
  sentRecords.clear();
  callBack progress;
  progress.setValue(10);  // no target: nothing is sent
  callBack::setInterprocessSender(&recordSender);
  progress.setValue(20);
  EXPECT_TRUE(sentRecords.empty());

  int target = 0;
  progress.setInterprocessCommunicationsHandle(&target);
  progress.setInterprocessCommunicationsId(7);
  progress.setInterprocessCommunicationsEcho(0xABCD);
  progress.setValue(25);
  callBack::setInterprocessSender(nullptr);
  progress.setValue(30);  // sender removed: nothing more

  ASSERT_EQ(sentRecords.size(), 1u);
  EXPECT_EQ(sentRecords[0].first, &target);
  float sentValue;
  std::memcpy(&sentValue, &sentRecords[0].second.value, sizeof sentValue);
  EXPECT_EQ(sentValue, 25.0f);
  EXPECT_EQ(sentRecords[0].second.id, 7u);
  EXPECT_EQ(sentRecords[0].second.echo, 0xABCDu);
}
