#include "tarnvik/platform/text/regular_expression.hpp"

#include <gtest/gtest.h>

namespace tarnvik {
namespace {

TEST(RegularExpression, CompileErrorsCarryTheCompilersMessage) {
  Error error;
  const RegularExpression bad =
      RegularExpression::regularExpressionWithPattern(u"(unclosed", 0, &error);
  EXPECT_TRUE(bad.isNil());
  EXPECT_EQ(error.domain().utf8(), "NSCocoaErrorDomain");
  EXPECT_EQ(error.code(), 2048);
  EXPECT_EQ(error.userInfo().objectForKey(u"NSInvalidValue").asString().utf8(), "(unclosed");
  EXPECT_TRUE(error.localizedFailureReason().hasPrefix(u"U_REGEX_MISMATCHED_PAREN"));
  EXPECT_TRUE(bad.firstMatchInString(u"x", 0, {0, 1}).isNil());  // a nil expression matches nothing
}

TEST(RegularExpression, RangesGroupsAndOptions) {
  const auto re = RegularExpression::regularExpressionWithPattern(
      u"c(\\d+)(x)?", NSRegularExpressionCaseInsensitive);
  ASSERT_FALSE(re.isNil());
  EXPECT_EQ(re.numberOfCaptureGroups(), 2u);
  const TextCheckingResult m = re.firstMatchInString(u"A001C009", 0, {0, 8});
  EXPECT_EQ(m.range(), (Range{4, 4}));
  EXPECT_EQ(m.rangeAtIndex(1), (Range{5, 3}));
  EXPECT_EQ(m.rangeAtIndex(2), (Range{NSNotFound, 0}));
  EXPECT_EQ(m.rangeAtIndex(3),
            (Range{NSNotFound, 0}));  // one past the last: NSNotFound, no exception
  EXPECT_TRUE(
      re.firstMatchInString(u"A001C009", 0, {0, 4}).isNil());  // the range bounds the search
  EXPECT_TRUE(re.firstMatchInString(u"A001C009", NSMatchingAnchored, {0, 8}).isNil());
  EXPECT_FALSE(re.firstMatchInString(u"A001C009", NSMatchingAnchored, {4, 4}).isNil());
  EXPECT_EQ(re.numberOfMatchesInString(u"c1 C2 c3x", 0, {0, 9}), 3u);
  EXPECT_THROW(re.firstMatchInString(u"abc", 0, {2, 5}), Exception);
}

TEST(RegularExpression, UTF16IndexesAndEscaping) {
  const auto re = RegularExpression::regularExpressionWithPattern(u"b", 0);
  EXPECT_EQ(re.firstMatchInString(u"\U0001F3ACb", 0, {0, 3}).range(), (Range{2, 1}));
  const String literal = RegularExpression::escapedPatternForString(u"a.b*(c)");
  const auto exact = RegularExpression::regularExpressionWithPattern(literal, 0);
  EXPECT_EQ(exact.numberOfMatchesInString(u"a.b*(c) axb", 0, {0, 11}), 1u);
}

}  // namespace
}  // namespace tarnvik
