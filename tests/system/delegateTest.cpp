#include "jev3d/system/delegate.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

using namespace JEV::SYSTEM;

namespace {

enum class color { RED = 1, BLUE = 7 };

struct recorder {
  std::vector<std::string> calls;
  void none() { calls.push_back("none"); }
  void one(int* p) { calls.push_back("one " + std::to_string(*p)); }
  void two(int* a, int* b) {
    calls.push_back("two " + std::to_string(*a) + " " + std::to_string(*b));
  }
  void five(int a, int b, int c, int d, int e) {
    calls.push_back("five " + std::to_string(a + 10 * b + 100 * c + 1000 * d + 10000 * e));
  }
  void byRef(std::string& s) { s += "!"; }
  void words(bool b, color c, long n) {
    calls.push_back(std::string(b ? "T" : "F") + std::to_string(int(c)) + std::to_string(n));
  }
  void flagAndColor(bool b, color c) {
    calls.push_back(std::string(b ? "T" : "F") + std::to_string(int(c)));
  }
  int returnsValue() const {
    constCalls++;
    return 3;
  }
  mutable int constCalls = 0;
};

struct otherBase {
  virtual ~otherBase() = default;
  int padding = 99;
};

// The bound function's class sits at a non-zero offset inside the object.
struct derivedRecorder : otherBase, recorder {
  virtual void hook() { calls.push_back("base hook"); }
};

struct overrider : derivedRecorder {
  void hook() override { calls.push_back("override hook"); }
};

}  // namespace

TEST(delegate, emptyDoesNothingOnEveryForm) {
  delegate d;
  int x = 0;
  EXPECT_TRUE(d.isEmpty());
  d.invoke();
  d.invoke(&x);
  d.invoke(&x, &x);
  d.invoke(&x, &x, &x);
  d.invoke(&x, &x, &x, &x);
  d.invoke(&x, &x, &x, &x, &x);
  delegate1 d1;
  delegate2 d2;
  d1.invoke();
  d2.invoke(&x);
  EXPECT_EQ(x, 0);
}

TEST(delegate, passesCallTimeArgumentsAndDropsExtraOnes) {
  recorder r;
  int a = 4, b = 5;
  delegate(&r, &recorder::none).invoke(&a, &b);
  delegate(&r, &recorder::one).invoke(&a, &b, &b);
  delegate(&r, &recorder::two).invoke(&a, &b);
  delegate(&r, &recorder::five)
      .invoke(reinterpret_cast<void*>(1), reinterpret_cast<void*>(2), reinterpret_cast<void*>(3),
              reinterpret_cast<void*>(4), reinterpret_cast<void*>(5));
  EXPECT_EQ(r.calls, (std::vector<std::string>{"none", "one 4", "two 4 5", "five 54321"}));
}

TEST(delegate, boundValuesFillWhatTheCallLeaves) {
  recorder r;
  int b1 = 1, b2 = 2, a = 7, c = 8;
  delegate1 one(&r, &recorder::one, &b1);
  one.invoke();
  one.invoke(&a);
  one.invoke(&a, &c);
  delegate2 two(&r, &recorder::two, &b1, &b2);
  two.invoke();
  two.invoke(&a);
  two.invoke(&a, &c);
  EXPECT_EQ(r.calls,
            (std::vector<std::string>{"one 1", "one 7", "one 7", "two 1 2", "two 7 2", "two 7 8"}));
  EXPECT_EQ(one.getBoundCount(), 1u);
  EXPECT_EQ(two.getBoundCount(), 2u);
}

TEST(delegate, wordParametersKeepTheirValues) {
  recorder r;
  std::string s = "hi";
  delegate1 ref(&r, &recorder::byRef, s);
  ref.invoke();
  ref.invoke();
  EXPECT_EQ(s, "hi!!");
  std::string t = "x";
  delegate(&r, &recorder::byRef).invoke(&t);
  EXPECT_EQ(t, "x!");

  delegate2 w(&r, &recorder::flagAndColor, true, color::BLUE);
  w.invoke();
  w.invoke(nullptr);
  delegate(&r, &recorder::words)
      .invoke(reinterpret_cast<void*>(1), reinterpret_cast<void*>(1),
              reinterpret_cast<void*>(static_cast<intptr_t>(-12)));
  EXPECT_EQ(r.calls, (std::vector<std::string>{"T7", "F7", "T1-12"}));

  delegate c(&r, &recorder::returnsValue);
  c.invoke();
  EXPECT_EQ(r.constCalls, 1);
}

TEST(delegate, baseMembersSeeTheirSubobjectAndVirtualsDispatch) {
  overrider o;
  int v = 3;
  delegate(&o, &recorder::one).invoke(&v);
  delegate(&o, &derivedRecorder::hook).invoke();
  EXPECT_EQ(o.calls, (std::vector<std::string>{"one 3", "override hook"}));
  EXPECT_EQ(o.padding, 99);
}

TEST(delegate, equalityComparesObjectFunctionAndBoundValues) {
  recorder r, s;
  int b1 = 1, b2 = 2;
  EXPECT_TRUE(delegate(&r, &recorder::none).equals(delegate(&r, &recorder::none)));
  EXPECT_FALSE(delegate(&r, &recorder::none).equals(delegate(&s, &recorder::none)));
  EXPECT_FALSE(delegate(&r, &recorder::none).equals(delegate(&r, &recorder::one)));
  EXPECT_TRUE(delegate1(&r, &recorder::one, &b1).equals(delegate1(&r, &recorder::one, &b1)));
  EXPECT_FALSE(delegate1(&r, &recorder::one, &b1).equals(delegate1(&r, &recorder::one, &b2)));
  EXPECT_FALSE(delegate1(&r, &recorder::one, &b1).equals(delegate(&r, &recorder::one)));
  EXPECT_FALSE(delegate(&r, &recorder::one).equals(delegate1(&r, &recorder::one, &b1)));
  EXPECT_FALSE(
      delegate2(&r, &recorder::two, &b1, &b2).equals(delegate2(&r, &recorder::two, &b1, &b1)));
  EXPECT_TRUE(delegate().equals(delegate()));

  delegate2 copy = delegate2(&r, &recorder::two, &b1, &b2);
  EXPECT_TRUE(copy.equals(delegate2(&r, &recorder::two, &b1, &b2)));
  copy.reset();
  EXPECT_TRUE(copy.isEmpty());
  EXPECT_TRUE(copy.equals(delegate()));
  copy.invoke();
  EXPECT_TRUE(r.calls.empty());
}

// Unregistering removes the first entry equal to the given delegate, made anew by the caller.
TEST(delegate, equalityFindsTheEntryToRemove) {
  recorder r, s;
  std::list<sharedPointer<delegate>> list;
  list.push_back(makeDelegate(&r, &recorder::none));
  list.push_back(makeDelegate(&s, &recorder::none));
  list.push_back(makeDelegate(&r, &recorder::none));
  const sharedPointer<delegate> probe = makeDelegate(&r, &recorder::none);
  for (auto it = list.begin(); it != list.end(); ++it) {
    if (sameDelegate(*it, probe)) {
      list.erase(it);
      break;
    }
  }
  ASSERT_EQ(list.size(), 2u);
  for (auto& d : list) d->invoke();
  EXPECT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(s.calls.size(), 1u);
  EXPECT_TRUE(sameDelegate(sharedPointer<delegate>(), sharedPointer<delegate>()));
  EXPECT_FALSE(sameDelegate(probe, sharedPointer<delegate>()));
}
