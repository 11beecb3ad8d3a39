// CharacterSet: membership of UTF-16 units in sets defined by ICU character properties
// (decimal digits, whitespace, letters, ...) or by a string's units, and their inversions.
//
//   CharacterSet digits = CharacterSet::decimalDigitCharacterSet();
//   digits.characterIsMember(u'\u0663');  // true: ARABIC-INDIC DIGIT THREE is Nd
#pragma once

#include <bitset>
#include <memory>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Sets answer per UTF-16 unit: a surrogate unit is a member only of sets that name it
// (the illegal and control sets do not; an inverted set does). Copies are cheap; the
// predefined sets are built once per process and shared.
class CharacterSet {
 public:
  // General category Nd.
  static CharacterSet decimalDigitCharacterSet();
  // Zs and U+0009.
  static CharacterSet whitespaceCharacterSet();
  // Z*, U+0009 to U+000D and U+0085.
  static CharacterSet whitespaceAndNewlineCharacterSet();
  // U+000A to U+000D, U+0085, U+2028 and U+2029.
  static CharacterSet newlineCharacterSet();
  // L* and M*.
  static CharacterSet letterCharacterSet();
  // Ll.
  static CharacterSet lowercaseLetterCharacterSet();
  // Lu and Lt.
  static CharacterSet uppercaseLetterCharacterSet();
  // L*, M* and N*.
  static CharacterSet alphanumericCharacterSet();
  // Cc and Cf.
  static CharacterSet controlCharacterSet();
  // P*.
  static CharacterSet punctuationCharacterSet();
  // S*.
  static CharacterSet symbolCharacterSet();
  // Unassigned code points (Cn), the non-characters among them.
  static CharacterSet illegalCharacterSet();
  // The units of the string.
  static CharacterSet characterSetWithCharactersInString(const String& characters);
  static CharacterSet characterSetWithRange(Range range);

  bool characterIsMember(char16_t unit) const { return bits_->test(unit) != inverted_; }
  CharacterSet invertedSet() const { return CharacterSet(bits_, !inverted_); }
  // The members of either set.
  CharacterSet unionWithSet(const CharacterSet& other) const;

 private:
  using Bits = std::bitset<0x10000>;
  CharacterSet(std::shared_ptr<const Bits> bits, bool inverted)
      : bits_(std::move(bits)), inverted_(inverted) {}
  std::shared_ptr<const Bits> bits_;
  bool inverted_ = false;
};

}  // namespace tarnvik
