// The tarnvik tool run as a user runs it, on real temporary folders: exit codes, error
// lines, JSON documents, manifests md5sum accepts, a refused archive, Ctrl-C in the middle
// of a transfer, and the progress line on a terminal but not on a pipe.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "support/file_helpers.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;

struct ToolRun {
  int code = -1;
  std::string out, err;
};

// Runs the tool with the arguments (a shell word list) in the folder.
ToolRun tarnvik(const fs::path& folder, const std::string& arguments) {
  const std::string command = std::string(TARNVIK_TOOL) + " " + arguments + " >.out 2>.err";
  const int status = testing::sh(folder, command);
  return ToolRun{WIFEXITED(status) ? WEXITSTATUS(status) : -1, testing::slurp(folder / ".out"),
                 testing::slurp(folder / ".err")};
}

void makeCard(const testing::TempDir& dir, int clips = 3) {
  for (int c = 0; c < clips; ++c) {
    for (int f = 0; f < 4; ++f) {
      dir.write("card/DCIM/A00" + std::to_string(c) + "/frame" + std::to_string(f) + ".dng",
                std::string(1000 + f * 7 + c, static_cast<char>('a' + f)));
    }
  }
  dir.write("card/CLIPS/A001C001.mov", std::string(50000, 'm'));
  dir.write("card/.DS_Store", "junk");
  fs::create_directories(dir.path() / "dest");
}

TEST(TarnvikTool, UsageVersionAndNames) {
  testing::TempDir dir;
  EXPECT_EQ(tarnvik(dir.path(), "bogus").code, 2);
  EXPECT_EQ(tarnvik(dir.path(), "").code, 2);
  const ToolRun version = tarnvik(dir.path(), "--version");
  EXPECT_EQ(version.code, 0);
  EXPECT_TRUE(version.out.starts_with("tarnvik ")) << version.out;
  EXPECT_EQ(tarnvik(dir.path(), "name next A001C009").out, "A001C010\n");
  const ToolRun json = tarnvik(dir.path(), "--json name previous A001C010");
  EXPECT_EQ(nlohmann::json::parse(json.out)["result"], "A001C009");
  EXPECT_EQ(tarnvik(dir.path(), "offload --help").code, 0);
}

TEST(TarnvikTool, OffloadVerifiesAndWritesAManifestMd5sumAccepts) {
  testing::TempDir dir;
  makeCard(dir);
  const ToolRun run = tarnvik(dir.path(), "--json offload card dest");
  ASSERT_EQ(run.code, 0) << run.err;
  const auto document = nlohmann::json::parse(run.out);
  EXPECT_EQ(document["verified"], 13);
  EXPECT_EQ(document["ok"], true);
  EXPECT_FALSE(fs::exists(dir.path() / "dest/.DS_Store"));
  EXPECT_EQ(testing::sh(dir.path() / "dest", "md5sum -c --quiet offload.md5"), 0);
  // The tool's own check reads the same manifest.
  const ToolRun check = tarnvik(dir.path() / "dest", "hash --check offload.md5");
  EXPECT_EQ(check.code, 0);
  // A second offload into the same place conflicts, names the file and says why.
  const ToolRun again = tarnvik(dir.path(), "offload card dest");
  EXPECT_EQ(again.code, 1);
  EXPECT_NE(again.err.find("tarnvik: offload: copying card: Could not move item from path"),
            std::string::npos)
      << again.err;
  EXPECT_NE(again.err.find("(KFErrorDomainTarnvikExtensions 1)"), std::string::npos) << again.err;
  EXPECT_EQ(tarnvik(dir.path(), "offload card dest --skip-existing").code, 0);
  // A damaged copy is found by verification.
  std::ofstream(dir.path() / "dest/CLIPS/A001C001.mov") << "damaged";
  const ToolRun damaged = tarnvik(dir.path(), "offload card dest --skip-existing");
  EXPECT_EQ(damaged.code, 1);
  EXPECT_NE(damaged.err.find("CLIPS/A001C001.mov: differs from its copy"), std::string::npos)
      << damaged.err;
}

