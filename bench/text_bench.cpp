// Per-call costs of the naming operations hosts call most, and uniqueStringWithRivals over
// growing rival lists (its cost per rival should stay flat: linear in the rivals).
#include <benchmark/benchmark.h>

#include "tarnvik/platform/foundation.hpp"
#include "tarnvik/text/affixes.hpp"
#include "tarnvik/text/name_segments.hpp"
#include "tarnvik/text/number_forms.hpp"
#include "tarnvik/text/sequence_order.hpp"
#include "tarnvik/text/unique_names.hpp"

namespace {

using namespace tarnvik;

void BM_IncrementLastSegment(benchmark::State& state) {
  const String name = u"A001C0099";
  for (auto _ : state) benchmark::DoNotOptimize(incrementLastSegment(name));
}
BENCHMARK(BM_IncrementLastSegment);

void BM_IncrementLastCharacter(benchmark::State& state) {
  const String name = u"Take B";
  for (auto _ : state) benchmark::DoNotOptimize(incrementLastSegment(name));
}
BENCHMARK(BM_IncrementLastCharacter);

void BM_StringByDeletingPrefix(benchmark::State& state) {
  const String name = u"/Volumes/Media/Day01/A001C009.mov", prefix = u"/Volumes/Media";
  for (auto _ : state) benchmark::DoNotOptimize(stringByDeletingPrefix(name, prefix));
}
BENCHMARK(BM_StringByDeletingPrefix);

void BM_CompareForSequence(benchmark::State& state) {
  const String a = u"A001C0099.mov", b = u"A001C0100.mov";
  for (auto _ : state) benchmark::DoNotOptimize(compareForSequence(a, b));
}
BENCHMARK(BM_CompareForSequence);

void BM_UniqueStringWithRivals(benchmark::State& state) {
  Array rivals = Array::arrayWithCapacity(static_cast<UInteger>(state.range(0)));
  for (int64_t i = 0; i < state.range(0); ++i) {
    rivals.addObject(stringWithFormat(i % 3 ? u"Clip %ld" : u"Other %ld", i));
  }
  for (auto _ : state) benchmark::DoNotOptimize(uniqueStringWithRivals(u"Clip", rivals));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_UniqueStringWithRivals)->Arg(1000)->Arg(10000)->Arg(100000);

}  // namespace
