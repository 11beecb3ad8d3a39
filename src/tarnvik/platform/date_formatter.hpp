// DateFormatter: dates to text and back with Unicode (ICU) patterns in a locale and a
// time zone.
//
//   DateFormatter f;
//   f.setDateFormat(u"yyyy-MM-dd_HHmmss");
//   std::optional<Date> d = f.dateFromString(u"2024-03-05_141530");   // local time
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "tarnvik/platform/date.hpp"
#include "tarnvik/platform/string.hpp"

namespace tarnvik {

struct DateFormatterState;

// Starts with the current locale (ICU's default, from the environment), the local time
// zone and strict parsing. One formatter may be used from several threads; calls are
// serialised.
class DateFormatter {
 public:
  DateFormatter();
  ~DateFormatter();
  DateFormatter(const DateFormatter&) = delete;
  DateFormatter& operator=(const DateFormatter&) = delete;

  String dateFormat() const;
  void setDateFormat(const String& pattern);
  // A locale identifier such as "en_US_POSIX" or "de_DE"; nil for the current locale.
  void setLocaleIdentifier(const String& identifier);
  // An Olson name such as "Europe/Berlin" or "UTC"; nil for the local time zone.
  void setTimeZoneName(const String& name);
  void setLenient(bool lenient);

  String stringFromDate(Date date) const;
  // The date the whole text stands for; nullopt when it does not match the pattern.
  std::optional<Date> dateFromString(const String& text) const;

 private:
  void rebuild();
  mutable std::mutex lock_;
  std::unique_ptr<DateFormatterState> state_;
};

}  // namespace tarnvik
