#include "tarnvik/app/application_identity.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "support/file_helpers.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik::testing {
namespace {

namespace fs = std::filesystem;

std::string plist(const std::string& entries) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
         "</dict></plist>\n";
}

const char* kRelaunchTool =
    "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$1\" \"$2\" \"$PPID\" > \"$(dirname "
    "\"$0\")/launched.txt\"\n";

// A real application bundle in a temporary folder, installed as the main bundle:
//   Clips.app/Contents/Info.plist, Resources/, Frameworks/ with two frameworks.
class ApplicationIdentityTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir.write("Clips.app/Contents/Info.plist",
              plist("<key>CFBundleExecutable</key><string>Clips</string>"
                    "<key>CFBundleVersion</key><string>42</string>"
                    "<key>CFBundleShortVersionString</key><string>1.2</string>"
                    "<key>CFBundleIdentifier</key><string>se.tarnvik.Clips</string>"));
    dir.write("Clips.app/Contents/Resources/dark.theme", "main");
    dir.write("Clips.app/Contents/Resources/Icon.png", "png");
    dir.write("Clips.app/Contents/Frameworks/Looks.framework/Resources/dark.theme", "looks");
    dir.write("Clips.app/Contents/Frameworks/Looks.framework/Resources/light.theme", "looks");
    dir.write("Clips.app/Contents/Frameworks/.Hidden.framework/Resources/x.theme", "hidden");
    dir.write("Clips.app/Contents/Frameworks/notes.txt", "not a bundle");
    fs::create_directories(dir.path() / "Clips.app/Contents/Frameworks/Sparkle.framework");
    app = dir.path() / "Clips.app";
    Bundle::setMainBundle(Bundle::bundleWithPath(str(app)));
    UserDefaults::setDefaultsDirectory(str(dir.path() / "defaults"));
  }
  void TearDown() override {
    Bundle::setMainBundle(Bundle());
    UserDefaults::setDefaultsDirectory(String());
  }
  fs::path installRelaunchTool() const {
    const fs::path tool =
        dir.write("Clips.app/Contents/Frameworks/Sparkle.framework/Versions/A/Resources/relaunch",
                  kRelaunchTool);
    fs::permissions(tool, fs::perms::owner_all);
    return tool;
  }

  TempDir dir;
  fs::path app;
};

TEST_F(ApplicationIdentityTest, CommandLineProcessHasOnlyTheProcessName) {
  ASSERT_EQ(Application::sharedApplication(), nullptr);
  EXPECT_EQ(ku_applicationName(), ProcessInfo::processName());
  EXPECT_EQ(ku_applicationName().utf8(), "app_tests");
  EXPECT_TRUE(ku_applicationVersion().isNil());
  EXPECT_TRUE(ku_applicationShortVersion().isNil());
  // The identifier does not look for an application object.
  EXPECT_EQ(ku_applicationBundleIdentifier().utf8(), "se.tarnvik.Clips");
}

TEST_F(ApplicationIdentityTest, DesktopApplicationReadsItsInfoPlist) {
  Application application;
  EXPECT_EQ(ku_applicationName().utf8(), "Clips");
  EXPECT_EQ(ku_applicationName(application).utf8(), "Clips");
  EXPECT_EQ(ku_applicationVersion().utf8(), "42");
  EXPECT_EQ(ku_applicationShortVersion().utf8(), "1.2");
  EXPECT_EQ(name().utf8(), "Clips");
  EXPECT_EQ(name(application).utf8(), "Clips");
  EXPECT_EQ(version().utf8(), "42");
  EXPECT_EQ(shortVersion().utf8(), "1.2");
  EXPECT_EQ(bundleIdentifier().utf8(), "se.tarnvik.Clips");

  // The binary form reads the same; a missing key falls back to the process name.
  ASSERT_EQ(python(app / "Contents",
                   "import plistlib\n"
                   "plistlib.dump({'CFBundleVersion': '43'}, open('Info.plist', 'wb'),"
                   " fmt=plistlib.FMT_BINARY)\n"),
            0);
  Bundle::setMainBundle(Bundle::bundleWithPath(str(app)));
  EXPECT_EQ(ku_applicationVersion().utf8(), "43");
  EXPECT_EQ(ku_applicationName().utf8(), "app_tests");
  EXPECT_TRUE(ku_applicationShortVersion().isNil());

  fs::remove(app / "Contents/Info.plist");
  EXPECT_EQ(ku_applicationName().utf8(), "app_tests");
  EXPECT_TRUE(ku_applicationVersion().isNil());
}

