#include "tarnvik/platform/base/file_manager.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
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

TEST(FileSystems, TypeComesFromTheMountTableByDevice) {
  const char* table =
      "25 1 8:1 / / rw,relatime - ext4 /dev/sda1 rw\n"
      "40 25 8:17 / /media/Card rw - exfat /dev/sdb1 rw\n"
      "short line\n";
  EXPECT_EQ(fileSystemTypeFromMountInfo(table, 8, 17).utf8(), "exfat");
  EXPECT_EQ(fileSystemTypeFromMountInfo(table, 8, 1).utf8(), "ext4");
  EXPECT_EQ(fileSystemTypeFromMountInfo(table, 9, 9).utf8(), "");

  testing::TempDir dir;
  FileSystemAttributes attributes;
  FileManager& fm = FileManager::defaultManager();
  ASSERT_TRUE(fm.fileSystemAttributesAtPath(String(dir.path().string()), &attributes));
  EXPECT_GT(attributes.size, 0u);
  EXPECT_LE(attributes.freeSize, attributes.size);
  EXPECT_FALSE(attributes.type.isEmpty());
  Error error;
  EXPECT_FALSE(fm.fileSystemAttributesAtPath(u"/no/such/place", &attributes, &error));
  EXPECT_EQ(error.code(), NSFileReadNoSuchFileError);
}

TEST(FileAttributesOf, LinksAreDescribedOrFollowedAndDatesSet) {
  testing::TempDir dir;
  const auto file = dir.write("A001.mov", "12345");
  std::filesystem::create_symlink(file, dir.path() / "link");
  std::filesystem::create_symlink(dir.path() / "gone", dir.path() / "dangling");
  FileManager& fm = FileManager::defaultManager();
  const String link(dir.path().string() + "/link");
  FileAttributes attributes;
  ASSERT_TRUE(fm.attributesOfItemAtPath(link, true, &attributes));
  EXPECT_EQ(attributes.type, FileType::Regular);
  EXPECT_EQ(attributes.size, 5u);
  ASSERT_TRUE(fm.attributesOfItemAtPath(link, false, &attributes));
  EXPECT_EQ(attributes.type, FileType::SymbolicLink);
  EXPECT_EQ(fm.destinationOfSymbolicLinkAtPath(link).utf8(), file.string());
  const String dangling(dir.path().string() + "/dangling");
  FileType type = FileType::Other;
  EXPECT_TRUE(fm.itemExistsAtPath(dangling, &type));
  EXPECT_EQ(type, FileType::SymbolicLink);
  EXPECT_FALSE(fm.fileExistsAtPath(dangling));
  EXPECT_TRUE(fm.realPathOfItemAtPath(dangling).isNil());
  EXPECT_EQ(fm.realPathOfItemAtPath(link).utf8(), std::filesystem::canonical(file).string());

  const Date date = Date::dateWithTimeIntervalSince1970(1234567890.25);
  ASSERT_TRUE(fm.setModificationDate(String(file.string()), date));
  ASSERT_TRUE(fm.setPosixPermissions(String(file.string()), 0604));
  ASSERT_TRUE(fm.attributesOfItemAtPath(String(file.string()), false, &attributes));
  EXPECT_EQ(attributes.modificationDate, date);
  EXPECT_EQ(attributes.permissions, 0604u);
}

TEST(FolderCreation, IntermediatesAndWhatIsInTheWay) {
  testing::TempDir dir;
  FileManager& fm = FileManager::defaultManager();
  const String deep(dir.path().string() + "/Day01/Card A/CLIP");
  Error error;
  EXPECT_FALSE(fm.createDirectoryAtPath(deep, false, &error));
  EXPECT_EQ(error.code(), NSFileNoSuchFileError);
  EXPECT_TRUE(fm.createDirectoryAtPath(deep, true, &error));
  EXPECT_TRUE(fm.createDirectoryAtPath(deep, true, &error));
  EXPECT_FALSE(fm.createDirectoryAtPath(deep, false, &error));
  EXPECT_EQ(error.code(), NSFileWriteFileExistsError);
  dir.write("file", "");
  EXPECT_FALSE(fm.createDirectoryAtPath(String(dir.path().string() + "/file"), true, &error));
  EXPECT_EQ(error.code(), NSFileWriteFileExistsError);
}

