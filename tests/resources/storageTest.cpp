#include "jev3d/resources/storage.h"

#include <gtest/gtest.h>

#include <string>

using JEV::CORE::storage;

TEST(storage, namesAreKeysInOrder) {
  storage<double> s;
  EXPECT_FALSE(s.addEntry("", 1));
  EXPECT_FALSE(s.addEntry(L"", 1));
  EXPECT_EQ(s.getEntryCount(), 0);
  EXPECT_TRUE(s.addEntry("b", 2));
  EXPECT_TRUE(s.addEntry(L"a", 1));
  EXPECT_FALSE(s.addEntry("a", 9));
  EXPECT_EQ(s.getEntry("a"), 1);
  EXPECT_EQ(s.getEntry(0), 1);
  EXPECT_EQ(s.getName(1), L"b");
  EXPECT_EQ(s.getName(2), L"");
  EXPECT_EQ(s.getName(-1), L"");
  EXPECT_EQ(s.getEntry(5), 0.0);
  EXPECT_TRUE(s.isValid(L"b"));
  EXPECT_FALSE(s.isValid("c"));
}

TEST(storage, missingNamesReadAsTheNullEntry) {
  storage<std::string*> s;
  std::string x = "x";
  s.addEntry("x", &x);
  EXPECT_EQ(s.getEntry("nothing"), nullptr);
  EXPECT_EQ(s.getName(&x), L"x");
  std::string y;
  EXPECT_EQ(s.getName(&y), L"");
  EXPECT_FALSE(s.erase("nothing"));
  EXPECT_TRUE(s.erase(L"x"));
  EXPECT_EQ(s.getEntryCount(), 0);
}

TEST(storage, narrowNamesAreUtf8) {
  storage<int> s;
  EXPECT_TRUE(s.addEntry("gr\xC3\xBC\xC3\x9F", 7));
  EXPECT_TRUE(s.isValid(L"gr\u00FC\u00DF"));
}

TEST(storage, uniqueIdsSkipTakenNamesAndAreNotReused) {
  storage<int> s;
  s.addEntry("RESOURCE1", 1);
  EXPECT_EQ(s.getUniqueId(), L"RESOURCE0");
  EXPECT_EQ(s.getUniqueId(), L"RESOURCE2");  // RESOURCE0 was handed out, though not taken
  s.addEntry(s.getUniqueId(), 3);
  EXPECT_TRUE(s.isValid("RESOURCE3"));
  s.clear();
  EXPECT_EQ(s.getUniqueId(), L"RESOURCE4");
}
