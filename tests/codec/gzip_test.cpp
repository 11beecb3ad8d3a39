#include "tarnvik/codec/gzip.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zlib.h>

#include <fstream>
#include <optional>
#include <random>
#include <sstream>
#include <thread>

#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"
#include "support/tools.hpp"

namespace tarnvik {
namespace {

using testing::readFile;
using testing::run;
using testing::writeFile;

std::string sampleText(std::size_t size) {
  std::string text;
  std::mt19937 random(7);
  const char* words[] = {"clip ", "reel ", "A001C009 ", "take ", "frames\n", "25fps "};
  while (text.size() < size) text += words[random() % 6];
  text.resize(size);
  return text;
}

std::string zlibCompress(const std::string& in, int windowBits) {
  z_stream s{};
  deflateInit2(&s, 6, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&s, in.size()), '\0');
  s.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));
  s.avail_in = static_cast<uInt>(in.size());
  s.next_out = reinterpret_cast<Bytef*>(out.data());
  s.avail_out = static_cast<uInt>(out.size());
  deflate(&s, Z_FINISH);
  out.resize(s.total_out);
  deflateEnd(&s);
  return out;
}

TEST(Gzip, EmptyDataIsReturnedAsItIs) {
  const Data empty = Data::data();
  EXPECT_TRUE(gzipPackedData(empty).isIdenticalTo(empty));
  EXPECT_TRUE(gzipUnpackedData(empty).isIdenticalTo(empty));
}

TEST(Gzip, RoundTripsAcrossBufferGrowth) {
  // Sizes around the 16 KiB output step and an incompressible buffer that needs many steps.
  std::mt19937 random(1);
  std::string noise(200000, '\0');
  for (char& c : noise) c = static_cast<char>(random());
  for (const std::string& text : {std::string("a"), sampleText(16384), sampleText(300000), noise}) {
    const Data packed = gzipPackedData(Data::withString(text));
    ASSERT_GE(packed.length(), 18u);
    EXPECT_EQ(packed.bytes()[0], 0x1F);
    EXPECT_EQ(packed.bytes()[1], 0x8B);
    const Data back = gzipUnpackedData(packed);
    ASSERT_FALSE(back.isNil());
    EXPECT_EQ(std::string(back.asStringView()), text);
  }
}

TEST(Gzip, AcceptsZlibAndRefusesRawTruncatedOrGarbage) {
  const std::string text = sampleText(5000);
  EXPECT_EQ(std::string(gzipUnpackedData(Data::withString(zlibCompress(text, 15))).asStringView()),
            text);
  EXPECT_TRUE(gzipUnpackedData(Data::withString(zlibCompress(text, -15))).isNil());
  const std::string gz = zlibCompress(text, 31);
  EXPECT_TRUE(gzipUnpackedData(Data::withString(gz.substr(0, gz.size() - 10))).isNil());
  EXPECT_TRUE(gzipUnpackedData(Data::withString("definitely not gzip")).isNil());
  EXPECT_TRUE(gzipUnpackedData(Data::withString("\x1F")).isNil());
  std::string corrupt = gz;
  corrupt[corrupt.size() / 2] ^= 0x55;
  EXPECT_TRUE(gzipUnpackedData(Data::withString(corrupt)).isNil());
  // Whatever follows the first stream is ignored.
  EXPECT_EQ(std::string(gzipUnpackedData(Data::withString(gz + "trailing")).asStringView()), text);
}

std::string withTrailerByte(std::string member, std::size_t fromEnd, char change) {
  member[member.size() - fromEnd] ^= change;
  return member;
}

// A header checksum (FHCRC): the low 16 bits of the CRC-32 of the header before it.
std::string withHeaderChecksum(const std::string& member, bool correct) {
  std::string header = member.substr(0, 10);
  header[3] |= 0x02;
  uLong crc = crc32(0, reinterpret_cast<const Bytef*>(header.data()), 10);
  if (!correct) crc ^= 1;
  return header + static_cast<char>(crc & 0xFF) + static_cast<char>((crc >> 8) & 0xFF) +
         member.substr(10);
}

