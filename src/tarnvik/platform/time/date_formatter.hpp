// DateFormatter: dates to text and back, with Unicode (ICU) patterns or the platform's date
// and time styles, in a locale and a time zone, optionally naming nearby days ("Today").
//
//   DateFormatter f;
//   f.setDateFormat(u"yyyy-MM-dd_HHmmss");
//   std::optional<Date> d = f.dateFromString(u"2024-03-05_141530");   // local time
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/time/calendar.hpp"

namespace tarnvik {

enum DateFormatterStyle : UInteger {
  NSDateFormatterNoStyle = 0,
  NSDateFormatterShortStyle = 1,
  NSDateFormatterMediumStyle = 2,
  NSDateFormatterLongStyle = 3,
  NSDateFormatterFullStyle = 4,
};

struct DateFormatterState;

// Starts with the current locale, the local time zone, no styles, an empty pattern and
// strict parsing. Setting a pattern switches the styles off; setting a style switches the
// pattern off. One formatter may be used from several threads; calls are serialised.
class DateFormatter {
 public:
  DateFormatter();
  ~DateFormatter();
  DateFormatter(const DateFormatter&) = delete;
  DateFormatter& operator=(const DateFormatter&) = delete;

  String dateFormat() const;
  void setDateFormat(const String& pattern);
  // Styles 0 (none) to 4 (full); larger values count as full.
  void setDateStyle(UInteger style);
  void setTimeStyle(UInteger style);
  // With styles: "Yesterday", "Today" and "Tomorrow" (in the locale's words, capitalised as
  // at the start of a sentence) in place of those days' dates.
  void setDoesRelativeDateFormatting(bool relative);
  // A locale identifier such as "en_US_POSIX" or "de_DE"; nil for the current locale. Text
  // that is no identifier ICU can read ("English (United States)"), or names a language ICU has
  // no data for ("zz"), means "en_US_POSIX".
  void setLocaleIdentifier(const String& identifier);
  // nil restores the local time zone.
  void setTimeZone(const TimeZone& zone);
  void setTimeZoneName(const String& name) { setTimeZone(TimeZone::timeZoneWithName(name)); }
  TimeZone timeZone() const;
  void setLenient(bool lenient);

  // "" for a date no calendar can place: NaN, infinite, or more than about 5.8 million years
  // from 1970.
  String stringFromDate(Date date) const;
  // The date the whole text stands for; nullopt when it does not match, and always when
  // the pattern has a fractional-seconds field ("S") and the text a run of more than 32
  // decimal digits (ICU cannot read such a fraction safely).
  std::optional<Date> dateFromString(const String& text) const;
  // The locale's weekday names, Sunday first.
  Array weekdaySymbols() const;

 private:
  void rebuild();
  mutable std::mutex lock_;
  std::unique_ptr<DateFormatterState> state_;
};

}  // namespace tarnvik
