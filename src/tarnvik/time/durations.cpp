#include "tarnvik/time/durations.hpp"

#include <climits>
#include <cmath>

#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/platform/time/date_formatter.hpp"

namespace tarnvik {

namespace {

// The value truncated toward zero to 32 bits, saturating where a plain cast would be undefined.
int truncated(float value) { return saturatingCast<int>(value); }

}  // namespace

String humanReadableStringForDuration(float d) {
  if (std::isnan(d) || std::isinf(d)) return u"--:--:--";
  if (d == 0) return u"0 sec";
  if (static_cast<double>(d) < 0.1) return stringWithFormat(u"%.2f sec", d);
  if (d < 4.0f) return stringWithFormat(u"%.1f sec", d);
  if (d < 59.0f) return stringWithFormat(u"%.0f sec", d);
  const int t = truncated(d);
  const int m = t / 60;
  const int s = t - 60 * m;
  if (d < 3540.0f) return stringWithFormat(u"%i:%02i min", m, s);
  const int h = t / 3600;
  return stringWithFormat(u"%i:%02i:%02i h", h, m - 60 * h, s);
}

String humanReadableStringForDuration(float duration, float notLessThan) {
  if (notLessThan > duration)
    return stringWithFormat(u"< %@", humanReadableStringForDuration(notLessThan));
  return humanReadableStringForDuration(duration);
}

String humanReadableStringForTimeInterval(TimeInterval interval) {
  float value = 0;
  const char16_t* unit = u"second";
  if (interval < 60) {
    value = static_cast<float>(interval);
  } else {
    value = static_cast<float>(interval / 60);
    unit = u"minute";
    if (value >= 60) {
      value /= 60.0f;
      unit = u"hour";
      if (value >= 24) {
        value /= 24.0f;
        unit = u"day";
        if (value >= 7) {
          value /= 7.0f;
          unit = u"week";
        }
      }
    }
  }
  const double shown = std::fmax(1.0f, value);
  const bool second = String(unit) == String(u"second");
  if (shown > 0.9 && shown < 1.1 && !second) return stringWithFormat(u"about %.0f %@", shown, unit);
  return stringWithFormat(u"%.0f %@s", shown, unit);
}

String timecodeStringWithDate(Date date, float framesPerSecond) {
  DateFormatter formatter;
  formatter.setDateFormat(u"HH':'mm':'ss");
  const String base = formatter.stringFromDate(date);
  if (base.isNil()) return String();
  if (framesPerSecond == 0) return base;
  formatter.setDateFormat(u"SSS");
  const float milliseconds = formatter.stringFromDate(date).floatValue();
  const double frames = std::floor(static_cast<double>(milliseconds * framesPerSecond) / 1000.0);
  // An infinite or enormous rate saturates; a negative or undefined frame count is 0.
  const auto count = saturatingCast<unsigned long long>(frames);
  return stringWithFormat(u"%@.%02lu", base, count);
}

}  // namespace tarnvik
