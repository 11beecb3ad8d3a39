#include "tarnvik/platform/base/character_set.hpp"

#include <gtest/gtest.h>

namespace tarnvik {
namespace {

struct Membership {
  const char* name;
  CharacterSet (*set)();
  char16_t unit;
  bool member;
};

void PrintTo(const Membership& c, std::ostream* out) { *out << c.name; }

class CharacterSetMembership : public ::testing::TestWithParam<Membership> {};

TEST_P(CharacterSetMembership, AnswersPerUnit) {
  const auto& c = GetParam();
  EXPECT_EQ(c.set().characterIsMember(c.unit), c.member);
  EXPECT_EQ(c.set().invertedSet().characterIsMember(c.unit), !c.member);
}

INSTANTIATE_TEST_SUITE_P(
    Sets, CharacterSetMembership,
    ::testing::Values(
        Membership{"digit_ascii", CharacterSet::decimalDigitCharacterSet, u'7', true},
        Membership{"digit_arabic_indic", CharacterSet::decimalDigitCharacterSet, u'\u0663', true},
        Membership{"digit_fullwidth", CharacterSet::decimalDigitCharacterSet, u'\uFF15', true},
        Membership{"digit_roman_numeral", CharacterSet::decimalDigitCharacterSet, u'\u2163', false},
        Membership{"digit_lead_surrogate", CharacterSet::decimalDigitCharacterSet, 0xD835, false},
        Membership{"digit_trail_surrogate", CharacterSet::decimalDigitCharacterSet, 0xDFCE, false},
        Membership{"space_tab", CharacterSet::whitespaceCharacterSet, u'\t', true},
        Membership{"space_newline", CharacterSet::whitespaceCharacterSet, u'\n', false},
        Membership{"space_nbsp", CharacterSet::whitespaceCharacterSet, u'\u00A0', true},
        Membership{"ws_newline", CharacterSet::whitespaceAndNewlineCharacterSet, u'\n', true},
        Membership{"ws_line_separator", CharacterSet::whitespaceAndNewlineCharacterSet, u'\u2028',
                   true},
        Membership{"ws_nel", CharacterSet::whitespaceAndNewlineCharacterSet, u'\u0085', true},
        Membership{"newline_cr", CharacterSet::newlineCharacterSet, u'\r', true},
        Membership{"newline_space", CharacterSet::newlineCharacterSet, u' ', false},
        Membership{"letter_accented", CharacterSet::letterCharacterSet, u'\u00E9', true},
        Membership{"letter_combining_mark", CharacterSet::letterCharacterSet, u'\u0301', true},
        Membership{"letter_digit", CharacterSet::letterCharacterSet, u'1', false},
        Membership{"letter_surrogate", CharacterSet::letterCharacterSet, 0xD801, false},
        Membership{"upper_sigma", CharacterSet::uppercaseLetterCharacterSet, u'\u03A3', true},
        Membership{"upper_titlecase_dz", CharacterSet::uppercaseLetterCharacterSet, u'\u01C5',
                   true},
        Membership{"lower_sigma", CharacterSet::lowercaseLetterCharacterSet, u'\u03C3', true},
        Membership{"alnum_superscript_two", CharacterSet::alphanumericCharacterSet, u'\u00B2',
                   true},
        Membership{"alnum_underscore", CharacterSet::alphanumericCharacterSet, u'_', false},
        Membership{"control_nul", CharacterSet::controlCharacterSet, u'\0', true},
        Membership{"control_zwj_format", CharacterSet::controlCharacterSet, u'\u200D', true},
        Membership{"punct_underscore", CharacterSet::punctuationCharacterSet, u'_', true},
        Membership{"punct_plus", CharacterSet::punctuationCharacterSet, u'+', false},
        Membership{"symbol_plus", CharacterSet::symbolCharacterSet, u'+', true},
        Membership{"illegal_unassigned", CharacterSet::illegalCharacterSet, u'\u0378', true},
        Membership{"illegal_noncharacter", CharacterSet::illegalCharacterSet, u'\uFFFF', true},
        Membership{"illegal_letter", CharacterSet::illegalCharacterSet, u'a', false},
        Membership{"illegal_surrogate", CharacterSet::illegalCharacterSet, 0xDC00, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CharacterSet, FromStringAndUnion) {
  const CharacterSet set = CharacterSet::characterSetWithCharactersInString(u"_-é");
  EXPECT_TRUE(set.characterIsMember(u'-'));
  EXPECT_TRUE(set.characterIsMember(u'\u00E9'));
  EXPECT_FALSE(set.characterIsMember(u'e'));
  const CharacterSet both = set.unionWithSet(CharacterSet::decimalDigitCharacterSet());
  EXPECT_TRUE(both.characterIsMember(u'4'));
  EXPECT_TRUE(both.characterIsMember(u'_'));
  const CharacterSet notDigits = CharacterSet::decimalDigitCharacterSet().invertedSet();
  EXPECT_TRUE(notDigits.unionWithSet(set).characterIsMember(u'x'));
  EXPECT_FALSE(notDigits.unionWithSet(set).characterIsMember(u'4'));
}

TEST(CharacterSet, StringScansUseTheSets) {
  const String name = u"Take\u0663\u0664";
  const Range digits = name.rangeOfCharacterFromSet(CharacterSet::decimalDigitCharacterSet());
  EXPECT_EQ(digits, (Range{4, 1}));
  const Range last = name.rangeOfCharacterFromSet(
      CharacterSet::decimalDigitCharacterSet().invertedSet(), NSBackwardsSearch);
  EXPECT_EQ(last, (Range{3, 1}));
  EXPECT_EQ(name.rangeOfCharacterFromSet(CharacterSet::decimalDigitCharacterSet(), NSAnchoredSearch)
                .location,
            NSNotFound);
}

}  // namespace
}  // namespace tarnvik
