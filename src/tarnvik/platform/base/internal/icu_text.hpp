// Moving text between String and ICU's UnicodeString. Not installed.
#pragma once

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <set>
#include <string>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik::icu_text {

// A copy of the units.
inline icu::UnicodeString copy(std::u16string_view units) {
  return icu::UnicodeString(units.data(), static_cast<int32_t>(units.size()));
}
inline icu::UnicodeString copy(const String& text) { return copy(text.units()); }

// A read-only alias of the units; they must outlive it.
inline icu::UnicodeString alias(std::u16string_view units) {
  return icu::UnicodeString(false, units.data(), static_cast<int32_t>(units.size()));
}
inline icu::UnicodeString alias(const String& text) { return alias(text.units()); }

// A view of ICU's units, valid while the UnicodeString lives unchanged.
inline std::u16string_view view(const icu::UnicodeString& text) {
  return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}
inline std::u16string units(const icu::UnicodeString& text) { return std::u16string(view(text)); }
inline String fromICU(const icu::UnicodeString& text) { return String(view(text)); }

// Whether ICU holds data for the locale's language (the root locale, with no language,
// counts as known).
inline bool hasLocaleData(const icu::Locale& locale) {
  static const std::set<std::string, std::less<>> languages = [] {
    std::set<std::string, std::less<>> known;
    int32_t count = 0;
    const icu::Locale* available = icu::Locale::getAvailableLocales(count);
    for (int32_t i = 0; i < count; ++i) known.insert(available[i].getLanguage());
    return known;
  }();
  return locale.getLanguage()[0] == '\0' || languages.contains(locale.getLanguage());
}

// The locale an identifier names. Text ICU cannot read as an identifier ("English (United
// States)") gives a locale ICU marks bogus, and an identifier of a language ICU has no data
// for ("zz", "es)") a locale without day-period rules: ICU's formatters survive neither
// (parsing "B" crashes), so both give "en_US_POSIX" instead.
inline icu::Locale locale(const String& identifier) {
  icu::Locale named(identifier.utf8().c_str());
  return named.isBogus() || !hasLocaleData(named) ? icu::Locale("en_US_POSIX") : named;
}

}  // namespace tarnvik::icu_text
