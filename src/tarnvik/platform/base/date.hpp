// Date: an instant as seconds from 2001-01-01 00:00:00 UTC.
//
//   Date d = Date::now();
//   double unix = d.timeIntervalSince1970();
#pragma once

#include <compare>
#include <functional>

namespace tarnvik {

using TimeInterval = double;

// Seconds between 1970-01-01 and 2001-01-01, both UTC.
inline constexpr TimeInterval NSTimeIntervalSince1970 = 978307200.0;

struct Date {
  TimeInterval timeIntervalSinceReferenceDate = 0;

  // The current instant, from the clock installed with setClock (the system clock unless
  // one was installed).
  static Date now();
  // Replaces the clock behind now() for the whole process, so that tests can fix "now";
  // nullptr restores the system clock.
  static void setClock(std::function<Date()> clock);
  static constexpr Date dateWithTimeIntervalSince1970(TimeInterval seconds) {
    return Date{seconds - NSTimeIntervalSince1970};
  }
  constexpr TimeInterval timeIntervalSince1970() const {
    return timeIntervalSinceReferenceDate + NSTimeIntervalSince1970;
  }
  constexpr TimeInterval timeIntervalSinceDate(Date other) const {
    return timeIntervalSinceReferenceDate - other.timeIntervalSinceReferenceDate;
  }
  constexpr Date dateByAddingTimeInterval(TimeInterval seconds) const {
    return Date{timeIntervalSinceReferenceDate + seconds};
  }
  friend constexpr auto operator<=>(Date, Date) = default;
};

}  // namespace tarnvik
