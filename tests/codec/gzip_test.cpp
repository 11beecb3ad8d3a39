#include "tarnvik/codec/gzip.hpp"

#include <gtest/gtest.h>
#include <zlib.h>

#include <optional>
#include <random>

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

}  // namespace
}  // namespace tarnvik
