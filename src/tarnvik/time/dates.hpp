// Dates as text: fixed machine formats (XML, ISO 8601, JavaScript), the user's styles for
// reports, and a short human text that names nearby days ("Yesterday 14:03"); plus date
// comparisons and whole-unit counts of intervals.
//
//   humanReadableString(Date::now());                 // "Today 9:41 AM"
//   NSTimeIntervalNumberOfHours(7199);                // 1
#pragma once

#include <cstdint>
#include <optional>

#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// "yyyy-MM-dd'T'HH:mm:ssZ" in the current locale and time zone.
String xmlConformString(Date date);
// "yyyy-MM-dd'T'HH:mm:ss.SSSZZZ" in the current locale and time zone.
String iso8601String(Date date);
// The iso8601String pattern through one formatter kept for the process (its locale and
// time zone are those current at first use).
String javaScriptCompatibleString(Date date);
// Parsed with that same formatter; nullopt when the text does not match.
std::optional<Date> dateFromJavaScriptCompatibleString(const String& text);
// The date in a Unicode pattern, current locale and time zone.
String stringWithDateFormat(Date date, const String& pattern);
// The date in the platform's date and time styles (0 none to 4 full).
String stringForDateStyle(Date date, UInteger dateStyle, UInteger timeStyle);
// Short date, a blank, short time, a blank and the local zone's abbreviation (as of now).
String reportConformString(Date date);

// humanReadableStringTwoLinesWhenLonger(date, false).
String humanReadableString(Date date);
// "<day> <time>" when the date falls on tomorrow, today or yesterday (their words) or on one
// of the five days before (the weekday's name); otherwise the medium date and short time, on
// two lines when asked. The day words come from the application's own localisation (Japanese
// or Simplified Chinese when it ships one and the user prefers it, else English), chosen
// once; the time follows the user's locale. "Now" is Date::now().
String humanReadableStringTwoLinesWhenLonger(Date date, bool twoLines);

// Seconds elapsed since the date (positive for past dates).
TimeInterval timeIntervalSince(Date date);
// The date's seconds since the reference date minus an anchor taken at this operation's
// first call in the process.
TimeInterval timeIntervalSinceRecentDate(Date date);
// Strictly later (earlier); equal dates give false for both.
bool isLaterThanDate(Date date, Date other);
bool isEarlierThanDate(Date date, Date other);

// Whole days, hours and minutes in the interval, sign dropped; 0 for NaN, the largest count
// for an infinite interval.
std::uint64_t NSTimeIntervalNumberOfDays(TimeInterval interval);
std::uint64_t NSTimeIntervalNumberOfHours(TimeInterval interval);
std::uint64_t NSTimeIntervalNumberOfMinutes(TimeInterval interval);

}  // namespace tarnvik
