// Folder transfers on real temporary folders: merging, ".DS_Store", overwrite rules, the
// error codes and texts, options, and a lose-nothing matrix with failures injected at every
// step of a copy and of a move.
#include "tarnvik/fs/directory_transfer.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <filesystem>

#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/raised.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/core/errors.hpp"
#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::FailingFileManager;
using testing::str;
using testing::treeOf;
using Step = FailingFileManager::Step;
using Tree = std::map<std::string, std::string>;

std::string reasonOf(const Error& error) {
  return error.userInfo().objectForKey(NSLocalizedFailureReasonErrorKey).asString().utf8();
}

struct Folders {
  testing::TempDir dir;
  fs::path src = dir.path() / "src";
  fs::path dst = dir.path() / "dst";
  Folders() {
    dir.write("src/a/.DS_Store", "junk");
    dir.write("src/a/b.txt", "bee");
    dir.write("src/a/deep/c.txt", "sea");
    dir.write("src/.DS_Store", "junk");
    dir.write("src/top.mov", "movie");
    fs::create_directories(dst);
  }
};

TEST(DirectoryTransfer, CopiesAndMovesWithoutDSStoreAtAnyLevel) {
  FileManager& fm = FileManager::defaultManager();
  Folders copy;
  Error error;
  ASSERT_TRUE(copyContentsOfDirectoryAtPath(fm, str(copy.src), str(copy.dst), &error));
  const Tree expected{{"a/", ""},
                      {"a/b.txt", "bee"},
                      {"a/deep/", ""},
                      {"a/deep/c.txt", "sea"},
                      {"top.mov", "movie"}};
  EXPECT_EQ(treeOf(copy.dst), expected);
  EXPECT_EQ(treeOf(copy.src).size(), 7u);  // the source is untouched

  Folders move;
  ASSERT_TRUE(moveContentsOfDirectoryAtPath(fm, str(move.src), str(move.dst), &error));
  EXPECT_EQ(treeOf(move.dst), expected);
  EXPECT_TRUE(fs::is_directory(move.src));
  EXPECT_TRUE(fs::is_empty(move.src));  // the skipped .DS_Store files went with the clean-up

  // A link is carried as a link, also one to a folder.
  Folders links;
  fs::create_directory_symlink("a", links.src / "alias");
  ASSERT_TRUE(copyContentsOfDirectoryAtPath(fm, str(links.src), str(links.dst), &error));
  EXPECT_EQ(fs::read_symlink(links.dst / "alias"), "a");
}

TEST(DirectoryTransfer, MergesAndObeysTheOverwriteRule) {
  FileManager& fm = FileManager::defaultManager();
  Folders f;
  f.dir.write("dst/a/kept.txt", "mine");
  f.dir.write("dst/top.mov", "old movie");
  Error error;
  // Without overwrite the existing top.mov stops the transfer with the "move" text.
  EXPECT_FALSE(copyContentsOfDirectoryAtPath(fm, str(f.src), str(f.dst), false, &error));
  EXPECT_EQ(error.domain(), String(KFErrorDomainTarnvikExtensions));
  EXPECT_EQ(error.code(), 1);
  EXPECT_EQ(reasonOf(error), "Could not move item from path " + (f.src / "top.mov").string() +
                                 " to path " + (f.dst / "top.mov").string());
  EXPECT_EQ(error.underlyingError().code(), NSFileWriteFileExistsError);
  EXPECT_EQ(testing::slurp(f.dst / "top.mov"), "old movie");
  // With overwrite it is replaced, and the merge keeps what only the destination had.
  ASSERT_TRUE(copyContentsOfDirectoryAtPath(fm, str(f.src), str(f.dst), true, &error));
  EXPECT_EQ(testing::slurp(f.dst / "top.mov"), "movie");
  EXPECT_EQ(testing::slurp(f.dst / "a/kept.txt"), "mine");
  EXPECT_EQ(testing::slurp(f.dst / "a/deep/c.txt"), "sea");
  // A folder where a file is to go is never removed.
  fs::remove(f.dst / "a/b.txt");
  fs::create_directory(f.dst / "a/b.txt");
  EXPECT_FALSE(copyContentsOfDirectoryAtPath(fm, str(f.src), str(f.dst), true, &error));
  EXPECT_EQ(error.code(), 1);
  EXPECT_TRUE(fs::is_directory(f.dst / "a/b.txt"));
}