TEST(TarnvikTool, HashPrintsWhatMd5sumShaSumsAndXxhsumPrint) {
  testing::TempDir dir;
  dir.write("a.mov", "clip");
  dir.write("b.txt", "");
  std::string many;
  for (int i = 0; i < 9; ++i) {
    dir.write("c" + std::to_string(i), std::string(i * 1000, 'x'));
    many += " c" + std::to_string(i);
  }
  ASSERT_EQ(testing::sh(dir.path(), "md5sum a.mov b.txt" + many +
                                        " > expected.md5 && sha1sum a.mov > "
                                        "expected.sha1 && sha256sum a.mov > expected.sha256 "
                                        "&& xxhsum -H2 a.mov" +
                                        many + " > expected.xxh128"),
            0);
  // Hashed on every core, printed in the order given.
  EXPECT_EQ(tarnvik(dir.path(), "hash a.mov b.txt" + many).out,
            testing::slurp(dir.path() / "expected.md5"));
  EXPECT_EQ(tarnvik(dir.path(), "hash --sha1 a.mov").out,
            testing::slurp(dir.path() / "expected.sha1"));
  EXPECT_EQ(tarnvik(dir.path(), "hash --sha256 a.mov").out,
            testing::slurp(dir.path() / "expected.sha256"));
  EXPECT_EQ(tarnvik(dir.path(), "hash --check expected.sha256").code, 0);
  EXPECT_EQ(tarnvik(dir.path(), "hash --xxh128 a.mov" + many).out,
            testing::slurp(dir.path() / "expected.xxh128"));
  // xxhsum reads the tool's manifests, and the tool reads xxhsum's.
  ASSERT_EQ(
      testing::sh(dir.path(), std::string(TARNVIK_TOOL) + " hash --xxh128 a.mov > mine.xxh128"), 0);
  EXPECT_EQ(testing::sh(dir.path(), "xxhsum -c --quiet mine.xxh128"), 0);
  EXPECT_EQ(tarnvik(dir.path(), "hash --check expected.xxh128").code, 0);
  std::ofstream(dir.path() / "c3") << "changed";
  const ToolRun changed = tarnvik(dir.path(), "hash --check expected.md5");
  EXPECT_EQ(changed.code, 1);
  EXPECT_NE(changed.out.find("c3: FAILED"), std::string::npos);
  const ToolRun missing = tarnvik(dir.path(), "hash none.mov");
  EXPECT_EQ(missing.code, 1);
  EXPECT_EQ(missing.err,
            "tarnvik: hash: none.mov: No such file or directory (NSCocoaErrorDomain 260)\n");
}

TEST(TarnvikTool, ZipRoundTripAndARefusedArchive) {
  testing::TempDir dir;
  makeCard(dir);
  ASSERT_EQ(tarnvik(dir.path(), "zip card.zip card").code, 0);
  EXPECT_EQ(testing::sh(dir.path(), "unzip -tq card.zip >/dev/null"), 0);
  ASSERT_EQ(tarnvik(dir.path(), "unzip card.zip back").code, 0);
  EXPECT_EQ(testing::treeOf(dir.path() / "back/card"), testing::treeOf(dir.path() / "card"));
  ASSERT_EQ(
      testing::python(dir.path(),
                      "import zipfile\nwith zipfile.ZipFile('evil.zip', 'w') as z:\n"
                      "    z.writestr('../../evil.txt', 'x')\n    z.writestr('ok.txt', 'ok')\n"),
      0);
  fs::create_directories(dir.path() / "a/b");
  const ToolRun evil = tarnvik(dir.path() / "a/b", "unzip ../../evil.zip out");
  EXPECT_EQ(evil.code, 1);
  EXPECT_NE(evil.err.find("Refused ../../evil.txt: the name leads out of the destination"),
            std::string::npos)
      << evil.err;
  EXPECT_FALSE(fs::exists(dir.path() / "evil.txt"));
  EXPECT_EQ(testing::slurp(dir.path() / "a/b/out/ok.txt"), "ok");
}

