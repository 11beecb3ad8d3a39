#include "tarnvik/text/formatting.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik {
namespace {

TEST(Plurals, EnglishWithoutATable) {
  EXPECT_EQ(ke_regularPluralized(u"clip", 0).utf8(), "no clips");
  EXPECT_EQ(ke_regularPluralized(u"clip", 1).utf8(), "1 clip");
  EXPECT_EQ(ke_regularPluralized(u"clip", 2).utf8(), "2 clips");
  EXPECT_EQ(ke_regularPluralized(u"clip", 5000000000).utf8(), "5000000000 clips");
}

TEST(Plurals, TranslatedThroughTheMainBundle) {
  testing::TempDir dir;
  dir.write("Resources/de.lproj/NSString_KDExtensions.strings",
            "\"no %@s\" = \"keine %@s\";\n\"%lu %@s\" = \"%2$@: %1$lu\";\n");
  setenv("LANGUAGE", "de", 1);
  Bundle::setMainBundle(Bundle::bundleWithPath(String(dir.path().string())));
  EXPECT_EQ(ke_regularPluralized(u"Clip", 0).utf8(), "keine Clips");
  EXPECT_EQ(ke_regularPluralized(u"Clip", 3).utf8(), "Clip: 3");
  EXPECT_EQ(ke_regularPluralized(u"Clip", 1).utf8(), "1 Clip");
  Bundle::setMainBundle(Bundle());
  unsetenv("LANGUAGE");
}

TEST(SpelledNumbers, FixedTableElseDigits) {
  const std::pair<UInteger, const char*> cases[] = {{1, "one"},     {12, "twelve"}, {13, "13"},
                                                    {20, "twenty"}, {40, "fourty"}, {90, "ninety"},
                                                    {21, "21"},     {0, "0"},       {100, "100"}};
  for (const auto& [value, text] : cases)
    EXPECT_EQ(fullySpelledStringForUnsignedInteger(value).utf8(), text);
}

TEST(Capitals, FirstLetterAndCamelCase) {
  EXPECT_EQ(stringWithUpperCaseFirstLetter(u"c").utf8(), "C");
  EXPECT_EQ(stringWithUpperCaseFirstLetter(u"ßtraße").utf8(), "SStraße");
  EXPECT_EQ(stringWithUpperCaseFirstLetter(u"").utf8(), "");
  EXPECT_EQ(stringByExpandingCamelCase(u"thumbnailSizeLarge").utf8(), "thumbnail Size Large");
  EXPECT_EQ(stringByExpandingCamelCase(u"URLString").utf8(), "URLString");
  EXPECT_EQ(stringByExpandingCamelCase(u"aB").utf8(), "aB");
  EXPECT_EQ(stringByExpandingCamelCase(u"éÉé").utf8(), "é Éé");
}

TEST(ASCIIFolding, LatinLettersLoseTheirAccents) {
  EXPECT_EQ(asciiString(u"Grüße från Tärnvik").utf8(), "Grusse fran Tarnvik");
  EXPECT_EQ(asciiString(u"Æther œuvre").utf8(), "AEther oeuvre");
  EXPECT_EQ(asciiString(u"日本 ok").utf8(), "?? ok");
  EXPECT_EQ(asciiString(u"\U0001F3AC").utf8(), "?");
  EXPECT_EQ(asciiStringWithoutWhitespace(u"a b\tc\nd\re").utf8(), "a_b_c_d_e");
}

TEST(XMLEscaping, TwoFormsForTheApostrophe) {
  EXPECT_EQ(stringByEscapingXMLCharacters(u"a&lt;b").utf8(), "a&amp;lt;b");
  EXPECT_EQ(stringByEscapingXMLCharacters(u"<\"it's\">").utf8(), "&lt;&quot;it&#x27;s&quot;&gt;");
  EXPECT_EQ(xmlEscapedString(u"<\"it's\"> & more").utf8(),
            "&lt;&quot;it&apos;s&quot;&gt; &amp; more");
  EXPECT_EQ(_invalidXMLCharacterEscapeMap().count(), 5u);
}

TEST(GuardedReplacement, FallsBackToTheAlternative) {
  EXPECT_EQ(
      stringByReplacingOccurencesOfString(u"<name>.mov", u"<name>", String(), u"untitled", false)
          .utf8(),
      "untitled.mov");
  EXPECT_EQ(
      stringByReplacingOccurencesOfString(u"clip.mov", u"<name>", String(), u"untitled", false)
          .utf8(),
      "clip.mov");
  EXPECT_EQ(stringByReplacingOccurencesOfString(u"<n>", u"<n>", u"a&b", u"x", false, true).utf8(),
            "a&amp;b");
  EXPECT_EQ(
      stringByReplacingOccurencesOfString(u"a\u0378b\u0007<n>", u"<n>", u"c\uFFFF", u"x", true)
          .utf8(),
      "abc");
  EXPECT_EQ(testing::raised(
                [] { stringByReplacingOccurencesOfString(u"a", u"a", u"b", String(), false); }),
            "NSInvalidArgumentException: Alternative string must not be nil");
  EXPECT_EQ(stringByReplacingOccurrencesOfString(u"x<y", u"<", u"<", true).utf8(), "x&lt;y");
  EXPECT_EQ(stringByReplacingOccurrencesOfString(u"x<y", u"<", u"<", false).utf8(), "x<y");
}

TEST(PatternTest, AnchoredAtTheStartOnly) {
  EXPECT_TRUE(matchesRegularExpressionPattern(u"clip01", u"clip"));
  EXPECT_FALSE(matchesRegularExpressionPattern(u"my clip", u"clip"));
  EXPECT_FALSE(matchesRegularExpressionPattern(u"clip01", u"clip$"));
  const std::string raised =
      testing::raised([] { matchesRegularExpressionPattern(u"clip", u"(unclosed"); });
  EXPECT_THAT(raised, ::testing::StartsWith("NSInternalInconsistencyException: could not compile "
                                            "regex pattern '(unclosed': <NSError 0x"));
  EXPECT_THAT(raised, ::testing::HasSubstr(">\n\t domain: NSCocoaErrorDomain\n\t code: 2048\n"));
}

}  // namespace
}  // namespace tarnvik
