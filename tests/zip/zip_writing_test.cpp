// Writing archives through the facade, read back by the facade and checked by unzip,
// Python's zipfile and bsdtar; the lifecycle's assertions.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/file_helpers.hpp"
#include "support/raised.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;

// "name size method" per entry, read with Python.
std::string listing(const fs::path& folder, const std::string& archive) {
  testing::python(folder,
                  "import zipfile\nwith open('listing', 'w') as out:\n"
                  "    for i in zipfile.ZipFile('" +
                      archive +
                      "').infolist():\n"
                      "        out.write(f'{i.filename} {i.file_size} {i.compress_type}\\n')\n");
  return testing::slurp(folder / "listing");
}

TEST(ZipWriting, EntriesReadBackEverywhere) {
  testing::TempDir dir;
  std::string frames;
  for (std::uint64_t i = 0; i < 300000; ++i) frames += static_cast<char>(i * 7919 % 251);
  dir.write("in/frames.dng", frames);
  dir.write("in/empty.txt", "");
  dir.write("in/notes.txt", "clip A001C001\n");
  KUZipArchive archive(str(dir.path() / "out.zip"));
  ASSERT_TRUE(archive.open());
  EXPECT_TRUE(archive.writeFile(str(dir.path() / "in/frames.dng")));
  EXPECT_TRUE(archive.writeFile(str(dir.path() / "in/empty.txt"), u"meta/empty.txt"));
  EXPECT_TRUE(archive.writeFileWithoutCompressionToZipFilePath(str(dir.path() / "in/notes.txt"),
                                                               u"meta/notes.txt"));
  EXPECT_TRUE(archive.writeData(Data::withBytes("fps 25\n", 7), u"settings.txt"));
  EXPECT_FALSE(archive.writeFile(str(dir.path() / "in/missing")));
  EXPECT_TRUE(archive.close());

  EXPECT_EQ(listing(dir.path(), "out.zip"),
            "frames.dng 300000 8\nmeta/empty.txt 0 8\nmeta/notes.txt 14 8\nsettings.txt 7 8\n");
  EXPECT_EQ(testing::sh(dir.path(), "unzip -tq out.zip >/dev/null"), 0);
  EXPECT_EQ(testing::sh(dir.path(), "python3 -m zipfile -t out.zip >/dev/null"), 0);
  EXPECT_EQ(testing::sh(dir.path(), "bsdtar -tf out.zip >/dev/null"), 0);
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "out.zip"), str(dir.path() / "back")));
  EXPECT_EQ(testing::slurp(dir.path() / "back/frames.dng"), frames);
  EXPECT_EQ(testing::slurp(dir.path() / "back/meta/notes.txt"), "clip A001C001\n");
  EXPECT_EQ(fs::file_size(dir.path() / "back/meta/empty.txt"), 0u);

  // Data entries are dated now; file entries carry minizip's default date (DOS 0).
  ASSERT_EQ(testing::python(
                dir.path(),
                "import zipfile\nz = zipfile.ZipFile('out.zip')\n"
                "open('dates', 'w').write(str(z.getinfo('settings.txt').date_time[0]) + ' ' + "
                "str(z.getinfo('frames.dng').date_time[0]))\n"),
            0);
  EXPECT_EQ(testing::slurp(dir.path() / "dates"),
            std::to_string(Calendar().components(Date::now()).year) + " 1980");
}

