#include "jev3d/fields/fieldBase.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace JEV::SYSTEM;

namespace {

using log = std::vector<std::string>;

// Records each notification it hears, with the value read at that moment.
template <class F>
struct listener {
  listener(log* out, std::string name, F* field) : out(out), name(std::move(name)), field(field) {}
  void heard() { out->push_back(name + "=" + std::to_string(field->cV())); }
  log* out;
  std::string name;
  F* field;
};

// delegatesEnabled has no setter; a class that wants quiet writes derives.
template <class F>
struct quietable : F {
  using F::F;
  using F::operator=;
  void setQuiet(bool quiet) { this->delegatesEnabled = !quiet; }
};

template <class F>
class fieldTest : public ::testing::Test {};

using fieldKinds = ::testing::Types<fieldBase<int>, fieldBase<int, dummyLinkerType, mtLinker>>;
TYPED_TEST_SUITE(fieldTest, fieldKinds);

// A <- B <- C, and A <- D after B. Delegates connect and disconnect while the walk runs:
// the lists are copied, own delegates first, then the slaves, depth first.
TYPED_TEST(fieldTest, notificationOrderThroughThreeLevelsWithEditsDuringTheWalk) {
  using F = TypeParam;
  log heard;
  F a(0), b(10), c(20), d(30), e(40), late(50);
  b.connect(&a, true);
  c.connect(&b, true);
  d.connect(&a, false);
  listener<F> la(&heard, "a", &a), lb(&heard, "b", &b), lc(&heard, "c", &c), ld(&heard, "d", &d),
      le(&heard, "e", &e), lLate(&heard, "late", &late);

  struct editor {
    F *a, *d, *e;
    listener<F>* lLate;
    int runs = 0;
    // On A: adds a delegate to A (heard from the next write on) and links E under A
    // before A's slaves are copied, so E hears this very write.
    void onA() {
      if (runs++) return;
      a->registerEventOnChangeValue(makeDelegate(lLate, &listener<F>::heard));
      e->connect(a, true);
    }
    // On C, during A's slave walk: D is unlinked, yet A's copy still holds it.
    void onC() { d->disconnect(a); }
  } ed{&a, &d, &e, &lLate};

  a.registerEventOnChangeValue(makeDelegate(&la, &listener<F>::heard));
  a.registerEventOnChangeValue(makeDelegate(&ed, &editor::onA));
  b.registerEventOnChangeValue(makeDelegate(&lb, &listener<F>::heard));
  c.registerEventOnChangeValue(makeDelegate(&lc, &listener<F>::heard));
  c.registerEventOnChangeValue(makeDelegate(&ed, &editor::onC));
  d.registerEventOnChangeValue(makeDelegate(&ld, &listener<F>::heard));
  e.registerEventOnChangeValue(makeDelegate(&le, &listener<F>::heard));

  a = 5;
  // D does not follow: it hears, and reads its own value.
  EXPECT_EQ(heard, (log{"a=5", "b=5", "c=5", "d=30", "e=5"}));
  EXPECT_FALSE(d.isConnected());

  heard.clear();
  a = 6;
  EXPECT_EQ(heard, (log{"a=6", "late=50", "b=6", "c=6", "e=6"}));
}

TYPED_TEST(fieldTest, followingAndOwnValues) {
  using F = TypeParam;
  F master(1), follower(2), listenerOnly(3);
  follower.connect(&master, true);
  listenerOnly.connect(&master, false);
  EXPECT_EQ(follower.cV(), 1);
  EXPECT_EQ(listenerOnly.cV(), 3);

  // A write to a following slave is stored but hidden while the link lasts.
  follower = 7;
  EXPECT_EQ(follower.cV(), 1);
  EXPECT_EQ(follower.V(), 7);
  master = 9;
  EXPECT_EQ(static_cast<int>(follower), 9);
  follower.disconnect(&master);
  EXPECT_EQ(follower.cV(), 7);

  // The flag is one per linker: following the second master reads the front one.
  F other(100);
  listenerOnly.connect(&other, true);
  EXPECT_EQ(listenerOnly.cV(), 9);
}

TYPED_TEST(fieldTest, deadMasterLeavesTheSlaveItsOwnValue) {
  using F = TypeParam;
  F slave(4);
  {
    F master(8);
    slave.connect(&master, true);
    EXPECT_EQ(slave.cV(), 8);
  }
  EXPECT_FALSE(slave.isConnected());
  EXPECT_TRUE(slave.isFollowingMaster());
  EXPECT_EQ(slave.cV(), 4);
}

TYPED_TEST(fieldTest, writesAlwaysNotifyButVDoesNot) {
  using F = TypeParam;
  log heard;
  F f(3);
  listener<F> l(&heard, "f", &f);
  f.registerEventOnChangeValue(makeDelegate(&l, &listener<F>::heard));
  f = 3;
  f.setValue(3);
  f.V() = 4;
  EXPECT_EQ(heard, (log{"f=3", "f=3"}));
  f.touch();
  EXPECT_EQ(heard.back(), "f=4");
  F g(11);
  f = g;
  EXPECT_EQ(heard.back(), "f=11");
}

TYPED_TEST(fieldTest, quietFieldSilencesItsSlavesToo) {
  using F = TypeParam;
  log heard;
  quietable<F> a(1);
  F b(0);
  b.connect(&a, true);
  listener<F> la(&heard, "a", &a), lb(&heard, "b", &b);
  a.registerEventOnChangeValue(makeDelegate(&la, &listener<F>::heard));
  b.registerEventOnChangeValue(makeDelegate(&lb, &listener<F>::heard));
  a.setQuiet(true);
  a = 2;
  EXPECT_TRUE(heard.empty());
  a.setQuiet(false);
  a.touch();
  EXPECT_EQ(heard, (log{"a=2", "b=2"}));
}

TYPED_TEST(fieldTest, removalTakesTheFirstEqualDelegate) {
  using F = TypeParam;
  log heard;
  F f(1);
  listener<F> l(&heard, "f", &f), other(&heard, "o", &f);
  f.setMultiThreadingDelegate();
  f.setMultiThreadingDelegate();
  f.registerEventOnChangeValue(makeDelegate(&l, &listener<F>::heard));
  f.registerEventOnChangeValue(makeDelegate(&other, &listener<F>::heard));
  f.registerEventOnChangeValue(makeDelegate(&l, &listener<F>::heard));
  f.removeEventOnChangeValue(makeDelegate(&heard, &log::clear));  // never registered
  EXPECT_EQ(f.getDelegatesCount(), 3);
  f.removeEventOnChangeValue(makeDelegate(&l, &listener<F>::heard));
  EXPECT_EQ(f.getDelegatesCount(), 2);
  f.touch();
  EXPECT_EQ(heard, (log{"o=1", "f=1"}));
}

TYPED_TEST(fieldTest, copyTakesTheEffectiveValueOnly) {
  using F = TypeParam;
  log heard;
  F master(5), slave(1);
  slave.connect(&master, true);
  listener<F> l(&heard, "s", &slave);
  slave.registerEventOnChangeValue(makeDelegate(&l, &listener<F>::heard));
  F copy(slave);
  EXPECT_EQ(copy.V(), 5);
  EXPECT_FALSE(copy.isConnected());
  EXPECT_EQ(copy.getDelegatesCount(), 0);
  EXPECT_EQ(master.getSlavesCount(), 1);
}

TEST(fieldBase, masterOfAnotherValueTypeIsNotReadThrough) {
  fieldBase<float> master(2.5f);
  fieldBase<int> slave(3);
  slave.connect(&master, true);
  EXPECT_EQ(slave.cV(), 3);
}

TEST(fieldBase, lockedSlaveReadsAPlainMaster) {
  fieldBase<std::string> master(std::string("front"));
  fieldBase<std::string, dummyLinkerType, mtLinker> slave(std::string("own"));
  slave.connect(&master, true);
  EXPECT_EQ(slave.cV(), "front");
  master = std::string("changed");
  EXPECT_EQ(slave.cV(), "changed");
}

TEST(fieldBase, constructorLinksWithoutNotifying) {
  log heard;
  fieldBase<int> master(6);
  listener<fieldBase<int>> l(&heard, "m", &master);
  master.registerEventOnChangeValue(makeDelegate(&l, &listener<fieldBase<int>>::heard));
  fieldBase<int> slave(1, &master, true);
  fieldBase<int> bare(&master, false);
  EXPECT_TRUE(heard.empty());
  EXPECT_EQ(slave.cV(), 6);
  EXPECT_EQ(bare.cV(), 0);
  EXPECT_EQ(master.getSlavesCount(), 2);
}

}  // namespace
