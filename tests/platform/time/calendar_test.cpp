#include "tarnvik/platform/time/calendar.hpp"

#include <cmath>
#include <limits>

#include "support/pinned_time.hpp"
#include "tarnvik/platform/time/date_formatter.hpp"

namespace tarnvik {
namespace {

using CalendarTest = testing::PinnedTime;

TEST_F(CalendarTest, ComponentsRollOverAndDaysKeepTheWallClock) {
  const Calendar calendar;
  EXPECT_EQ(calendar.timeZone().name().utf8(), "Europe/Berlin");
  const Date feb1 = calendar.dateFromComponents({2026, 1, 32, 0, 0, 0, 0});
  const DateComponents c = calendar.components(feb1);
  EXPECT_EQ(c.month, 2);
  EXPECT_EQ(c.day, 1);
  EXPECT_EQ(c.weekday, 1);  // a Sunday
  // Adding one day across the change to summer time keeps 12:00, in 23 hours.
  const Date noon = berlin(2026, 3, 28, 12, 0);
  const Date next = calendar.dateByAddingDays(noon, 1);
  EXPECT_EQ(calendar.components(next).hour, 12);
  EXPECT_DOUBLE_EQ(next.timeIntervalSinceDate(noon), 23 * 3600);
  EXPECT_EQ(calendar.startOfDayForDate(berlin(2026, 3, 29, 15, 0)), berlin(2026, 3, 29, 0, 0));
}

TEST_F(CalendarTest, TimeZonesOffsetsAndAbbreviations) {
  const TimeZone berlinZone = TimeZone::timeZoneWithName(u"Europe/Berlin");
  EXPECT_EQ(berlinZone.secondsFromGMTForDate(berlin(2026, 1, 1, 0, 0)), 3600);
  EXPECT_EQ(berlinZone.secondsFromGMTForDate(berlin(2026, 7, 1, 0, 0)), 7200);
  EXPECT_TRUE(berlinZone.isDaylightSavingTimeForDate(berlin(2026, 7, 1, 0, 0)));
  EXPECT_EQ(berlinZone.abbreviationForDate(berlin(2026, 1, 1, 0, 0)).utf8(), "CET");
  EXPECT_EQ(berlinZone.abbreviationForDate(berlin(2026, 7, 1, 0, 0)).utf8(), "CEST");
  const TimeZone kolkata = TimeZone::timeZoneWithName(u"Asia/Kolkata");
  EXPECT_EQ(kolkata.abbreviationForDate(Date{}).utf8(), "GMT+5:30");
  EXPECT_TRUE(TimeZone::timeZoneWithName(u"Mars/Olympus").isNil());
}

TEST_F(CalendarTest, FormatterStylesSymbolsAndStrictParsing) {
  DateFormatter f;
  f.setLocaleIdentifier(u"en_US");
  EXPECT_EQ(f.weekdaySymbols().firstObject().asString().utf8(), "Sunday");
  EXPECT_EQ(f.weekdaySymbols().count(), 7u);
  f.setDateFormat(u"yyyy-MM-dd");
  EXPECT_TRUE(f.dateFromString(u"2026-03-05").has_value());
  EXPECT_FALSE(f.dateFromString(u"2026-03-05 trailing").has_value());
  EXPECT_FALSE(f.dateFromString(u"2026-02-30").has_value());
  f.setLenient(true);
  EXPECT_TRUE(f.dateFromString(u"2026-02-30").has_value());
  f.setDateStyle(NSDateFormatterLongStyle);
  EXPECT_EQ(f.dateFormat().utf8(), "");
  EXPECT_EQ(f.stringFromDate(berlin(2026, 3, 5, 12, 0)).utf8(), "March 5, 2026");
  f.setTimeZoneName(u"America/New_York");
  EXPECT_EQ(f.stringFromDate(berlin(2026, 3, 5, 1, 0)).utf8(), "March 4, 2026");
  f.setDateStyle(NSDateFormatterMediumStyle);
  f.setDoesRelativeDateFormatting(true);
  EXPECT_EQ(f.stringFromDate(Date::now()).utf8(), "Today");
}

TEST_F(CalendarTest, AnUnreadableLocaleMeansThePOSIXLocale) {
  const Date d = berlin(2024, 7, 1, 12, 0);
  DateFormatter posix, unreadable;
  posix.setLocaleIdentifier(u"en_US_POSIX");
  unreadable.setLocaleIdentifier(u"English (United States)");
  posix.setTimeStyle(NSDateFormatterFullStyle);
  unreadable.setTimeStyle(NSDateFormatterFullStyle);
  EXPECT_EQ(unreadable.stringFromDate(d), posix.stringFromDate(d));
  unreadable.setDateFormat(u"B h:mm");  // day periods crashed ICU on a bogus locale
  EXPECT_FALSE(unreadable.stringFromDate(d).isEmpty());
  DateFormatter dayPeriods;
  dayPeriods.setLocaleIdentifier(u"en_US_POSIX");
  dayPeriods.setDateFormat(u"B h:mm");
  for (const char16_t* unknown : {u"zz", u"es)", u"tlh"}) {  // no data, no day-period rules
    DateFormatter f;
    f.setLocaleIdentifier(unknown);
    f.setDateFormat(u"B h:mm");
    EXPECT_EQ(f.dateFromString(u"in the afternoon 3:00"),
              dayPeriods.dateFromString(u"in the afternoon 3:00"))
        << String(unknown).utf8();
  }
  Locale::setCurrentLocaleIdentifier(u"English (United States)");
  EXPECT_EQ(Locale::currentLocaleIdentifier().utf8(), "en_US_POSIX");
  Locale::setCurrentLocaleIdentifier(u"en_US");
}

TEST_F(CalendarTest, OverlongFractionalSecondsParseNothing) {
  DateFormatter f;
  f.setLocaleIdentifier(u"en_US_POSIX");
  for (const std::size_t digits : {3u, 19u, 32u, 33u, 35u, 60u}) {
    f.setDateFormat(String(std::u16string(digits, u'S')));
    const String text(std::u16string(digits, u'1'));
    for (const bool lenient : {false, true}) {
      f.setLenient(lenient);
      EXPECT_EQ(f.dateFromString(text).has_value(), digits <= 32) << digits;
    }
  }
  // The field's width in the pattern does not matter: the digits in the text do.
  f.setDateFormat(u"SSSS[SS");
  EXPECT_FALSE(f.dateFromString(String(std::u16string(42, u'4'))).has_value());
  f.setDateFormat(u"'SSSS' ss");  // quoted: only text, no fraction field
  EXPECT_TRUE(f.dateFromString(u"SSSS 05").has_value());
}

TEST_F(CalendarTest, DatesNoCalendarCanPlaceFormatToNothing) {
  DateFormatter f;
  f.setLocaleIdentifier(u"ja_JP");
  f.setDateFormat(u"EEEB, MMMM d, y");
  for (const double seconds :
       {std::nan(""), std::numeric_limits<double>::infinity(), -1e300, 2e14}) {
    EXPECT_EQ(f.stringFromDate(Date{seconds}).utf8(), "") << seconds;
  }
  EXPECT_FALSE(f.stringFromDate(Date{1e14}).isEmpty());  // three million years on: still placed
}

TEST_F(CalendarTest, NoStyleForEitherPartWritesNothing) {
  for (const char16_t* locale : {u"en_US", u"de_DE", u"ja_JP"}) {
    DateFormatter f;
    f.setLocaleIdentifier(locale);
    f.setDateStyle(NSDateFormatterNoStyle);
    f.setTimeStyle(NSDateFormatterNoStyle);
    EXPECT_EQ(f.stringFromDate(berlin(2024, 7, 1, 12, 0)).utf8(), "");
    f.setTimeStyle(NSDateFormatterShortStyle);
    EXPECT_FALSE(f.stringFromDate(berlin(2024, 7, 1, 12, 0)).isEmpty());
  }
}

TEST_F(CalendarTest, TheClockCanBeFixedAndRestored) {
  fixNow(Date{42});
  EXPECT_EQ(Date::now().timeIntervalSinceReferenceDate, 42);
  Date::setClock(nullptr);
  EXPECT_GT(Date::now().timeIntervalSinceReferenceDate, 7e8);  // after 2023
}

}  // namespace
}  // namespace tarnvik
