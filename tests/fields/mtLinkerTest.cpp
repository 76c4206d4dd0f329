#include "jev3d/fields/mtLinker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using namespace JEV::SYSTEM;

namespace {

using linker = mtLinker<dummyLinkerType>;

// Each thread links its own slaves to one shared master and unlinks them again. Without the
// master's lock the concurrent list edits lose or duplicate entries.
TEST(mtLinker, twoThreadsLinkingOneMasterLoseNoEntries) {
  linker master;
  constexpr int SLAVES = 64;
  // Bounded by time rather than rounds, so that slow sanitizer builds stay quick.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(250);
  std::atomic<int> faults{0};
  std::atomic<int> ready{0};
  auto work = [&](int seed) {
    std::vector<linker> mine(SLAVES);
    // Start together, so that the edits overlap from the first round.
    ready.fetch_add(1);
    while (ready.load() < 2) std::this_thread::yield();
    for (int round = 0; std::chrono::steady_clock::now() < deadline; ++round) {
      for (int i = 0; i < SLAVES; ++i) {
        linker& s = mine[static_cast<size_t>((i + seed + round) % SLAVES)];
        if (s.connect(&master, true) != &s) ++faults;
      }
      for (auto& s : mine) {
        if (master.getIndexOfSlave(&s) < 0 || s.getFrontMaster() != &master) ++faults;
      }
      if (round % 2) {
        for (auto& s : mine) s.disconnect();
      } else {
        for (auto& s : mine) s.disconnect(&master);
      }
      for (auto& s : mine) {
        if (master.getIndexOfSlave(&s) >= 0 || s.isConnected()) ++faults;
      }
      const auto snapshot = master.getSlavesCopy();
      if (snapshot.size() > static_cast<size_t>(2 * SLAVES)) ++faults;
    }
  };
  std::thread t1(work, 0), t2(work, 1);
  t1.join();
  t2.join();
  EXPECT_EQ(faults.load(), 0);
  EXPECT_EQ(master.getSlavesCount(), 0);
}

// Destroying slaves on one thread while another thread links to the same master.
TEST(mtLinker, slavesDyingOnOneThreadWhileAnotherLinks) {
  linker master;
  std::atomic<int> faults{0};
  auto churn = [&]() {
    for (int round = 0; round < 2000; ++round) {
      linker s(&master, true);
      if (!s.isConnectTo(&master)) ++faults;
    }
  };
  linker stay;
  stay.connect(&master, true);
  std::thread t1(churn), t2(churn);
  t1.join();
  t2.join();
  EXPECT_EQ(faults.load(), 0);
  EXPECT_EQ(master.getSlavesCount(), 1);
  EXPECT_EQ(master.getFrontSlave(), &stay);
}

}  // namespace
