#include "tarnvik/text/name_segments.hpp"

#include <gtest/gtest.h>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

struct StepCase {
  const char* label;
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
    ::testing::Values(StepCase{"Empty", u"", u"0", u"0"},
                      StepCase{"CameraClip", u"A001C009", u"A001C010", u"A001C008"},
                      StepCase{"PaddedGrows", u"Reel_09", u"Reel_10", u"Reel_08"},
                      StepCase{"UnpaddedGrows", u"Reel_9", u"Reel_10", u"Reel_8"},
                      StepCase{"CarryKeepsWidth", u"clip099", u"clip100", u"clip098"},
                      StepCase{"CarryAddsDigit", u"clip999", u"clip1000", u"clip998"},
                      StepCase{"FourDigitPadding", u"clip0099", u"clip0100", u"clip0098"},
                      StepCase{"TwoDigits", u"clip10", u"clip11", u"clip9"},
                      StepCase{"ZeroSticksGoingDown", u"clip0", u"clip1", u"clip0"},
                      StepCase{"ZeroPaddedSticks", u"clip00", u"clip01", u"clip00"},
                      StepCase{"Letter", u"Take B", u"Take C", u"Take A"},
                      StepCase{"UpperZSticks", u"Take Z", u"Take Z", u"Take Y"},
                      StepCase{"LowerASticks", u"Take a", u"Take b", u"Take a"},
                      StepCase{"Punctuation", u"Take-", u"Take.", u"Take,"},
                      // Past 32 bits the value is printed as a 32-bit integer.
                      StepCase{"Past32Bits", u"clip4294967295", u"clip0", u"clip-2"},
                      // Saturated digit runs stick at the largest integer.
                      StepCase{"SaturatedRun", u"c99999999999999999999", u"c-1", u"c-2"},
                      // Non-ASCII digits are digits, but integerValue reads none of them.
                      StepCase{"ArabicIndicDigit", u"take\u0663", u"take1", u"take0"},
                      // A trailing surrogate is stepped as a unit.
                      StepCase{"TrailingSurrogate", u"clip\U0001F3AC", u"clip\U0001F3AD",
                               u"clip\U0001F3AB"}),
    [](const auto& info) { return std::string(info.param.label); });

TEST(LastSegment, PercentInTheStemIsReadAsADirective) {
  // The stem goes into the format unescaped: "%s" consumes the value, and the counter's own
  // directive is left without an argument.
  EXPECT_EQ(incrementLastSegment(u"50%s_9").utf8(), "5010_%00d");
  EXPECT_EQ(incrementLastSegment(u"100%").utf8(), "100&");
  EXPECT_EQ(incrementLastSegment(u"a%@b").utf8(), "ac%@");
}

TEST(LastSegment, AHugeWidthInTheStemIsCapped) {
  // The stem goes into the format unescaped: "%300000000c" must not pad to 300 million.
  const String next = incrementLastSegment(u"x%300000000cY");
  EXPECT_LE(next.length(), 100010u);
  EXPECT_TRUE(next.hasPrefix(u"x"));
}

TEST(LastSegment, ResetKeepsTheOldWidth) {
  EXPECT_EQ(resetLastSegmentToIndex(u"clip0099", 5).utf8(), "clip0005");
  EXPECT_EQ(resetLastSegmentToIndex(u"clip99", 5).utf8(), "clip05");
  EXPECT_EQ(resetLastSegmentToIndex(u"clip9", 123).utf8(), "clip123");
  EXPECT_EQ(resetLastSegmentToIndex(u"clip", 5).utf8(), "clip");
}

}  // namespace
}  // namespace tarnvik