// The size a trailer states only sizes the output buffer; it never changes the result.
TEST(Gzip, TrailersAndFollowingMembersDoNotChangeTheResult) {
  const std::string text = sampleText(70000), other = sampleText(100);
  const std::string gz = zlibCompress(text, 31), small = zlibCompress(other, 31);
  const std::string bigger = zlibCompress(sampleText(200000), 31);
  struct Case {
    const char* what;
    std::string input;
    std::optional<std::string> expected;  // none: nil
  };
  const Case cases[] = {
      {"one member", gz, text},
      {"a smaller member follows", gz + small, text},
      {"a larger member follows", gz + bigger, text},
      {"trailing bytes", gz + "xyz", text},
      {"empty member", zlibCompress("", 31), ""},
      {"length one too large", withTrailerByte(gz, 4, 0x01), std::nullopt},
      {"length one too small", withTrailerByte(gz, 4, 0x02), std::nullopt},
      {"CRC damaged", withTrailerByte(gz, 8, 0x10), std::nullopt},
      {"length beyond deflate's reach", withTrailerByte(gz, 1, 0x7F), std::nullopt},
      {"right header checksum", withHeaderChecksum(gz, true), text},
      {"wrong header checksum", withHeaderChecksum(gz, false), std::nullopt},
      {"trailer cut", gz.substr(0, gz.size() - 1), std::nullopt},
      {"zlib wrapper", zlibCompress(text, 15), text},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const Data input = Data::withString(c.input);
    const Data ours = gzipUnpackedData(input);
    ASSERT_EQ(ours.isNil(), !c.expected.has_value());
    if (c.expected) {
      EXPECT_EQ(std::string(ours.asStringView()), *c.expected);
    }
  }
}

TEST(Gzip, TheErrorFormSaysWhy) {
  const std::string gz = zlibCompress(sampleText(5000), 31);
  Error error;
  EXPECT_FALSE(gzipUnpackedData(Data::withString(gz), &error).isNil());
  EXPECT_TRUE(error.isNil()) << "no error on success";
  EXPECT_TRUE(gzipUnpackedData(Data::withString("definitely not gzip"), &error).isNil());
  EXPECT_EQ(error.code(), 259);
  EXPECT_EQ(error.localizedFailureReason().utf8(), "zlib: incorrect header check");
  EXPECT_TRUE(gzipUnpackedData(Data::withString(gz.substr(0, gz.size() / 2)), &error).isNil());
  EXPECT_EQ(error.localizedFailureReason().utf8(),
            "The stream ends before its end: the data is cut short.");
  EXPECT_EQ(error.localizedDescription().utf8(),
            "The data couldn’t be unpacked because it isn’t a complete gzip or zlib stream.");
  // The specified form gives the same results.
  EXPECT_TRUE(gzipUnpackedData(Data::withString(gz.substr(0, 100))).isNil());
}

TEST(Gzip, InteroperatesWithTheGzipTool) {
  if (!testing::toolAvailable("gzip")) GTEST_SKIP() << "gzip is not installed";
  testing::TempDir dir;
  const std::string text = sampleText(100000);
  writeFile(dir.path() / "ours.gz", gzipPackedData(Data::withString(text)).asStringView());
  ASSERT_TRUE(run("gzip -dc " + (dir.path() / "ours.gz").string() + " > " +
                  (dir.path() / "ours").string()));
  EXPECT_EQ(readFile(dir.path() / "ours"), text);
  writeFile(dir.path() / "theirs", text);
  ASSERT_TRUE(run("gzip -9 -c " + (dir.path() / "theirs").string() + " > " +
                  (dir.path() / "theirs.gz").string()));
  EXPECT_EQ(
      std::string(
          gzipUnpackedData(Data::withString(readFile(dir.path() / "theirs.gz"))).asStringView()),
      text);
}

// ---- Streamed forms ----

std::string noise(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random());
  return bytes;
}

// The streamed forms feed zlib 256 KiB at a time (and whatever a pipe hands over), the
// whole-buffer form everything at once: the bytes must be the same.
TEST(GzipStreams, PackToTheBytesOfTheWholeBufferFormAndBack) {
  testing::TempDir dir;
  const std::size_t block = 256 * 1024;
  const std::string inputs[] = {"",
                                "a",
                                sampleText(block - 1),
                                sampleText(block),
                                sampleText(block + 1),
                                sampleText(3 * block + 77),
                                noise(block * 2 + 5, 3),
                                sampleText(block) + noise(block / 2, 4) + std::string(block, 'x')};
  for (const std::string& text : inputs) {
    SCOPED_TRACE(text.size());
    const std::string expected(gzipPackedData(Data::withString(text)).asStringView());
    std::istringstream in(text);
    std::ostringstream out;
    ASSERT_TRUE(gzipPackStream(in, out));
    EXPECT_EQ(out.str(), expected);
    std::istringstream packed(out.str());
    std::ostringstream back;
    ASSERT_TRUE(gzipUnpackStream(packed, back));
    EXPECT_EQ(back.str(), text);

    writeFile(dir.path() / "clip.txt", text);
    Error error;
    ASSERT_TRUE(gzipPackFileAtPath(testing::str(dir.path() / "clip.txt"),
                                   testing::str(dir.path() / "clip.txt.gz"), &error))
        << error.localizedDescription().utf8();
    EXPECT_EQ(readFile(dir.path() / "clip.txt.gz"), expected);
    ASSERT_TRUE(gzipUnpackFileAtPath(testing::str(dir.path() / "clip.txt.gz"),
                                     testing::str(dir.path() / "back.txt"), &error));
    EXPECT_EQ(readFile(dir.path() / "back.txt"), text);
  }
}

