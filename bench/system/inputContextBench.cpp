#include <benchmark/benchmark.h>

#include <memory>

#include "jev3d/system/inputContext.h"

using namespace JEV::SYSTEM;

// The price of one window's keyboard state: 131,072 key fields with their locks and
// 65,536 registered delegates, made and destroyed.
static void inputContextConstruction(benchmark::State& state) {
  for (auto _ : state) {
    auto context = std::make_unique<inputContext>();
    benchmark::DoNotOptimize(context.get());
  }
}
BENCHMARK(inputContextConstruction)->Unit(benchmark::kMillisecond);

// A key down and up through the fields, the counting delegate and the latch.
static void keyDownUp(benchmark::State& state) {
  inputContext context;
  for (auto _ : state) {
    context.keys[65] = true;
    context.keys[65] = false;
  }
  benchmark::DoNotOptimize(context.getKeyDownCount());
}
BENCHMARK(keyDownUp);
