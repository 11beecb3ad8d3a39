#include "tarnvik/platform/date_formatter.hpp"

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace tarnvik {

struct DateFormatterState {
  String pattern = u"";
  String locale;
  String timeZone;
  bool lenient = false;
  std::unique_ptr<icu::SimpleDateFormat> format;
};

namespace {

// ICU counts milliseconds from 1970.
constexpr double kMillisecondsPerSecond = 1000.0;

icu::UnicodeString toICU(const String& text) {
  const auto units = text.units();
  return icu::UnicodeString(units.data(), static_cast<int32_t>(units.size()));
}

}  // namespace

DateFormatter::DateFormatter() : state_(std::make_unique<DateFormatterState>()) { rebuild(); }
DateFormatter::~DateFormatter() = default;

void DateFormatter::rebuild() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale = state_->locale.isNil() ? icu::Locale::getDefault()
                                                    : icu::Locale(state_->locale.utf8().c_str());
  auto format = std::make_unique<icu::SimpleDateFormat>(toICU(state_->pattern), locale, status);
  if (U_FAILURE(status)) {
    state_->format.reset();
    return;
  }
  format->adoptTimeZone(state_->timeZone.isNil()
                            ? icu::TimeZone::createDefault()
                            : icu::TimeZone::createTimeZone(toICU(state_->timeZone)));
  format->setLenient(state_->lenient);
  state_->format = std::move(format);
}

String DateFormatter::dateFormat() const {
  std::lock_guard guard(lock_);
  return state_->pattern;
}

void DateFormatter::setDateFormat(const String& pattern) {
  std::lock_guard guard(lock_);
  state_->pattern = pattern.isNil() ? String(u"") : pattern;
  rebuild();
}

void DateFormatter::setLocaleIdentifier(const String& identifier) {
  std::lock_guard guard(lock_);
  state_->locale = identifier;
  rebuild();
}

void DateFormatter::setTimeZoneName(const String& name) {
  std::lock_guard guard(lock_);
  state_->timeZone = name;
  rebuild();
}

void DateFormatter::setLenient(bool lenient) {
  std::lock_guard guard(lock_);
  state_->lenient = lenient;
  rebuild();
}

String DateFormatter::stringFromDate(Date date) const {
  std::lock_guard guard(lock_);
  if (!state_->format) return String();
  icu::UnicodeString out;
  state_->format->format(date.timeIntervalSince1970() * kMillisecondsPerSecond, out);
  return String(std::u16string_view(out.getBuffer(), static_cast<std::size_t>(out.length())));
}

std::optional<Date> DateFormatter::dateFromString(const String& text) const {
  std::lock_guard guard(lock_);
  if (!state_->format || text.isNil()) return std::nullopt;
  const icu::UnicodeString input = toICU(text);
  icu::ParsePosition position(0);
  const UDate millis = state_->format->parse(input, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
  return Date::dateWithTimeIntervalSince1970(millis / kMillisecondsPerSecond);
}

}  // namespace tarnvik
