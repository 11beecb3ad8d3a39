// Hostile archives, crafted with Python's zipfile: names that climb out, links out of the
// destination and files written through them, an existing link in the way, a zip bomb and
// overlapping entries. The hardened path refuses each and writes nothing outside the
// destination; the facade's own path does what it always did, as each case records.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/captured_logs.hpp"
#include "support/file_helpers.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;

// A Python helper: link(z, name, target) adds a Unix link entry.
constexpr const char* kLinkHelper = R"(
import zipfile
def link(z, name, target, facade=False):
    info = zipfile.ZipInfo(name)
    info.external_attr = 0x4000 if facade else (0o120777 << 16)
    z.writestr(info, target)
)";

struct Hostile : ::testing::Test {
  testing::TempDir dir;
  fs::path dest = dir.path() / "deep/er/dest";
  fs::path outside = dir.path() / "outside";
  void SetUp() override { fs::create_directories(outside); }
  // Every file below the temporary folder that is not in the destination or the archive.
  std::vector<std::string> strays() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(dir.path())) {
      const std::string path = entry.path().string();
      if (path.starts_with(dest.string()) || entry.path().extension() == ".zip" ||
          entry.is_directory() || entry.path().filename() == "victim.txt") {
        continue;
      }
      found.push_back(fs::relative(entry.path(), dir.path()).string());
    }
    return found;
  }
  bool hardened(const std::string& archive, Error* error, UnzipOptions options = UnzipOptions()) {
    return KUZipArchive::unzipFileAtPathWithOptions(str(dir.path() / archive), str(dest), options,
                                                    error);
  }
};

TEST_F(Hostile, NamesThatClimbOut) {
  ASSERT_EQ(testing::python(dir.path(), R"(
import zipfile
with zipfile.ZipFile("names.zip", "w") as z:
    z.writestr("../../escape.txt", "up")
    z.writestr("/abs.txt", "abs")
    z.writestr("sub\\..\\..\\..\\back.txt", "back")
    z.writestr("C:/drive.txt", "drive")
    z.writestr("fine/ok.txt", "ok")
)"),
            0);
  testing::CapturedLogs logs;
  Error error;
  EXPECT_FALSE(hardened("names.zip", &error));
  EXPECT_EQ(error.code(), -3);
  EXPECT_EQ(error.localizedDescription(),
            String(u"Refused ../../escape.txt: the name leads out of the destination"));
  EXPECT_EQ(testing::treeOf(dest),
            (std::map<std::string, std::string>{{"fine/", ""}, {"fine/ok.txt", "ok"}}));
  EXPECT_EQ(logs.console.size(), 4u);
  EXPECT_TRUE(strays().empty());

  // The facade's path: ".." climbs, a leading "/" merely joins the destination.
  fs::remove_all(dest);
  EXPECT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "names.zip"), str(dest)));
  EXPECT_EQ(testing::slurp(dir.path() / "deep/escape.txt"), "up");
  EXPECT_EQ(testing::slurp(dest / "abs.txt"), "abs");
}

TEST_F(Hostile, LinksOutAndFilesWrittenThroughThem) {
  ASSERT_EQ(testing::python(dir.path(), std::string(kLinkHelper) + R"(
with zipfile.ZipFile("links.zip", "w") as z:
    link(z, "etc", "/etc")
    z.writestr("etc/tarnvik-owned.txt", "pwned")
    link(z, "a", "b")
    link(z, "b", "../../../outside")
    z.writestr("a/through-chain.txt", "pwned")
    link(z, "inside", "fine/../fine")
)"),
            0);
  testing::CapturedLogs logs;
  Error error;
  EXPECT_FALSE(hardened("links.zip", &error));
  EXPECT_FALSE(fs::exists("/etc/tarnvik-owned.txt"));
  EXPECT_TRUE(fs::is_empty(outside));
  EXPECT_FALSE(fs::is_symlink(dest / "etc"));
  EXPECT_EQ(fs::read_symlink(dest / "a"), "b");  // stays inside, dangling
  EXPECT_FALSE(fs::exists(dest / "b"));          // refused
  EXPECT_EQ(fs::read_symlink(dest / "inside"), "fine/../fine");
  EXPECT_TRUE(strays().empty());

  // The facade's own link form with a target outside: the facade's path follows it.
  ASSERT_EQ(testing::python(dir.path(), std::string(kLinkHelper) +
                                            "with zipfile.ZipFile('facade.zip', 'w') as z:\n"
                                            "    link(z, 'out', '" +
                                            outside.string() +
                                            "', facade=True)\n"
                                            "    z.writestr('out/planted.txt', 'x')\n"),
            0);
  fs::remove_all(dest);
  EXPECT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "facade.zip"), str(dest)));
  EXPECT_EQ(testing::slurp(outside / "planted.txt"), "x");
  fs::remove(outside / "planted.txt");
  fs::remove_all(dest);
  EXPECT_FALSE(hardened("facade.zip", &error));
  EXPECT_TRUE(fs::is_empty(outside));
}

