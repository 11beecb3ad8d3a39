#include "tarnvik/core/errors.hpp"

#include <gtest/gtest.h>

#include "support/temp_dir.hpp"
#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik {
namespace {

TEST(ErrorConstructors, ReasonAndUnderlyingErrorAreOptional) {
  const Error none = errorWithDomain(u"D", 7, String(), Error());
  EXPECT_EQ(none.domain().utf8(), "D");
  EXPECT_EQ(none.code(), 7);
  EXPECT_TRUE(none.userInfo().isEmpty());
  EXPECT_FALSE(none.userInfo().isNil());

  const Error cause(u"Inner", -2);
  const Error both = errorWithDomain(KFErrorDomainTarnvikExtensions, 1, u"Could not copy", cause);
  EXPECT_EQ(both.userInfo().count(), 2u);
  EXPECT_EQ(both.localizedFailureReason().utf8(), "Could not copy");
  EXPECT_TRUE(both.underlyingError().isEqual(cause));
  EXPECT_TRUE(both.userInfo().objectForKey(NSLocalizedDescriptionKey).isNil());

  const Error reasonOnly = errorWithDomain(u"D", 2, u"why");
  EXPECT_EQ(reasonOnly.userInfo(), (Dictionary{{NSLocalizedFailureReasonErrorKey, u"why"}}));
}

TEST(ErrorConstructors, FormatsFillTheReason) {
  const Error e =
      errorWithDomainCodeReasonFormat(u"D", 4, u"Path %@ is not a folder (%lu)", u"/x", 3ul);
  EXPECT_EQ(e.localizedFailureReason().utf8(), "Path /x is not a folder (3)");
  EXPECT_TRUE(e.underlyingError().isNil());
  const Error u =
      errorWithDomainCodeUnderlyingErrorReasonFormat(u"D", 1, Error(u"I", 9), u"%qi%%", 5LL);
  EXPECT_EQ(u.localizedFailureReason().utf8(), "5%");
  EXPECT_EQ(u.underlyingError().code(), 9);
  // The reason is text, not a format: a percent sign stays as it is.
  EXPECT_EQ(errorWithDomain(u"D", 1, u"50%d").localizedFailureReason().utf8(), "50%d");
}

TEST(ErrorConstructors, DescriptionIsSetOnlyByItsOwnConstructor) {
  const Error onlyReason = errorWithDomainCodeDescriptionReason(u"D", 3, String(), u"reason");
  EXPECT_EQ(onlyReason.userInfo(), (Dictionary{{NSLocalizedFailureReasonErrorKey, u"reason"}}));
  const Error both = errorWithDomainCodeDescriptionReason(u"D", 3, u"Copy failed", u"disk full");
  EXPECT_EQ(both.localizedDescription().utf8(), "Copy failed");
  EXPECT_EQ(initWithDomain(u"D", 3, String(), String()).userInfo().count(), 0u);
}

TEST(ErrorConstructors, LocalizedDescriptionDefaultsToThePlatformText) {
  EXPECT_EQ(Error(u"MyDomain", 3).localizedDescription().utf8(),
            "The operation couldn\u2019t be completed. (MyDomain error 3.)");
  EXPECT_EQ(errorWithDomain(u"MyDomain", 3, u"disk full").localizedDescription().utf8(),
            "The operation couldn\u2019t be completed. disk full");
}

TEST(ErrorConstructors, CalledOnKEErrorTheyMakeKEErrors) {
  const KEError a = errorWithDomain<KEError>(u"D", 1, u"r");
  const KEError b = errorWithReasonFormat<KEError>(u"%d", 1);
  const KEError c = errorWithDomainCodeDescriptionReason<KEError>(u"D", 1, u"d", u"r");
  for (const Error& e : {Error(a), Error(b), Error(c)}) {
    EXPECT_EQ(e.className().utf8(), "KEError");
    EXPECT_TRUE(e.isKindOfClass(u"NSError"));
    EXPECT_TRUE(Value(e).isKindOfClass(u"KEError"));  // the class survives a trip through Value
  }
  EXPECT_FALSE(errorWithDomain(u"D", 1, u"r").isKindOfClass(u"KEError"));
}

TEST(DefaultDomain, IsTheProcessNameWithoutABundleIdentifier) {
  const Error e = errorWithReasonFormat(u"Could not read %@", u"clip.mov");
  EXPECT_EQ(e.domain().utf8(), "core_tests");
  EXPECT_EQ(e.code(), 1);
  EXPECT_EQ(errorWithCode(12, u"x").code(), 12);
  EXPECT_EQ(errorWithCode(12, u"x").domain().utf8(), "core_tests");
}

TEST(DefaultDomain, IsLookedUpAtEveryCall) {
  testing::TempDir dir;
  dir.write("Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
            "<string>se.tarnvik.Host</string></dict></plist>");
  Bundle::setMainBundle(Bundle::bundleWithPath(String(dir.path().string())));
  EXPECT_EQ(errorWithReasonFormat(u"x").domain().utf8(), "se.tarnvik.Host");
  Bundle::setMainBundle(Bundle());
  EXPECT_EQ(errorWithReasonFormat(u"x").domain().utf8(), "core_tests");
}

}  // namespace
}  // namespace tarnvik
