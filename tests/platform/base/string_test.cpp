#include "tarnvik/platform/base/string.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/raised.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

TEST(String, NilAndEmptyDiffer) {
  const String nil, empty(u"");
  EXPECT_TRUE(nil.isNil());
  EXPECT_FALSE(empty.isNil());
  EXPECT_TRUE(nil.isEmpty() && empty.isEmpty());
  EXPECT_FALSE(nil == empty);
  EXPECT_TRUE(String() == String());
  EXPECT_TRUE(String(static_cast<const char*>(nullptr)).isNil());
}

TEST(String, UTF8RoundTripsAndInvalidInput) {
  const String s = String::fromUTF8("clip 🎬 é");
  EXPECT_EQ(s.length(), 9u);  // the emoji is two UTF-16 units
  EXPECT_EQ(s.utf8(), "clip 🎬 é");
  EXPECT_TRUE(String::fromUTF8("bad \xC3").isNil());
  EXPECT_TRUE(String::fromUTF8("\xED\xA0\x80").isNil());  // an encoded surrogate
  EXPECT_EQ(String::fromUTF8Lossy("a\xFFz").units(), u"a\uFFFDz");
  const char16_t lone[] = {u'a', 0xD800, u'b', 0};
  EXPECT_EQ(String(lone).utf8(),
            "a\xEF\xBF\xBD"
            "b");
}

TEST(String, UTF8RoundTripsAroundBlockBoundaries) {
  // ASCII is converted in blocks of 32; a non-ASCII character anywhere must still survive.
  for (const std::size_t length : {1u, 31u, 32u, 33u, 64u, 65u, 100u}) {
    for (std::size_t at = 0; at < length; at += 7) {
      std::string text(length, 'a');
      text.replace(at, 1, "é");
      const String s = String::fromUTF8(text);
      ASSERT_EQ(s.length(), length) << length << " " << at;
      EXPECT_EQ(s.characterAtIndex(at), u'é');
      EXPECT_EQ(s.utf8(), text);
    }
  }
}

TEST(String, SubstringsCheckTheirRange) {
  const String s = u"A001C009";
  EXPECT_EQ(s.substringFromIndex(4).utf8(), "C009");
  EXPECT_EQ(s.substringToIndex(4).utf8(), "A001");
  EXPECT_EQ(s.substringWithRange({1, 3}).utf8(), "001");
  EXPECT_EQ(s.substringFromIndex(8).utf8(), "");
  EXPECT_EQ(testing::raised([&] {
              s.substringWithRange({7, 2});
            }),
            "NSRangeException: String::substringWithRange: Range {7, 2} out of bounds; "
            "string length 8");
  EXPECT_THROW(s.substringWithRange({NSNotFound, 1}), Exception);
  EXPECT_THROW(s.characterAtIndex(8), Exception);
}

TEST(String, PrefixAndSuffixNeverMatchEmpty) {
  const String s = u"Reel_10.mxf";
  EXPECT_TRUE(s.hasPrefix(u"Reel"));
  EXPECT_TRUE(s.hasSuffix(u".mxf"));
  EXPECT_FALSE(s.hasPrefix(u""));
  EXPECT_FALSE(s.hasSuffix(String()));
  EXPECT_FALSE(s.hasPrefix(u"reel"));
}

struct SearchCase {
  const char* name;
  const char16_t* text;
  const char16_t* target;
  UInteger options;
  Range expected;
};

void PrintTo(const SearchCase& c, std::ostream* out) { *out << c.name; }

class StringSearch : public ::testing::TestWithParam<SearchCase> {};

TEST_P(StringSearch, FindsTheExpectedRange) {
  const auto& c = GetParam();
  EXPECT_EQ(String(c.text).rangeOfString(c.target, c.options), c.expected) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Options, StringSearch,
    ::testing::Values(
        SearchCase{"forward", u"abcabc", u"bc", 0, {1, 2}},
        SearchCase{"backwards", u"abcabc", u"bc", NSBackwardsSearch, {4, 2}},
        SearchCase{"anchored miss", u"abcabc", u"bc", NSAnchoredSearch, {NSNotFound, 0}},
        SearchCase{
            "anchored backwards", u"abcabc", u"bc", NSAnchoredSearch | NSBackwardsSearch, {4, 2}},
        SearchCase{"caseless ascii", u"Clip.MOV", u".mov", NSCaseInsensitiveSearch, {4, 4}},
        SearchCase{"caseless non-ascii", u"xÄÖb", u"äö", NSCaseInsensitiveSearch, {1, 2}},
        SearchCase{"case matters by default", u"Clip.MOV", u".mov", 0, {NSNotFound, 0}},
        SearchCase{"empty target", u"abc", u"", 0, {NSNotFound, 0}},
        SearchCase{"longer than text", u"ab", u"abc", 0, {NSNotFound, 0}}),
    [](const auto& info) {
      std::string n = info.param.name;
      for (char& c : n)
        if (c == ' ' || c == '-') c = '_';
      return n;
    });

TEST(String, SearchStaysInsideTheRange) {
  const String s = u"a.b.c.d";
  EXPECT_EQ(s.rangeOfString(u".", 0, {2, 3}), (Range{3, 1}));
  EXPECT_EQ(s.rangeOfString(u".", NSBackwardsSearch, {0, 4}), (Range{3, 1}));
  EXPECT_EQ(s.rangeOfString(u"d", 0, {0, 6}).location, NSNotFound);
  EXPECT_THROW(s.rangeOfString(u".", 0, {5, 5}), Exception);
}