TEST(FileErrors, CodesFollowTheOperationAndThePosixError) {
  struct Row {
    FileOperation operation;
    int posixError;
    Integer code;
  };
  const Row rows[] = {
      {FileOperation::Read, ENOENT, NSFileReadNoSuchFileError},
      {FileOperation::Read, ENOTDIR, NSFileReadNoSuchFileError},
      {FileOperation::Read, EACCES, NSFileReadNoPermissionError},
      {FileOperation::Read, ENAMETOOLONG, NSFileReadInvalidFileNameError},
      {FileOperation::Read, EIO, NSFileReadUnknownError},
      {FileOperation::Write, ENOSPC, NSFileWriteOutOfSpaceError},
      {FileOperation::Write, EPERM, NSFileWriteNoPermissionError},
      {FileOperation::Write, ENOENT, NSFileWriteUnknownError},
      {FileOperation::Copy, ENOENT, NSFileNoSuchFileError},
      {FileOperation::Move, EEXIST, NSFileWriteFileExistsError},
      {FileOperation::Remove, ENOTEMPTY, NSFileWriteFileExistsError},
      {FileOperation::Create, EROFS, NSFileWriteVolumeReadOnlyError},
      {FileOperation::Link, EDQUOT, NSFileWriteOutOfSpaceError},
  };
  for (const Row& row : rows) {
    const Error error =
        FileManager::errorFor(row.operation, u"/Volumes/A/clip.mov", row.posixError);
    EXPECT_EQ(error.code(), row.code) << "errno " << row.posixError;
    EXPECT_EQ(error.userInfo().objectForKey(NSFilePathErrorKey).asString().utf8(),
              "/Volumes/A/clip.mov");
    EXPECT_EQ(error.underlyingError().domain(), String(NSPOSIXErrorDomain));
    EXPECT_EQ(error.underlyingError().code(), row.posixError);
  }
}

TEST(FileErrors, DescriptionsNameTheFileAndTheCause) {
  testing::TempDir dir;
  const String folder(dir.path().string());
  FileManager& fm = FileManager::defaultManager();
  Error error;
  EXPECT_TRUE(
      fm.contentsAtPath(folder.stringByAppendingPathComponent(u"clip.mov"), 0, &error).isNil());
  EXPECT_EQ(error.localizedDescription().utf8(),
            "The file “clip.mov” couldn’t be opened because there is no such file.");
  dir.write("card/A001.mov", "x");
  EXPECT_FALSE(fm.createDirectoryAtPath(folder.stringByAppendingPathComponent(u"card/A001.mov/x"),
                                        false, &error));
  EXPECT_EQ(error.localizedDescription().utf8(),
            "“x” couldn’t be created because a part of its path is not a folder.");

  struct Row {
    FileOperation operation;
    int posixError;
    const char* text;
  };
  const Row rows[] = {
      {FileOperation::Read, EACCES,
       "The file “clip.mov” couldn’t be opened because you don’t have permission to view it."},
      {FileOperation::Read, EISDIR,
       "The file “clip.mov” couldn’t be opened because it is a folder."},
      {FileOperation::Read, ELOOP,
       "The file “clip.mov” couldn’t be opened because there are too many symbolic links in its "
       "path."},
      {FileOperation::Write, ENOSPC,
       "The file “clip.mov” couldn’t be saved because there isn’t enough space."},
      {FileOperation::Write, EROFS,
       "The file “clip.mov” couldn’t be saved because the volume is read only."},
      {FileOperation::Copy, EEXIST,
       "“clip.mov” couldn’t be copied because an item with the same name already exists."},
      {FileOperation::Remove, EPERM,
       "“clip.mov” couldn’t be removed because you don’t have permission to access it."},
      {FileOperation::Link, EMLINK,
       "“clip.mov” couldn’t be linked because there are too many "
       "links to it."},
      {FileOperation::Read, EIO, "The file “clip.mov” couldn’t be opened. Input/output error."},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FileManager::errorFor(row.operation, u"/Volumes/A/clip.mov", row.posixError)
                  .localizedDescription()
                  .utf8(),
              row.text);
  }
  // Without a path there is nothing to name: the generic text with the code.
  EXPECT_EQ(
      FileManager::errorFor(FileOperation::Read, String(), ENOENT).localizedDescription().utf8(),
      "The operation couldn’t be completed. (NSCocoaErrorDomain error 260.)");
}

TEST(WellKnownFolders, FollowTheEnvironment) {
  FileManager& fm = FileManager::defaultManager();
  const std::string saved = std::getenv("HOME") ? std::getenv("HOME") : "";
  ::setenv("TMPDIR", "/scratch/tmp//", 1);
  ::setenv("HOME", "/home/editor", 1);
  ::unsetenv("XDG_CACHE_HOME");
  EXPECT_EQ(fm.temporaryDirectory().utf8(), "/scratch/tmp");
  EXPECT_EQ(fm.homeDirectoryForUser().utf8(), "/home/editor");
  EXPECT_EQ(fm.cachesDirectory().utf8(), "/home/editor/.cache");
  EXPECT_EQ(String(u"~/Media").stringByExpandingTildeInPath().utf8(), "/home/editor/Media");
  ::setenv("XDG_CACHE_HOME", "/fast/cache", 1);
  EXPECT_EQ(fm.cachesDirectory().utf8(), "/fast/cache");
  EXPECT_TRUE(fm.homeDirectoryForUser(u"no-such-user-here").isNil());
  ::unsetenv("TMPDIR");
  ::unsetenv("XDG_CACHE_HOME");
  EXPECT_EQ(fm.temporaryDirectory().utf8(), "/tmp");
  ::setenv("HOME", saved.c_str(), 1);
}

}  // namespace
}  // namespace tarnvik
