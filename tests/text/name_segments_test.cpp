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

TEST(LastSegmentOfFileName, StepsTheNumberBeforeTheExtension) {
  struct Case {
    const char16_t* name;
    const char* next;
    const char* previous;
    const char* reset;  // to 1
  };
  const Case cases[] = {
      {u"A001C009.mov", "A001C010.mov", "A001C008.mov", "A001C001.mov"},
      {u"A001C999.MOV", "A001C1000.MOV", "A001C998.MOV", "A001C001.MOV"},
      {u"clip.tar.gz", "clip.tas.gz", "clip.taq.gz", "clip.tar.gz"},
      {u"take.mov", "takf.mov", "takd.mov", "take.mov"},
      {u"Reel 9", "Reel 10", "Reel 8", "Reel 1"},
      {u".profile7", ".profile8", ".profile6", ".profile1"},
      {u"/Volumes/CARD/A001C009.mov", "/Volumes/CARD/A001C010.mov", "/Volumes/CARD/A001C008.mov",
       "/Volumes/CARD/A001C001.mov"},
      {u"v1.2/clip", "v1.2/cliq", "v1.2/clio", "v1.2/clip"},
      {u"100%.mov", "100&.mov", "100$.mov", "100%.mov"},  // no format in the way
      {u"50%d09.mov", "50%d10.mov", "50%d08.mov", "50%d01.mov"},
      {u"x.mov", "y.mov", "w.mov", "x.mov"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(String(c.name).utf8());
    EXPECT_EQ(incrementLastSegmentOfFileName(c.name).utf8(), c.next);
    EXPECT_EQ(decrementLastSegmentOfFileName(c.name).utf8(), c.previous);
    EXPECT_EQ(resetLastSegmentOfFileNameToIndex(c.name, 1).utf8(), c.reset);
  }
  // Without an extension they are the name forms.
  for (const char16_t* name : {u"A001C009", u"Z", u"", u"clip\u0669"}) {
    EXPECT_EQ(incrementLastSegmentOfFileName(name), incrementLastSegment(name));
    EXPECT_EQ(decrementLastSegmentOfFileName(name), decrementLastSegment(name));
  }
  // A non-ASCII digit run is the segment, read as the name forms read it (as 0).
  EXPECT_EQ(incrementLastSegmentOfFileName(u"clip\u0669.mov").utf8(), "clip1.mov");
}

}  // namespace
}  // namespace tarnvik
