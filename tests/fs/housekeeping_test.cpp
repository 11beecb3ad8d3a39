// Housekeeping on real temporary folders; creation dates, which Linux cannot set, come from
// a file manager that reports chosen birth times.
#include "tarnvik/fs/housekeeping.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>

#include "support/captured_logs.hpp"
#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/raised.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;

// Reports the creation date chosen for a path, the real attributes otherwise.
class BirthTimeFileManager : public FileManager {
 public:
  std::map<std::string, Date> born;
  bool attributesOfItemAtPath(const String& path, bool followLinks, FileAttributes* out,
                              Error* error = nullptr) override {
    if (!FileManager::attributesOfItemAtPath(path, followLinks, out, error)) return false;
    if (const auto found = born.find(path.utf8()); out && found != born.end()) {
      out->creationDate = found->second;
    }
    return true;
  }
};

Date hoursAgo(double hours) { return Date::now().dateByAddingTimeInterval(-hours * 3600); }

TEST(Housekeeping, PruningGoesByWholeDaysOfCreationAndReportsNothing) {
  testing::TempDir dir;
  BirthTimeFileManager fm;
  for (const auto& [name, hours] : {std::pair{"47h.mov", 47.0}, {"49h.mov", 49.0}, {"new", 0.0}}) {
    fm.born[dir.write(name, "x").string()] = hoursAgo(hours);
  }
  fs::create_directories(dir.path() / "old/inside");
  fm.born[(dir.path() / "old").string()] = hoursAgo(24 * 10);
  const URL folder = URL::fileURLWithPath(str(dir.path()));
  // A non-nil error value stops it right after the listing.
  removeFilesInDirectoryAtURL(fm, folder, 1, Error(u"Caller", 9));
  EXPECT_EQ(testing::namesIn(dir.path()).size(), 4u);
  removeFilesInDirectoryAtURL(fm, folder, 1);
  EXPECT_EQ(testing::namesIn(dir.path()), (std::vector<std::string>{"47h.mov", "new"}));
  EXPECT_EQ(testing::raised([&] { removeFilesInDirectoryAtURL(fm, URL(), 1); }),
            "NSInvalidArgumentException: Directory url must not be null");
  EXPECT_EQ(testing::raised([&] { removeFilesInDirectoryAtURL(fm, folder, 0); }),
            "NSInvalidArgumentException: Number of days must not be null");
  // A missing folder is a silent stop.
  removeFilesInDirectoryAtURL(fm, URL::fileURLWithPath(str(dir.path() / "none")), 1);
}

TEST(Housekeeping, SortedListingSkipsHiddenItemsAndChecksItsKey) {
  testing::TempDir dir;
  BirthTimeFileManager fm;
  fm.born[dir.write("b.mov", "").string()] = hoursAgo(1);
  fm.born[dir.write("a.mov", "").string()] = hoursAgo(3);
  fm.born[dir.write("c.mov", "").string()] = hoursAgo(2);
  dir.write(".hidden", "");
  auto names = [](const std::optional<std::vector<URL>>& urls) {
    std::vector<std::string> list;
    for (const URL& url : urls.value()) list.push_back(url.path().lastPathComponent().utf8());
    return list;
  };
  Error error;
  EXPECT_EQ(names(contentsOfDirectoryAtPath(fm, str(dir.path()), NSURLNameKey, &error)),
            (std::vector<std::string>{"a.mov", "b.mov", "c.mov"}));
  EXPECT_EQ(names(contentsOfDirectoryAtPath(fm, str(dir.path()), NSURLCreationDateKey, &error)),
            (std::vector<std::string>{"a.mov", "c.mov", "b.mov"}));
  EXPECT_FALSE(contentsOfDirectoryAtPath(fm, str(dir.path() / "none"), NSURLNameKey, &error));
  EXPECT_EQ(error.code(), NSFileReadNoSuchFileError);
  // The path is read as a URL string: a space makes it no URL at all.
  EXPECT_FALSE(contentsOfDirectoryAtPath(fm, str(dir.path() / "a b"), NSURLNameKey, &error));
  EXPECT_EQ(testing::raised([&] { contentsOfDirectoryAtPath(fm, String(), NSURLNameKey); }),
            "NSInvalidArgumentException: Path must not be null");
  EXPECT_EQ(testing::raised([&] { contentsOfDirectoryAtPath(fm, u"/", NSURLFileSizeKey); }),
            "NSInvalidArgumentException: Sort key must be one of the following: "
            "NSURLCreationDateKey, NSURLAttributeModificationDateKey or NSURLNameKey");
}

TEST(Housekeeping, NextNumberedPathTakesTheHighestNumberAfterThePrefix) {
  testing::TempDir dir;
  FileManager& fm = FileManager::defaultManager();
  const fs::path clips = dir.path() / "clips";
  EXPECT_EQ(nextNumberedFilePathWithPrefix(fm, u"clip", u".mov", str(clips)).utf8(),
            (clips / "clip0.mov").string());  // made on the way
  EXPECT_TRUE(fs::is_directory(clips));
  for (const char* name : {"clip0.mov", "clip7.mov", "clipX.mov"})
    dir.write("clips/" + std::string(name), "");
  EXPECT_EQ(nextNumberedFilePathWithPrefix(fm, u"clip", u".mov", str(clips)).utf8(),
            (clips / "clip8.mov").string());
  dir.write("clips/clip12.txt", "");  // the suffix is not checked
  EXPECT_EQ(nextNumberedFilePathWithPrefix(fm, u"clip", u".mov", str(clips)).lastPathComponent(),
            String(u"clip13.mov"));
  // A file where the folder should be is replaced by the folder.
  dir.write("taken", "file");
  EXPECT_EQ(nextNumberedFilePathWithPrefix(fm, u"clip", u".mov", str(dir.path() / "taken"))
                .lastPathComponent(),
            String(u"clip0.mov"));
  EXPECT_TRUE(fs::is_directory(dir.path() / "taken"));

  testing::CapturedLogs logs;
  testing::FailingFileManager failing;
  failing.failCall(testing::FailingFileManager::Step::CreateDirectory, 1, EACCES);
  EXPECT_TRUE(nextNumberedFilePathWithPrefix(failing, u"c", u"", str(dir.path() / "x")).isNil());
  ASSERT_EQ(logs.console.size(), 1u);
  EXPECT_TRUE(logs.console[0].starts_with("ERROR: ")) << logs.console[0];
}

