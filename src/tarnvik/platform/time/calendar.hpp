// TimeZone, Locale and Calendar: the Gregorian calendar in a time zone, the process's
// default zone and locale, and the user's preferred languages.
//
//   Calendar calendar(TimeZone::localTimeZone());
//   Date midnight = calendar.startOfDayForDate(Date::now());
#pragma once

#include <memory>
#include <mutex>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// An Olson time zone. A default-constructed TimeZone is nil.
class TimeZone {
 public:
  TimeZone() = default;
  // The process's default zone: the one installed with setDefaultTimeZone, else the system's
  // (TZ, /etc/localtime), else UTC.
  static TimeZone localTimeZone();
  // nil for a name the time-zone database does not know.
  static TimeZone timeZoneWithName(const String& name);
  // Makes the zone the process default, for ICU and for the C library (TZ) alike.
  static void setDefaultTimeZone(const TimeZone& zone);

  bool isNil() const { return name_.isNil(); }
  String name() const { return name_; }
  Integer secondsFromGMTForDate(Date date) const;
  bool isDaylightSavingTimeForDate(Date date) const;
  // The zone database's abbreviation in force at the date ("CET", "CEST", "EST"), or a GMT
  // offset ("GMT+5:30") where the database has none.
  String abbreviationForDate(Date date) const;

 private:
  explicit TimeZone(String name) : name_(std::move(name)) {}
  String name_;
};

struct Locale {
  // The identifier of the process's current locale ("en_US"), from the environment unless
  // one was installed.
  static String currentLocaleIdentifier();
  // Makes the locale the process's current one (for formatters made afterwards); text that
  // is no identifier ICU can read, or names a language ICU has no data for, means
  // "en_US_POSIX".
  static void setCurrentLocaleIdentifier(const String& identifier);
  // preferredLanguages() of bundle.hpp.
  static Array preferredLanguages();
};

// Year, month (1-12), day, hour, minute, second and weekday (1 is Sunday).
struct DateComponents {
  Integer year = 0;
  Integer month = 0;
  Integer day = 0;
  Integer hour = 0;
  Integer minute = 0;
  Integer second = 0;
  Integer weekday = 0;
};

struct CalendarState;

// The Gregorian calendar in one time zone. Safe to share between threads (calls are
// serialised).
class Calendar {
 public:
  explicit Calendar(const TimeZone& zone = TimeZone::localTimeZone());
  ~Calendar();
  Calendar(const Calendar&) = delete;
  Calendar& operator=(const Calendar&) = delete;

  TimeZone timeZone() const { return zone_; }
  DateComponents components(Date date) const;
  // Leniently: out-of-range fields roll over (day 32 of January is February 1; the weekday
  // is ignored).
  Date dateFromComponents(const DateComponents& components) const;
  // Midnight of the date's day.
  Date startOfDayForDate(Date date) const;
  // The same wall-clock time `days` days later (earlier when negative).
  Date dateByAddingDays(Date date, Integer days) const;

 private:
  TimeZone zone_;
  mutable std::mutex lock_;
  std::unique_ptr<CalendarState> state_;
};

}  // namespace tarnvik
