// Extraction through the facade, with archives made by Info-ZIP, Python's zipfile and
// bsdtar: entries, folders, backslashes, dates, overwrite, passwords, links, the delegate's
// callbacks and index, and the failures the facade reports.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/captured_logs.hpp"
#include "support/file_helpers.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;
using Tree = std::map<std::string, std::string>;

// Remembers every callback as a line.
struct Recorder : KUZipArchiveDelegate {
  std::vector<std::string> calls;
  int veto = -1;  // the call number of the should-callback that answers false
  int asked = 0;
  void zipArchiveWillUnzipArchiveAtPath(const String&, const KUZipGlobalInfo& info) override {
    calls.push_back("will archive " + std::to_string(info.numberOfEntries));
  }
  bool zipArchiveShouldUnzipFileAtIndex(std::uint64_t index, std::uint64_t total, const String&,
                                        const String& name) override {
    calls.push_back("should " + std::to_string(index) + "/" + std::to_string(total) + " " +
                    name.utf8());
    return asked++ != veto;
  }
  void zipArchiveWillUnzipFileAtIndex(std::uint64_t index, std::uint64_t, const String&,
                                      const KUZipFileInfo&) override {
    calls.push_back("will " + std::to_string(index));
  }
  void zipArchiveDidUnzipFileAtIndex(std::uint64_t index, std::uint64_t, const String&,
                                     const KUZipFileInfo& info) override {
    calls.push_back("did " + std::to_string(index) + " " + std::to_string(info.uncompressedSize));
  }
  void zipArchiveDidUnzipArchiveAtPath(const String&, const KUZipGlobalInfo&,
                                       const String& to) override {
    calls.push_back("did archive " + to.lastPathComponent().utf8());
  }
};

DateComponents localFieldsOf(const fs::path& path) {
  struct stat info {};
  ::lstat(path.c_str(), &info);
  return Calendar().components(
      Date::dateWithTimeIntervalSince1970(static_cast<double>(info.st_mtime)));
}

// dir/, dir/a.txt and c\b.txt, dated 2010-03-04 05:06:08.
void makeDatedArchive(const fs::path& folder) {
  ASSERT_EQ(testing::python(folder, R"(
import zipfile
with zipfile.ZipFile("dated.zip", "w", zipfile.ZIP_DEFLATED) as z:
    for name, data in (("dir/", b""), ("dir/a.txt", b"alpha" * 100), ("c\\b.txt", b"bee")):
        info = zipfile.ZipInfo(name, (2010, 3, 4, 5, 6, 8))
        info.compress_type = zipfile.ZIP_DEFLATED
        z.writestr(info, data)
)"),
            0);
}

TEST(ZipExtraction, FoldersBackslashesDatesAndCallbacks) {
  testing::TempDir dir;
  makeDatedArchive(dir.path());
  Recorder recorder;
  Error error;
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "dated.zip"), str(dir.path() / "out"),
                                            true, String(), &error, &recorder));
  std::string alpha;
  for (int i = 0; i < 100; ++i) alpha += "alpha";
  EXPECT_EQ(testing::treeOf(dir.path() / "out"),
            (Tree{{"c/", ""}, {"c/b.txt", "bee"}, {"dir/", ""}, {"dir/a.txt", alpha}}));
  for (const char* item : {"dir", "dir/a.txt", "c/b.txt"}) {
    const DateComponents c = localFieldsOf(dir.path() / "out" / item);
    EXPECT_EQ((std::vector<Integer>{c.year, c.month, c.day, c.hour, c.minute, c.second}),
              (std::vector<Integer>{2010, 3, 4, 5, 6, 8}))
        << item;
  }
  EXPECT_EQ(recorder.calls, (std::vector<std::string>{"will archive 3", "should 0/3 dir/", "will 0",
                                                      "did 0 0", "should 1/3 dir/a.txt", "will 1",
                                                      "did 1 500", "should 2/3 c\\b.txt", "will 2",
                                                      "did 2 3", "did archive out"}));
}

