// The fast scanner on real folders: kinds from readdir, links, names that are not UTF-8,
// failures, sizes, the ftw totals and a folder of 100,000 names.
#include "tarnvik/fs/directory_scanning.hpp"

#include <fcntl.h>
#include <ftw.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "support/captured_logs.hpp"
#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;

std::set<std::string> describe(const Array& records) {
  std::set<std::string> lines;
  for (const Value& record : records) {
    const auto file = record.asObject<CFIFile>();
    lines.insert(file->path().lastPathComponent().utf8() + (file->isDirectory() ? " dir" : "") +
                 (file->isSymbolicLink() ? " link" : ""));
  }
  return lines;
}

TEST(DirectoryScanning, RecordsAndNamesTakeKindsFromTheEntries) {
  testing::TempDir dir;
  dir.write("a", "1234");
  fs::create_directory(dir.path() / "b");
  fs::create_directory_symlink("b", dir.path() / "c");
  dir.write(std::string("bad\xff name"), "");  // not UTF-8: left out
  const Array records = directoryFilesAtPathCFI(str(dir.path()).stringByAppendingString(u"/"));
  EXPECT_EQ(describe(records), (std::set<std::string>{"a", "b dir", "c link"}));
  EXPECT_EQ(records.objectAtIndex(0).asObject<CFIFile>()->path().utf8().find("//"),
            std::string::npos);
  const Array names = directoryContentsAtPathCFI(str(dir.path()), true);
  std::set<std::string> kept;
  for (const Value& name : names) kept.insert(name.asString().utf8());
  EXPECT_EQ(kept, (std::set<std::string>{"a", "c"}));
  EXPECT_EQ(directoryContentsAtPathCFI(str(dir.path())).count(), 3u);

  const auto file = records.objectAtIndex(0).asObject<CFIFile>();
  const std::string text = file->description().utf8();
  EXPECT_TRUE(text.starts_with("<CFIFile: 0x")) << text;
  EXPECT_TRUE(text.ends_with(" - path: " + file->path().utf8() +
                             " is Directory: " + (file->isDirectory() ? "1" : "0")))
      << text;
}

TEST(DirectoryScanning, KindTestsSizesAndFailures) {
  testing::TempDir dir;
  const fs::path file = dir.write("clip.mov", std::string(1000, 'x'));
  fs::create_symlink("clip.mov", dir.path() / "link");
  fs::create_symlink("none", dir.path() / "dangling");
  testing::CapturedLogs logs;
  EXPECT_TRUE(existsCFI(str(file)));
  EXPECT_FALSE(existsCFI(str(dir.path() / "none")));
  EXPECT_TRUE(isDirectoryCFI(str(dir.path())));
  EXPECT_FALSE(isDirectoryCFI(str(file)));
  EXPECT_FALSE(isSymbolicLinkCFI(str(dir.path() / "link")));  // stat follows the link
  EXPECT_FALSE(isSymbolicLinkCFI(str(dir.path() / "dangling")));
  EXPECT_EQ(logs.lines(), std::vector<std::string>{"isSymbolicLinkCFI failed on " +
                                                   (dir.path() / "dangling").string()});
  EXPECT_EQ(filesizeCFI(str(file)), 1000u);
  EXPECT_EQ(filesizeCFI(str(dir.path() / "link")), 1000u);
  EXPECT_EQ(filesizeCFI(str(dir.path())), 0u);
  EXPECT_EQ(filesizeCFI(str(dir.path() / "none")), 0u);

  EXPECT_TRUE(directoryFilesAtPathCFI(str(dir.path() / "none")).isNil());
  const Array names = directoryContentsAtPathCFI(str(dir.path() / "none"));
  EXPECT_FALSE(names.isNil());
  EXPECT_EQ(names.count(), 0u);
  const std::vector<std::string> lines = logs.lines();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[1], "directory_scanning directoryFilesAtPathCFI: Couldn't open directory " +
                          (dir.path() / "none").string());
  EXPECT_EQ(lines[2], "Couldn't open directory " + (dir.path() / "none").string());
  EXPECT_EQ(logs.messages()[1].function.utf8(),
            "+[NSFileManager(CFIExtensions) directoryFilesAtPathCFI:]");
}

TEST(DirectoryScanning, TreeWalkTotalsWrapAt32Bits) {
  testing::TempDir dir;
  dir.write("a/1", "12345");
  dir.write("a/b/2", "123");
  // A sparse file of 4 GiB + 10 bytes adds only its low 32 bits.
  const fs::path big = dir.path() / "a/big";
  const int descriptor = ::open(big.c_str(), O_CREAT | O_WRONLY, 0644);
  ASSERT_GE(descriptor, 0);
  ASSERT_EQ(::ftruncate(descriptor, (off_t{1} << 32) + 10), 0);
  ::close(descriptor);
  __cfi_total_file_count = 0;
  __cfi_total_file_size = 0;
  ASSERT_EQ(::ftw(dir.path().c_str(), process_total_file_count, 8), 0);
  ASSERT_EQ(::ftw(dir.path().c_str(), process_total_file_size, 8), 0);
  EXPECT_EQ(__cfi_total_file_count, 3);
  EXPECT_EQ(__cfi_total_file_size, 18);
}

TEST(DirectoryScanning, AHundredThousandNamesInOneFolder) {
  testing::TempDir dir;
  constexpr int kCount = 100000;
  std::string name = (dir.path() / "A001C").string();
  const std::size_t stem = name.size();
  for (int i = 0; i < kCount; ++i) {
    name.resize(stem);
    name += std::to_string(i) + ".dpx";
    ::close(::open(name.c_str(), O_CREAT | O_WRONLY, 0644));
  }
  const Array records = directoryFilesAtPathCFI(str(dir.path()));
  ASSERT_EQ(records.count(), static_cast<UInteger>(kCount));
  std::set<std::string> unique;
  for (const Value& record : records) {
    const auto file = record.asObject<CFIFile>();
    EXPECT_FALSE(file->isDirectory());
    unique.insert(file->path().utf8());
  }
  EXPECT_EQ(unique.size(), static_cast<std::size_t>(kCount));
  EXPECT_EQ(directoryContentsAtPathCFI(str(dir.path()), true).count(),
            static_cast<UInteger>(kCount));
}

}  // namespace
}  // namespace tarnvik
