#include "tarnvik/platform/base/file_manager.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

TEST(VolumeList, KeepsRealFileSystemsInTableOrder) {
  const char* table =
      "22 1 0:21 / /proc rw,nosuid - proc proc rw\n"
      "23 1 0:22 / /sys rw - sysfs sysfs rw\n"
      "25 1 8:1 / / rw,relatime - ext4 /dev/sda1 rw\n"
      "26 25 0:23 / /run rw - tmpfs tmpfs rw\n"
      "40 25 8:17 / /media/editor/Media\\040Disk rw - exfat /dev/sdb1 rw\n"
      "41 25 7:0 / /snap/core/1 ro - squashfs /dev/loop0 ro\n"
      "42 25 0:50 / /mnt/nas rw - nfs4 nas:/export rw\n"
      "43 25 8:18 / /media/editor/Media rw - ext4 /dev/sdb2 rw\n"
      "44 25 0:60 / /var/lib/docker/overlay rw - overlay overlay rw\n"
      "45 25 8:17 / /media/editor/Media\\040Disk rw - exfat /dev/sdb1 rw\n"
      "malformed line\n";
  EXPECT_EQ(volumePathsFromMountInfo(table),
            (Array{u"/", u"/media/editor/Media Disk", u"/mnt/nas", u"/media/editor/Media"}));
  EXPECT_EQ(volumePathsFromMountInfo(""), (Array{u"/"}));
}

TEST(VolumeList, TheRealTableAlwaysHoldsTheRoot) {
  const Array volumes = FileManager::defaultManager().mountedVolumePaths();
  ASSERT_GE(volumes.count(), 1u);
  EXPECT_EQ(volumes[0].asString().utf8(), "/");
}

TEST(FolderListing, NamesErrorsAndExistence) {
  testing::TempDir dir;
  dir.write(".hidden", "");
  dir.write("clip.mov", "");
  std::filesystem::create_directories(dir.path() / "Day01");
  FileManager& fm = FileManager::defaultManager();
  const Array names = fm.contentsOfDirectoryAtPath(String(dir.path().string()));
  EXPECT_EQ(names.count(), 3u);
  EXPECT_TRUE(names.containsObject(u".hidden"));
  Error error;
  EXPECT_TRUE(fm.contentsOfDirectoryAtPath(u"/no/such/folder", &error).isNil());
  EXPECT_EQ(error.code(), 260);
  bool isDirectory = false;
  EXPECT_TRUE(fm.fileExistsAtPath(String((dir.path() / "Day01").string()), &isDirectory));
  EXPECT_TRUE(isDirectory);
  EXPECT_TRUE(fm.fileExistsAtPath(String((dir.path() / "clip.mov").string()), &isDirectory));
  EXPECT_FALSE(isDirectory);
  EXPECT_FALSE(fm.fileExistsAtPath(u""));
  EXPECT_FALSE(fm.currentDirectoryPath().isEmpty());
}

}  // namespace
}  // namespace tarnvik
