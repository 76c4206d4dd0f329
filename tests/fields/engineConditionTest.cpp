#include "jev3d/fields/engineCondition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace JEV::SYSTEM;

namespace {

using intField = fieldBase<int>;

// Counts the reads of its effective value.
struct countedInt : intField {
  using intField::intField;
  using intField::operator=;
  const int& cV() const override {
    ++reads;
    return intField::cV();
  }
  mutable int reads = 0;
};

struct hooks {
  int trues = 0, falses = 0, engineHeard = 0;
  void onTrue() { ++trues; }
  void onFalse() { ++falses; }
  void onEngine() { ++engineHeard; }
  void attach(engineCondition& c) {
    c.setOnTrue(makeDelegate(this, &hooks::onTrue));
    c.setOnFalse(makeDelegate(this, &hooks::onFalse));
  }
};

bool result(engineCondition& c) { return c.getEngine()->cV(); }

TEST(engineCondition, emptyRuleIsTrue) {
  engineCondition c;
  hooks h;
  h.attach(c);
  EXPECT_EQ(c.getEngine(), nullptr);
  c.computeEngine();
  ASSERT_NE(c.getEngine(), nullptr);
  EXPECT_TRUE(result(c));
  EXPECT_EQ(h.trues, 1);
}

TEST(engineCondition, firstFalseStopsTheConjunctionAndFiresOnFalseOnce) {
  intField x(5);
  countedInt y(1);
  engineCondition c;
  hooks h;
  h.attach(c);
  c.add(&x, CONDITION_LESS, 3);
  c.add(static_cast<intField*>(&y), CONDITION_EQUAL, 1);
  EXPECT_FALSE(result(c));
  EXPECT_EQ(h.falses, 1);
  EXPECT_EQ(h.trues, 0);
  EXPECT_EQ(y.reads, 0);

  x = 2;
  EXPECT_TRUE(result(c));
  EXPECT_EQ(h.trues, 1);
  EXPECT_EQ(h.falses, 1);
  EXPECT_GT(y.reads, 0);
}

TEST(engineCondition, rightOperandsFormADisjunction) {
  intField x(2);
  countedInt one(1), two(2), three(3);
  engineCondition c;
  c.add(&x, CONDITION_EQUAL, std::vector<intField*>{&one, &two, &three});
  EXPECT_TRUE(result(c));
  // Matched at the second operand: the third is never read.
  EXPECT_EQ(one.reads, 1);
  EXPECT_EQ(two.reads, 1);
  EXPECT_EQ(three.reads, 0);

  engineCondition values;
  values.add(&x, CONDITION_EQUAL, std::vector<int>{1, 2, 3});
  EXPECT_TRUE(result(values));
  x = 4;
  EXPECT_FALSE(result(values));
}

TEST(engineCondition, emptyRightSideAndAlways) {
  intField x(9);
  engineCondition greater;
  greater.add(&x, CONDITION_GREATER, std::vector<int>{});
  EXPECT_FALSE(result(greater));

  engineCondition always;
  always.add(&x, CONDITION_ALWAYS, std::vector<int>{});
  EXPECT_TRUE(result(always));
  engineCondition alwaysOne;
  alwaysOne.add(&x, CONDITION_ALWAYS, 100);
  EXPECT_TRUE(result(alwaysOne));

  engineCondition bogus;
  bogus.add(&x, static_cast<condition_type>(7), 9);
  EXPECT_FALSE(result(bogus));
}

TEST(engineCondition, everyRelation) {
  intField x(3);
  const std::vector<std::pair<condition_type, std::vector<bool>>> table = {
      // left 3 against right 2, 3, 4
      {CONDITION_EQUAL, {false, true, false}},   {CONDITION_NOT_EQUAL, {true, false, true}},
      {CONDITION_LESS, {false, false, true}},    {CONDITION_LESS_EQUAL, {false, true, true}},
      {CONDITION_GREATER, {true, false, false}}, {CONDITION_GREATER_EQUAL, {true, true, false}},
  };
  for (const auto& row : table) {
    for (int r = 2; r <= 4; ++r) {
      engineCondition c;
      c.add(&x, row.first, r);
      EXPECT_EQ(result(c), row.second[static_cast<size_t>(r - 2)]) << row.first << " " << r;
    }
  }
}

TEST(engineCondition, rightHandChangeLeavesTheResultStale) {
  intField x(1), limit(5);
  engineCondition c;
  c.add(&x, CONDITION_LESS, &limit);
  EXPECT_TRUE(result(c));
  limit = 0;
  EXPECT_TRUE(result(c));  // stale: the right side is not an input
  x = 1;                   // an equal write still marks the engine dirty
  EXPECT_FALSE(result(c));
  limit = 5;
  c.getEngine()->setDirty();
  EXPECT_TRUE(result(c));
}

TEST(engineCondition, floatComparisonIsExact) {
  fieldBase<float> f(1.0f);
  engineCondition equal, less;
  equal.add(&f, CONDITION_EQUAL, 1.0f);
  less.add(&f, CONDITION_LESS, 1.0f);
  EXPECT_TRUE(result(equal));
  f = std::nextafter(1.0f, 0.0f);
  EXPECT_FALSE(result(equal));
  EXPECT_TRUE(result(less));
}

// A bool field that follows its condition reads the current rule, evaluated only when a
// left field has changed; observers of the engine hear two notifications per evaluation.
TEST(engineCondition, boolFieldFollowsItsCondition) {
  intField level(1), other(0);
  fieldBase<bool> enabled(true);
  hooks h;
  engineCondition& rule = enabled.getCondition();
  enabled.connectToEngineCondition();  // nothing to follow yet
  EXPECT_FALSE(enabled.isConnected());

  h.attach(rule);
  rule.add(&level, CONDITION_LESS_EQUAL, 3);
  rule.add(&other, CONDITION_NOT_EQUAL, 0);
  rule.getEngine()->registerEventOnChangeValue(makeDelegate(&h, &hooks::onEngine));
  enabled.connectToEngineCondition();
  EXPECT_TRUE(enabled.isConnected());

  EXPECT_FALSE(enabled.cV());
  EXPECT_EQ(h.falses, 1);
  EXPECT_EQ(h.engineHeard, 2);
  EXPECT_FALSE(enabled.cV());
  EXPECT_EQ(h.falses, 1);

  other = 7;  // marks dirty; nothing runs at write time
  EXPECT_EQ(h.trues, 0);
  EXPECT_EQ(h.engineHeard, 2);
  EXPECT_TRUE(enabled.cV());
  EXPECT_EQ(h.trues, 1);
  EXPECT_EQ(h.engineHeard, 4);

  level = 4;
  EXPECT_FALSE(static_cast<bool>(enabled));
  EXPECT_EQ(h.falses, 2);
  EXPECT_EQ(rule.getEngine()->getEntryCount(), 2);
  EXPECT_TRUE(rule.getEngine()->isValid("FIELD_2"));
}

TEST(engineCondition, lockedFieldsAndAConstantLeftSide) {
  using lockedInt = fieldBase<int, dummyLinkerType, mtLinker>;
  lockedInt low(1), high(10);
  fieldBase<bool, dummyLinkerType, mtLinker> inRange(false);
  engineCondition& rule = inRange.getCondition();
  // 5 lies above at least one of the fields.
  rule.add(5, CONDITION_GREATER, std::vector<lockedInt*>{&high, &low});
  inRange.connectToEngineCondition();
  EXPECT_TRUE(inRange.cV());
  low = 6;
  EXPECT_TRUE(inRange.cV());  // stale: only the constant is an input
  rule.getEngine()->setDirty();
  EXPECT_FALSE(inRange.cV());
}

TEST(engineCondition, clearEmptiesTheRuleAndDetachesFromTheFields) {
  intField x(1);
  fieldBase<bool> follower;
  {
    engineCondition c;
    c.add(&x, CONDITION_EQUAL, 1);
    follower.connect(c.getEngine(), true);
    EXPECT_TRUE(follower.cV());
    EXPECT_EQ(x.getDelegatesCount(), 1);
    c.clear();
    EXPECT_EQ(c.getEngine(), nullptr);
    EXPECT_EQ(c.getConditionCount(), 0);
    EXPECT_EQ(x.getDelegatesCount(), 0);
    EXPECT_FALSE(follower.isConnected());
    c.add(&x, CONDITION_EQUAL, 2);
    EXPECT_FALSE(result(c));
  }
  EXPECT_EQ(x.getDelegatesCount(), 0);
  x = 3;
}

}  // namespace