TEST(GzipStreams, ReadFromAPipeInUnevenPieces) {
  testing::TempDir dir;
  const auto fifo = dir.path() / "feed";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const std::string text = sampleText(1 << 20) + noise(300000, 9);
  std::thread writer([&] {
    std::ofstream out(fifo, std::ios::binary);
    std::mt19937 random(5);
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t piece = std::min<std::size_t>(1 + random() % 70000, text.size() - at);
      out.write(text.data() + at, static_cast<std::streamsize>(piece)).flush();
      at += piece;
    }
  });
  Error error;
  const bool packed =
      gzipPackFileAtPath(testing::str(fifo), testing::str(dir.path() / "feed.gz"), &error);
  writer.join();
  ASSERT_TRUE(packed) << error.localizedDescription().utf8();
  EXPECT_EQ(readFile(dir.path() / "feed.gz"),
            gzipPackedData(Data::withString(text)).asStringView());
}

TEST(GzipStreams, WorkWithTheGzipTool) {
  if (!testing::toolAvailable("gzip")) GTEST_SKIP() << "gzip is not installed";
  testing::TempDir dir;
  const std::string text = sampleText(2 << 20);
  writeFile(dir.path() / "report.xml", text);
  ASSERT_TRUE(gzipPackFileAtPath(testing::str(dir.path() / "report.xml"),
                                 testing::str(dir.path() / "ours.gz")));
  ASSERT_TRUE(run("gzip -t " + (dir.path() / "ours.gz").string()));
  // Two members, as `cat a.gz b.gz` makes: like the whole-buffer form, only the first counts.
  ASSERT_TRUE(run("cd " + dir.path().string() +
                  " && gzip -c report.xml > theirs.gz && echo more | gzip -c >> theirs.gz"));
  ASSERT_TRUE(gzipUnpackFileAtPath(testing::str(dir.path() / "theirs.gz"),
                                   testing::str(dir.path() / "theirs")));
  EXPECT_EQ(readFile(dir.path() / "theirs"), text);
}

TEST(GzipStreams, AFailureNamesTheFileAndLeavesTheTargetAsItWas) {
  testing::TempDir dir;
  const std::string gz(gzipPackedData(Data::withString(sampleText(600000))).asStringView());
  writeFile(dir.path() / "cut.gz", gz.substr(0, gz.size() - 9));
  writeFile(dir.path() / "bad.gz", "definitely not gzip");
  writeFile(dir.path() / "target", "the old contents");
  const String target = testing::str(dir.path() / "target");
  Error error;
  EXPECT_FALSE(gzipUnpackFileAtPath(testing::str(dir.path() / "cut.gz"), target, &error));
  EXPECT_EQ(error.code(), 259);
  EXPECT_EQ(error.localizedFailureReason().utf8(),
            "The stream ends before its end: the data is cut short.");
  EXPECT_EQ(error.userInfo().objectForKey(NSFilePathErrorKey).asString(),
            testing::str(dir.path() / "cut.gz"));
  EXPECT_FALSE(gzipUnpackFileAtPath(testing::str(dir.path() / "bad.gz"), target, &error));
  EXPECT_EQ(error.localizedFailureReason().utf8(), "zlib: incorrect header check");
  EXPECT_FALSE(gzipPackFileAtPath(testing::str(dir.path() / "none"), target, &error));
  EXPECT_EQ(error.code(), 260);

  // The disk fills up on the second block written, and then the rename fails.
  writeFile(dir.path() / "clip.mov", noise(1 << 20, 1));
  testing::FailingFileManager fm;
  fm.failCall(testing::FailingFileManager::Step::WriteBytes, 2, ENOSPC);
  EXPECT_FALSE(gzipPackFileAtPath(testing::str(dir.path() / "clip.mov"), target, &error, fm));
  EXPECT_EQ(error.code(), 640);
  fm.failCall(testing::FailingFileManager::Step::Rename, 1, EIO);
  EXPECT_FALSE(gzipPackFileAtPath(testing::str(dir.path() / "clip.mov"), target, &error, fm));

  EXPECT_EQ(readFile(dir.path() / "target"), "the old contents");
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path()))
    ++files;
  EXPECT_EQ(files, 4u) << "no temporary file is left behind";
}

TEST(GzipStreams, AStreamThatFailsIsReported) {
  std::istringstream in(sampleText(1000));
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  Error error;
  EXPECT_FALSE(gzipPackStream(in, out, &error));
  EXPECT_EQ(error.code(), 512);
  std::istringstream damaged(std::string("\x1F\x8B\x08\x00") + noise(100, 2));
  std::ostringstream sink;
  EXPECT_FALSE(gzipUnpackStream(damaged, sink, &error));
  EXPECT_EQ(error.code(), 259);
}

}  // namespace
}  // namespace tarnvik
