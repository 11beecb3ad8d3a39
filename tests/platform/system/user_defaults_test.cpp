// Settings persisted in property-list files in a temporary folder.
#include "tarnvik/platform/system/user_defaults.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

class UserDefaultsTest : public ::testing::Test {
 protected:
  void SetUp() override { UserDefaults::setDefaultsDirectory(testing::str(dir.path())); }
  void TearDown() override { UserDefaults::setDefaultsDirectory(String()); }
  testing::TempDir dir;
};

TEST_F(UserDefaultsTest, ValuesOfEveryKindSurviveInTheDomainFile) {
  {
    UserDefaults suite(u"com.example.offload");
    suite.setInteger(-42, u"negative");
    suite.setObject(Value(std::uint64_t{1} << 40), u"large");
    suite.setDouble(2.5, u"ratio");
    suite.setBool(true, u"verify");
    suite.setObject(u"/Volumes/Backup", u"destination");
    suite.setObject(Array{u"mov", u"mxf"}, u"types");
    suite.setObject(Dictionary{{u"A", 1}}, u"map");
    suite.setObject(Data::withBytes("\0\1", 2), u"blob");
    suite.setObject(Date::dateWithTimeIntervalSince1970(1.7e9), u"when");
    EXPECT_TRUE(suite.lastWriteError().isNil());
  }
  EXPECT_TRUE(std::filesystem::exists(dir.path() / "com.example.offload.plist"));
  EXPECT_NE(testing::slurp(dir.path() / "com.example.offload.plist").find("<plist"),
            std::string::npos);
  UserDefaults again(u"com.example.offload");
  EXPECT_EQ(again.integerForKey(u"negative"), -42);
  EXPECT_EQ(again.objectForKey(u"large").unsignedIntegerValue(), std::uint64_t{1} << 40);
  EXPECT_EQ(again.doubleForKey(u"ratio"), 2.5);
  EXPECT_TRUE(again.boolForKey(u"verify"));
  EXPECT_EQ(again.stringForKey(u"destination"), String(u"/Volumes/Backup"));
  EXPECT_EQ(again.arrayForKey(u"types").count(), 2u);
  EXPECT_EQ(again.dictionaryForKey(u"map").objectForKey(u"A").integerValue(), 1);
  EXPECT_EQ(again.dataForKey(u"blob").length(), 2u);
  EXPECT_EQ(again.objectForKey(u"when").asDate().timeIntervalSince1970(), 1.7e9);
  // Typed getters refuse other kinds.
  EXPECT_TRUE(again.stringForKey(u"ratio").isNil());
  EXPECT_TRUE(again.arrayForKey(u"destination").isNil());
  again.removeObjectForKey(u"negative");
  EXPECT_TRUE(UserDefaults(u"com.example.offload").objectForKey(u"negative").isNil());
}

TEST_F(UserDefaultsTest, RegisteredDefaultsSitBelowTheDomainAndAreNeverWritten) {
  UserDefaults suite(u"registered");
  suite.registerDefaults(Dictionary{{u"filesizeCFIMethod", 1}, {u"threads", 4}});
  suite.setInteger(8, u"threads");
  EXPECT_EQ(suite.integerForKey(u"filesizeCFIMethod"), 1);
  EXPECT_EQ(suite.integerForKey(u"threads"), 8);
  EXPECT_EQ(suite.dictionaryRepresentation().count(), 2u);
  EXPECT_EQ(testing::slurp(dir.path() / "registered.plist").find("filesizeCFIMethod"),
            std::string::npos);
  suite.removeObjectForKey(u"threads");
  EXPECT_EQ(suite.integerForKey(u"threads"), 4);
  EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(u"threads"), 4);  // process-wide
  EXPECT_EQ(suite.integerForKey(u"missing"), 0);
}

TEST_F(UserDefaultsTest, DamagedFilesCountAsEmptyAndFailedWritesKeepTheOldFile) {
  std::ofstream(dir.path() / "damaged.plist") << "<plist><dict><key>x";
  UserDefaults damaged(u"damaged");
  EXPECT_TRUE(damaged.objectForKey(u"x").isNil());
  damaged.setInteger(1, u"x");
  EXPECT_EQ(UserDefaults(u"damaged").integerForKey(u"x"), 1);  // replaced by a whole file

  // Another process changed the file: synchronize reads it again.
  UserDefaults mine(u"shared");
  mine.setInteger(1, u"n");
  UserDefaults(u"shared").setInteger(2, u"n");
  EXPECT_EQ(mine.integerForKey(u"n"), 1);
  EXPECT_TRUE(mine.synchronize());
  EXPECT_EQ(mine.integerForKey(u"n"), 2);

  // A folder that cannot hold the file: the value stays in memory, the error is kept.
  std::ofstream(dir.path() / "blocked") << "a file, not a folder";
  UserDefaults::setDefaultsDirectory(testing::str(dir.path() / "blocked"));
  UserDefaults blocked(u"blocked");
  blocked.setInteger(5, u"n");
  EXPECT_FALSE(blocked.lastWriteError().isNil());
  EXPECT_EQ(blocked.integerForKey(u"n"), 5);
}

}  // namespace
}  // namespace tarnvik
