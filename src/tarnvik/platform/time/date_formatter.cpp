#include "tarnvik/platform/time/date_formatter.hpp"

#include <unicode/datefmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>
#include <unicode/udisplaycontext.h>
#include <unicode/utf16.h>

#include <cmath>

#include "tarnvik/platform/base/internal/icu_text.hpp"

namespace tarnvik {

struct DateFormatterState {
  String pattern = u"";
  bool usesStyles = false;
  UInteger dateStyle = NSDateFormatterNoStyle;
  UInteger timeStyle = NSDateFormatterNoStyle;
  bool relative = false;
  String locale;
  TimeZone zone;
  bool lenient = false;
  std::unique_ptr<icu::DateFormat> format;
};

namespace {

// ICU counts milliseconds from 1970.
constexpr double kMillisecondsPerSecond = 1000.0;
// The widest instant ICU's calendars accept (their MAX_MILLIS), in milliseconds from 1970.
constexpr double kLargestMilliseconds = 183882168921600000.0;

icu::DateFormat::EStyle icuStyle(UInteger style, bool relative) {
  icu::DateFormat::EStyle s = icu::DateFormat::kNone;
  switch (style) {
    case NSDateFormatterNoStyle:
      return icu::DateFormat::kNone;
    case NSDateFormatterShortStyle:
      s = icu::DateFormat::kShort;
      break;
    case NSDateFormatterMediumStyle:
      s = icu::DateFormat::kMedium;
      break;
    case NSDateFormatterLongStyle:
      s = icu::DateFormat::kLong;
      break;
    default:
      s = icu::DateFormat::kFull;
      break;
  }
  return relative ? static_cast<icu::DateFormat::EStyle>(s | icu::DateFormat::kRelative) : s;
}

// Whether parsing the text with the pattern could reach ICU's fractional-seconds reader
// with 35 digits or more: it scales the field by a 32-bit power of ten that wraps to zero
// there and divides by it (ICU 72). Such texts parse nothing: the pattern has an unquoted
// "S" and the text a run of more than 32 decimal digits.
bool overflowsFraction(const String& pattern, const String& text) {
  constexpr std::size_t kLongestDigitRun = 32;
  bool quoted = false, fraction = false;
  for (const char16_t c : pattern.units()) {
    if (c == u'\'') quoted = !quoted;
    fraction = fraction || (!quoted && c == u'S');
  }
  if (!fraction) return false;
  std::size_t run = 0;
  const auto units = text.units();
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units.data(), i, units.size(), c);
    run = u_isdigit(c) ? run + 1 : 0;
    if (run > kLongestDigitRun) return true;
  }
  return false;
}

icu::Locale localeOf(const DateFormatterState& state) {
  return state.locale.isNil() ? icu::Locale::getDefault() : icu_text::locale(state.locale);
}

}  // namespace

DateFormatter::DateFormatter() : state_(std::make_unique<DateFormatterState>()) { rebuild(); }
DateFormatter::~DateFormatter() = default;

void DateFormatter::rebuild() {
  const icu::Locale locale = localeOf(*state_);
  std::unique_ptr<icu::DateFormat> format;
  // With no style for either part there is nothing to write: such a formatter behaves as
  // one with an empty pattern, not as ICU's fallback for "no style, no style".
  const bool styled = state_->usesStyles && (state_->dateStyle != NSDateFormatterNoStyle ||
                                             state_->timeStyle != NSDateFormatterNoStyle);
  if (styled) {
    format.reset(icu::DateFormat::createDateTimeInstance(
        icuStyle(state_->dateStyle, state_->relative), icuStyle(state_->timeStyle, false), locale));
  } else {
    UErrorCode status = U_ZERO_ERROR;
    const String pattern = state_->usesStyles ? String(u"") : state_->pattern;
    format = std::make_unique<icu::SimpleDateFormat>(icu_text::copy(pattern), locale, status);
    if (U_FAILURE(status)) format.reset();
  }
  if (format) {
    format->adoptTimeZone(state_->zone.isNil()
                              ? icu::TimeZone::createDefault()
                              : icu::TimeZone::createTimeZone(icu_text::copy(state_->zone.name())));
    format->setLenient(state_->lenient);
    if (state_->relative) {
      UErrorCode status = U_ZERO_ERROR;
      format->setContext(UDISPCTX_CAPITALIZATION_FOR_BEGINNING_OF_SENTENCE, status);
    }
  }
  state_->format = std::move(format);
}

String DateFormatter::dateFormat() const {
  std::lock_guard guard(lock_);
  return state_->usesStyles ? String(u"") : state_->pattern;
}

void DateFormatter::setDateFormat(const String& pattern) {
  std::lock_guard guard(lock_);
  state_->pattern = pattern.isNil() ? String(u"") : pattern;
  state_->usesStyles = false;
  rebuild();
}

void DateFormatter::setDateStyle(UInteger style) {
  std::lock_guard guard(lock_);
  state_->dateStyle = style;
  state_->usesStyles = true;
  rebuild();
}

void DateFormatter::setTimeStyle(UInteger style) {
  std::lock_guard guard(lock_);
  state_->timeStyle = style;
  state_->usesStyles = true;
  rebuild();
}

void DateFormatter::setDoesRelativeDateFormatting(bool relative) {
  std::lock_guard guard(lock_);
  state_->relative = relative;
  rebuild();
}

void DateFormatter::setLocaleIdentifier(const String& identifier) {
  std::lock_guard guard(lock_);
  state_->locale = identifier;
  rebuild();
}

void DateFormatter::setTimeZone(const TimeZone& zone) {
  std::lock_guard guard(lock_);
  state_->zone = zone;
  rebuild();
}

TimeZone DateFormatter::timeZone() const {
  std::lock_guard guard(lock_);
  return state_->zone.isNil() ? TimeZone::localTimeZone() : state_->zone;
}

void DateFormatter::setLenient(bool lenient) {
  std::lock_guard guard(lock_);
  state_->lenient = lenient;
  rebuild();
}

String DateFormatter::stringFromDate(Date date) const {
  std::lock_guard guard(lock_);
  if (!state_->format) return String();
  // ICU's calendars span about 5.8 million years either side of 1970; outside them (and for
  // NaN) its fields are garbage that formatting indexes tables with.
  const double millis = date.timeIntervalSince1970() * kMillisecondsPerSecond;
  if (!(std::fabs(millis) <= kLargestMilliseconds)) return String(u"");
  icu::UnicodeString out;
  state_->format->format(millis, out);
  return icu_text::fromICU(out);
}

std::optional<Date> DateFormatter::dateFromString(const String& text) const {
  std::lock_guard guard(lock_);
  if (!state_->format || text.isNil() || overflowsFraction(state_->pattern, text)) {
    return std::nullopt;
  }
  const icu::UnicodeString input = icu_text::copy(text);
  icu::ParsePosition position(0);
  const UDate millis = state_->format->parse(input, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
  return Date::dateWithTimeIntervalSince1970(millis / kMillisecondsPerSecond);
}

Array DateFormatter::weekdaySymbols() const {
  std::lock_guard guard(lock_);
  UErrorCode status = U_ZERO_ERROR;
  const icu::DateFormatSymbols symbols(localeOf(*state_), status);
  Array names = Array::array();
  if (U_FAILURE(status)) return names;
  int32_t count = 0;
  const icu::UnicodeString* weekdays = symbols.getWeekdays(count);
  // ICU's list starts with an empty entry so that index 1 is Sunday.
  for (int32_t i = 1; i < count; ++i) names.addObject(icu_text::fromICU(weekdays[i]));
  return names;
}

}  // namespace tarnvik
