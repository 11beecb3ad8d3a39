// Writing, copying, moving and removing through the file manager, with failures injected
// at each step to prove that nothing is lost.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::FailingFileManager;
using Step = FailingFileManager::Step;

using testing::namesIn;
using testing::slurp;
using testing::str;

struct AtomicWriteFailure {
  const char* name;
  Step step;
  int posixError;
  Integer code;
};

class AtomicWriteFails : public ::testing::TestWithParam<AtomicWriteFailure> {};

TEST_P(AtomicWriteFails, LeavesTheOldFileWholeAndNoTemporaryFile) {
  testing::TempDir dir;
  const fs::path file = dir.write("take.txt", "old take");
  FailingFileManager fm;
  fm.failCall(GetParam().step, 1, GetParam().posixError);
  Error error;
  EXPECT_FALSE(fm.writeDataToPath(Data::withString("new take"), str(file), true, &error));
  EXPECT_EQ(error.domain(), String(NSCocoaErrorDomain));
  EXPECT_EQ(error.code(), GetParam().code);
  EXPECT_EQ(error.underlyingError().code(), GetParam().posixError);
  EXPECT_EQ(slurp(file), "old take");
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"take.txt"});
  // The same manager succeeds once the failure has passed.
  EXPECT_TRUE(fm.writeDataToPath(Data::withString("new take"), str(file), true, &error));
  EXPECT_EQ(slurp(file), "new take");
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"take.txt"});
}

