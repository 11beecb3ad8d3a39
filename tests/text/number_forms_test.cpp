#include "tarnvik/text/number_forms.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

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
  EXPECT_EQ(testing::raised([] { integerValueOfHexString(u"123456789abcdef0"); }),
            "NSInternalInconsistencyException: 123456789abcdef0 is too long to be converted to "
            "an integer");
  EXPECT_EQ(testing::raised([] { integerValueOfHexString(u"0x1f"); }),
            "NSInternalInconsistencyException: invalid character x");
}

}  // namespace
}  // namespace tarnvik
