#include <benchmark/benchmark.h>

#include <vector>

#include "jev3d/fields/engineCondition.h"
#include "jev3d/fields/fieldBase.h"

using namespace JEV::SYSTEM;

namespace {

struct sink {
  int hits = 0;
  void hit() { ++hits; }
};

// One write to a field with one delegate: store, copy the lists, call.
void fieldWriteOneDelegate(benchmark::State& state) {
  fieldBase<float> f;
  sink s;
  f.registerEventOnChangeValue(makeDelegate(&s, &sink::hit));
  float v = 0;
  for (auto _ : state) f = (v += 1.0f);
  benchmark::DoNotOptimize(s.hits);
}
BENCHMARK(fieldWriteOneDelegate);

// A write travelling down a chain of three following slaves, each with a delegate.
void fieldWriteThroughChain(benchmark::State& state) {
  fieldBase<int> a;
  fieldBase<int> b(&a, true), c(&b, true), d(&c, true);
  sink s;
  for (auto* f : {&a, &b, &c, &d}) f->registerEventOnChangeValue(makeDelegate(&s, &sink::hit));
  int v = 0;
  for (auto _ : state) a = ++v;
  benchmark::DoNotOptimize(s.hits);
}
BENCHMARK(fieldWriteThroughChain);

// A read at the end of the chain: three hops to the front master.
void fieldReadThroughChain(benchmark::State& state) {
  fieldBase<int> a(7);
  fieldBase<int> b(&a, true), c(&b, true), d(&c, true);
  for (auto _ : state) benchmark::DoNotOptimize(d.cV());
}
BENCHMARK(fieldReadThroughChain);

// The same write on the locked kind.
void lockedFieldWriteOneDelegate(benchmark::State& state) {
  fieldBase<bool, dummyLinkerType, mtLinker> f;
  sink s;
  f.registerEventOnChangeValue(makeDelegate(&s, &sink::hit));
  bool v = false;
  for (auto _ : state) f = (v = !v);
  benchmark::DoNotOptimize(s.hits);
}
BENCHMARK(lockedFieldWriteOneDelegate);

// A left field changes and a bool field that follows a two-term rule is read.
void conditionChangeAndRead(benchmark::State& state) {
  fieldBase<int> level(1), other(1);
  fieldBase<bool> enabled;
  enabled.getCondition().add(&level, CONDITION_LESS_EQUAL, 3);
  enabled.getCondition().add(&other, CONDITION_NOT_EQUAL, std::vector<int>{0, 5});
  enabled.connectToEngineCondition();
  int v = 0;
  for (auto _ : state) {
    level = (++v) & 7;
    benchmark::DoNotOptimize(enabled.cV());
  }
}
BENCHMARK(conditionChangeAndRead);

// Making and freeing a locked bool field, as the input context does 131,072 times.
void lockedFieldLifetime(benchmark::State& state) {
  for (auto _ : state) {
    auto* f = new fieldBase<bool, dummyLinkerType, mtLinker>(false);
    benchmark::DoNotOptimize(f);
    delete f;
  }
}
BENCHMARK(lockedFieldLifetime);

}  // namespace
