#include <gtest/gtest.h>

#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

struct CompareCase {
  const char* name;
  const char16_t* a;
  const char16_t* b;
  UInteger options;
  ComparisonResult expected;
};

void PrintTo(const CompareCase& c, std::ostream* out) { *out << c.name; }

class CompareOptions : public ::testing::TestWithParam<CompareCase> {};

TEST_P(CompareOptions, OrderAsDocumented) {
  const auto& c = GetParam();
  EXPECT_EQ(String(c.a).compare(c.b, c.options), c.expected);
  // Swapping the texts mirrors the answer.
  EXPECT_EQ(String(c.b).compare(c.a, c.options), static_cast<ComparisonResult>(-c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Options, CompareOptions,
    ::testing::Values(
        CompareCase{"plain_case_matters", u"a", u"B", 0, NSOrderedDescending},
        CompareCase{"caseless", u"a", u"B", NSCaseInsensitiveSearch, NSOrderedAscending},
        CompareCase{"caseless_equal", u"Straße", u"STRAßE", NSCaseInsensitiveSearch, NSOrderedSame},
        CompareCase{"digits_as_text", u"clip9", u"clip10", 0, NSOrderedDescending},
        CompareCase{"digits_by_value", u"clip9", u"clip10", NSNumericSearch, NSOrderedAscending},
        CompareCase{"leading_zeros_tie", u"clip007", u"clip7", NSNumericSearch, NSOrderedSame},
        CompareCase{"huge_runs", u"n123456789012345678901234567890",
                    u"n123456789012345678901234567891", NSNumericSearch, NSOrderedAscending},
        CompareCase{"arabic_indic_digits", u"take\u0663", u"take12", NSNumericSearch,
                    NSOrderedAscending},
        CompareCase{"canonical_equivalence", u"caf\u00E9", u"cafe\u0301", 0, NSOrderedSame},
        CompareCase{"literal_keeps_units", u"caf\u00E9", u"cafe\u0301", NSLiteralSearch,
                    NSOrderedDescending},
        CompareCase{"diacritics_ignored", u"r\u00E9sum\u00E9", u"resume",
                    NSDiacriticInsensitiveSearch, NSOrderedSame},
        CompareCase{"width_folded", u"\uFF21\uFF11", u"A1", NSWidthInsensitiveSearch,
                    NSOrderedSame},
        CompareCase{"width_matters", u"\uFF21", u"B", 0, NSOrderedDescending},
        CompareCase{"forced_breaks_ties", u"Clip", u"clip",
                    NSCaseInsensitiveSearch | NSForcedOrderingSearch, NSOrderedAscending},
        CompareCase{"forced_leading_zeros", u"a01", u"a1", NSNumericSearch | NSForcedOrderingSearch,
                    NSOrderedAscending},
        CompareCase{"prefix_first", u"clip", u"clip1", NSNumericSearch, NSOrderedAscending},
        CompareCase{"empty_first", u"", u"a", 0, NSOrderedAscending}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CompareOptions, RangeSelectsPartOfTheReceiver) {
  EXPECT_EQ(String(u"xxclip").compare(u"clip", 0, {2, 4}), NSOrderedSame);
  EXPECT_THROW(String(u"ab").compare(u"a", 0, {1, 5}), Exception);
  const char16_t lone[] = {u'x', 0xD800, 0};
  const char16_t other[] = {u'X', 0xDC00, 0};
  const UInteger all = NSCaseInsensitiveSearch | NSDiacriticInsensitiveSearch | NSNumericSearch;
  EXPECT_EQ(String(lone).compare(lone, all), NSOrderedSame);  // unpaired surrogates are fine
  EXPECT_EQ(String(lone).compare(other, all), NSOrderedAscending);
}

TEST(CommonPrefix, LiteralAndCaseless) {
  EXPECT_EQ(String(u"A001C001").commonPrefixWithString(u"A001D", 0).utf8(), "A001");
  EXPECT_EQ(String(u"CLIPS").commonPrefixWithString(u"clip", NSCaseInsensitiveSearch).utf8(),
            "CLIP");
  EXPECT_EQ(String(u"CLIPS").commonPrefixWithString(u"clip", 0).utf8(), "");
  EXPECT_EQ(String(u"\U0001F3ACa").commonPrefixWithString(u"\U0001F3ACb", 0).length(), 2u);
}

}  // namespace
}  // namespace tarnvik
