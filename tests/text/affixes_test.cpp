#include "tarnvik/text/affixes.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

using testing::raised;

TEST(Affixes, DeletingPrefixesAndSuffixes) {
  EXPECT_EQ(stringByDeletingPrefix(u"A001C009", u"A001").utf8(), "C009");
  EXPECT_EQ(stringByDeletingSuffix(u"clip.mov", u".mov").utf8(), "clip");
  EXPECT_EQ(stringByDeletingPrefix(u"clip", u"").utf8(), "clip");
  EXPECT_EQ(stringByDeletingSuffix(u"clip", u"").utf8(), "clip");
  EXPECT_EQ(raised([] { stringByDeletingPrefix(u"clip", String()); }),
            "NSInvalidArgumentException: Prefix must not be nil");
  EXPECT_EQ(raised([] { stringByDeletingPrefix(u"clip", u"x%d"); }),
            "NSInvalidArgumentException: x%d is not a prefix");
  EXPECT_EQ(raised([] { stringByDeletingSuffix(u"clip", String()); }),
            "NSInvalidArgumentException: Suffix must not be nil");
  EXPECT_EQ(raised([] { stringByDeletingSuffix(u"clip", u"Clip"); }),
            "NSInvalidArgumentException: Clip is not a suffix");
}

TEST(Affixes, InPlaceFormsHaveNoEmptyShortcut) {
  String text = u"abcab";
  deleteSuffix(text, u"ab");
  EXPECT_EQ(text.utf8(), "abc");
  deletePrefix(text, u"a");
  EXPECT_EQ(text.utf8(), "bc");
  EXPECT_EQ(raised([&] { deletePrefix(text, u""); }),
            "NSInvalidArgumentException:  is not a prefix");
  EXPECT_EQ(raised([&] { deleteSuffix(text, u""); }),
            "NSInvalidArgumentException:  is not a suffix");
  EXPECT_EQ(raised([&] { deletePrefix(text, u"zz"); }),
            "NSInvalidArgumentException: zz is not a prefix");
  EXPECT_EQ(text.utf8(), "bc");  // unchanged after raising
  replaceOccurrencesOfString(text, u"c", u"cc");
  EXPECT_EQ(text.utf8(), "bcc");
  clear(text);
  EXPECT_TRUE(text.isEmpty());
  EXPECT_FALSE(text.isNil());
}

TEST(Affixes, DigitSuffixesAndRuns) {
  EXPECT_EQ(decimalDigitSuffix(u"A001C009").utf8(), "009");
  EXPECT_EQ(decimalDigitSuffix(u"clip").utf8(), "");
  EXPECT_EQ(decimalDigitSuffix(u"take\u0663\u0664").units(), u"\u0663\u0664");
  EXPECT_EQ(nonDecimalDigitSuffix(u"clip12").utf8(), "");
  EXPECT_EQ(nonDecimalDigitSuffix(u"12clip").utf8(), "clip");
  EXPECT_EQ(decimalDigitSuffixOfAction(u"selectTake12:").utf8(), "12");
  EXPECT_EQ(nonDecimalDigitSuffixIgnoringFileExtensions(u"A001C003_v.mov").utf8(), "_v.mov");
  EXPECT_EQ(nonDecimalDigitSuffixIgnoringFileExtensions(u"clip12.mov").utf8(), ".mov");
  EXPECT_EQ(nonDecimalDigitSuffixIgnoringFileExtensions(u"clip12").utf8(), "");
  EXPECT_EQ(numberOfLeadingZeros(u"0"), 1u);
  EXPECT_EQ(numberOfLeadingZeros(u"007"), 2u);
  EXPECT_EQ(numberOfLeadingZeros(u""), 0u);
  const CharacterSet letters = CharacterSet::letterCharacterSet();
  EXPECT_EQ(prefixOfCharactersMemberOfSet(u"Reel_09", letters).utf8(), "Reel");
  EXPECT_EQ(suffixOfCharactersNotMemberOfSet(u"Reel_09", letters).utf8(), "_09");
  EXPECT_EQ(suffixOfCharactersMemberOfSet(u"", letters).utf8(), "");
}

