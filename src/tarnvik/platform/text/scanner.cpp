#include "tarnvik/platform/text/scanner.hpp"

#include <algorithm>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/unicode.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

Scanner::Scanner(const String& text)
    : text_(text), skipSet_(CharacterSet::whitespaceAndNewlineCharacterSet()) {}

void Scanner::setScanLocation(UInteger location) {
  if (location > text_.length()) {
    throw Exception(NSRangeException,
                    stringWithFormat(u"Scanner::setScanLocation: Index %lu out of "
                                     u"bounds; string length %lu",
                                     location, text_.length()));
  }
  location_ = location;
}

void Scanner::setCharactersToBeSkipped(const CharacterSet* set) {
  skipping_ = set != nullptr;
  if (set) skipSet_ = *set;
}

UInteger Scanner::skip() const {
  const auto units = text_.units();
  UInteger at = location_;
  while (skipping_ && at < units.size() && skipSet_.characterIsMember(units[at])) ++at;
  return at;
}

bool Scanner::isAtEnd() const { return skip() >= text_.length(); }

bool Scanner::scanString(const String& target, String* into) {
  const UInteger start = skip();
  if (target.isEmpty() || start >= text_.length()) return false;
  const UInteger options =
      NSAnchoredSearch | (caseSensitive_ ? UInteger{0} : UInteger{NSCaseInsensitiveSearch});
  const Range found = text_.rangeOfString(target, options, {start, text_.length() - start});
  if (found.location == NSNotFound) return false;
  if (into) *into = text_.substringWithRange(found);
  location_ = found.end();
  return true;
}

bool Scanner::scanUpToString(const String& target, String* into) {
  const UInteger start = skip();
  if (start >= text_.length()) return false;
  const UInteger options = caseSensitive_ ? UInteger{0} : UInteger{NSCaseInsensitiveSearch};
  const Range found = text_.rangeOfString(target, options, {start, text_.length() - start});
  const UInteger end = found.location == NSNotFound ? text_.length() : found.location;
  if (end == start) return false;
  if (into) *into = text_.substringWithRange({start, end - start});
  location_ = end;
  return true;
}

bool Scanner::scanUpToCharactersFromSet(const CharacterSet& set, String* into) {
  const UInteger start = skip();
  const auto units = text_.units();
  UInteger end = start;
  while (end < units.size() && !set.characterIsMember(units[end])) ++end;
  if (end == start) return false;
  if (into) *into = text_.substringWithRange({start, end - start});
  location_ = end;
  return true;
}

bool Scanner::scanCharactersFromSet(const CharacterSet& set, String* into) {
  const UInteger start = skip();
  const auto units = text_.units();
  UInteger end = start;
  while (end < units.size() && set.characterIsMember(units[end])) ++end;
  if (end == start) return false;
  if (into) *into = text_.substringWithRange({start, end - start});
  location_ = end;
  return true;
}

bool Scanner::scanLongLong(long long* into) {
  const UInteger start = skip();
  std::size_t end = 0;
  const auto value =
      unicode::parseInteger(text_.units().substr(0), INT64_MIN, INT64_MAX, &end, start);
  // parseInteger skips whitespace of its own; only accept a number right at start.
  if (end == 0) return false;
  const auto units = text_.units();
  if (start < units.size() && units[start] != u'+' && units[start] != u'-' &&
      (units[start] < u'0' || units[start] > u'9')) {
    return false;
  }
  if (into) *into = value;
  location_ = end;
  return true;
}

bool Scanner::scanInteger(Integer* into) {
  long long value = 0;
  if (!scanLongLong(&value)) return false;
  if (into) *into = value;
  return true;
}

bool Scanner::scanInt(int* into) {
  long long value = 0;
  if (!scanLongLong(&value)) return false;
  if (into) *into = static_cast<int>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
  return true;
}

bool Scanner::scanHexLongLong(unsigned long long* into) {
  const UInteger start = skip();
  const auto units = text_.units();
  UInteger at = start;
  if (at + 1 < units.size() && units[at] == u'0' &&
      (units[at + 1] == u'x' || units[at + 1] == u'X')) {
    at += 2;
  }
  auto digit = [](char16_t c) { return hexDigitValue(c); };
  const UInteger digitsStart = at;
  unsigned long long value = 0;
  bool overflow = false;
  for (; at < units.size() && digit(units[at]) >= 0; ++at) {
    if (value > (UINT64_MAX >> 4)) overflow = true;
    value = (value << 4) | static_cast<unsigned>(digit(units[at]));
  }
  if (at == digitsStart) {
    // "0x" without digits still reads the leading zero.
    if (digitsStart == start + 2) {
      if (into) *into = 0;
      location_ = start + 1;
      return true;
    }
    return false;
  }
  if (into) *into = overflow ? UINT64_MAX : value;
  location_ = at;
  return true;
}

bool Scanner::scanDouble(double* into) {
  const UInteger start = skip();
  const auto units = text_.units();
  if (start >= units.size() || unicode::skipWhitespace(units, start) != start) return false;
  std::size_t end = 0;
  const double value = unicode::parseDouble(units, &end, start);
  if (end == 0) return false;
  if (into) *into = value;
  location_ = end;
  return true;
}

}  // namespace tarnvik
