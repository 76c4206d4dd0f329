#include "jev3d/fields/engineBase.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace JEV::SYSTEM;

namespace {

// A sum engine over two int inputs, counting its computations and its notifications.
template <class E, class F>
struct summing {
  E engine;
  F a{1}, b{2};
  int computes = 0;
  int heard = 0;
  summing() {
    engine.setComputeDelegate(makeDelegate(this, &summing::compute));
    engine.registerEventOnChangeValue(makeDelegate(this, &summing::onEngine));
    engine.addEntry("a", &a);
    engine.addEntry(L"b", &b);
  }
  void compute() {
    ++computes;
    engine.V() = a.cV() + b.cV();
  }
  void onEngine() { ++heard; }
};

template <class P>
class engineTest : public ::testing::Test {};

using plainKind = summing<engineBase<int>, fieldBase<int>>;
using lockedKind = summing<MT::engineBase<int>, fieldBase<int, dummyLinkerType, mtLinker>>;
using engineKinds = ::testing::Types<plainKind, lockedKind>;
TYPED_TEST_SUITE(engineTest, engineKinds);

TYPED_TEST(engineTest, inputsOnlyMarkDirtyAndReadsComputeOnce) {
  TypeParam s;
  EXPECT_TRUE(s.engine.isDirty());
  EXPECT_EQ(s.computes, 0);
  EXPECT_EQ(s.engine.cV(), 3);
  EXPECT_EQ(s.engine.cV(), 3);
  EXPECT_EQ(s.computes, 1);
  EXPECT_EQ(s.heard, 1);

  s.a = 10;
  s.b = 20;
  EXPECT_TRUE(s.engine.isDirty());
  EXPECT_EQ(s.computes, 1);
  EXPECT_EQ(s.heard, 1);
  EXPECT_EQ(static_cast<int>(s.engine), 30);
  EXPECT_EQ(s.computes, 2);
  EXPECT_EQ(s.heard, 2);
}

TYPED_TEST(engineTest, entriesByNameAndErasure) {
  TypeParam s;
  EXPECT_FALSE(s.engine.addEntry("a", &s.b));
  EXPECT_FALSE(s.engine.addEntry("", &s.b));
  EXPECT_FALSE(s.engine.erase("nothing"));
  EXPECT_EQ(s.engine.getEntryCount(), 2);
  EXPECT_EQ(s.a.getDelegatesCount(), 1);
  s.engine.cV();

  EXPECT_TRUE(s.engine.erase("a"));
  EXPECT_TRUE(s.engine.isDirty());
  EXPECT_EQ(s.a.getDelegatesCount(), 0);
  s.engine.cV();
  s.a = 5;  // no longer an input
  EXPECT_FALSE(s.engine.isDirty());

  EXPECT_TRUE(s.engine.addEntry(&s.a));
  EXPECT_EQ(s.engine.getName(&s.a), L"RESOURCE0");
  s.engine.cV();
  s.a = 6;
  EXPECT_TRUE(s.engine.isDirty());
}

TYPED_TEST(engineTest, followingSlaveComputesThroughTheEngine) {
  TypeParam s;
  decltype(s.a) reader(-1);
  reader.connect(&s.engine, true);
  s.b = 40;
  EXPECT_EQ(s.computes, 0);
  EXPECT_EQ(reader.cV(), 41);
  EXPECT_EQ(s.computes, 1);
}

TEST(engineBase, noComputeDelegateStillClearsAndNotifies) {
  engineBase<int> e;
  e.V() = 12;
  int heard = 0;
  struct counter {
    int* n;
    void hit() { ++*n; }
  } c{&heard};
  e.registerEventOnChangeValue(makeDelegate(&c, &counter::hit));
  e.setDirty();
  EXPECT_EQ(e.cV(), 12);
  EXPECT_FALSE(e.isDirty());
  EXPECT_EQ(heard, 1);
  EXPECT_EQ(e.cV(), 12);
  EXPECT_EQ(heard, 1);
}

// The dirty flag is cleared before the compute runs, so reading the engine from inside its
// own compute returns the stored value instead of recursing.
TEST(engineBase, computeThatReadsItselfDoesNotRecurse) {
  struct selfReading {
    engineBase<std::string> e;
    fieldBase<int> in{0};
    int computes = 0;
    void compute() {
      ++computes;
      e.V() = e.cV() + "x";
    }
  } s;
  s.e.setComputeDelegate(makeDelegate(&s, &decltype(s)::compute));
  s.e.addEntry("in", &s.in);
  EXPECT_EQ(s.e.cV(), "x");
  s.in = 1;
  EXPECT_EQ(s.e.cV(), "xx");
  EXPECT_EQ(s.computes, 2);
}

TEST(engineBase, eitherSideMayDieFirst) {
  auto input = std::make_unique<fieldBase<float>>(1.0f);
  {
    engineBase<float> e;
    e.addEntry("in", input.get());
    EXPECT_EQ(input->getDelegatesCount(), 1);
  }
  // The dead engine took its observer with it; writing must not reach it.
  EXPECT_EQ(input->getDelegatesCount(), 0);
  *input = 2.0f;

  auto e = std::make_unique<engineBase<float>>();
  e->addEntry("in", input.get());
  input.reset();
  e->setDirty();
  e->cV();
  e.reset();
}

TEST(engineBase, onlyFieldsAreInputs) {
  engineBase<int> e;
  linkerBase<dummyLinkerType> plain;
  EXPECT_FALSE(e.addEntry("plain", &plain));
  EXPECT_FALSE(e.addEntry("null", nullptr));
  EXPECT_EQ(e.getEntryCount(), 0);
}

}  // namespace
