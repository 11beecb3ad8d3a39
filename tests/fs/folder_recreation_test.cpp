// Recreating folder structures and matching names, on real folders.
#include "tarnvik/fs/folder_recreation.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;
using testing::treeOf;
using Tree = std::map<std::string, std::string>;

const StringPredicate kJunk = [](const String& name) { return name == String(u".DS_Store"); };

TEST(FolderRecreation, AllFoldersOneLevelOrEveryLevelWithoutFilesOrLinks) {
  testing::TempDir dir;
  dir.write("src/a/b/f.txt", "f");
  fs::create_directories(dir.path() / "src/c");
  fs::create_directory_symlink("a", dir.path() / "src/alias");
  FileManager& fm = FileManager::defaultManager();
  Error error;
  ASSERT_TRUE(
      recreateFoldersFromPath(fm, str(dir.path() / "src"), str(dir.path() / "all"), true, &error));
  EXPECT_EQ(treeOf(dir.path() / "all"), (Tree{{"a/", ""}, {"a/b/", ""}, {"c/", ""}}));
  fs::create_directories(dir.path() / "top");
  ASSERT_TRUE(
      recreateFoldersFromPath(fm, str(dir.path() / "src"), str(dir.path() / "top"), false, &error));
  EXPECT_EQ(treeOf(dir.path() / "top"), (Tree{{"a/", ""}, {"c/", ""}}));

  // The pre-order list, without the start folder.
  Array folders = Array::array();
  addFoldersAtPath(fm, str(dir.path() / "src"), folders, true);
  const UInteger a = folders.indexOfObject(str(dir.path() / "src/a"));
  EXPECT_EQ(folders.count(), 3u);
  EXPECT_EQ(folders.objectAtIndex(a + 1).asString(), str(dir.path() / "src/a/b"));

  // A failed creation does not stop the walk: the result is false with the last error.
  testing::FailingFileManager failing;
  failing.failCall(testing::FailingFileManager::Step::CreateDirectory, 1, EACCES);
  EXPECT_FALSE(recreateFoldersFromPath(failing, str(dir.path() / "src"), str(dir.path() / "some"),
                                       true, &error));
  EXPECT_EQ(treeOf(dir.path() / "some").size(), 2u);
}

TEST(FolderRecreation, EmptyFoldersCountIgnorableItemsAsAbsent) {
  testing::TempDir dir;
  dir.write("src/only-junk/.DS_Store", "");
  dir.write("src/busy/notes.txt", "n");
  fs::create_directories(dir.path() / "src/busy/empty/inner");
  dir.write("src/busy/junk-folder/.DS_Store", "");
  FileManager& fm = FileManager::defaultManager();
  Error error;
  ASSERT_TRUE(recreateEmptyFoldersFromPath(fm, str(dir.path() / "src"), kJunk,
                                           str(dir.path() / "dst"), false, &error));
  // recursive is ignored; a folder holding only junk counts as empty; "inner" is the
  // empty one below "empty".
  EXPECT_EQ(treeOf(dir.path() / "dst"), (Tree{{"busy/", ""},
                                              {"busy/empty/", ""},
                                              {"busy/empty/inner/", ""},
                                              {"busy/junk-folder/", ""},
                                              {"only-junk/", ""}}));
  // A folder is tested as "<path>/": a predicate on "inner/" makes "empty" count as empty.
  Array folders = Array::array();
  addEmptyFoldersAtPath(
      fm, str(dir.path() / "src/busy/empty"),
      [](const String& s) { return s.hasSuffix(u"/inner/"); }, folders, true);
  EXPECT_EQ(folders.count(), 1u);
  EXPECT_EQ(folders.objectAtIndex(0).asString(), str(dir.path() / "src/busy/empty"));
  addEmptyFoldersAtPath(fm, String(), kJunk, folders, true);
  EXPECT_EQ(folders.count(), 1u);

  // An empty source recreates the target root itself.
  fs::create_directories(dir.path() / "bare");
  ASSERT_TRUE(recreateEmptyFoldersFromPath(fm, str(dir.path() / "bare"), kJunk,
                                           str(dir.path() / "made"), true, &error));
  EXPECT_TRUE(fs::is_directory(dir.path() / "made"));
}

TEST(FolderRecreation, NamesMustMatchAsAWhole) {
  testing::TempDir dir;
  for (const char* name : {"ab", "abc", "xab", "A001C002.mov"}) dir.write(name, "");
  FileManager& fm = FileManager::defaultManager();
  const auto expression = [](const char16_t* pattern) {
    return RegularExpression::regularExpressionWithPattern(pattern, 0, nullptr);
  };
  Error error;
  Array names = contentsOfDirectoryAtPath(fm, str(dir.path()), expression(u"ab"), &error);
  EXPECT_EQ(names.count(), 1u);
  EXPECT_EQ(names.objectAtIndex(0).asString(), String(u"ab"));
  names =
      contentsOfDirectoryAtPath(fm, str(dir.path()), expression(u"A\\d{3}C\\d{3}\\.mov"), &error);
  EXPECT_EQ(names.count(), 1u);
  names = contentsOfDirectoryAtPath(fm, str(dir.path() / "none"), expression(u"ab"), &error);
  EXPECT_FALSE(names.isNil());
  EXPECT_EQ(names.count(), 0u);
  EXPECT_EQ(error.code(), NSFileReadNoSuchFileError);
}

}  // namespace
}  // namespace tarnvik
