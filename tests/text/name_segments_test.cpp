#include "tarnvik/text/name_segments.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

struct StepCase {
  const char16_t* name;
  const char16_t* up;
  const char16_t* down;
};

void PrintTo(const StepCase& c, std::ostream* out) { *out << String(c.name).utf8(); }

class LastSegment : public ::testing::TestWithParam<StepCase> {};

TEST_P(LastSegment, StepsUpAndDown) {
  const auto& c = GetParam();
  EXPECT_EQ(incrementLastSegment(c.name), String(c.up));
  EXPECT_EQ(decrementLastSegment(c.name), String(c.down));
}

INSTANTIATE_TEST_SUITE_P(
    Names, LastSegment,
    ::testing::Values(
        StepCase{u"", u"0", u"0"}, StepCase{u"A001C009", u"A001C010", u"A001C008"},
        StepCase{u"Reel_09", u"Reel_10", u"Reel_08"}, StepCase{u"Reel_9", u"Reel_10", u"Reel_8"},
        StepCase{u"clip099", u"clip100", u"clip098"}, StepCase{u"clip999", u"clip1000", u"clip998"},
        StepCase{u"clip0099", u"clip0100", u"clip0098"}, StepCase{u"clip10", u"clip11", u"clip9"},
        StepCase{u"clip0", u"clip1", u"clip0"}, StepCase{u"clip00", u"clip01", u"clip00"},
        StepCase{u"Take B", u"Take C", u"Take A"}, StepCase{u"Take Z", u"Take Z", u"Take Y"},
        StepCase{u"Take a", u"Take b", u"Take a"}, StepCase{u"Take-", u"Take.", u"Take,"},
        // Past 32 bits the value is printed as a 32-bit integer.
        StepCase{u"clip4294967295", u"clip0", u"clip-2"},
        // Saturated digit runs stick at the largest integer.
        StepCase{u"c99999999999999999999", u"c-1", u"c-2"},
        // Non-ASCII digits are digits, but integerValue reads none of them.
        StepCase{u"take\u0663", u"take1", u"take0"},
        // A trailing surrogate is stepped as a unit.
        StepCase{u"clip\U0001F3AC", u"clip\U0001F3AD", u"clip\U0001F3AB"}),
    [](const auto& info) { return "case" + std::to_string(info.index); });

TEST(LastSegment, PercentInTheStemIsReadAsADirective) {
  // The stem goes into the format unescaped: "%s" consumes the value, and the counter's own
  // directive is left without an argument.
  EXPECT_EQ(incrementLastSegment(u"50%s_9").utf8(), "5010_%00d");
  EXPECT_EQ(incrementLastSegment(u"100%").utf8(), "100&");
  EXPECT_EQ(incrementLastSegment(u"a%@b").utf8(), "ac%@");
}

TEST(LastSegment, ResetKeepsTheOldWidth) {
  EXPECT_EQ(resetLastSegmentToIndex(u"clip0099", 5).utf8(), "clip0005");
  EXPECT_EQ(resetLastSegmentToIndex(u"clip99", 5).utf8(), "clip05");
  EXPECT_EQ(resetLastSegmentToIndex(u"clip9", 123).utf8(), "clip123");
  EXPECT_EQ(resetLastSegmentToIndex(u"clip", 5).utf8(), "clip");
}

TEST(SequenceOrder, ExtensionFirstThenNumbersByValue) {
  EXPECT_EQ(compareForSequence(u"b.mov", u"a.mxf"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"clip2.mov", u"clip10.mov"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"Clip2.mov", u"clip2.mov"),
            NSOrderedAscending);  // forced, never same
  EXPECT_EQ(compareForSequence(u"clip2.mov", u"clip2.mov"), NSOrderedSame);
  EXPECT_EQ(compareForSequence(u"clip02.mov", u"clip2.mov"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"ＣＬＩＰ3.mov", u"clip10.mov"),
            NSOrderedAscending);  // width folded
  EXPECT_EQ(caseInsensitiveNumericalCompare(u"Clip2", u"clip02"), NSOrderedSame);
  EXPECT_EQ(caseInsensitiveNumericalCompare(u"clip9", u"clip10"), NSOrderedAscending);
}

TEST(SequenceOrder, SortsARealisticReel) {
  std::vector<String> names{u"A001C010.mov", u"A001C002.mov", u"clip10.mov", u"Take B.mov",
                            u"clip9.mov",    u"Reel_10.mxf",  u"Reel_9.mxf", u"A001C001.mov"};
  std::sort(names.begin(), names.end(), [](const String& a, const String& b) {
    return compareForSequence(a, b) == NSOrderedAscending;
  });
  std::vector<std::string> sorted;
  for (const String& n : names) sorted.push_back(n.utf8());
  EXPECT_EQ(sorted,
            (std::vector<std::string>{"A001C001.mov", "A001C002.mov", "A001C010.mov", "clip9.mov",
                                      "clip10.mov", "Take B.mov", "Reel_9.mxf", "Reel_10.mxf"}));
}