TEST(Affixes, ReplacingDeletingAndTrimming) {
  const CharacterSet separators = CharacterSet::characterSetWithCharactersInString(u"/:");
  EXPECT_EQ(stringByReplacingCharactersMemberOfSet(u"a/b:c", separators, u"-").utf8(), "a-b-c");
  EXPECT_EQ(stringByReplacingCharactersMemberOfSet(u"a/b:c", separators, u"--").utf8(), "a--b--c");
  EXPECT_EQ(stringByDeletingCharactersMemberOfSet(u"a/b:c", separators).utf8(), "abc");
  EXPECT_EQ(stringByDeletingLastComponentSeperatedBy(u"a.b.c", u".").utf8(), "a.b");
  EXPECT_EQ(stringByDeletingLastComponentSeperatedBy(u"abc", u".").utf8(), "");
  EXPECT_EQ(stringByDeletingLastCharacter(u"clip").utf8(), "cli");
  EXPECT_EQ(stringByDeletingLastCharacter(u"").utf8(), "");
  EXPECT_EQ(stringByTrimmingAllWhitespaces(u"\n\t clip \u00A0\r").utf8(), "clip");
}

TEST(Affixes, RangesBeforeAndAfter) {
  const String text = u"A001C009";
  EXPECT_EQ(rangeBeforeRange(text, {4, 1}), (Range{0, 4}));
  EXPECT_EQ(rangeBeforeRange(text, {0, 1}), (Range{NSNotFound, 0}));
  EXPECT_EQ(rangeAfterRange(text, {4, 1}), (Range{5, 3}));
  EXPECT_EQ(rangeAfterRange(text, {5, 3}), (Range{NSNotFound, 0}));
  EXPECT_EQ(raised([&] {
              rangeAfterRange(text, {NSNotFound, 0});
            }),
            "NSRangeException: range.location must not be NSNotFound");
  EXPECT_EQ(raised([&] {
              rangeBeforeRange(text, {6, 3});
            }),
            "NSRangeException: range lies outside range of receiver");
}

struct RunCase {
  const char* name;
  UInteger options;
  Range range;
  Range expected;
};

void PrintTo(const RunCase& c, std::ostream* out) { *out << c.name; }

class RunsOfMembers : public ::testing::TestWithParam<RunCase> {};

TEST_P(RunsOfMembers, FindTheFirstMaximalRun) {
  const auto& c = GetParam();
  EXPECT_EQ(rangeOfCharactersFromSet(u"clip12x34", CharacterSet::decimalDigitCharacterSet(),
                                     c.options, c.range),
            c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RunsOfMembers,
    ::testing::Values(
        RunCase{"forward", 0, {0, 9}, {4, 2}},
        RunCase{"backwards", NSBackwardsSearch, {0, 9}, {7, 2}},
        RunCase{"backwards_within", NSBackwardsSearch, {0, 7}, {4, 2}},
        RunCase{"anchored_miss", NSAnchoredSearch, {0, 9}, {NSNotFound, 0}},
        RunCase{"anchored_hit", NSAnchoredSearch, {4, 5}, {4, 2}},
        RunCase{"run_cut_by_range", 0, {0, 5}, {4, 1}},
        RunCase{"ignores_other_bits", NSCaseInsensitiveSearch | NSLiteralSearch, {0, 9}, {4, 2}},
        // No member inside {0, 4}: the unit after the range, a digit, is read.
        RunCase{"outside_after", 0, {0, 4}, {4, 0}},
        // No member inside {6, 1} backwards: the unit before it, a digit, is read.
        RunCase{"outside_before", NSBackwardsSearch, {6, 1}, {6, 0}},
        RunCase{"outside_non_member", 0, {0, 3}, {NSNotFound, 0}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Affixes, RunSearchReadingPastTheTextRaises) {
  const CharacterSet digits = CharacterSet::decimalDigitCharacterSet();
  EXPECT_EQ(raised([&] { rangeOfCharactersFromSet(u"clip", digits); }).substr(0, 16),
            "NSRangeException");
  EXPECT_EQ(
      raised([&] { rangeOfCharactersFromSet(u"clip", digits, NSBackwardsSearch); }).substr(0, 16),
      "NSRangeException");
  EXPECT_EQ(raised([&] { rangeOfCharactersFromSet(u"", digits); }).substr(0, 16),
            "NSRangeException");
}

}  // namespace
}  // namespace tarnvik