TEST(DirectoryTransfer, ChecksBothRootsAndStandardizesThem) {
  FileManager& fm = FileManager::defaultManager();
  Folders f;
  Error error;
  EXPECT_FALSE(copyContentsOfDirectoryAtPath(fm, str(f.src), str(f.dir.path() / "none"), &error));
  EXPECT_EQ(error.code(), 3);
  EXPECT_EQ(reasonOf(error), "Path " + (f.dir.path() / "none").string() + " does not exist");
  EXPECT_TRUE(error.underlyingError().isNil());
  EXPECT_FALSE(copyContentsOfDirectoryAtPath(fm, str(f.src), str(f.src / "top.mov"), &error));
  EXPECT_EQ(error.code(), 4);
  EXPECT_EQ(reasonOf(error), "Path " + (f.src / "top.mov").string() + " is not a folder");
  EXPECT_TRUE(fs::is_empty(f.dst));
  const String dotted = str(f.src).stringByAppendingString(u"/../src/");
  ASSERT_TRUE(copyContentsOfDirectoryAtPath(fm, dotted, str(f.dst), &error));
  EXPECT_TRUE(fs::exists(f.dst / "a/deep/c.txt"));
  // A nil path fails the existence test instead of raising.
  EXPECT_FALSE(sanityCheckDirectoryPath(fm, String(), &error));
  EXPECT_EQ(error.code(), 3);
  EXPECT_EQ(reasonOf(error), "Path (null) does not exist");
}

// Reasons come from the "FileManager" table of the main bundle when it has a translation.
TEST(DirectoryTransfer, ReasonsAreLocalizedThroughTheMainBundle) {
  testing::TempDir bundle;
  bundle.write("Resources/de.lproj/FileManager.strings",
               "\"Path %@ does not exist\" = \"Pfad %@ existiert nicht\";\n"
               "\"Directory path must not be nil\" = \"Kein Ordnerpfad\";\n");
  setenv("LANGUAGE", "de", 1);
  Bundle::setMainBundle(Bundle::bundleWithPath(str(bundle.path())));
  FileManager& fm = FileManager::defaultManager();
  Error error;
  EXPECT_FALSE(sanityCheckDirectoryPath(fm, u"/no/such/folder", &error));
  EXPECT_EQ(reasonOf(error), "Pfad /no/such/folder existiert nicht");
  EXPECT_EQ(testing::raised([&] { removeContentsOfDirectoryAtPath(fm, String()); }),
            "NSInvalidArgumentException: Kein Ordnerpfad");
  EXPECT_FALSE(sanityCheckDirectoryPath(
      fm, str(bundle.path() / "Resources/de.lproj/FileManager.strings"), &error));
  EXPECT_TRUE(reasonOf(error).ends_with(" is not a folder"));  // no translation: English
  Bundle::setMainBundle(Bundle());
  unsetenv("LANGUAGE");
}

TEST(DirectoryTransfer, RemovingContentsKeepsTheFolderAndReportsCode2) {
  FileManager& fm = FileManager::defaultManager();
  Folders f;
  Error error;
  ASSERT_TRUE(removeContentsOfDirectoryAtPath(fm, str(f.src), &error));
  EXPECT_TRUE(fs::is_directory(f.src) && fs::is_empty(f.src));
  EXPECT_TRUE(removeContentsOfDirectoryAtPath(fm, str(f.src), &error));
  EXPECT_FALSE(removeContentsOfDirectoryAtPath(fm, str(f.dir.path() / "none"), &error));
  EXPECT_EQ(error.code(), 2);
  EXPECT_EQ(reasonOf(error),
            "Could not query contents of directory at path " + (f.dir.path() / "none").string());
  EXPECT_EQ(testing::raised([&] { removeContentsOfDirectoryAtPath(fm, String()); }),
            "NSInvalidArgumentException: Directory path must not be nil");

  f.dir.write("dst/one", "1");
  FailingFileManager failing;
  failing.failPath(Step::Remove, str(f.dst / "one"), EBUSY);
  EXPECT_FALSE(removeContentsOfDirectoryAtPath(failing, str(f.dst), &error));
  EXPECT_EQ(reasonOf(error), "Could not remove item at path " + (f.dst / "one").string());

  // Emptying the destination first, then copying.
  f.dir.write("other/x", "x");
  ASSERT_TRUE(copyContentsOfDirectoryAtPathToDirectoryAtPathRemovingDestinationContents(
      fm, str(f.dir.path() / "other"), str(f.dst), true, &error));
  EXPECT_EQ(treeOf(f.dst), (Tree{{"x", "x"}}));
}

