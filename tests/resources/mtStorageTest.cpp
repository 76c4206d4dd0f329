#include "jev3d/resources/mtStorage.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

using JEV::CORE::mtStorage;

TEST(mtStorage, behavesAsTheStorage) {
  mtStorage<long> s;
  EXPECT_FALSE(s.addEntry("", 1));
  EXPECT_TRUE(s.addEntry("b", 2));
  EXPECT_TRUE(s.addEntry(L"a", 1));
  EXPECT_FALSE(s.addEntry("a", 9));
  EXPECT_EQ(s.getEntry("a"), 1);
  EXPECT_EQ(s.getEntry(L"b"), 2);
  EXPECT_EQ(s.getEntry(1), 2);
  EXPECT_EQ(s.getEntry("missing"), 0);
  EXPECT_EQ(s.getName(0), L"a");
  EXPECT_EQ(s.getName(2L), L"b");  // by entry, not position
  EXPECT_EQ(s.getName(9), L"");
  EXPECT_TRUE(s.isValid("b"));
  EXPECT_FALSE(s.isValid(L"c"));
  EXPECT_EQ(s.getUniqueId(), L"RESOURCE0");
  EXPECT_FALSE(s.erase("c"));
  EXPECT_TRUE(s.erase("a"));
  EXPECT_EQ(s.getEntryCount(), 1);
  s.clear();
  EXPECT_EQ(s.getEntryCount(), 0);
  EXPECT_EQ(s.getUniqueId(), L"RESOURCE1");
}

// Two threads add and erase names of their own at the same time: every entry that was
// added and not erased must be there at the end, and nothing else. Run under
// ThreadSanitizer too, where an unguarded map access shows as a race.
TEST(mtStorage, twoThreadsAddingAndErasingLoseNoEntry) {
  mtStorage<long> s;
  constexpr int count = 3000;
  const auto work = [&s](const std::string& prefix, int salt) {
    for (int i = 0; i < count; ++i) {
      const std::string name = prefix + std::to_string(i);
      EXPECT_TRUE(s.addEntry(name, i * salt));
      EXPECT_TRUE(s.isValid(name));
      // Readers by position and by name run into the other thread's changes.
      s.getEntryCount();
      s.getName(0);
      if (i % 3 == 1) {
        EXPECT_TRUE(s.erase(name));
      }
    }
  };
  std::thread first(work, "a", 1);
  std::thread second(work, "b", 2);
  first.join();
  second.join();
  int expected = 0;
  for (int i = 0; i < count; ++i) {
    const bool kept = i % 3 != 1;
    expected += kept ? 2 : 0;
    EXPECT_EQ(s.isValid("a" + std::to_string(i)), kept) << i;
    EXPECT_EQ(s.isValid("b" + std::to_string(i)), kept) << i;
    if (kept) {
      EXPECT_EQ(s.getEntry("b" + std::to_string(i)), 2 * i);
    }
  }
  EXPECT_EQ(s.getEntryCount(), expected);
}
