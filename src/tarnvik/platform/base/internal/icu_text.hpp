// Moving text between String and ICU's UnicodeString. Not installed.
#pragma once

#include <unicode/unistr.h>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik::icu_text {

// A copy of the text.
inline icu::UnicodeString copy(const String& text) {
  const auto units = text.units();
  return icu::UnicodeString(units.data(), static_cast<int32_t>(units.size()));
}

// A read-only alias of the text; the String must outlive it.
inline icu::UnicodeString alias(const String& text) {
  const auto units = text.units();
  return icu::UnicodeString(false, units.data(), static_cast<int32_t>(units.size()));
}

inline String fromICU(const icu::UnicodeString& text) {
  return String(std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length())));
}

}  // namespace tarnvik::icu_text