TEST(DirectoryTransfer, CopyItemWithOverrideSharesOneFlag) {
  FileManager& fm = FileManager::defaultManager();
  testing::TempDir dir;
  const fs::path a = dir.write("a.txt", "new"), b = dir.write("b.txt", "old");
  fs::create_directories(dir.path() / "folder/inside");
  EXPECT_TRUE(copyItemAtPath(fm, str(a), str(b), true));
  EXPECT_EQ(testing::slurp(b), "new");
  // A folder source onto a free path: the flag still holds the source's kind.
  EXPECT_FALSE(copyItemAtPath(fm, str(dir.path() / "folder"), str(dir.path() / "free"), true));
  EXPECT_FALSE(fs::exists(dir.path() / "free"));
  // A folder at the destination is never replaced.
  EXPECT_FALSE(copyItemAtPath(fm, str(a), str(dir.path() / "folder"), true));
  Error error;
  EXPECT_FALSE(copyItemAtPath(fm, str(dir.path() / "none"), str(b), true, &error));
  EXPECT_TRUE(error.isNil());
  // A failing copy still answers true.
  FailingFileManager failing;
  failing.failCall(Step::Copy, 1, EIO);
  EXPECT_TRUE(copyItemAtPath(failing, str(a), str(dir.path() / "c.txt"), true, &error));
  EXPECT_FALSE(fs::exists(dir.path() / "c.txt"));
  // Without override it is the file manager's copy, errors and all.
  EXPECT_FALSE(copyItemAtPath(fm, str(a), str(b), false, &error));
  EXPECT_EQ(error.code(), NSFileWriteFileExistsError);
}

TEST(DirectoryTransfer, OptionsReportProgressCancelSkipAndKeepBoth) {
  FileManager& fm = FileManager::defaultManager();
  Folders f;
  f.dir.write("dst/top.mov", "old movie");
  std::vector<TransferProgress> reports;
  TransferOptions options;
  options.conflict = TransferConflict::Skip;
  options.progressInterval = std::chrono::milliseconds(0);
  options.progress = [&](const TransferProgress& p) {
    reports.push_back(p);
    return true;
  };
  Error error;
  ASSERT_TRUE(transferContentsOfDirectoryAtPath(fm, str(f.src), str(f.dst), options, &error));
  ASSERT_EQ(reports.size(), 4u);  // the start, then b.txt, c.txt and top.mov in some order
  EXPECT_EQ(reports.front().itemsDone, 0u);
  EXPECT_EQ(reports.back().itemsDone, 3u);
  EXPECT_EQ(reports.back().itemsTotal, 3u);
  EXPECT_EQ(reports.back().bytesTotal, 11u);
  EXPECT_EQ(reports.back().bytesDone, 11u);
  EXPECT_EQ(testing::slurp(f.dst / "top.mov"), "old movie");

  // A move that skips keeps the skipped file (and nothing else) in the source.
  options.copy = false;
  options.progress = nullptr;
  fs::remove_all(f.dst / "a");
  ASSERT_TRUE(transferContentsOfDirectoryAtPath(fm, str(f.src), str(f.dst), options, &error));
  EXPECT_EQ(treeOf(f.src), (Tree{{"top.mov", "movie"}}));
  EXPECT_EQ(testing::slurp(f.dst / "a/b.txt"), "bee");

  // Keep both: the newcomer takes a numbered name beside the old file.
  options.conflict = TransferConflict::KeepBoth;
  ASSERT_TRUE(transferContentsOfDirectoryAtPath(fm, str(f.src), str(f.dst), options, &error));
  EXPECT_EQ(testing::slurp(f.dst / "top 1.mov"), "movie");
  EXPECT_EQ(testing::slurp(f.dst / "top.mov"), "old movie");

  // Cancelling stops at once with NSUserCancelledError, nothing removed from the source.
  Folders c;
  TransferOptions cancelling;
  cancelling.copy = false;
  cancelling.progress = [](const TransferProgress& p) { return p.itemsDone < 1; };
  EXPECT_FALSE(transferContentsOfDirectoryAtPath(fm, str(c.src), str(c.dst), cancelling, &error));
  EXPECT_EQ(error.code(), NSUserCancelledError);
  EXPECT_EQ(error.domain(), String(NSCocoaErrorDomain));
  EXPECT_EQ(treeOf(c.src).size() + treeOf(c.dst).size(), 7u + 2u);  // one file moved
}

// Every file of the source must end up whole in the source or whole at the destination.
void expectNothingLost(const Tree& before, const fs::path& src, const fs::path& dst) {
  for (const auto& [path, bytes] : before) {
    if (path.ends_with("/") || path.ends_with(".DS_Store")) continue;
    const bool inSource = fs::exists(src / path) && testing::slurp(src / path) == bytes;
    const bool atDestination = fs::exists(dst / path) && testing::slurp(dst / path) == bytes;
    EXPECT_TRUE(inSource || atDestination) << path << " was lost";
  }
}