INSTANTIATE_TEST_SUITE_P(
    EachStep, AtomicWriteFails,
    ::testing::Values(AtomicWriteFailure{"CreateNoPermission", Step::CreateTemporaryFile, EACCES,
                                         NSFileWriteNoPermissionError},
                      AtomicWriteFailure{"WriteDiskFull", Step::WriteBytes, ENOSPC,
                                         NSFileWriteOutOfSpaceError},
                      AtomicWriteFailure{"Fsync", Step::Synchronize, EIO, NSFileWriteUnknownError},
                      AtomicWriteFailure{"Close", Step::Close, EIO, NSFileWriteUnknownError},
                      AtomicWriteFailure{"Rename", Step::Rename, EXDEV, NSFileWriteUnknownError}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(FileWrite, DataWritesThroughTheDefaultManagerAndReadsBack) {
  testing::TempDir dir;
  const String file = str(dir.path() / "clip.txt");
  Error error;
  ASSERT_TRUE(Data::withString("frames").writeToFile(file, true, &error));
  EXPECT_EQ(FileManager::defaultManager().contentsAtPath(file).asStringView(), "frames");
  struct stat info {};
  ASSERT_EQ(::stat(file.utf8().c_str(), &info), 0);
  const mode_t mask = ::umask(0);
  ::umask(mask);
  EXPECT_EQ(info.st_mode & 0777, 0666 & ~mask);
  EXPECT_FALSE(Data::withString("x").writeToFile(str(dir.path() / "no/such/folder/f"), true));
}

TEST(FileCopy, FilesKeepBytesPermissionsAndDatesAndLinksStayLinks) {
  testing::TempDir dir;
  const fs::path source = dir.write("card/CLIP/A001.mov", "frame data");
  dir.write("card/CLIP/.hidden", "");
  fs::create_symlink("A001.mov", dir.path() / "card/CLIP/latest");
  ::chmod(source.c_str(), 0640);
  FileManager& fm = FileManager::defaultManager();
  ASSERT_TRUE(fm.setModificationDate(str(source), Date::dateWithTimeIntervalSince1970(1.5e9)));
  Error error;
  ASSERT_TRUE(fm.copyItemAtPath(str(dir.path() / "card"), str(dir.path() / "copy"), &error))
      << error.description();
  const fs::path copied = dir.path() / "copy/CLIP/A001.mov";
  EXPECT_EQ(slurp(copied), "frame data");
  FileAttributes attributes;
  ASSERT_TRUE(fm.attributesOfItemAtPath(str(copied), false, &attributes));
  EXPECT_EQ(attributes.permissions, 0640u);
  EXPECT_EQ(attributes.modificationDate.timeIntervalSince1970(), 1.5e9);
  EXPECT_EQ(fs::read_symlink(dir.path() / "copy/CLIP/latest"), "A001.mov");
  EXPECT_TRUE(fs::exists(dir.path() / "copy/CLIP/.hidden"));

  // Something at the destination: 516, and it stays as it was.
  dir.write("taken", "keep me");
  EXPECT_FALSE(fm.copyItemAtPath(str(source), str(dir.path() / "taken"), &error));
  EXPECT_EQ(error.code(), NSFileWriteFileExistsError);
  EXPECT_EQ(slurp(dir.path() / "taken"), "keep me");
  EXPECT_FALSE(fm.copyItemAtPath(str(dir.path() / "missing"), str(dir.path() / "x"), &error));
  EXPECT_EQ(error.code(), NSFileNoSuchFileError);
  EXPECT_EQ(error.userInfo().objectForKey(NSFilePathErrorKey).asString().utf8(),
            (dir.path() / "missing").string());
}

// Each kernel path (and the fallback) must carry every byte: a large file on the same file
// system, one onto another file system, an empty one, and a procfs file whose size reads 0
// although it has bytes.
TEST(FileCopy, EveryCopyPathCarriesEveryByte) {
  testing::TempDir dir;
  std::string large(3 * 1024 * 1024 + 17, '\0');
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i * 7919 % 251);
  const fs::path source = dir.write("large.mov", large);
  dir.write("empty.txt", "");
  FileManager& fm = FileManager::defaultManager();
  Error error;
  ASSERT_TRUE(fm.copyItemAtPath(str(source), str(dir.path() / "same.mov"), &error));
  EXPECT_EQ(slurp(dir.path() / "same.mov"), large);
  ASSERT_TRUE(fm.copyItemAtPath(str(dir.path() / "empty.txt"), str(dir.path() / "e"), &error));
  EXPECT_EQ(fs::file_size(dir.path() / "e"), 0u);
  ASSERT_TRUE(fm.copyItemAtPath(u"/proc/self/status", str(dir.path() / "status"), &error));
  EXPECT_NE(slurp(dir.path() / "status").find("Pid:"), std::string::npos);
  if (fs::is_directory("/dev/shm")) {
    const fs::path other = fs::path("/dev/shm") / (dir.path().filename().string() + ".mov");
    ASSERT_TRUE(fm.copyItemAtPath(str(source), str(other), &error)) << error.description();
    EXPECT_EQ(slurp(other), large);
    fs::remove(other);
  }
}

TEST(FileMove, RenamesRefusesToReplaceAndCrossesVolumes) {
  testing::TempDir dir;
  FileManager& fm = FileManager::defaultManager();
  const fs::path a = dir.write("a.mov", "A"), b = dir.write("b.mov", "B");
  Error error;
  EXPECT_FALSE(fm.moveItemAtPath(str(a), str(b), &error));
  EXPECT_EQ(error.code(), NSFileWriteFileExistsError);
  EXPECT_EQ(slurp(a), "A");
  EXPECT_EQ(slurp(b), "B");
  ASSERT_TRUE(fm.moveItemAtPath(str(a), str(dir.path() / "c.mov"), &error));
  EXPECT_EQ(namesIn(dir.path()), (std::vector<std::string>{"b.mov", "c.mov"}));

  // A second file system, where the machine has one, forces the copy-and-remove path.
  FileAttributes here, there;
  if (!fm.attributesOfItemAtPath(u"/dev/shm", true, &there) ||
      !fm.attributesOfItemAtPath(str(dir.path()), true, &here) ||
      here.deviceIdentifier == there.deviceIdentifier) {
    GTEST_SKIP() << "no second file system to move across";
  }
  const fs::path shm = fs::path("/dev/shm") / dir.path().filename();
  fs::create_directories(shm / "Day1");
  std::ofstream(shm / "Day1/one.mov") << "1";
  std::ofstream(shm / "Day1/two.mov") << "2";
  FailingFileManager failing;
  failing.failCall(Step::Copy, 3, EIO);  // the folder, its first file, then the second fails
  EXPECT_FALSE(failing.moveItemAtPath(str(shm / "Day1"), str(dir.path() / "Day1"), &error));
  EXPECT_EQ(slurp(shm / "Day1/one.mov"), "1");
  EXPECT_EQ(slurp(shm / "Day1/two.mov"), "2");
  EXPECT_FALSE(fs::exists(dir.path() / "Day1"));
  EXPECT_TRUE(fm.moveItemAtPath(str(shm / "Day1"), str(dir.path() / "Day1"), &error));
  EXPECT_FALSE(fs::exists(shm / "Day1"));
  fs::remove_all(shm);
  EXPECT_EQ(slurp(dir.path() / "Day1/two.mov"), "2");
}

TEST(FileRemove, RemovesTreesLinksNotTheirTargetsAndStopsWhereItFails) {
  testing::TempDir dir, outside;
  dir.write("tree/a/1.txt", "1");
  dir.write("tree/a/2.txt", "2");
  const fs::path kept = outside.write("target.txt", "still here");
  fs::create_symlink(kept, dir.path() / "tree/link");
  FailingFileManager fm;
  fm.failPath(Step::Remove, str(dir.path() / "tree/a/2.txt"), EACCES);
  Error error;
  EXPECT_FALSE(fm.removeItemAtPath(str(dir.path() / "tree"), &error));
  EXPECT_EQ(error.code(), NSFileWriteNoPermissionError);
  EXPECT_TRUE(fs::exists(dir.path() / "tree/a/2.txt"));
  FileManager& real = FileManager::defaultManager();
  EXPECT_TRUE(real.removeItemAtPath(str(dir.path() / "tree"), &error));
  EXPECT_FALSE(fs::exists(dir.path() / "tree"));
  EXPECT_EQ(slurp(kept), "still here");
  EXPECT_FALSE(real.removeItemAtPath(str(dir.path() / "tree"), &error));
  EXPECT_EQ(error.code(), NSFileNoSuchFileError);
}

}  // namespace
}  // namespace tarnvik
