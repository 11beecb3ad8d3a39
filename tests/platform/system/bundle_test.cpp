#include "tarnvik/platform/system/bundle.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cerrno>

#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/system/property_list.hpp"

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

TEST_F(BundleTest, ListsResourcesByTypeAndFindsItsFrameworksFolder) {
  dir.write("Resources/b.theme", "");
  dir.write("Resources/a.theme", "");
  dir.write("Resources/Looks/c.theme", "");
  dir.write("Resources/notes.txt", "");
  const std::string resources = (dir.path() / "Resources").string();
  EXPECT_EQ(bundle.pathsForResourcesOfType(u"theme", String()),
            (Array{String(resources + "/a.theme"), String(resources + "/b.theme")}));
  EXPECT_EQ(bundle.pathsForResourcesOfType(u"theme", u"Looks"),
            (Array{String(resources + "/Looks/c.theme")}));
  EXPECT_EQ(bundle.pathsForResourcesOfType(String(), String()).count(), 3u);
  EXPECT_EQ(bundle.pathsForResourcesOfType(u"theme", u"Missing"), Array::array());
  EXPECT_EQ(bundle.privateFrameworksPath().utf8(), (dir.path() / "Frameworks").string());

  testing::TempDir app;
  app.write("Clips.app/Contents/Info.plist", kInfoPlist);
  const Bundle packaged = Bundle::bundleWithPath(String((app.path() / "Clips.app").string()));
  EXPECT_EQ(packaged.privateFrameworksPath().utf8(),
            (app.path() / "Clips.app/Contents/Frameworks").string());
  EXPECT_TRUE(packaged.isEqual(Bundle::bundleWithPath(packaged.bundlePath())));
  EXPECT_FALSE(packaged.isEqual(bundle));
}

TEST(PropertyListFiles, ReadDictionariesOnly) {
  testing::TempDir dir;
  dir.write("info.plist", kInfoPlist);
  dir.write("array.plist", "<plist version=\"1.0\"><array><string>a</string></array></plist>");
  dir.write("text.strings", "\"a\" = \"b\";");
  const auto at = [&](const char* name) {
    return dictionaryWithContentsOfFile(String((dir.path() / name).string()));
  };
  EXPECT_EQ(at("info.plist").objectForKey(u"CFBundleVersion").asString().utf8(), "42");
  EXPECT_TRUE(at("array.plist").isNil());
  EXPECT_TRUE(at("text.strings").isNil()) << "a strings table is not a property list";
  EXPECT_TRUE(at("missing.plist").isNil());
  EXPECT_TRUE(dictionaryWithContentsOfFile(String()).isNil());
}

TEST(Tasks, LaunchWithoutWaitingOrSayWhy) {
  testing::TempDir dir;
  const std::string out = (dir.path() / "out").string();
  const Integer pid = Task::launchedTaskWithLaunchPath(
      u"/bin/sh", Array{u"-c", u"printf '%s|%s' \"$0\" \"$1\" > \"$2\"", u"clip 1.mov",
                        Value(Integer(7)), String(out)});
  ASSERT_GT(pid, 0);
  int status = 0;
  ASSERT_EQ(::waitpid(static_cast<pid_t>(pid), &status, 0), pid);
  EXPECT_EQ(testing::slurp(out), "clip 1.mov|7");

  Error error;
  EXPECT_EQ(Task::launchedTaskWithLaunchPath(u"/no/such/tool", Array::array(), &error), 0);
  EXPECT_EQ(error.domain().utf8(), "NSPOSIXErrorDomain");
  EXPECT_EQ(error.code(), ENOENT);
  EXPECT_EQ(error.userInfo().objectForKey(NSFilePathErrorKey).asString().utf8(), "/no/such/tool");
}

TEST(MainBundle, AToolWithoutInfoPlistHasNoIdentifier) {
  EXPECT_TRUE(Bundle::mainBundle().bundleIdentifier().isNil());
  EXPECT_EQ(ProcessInfo::processName().utf8(), "platform_system_tests");
}

}  // namespace
}  // namespace tarnvik