TEST_F(Hostile, AnExistingLinkInTheWayIsNotWrittenThrough) {
  std::ofstream(outside / "victim.txt") << "original";
  fs::create_directories(dest);
  fs::create_symlink(outside / "victim.txt", dest / "report.txt");
  ASSERT_EQ(testing::python(dir.path(),
                            "import zipfile\nwith zipfile.ZipFile('over.zip', 'w') as z:\n"
                            "    z.writestr('report.txt', 'replaced')\n"),
            0);
  testing::CapturedLogs logs;
  Error error;
  EXPECT_FALSE(hardened("over.zip", &error));
  EXPECT_EQ(testing::slurp(outside / "victim.txt"), "original");
  EXPECT_EQ(error.localizedDescription(),
            String(u"Refused report.txt: it would be written through a link"));
  // The facade's path opens the file with fopen, which follows the link.
  EXPECT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "over.zip"), str(dest)));
  EXPECT_EQ(testing::slurp(outside / "victim.txt"), "replaced");
}

TEST_F(Hostile, BombsAndOverlappingEntries) {
  ASSERT_EQ(testing::python(dir.path(), R"(
import struct, zipfile
with zipfile.ZipFile("bomb.zip", "w", zipfile.ZIP_DEFLATED) as z:
    with z.open("zeros.bin", "w", force_zip64=True) as f:
        block = bytes(1 << 20)
        for _ in range(1024):
            f.write(block)
with zipfile.ZipFile("overlap.zip", "w", zipfile.ZIP_DEFLATED) as z:
    z.writestr("a.bin", b"frame" * 1000)
data = open("overlap.zip", "rb").read()
end = data.rfind(b"PK\x05\x06")
size, offset = struct.unpack("<II", data[end + 12:end + 20])
directory = data[offset:offset + size]
twice = directory + directory.replace(b"a.bin", b"b.bin")
record = data[end:end + 8] + struct.pack("<HHII", 2, 2, len(twice), offset) + data[end + 20:end + 22]
open("overlap.zip", "wb").write(data[:offset] + twice + record)
)"),
            0);
  ASSERT_LT(fs::file_size(dir.path() / "bomb.zip"), 2u << 20);
  testing::CapturedLogs logs;
  Error error;
  EXPECT_FALSE(hardened("bomb.zip", &error));
  EXPECT_TRUE(
      error.localizedDescription().hasPrefix(u"Refused zeros.bin: it expands more than 400 times"));
  EXPECT_FALSE(fs::exists(dest / "zeros.bin"));
  UnzipOptions capped;
  capped.maxCompressionRatio = 0;
  capped.maxTotalBytes = 8 << 20;
  EXPECT_FALSE(hardened("bomb.zip", &error, capped));
  EXPECT_TRUE(error.localizedDescription().hasSuffix(u"the archive holds more than 8388608 bytes"));
  EXPECT_FALSE(fs::exists(dest / "zeros.bin"));

  EXPECT_FALSE(hardened("overlap.zip", &error));
  EXPECT_EQ(error.localizedDescription(),
            String(u"Refused b.bin: its data overlaps another entry's"));
  EXPECT_TRUE(fs::exists(dest / "a.bin"));
  EXPECT_FALSE(fs::exists(dest / "b.bin"));
  // The facade's path unpacks both names from the one set of bytes.
  EXPECT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "overlap.zip"), str(dest)));
  EXPECT_EQ(testing::slurp(dest / "b.bin"), testing::slurp(dest / "a.bin"));
}

TEST_F(Hostile, ProgressCountsAndCancels) {
  ASSERT_EQ(testing::python(dir.path(),
                            "import zipfile\nwith zipfile.ZipFile('three.zip', 'w') as z:\n"
                            "    for n in 'abc': z.writestr(n, n * 10)\n"),
            0);
  std::vector<std::uint64_t> seen;
  UnzipOptions options;
  options.progress = [&](const UnzipProgress& p) {
    seen.push_back(p.entriesDone * 100 + p.bytesWritten);
    return p.entriesDone < 2;
  };
  Error error;
  EXPECT_FALSE(hardened("three.zip", &error, options));
  EXPECT_EQ(seen, (std::vector<std::uint64_t>{110, 220}));
  EXPECT_EQ(error.code(), NSUserCancelledError);
  EXPECT_FALSE(fs::exists(dest / "c"));
}

}  // namespace
}  // namespace tarnvik