TEST(ZipExtraction, VetoedAndKeptEntriesDoNotAdvanceTheIndex) {
  testing::TempDir dir;
  makeDatedArchive(dir.path());
  Recorder vetoing;
  vetoing.veto = 0;
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "dated.zip"), str(dir.path() / "v"),
                                            &vetoing));
  std::vector<std::string> asked;
  for (const std::string& call : vetoing.calls) {
    if (call.starts_with("should")) asked.push_back(call.substr(0, 10));
  }
  EXPECT_EQ(asked, (std::vector<std::string>{"should 0/3", "should 0/3", "should 1/3"}));

  // Overwrite NO keeps an existing file and makes no did-callback for it, but the date pass
  // still gives it the archive's date.
  dir.write("keep/dir/a.txt", "mine");
  Recorder keeping;
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "dated.zip"), str(dir.path() / "keep"),
                                            false, String(), nullptr, &keeping));
  EXPECT_EQ(testing::slurp(dir.path() / "keep/dir/a.txt"), "mine");
  EXPECT_EQ(std::count(keeping.calls.begin(), keeping.calls.end(), "did 1 500"), 0);
  EXPECT_EQ(std::count(keeping.calls.begin(), keeping.calls.end(), "did 1 3"), 1);
  EXPECT_EQ(localFieldsOf(dir.path() / "keep/dir/a.txt").year, 2010);
}

TEST(ZipExtraction, FailuresBeforeAndDuringTheEntries) {
  testing::TempDir dir;
  Error error;
  EXPECT_FALSE(KUZipArchive::unzipFileAtPath(str(dir.path() / "none.zip"), str(dir.path() / "o"),
                                             true, String(), &error));
  EXPECT_EQ(error.domain(), String(KUZipArchiveErrorDomain));
  EXPECT_EQ(error.code(), -1);
  EXPECT_EQ(error.localizedDescription(), String(u"failed to open zip file"));
  ASSERT_EQ(
      testing::python(dir.path(), "import zipfile\nzipfile.ZipFile('empty.zip', 'w').close()\n"),
      0);
  EXPECT_FALSE(KUZipArchive::unzipFileAtPath(str(dir.path() / "empty.zip"), str(dir.path() / "o"),
                                             true, String(), &error));
  EXPECT_EQ(error.code(), -2);
  EXPECT_EQ(error.localizedDescription(), String(u"failed to open first file in zip file"));

  // A DOS date of 0 rolls over to the last day of November 1979.
  const DateComponents zero = Calendar().components(KUZipArchive::_dateWithMSDOSFormat(0));
  EXPECT_EQ((std::vector<Integer>{zero.year, zero.month, zero.day, zero.hour}),
            (std::vector<Integer>{1979, 11, 30, 0}));
}

TEST(ZipExtraction, PasswordsFromInfoZip) {
  testing::TempDir dir;
  dir.write("src/clip.txt", std::string(20000, 'x') + "end");
  dir.write("src/tiny.txt", "t");
  ASSERT_EQ(testing::sh(dir.path(), "cd src && zip -q -P s3cret ../locked.zip clip.txt tiny.txt"),
            0);
  const String archive = str(dir.path() / "locked.zip");
  Error error;
  ASSERT_TRUE(
      KUZipArchive::unzipFileAtPath(archive, str(dir.path() / "ok"), true, u"s3cret", &error));
  EXPECT_EQ(testing::slurp(dir.path() / "ok/clip.txt"), std::string(20000, 'x') + "end");
  EXPECT_EQ(testing::slurp(dir.path() / "ok/tiny.txt"), "t");
  // A wrong or missing password fails the entry's open: false, no error, nothing written.
  for (const char16_t* password : {u"wrong", u""}) {
    Error none;
    EXPECT_FALSE(
        KUZipArchive::unzipFileAtPath(archive, str(dir.path() / "bad"), true, password, &none));
    EXPECT_TRUE(none.isNil());
    EXPECT_FALSE(fs::exists(dir.path() / "bad/clip.txt"));
  }
  // The same archive made with a data descriptor (zip reading from a pipe) checks the time.
  ASSERT_EQ(testing::sh(dir.path(), "cat src/clip.txt | zip -q -P s3cret piped.zip -"), 0);
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "piped.zip"), str(dir.path() / "p"),
                                            true, u"s3cret", &error));
  EXPECT_EQ(fs::file_size(dir.path() / "p/-"), 20003u);
}

