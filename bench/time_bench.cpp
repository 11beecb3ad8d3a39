// Per-call costs of the date texts. The first (cold) call builds the process-wide
// formatters, calendar and day words; repeated (warm) calls reuse them.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>

#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/time/dates.hpp"
#include "tarnvik/time/durations.hpp"

namespace {

using namespace tarnvik;

// Reports the first calls, before Google Benchmark's warm loops.
void reportColdCalls() {
  TimeZone::setDefaultTimeZone(TimeZone::timeZoneWithName(u"Europe/Berlin"));
  Locale::setCurrentLocaleIdentifier(u"en_US");
  auto time = [](auto f) {
    const auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
        .count();
  };
  const Date now = Date::now();
  std::printf("cold humanReadableString:        %8.1f us\n",
              time([&] { humanReadableString(now); }));
  std::printf("cold javaScriptCompatibleString: %8.1f us\n",
              time([&] { javaScriptCompatibleString(now); }));
}

void BM_HumanReadableString(benchmark::State& state) {
  const Date yesterday = Date::now().dateByAddingTimeInterval(-86400);
  for (auto _ : state) benchmark::DoNotOptimize(humanReadableString(yesterday));
}
BENCHMARK(BM_HumanReadableString);

void BM_HumanReadableStringOldDate(benchmark::State& state) {
  const Date old = Date::now().dateByAddingTimeInterval(-86400 * 30);
  for (auto _ : state) benchmark::DoNotOptimize(humanReadableString(old));
}
BENCHMARK(BM_HumanReadableStringOldDate);

void BM_JavaScriptCompatibleString(benchmark::State& state) {
  const Date now = Date::now();
  for (auto _ : state) benchmark::DoNotOptimize(javaScriptCompatibleString(now));
}
BENCHMARK(BM_JavaScriptCompatibleString);

void BM_DateFromJavaScriptCompatibleString(benchmark::State& state) {
  const String text = javaScriptCompatibleString(Date::now());
  for (auto _ : state) benchmark::DoNotOptimize(dateFromJavaScriptCompatibleString(text));
}
BENCHMARK(BM_DateFromJavaScriptCompatibleString);

void BM_XmlConformString(benchmark::State& state) {
  const Date now = Date::now();
  for (auto _ : state) benchmark::DoNotOptimize(xmlConformString(now));
}
BENCHMARK(BM_XmlConformString);

void BM_HumanReadableStringForDuration(benchmark::State& state) {
  float d = 3661;
  for (auto _ : state) benchmark::DoNotOptimize(humanReadableStringForDuration(d));
}
BENCHMARK(BM_HumanReadableStringForDuration);

}  // namespace

int main(int argc, char** argv) {
  reportColdCalls();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
