#include "tarnvik/store/error_descriptions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnvik {
namespace {

using ::testing::MatchesRegex;

TEST(ErrorDescriptionsTest, StandardDescriptionAndNames) {
  const Error other(u"MyDomain", 7, Dictionary{{NSLocalizedDescriptionKey, u"Disk gone"}});
  EXPECT_THAT(description(other).utf8(),
              MatchesRegex("<NSError 0x[0-9a-f]+>\n"
                           "\t domain: MyDomain\n"
                           "\t code: 7\n"
                           "\t userInfo: \\{\n    NSLocalizedDescription = \"Disk gone\";\n\\}\n"
                           "\t localizedDesciption: Disk gone\n"
                           "\t errorName: \n"));
  EXPECT_EQ(errorName(other).utf8(), "");
  EXPECT_EQ(errorName(Error(NSCocoaErrorDomain, 1561)).utf8(), "Unknown");
  EXPECT_EQ(errorName(Error(NSCocoaErrorDomain, 1680)).utf8(),
            "NSValidationStringPatternMatchingError");
  EXPECT_EQ(errorName(Error(String(), 1570)).utf8(), "");
  // A nil domain has no domain line; a Cocoa error that is not 1560 keeps the standard form.
  EXPECT_THAT(description(Error(String(), 3)).utf8(),
              MatchesRegex("<NSError 0x[0-9a-f]+>\n\t code: 3\n\t userInfo: \\{\n\\}\n.*"));
  EXPECT_THAT(description(Error(NSCocoaErrorDomain, 1570)).utf8(),
              ::testing::EndsWith("\t errorName: NSValidationMissingMandatoryPropertyError\n"));
  EXPECT_THAT(coreDataErrorDescription(Error(NSCocoaErrorDomain, 1570)).utf8(),
              ::testing::EndsWith("\t userInfo: {\n}\n\t errorName:"
                                  "NSValidationMissingMandatoryPropertyError\n"));
}

TEST(ErrorDescriptionsTest, MultipleValidationErrorsListEachDetailedError) {
  Array detailed = Array::array();
  for (const Integer code : {1570, 1600, 1660})
    detailed.addObject(Error(NSCocoaErrorDomain, code, Dictionary{{u"key", code}}));
  const Error multiple(NSCocoaErrorDomain, NSValidationMultipleErrorsError,
                       Dictionary{{NSDetailedErrorsKey, detailed}});
  const std::string text = description(multiple).utf8();
  // No localized-description line of its own (the nested errors in the user info have theirs).
  EXPECT_EQ(text.find("(NSCocoaErrorDomain error 1560.)"), std::string::npos);
  EXPECT_THAT(text, MatchesRegex("<NSError 0x[0-9a-f]+>\n\t domain: NSCocoaErrorDomain\n\t code: "
                                 "1560\n\t userInfo: .*"));
  EXPECT_THAT(text,
              ::testing::HasSubstr("}\t errorName: NSValidationRelationshipDeniedDeleteError\n"));
  EXPECT_THAT(text, ::testing::EndsWith("}\t errorName: NSValidationStringTooLongError\n"));
  std::size_t count = 0;
  for (std::size_t at = 0;
       (at = text.find("\t detailed error\t error : ", at)) != std::string::npos; ++at)
    ++count;
  EXPECT_EQ(count, 3u);

  const Error bare(NSCocoaErrorDomain, NSValidationMultipleErrorsError);
  EXPECT_THAT(description(bare).utf8(),
              MatchesRegex("<NSError 0x[0-9a-f]+>\n\t domain: NSCocoaErrorDomain\n\t code: "
                           "1560\n\t userInfo: \\{\n\\}\n"));
}

}  // namespace
}  // namespace tarnvik
