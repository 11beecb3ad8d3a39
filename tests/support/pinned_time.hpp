// Pins the process's locale (en_US) and time zone (Europe/Berlin, which changes to summer
// time on 2026-03-29) for date tests, and lets a test fix "now".
#pragma once

#include <gtest/gtest.h>

#include "tarnvik/platform/time/calendar.hpp"

namespace tarnvik::testing {

class PinnedTime : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    TimeZone::setDefaultTimeZone(TimeZone::timeZoneWithName(u"Europe/Berlin"));
    Locale::setCurrentLocaleIdentifier(u"en_US");
  }
  void TearDown() override { Date::setClock(nullptr); }

  // A wall-clock time in Berlin.
  static Date berlin(int year, int month, int day, int hour, int minute, double second = 0) {
    static const Calendar calendar(TimeZone::timeZoneWithName(u"Europe/Berlin"));
    const Date whole = calendar.dateFromComponents({year, month, day, hour, minute, 0, 0});
    return whole.dateByAddingTimeInterval(second);
  }
  static void fixNow(Date now) {
    Date::setClock([now] { return now; });
  }
};

}  // namespace tarnvik::testing
