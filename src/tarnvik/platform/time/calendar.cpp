#include "tarnvik/platform/time/calendar.hpp"

#include <stdlib.h>
#include <time.h>
#include <unicode/calendar.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cmath>

#include "tarnvik/platform/base/internal/icu_text.hpp"
#include "tarnvik/platform/system/bundle.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

std::unique_ptr<icu::TimeZone> icuZone(const String& name) {
  return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(icu_text::copy(name)));
}

UDate toUDate(Date date) { return date.timeIntervalSince1970() * kMillisecondsPerSecond; }

}  // namespace

TimeZone TimeZone::localTimeZone() {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  icu::UnicodeString id;
  zone->getID(id);
  return TimeZone(icu_text::fromICU(id));
}

TimeZone TimeZone::timeZoneWithName(const String& name) {
  if (name.isEmpty()) return TimeZone();
  const auto zone = icuZone(name);
  if (*zone == icu::TimeZone::getUnknown()) return TimeZone();
  return TimeZone(name);
}

void TimeZone::setDefaultTimeZone(const TimeZone& zone) {
  if (zone.isNil()) return;
  icu::TimeZone::adoptDefault(icuZone(zone.name()).release());
  setenv("TZ", zone.name().utf8().c_str(), 1);
  tzset();
}

Integer TimeZone::secondsFromGMTForDate(Date date) const {
  if (isNil()) return 0;
  int32_t raw = 0, dst = 0;
  UErrorCode status = U_ZERO_ERROR;
  icuZone(name_)->getOffset(toUDate(date), false, raw, dst, status);
  return U_SUCCESS(status) ? (raw + dst) / 1000 : 0;
}

bool TimeZone::isDaylightSavingTimeForDate(Date date) const {
  if (isNil()) return false;
  int32_t raw = 0, dst = 0;
  UErrorCode status = U_ZERO_ERROR;
  icuZone(name_)->getOffset(toUDate(date), false, raw, dst, status);
  return U_SUCCESS(status) && dst != 0;
}

String TimeZone::abbreviationForDate(Date date) const {
  if (isNil()) return String();
  // The C library reads the zone database's own abbreviations; it answers for the zone in
  // TZ, so it is asked only when this is that zone.
  const char* tz = getenv("TZ");
  const bool isProcessZone = (tz && name_ == String(tz[0] == ':' ? tz + 1 : tz)) ||
                             (!tz && name_ == localTimeZone().name());
  if (isProcessZone) {
    const auto seconds = saturatingCast<time_t>(std::floor(date.timeIntervalSince1970()));
    struct tm local {};
    if (localtime_r(&seconds, &local) && local.tm_zone && local.tm_zone[0] &&
        local.tm_zone[0] != '+' && local.tm_zone[0] != '-') {
      return String(local.tm_zone);
    }
  }
  const Integer offset = secondsFromGMTForDate(date);
  if (offset == 0) return u"GMT";
  const Integer minutes = std::abs(offset) / 60;
  if (minutes % 60 == 0) return stringWithFormat(u"GMT%c%ld", offset < 0 ? '-' : '+', minutes / 60);
  return stringWithFormat(u"GMT%c%ld:%02ld", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

String Locale::currentLocaleIdentifier() { return String(icu::Locale::getDefault().getName()); }

void Locale::setCurrentLocaleIdentifier(const String& identifier) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu_text::locale(identifier), status);
}

Array Locale::preferredLanguages() { return tarnvik::preferredLanguages(); }

struct CalendarState {
  std::unique_ptr<icu::Calendar> calendar;
};

Calendar::Calendar(const TimeZone& zone)
    : zone_(zone.isNil() ? TimeZone::timeZoneWithName(u"UTC") : zone),
      state_(std::make_unique<CalendarState>()) {
  UErrorCode status = U_ZERO_ERROR;
  state_->calendar =
      std::make_unique<icu::GregorianCalendar>(icuZone(zone_.name()).release(), status);
  state_->calendar->setLenient(true);
}

Calendar::~Calendar() = default;

DateComponents Calendar::components(Date date) const {
  std::lock_guard guard(lock_);
  icu::Calendar& c = *state_->calendar;
  UErrorCode status = U_ZERO_ERROR;
  c.setTime(toUDate(date), status);
  DateComponents out;
  out.year = c.get(UCAL_EXTENDED_YEAR, status);
  out.month = c.get(UCAL_MONTH, status) + 1;
  out.day = c.get(UCAL_DATE, status);
  out.hour = c.get(UCAL_HOUR_OF_DAY, status);
  out.minute = c.get(UCAL_MINUTE, status);
  out.second = c.get(UCAL_SECOND, status);
  out.weekday = c.get(UCAL_DAY_OF_WEEK, status);
  return out;
}

Date Calendar::dateFromComponents(const DateComponents& components) const {
  std::lock_guard guard(lock_);
  icu::Calendar& c = *state_->calendar;
  c.clear();
  c.set(UCAL_EXTENDED_YEAR, static_cast<int32_t>(components.year));
  c.set(UCAL_MONTH, static_cast<int32_t>(components.month - 1));
  c.set(UCAL_DATE, static_cast<int32_t>(components.day));
  c.set(UCAL_HOUR_OF_DAY, static_cast<int32_t>(components.hour));
  c.set(UCAL_MINUTE, static_cast<int32_t>(components.minute));
  c.set(UCAL_SECOND, static_cast<int32_t>(components.second));
  UErrorCode status = U_ZERO_ERROR;
  const UDate millis = c.getTime(status);
  return Date::dateWithTimeIntervalSince1970(millis / kMillisecondsPerSecond);
}

Date Calendar::startOfDayForDate(Date date) const {
  DateComponents day = components(date);
  day.hour = day.minute = day.second = 0;
  return dateFromComponents(day);
}

Date Calendar::dateByAddingDays(Date date, Integer days) const {
  DateComponents shifted = components(date);
  shifted.day += days;
  const double fraction =
      date.timeIntervalSinceReferenceDate - std::floor(date.timeIntervalSinceReferenceDate);
  return dateFromComponents(shifted).dateByAddingTimeInterval(fraction);
}

}  // namespace tarnvik
