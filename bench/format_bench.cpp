// The format engine against snprintf on the same integer and string formats, and String's
// UTF-8 round trip. The snprintf cases include the UTF-16 conversion a String result needs,
// so both sides deliver the same thing; the *_raw case shows snprintf alone.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "tarnvik/platform/foundation.hpp"

namespace {

using namespace tarnvik;

void BM_Format_Integers(benchmark::State& state) {
  std::int64_t i = 0;
  for (auto _ : state) {
    String s = stringWithFormat(u"%d clips, %ld frames, %lu bytes", static_cast<int>(i), i * 25,
                                static_cast<unsigned long>(i) * 1024);
    benchmark::DoNotOptimize(s);
    ++i;
  }
}
BENCHMARK(BM_Format_Integers);

void BM_Snprintf_Integers(benchmark::State& state) {
  std::int64_t i = 0;
  char buffer[128];
  for (auto _ : state) {
    const int n =
        std::snprintf(buffer, sizeof buffer, "%d clips, %ld frames, %lu bytes", static_cast<int>(i),
                      static_cast<long>(i * 25), static_cast<unsigned long>(i) * 1024);
    String s = String::fromUTF8(std::string_view(buffer, static_cast<std::size_t>(n)));
    benchmark::DoNotOptimize(s);
    ++i;
  }
}
BENCHMARK(BM_Snprintf_Integers);

void BM_Snprintf_Integers_raw(benchmark::State& state) {
  std::int64_t i = 0;
  char buffer[128];
  for (auto _ : state) {
    std::snprintf(buffer, sizeof buffer, "%d clips, %ld frames, %lu bytes", static_cast<int>(i),
                  static_cast<long>(i * 25), static_cast<unsigned long>(i) * 1024);
    benchmark::DoNotOptimize(buffer);
    ++i;
  }
}
BENCHMARK(BM_Snprintf_Integers_raw);

void BM_Format_PaddedCounter(benchmark::State& state) {
  const String stem = u"A001C";
  int i = 0;
  for (auto _ : state) {
    String s = stringWithFormat(u"%@%04d.mov", stem, i++);
    benchmark::DoNotOptimize(s);
  }
}
BENCHMARK(BM_Format_PaddedCounter);

void BM_Snprintf_PaddedCounter(benchmark::State& state) {
  const std::string stem = "A001C";
  char buffer[64];
  int i = 0;
  for (auto _ : state) {
    const int n = std::snprintf(buffer, sizeof buffer, "%s%04d.mov", stem.c_str(), i++);
    String s = String::fromUTF8(std::string_view(buffer, static_cast<std::size_t>(n)));
    benchmark::DoNotOptimize(s);
  }
}
BENCHMARK(BM_Snprintf_PaddedCounter);

void BM_Format_Strings(benchmark::State& state) {
  const String volume = u"/Volumes/Media", clip = u"A001C009.mov";
  for (auto _ : state) {
    String s = stringWithFormat(u"%@/%@ (%s)", volume, clip, "copied");
    benchmark::DoNotOptimize(s);
  }
}
BENCHMARK(BM_Format_Strings);

void BM_Snprintf_Strings(benchmark::State& state) {
  const std::string volume = "/Volumes/Media", clip = "A001C009.mov";
  char buffer[128];
  for (auto _ : state) {
    const int n =
        std::snprintf(buffer, sizeof buffer, "%s/%s (%s)", volume.c_str(), clip.c_str(), "copied");
    String s = String::fromUTF8(std::string_view(buffer, static_cast<std::size_t>(n)));
    benchmark::DoNotOptimize(s);
  }
}
BENCHMARK(BM_Snprintf_Strings);

void BM_String_UTF8RoundTrip(benchmark::State& state) {
  std::string text;
  for (int i = 0; i < state.range(0) / 16; ++i) text += "Clip_Grüße_🎬_01";
  for (auto _ : state) {
    const String s = String::fromUTF8(text);
    std::string back = s.utf8();
    benchmark::DoNotOptimize(back);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_String_UTF8RoundTrip)->Arg(64)->Arg(4096)->Arg(1 << 20);

}  // namespace
