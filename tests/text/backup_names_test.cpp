#include "tarnvik/text/backup_names.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

// 2024-03-05 14:15:30 in Europe/Berlin (UTC+1 in March), pinned for the whole suite.
constexpr double kMarchFifth = 1709644530.0;

class BackupNames : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { setenv("TZ", "Europe/Berlin", 1); }
};

TEST_F(BackupNames, ReadDateTypeAndVersion) {
  const String name = u"2024-03-05_141530-type:auto-mv:12.kddb";
  ASSERT_TRUE(backupDate(name).has_value());
  EXPECT_DOUBLE_EQ(backupDate(name)->timeIntervalSince1970(), kMarchFifth);
  EXPECT_EQ(backupType(name).utf8(), "auto");
  EXPECT_EQ(backupVersion(name), 12);
}

TEST_F(BackupNames, OptionalPiecesAndFurtherExtensions) {
  ASSERT_TRUE(backupDate(u"2024-03-05_141530.kddb").has_value());
  EXPECT_DOUBLE_EQ(backupDate(u"2024-03-05_141530.kddb")->timeIntervalSince1970(), kMarchFifth);
  EXPECT_TRUE(backupType(u"2024-03-05_141530.kddb").isNil());
  EXPECT_FALSE(backupVersion(u"2024-03-05_141530.kddb").has_value());
  EXPECT_EQ(backupType(u"2024-03-05_141530-type:manual.kddb").utf8(), "manual");
  const String zipped = u"2024-03-05_141530-type:auto-mv:12.kddb.zip";
  ASSERT_TRUE(backupDate(zipped).has_value());
  EXPECT_DOUBLE_EQ(backupDate(zipped)->timeIntervalSince1970(), kMarchFifth);
  EXPECT_EQ(backupType(zipped).utf8(), "auto");
  EXPECT_EQ(backupVersion(zipped), 12);
  // The folders stay in front of the date, so only a bare file name gives a date.
  const String path = u"/backups/2024-03-05_141530-type:auto-mv:12.kddb";
  EXPECT_FALSE(backupDate(path).has_value());
  EXPECT_EQ(backupType(path).utf8(), "auto");
}

TEST_F(BackupNames, BadDatesAndMissingEnds) {
  const String name = u"yesterday-type:auto-mv:7.kddb";
  EXPECT_FALSE(backupDate(name).has_value());
  EXPECT_EQ(backupType(name).utf8(), "auto");
  EXPECT_EQ(backupVersion(name), 7);
  EXPECT_FALSE(backupDate(u"2024-13-05_141530.kddb").has_value());
  EXPECT_EQ(backupVersion(u"x-mv:abc.kddb"), 0);
  EXPECT_THROW(backupVersion(u"x-mv:3"), Exception);
  EXPECT_THROW(backupType(u"x-type:auto"), Exception);
}

}  // namespace
}  // namespace tarnvik
