#include "tarnvik/platform/system/bundle.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

const char* kInfoPlist = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
  <key>CFBundleIdentifier</key><string>se.tarnvik.Test</string>
  <key>CFBundleVersion</key><string>42</string>
  <key>Count</key><integer>3</integer>
</dict></plist>)";

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old, had_ = true;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedEnv() { had_ ? setenv(name_, old_.c_str(), 1) : unsetenv(name_); }

 private:
  const char* name_;
  std::string old_;
  bool had_ = false;
};

class BundleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir.write("Info.plist", kInfoPlist);
    dir.write("Resources/en.lproj/Alerts.strings",
              "/* English */\n\"Cancel\" = \"Cancel\";\n\"Quote\" = \"Say \\\"hi\\\"\\n\";\n");
    // UTF-16 little-endian with a byte-order mark, as older tools write them.
    const std::u16string german = u"\uFEFF\"Cancel\" = \"Abbrechen\"; // comment\nPlain = Wort;";
    dir.write("Resources/de.lproj/Alerts.strings",
              std::string(reinterpret_cast<const char*>(german.data()), german.size() * 2));
    bundle = Bundle::bundleWithPath(String(dir.path().string()));
  }
  testing::TempDir dir;
  Bundle bundle;
  ScopedEnv noLanguage{"LANGUAGE", nullptr}, noAll{"LC_ALL", nullptr},
      noMessages{"LC_MESSAGES", nullptr};
};

TEST_F(BundleTest, ReadsInfoPlistAndResources) {
  ASSERT_FALSE(bundle.isNil());
  EXPECT_EQ(bundle.bundleIdentifier().utf8(), "se.tarnvik.Test");
  EXPECT_EQ(bundle.objectForInfoDictionaryKey(u"Count").intValue(), 3);
  EXPECT_EQ(bundle.resourcePath().utf8(), (dir.path() / "Resources").string());
  EXPECT_EQ(bundle.localizations(), (Array{u"de", u"en"}));
  EXPECT_TRUE(Bundle::bundleWithPath(u"/no/such/folder").isNil());
}

TEST_F(BundleTest, LooksUpThePreferredLanguageThenEnglish) {
  ScopedEnv lang("LANG", "de_DE.UTF-8");
  EXPECT_EQ(bundle.localizedStringForKey(u"Cancel", String(), u"Alerts").utf8(), "Abbrechen");
  EXPECT_EQ(bundle.localizedStringForKey(u"Plain", String(), u"Alerts").utf8(), "Wort");
  EXPECT_EQ(bundle.localizedStringForKey(u"Quote", String(), u"Alerts").utf8(), "Say \"hi\"\n");
}

TEST_F(BundleTest, FallsBackToTheValueThenTheKey) {
  ScopedEnv lang("LANG", "fr_FR.UTF-8");
  EXPECT_EQ(bundle.localizedStringForKey(u"Cancel", String(), u"Alerts").utf8(), "Cancel");
  EXPECT_EQ(bundle.localizedStringForKey(u"Missing", u"Default", u"Alerts").utf8(), "Default");
  EXPECT_EQ(bundle.localizedStringForKey(u"Missing", u"", u"Alerts").utf8(), "Missing");
  EXPECT_EQ(bundle.localizedStringForKey(u"Cancel", String(), u"NoSuchTable").utf8(), "Cancel");
}

TEST(PreferredLanguages, ReadTheEnvironmentInOrder) {
  ScopedEnv language("LANGUAGE", "sv:de_AT");
  ScopedEnv all("LC_ALL", "ja_JP.UTF-8@x");
  ScopedEnv lang("LANG", "C");
  EXPECT_EQ(preferredLanguages(), (Array{u"sv", u"de_AT", u"ja_JP"}));
}

TEST(MainBundle, AToolWithoutInfoPlistHasNoIdentifier) {
  EXPECT_TRUE(Bundle::mainBundle().bundleIdentifier().isNil());
  EXPECT_EQ(ProcessInfo::processName().utf8(), "platform_system_tests");
}

}  // namespace
}  // namespace tarnvik
