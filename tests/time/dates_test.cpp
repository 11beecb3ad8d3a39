#include "tarnvik/time/dates.hpp"

#include <cmath>
#include <limits>

#include "support/pinned_time.hpp"

namespace tarnvik {
namespace {

using Dates = testing::PinnedTime;

TEST_F(Dates, FixedMachineFormats) {
  const Date d = berlin(2024, 3, 5, 14, 15, 30.25);
  EXPECT_EQ(xmlConformString(d).utf8(), "2024-03-05T14:15:30+0100");
  EXPECT_EQ(iso8601String(d).utf8(), "2024-03-05T14:15:30.250+0100");
  EXPECT_EQ(javaScriptCompatibleString(d).utf8(), "2024-03-05T14:15:30.250+0100");
  EXPECT_EQ(stringWithDateFormat(berlin(2026, 7, 1, 9, 5), u"HH:mm zzzz").utf8(),
            "09:05 Central European Summer Time");
}

TEST_F(Dates, JavaScriptStringsRoundTripToTheMillisecond) {
  for (const Date d : {berlin(1950, 6, 1, 12, 0, 0.125), berlin(1969, 12, 31, 23, 59, 59.5),
                       berlin(2001, 1, 1, 0, 0), berlin(2038, 1, 19, 4, 14, 8.75),
                       berlin(2100, 2, 28, 23, 59, 59.875)}) {
    const String text = javaScriptCompatibleString(d);
    const auto back = dateFromJavaScriptCompatibleString(text);
    ASSERT_TRUE(back.has_value()) << text.utf8();
    EXPECT_DOUBLE_EQ(back->timeIntervalSinceReferenceDate, d.timeIntervalSinceReferenceDate)
        << text.utf8();
  }
  EXPECT_FALSE(dateFromJavaScriptCompatibleString(u"2024-03-05").has_value());
  EXPECT_FALSE(dateFromJavaScriptCompatibleString(u"").has_value());
}

TEST_F(Dates, StylesAndReports) {
  const Date d = berlin(2024, 3, 5, 14, 15);
  EXPECT_EQ(stringForDateStyle(d, 1, 0).utf8(), "3/5/24");
  EXPECT_EQ(stringForDateStyle(d, 0, 1).utf8(), "2:15\u202FPM");
  EXPECT_EQ(stringForDateStyle(d, 3, 0).utf8(), "March 5, 2024");
  EXPECT_EQ(stringForDateStyle(d, 0, 0).utf8(), "");
  fixNow(berlin(2024, 1, 10, 12, 0));  // the abbreviation is that of "now": winter time
  EXPECT_EQ(reportConformString(d).utf8(), "3/5/24 2:15\u202FPM CET");
  fixNow(berlin(2024, 7, 10, 12, 0));
  EXPECT_EQ(reportConformString(d).utf8(), "3/5/24 2:15\u202FPM CEST");
}

struct HumanCase {
  const char* name;
  Date date;
  const char* oneLine;
};

TEST_F(Dates, HumanTextNamesNearbyDays) {
  fixNow(berlin(2026, 3, 31, 10, 0));  // a Tuesday, two days after the change to summer time
  const HumanCase cases[] = {
      {"midnight today", berlin(2026, 3, 31, 0, 0), "Today 12:00\u202FAM"},
      {"late today", berlin(2026, 3, 31, 23, 59, 59), "Today 11:59\u202FPM"},
      {"second before midnight", berlin(2026, 3, 30, 23, 59, 59), "Yesterday 11:59\u202FPM"},
      {"tomorrow", berlin(2026, 4, 1, 8, 0), "Tomorrow 8:00\u202FAM"},
      {"the short day", berlin(2026, 3, 29, 3, 30), "Sunday 3:30\u202FAM"},
      {"six days ago", berlin(2026, 3, 25, 9, 0), "Wednesday 9:00\u202FAM"},
      {"seven days ago", berlin(2026, 3, 24, 10, 0), "Mar 24, 2026, 10:00\u202FAM"},
      {"day after tomorrow", berlin(2026, 4, 2, 10, 0), "Apr 2, 2026, 10:00\u202FAM"},
  };
  for (const HumanCase& c : cases)
    EXPECT_EQ(humanReadableString(c.date).utf8(), c.oneLine) << c.name;
  EXPECT_EQ(humanReadableStringTwoLinesWhenLonger(berlin(2026, 3, 24, 10, 0), true).utf8(),
            "Mar 24, 2026\n10:00\u202FAM");
  EXPECT_EQ(humanReadableStringTwoLinesWhenLonger(berlin(2026, 3, 30, 10, 0), true).utf8(),
            "Yesterday 10:00\u202FAM");
}

TEST_F(Dates, HumanTextAcrossTheChangeToSummerTime) {
  fixNow(berlin(2026, 3, 30, 1, 30));  // yesterday had only 23 hours
  EXPECT_EQ(humanReadableString(berlin(2026, 3, 29, 0, 30)).utf8(), "Yesterday 12:30\u202FAM");
  EXPECT_EQ(humanReadableString(berlin(2026, 3, 28, 23, 30)).utf8(), "Saturday 11:30\u202FPM");
}

TEST_F(Dates, ComparisonsAndIntervals) {
  const Date a = berlin(2024, 1, 1, 0, 0), b = a.dateByAddingTimeInterval(1);
  EXPECT_TRUE(isLaterThanDate(b, a));
  EXPECT_TRUE(isEarlierThanDate(a, b));
  EXPECT_FALSE(isLaterThanDate(a, a));
  EXPECT_FALSE(isEarlierThanDate(a, a));
  fixNow(b.dateByAddingTimeInterval(90));
  EXPECT_DOUBLE_EQ(timeIntervalSince(b), 90);
  EXPECT_DOUBLE_EQ(timeIntervalSince(b.dateByAddingTimeInterval(100)), -10);
  const TimeInterval first = timeIntervalSinceRecentDate(b);  // anchors at "now"
  EXPECT_DOUBLE_EQ(first, -90);
  fixNow(b.dateByAddingTimeInterval(5000));
  EXPECT_DOUBLE_EQ(timeIntervalSinceRecentDate(b), -90);  // the anchor stays
}

TEST(IntervalCounts, WholeUnitsWithoutSign) {
  EXPECT_EQ(NSTimeIntervalNumberOfDays(-90000), 1u);
  EXPECT_EQ(NSTimeIntervalNumberOfDays(86399.9), 0u);
  EXPECT_EQ(NSTimeIntervalNumberOfHours(7199), 1u);
  EXPECT_EQ(NSTimeIntervalNumberOfHours(-7200), 2u);
  EXPECT_EQ(NSTimeIntervalNumberOfMinutes(59.99), 0u);
  EXPECT_EQ(NSTimeIntervalNumberOfMinutes(std::nan("")), 0u);
  EXPECT_EQ(NSTimeIntervalNumberOfMinutes(-std::numeric_limits<double>::infinity()), UINT64_MAX);
}

}  // namespace
}  // namespace tarnvik