TEST_F(ApplicationIdentityTest, InfoPlistIsTheOneBesideTheResourceFolder) {
  Application application;
  // A flat bundle has its resources in its own folder; "/../Info.plist" then names the
  // parent folder's file, not the bundle's.
  dir.write("Flat/Info.plist", plist("<key>CFBundleExecutable</key><string>Flat</string>"));
  dir.write("Info.plist", plist("<key>CFBundleExecutable</key><string>Parent</string>"));
  Bundle::setMainBundle(Bundle::bundleWithPath(str(dir.path() / "Flat")));
  EXPECT_EQ(ku_applicationName().utf8(), "Parent");
}

TEST_F(ApplicationIdentityTest, IdentifierPrefersTheInfoResource) {
  dir.write("Clips.app/Contents/Resources/Info.plist",
            plist("<key>CFBundleIdentifier</key><string>se.tarnvik.FromResource</string>"));
  EXPECT_EQ(ku_applicationBundleIdentifier().utf8(), "se.tarnvik.FromResource");
  dir.write("Clips.app/Contents/Resources/Info.plist", plist(""));
  EXPECT_EQ(ku_applicationBundleIdentifier().utf8(), "se.tarnvik.Clips");
}

std::vector<std::string> paths(const std::vector<Bundle>& bundles) {
  std::vector<std::string> result;
  for (const Bundle& bundle : bundles) result.push_back(bundle.bundlePath().utf8());
  return result;
}

TEST_F(ApplicationIdentityTest, FrameworksAndResourcesAcrossBundles) {
  const std::string frameworks = (app / "Contents/Frameworks").string();
  EXPECT_EQ(paths(privateFrameworks()), (std::vector<std::string>{
                                            frameworks + "/Looks.framework",
                                            frameworks + "/Sparkle.framework",
                                        }));
  const auto all = paths(allBundlesIncludingFrameworks());
  EXPECT_EQ(all.size(), 3u) << "the main bundle once, though allBundles holds it too";
  EXPECT_EQ(std::count(all.begin(), all.end(), app.string()), 1);

  EXPECT_EQ(allPathsForResource(u"dark", u"theme"),
            (Array{String(app.string() + "/Contents/Resources/dark.theme"),
                   String(frameworks + "/Looks.framework/Resources/dark.theme")}));
  EXPECT_EQ(allPathsForResource(u"missing", u"theme"), Array::array());
  EXPECT_EQ(allPathsForResourcesOfType(u"theme"),
            (Array{String(app.string() + "/Contents/Resources/dark.theme"),
                   String(frameworks + "/Looks.framework/Resources/dark.theme"),
                   String(frameworks + "/Looks.framework/Resources/light.theme")}));

  fs::remove_all(app / "Contents/Frameworks");
  EXPECT_TRUE(privateFrameworks().empty());
  EXPECT_EQ(paths(allBundlesIncludingFrameworks()), (std::vector<std::string>{app.string()}));
}

TEST_F(ApplicationIdentityTest, SharedSuiteIsCreatedOnce) {
  UserDefaults& suite = ke_marrowfieldSuiteDefaults();
  EXPECT_EQ(&suite, &ke_marrowfieldSuiteDefaults());
  suite.setBool(true, u"SharedProxy");
  ASSERT_TRUE(suite.synchronize());
  UserDefaults reader(u"Tarnvik/Marrowfield");
  EXPECT_TRUE(reader.boolForKey(u"SharedProxy"));
  EXPECT_TRUE(fs::exists(dir.path() / "defaults/Tarnvik/Marrowfield.plist"));
}

class RecordingApplication : public Application {
 public:
  void terminate(const Value& sender) override {
    ++terminations;
    senderWasNil = sender.isNil();
  }
  int terminations = 0;
  bool senderWasNil = false;
};

TEST_F(ApplicationIdentityTest, RelaunchWithoutTheToolDoesNothing) {
  RecordingApplication application;
  relaunchApplication(application);
  EXPECT_EQ(application.terminations, 0);
}

TEST_F(ApplicationIdentityTest, RelaunchStartsTheToolWithPathAndProcessThenTerminates) {
  const fs::path tool = installRelaunchTool();
  RecordingApplication application;
  relaunchApplication(application);
  EXPECT_EQ(application.terminations, 1);
  EXPECT_TRUE(application.senderWasNil);

  int status = 0;
  ASSERT_GT(::waitpid(-1, &status, 0), 0) << "the tool was started as our child";
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(slurp(tool.parent_path() / "launched.txt"), "2\n" + app.string() + "\n" +
                                                            std::to_string(::getpid()) + "\n" +
                                                            std::to_string(::getpid()) + "\n");
}

TEST_F(ApplicationIdentityTest, TerminateRunsTheHostsHandler) {
  Application application;
  EXPECT_EQ(Application::sharedApplication(), &application);
  EXPECT_THROW(Application(), Exception) << "one application object per process";
  Value received(u"not called");
  application.setTerminateHandler([&](const Value& sender) { received = sender; });
  application.terminate(Value(u"menu"));
  EXPECT_EQ(received.asString().utf8(), "menu");
}

}  // namespace
}  // namespace tarnvik::testing
