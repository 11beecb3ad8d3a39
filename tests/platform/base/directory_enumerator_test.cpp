// The deep walk: order, links, skipping, folders emptied during the walk, unreadable folders.
#include "tarnvik/platform/base/directory_enumerator.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;

std::vector<std::string> walk(DirectoryEnumerator& walker, const char* skipping = nullptr) {
  std::vector<std::string> seen;
  DirectoryItem item;
  while (walker.nextItem(&item)) {
    std::string line = item.relativePath.utf8();
    if (item.isDirectory()) line += "/";
    if (item.type == FileType::SymbolicLink) line += "@";
    seen.push_back(line + " " + std::to_string(item.level));
    if (skipping && item.name == String(skipping)) walker.skipDescendants();
  }
  return seen;
}

TEST(DirectoryEnumerator, WalksDepthFirstWithHiddenItemsAndLinksAsLinks) {
  testing::TempDir dir;
  dir.write("root/A001/.hidden", "h");
  dir.write("root/A001/C001/frame1.dpx", "1");
  dir.write("root/A001/C001/frame2.dpx", "2");
  dir.write("root/notes.txt", "n");
  fs::create_directory_symlink(dir.path() / "root/A001", dir.path() / "root/alias");
  FileManager& fm = FileManager::defaultManager();
  DirectoryEnumerator walker(fm, str(dir.path() / "root"));
  std::vector<std::string> seen = walk(walker);
  // Readdir order is the file system's; check pre-order by position instead of sorting.
  auto at = [&](const std::string& line) {
    return std::find(seen.begin(), seen.end(), line) - seen.begin();
  };
  ASSERT_EQ(seen.size(), 7u);
  EXPECT_LT(at("A001/ 1"), at("A001/C001/ 2"));
  EXPECT_LT(at("A001/C001/ 2"), at("A001/C001/frame1.dpx 3"));
  EXPECT_LT(at("A001/ 1"), at("A001/.hidden 2"));
  EXPECT_LT(at("alias@ 1"), 7);
  EXPECT_LT(at("notes.txt 1"), 7);

  DirectoryEnumerator skipping(fm, str(dir.path() / "root"));
  EXPECT_EQ(walk(skipping, "C001").size(), 5u);  // the two frames are left out
}

TEST(DirectoryEnumerator, VisitsEveryItemOnceWhileTheCallerEmptiesTheFolders) {
  testing::TempDir dir;
  for (int i = 0; i < 50; ++i) dir.write("src/clip/f" + std::to_string(i), "x");
  fs::create_directories(dir.path() / "dst/clip");
  FileManager& fm = FileManager::defaultManager();
  DirectoryEnumerator walker(fm, str(dir.path() / "src"));
  DirectoryItem item;
  int files = 0;
  while (walker.nextItem(&item)) {
    if (item.isDirectory()) continue;
    ++files;
    ASSERT_TRUE(fm.moveItemAtPath(item.path, str(dir.path() / "dst" / item.relativePath.utf8())));
    // An item made meanwhile in a folder already read is not reported.
    if (files == 1) dir.write("src/clip/late", "l");
  }
  EXPECT_EQ(files, 50);
  EXPECT_EQ(testing::namesIn(dir.path() / "src/clip"), std::vector<std::string>{"late"});
}

TEST(DirectoryEnumerator, HandsUnreadableFoldersToTheErrorHandler) {
  testing::TempDir dir;
  dir.write("root/a/1", "1");
  dir.write("root/b/2", "2");
  testing::FailingFileManager fm;
  for (const char* folder : {"root/a", "root/b"}) {
    fm.failPath(testing::FailingFileManager::Step::EntriesOfDirectory, str(dir.path() / folder),
                EACCES);
  }
  std::vector<std::string> failed;
  auto handler = [&](bool goOn) {
    return [&failed, goOn](const String& path, const Error& error) {
      failed.push_back(path.lastPathComponent().utf8() + " " + std::to_string(error.code()));
      return goOn;
    };
  };
  DirectoryEnumerator going(fm, str(dir.path() / "root"), handler(true));
  EXPECT_EQ(walk(going).size(), 2u);  // a and b, neither entered
  std::sort(failed.begin(), failed.end());
  EXPECT_EQ(failed, (std::vector<std::string>{"a 257", "b 257"}));
  failed.clear();
  DirectoryEnumerator stopping(fm, str(dir.path() / "root"), handler(false));
  EXPECT_EQ(walk(stopping).size(), 1u);
  EXPECT_EQ(failed.size(), 1u);
  DirectoryEnumerator missing(fm, str(dir.path() / "none"), handler(true));
  EXPECT_TRUE(walk(missing).empty());
  EXPECT_EQ(failed.back(), "none 260");
}

}  // namespace
}  // namespace tarnvik
