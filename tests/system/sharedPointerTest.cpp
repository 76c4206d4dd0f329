#include "jev3d/system/sharedPointer.h"

#include <gtest/gtest.h>

using JEV::SYSTEM::sharedPointer;

namespace {

struct counted {
  explicit counted(int* d) : deaths(d) {}
  virtual ~counted() { ++*deaths; }
  int* deaths;
};

struct derived : counted {
  derived(int* d, int* dd) : counted(d), derivedDeaths(dd) {}
  ~derived() override { ++*derivedDeaths; }
  int* derivedDeaths;
};

}  // namespace

TEST(sharedPointer, lastReleaseDeletesOnce) {
  int deaths = 0;
  {
    sharedPointer<counted> a(new counted(&deaths));
    EXPECT_EQ(a.useCount(), 1);
    {
      sharedPointer<counted> b(a);
      sharedPointer<counted> c;
      c = b;
      EXPECT_EQ(a.useCount(), 3);
      EXPECT_EQ(c.get(), a.get());
    }
    EXPECT_EQ(a.useCount(), 1);
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(sharedPointer, selfAssignmentKeepsObject) {
  int deaths = 0;
  sharedPointer<counted> a(new counted(&deaths));
  sharedPointer<counted>& alias = a;
  a = alias;
  EXPECT_EQ(a.useCount(), 1);
  EXPECT_EQ(deaths, 0);
  sharedPointer<counted> b(a);
  a = b;  // same block through another owner
  EXPECT_EQ(a.useCount(), 2);
}

TEST(sharedPointer, nullCopiesHaveNoBlock) {
  sharedPointer<counted> a;
  sharedPointer<counted> b(a);
  sharedPointer<counted> c(static_cast<counted*>(nullptr));
  EXPECT_EQ(b.getInfo(), nullptr);
  EXPECT_EQ(c.getInfo(), nullptr);
  EXPECT_TRUE(b.isNull());
  b.release();
  EXPECT_EQ(b.useCount(), 0);
}

TEST(sharedPointer, reassignmentReleasesOldObject) {
  int first = 0, second = 0;
  sharedPointer<counted> a(new counted(&first));
  a = sharedPointer<counted>(new counted(&second));
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 0);
  a.release();
  EXPECT_EQ(second, 1);
  EXPECT_TRUE(a.isNull());
}

TEST(sharedPointer, baseOwnerDestroysDerivedType) {
  int deaths = 0, derivedDeaths = 0;
  {
    sharedPointer<derived> d(new derived(&deaths, &derivedDeaths));
    sharedPointer<counted> base(d);
    EXPECT_EQ(base.useCount(), 2);
    d.release();
    EXPECT_EQ(derivedDeaths, 0);
  }
  EXPECT_EQ(deaths, 1);
  EXPECT_EQ(derivedDeaths, 1);
}