TEST(TarnvikTool, SmallChores) {
  testing::TempDir dir;
  // sort: file names in sequence order, by name before extension.
  ASSERT_EQ(testing::sh(dir.path(), "printf 'clip10.mov\\nclip9.MOV\\nA001C002.mxf\\nclip9\\n' | " +
                                        std::string(TARNVIK_TOOL) + " sort > sorted"),
            0);
  EXPECT_EQ(testing::slurp(dir.path() / "sorted"), "A001C002.mxf\nclip9\nclip9.MOV\nclip10.mov\n");
  EXPECT_EQ(tarnvik(dir.path(), "name next A001C009.mov").out, "A001C010.mov\n");
  EXPECT_EQ(tarnvik(dir.path(), "name previous A001C010.MOV").out, "A001C009.MOV\n");
  // name: reset and unique.
  dir.write("Clip.mov", "");
  EXPECT_EQ(tarnvik(dir.path(), "name reset A001C009 --to 1").out, "A001C001\n");
  EXPECT_EQ(tarnvik(dir.path(), "name unique Clip.mov --in .").out, "Clip 1.mov\n");
  EXPECT_EQ(tarnvik(dir.path(), "name unique Clip.mov").code, 2);
  // gzip and gunzip round trip, checked by gzip itself.
  dir.write("report.xml", std::string(10000, 'r'));
  ASSERT_EQ(tarnvik(dir.path(), "gzip report.xml").code, 0);
  EXPECT_EQ(testing::sh(dir.path(), "gzip -t report.xml.gz"), 0);
  std::filesystem::remove(dir.path() / "report.xml");
  ASSERT_EQ(tarnvik(dir.path(), "gunzip report.xml.gz").code, 0);
  EXPECT_EQ(testing::slurp(dir.path() / "report.xml"), std::string(10000, 'r'));
  EXPECT_EQ(tarnvik(dir.path(), "gunzip report.xml").code, 1);
  dir.write("cut.xml.gz", testing::slurp(dir.path() / "report.xml.gz").substr(0, 30));
  const ToolRun cut = tarnvik(dir.path(), "gunzip cut.xml.gz");
  EXPECT_EQ(cut.code, 1);
  EXPECT_EQ(cut.err,
            "tarnvik: gunzip: cut.xml.gz: The stream ends before its end: the data is cut short. "
            "(NSCocoaErrorDomain 259)\n");
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "cut.xml")) << "nothing half-written";
  // folders: the structure without the files.
  dir.write("tree/a/b/f.txt", "f");
  dir.write("tree/c/.DS_Store", "");
  ASSERT_EQ(tarnvik(dir.path(), "folders tree copy").code, 0);
  EXPECT_EQ(testing::treeOf(dir.path() / "copy"),
            (std::map<std::string, std::string>{{"a/", ""}, {"a/b/", ""}, {"c/", ""}}));
  ASSERT_EQ(tarnvik(dir.path(), "folders tree empty --empty-only").code, 0);
  EXPECT_EQ(testing::treeOf(dir.path() / "empty"),
            (std::map<std::string, std::string>{{"c/", ""}}));
  // prune: nothing in a fresh folder is older than a day.
  EXPECT_EQ(nlohmann::json::parse(
                tarnvik(dir.path(), "--json prune tree --older-than 1 --dry-run").out)["removed"]
                .size(),
            0u);
  EXPECT_EQ(tarnvik(dir.path(), "prune tree --older-than 0").code, 2);
  // volumes and time.
  const auto volumes = nlohmann::json::parse(tarnvik(dir.path(), "--json volumes").out)["volumes"];
  ASSERT_FALSE(volumes.empty());
  EXPECT_EQ(volumes[0]["path"], "/");
  EXPECT_EQ(tarnvik(dir.path(), "time 5400").out, "1:30:00 h\n");
  const auto time =
      nlohmann::json::parse(tarnvik(dir.path(), "--json time 90 --date 1700000000.5 --fps 25").out);
  EXPECT_EQ(time["duration"], "1:30 min");
  EXPECT_TRUE(time["timecode"].get<std::string>().ends_with(":20.12")) << time;
  // Media timecodes, both ways, and a label drop-frame skips.
  EXPECT_EQ(tarnvik(dir.path(), "timecode 17982 --rate 29.97df").out, "00:10:00;00\n");
  EXPECT_EQ(tarnvik(dir.path(), "timecode 01:00:00:00 --rate 23.976").out, "86400\n");
  EXPECT_EQ(tarnvik(dir.path(), "timecode 600.6 --seconds --rate 29.97df").out, "00:10:00;18\n");
  const ToolRun dropped = tarnvik(dir.path(), "timecode '00:01:00;01' --rate 29.97df");
  EXPECT_EQ(dropped.code, 1);
  EXPECT_NE(dropped.err.find("drop-frame counting skips frames 00 to 01"), std::string::npos);
  EXPECT_EQ(tarnvik(dir.path(), "timecode 1 --rate 26").code, 2);
  // copy --dry-run names each file and what would happen to it, and changes nothing.
  dir.write("from/a.mov", "a");
  dir.write("from/b.mov", "b");
  dir.write("to/a.mov", "old");
  const auto plan = nlohmann::json::parse(tarnvik(dir.path(), "--json copy from to --dry-run").out);
  EXPECT_EQ(plan["ok"], false);  // a.mov conflicts
  EXPECT_EQ(plan["items"].size(), 2u);
  EXPECT_EQ(tarnvik(dir.path(), "copy from to --dry-run --skip-existing").code, 0);
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "to/b.mov"));
}

