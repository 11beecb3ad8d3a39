#include "tarnvik/time/durations.hpp"

#include <cmath>
#include <limits>

#include "support/pinned_time.hpp"

namespace tarnvik {
namespace {

TEST(Durations, EveryThresholdFromBothSides) {
  const float inf = std::numeric_limits<float>::infinity();
  const std::pair<float, const char*> cases[] = {{0, "0 sec"},
                                                 {-0.0f, "0 sec"},
                                                 {0.05f, "0.05 sec"},
                                                 {0.0999f, "0.10 sec"},
                                                 {0.1f, "0.1 sec"},
                                                 {3.99f, "4.0 sec"},
                                                 {3.94f, "3.9 sec"},
                                                 {4, "4 sec"},
                                                 {2.5f, "2.5 sec"},
                                                 {4.5f, "4 sec"},
                                                 {5.5f, "6 sec"},
                                                 {58.9f, "59 sec"},
                                                 {58.99f, "59 sec"},
                                                 {59, "0:59 min"},
                                                 {59.99f, "0:59 min"},
                                                 {61.9f, "1:01 min"},
                                                 {3539, "58:59 min"},
                                                 {3539.9f, "58:59 min"},
                                                 {3540, "0:59:00 h"},
                                                 {3599, "0:59:59 h"},
                                                 {3661, "1:01:01 h"},
                                                 {90061, "25:01:01 h"},
                                                 {-3, "-3.00 sec"},
                                                 {-120, "-120.00 sec"},
                                                 {1e12f, "596523:14:07 h"},
                                                 {std::nanf(""), "--:--:--"},
                                                 {inf, "--:--:--"},
                                                 {-inf, "--:--:--"}};
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(humanReadableStringForDuration(seconds).utf8(), text) << seconds;
}

TEST(Durations, NotLessThanAMinimum) {
  EXPECT_EQ(humanReadableStringForDuration(0.2f, 1.0f).utf8(), "< 1.0 sec");
  EXPECT_EQ(humanReadableStringForDuration(2.0f, 1.0f).utf8(), "2.0 sec");
  EXPECT_EQ(humanReadableStringForDuration(0.2f, 0.5f).utf8(), "< 0.5 sec");
  EXPECT_EQ(humanReadableStringForDuration(1.0f, 1.0f).utf8(), "1.0 sec");
}

TEST(Durations, IntervalsInTheLargestUnit) {
  const std::pair<double, const char*> cases[] = {
      {30, "30 seconds"},     {0.3, "1 seconds"},         {-100, "1 seconds"},
      {59.9, "60 seconds"},   {60, "about 1 minute"},     {90, "2 minutes"},
      {3599, "60 minutes"},   {3600, "about 1 hour"},     {4320, "1 hours"},
      {86400, "about 1 day"}, {172800, "2 days"},         {604800, "about 1 week"},
      {1209600, "2 weeks"},   {86400 * 365.0, "52 weeks"}};
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(humanReadableStringForTimeInterval(seconds).utf8(), text) << seconds;
}

using Timecodes = testing::PinnedTime;

TEST_F(Timecodes, FramesFromTheMilliseconds) {
  const Date d = berlin(2026, 3, 5, 14, 3, 27.5);
  EXPECT_EQ(timecodeStringWithDate(d, 25).utf8(), "14:03:27.12");
  EXPECT_EQ(timecodeStringWithDate(d, 0).utf8(), "14:03:27");
  EXPECT_EQ(timecodeStringWithDate(d, 23.976f).utf8(), "14:03:27.11");
  EXPECT_EQ(timecodeStringWithDate(d, 60).utf8(), "14:03:27.30");
  const Date late = berlin(2026, 3, 5, 14, 3, 27.96875);  // 968 ms
  EXPECT_EQ(timecodeStringWithDate(late, 29.97f).utf8(), "14:03:27.29");
  EXPECT_EQ(timecodeStringWithDate(late, 120).utf8(), "14:03:27.116");
  EXPECT_EQ(timecodeStringWithDate(berlin(2026, 7, 1, 0, 0), 25).utf8(), "00:00:00.00");
}

TEST_F(Timecodes, RatesBeyondAnyFrameCountSaturate) {
  const Date d = berlin(2026, 3, 5, 14, 3, 27.5);
  const float infinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ(timecodeStringWithDate(d, infinite).utf8(), "14:03:27.18446744073709551615");
  EXPECT_EQ(timecodeStringWithDate(d, 3e38f).utf8(), "14:03:27.18446744073709551615");
  EXPECT_EQ(timecodeStringWithDate(d, -infinite).utf8(), "14:03:27.00");
  EXPECT_EQ(timecodeStringWithDate(d, std::nanf("")).utf8(), "14:03:27.00");
  EXPECT_EQ(humanReadableStringForDuration(3e38f).utf8(), "596523:14:07 h");
}

TEST_F(Timecodes, DatesOutsideTheCalendarDescribeAndAbbreviateWithoutOverflow) {
  for (const double seconds :
       {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e300, 9.3e18}) {
    const Value date(Date{seconds});
    EXPECT_FALSE(date.description().isEmpty()) << seconds;
    EXPECT_FALSE(TimeZone::localTimeZone().abbreviationForDate(Date{seconds}).isNil()) << seconds;
  }
  EXPECT_EQ(Value(Date{0}).description().utf8(), "2001-01-01 00:00:00 +0000");
}

}  // namespace
}  // namespace tarnvik
