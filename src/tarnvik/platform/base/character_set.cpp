#include "tarnvik/platform/base/character_set.hpp"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace tarnvik {

namespace {

using Bits = std::bitset<0x10000>;

// Builds the membership of every UTF-16 unit from a test on its general category.
// Surrogate units carry the category Cs and therefore belong to none of these sets.
template <class Test>
std::shared_ptr<const Bits> buildByCategory(Test test) {
  auto bits = std::make_shared<Bits>();
  for (UChar32 c = 0; c <= 0xFFFF; ++c) {
    if (!U16_IS_SURROGATE(c) && test(c, U_GET_GC_MASK(c))) bits->set(static_cast<std::size_t>(c));
  }
  return bits;
}

bool isLineBreak(UChar32 c) {
  return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

}  // namespace

#define TARNVIK_PREDEFINED_SET(name, test)                              \
  CharacterSet CharacterSet::name() {                                   \
    static const std::shared_ptr<const Bits> bits =                     \
        buildByCategory([](UChar32 c, uint32_t mask) { return test; }); \
    return CharacterSet(bits, false);                                   \
  }

TARNVIK_PREDEFINED_SET(decimalDigitCharacterSet, (mask & U_GC_ND_MASK) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(whitespaceCharacterSet, (mask & U_GC_ZS_MASK) != 0 || c == 0x09)
TARNVIK_PREDEFINED_SET(whitespaceAndNewlineCharacterSet,
                       (mask & U_GC_Z_MASK) != 0 || (c >= 0x09 && c <= 0x0D) || c == 0x85)
TARNVIK_PREDEFINED_SET(newlineCharacterSet, isLineBreak(c) && mask != 0)
TARNVIK_PREDEFINED_SET(letterCharacterSet, (mask & (U_GC_L_MASK | U_GC_M_MASK)) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(lowercaseLetterCharacterSet, (mask & U_GC_LL_MASK) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(uppercaseLetterCharacterSet,
                       (mask & (U_GC_LU_MASK | U_GC_LT_MASK)) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(alphanumericCharacterSet,
                       (mask & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(controlCharacterSet, (mask & (U_GC_CC_MASK | U_GC_CF_MASK)) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(punctuationCharacterSet, (mask & U_GC_P_MASK) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(symbolCharacterSet, (mask & U_GC_S_MASK) != 0 && c >= 0)
TARNVIK_PREDEFINED_SET(illegalCharacterSet, (mask & U_GC_CN_MASK) != 0 && c >= 0)

#undef TARNVIK_PREDEFINED_SET

CharacterSet CharacterSet::characterSetWithCharactersInString(const String& characters) {
  auto bits = std::make_shared<Bits>();
  for (const char16_t unit : characters.units()) bits->set(unit);
  return CharacterSet(bits, false);
}

CharacterSet CharacterSet::characterSetWithRange(Range range) {
  auto bits = std::make_shared<Bits>();
  for (UInteger c = range.location; c < range.end() && c <= 0xFFFF; ++c) bits->set(c);
  return CharacterSet(bits, false);
}

CharacterSet CharacterSet::unionWithSet(const CharacterSet& other) const {
  const Bits mine = inverted_ ? ~*bits_ : *bits_;
  const Bits theirs = other.inverted_ ? ~*other.bits_ : *other.bits_;
  return CharacterSet(std::make_shared<const Bits>(mine | theirs), false);
}

}  // namespace tarnvik