TEST(Housekeeping, CreatingAFolderOverAnExistingItem) {
  testing::TempDir dir;
  FileManager& fm = FileManager::defaultManager();
  const fs::path file = dir.write("item", "data");
  Error error;
  EXPECT_TRUE(createDirectoryAtPath(fm, str(file), false, false, Dictionary(), &error));
  EXPECT_EQ(testing::slurp(file), "data");  // a file there counts as success
  EXPECT_TRUE(createDirectoryAtPath(fm, str(file), false, true, Dictionary(), &error));
  EXPECT_TRUE(fs::is_directory(file));
  // The outcome of the removal is read from the out-parameter, which must come in empty.
  Error stale(u"Caller", 1);
  EXPECT_FALSE(createDirectoryAtPath(fm, str(file), false, true, Dictionary(), &stale));
  EXPECT_FALSE(fs::exists(file));
  const Dictionary attributes{{NSFilePosixPermissions, 0750},
                              {NSFileModificationDate, Date::dateWithTimeIntervalSince1970(1e9)}};
  EXPECT_TRUE(createDirectoryAtPath(fm, str(dir.path() / "a/b"), true, false, attributes, &error));
  struct stat info {};
  ASSERT_EQ(::stat((dir.path() / "a/b").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0750u);
  EXPECT_EQ(info.st_mtime, 1000000000);
  EXPECT_FALSE(
      createDirectoryAtPath(fm, str(dir.path() / "x/y"), false, false, Dictionary(), &error));
  EXPECT_EQ(error.code(), NSFileNoSuchFileError);
}

TEST(Housekeeping, ExistenceAndExistingPrefix) {
  testing::TempDir dir;
  FileManager& fm = FileManager::defaultManager();
  fs::create_directories(dir.path() / "dir");
  fs::create_symlink("nowhere", dir.path() / "dangling");
  fs::create_directory_symlink("dir", dir.path() / "alias");
  EXPECT_TRUE(fileOrSymbolicLinkExistsAtPath(fm, str(dir.path() / "dangling")));
  EXPECT_FALSE(directoryExistsAtPath(fm, str(dir.path() / "dangling")));
  EXPECT_TRUE(directoryExistsAtPath(fm, str(dir.path() / "alias")));
  EXPECT_FALSE(fileOrSymbolicLinkExistsAtPath(fm, str(dir.path() / "none")));

  EXPECT_EQ(existingPathPrefixOfPath(fm, str(dir.path() / "dir/missing/deeper")).utf8(),
            (dir.path() / "dir").string());
  EXPECT_EQ(existingPathPrefixOfPath(fm, str(dir.path() / "dir")).utf8(),
            (dir.path() / "dir").string());
  EXPECT_EQ(existingPathPrefixOfPath(fm, str(dir.path() / "dangling/x")).utf8(),
            (dir.path() / "dangling").string());
  EXPECT_EQ(existingPathPrefixOfPath(fm, u"nothing-here/at-all").utf8(), "");
  EXPECT_EQ(existingPathPrefixOfPath(fm, u"").utf8(), "");
  EXPECT_EQ(testing::raised([&] { existingPathPrefixOfPath(fm, String()); }),
            "NSInvalidArgumentException: path must not be nil");
}

TEST(Housekeeping, VolumesFillLevelCachesAndCreationDates) {
  FileManager& fm = FileManager::defaultManager();
  const Array volumes = mountedVolumePathsIncludingResourceValuesForKeys(fm);
  EXPECT_TRUE(volumes.containsObject(String(u"/")));
  // Whole numbers: 0 unless the file system is entirely free, and 0 without an error slot.
  Error error;
  EXPECT_EQ(fillLevelOfFileSystemAtPath(fm, u"/"), 0.0F);
  EXPECT_EQ(fillLevelOfFileSystemAtPath(fm, u"/", &error), 0.0F);
  EXPECT_EQ(fillLevelOfFileSystemAtPath(fm, u"/no/such/path", &error), 0.0F);
  EXPECT_EQ(error.code(), NSFileReadNoSuchFileError);

  testing::TempDir dir;
  ::setenv("XDG_CACHE_HOME", dir.path().c_str(), 1);
  EXPECT_EQ(cachesDirectory().path().utf8(), dir.path().string());
  ::unsetenv("XDG_CACHE_HOME");
  const fs::path file = dir.write("f", "");
  ASSERT_TRUE(fileCreationDate(URL::fileURLWithPath(str(file))).has_value());
  EXPECT_NEAR(fileCreationDate(URL::fileURLWithPath(str(file)))->timeIntervalSinceDate(Date::now()),
              0, 60);
  EXPECT_FALSE(fileCreationDate(URL::fileURLWithPath(str(dir.path() / "none"))).has_value());
}

}  // namespace
}  // namespace tarnvik
