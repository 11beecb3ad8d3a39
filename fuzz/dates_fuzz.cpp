// Date patterns, locale identifiers, date texts, styles, durations and timecodes.
#include <cmath>

#include "fuzz_input.hpp"
#include "tarnvik/platform/time/date_formatter.hpp"
#include "tarnvik/time/dates.hpp"
#include "tarnvik/time/durations.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const std::uint8_t styles = in.byte();
  const Date date{in.number<double>()};
  const float rate = in.number<float>();
  const String pattern = in.text(), locale = in.text(), text = in.text();
  fuzz::guarded([&] {
    DateFormatter formatter;
    formatter.setLocaleIdentifier(locale);
    formatter.setLenient(styles & 0x80);
    if (styles & 0x40) {
      formatter.setDateStyle(styles & 7);
      formatter.setTimeStyle((styles >> 3) & 7);
    } else {
      formatter.setDateFormat(pattern);
    }
    (void)formatter.stringFromDate(date);
    (void)formatter.dateFromString(text);
  });
  fuzz::guarded([&] { (void)stringWithDateFormat(date, pattern); });
  fuzz::guarded([&] { (void)dateFromJavaScriptCompatibleString(text); });
  fuzz::guarded([&] { (void)humanReadableString(date); });
  fuzz::guarded([&] { (void)timecodeStringWithDate(date, rate); });
  fuzz::guarded([&] { (void)humanReadableStringForDuration(rate); });
  fuzz::guarded(
      [&] { (void)humanReadableStringForTimeInterval(date.timeIntervalSinceReferenceDate); });
  return 0;
}