TEST(ZipExtraction, LinksTheFacadeWayAndTheUnixWay) {
  testing::TempDir dir;
  dir.write("src/real.txt", "real");
  fs::create_symlink("real.txt", dir.path() / "src/link");
  ASSERT_EQ(testing::sh(dir.path(), "cd src && zip -q -y ../unix.zip real.txt link"), 0);
  // The facade's own test looks at the low bits: Info-ZIP's links come out as files that
  // hold the target, unless the hardened path, which knows Unix modes, unpacks them.
  ASSERT_TRUE(
      KUZipArchive::unzipFileAtPath(str(dir.path() / "unix.zip"), str(dir.path() / "plain")));
  EXPECT_FALSE(fs::is_symlink(dir.path() / "plain/link"));
  EXPECT_EQ(testing::slurp(dir.path() / "plain/link"), "real.txt");
  Error error;
  ASSERT_TRUE(KUZipArchive::unzipFileAtPathWithOptions(
      str(dir.path() / "unix.zip"), str(dir.path() / "hard"), UnzipOptions(), &error));
  EXPECT_EQ(fs::read_symlink(dir.path() / "hard/link"), "real.txt");

  // A stored entry with 0x4000 in the low bits is a link to its data, made absolute
  // against the working folder.
  ASSERT_EQ(testing::python(dir.path(), R"(
import zipfile
with zipfile.ZipFile("facade.zip", "w") as z:
    info = zipfile.ZipInfo("alias")
    info.external_attr = 0x4000
    z.writestr(info, "target.mov")
)"),
            0);
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "facade.zip"), str(dir.path() / "f")));
  EXPECT_EQ(fs::read_symlink(dir.path() / "f/alias"), fs::current_path() / "target.mov");
}

TEST(ZipExtraction, ArchivesFromPythonAndBsdtar) {
  testing::TempDir dir;
  ASSERT_EQ(testing::python(dir.path(), R"(
import zipfile
with zipfile.ZipFile("py.zip", "w") as z:
    z.writestr("stored.txt", b"plain", compress_type=zipfile.ZIP_STORED)
    z.writestr("deflated.txt", b"clip " * 1000, compress_type=zipfile.ZIP_DEFLATED)
    z.writestr("Überspielung/Szene 1.mov", b"utf8", compress_type=zipfile.ZIP_DEFLATED)
)"),
            0);
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "py.zip"), str(dir.path() / "py")));
  EXPECT_EQ(testing::slurp(dir.path() / "py/stored.txt"), "plain");
  EXPECT_EQ(fs::file_size(dir.path() / "py/deflated.txt"), 5000u);
  EXPECT_EQ(testing::slurp(dir.path() / "py/Überspielung/Szene 1.mov"), "utf8");

  dir.write("tree/a/one.txt", "1");
  dir.write("tree/b.txt", std::string(100000, 'b'));
  ASSERT_EQ(testing::sh(dir.path(), "cd tree && bsdtar -a -cf ../bsd.zip a b.txt"), 0);
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "bsd.zip"), str(dir.path() / "bsd")));
  EXPECT_EQ(testing::treeOf(dir.path() / "bsd"), testing::treeOf(dir.path() / "tree"));
}

}  // namespace
}  // namespace tarnvik