TEST(ZipWriting, LevelZeroStoresInDeflateBlocksAndLargeFilesStream) {
  testing::TempDir dir;
  const std::string text(100000, 'z');
  dir.write("t.txt", text);
  // Beyond the whole-file size: streamed through minizip's own deflate.
  const fs::path big = dir.path() / "big.bin";
  ASSERT_EQ(
      testing::sh(dir.path(), "head -c 70000000 /dev/zero > big.bin && printf end >> big.bin"), 0);
  KUZipArchive archive(str(dir.path() / "a.zip"));
  ASSERT_TRUE(archive.open());
  EXPECT_TRUE(
      archive.writeFileWithoutCompressionToZipFilePath(str(dir.path() / "t.txt"), u"t.txt"));
  EXPECT_TRUE(archive.writeFile(str(big)));
  archive.close();
  ASSERT_EQ(testing::python(
                dir.path(),
                "import zipfile\ni = zipfile.ZipFile('a.zip').getinfo('t.txt')\n"
                "open('sizes', 'w').write(f'{i.compress_type} {i.compress_size > i.file_size}')\n"),
            0);
  EXPECT_EQ(testing::slurp(dir.path() / "sizes"), "8 True");
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "a.zip"), str(dir.path() / "x")));
  EXPECT_EQ(fs::file_size(dir.path() / "x/big.bin"), 70000003u);
  EXPECT_EQ(testing::slurp(dir.path() / "x/t.txt"), text);
}

TEST(ZipWriting, BuildersAndTemporaryArchives) {
  testing::TempDir dir;
  const fs::path one = dir.write("one.mov", "1");
  ASSERT_TRUE(KUZipArchive::createZipFileAtPath(str(dir.path() / "b.zip"),
                                                Array{str(one), str(dir.path() / "missing.mov")}));
  EXPECT_EQ(listing(dir.path(), "b.zip"), "one.mov 1 8\n");
  EXPECT_FALSE(
      KUZipArchive::createZipFileAtPath(str(dir.path() / "no/such/folder.zip"), Array{str(one)}));

  ::setenv("TMPDIR", dir.path().c_str(), 1);
  const URL first = KUZipArchive::createTemporaryZipFileNamed(u"report", Array{str(one)});
  dir.write("two.mov", "22");
  const URL second =
      KUZipArchive::createTemporaryZipFileNamed(u"report", Array{str(dir.path() / "two.mov")});
  ::unsetenv("TMPDIR");
  ASSERT_FALSE(second.isNil());
  EXPECT_EQ(first.path(), second.path());
  EXPECT_EQ(second.path().utf8(), (dir.path() / "report.zip").string());
  EXPECT_EQ(listing(dir.path(), "report.zip"), "two.mov 2 8\n");
}

TEST(ZipWriting, LifecycleAssertions) {
  testing::TempDir dir;
  KUZipArchive never(str(dir.path() / "never.zip"));
  EXPECT_FALSE(never.writeData(Data::withBytes("x", 1), u"x"));  // no assertion
  EXPECT_EQ(
      testing::raised([&] { never.writeFile(str(dir.path())); }),
      "NSInternalInconsistencyException: Attempting to write to an archive which was never opened");
  EXPECT_EQ(testing::raised([&] { never.close(); }),
            "NSInternalInconsistencyException: [KUZipArchive] Attempting to close an archive which "
            "was never opened");
  KUZipArchive archive(str(dir.path() / "a.zip"));
  ASSERT_TRUE(archive.open());
  EXPECT_EQ(testing::raised([&] { archive.open(); }),
            "NSInternalInconsistencyException: Attempting open an archive which is already open");
  EXPECT_EQ(testing::raised([&] { archive.writeFile(str(dir.path()), String()); }),
            "NSInternalInconsistencyException: Invalid parameter not satisfying: destinationName");
  EXPECT_TRUE(archive.writeData(Data::withBytes("x", 1), u"first"));
  archive.close();
  // Closed for good: it cannot be opened again, and writes fail without touching the archive.
  EXPECT_EQ(testing::raised([&] { archive.open(); }),
            "NSInternalInconsistencyException: Attempting open an archive which is already open");
  EXPECT_FALSE(archive.writeData(Data::withBytes("x", 1), u"late"));
  EXPECT_EQ(testing::sh(dir.path(), "unzip -tq a.zip >/dev/null 2>&1"), 0);
}

}  // namespace
}  // namespace tarnvik
