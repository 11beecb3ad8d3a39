// Durations and timecodes as short text for status lines and reports.
//
//   humanReadableStringForDuration(4.2f);         // "4.2 sec"
//   humanReadableStringForTimeInterval(3600);     // "about 1 hour"
#pragma once

#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// "--:--:--" for NaN and the infinities, "0 sec", then "%.2f sec" below 0.1 (negative
// durations included), "%.1f sec" below 4, "%.0f sec" below 59, "m:ss min" below 3540 (so 59
// seconds already read 0:59 min) and "h:mm:ss h" from there (so 3540 reads 0:59:00 h). The
// comparisons are made in single precision, the first against 0.1 in double precision.
String humanReadableStringForDuration(float duration);
// "< " and the text for the minimum when the duration is below it; else the duration's text.
String humanReadableStringForDuration(float duration, float notLessThan);
// Seconds, minutes, hours, days or weeks, at least 1: "about 1 <unit>" between 0.9 and 1.1 of
// a unit larger than a second, else "%.0f <unit>s", the "s" always added ("1 hours" for 1.2
// hours, "1 seconds" for a fraction of a second).
String humanReadableStringForTimeInterval(TimeInterval interval);
// "HH:mm:ss" of the date in the local time zone, followed, unless fps is 0, by "." and the
// frame within the second (two digits at least): floor(milliseconds * fps / 1000).
String timecodeStringWithDate(Date date, float framesPerSecond);

}  // namespace tarnvik
