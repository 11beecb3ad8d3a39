// Every text operation on awkward strings: unpaired surrogates, lone "%", empty and nil
// text, long digit runs and separators only. Each call must either answer or raise the
// library's Exception; under the sanitizers this also proves no read out of bounds.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "support/fake_volumes.hpp"
#include "tarnvik/platform/foundation.hpp"
#include "tarnvik/text/affixes.hpp"
#include "tarnvik/text/backup_names.hpp"
#include "tarnvik/text/formatting.hpp"
#include "tarnvik/text/name_segments.hpp"
#include "tarnvik/text/number_forms.hpp"
#include "tarnvik/text/paths.hpp"
#include "tarnvik/text/regex_matches.hpp"
#include "tarnvik/text/sequence_order.hpp"
#include "tarnvik/text/unique_names.hpp"

namespace tarnvik {
namespace {

std::vector<String> awkwardTexts() {
  const char16_t lead[] = {u'a', 0xD83C, 0};
  const char16_t trail[] = {0xDFAC, u'b', 0};
  const char16_t reversed[] = {u'x', 0xDFAC, 0xD83C, 0};
  return {String(),
          String(u""),
          String(lead),
          String(trail),
          String(reversed),
          String(u"%"),
          String(u"%d%@%s%n"),
          String(u"/"),
          String(u"//.."),
          String(u"..."),
          String(u"~"),
          String(u"(("),
          String(u"))"),
          String(u"-type:-mv:.kddb"),
          String(std::u16string(300, u'9')),
          String(u"\u0663\u0664"),
          String(u" \t\n")};
}

TEST(BadInput, EveryTextOperationAnswersOrRaisesItsOwnException) {
  testing::FixedVolumesFileManager volumes(Array{u"/", u"/Volumes/Media"});
  const CharacterSet digits = CharacterSet::decimalDigitCharacterSet();
  const std::vector<std::function<void(const String&)>> operations = {
      [](const String& s) { incrementLastSegment(s); },
      [](const String& s) { decrementLastSegment(s); },
      [](const String& s) { resetLastSegmentToIndex(s, 7); },
      [](const String& s) { compareForSequence(s, u"clip1.mov"); },
      [](const String& s) { integerValueOfHexString(s); },
      [](const String& s) { stringByPaddingLeftToMinimalLength(s, 5, u"ab"); },
      [](const String& s) { stringByDeletingPrefix(s, u"a"); },
      [](const String& s) { deleteSuffix(*std::make_unique<String>(s), u"b"); },
      [&](const String& s) { rangeOfCharactersFromSet(s, digits, NSBackwardsSearch); },
      [](const String& s) { nonDecimalDigitSuffixIgnoringFileExtensions(s); },
      [](const String& s) {
        rangeAfterRange(s, {0, 1});
      },
      [&](const String& s) { volumePath(s, volumes); },
      [&](const String& s) { stringByStrippingVolumesFromPath(s, volumes); },
      [](const String& s) { relativePathByPreservingPathDepth(s, 3); },
      [](const String& s) { stringByDeletingFirstPathComponents(s, 2); },
      [](const String& s) { absolutePathFromBaseDirPath(s, u"/a/b"); },
      [](const String& s) { relativePathFromBaseDirPath(s, u"/a/b"); },
      [](const String& s) { stringWithTrailingSlash(s); },
      [](const String& s) { stringByDeletingFirstKeyPathComponent(s); },
      [](const String& s) {
        Scanner scanner(s);
        scanPathInParenthesesIntoString(scanner, nullptr);
      },
      [](const String& s) {
        uniqueStringWithRivals(s, Array{s, u"x 2"}, true);
      },
      [](const String& s) { trimFilePathInMiddleToRoughlyMaxSize(s, 2); },
      [](const String& s) {
        commonAncestorDirectoryFromPaths(Array{s.isNil() ? String(u"") : s, u"/a"});
      },
      [](const String& s) { asciiStringWithoutWhitespace(s); },
      [](const String& s) { stringByExpandingCamelCase(s); },
      [](const String& s) { xmlEscapedString(s); },
      [](const String& s) { stringWithUpperCaseFirstLetter(s); },
      [](const String& s) { matchesRegularExpressionPattern(u"clip", s); },
      [](const String& s) { backupDate(s); },
      [](const String& s) { backupType(s); },
      [](const String& s) { backupVersion(s); },
      [](const String& s) {
        const auto re = RegularExpression::regularExpressionWithPattern(u"(.)(x)?", 0);
        substringsOfMatchedString(firstMatchInString(re, s), s);
      },
      [](const String& s) { s.utf8(); },
      [](const String& s) { s.capitalizedString(); },
      [](const String& s) { s.stringByStandardizingPath(); },
      [](const String& s) {
        s.compare(u"x", NSCaseInsensitiveSearch | NSNumericSearch | NSDiacriticInsensitiveSearch);
      },
  };
  int answered = 0, raised = 0;
  for (const String& text : awkwardTexts()) {
    for (const auto& operation : operations) {
      try {
        operation(text);
        ++answered;
      } catch (const Exception&) {
        ++raised;  // the library's own failure form, with a name and a reason
      }
    }
  }
  EXPECT_EQ(answered + raised, static_cast<int>(awkwardTexts().size() * operations.size()));
  EXPECT_GT(answered, raised);
}

}  // namespace
}  // namespace tarnvik
