#include "tarnvik/text/regex_matches.hpp"

#include <gtest/gtest.h>

namespace tarnvik {
namespace {

RegularExpression compile(const String& pattern) {
  return RegularExpression::regularExpressionWithPattern(pattern, 0);
}

TEST(MatchHelpers, OptionalGroupsAndTheirTexts) {
  const RegularExpression colour =
      compile(u"^#([0-9a-fA-F]{2})([0-9a-fA-F]{2})([0-9a-fA-F]{2})([0-9a-fA-F]{2})?$");
  const String text = u"#FF8000";
  const TextCheckingResult m = firstMatchInString(colour, text);
  EXPECT_TRUE(didMatch(m));
  EXPECT_TRUE(didMatch(m, 3));
  EXPECT_FALSE(didMatch(m, 4));
  EXPECT_TRUE(substringOfMatchedString(m, text, 4).isNil());
  EXPECT_EQ(substringOfMatchedString(m, text, 0).utf8(), "#FF8000");
  EXPECT_EQ(substringOfMatchedString(m, text, 2).utf8(), "80");
  // Groups 1 to numberOfRanges: the four groups, then one Null for the index past the last.
  EXPECT_EQ(m.numberOfRanges(), 5u);
  EXPECT_EQ(substringsOfMatchedString(m, text), (Array{u"FF", u"80", u"00", kNull, kNull}));
}

TEST(MatchHelpers, NoMatchAnswersNoNilAndZero) {
  const RegularExpression re = compile(u"x+");
  EXPECT_FALSE(hasMatchesInString(re, u""));
  const TextCheckingResult none = firstMatchInString(re, u"abc");
  EXPECT_TRUE(none.isNil());
  EXPECT_FALSE(didMatch(none));
  EXPECT_FALSE(didMatch(none, 0));
  EXPECT_TRUE(substringOfMatchedString(none, u"abc", 0).isNil());
  EXPECT_TRUE(substringsOfMatchedString(none, u"abc").isNil());
  EXPECT_TRUE(hasMatchesInString(re, u"axxb"));
}

TEST(MatchHelpers, EnumerationVisitsEveryMatchUntilStopped) {
  const RegularExpression digits = compile(u"\\d+");
  const String text = u"A001C009_v2";
  std::vector<std::string> seen;
  enumerateMatchesInString(digits, text, [&](const TextCheckingResult& r, UInteger, bool*) {
    seen.push_back(text.substringWithRange(r.range()).utf8());
  });
  EXPECT_EQ(seen, (std::vector<std::string>{"001", "009", "2"}));
  seen.clear();
  enumerateMatchesInString(digits, text, [&](const TextCheckingResult& r, UInteger, bool* stop) {
    seen.push_back(text.substringWithRange(r.range()).utf8());
    *stop = true;
  });
  EXPECT_EQ(seen.size(), 1u);
  EXPECT_TRUE(firstMatchInString(digits, text, NSMatchingAnchored).isNil());
}

}  // namespace
}  // namespace tarnvik
