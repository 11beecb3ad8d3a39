#include "tarnvik/time/dates.hpp"

#include <unicode/locid.h>
#include <unicode/reldatefmt.h>
#include <unicode/udisplaycontext.h>

#include <cmath>
#include <memory>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/internal/icu_text.hpp"
#include "tarnvik/platform/system/bundle.hpp"
#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/platform/time/date_formatter.hpp"

namespace tarnvik {

namespace {

constexpr TimeInterval kSecondsPerDay = 86400;

String formatted(Date date, const String& pattern) {
  DateFormatter formatter;
  formatter.setDateFormat(pattern);
  return formatter.stringFromDate(date);
}

DateFormatter& javaScriptFormatter() {
  static DateFormatter* const formatter = [] {
    auto* f = new DateFormatter();
    f->setDateFormat(u"yyyy-MM-dd'T'HH:mm:ss.SSSZZZ");
    return f;
  }();
  return *formatter;
}

// Whether the user prefers the language first or second and the application ships it.
bool prefersShippedLanguage(const Array& preferred, std::u16string_view language) {
  for (UInteger i = 0; i < std::min<UInteger>(2, preferred.count()); ++i) {
    const auto name = preferred[i].asString().units();
    const bool matches = name.starts_with(language) &&
                         (name.size() == language.size() || name[language.size()] == u'_' ||
                          name[language.size()] == u'-');
    if (matches) return !Bundle::mainBundle().pathForResource(String(language), u"lproj").isNil();
  }
  return false;
}

// The process-wide pieces of the human text, made once.
struct DayWords {
  Calendar calendar;
  Array weekdays;
  String yesterday, today, tomorrow;
};

const DayWords& dayWords() {
  static const DayWords* const words = [] {
    auto* w = new DayWords();
    const Array preferred = preferredLanguages();
    const char* locale = prefersShippedLanguage(preferred, u"ja")        ? "ja_JP"
                         : prefersShippedLanguage(preferred, u"zh-Hans") ? "zh_Hans"
                                                                         : "en_US";
    DateFormatter names;
    names.setLocaleIdentifier(String(locale));
    w->weekdays = names.weekdaySymbols();
    UErrorCode status = U_ZERO_ERROR;
    icu::RelativeDateTimeFormatter relative(icu::Locale(locale), nullptr, UDAT_STYLE_LONG,
                                            UDISPCTX_CAPITALIZATION_FOR_BEGINNING_OF_SENTENCE,
                                            status);
    auto word = [&](UDateDirection direction) {
      icu::UnicodeString text;
      UErrorCode s = U_ZERO_ERROR;
      relative.format(direction, UDAT_ABSOLUTE_DAY, text, s);
      return icu_text::fromICU(text);
    };
    if (U_SUCCESS(status)) {
      w->yesterday = word(UDAT_DIRECTION_LAST);
      w->today = word(UDAT_DIRECTION_THIS);
      w->tomorrow = word(UDAT_DIRECTION_NEXT);
    }
    return w;
  }();
  return *words;
}

// The medium-date, short-time formatters of the current locale and time zone, kept per
// thread and made again only when the locale or the zone changes.
struct MainFormatters {
  String locale, zone;
  DateFormatter dateAndTime, dateOnly, timeOnly;
};

MainFormatters& mainFormatters() {
  thread_local std::unique_ptr<MainFormatters> cached;
  const String locale = Locale::currentLocaleIdentifier();
  const String zone = TimeZone::localTimeZone().name();
  if (!cached || cached->locale != locale || cached->zone != zone) {
    cached = std::make_unique<MainFormatters>();
    cached->locale = locale;
    cached->zone = zone;
    cached->dateAndTime.setDateStyle(NSDateFormatterMediumStyle);
    cached->dateAndTime.setTimeStyle(NSDateFormatterShortStyle);
    cached->dateOnly.setDateStyle(NSDateFormatterMediumStyle);
    cached->timeOnly.setTimeStyle(NSDateFormatterShortStyle);
  }
  return *cached;
}

std::uint64_t wholeUnits(TimeInterval interval, double unit) {
  if (std::isnan(interval)) return 0;
  const double count = std::fabs(interval) / unit;
  return count >= 18446744073709551616.0 ? UINT64_MAX : static_cast<std::uint64_t>(count);
}

}  // namespace

String xmlConformString(Date date) { return formatted(date, u"yyyy-MM-dd'T'HH:mm:ssZ"); }

String iso8601String(Date date) { return formatted(date, u"yyyy-MM-dd'T'HH:mm:ss.SSSZZZ"); }

String javaScriptCompatibleString(Date date) { return javaScriptFormatter().stringFromDate(date); }

std::optional<Date> dateFromJavaScriptCompatibleString(const String& text) {
  return javaScriptFormatter().dateFromString(text);
}

String stringWithDateFormat(Date date, const String& pattern) { return formatted(date, pattern); }

String stringForDateStyle(Date date, UInteger dateStyle, UInteger timeStyle) {
  DateFormatter formatter;
  formatter.setDateStyle(dateStyle);
  formatter.setTimeStyle(timeStyle);
  return formatter.stringFromDate(date);
}

String reportConformString(Date date) {
  DateFormatter formatter;
  formatter.setDateStyle(NSDateFormatterShortStyle);
  formatter.setTimeStyle(NSDateFormatterNoStyle);
  String text = formatter.stringFromDate(date);
  formatter.setDateStyle(NSDateFormatterNoStyle);
  formatter.setTimeStyle(NSDateFormatterShortStyle);
  appendFormat(text, u" %@ %@", formatter.stringFromDate(date),
               formatter.timeZone().abbreviationForDate(Date::now()));
  return text;
}

String humanReadableString(Date date) { return humanReadableStringTwoLinesWhenLonger(date, false); }

String humanReadableStringTwoLinesWhenLonger(Date date, bool twoLines) {
  const DayWords& words = dayWords();
  MainFormatters& main = mainFormatters();
  const Date dayStart = words.calendar.startOfDayForDate(date);
  const DateComponents today =
      words.calendar.components(words.calendar.startOfDayForDate(Date::now()));
  String prefix;
  for (Integer offset = 1; offset >= -6; --offset) {
    DateComponents day = today;
    day.day += offset;
    const Date candidate = words.calendar.dateFromComponents(day);
    if (dayStart != candidate) continue;
    if (offset == 1) {
      prefix = words.tomorrow;
    } else if (offset == 0) {
      prefix = words.today;
    } else if (offset == -1) {
      prefix = words.yesterday;
    } else {
      const Integer weekday = words.calendar.components(candidate).weekday;
      prefix = words.weekdays[static_cast<UInteger>(weekday - 1)].asString();
    }
    prefix.appendString(u" ");
    if (offset == 1) break;
  }
  if (!prefix.isNil()) return stringWithFormat(u"%@%@", prefix, main.timeOnly.stringFromDate(date));
  if (twoLines) {
    return stringWithFormat(u"%@\n%@", main.dateOnly.stringFromDate(date),
                            main.timeOnly.stringFromDate(date));
  }
  return main.dateAndTime.stringFromDate(date);
}

TimeInterval timeIntervalSince(Date date) { return Date::now().timeIntervalSinceDate(date); }

TimeInterval timeIntervalSinceRecentDate(Date date) {
  static const TimeInterval anchor = Date::now().timeIntervalSinceReferenceDate;
  return date.timeIntervalSinceReferenceDate - anchor;
}

bool isLaterThanDate(Date date, Date other) { return date > other; }

bool isEarlierThanDate(Date date, Date other) { return date < other; }

std::uint64_t NSTimeIntervalNumberOfDays(TimeInterval interval) {
  return wholeUnits(interval, kSecondsPerDay);
}
std::uint64_t NSTimeIntervalNumberOfHours(TimeInterval interval) {
  return wholeUnits(interval, 3600);
}
std::uint64_t NSTimeIntervalNumberOfMinutes(TimeInterval interval) {
  return wholeUnits(interval, 60);
}

}  // namespace tarnvik
