// Selections, grouping and n-ary set algebra over a million elements, reported per element.
#include <benchmark/benchmark.h>

#include "tarnvik/collections/arrays.hpp"
#include "tarnvik/collections/sets.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace {

using namespace tarnvik;

constexpr int kCount = 1000000;

const Array& dictionaries() {
  static const Array all = [] {
    Array a = Array::arrayWithCapacity(kCount);
    for (int i = 0; i < kCount; ++i)
      a.addObject(Dictionary{{u"reel", i % 100}, {u"name", u"clip"}});
    return a;
  }();
  return all;
}

const Array& numbers() {
  static const Array all = [] {
    Array a = Array::arrayWithCapacity(kCount);
    for (int i = 0; i < kCount; ++i) a.addObject(i);
    return a;
  }();
  return all;
}

Set setFrom(int offset) {
  Set s = Set::setWithCapacity(kCount);
  for (int i = 0; i < kCount; ++i) s.addObject(i + offset);
  return s;
}

void BM_ObjectsWithValueForKey(benchmark::State& state) {
  const Array& all = dictionaries();
  for (auto _ : state) benchmark::DoNotOptimize(objectsWithValueForKey(all, Value(42), u"reel"));
  state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_ObjectsWithValueForKey)->Unit(benchmark::kMillisecond);

void BM_GroupElementsIgnoringNil(benchmark::State& state) {
  const Array& all = numbers();
  for (auto _ : state) {
    benchmark::DoNotOptimize(groupElementsIgnoringNilWithFunction(all, [](const Value& v) {
      const Integer i = v.integerValue();
      return i % 7 == 0 ? Value() : Value(i % 1000);
    }));
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_GroupElementsIgnoringNil)->Unit(benchmark::kMillisecond);

void BM_SetWithUnionOf(benchmark::State& state) {
  static const Set a = setFrom(0), b = setFrom(kCount / 2), c = setFrom(kCount);
  for (auto _ : state) benchmark::DoNotOptimize(setWithUnionOf({a, b, c}));
  state.SetItemsProcessed(state.iterations() * 3 * kCount);
}
BENCHMARK(BM_SetWithUnionOf)->Unit(benchmark::kMillisecond);

void BM_SetWithIntersectionOf(benchmark::State& state) {
  static const Set a = setFrom(0), b = setFrom(kCount / 2), c = setFrom(kCount / 4);
  for (auto _ : state) benchmark::DoNotOptimize(setWithIntersectionOf({a, b, c}));
  state.SetItemsProcessed(state.iterations() * 3 * kCount);
}
BENCHMARK(BM_SetWithIntersectionOf)->Unit(benchmark::kMillisecond);

}  // namespace
