// Scanner: reads strings and numbers from a String left to right, skipping a set of
// characters (whitespace and newlines by default) before each item.
//
//   Scanner s(u"  take 42");
//   String word; long long n;
//   s.scanString(u"TAKE", &word) && s.scanLongLong(&n);  // true, n == 42
#pragma once

#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Every scan first skips the characters to be skipped, then either consumes what it
// matched and answers true, or leaves the location where it was and answers false. Out
// parameters are optional and written only on success.
class Scanner {
 public:
  explicit Scanner(const String& text);

  const String& string() const { return text_; }
  UInteger scanLocation() const { return location_; }
  // NSRangeException when past the end of the text.
  void setScanLocation(UInteger location);
  // Case-insensitive by default.
  bool caseSensitive() const { return caseSensitive_; }
  void setCaseSensitive(bool caseSensitive) { caseSensitive_ = caseSensitive; }
  // A nil set skips nothing.
  void setCharactersToBeSkipped(const CharacterSet* set);
  // The set skipped before each item, or nullptr when nothing is skipped.
  const CharacterSet* charactersToBeSkipped() const { return skipping_ ? &skipSet_ : nullptr; }
  // True when only characters to be skipped remain.
  bool isAtEnd() const;

  bool scanString(const String& target, String* into = nullptr);
  // Consumes up to (not including) the target, or to the end; false when nothing was read.
  bool scanUpToString(const String& target, String* into = nullptr);
  bool scanUpToCharactersFromSet(const CharacterSet& set, String* into = nullptr);
  bool scanCharactersFromSet(const CharacterSet& set, String* into = nullptr);
  // An optional sign and ASCII digits; saturates at the type's bounds on overflow.
  bool scanLongLong(long long* into = nullptr);
  bool scanInteger(Integer* into = nullptr);
  bool scanInt(int* into = nullptr);
  // Optional "0x"/"0X" and hexadecimal digits; saturates at UINT64_MAX.
  bool scanHexLongLong(unsigned long long* into = nullptr);
  // Sign, digits, fraction and exponent in the C locale.
  bool scanDouble(double* into = nullptr);

 private:
  UInteger skip() const;
  String text_;
  UInteger location_ = 0;
  bool caseSensitive_ = false;
  bool skipping_ = true;
  CharacterSet skipSet_;
};

}  // namespace tarnvik
