#include "tarnvik/codec/gzip.hpp"

#include <gtest/gtest.h>
#include <zlib.h>

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
