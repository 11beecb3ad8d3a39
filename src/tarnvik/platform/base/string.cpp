#include "tarnvik/platform/base/string.hpp"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <ostream>

#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/internal/ranges.hpp"
#include "tarnvik/platform/base/internal/unicode.hpp"

namespace tarnvik {

namespace {

const std::shared_ptr<std::u16string>& sharedEmpty() {
  static const auto empty = std::make_shared<std::u16string>();
  return empty;
}

std::shared_ptr<std::u16string> makeStorage(std::u16string units) {
  if (units.empty()) return sharedEmpty();
  return std::make_shared<std::u16string>(std::move(units));
}

char16_t foldUnit(char16_t unit) {
  if (unit < 0x80) return (unit >= u'A' && unit <= u'Z') ? unit + 32 : unit;
  if (U16_IS_SURROGATE(unit)) return unit;
  const UChar32 folded = u_foldCase(unit, U_FOLD_CASE_DEFAULT);
  return folded <= 0xFFFF ? static_cast<char16_t>(folded) : unit;
}

bool unitsMatch(std::u16string_view text, std::size_t at, std::u16string_view target,
                bool caseless) {
  if (!caseless) return text.compare(at, target.size(), target) == 0;
  for (std::size_t i = 0; i < target.size(); ++i) {
    if (foldUnit(text[at + i]) != foldUnit(target[i])) return false;
  }
  return true;
}

}  // namespace

void checkRangeInLength(Range range, UInteger length, const char* operation) {
  if (!rangeFitsInLength(range, length)) {
    throw Exception(NSRangeException,
                    message::build(operation, ": Range {", range.location, ", ", range.length,
                                   "} out of bounds; string length ", length));
  }
}

String::String(const char* utf8) {
  if (utf8) storage_ = makeStorage(unicode::fromUTF8(utf8, true, nullptr));
}
String::String(const std::string& utf8)
    : storage_(makeStorage(unicode::fromUTF8(utf8, true, nullptr))) {}
String::String(std::string_view utf8)
    : storage_(makeStorage(unicode::fromUTF8(utf8, true, nullptr))) {}
String::String(const char16_t* utf16) {
  if (utf16) storage_ = makeStorage(std::u16string(utf16));
}
String::String(std::u16string units) : storage_(makeStorage(std::move(units))) {}
String::String(std::u16string_view units) : storage_(makeStorage(std::u16string(units))) {}

String String::fromUTF8(std::string_view utf8) {
  bool valid = true;
  std::u16string units = unicode::fromUTF8(utf8, false, &valid);
  return valid ? String(std::move(units)) : String();
}
String String::fromUTF8Lossy(std::string_view utf8) {
  return String(unicode::fromUTF8(utf8, true, nullptr));
}
String String::withCharacters(const char16_t* units, UInteger length) {
  return String(std::u16string_view(units, length));
}
String String::withCodePoint(char32_t codePoint) {
  std::u16string units;
  unicode::appendCodePoint(units, codePoint);
  return String(std::move(units));
}

char16_t String::characterAtIndex(UInteger index) const {
  if (index >= length()) {
    throw Exception(NSRangeException, message::build("String::characterAtIndex: Index ", index,
                                                     " out of bounds; string length ", length()));
  }
  return (*storage_)[index];
}

std::string String::utf8() const { return unicode::toUTF8(units()); }

String String::substringFromIndex(UInteger from) const {
  if (from > length()) checkRangeInLength({from, 0}, length(), "String::substringFromIndex");
  return substringWithRange({from, length() - from});
}
String String::substringToIndex(UInteger to) const { return substringWithRange({0, to}); }
String String::substringWithRange(Range range) const {
  checkRangeInLength(range, length(), "String::substringWithRange");
  if (isNil()) return String();
  if (range.location == 0 && range.length == length()) return *this;
  return String(units().substr(range.location, range.length));
}

bool String::hasPrefix(const String& prefix) const {
  return !prefix.isEmpty() && units().starts_with(prefix.units());
}
bool String::hasSuffix(const String& suffix) const {
  return !suffix.isEmpty() && units().ends_with(suffix.units());
}
bool String::isEqualToString(const String& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  return storage_ == other.storage_ || units() == other.units();
}
std::size_t String::hash() const { return std::hash<std::u16string_view>{}(units()); }

ComparisonResult String::compare(const String& other) const {
  const int c = units().compare(other.units());
  return c < 0 ? NSOrderedAscending : (c > 0 ? NSOrderedDescending : NSOrderedSame);
}
ComparisonResult String::caseInsensitiveCompare(const String& other) const {
  const auto a = units(), b = other.units();
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const char16_t x = foldUnit(a[i]), y = foldUnit(b[i]);
    if (x != y) return x < y ? NSOrderedAscending : NSOrderedDescending;
  }
  if (a.size() == b.size()) return NSOrderedSame;
  return a.size() < b.size() ? NSOrderedAscending : NSOrderedDescending;
}