struct Injection {
  const char* name;
  bool copy;
  bool overwrite;
  Step step;
  int nth;             // 0: every call on the folder "a"
  bool succeeds;       // the Part's result
  const char* reason;  // the start of the reason text
};

TEST(DirectoryTransfer, LosesNothingWhateverStepFails) {
  const Injection injections[] = {
      {"copy, listing a", true, false, Step::EntriesOfDirectory, 0, true, "Could not enumerate"},
      {"copy, 1st folder", true, false, Step::CreateDirectory, 1, false, "Could not create"},
      {"copy, 2nd folder", true, false, Step::CreateDirectory, 2, false, "Could not create"},
      {"copy, 1st item", true, false, Step::Copy, 1, false, "Could not move item"},
      {"copy, 2nd item", true, false, Step::Copy, 2, false, "Could not move item"},
      {"copy, 3rd item", true, false, Step::Copy, 3, false, "Could not move item"},
      {"copy, deleting the target", true, true, Step::Remove, 1, false,
       "Could not delete existing directory"},
      {"move, listing a", false, false, Step::EntriesOfDirectory, 0, false,
       "Could not remove contents"},
      {"move, 1st folder", false, false, Step::CreateDirectory, 1, false, "Could not create"},
      {"move, 1st item", false, false, Step::Move, 1, false, "Could not move item"},
      {"move, 2nd item", false, false, Step::Move, 2, false, "Could not move item"},
      {"move, 3rd item", false, false, Step::Move, 3, false, "Could not move item"},
      {"move, deleting the target", false, true, Step::Remove, 1, false,
       "Could not delete existing directory"},
      {"move, clean-up", false, false, Step::Remove, 1, false, "Could not remove contents"},
  };
  for (const Injection& injection : injections) {
    SCOPED_TRACE(injection.name);
    Folders f;
    if (injection.overwrite) f.dir.write("dst/top.mov", "old");
    const Tree before = treeOf(f.src);
    FailingFileManager fm;
    if (injection.nth == 0) {
      fm.failPath(injection.step, str(f.src / "a"), EACCES);
    } else {
      fm.failCall(injection.step, injection.nth, EIO);
    }
    Error error;
    const bool done = transferContentsOfDirectoryAtPath(
        fm, str(f.src), str(f.dst), injection.overwrite, &error, injection.copy);
    EXPECT_EQ(done, injection.succeeds);
    EXPECT_EQ(error.code(), 1);
    EXPECT_TRUE(reasonOf(error).starts_with(injection.reason)) << reasonOf(error);
    EXPECT_FALSE(error.underlyingError().isNil());
    expectNothingLost(before, f.src, f.dst);
    if (injection.overwrite) {
      EXPECT_EQ(testing::slurp(f.dst / "top.mov"), "old");
    }
  }
}

// A destination whose folder refuses new entries (immutable, which stops root too).
TEST(DirectoryTransfer, ReadOnlyDestinationStopsTheMoveAndKeepsTheSource) {
  Folders f;
  fs::create_directories(f.dst / "a");
  const int folder = ::open((f.dst / "a").c_str(), O_RDONLY | O_DIRECTORY);
  int flags = 0;
  if (folder < 0 || ::ioctl(folder, FS_IOC_GETFLAGS, &flags) != 0 ||
      (flags |= FS_IMMUTABLE_FL, ::ioctl(folder, FS_IOC_SETFLAGS, &flags) != 0)) {
    if (folder >= 0) ::close(folder);
    fs::permissions(f.dst / "a", fs::perms::owner_read | fs::perms::owner_exec);
    if (::geteuid() == 0) GTEST_SKIP() << "cannot make a folder read-only here";
  }
  const Tree before = treeOf(f.src);
  Error error;
  EXPECT_FALSE(
      moveContentsOfDirectoryAtPath(FileManager::defaultManager(), str(f.src), str(f.dst), &error));
  EXPECT_EQ(error.code(), 1);
  EXPECT_TRUE(reasonOf(error).starts_with("Could not ")) << reasonOf(error);
  if (folder >= 0) {
    flags &= ~FS_IMMUTABLE_FL;
    ::ioctl(folder, FS_IOC_SETFLAGS, &flags);
    ::close(folder);
  }
  fs::permissions(f.dst / "a", fs::perms::owner_all);
  expectNothingLost(before, f.src, f.dst);
}

}  // namespace
}  // namespace tarnvik