TEST(String, ReplacingSplittingAndJoining) {
  EXPECT_EQ(String(u"a-b-c").stringByReplacingOccurrencesOfString(u"-", u"--").utf8(), "a--b--c");
  EXPECT_EQ(String(u"AbAB")
                .stringByReplacingOccurrencesOfString(u"ab", u"x", NSCaseInsensitiveSearch)
                .utf8(),
            "xx");
  String m = u"aaa";
  EXPECT_EQ(m.replaceOccurrencesOfString(u"a", u"b", 0, {1, 2}), 2u);
  EXPECT_EQ(m.utf8(), "abb");
  const Array parts = String(u"a,,b,").componentsSeparatedByString(u",");
  EXPECT_EQ(parts, (Array{u"a", u"", u"b", u""}));
  EXPECT_EQ(parts.componentsJoinedByString(u"/").utf8(), "a//b/");
  EXPECT_EQ(String(u"abc").componentsSeparatedByString(u""), (Array{u"abc"}));
  EXPECT_EQ(String(u" x \n")
                .stringByTrimmingCharactersInSet(CharacterSet::whitespaceAndNewlineCharacterSet())
                .utf8(),
            "x");
}

TEST(String, CaseMappingUsesFullUnicodeRules) {
  EXPECT_EQ(String(u"straße").uppercaseString().utf8(), "STRASSE");
  EXPECT_EQ(String(u"ÀÉÎ").lowercaseString().utf8(), "àéî");
  EXPECT_EQ(String(u"hello wORLD\tnew-york").capitalizedString().utf8(), "Hello World\tNew-york");
  EXPECT_TRUE(String().uppercaseString().isNil());
}

TEST(String, MutationDetachesFromCopies) {
  const String original = u"take";
  String copy = original;
  EXPECT_TRUE(copy.isIdenticalTo(original));
  copy.appendString(u" 2");
  EXPECT_EQ(original.utf8(), "take");
  EXPECT_EQ(copy.utf8(), "take 2");
  copy.insertString(u">", 0);
  copy.deleteCharactersInRange({1, 4});
  EXPECT_EQ(copy.utf8(), "> 2");
  String nil;
  nil.appendString(u"");
  EXPECT_FALSE(nil.isNil());
}

struct NumberCase {
  const char16_t* text;
  long long integer;
  int int32;
  double real;
  bool boolean;
};

void PrintTo(const NumberCase& c, std::ostream* out) { *out << String(c.text).utf8(); }

class StringNumbers : public ::testing::TestWithParam<NumberCase> {};

TEST_P(StringNumbers, ReadAsThePlatformDoes) {
  const auto& c = GetParam();
  const String s(c.text);
  EXPECT_EQ(s.integerValue(), c.integer);
  EXPECT_EQ(s.longLongValue(), c.integer);
  EXPECT_EQ(s.intValue(), c.int32);
  EXPECT_DOUBLE_EQ(s.doubleValue(), c.real);
  EXPECT_EQ(s.boolValue(), c.boolean);
}

INSTANTIATE_TEST_SUITE_P(
    Readings, StringNumbers,
    ::testing::Values(
        NumberCase{u"42", 42, 42, 42, true}, NumberCase{u"  \n\t-17clips", -17, -17, -17, true},
        NumberCase{u"+5", 5, 5, 5, true}, NumberCase{u"0007", 7, 7, 7, true},
        NumberCase{u"abc", 0, 0, 0, false}, NumberCase{u"", 0, 0, 0, false},
        NumberCase{u"- 5", 0, 0, 0, false},
        NumberCase{u"3000000000", 3000000000LL, INT32_MAX, 3e9, true},
        NumberCase{u"-3000000000", -3000000000LL, INT32_MIN, -3e9, true},
        NumberCase{u"99999999999999999999", INT64_MAX, INT32_MAX, 1e20, true},
        NumberCase{u"-99999999999999999999", INT64_MIN, INT32_MIN, -1e20, true},
        NumberCase{u"-9223372036854775808", INT64_MIN, INT32_MIN, -9223372036854775808.0, true},
        NumberCase{u"\u0663\u0664", 0, 0, 0, false},  // Arabic-Indic digits are not read
        NumberCase{u"2.5e3x", 2, 2, 2500, true}, NumberCase{u".5", 0, 0, 0.5, false},
        NumberCase{u"\u00A0 12", 12, 12, 12, true}, NumberCase{u"00", 0, 0, 0, false}));

TEST(String, DoubleReadingSaturates) {
  EXPECT_EQ(String(u"1e400").doubleValue(), HUGE_VAL);
  EXPECT_EQ(String(u"-1e400").doubleValue(), -HUGE_VAL);
  EXPECT_EQ(String(u"1e-400").doubleValue(), 0.0);
  EXPECT_EQ(String(u"0.000000000000000000000000000000000000000000000000000000000000000000"
                   u"0000000000000000000000000000000000000000000000000000000000000000000000"
                   u"0000000000000000000000000000000000000000000000000000000000000000000000"
                   u"0000000000000000000000000000000000000000000000000000000000000000000000"
                   u"0000000000000000000000000000000000000000000000000000000000000001")
                .doubleValue(),
            0.0);
  EXPECT_EQ(String(u"inf").doubleValue(), 0.0);
}

TEST(String, BoolReadingLooksAtTheFirstSignificantCharacter) {
  for (const char16_t* yes : {u"YES", u"yes", u"true", u"T", u"  +0001", u"-1", u"9z"}) {
    EXPECT_TRUE(String(yes).boolValue()) << String(yes).utf8();
  }
  for (const char16_t* no : {u"NO", u"false", u"0", u"  -000", u"x1", u"+"}) {
    EXPECT_FALSE(String(no).boolValue()) << String(no).utf8();
  }
}

}  // namespace
}  // namespace tarnvik