Range String::rangeOfString(const String& target, UInteger options) const {
  return rangeOfString(target, options, {0, length()});
}
Range String::rangeOfString(const String& target, UInteger options, Range range) const {
  checkRangeInLength(range, length(), "String::rangeOfString");
  const auto text = units().substr(range.location, range.length);
  const auto needle = target.units();
  const Range notFound{NSNotFound, 0};
  if (needle.empty() || needle.size() > text.size()) return notFound;
  const bool caseless = options & NSCaseInsensitiveSearch;
  const bool anchored = options & NSAnchoredSearch;
  const std::size_t last = text.size() - needle.size();
  auto found = [&](std::size_t at) { return Range{range.location + at, needle.size()}; };
  if (options & NSBackwardsSearch) {
    if (anchored) return unitsMatch(text, last, needle, caseless) ? found(last) : notFound;
    for (std::size_t at = last + 1; at-- > 0;) {
      if (unitsMatch(text, at, needle, caseless)) return found(at);
    }
    return notFound;
  }
  if (anchored) return unitsMatch(text, 0, needle, caseless) ? found(0) : notFound;
  if (!caseless) {
    const std::size_t at = text.find(needle);
    return at == std::u16string_view::npos ? notFound : found(at);
  }
  for (std::size_t at = 0; at <= last; ++at) {
    if (unitsMatch(text, at, needle, caseless)) return found(at);
  }
  return notFound;
}

Range String::rangeOfCharacterFromSet(const CharacterSet& set, UInteger options) const {
  return rangeOfCharacterFromSet(set, options, {0, length()});
}
Range String::rangeOfCharacterFromSet(const CharacterSet& set, UInteger options,
                                      Range range) const {
  checkRangeInLength(range, length(), "String::rangeOfCharacterFromSet");
  const auto text = units();
  const bool backwards = options & NSBackwardsSearch;
  const bool anchored = options & NSAnchoredSearch;
  for (UInteger step = 0; step < range.length; ++step) {
    const UInteger at = backwards ? range.end() - 1 - step : range.location + step;
    if (set.characterIsMember(text[at])) return {at, 1};
    if (anchored) break;
  }
  return {NSNotFound, 0};
}

bool String::containsString(const String& other) const {
  return rangeOfString(other).location != NSNotFound;
}

String String::stringByAppendingString(const String& other) const {
  String result = *this;
  result.appendString(other);
  return result;
}

String String::stringByReplacingOccurrencesOfString(const String& target, const String& replacement,
                                                    UInteger options) const {
  return stringByReplacingOccurrencesOfString(target, replacement, options, {0, length()});
}
String String::stringByReplacingOccurrencesOfString(const String& target, const String& replacement,
                                                    UInteger options, Range range) const {
  String result = *this;
  if (result.isNil()) return result;
  result.replaceOccurrencesOfString(target, replacement, options, range);
  return result;
}

String String::stringByReplacingCharactersInRange(Range range, const String& replacement) const {
  String result = *this;
  result.replaceCharactersInRange(range, replacement);
  return result;
}

String String::stringByTrimmingCharactersInSet(const CharacterSet& set) const {
  const auto text = units();
  std::size_t begin = 0, end = text.size();
  while (begin < end && set.characterIsMember(text[begin])) ++begin;
  while (end > begin && set.characterIsMember(text[end - 1])) --end;
  if (isNil()) return String();
  return substringWithRange({begin, end - begin});
}

Array String::componentsSeparatedByString(const String& separator) const {
  Array parts = Array::array();
  const auto text = units(), sep = separator.units();
  if (sep.empty()) {
    parts.addObject(isNil() ? String(u"") : *this);
    return parts;
  }
  std::size_t start = 0;
  for (std::size_t at; (at = text.find(sep, start)) != std::u16string_view::npos;
       start = at + sep.size()) {
    parts.addObject(String(text.substr(start, at - start)));
  }
  parts.addObject(String(text.substr(start)));
  return parts;
}