TEST(SequenceOrder, KeyedSortAgreesWithTheComparator) {
  // Mixed forms with case variants, leading zeros, long digit runs and duplicates; once in
  // printable ASCII (the keyed path) and once with a non-ASCII name (the comparator path).
  std::mt19937 random(3);
  const char16_t* stems[] = {u"A001C", u"a001c", u"clip", u"Clip", u"Reel_", u"Take ", u"x", u""};
  const char16_t* extensions[] = {u".mov", u".MOV", u".mxf", u"", u".tar.gz", u"."};
  for (const char16_t* extra : {u"plain", u"caf\u00E9.mov"}) {
    std::vector<String> names{String(extra)};
    for (int i = 0; i < 3000; ++i) {
      String name = stems[random() % 8];
      const int digits = static_cast<int>(random() % 4);
      for (int d = 0; d < digits; ++d)
        name.appendString(String(std::to_string(random() % (d == 2 ? 100000 : 12))));
      if (random() % 50 == 0) name.appendString(u"123456789012345678901234567890");
      name.appendString(extensions[random() % 6]);
      names.push_back(name);
    }
    std::vector<std::u16string_view> views;
    for (const String& n : names) views.push_back(n.units());
    std::vector<String> keyed;
    for (const std::size_t i : sequenceOrder(views)) keyed.push_back(names[i]);
    std::vector<String> expected = names;
    std::sort(expected.begin(), expected.end(), [](const String& a, const String& b) {
      return compareForSequence(a, b) == NSOrderedAscending;
    });
    ASSERT_EQ(keyed.size(), expected.size());
    for (std::size_t i = 0; i < keyed.size(); ++i) ASSERT_EQ(keyed[i], expected[i]) << "at " << i;
  }
  EXPECT_TRUE(sequenceOrder({}).empty());
}

TEST(IntegerForms, DottedThousands) {
  const std::pair<Integer, const char*> cases[] = {
      {0, "0"},          {999, "999"},
      {1000, "1.000"},   {1234567, "1.234.567"},
      {-1234, "-1.234"}, {-123, "-.123"},
      {-12, "-12"},      {INT64_MIN, "-9.223.372.036.854.775.808"}};
  for (const auto& [value, text] : cases)
    EXPECT_EQ(dotSeparatedInteger(value).utf8(), text) << value;
}

TEST(IntegerForms, RowNames) {
  const std::pair<UInteger, const char*> cases[] = {{0, "A"},    {25, "Z"},   {26, "AA"},
                                                    {27, "AB"},  {51, "AZ"},  {52, "BA"},
                                                    {701, "ZZ"}, {702, "AAA"}};
  for (const auto& [index, name] : cases)
    EXPECT_EQ(excelLikeRowNameFromIndex(index).utf8(), name) << index;
  EXPECT_EQ(excelLikeRowNameFromIndex(UINT64_MAX).utf8(), "GKGWBYLWRXTLPP");
}

TEST(IntegerForms, PaddingRepeatsAndCutsThePad) {
  EXPECT_EQ(stringByPaddingLeftToMinimalLength(u"7", 3, u"0").utf8(), "007");
  EXPECT_EQ(stringByPaddingLeftToMinimalLength(u"7", 6, u"ab").utf8(), "ababa7");
  EXPECT_EQ(stringByPaddingRightToMinimalLength(u"7", 4, u"xyz").utf8(), "7xyz");
  EXPECT_EQ(stringByPaddingRightToMinimalLength(u"long", 2, u"x").utf8(), "long");
  EXPECT_EQ(range(u"abc"), (Range{0, 3}));
  EXPECT_THROW(stringByPaddingLeftToMinimalLength(u"7", 3, u""), Exception);
}

TEST(IntegerForms, HexParsingAssertsOnBadInput) {
  EXPECT_EQ(integerValueOfHexString(u"ff"), 255);
  EXPECT_EQ(integerValueOfHexString(u"FF"), 255);
  EXPECT_EQ(integerValueOfHexString(u""), 0);
  EXPECT_EQ(integerValueOfHexString(u"123456789abcdef"), 81985529216486895);
  try {
    integerValueOfHexString(u"123456789abcdef0");
    FAIL();
  } catch (const Exception& e) {
    EXPECT_EQ(e.reason().utf8(), "123456789abcdef0 is too long to be converted to an integer");
  }
  try {
    integerValueOfHexString(u"0x1f");
    FAIL();
  } catch (const Exception& e) {
    EXPECT_EQ(e.name().utf8(), "NSInternalInconsistencyException");
    EXPECT_EQ(e.reason().utf8(), "invalid character x");
  }
}

}  // namespace
}  // namespace tarnvik