TEST(TarnvikTool, ScanCountsMediaClasses) {
  testing::TempDir dir;
  makeCard(dir);
  const auto document = nlohmann::json::parse(tarnvik(dir.path(), "--json scan card").out);
  EXPECT_EQ(document["files"], 14);  // .DS_Store included
  EXPECT_EQ(document["classes"]["still images"], 12);
  EXPECT_EQ(document["classes"]["movies"], 1);
  EXPECT_EQ(nlohmann::json::parse(tarnvik(dir.path(), "--json scan card --depth 1").out)["files"],
            1);
  EXPECT_EQ(
      nlohmann::json::parse(tarnvik(dir.path(), "--json scan card/DCIM/A000 --fast").out)["files"],
      4);
}

TEST(TarnvikTool, ProgressOnATerminalOnlyAndCtrlCLosesNothing) {
  testing::TempDir dir;
  makeCard(dir, 3);
  const std::string tool = TARNVIK_TOOL;
  ASSERT_EQ(
      testing::sh(dir.path(), "script -qec '" + tool + " copy card dest' /dev/null > tty.txt"), 0);
  EXPECT_NE(testing::slurp(dir.path() / "tty.txt").find("copying ["), std::string::npos);
  fs::remove_all(dir.path() / "dest");
  fs::create_directories(dir.path() / "dest");
  EXPECT_EQ(tarnvik(dir.path(), "copy card dest").err, "");  // a pipe gets no progress

  // A big tree, moved, interrupted as soon as the first file arrived.
  for (int i = 0; i < 4000; ++i) dir.write("big/f" + std::to_string(i), std::string(20000, 'x'));
  fs::create_directories(dir.path() / "target");
  const pid_t child = ::fork();
  if (child == 0) {
    ::chdir(dir.path().c_str());
    ::execl(TARNVIK_TOOL, "tarnvik", "--quiet", "move", "big", "target",
            static_cast<char*>(nullptr));
    ::_exit(127);
  }
  int status = 0;
  bool exited = false;
  while (fs::is_empty(dir.path() / "target")) {
    if (::waitpid(child, &status, WNOHANG) == child) {
      exited = true;
      break;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  if (!exited) {
    ::kill(child, SIGINT);
    ::waitpid(child, &status, 0);
  }
  if (WEXITSTATUS(status) == 0) GTEST_SKIP() << "the move finished before it could be interrupted";
  EXPECT_EQ(WEXITSTATUS(status), 130);
  std::size_t whole = 0;
  for (const fs::path& side : {dir.path() / "big", dir.path() / "target"}) {
    for (const auto& entry : fs::directory_iterator(side)) {
      EXPECT_EQ(fs::file_size(entry.path()), 20000u) << entry.path();
      ++whole;
    }
  }
  EXPECT_EQ(whole, 4000u);  // every file whole on one side or the other
}

}  // namespace
}  // namespace tarnvik
