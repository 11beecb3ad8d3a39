#include "tarnvik/text/affixes.hpp"

#include "tarnvik/core/checks.hpp"

namespace tarnvik {

namespace {

const CharacterSet& decimalDigits() {
  static const CharacterSet set = CharacterSet::decimalDigitCharacterSet();
  return set;
}

void requireAffix(const String& affix, const char16_t* nilText) {
  if (affix.isNil()) raiseInvalidArgument(nilText);
}

UInteger trailingRun(std::u16string_view units, const CharacterSet& set, bool members) {
  UInteger n = 0;
  while (n < units.size() && set.characterIsMember(units[units.size() - 1 - n]) == members) ++n;
  return n;
}

}  // namespace

String stringByDeletingPrefix(const String& text, const String& prefix) {
  requireAffix(prefix, u"Prefix must not be nil");
  if (prefix.isEmpty()) return text;
  if (!text.hasPrefix(prefix)) raiseInvalidArgumentFormat(u"%@ is not a prefix", prefix);
  return text.substringFromIndex(prefix.length());
}

String stringByDeletingSuffix(const String& text, const String& suffix) {
  requireAffix(suffix, u"Suffix must not be nil");
  if (suffix.isEmpty()) return text;
  if (!text.hasSuffix(suffix)) raiseInvalidArgumentFormat(u"%@ is not a suffix", suffix);
  return text.substringToIndex(text.length() - suffix.length());
}

String suffixOfCharactersMemberOfSet(const String& text, const CharacterSet& set) {
  const auto units = text.units();
  return String(units.substr(units.size() - trailingRun(units, set, true)));
}

String suffixOfCharactersNotMemberOfSet(const String& text, const CharacterSet& set) {
  const auto units = text.units();
  return String(units.substr(units.size() - trailingRun(units, set, false)));
}

String prefixOfCharactersMemberOfSet(const String& text, const CharacterSet& set) {
  const auto units = text.units();
  std::size_t n = 0;
  while (n < units.size() && set.characterIsMember(units[n])) ++n;
  return String(units.substr(0, n));
}

String decimalDigitSuffix(const String& text) {
  return suffixOfCharactersMemberOfSet(text, decimalDigits());
}

String nonDecimalDigitSuffix(const String& text) {
  return suffixOfCharactersNotMemberOfSet(text, decimalDigits());
}

String decimalDigitSuffixOfAction(const String& text) {
  return decimalDigitSuffix(stringByDeletingSuffix(text, u":"));
}

String nonDecimalDigitSuffixIgnoringFileExtensions(const String& text) {
  const Range dot = text.rangeOfString(u".", NSBackwardsSearch);
  if (dot.location == NSNotFound) return nonDecimalDigitSuffix(text);
  String result = nonDecimalDigitSuffix(text.substringToIndex(dot.location));
  result.appendString(text.substringFromIndex(dot.location));
  return result;
}

UInteger numberOfLeadingZeros(const String& text) {
  const auto units = text.units();
  UInteger n = 0;
  while (n < units.size() && units[n] == u'0') ++n;
  return n;
}

String stringByReplacingCharactersMemberOfSet(const String& text, const CharacterSet& set,
                                              const String& replacement) {
  std::u16string out;
  out.reserve(text.length());
  for (const char16_t unit : text.units()) {
    if (!set.characterIsMember(unit)) {
      out.push_back(unit);
    } else if (!replacement.isNil()) {
      out.append(replacement.units());
    }
  }
  return String(std::move(out));
}

String stringByDeletingCharactersMemberOfSet(const String& text, const CharacterSet& set) {
  return stringByReplacingCharactersMemberOfSet(text, set, String());
}

String stringByDeletingLastComponentSeperatedBy(const String& text, const String& separator) {
  if (separator.isEmpty()) return String(u"");
  const Range last = text.rangeOfString(separator, NSBackwardsSearch);
  return last.location == NSNotFound ? String(u"") : text.substringToIndex(last.location);
}

String stringByDeletingLastCharacter(const String& text) {
  return text.isEmpty() ? String(u"") : text.substringToIndex(text.length() - 1);
}

String stringByTrimmingAllWhitespaces(const String& text) {
  static const CharacterSet set = CharacterSet::whitespaceAndNewlineCharacterSet();
  return text.stringByTrimmingCharactersInSet(set);
}

static void checkRangeAgainst(const String& text, Range range) {
  if (range.location == NSNotFound) raiseRange(u"range.location must not be NSNotFound");
  if (!rangeFitsInLength(range, text.length())) {
    raiseRange(u"range lies outside range of receiver");
  }
}

Range rangeBeforeRange(const String& text, Range range) {
  checkRangeAgainst(text, range);
  return range.location == 0 ? Range{NSNotFound, 0} : Range{0, range.location};
}

Range rangeAfterRange(const String& text, Range range) {
  checkRangeAgainst(text, range);
  const UInteger rest = text.length() - range.end();
  return rest == 0 ? Range{NSNotFound, 0} : Range{range.end(), rest};
}

Range rangeOfCharactersFromSet(const String& text, const CharacterSet& set, UInteger options) {
  return rangeOfCharactersFromSet(text, set, options, {0, text.length()});
}

Range rangeOfCharactersFromSet(const String& text, const CharacterSet& set, UInteger options,
                               Range range) {
  const bool backwards = options & NSBackwardsSearch;
  const bool anchored = options & NSAnchoredSearch;
  const auto start = static_cast<Integer>(range.location);
  const auto length = static_cast<Integer>(range.length);
  const Integer step = backwards ? -1 : 1;
  const Integer end = backwards ? start - 1 : start + length;
  Integer position = backwards ? start + length - 1 : start;
  // Reads a unit, raising NSRangeException outside the text as the platform does.
  auto member = [&](Integer at) {
    if (at < 0) return set.characterIsMember(text.characterAtIndex(NSNotFound));
    return set.characterIsMember(text.characterAtIndex(static_cast<UInteger>(at)));
  };
  if (!anchored) {
    while (position != end && !member(position)) position += step;
  }
  if (!member(position)) return {NSNotFound, 0};
  Integer stop = position;
  while (stop != end && member(stop)) stop += step;
  if (!backwards) return {static_cast<UInteger>(position), static_cast<UInteger>(stop - position)};
  return {static_cast<UInteger>(stop + 1), static_cast<UInteger>(position - stop)};
}

void clear(String& text) { text.setString(u""); }

void deletePrefix(String& text, const String& prefix) {
  requireAffix(prefix, u"Prefix must not be nil");
  if (!text.hasPrefix(prefix)) raiseInvalidArgumentFormat(u"%@ is not a prefix", prefix);
  text.deleteCharactersInRange({0, prefix.length()});
}

void deleteSuffix(String& text, const String& suffix) {
  requireAffix(suffix, u"Suffix must not be nil");
  if (!text.hasSuffix(suffix)) raiseInvalidArgumentFormat(u"%@ is not a suffix", suffix);
  text.deleteCharactersInRange(text.rangeOfString(suffix, NSBackwardsSearch));
}

void replaceOccurrencesOfString(String& text, const String& target, const String& replacement) {
  text.replaceOccurrencesOfString(target, replacement, 0, {0, text.length()});
}

}  // namespace tarnvik