Array String::componentsSeparatedByCharactersInSet(const CharacterSet& set) const {
  Array parts = Array::array();
  const auto text = units();
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (set.characterIsMember(text[i])) {
      parts.addObject(String(text.substr(start, i - start)));
      start = i + 1;
    }
  }
  parts.addObject(String(text.substr(start)));
  return parts;
}

String String::uppercaseString() const {
  if (isNil()) return String();
  return String(unicode::mapCase(units(), unicode::CaseMapping::Upper));
}
String String::lowercaseString() const {
  if (isNil()) return String();
  return String(unicode::mapCase(units(), unicode::CaseMapping::Lower));
}
String String::capitalizedString() const {
  if (isNil()) return String();
  const CharacterSet separators = CharacterSet::whitespaceAndNewlineCharacterSet();
  const auto text = units();
  std::u16string out;
  out.reserve(text.size());
  bool wordStart = true;
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c;
    U16_NEXT(text.data(), i, text.size(), c);
    const bool separator = c <= 0xFFFF && separators.characterIsMember(static_cast<char16_t>(c));
    unicode::appendCodePoint(out, separator ? c : (wordStart ? u_totitle(c) : u_tolower(c)));
    wordStart = separator;
  }
  return String(std::move(out));
}

Integer String::integerValue() const {
  return unicode::parseInteger(units(), INT64_MIN, INT64_MAX);
}
long long String::longLongValue() const { return integerValue(); }
int String::intValue() const {
  return static_cast<int>(unicode::parseInteger(units(), INT32_MIN, INT32_MAX));
}
double String::doubleValue() const { return unicode::parseDouble(units(), nullptr); }
float String::floatValue() const { return static_cast<float>(doubleValue()); }

bool String::boolValue() const {
  const auto text = units();
  std::size_t i = unicode::skipWhitespace(text, 0);
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) ++i;
  while (i < text.size() && text[i] == u'0') ++i;
  if (i >= text.size()) return false;
  const char16_t c = text[i];
  return c == u'Y' || c == u'y' || c == u'T' || c == u't' || (c >= u'1' && c <= u'9');
}

std::u16string& String::mutableUnits() {
  if (!storage_ || storage_.use_count() > 1) {
    storage_ = std::make_shared<std::u16string>(storage_ ? *storage_ : std::u16string());
  }
  return *storage_;
}

void String::appendString(const String& other) {
  appendCharacters(other.units().data(), other.length());
}
void String::appendCharacters(const char16_t* units, UInteger length) {
  if (length == 0 && storage_) return;
  mutableUnits().append(units, length);
}
void String::insertString(const String& other, UInteger index) {
  replaceCharactersInRange({index, 0}, other);
}
void String::deleteCharactersInRange(Range range) { replaceCharactersInRange(range, String()); }
void String::replaceCharactersInRange(Range range, const String& replacement) {
  checkRangeInLength(range, length(), "String::replaceCharactersInRange");
  mutableUnits().replace(range.location, range.length, replacement.units());
}

UInteger String::replaceOccurrencesOfString(const String& target, const String& replacement,
                                            UInteger options, Range range) {
  checkRangeInLength(range, length(), "String::replaceOccurrencesOfString");
  if (target.isEmpty()) return 0;
  const bool backwards = options & NSBackwardsSearch;
  const UInteger searchOptions = options & ~NSBackwardsSearch;
  std::vector<Range> hits;
  for (Range rest = range;;) {
    const Range hit = rangeOfString(target, searchOptions, rest);
    if (hit.location == NSNotFound) break;
    hits.push_back(hit);
    if (options & NSAnchoredSearch) break;
    rest = {hit.end(), range.end() - hit.end()};
  }
  if (backwards && (options & NSAnchoredSearch)) {
    hits.clear();
    const Range hit = rangeOfString(target, options, range);
    if (hit.location != NSNotFound) hits.push_back(hit);
  }
  if (hits.empty()) return 0;
  const auto text = units();
  std::u16string out;
  out.reserve(text.size());
  std::size_t copied = 0;
  for (const Range& hit : hits) {
    out.append(text.substr(copied, hit.location - copied));
    out.append(replacement.units());
    copied = hit.end();
  }
  out.append(text.substr(copied));
  storage_ = makeStorage(std::move(out));
  return hits.size();
}

std::ostream& operator<<(std::ostream& out, const String& text) { return out << text.utf8(); }

void String::setString(const String& other) {
  storage_ = makeStorage(std::u16string(other.units()));
}

}  // namespace tarnvik
