#include "tarnvik/codec/aes.hpp"

#include <gtest/gtest.h>

#include "support/temp_dir.hpp"
#include "support/tools.hpp"
#include "tarnvik/codec/hex.hpp"

namespace tarnvik {
namespace {

using testing::readFile;
using testing::run;
using testing::writeFile;

Data bytes(std::string_view b) { return Data::withString(b); }

TEST(AES256, RoundTripsAndPadsToTheNextBlock) {
  const Data sixteen = bytes("0123456789abcdef");
  const Data sealed = AES256EncryptWithKey(sixteen, u"key");
  EXPECT_EQ(sealed.length(), 32u);
  EXPECT_EQ(AES256DecryptWithKey(sealed, u"key"), sixteen);
  EXPECT_EQ(AES256EncryptWithKey(bytes("x"), u"k").length(), 16u);
  EXPECT_EQ(AES256EncryptWithKey(Data::data(), u"k").length(), 16u);
  EXPECT_EQ(AES256DecryptWithKey(AES256EncryptWithKey(Data::data(), u"k"), u"k"), Data::data());
}

TEST(AES256, KeysAreTheFirst32BytesPaddedWithZeros) {
  const Data plain = bytes("clip metadata");
  const String longKey = u"0123456789abcdef0123456789abcdefTAIL";
  const String sameStart = u"0123456789abcdef0123456789abcdefOTHER";
  EXPECT_EQ(AES256EncryptWithKey(plain, longKey), AES256EncryptWithKey(plain, sameStart));
  const std::string padded("abc\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 32);
  EXPECT_EQ(AES256EncryptWithKey(plain, u"abc"),
            AES256EncryptWithKey(plain, String::fromUTF8Lossy(padded)));
  EXPECT_EQ(AES256EncryptWithKey(plain, String()), AES256EncryptWithKey(plain, u""));
  EXPECT_NE(AES256EncryptWithKey(plain, u"abc"), AES256EncryptWithKey(plain, u"abd"));
}

TEST(AES256, BadCiphertextsGiveNil) {
  const Data sealed = AES256EncryptWithKey(bytes("a secret of some length"), u"right");
  const Data wrong = AES256DecryptWithKey(sealed, u"wrong");
  // A wrong key is caught by the padding check, except in the rare case it looks valid.
  EXPECT_TRUE(wrong.isNil() || wrong != bytes("a secret of some length"));
  EXPECT_TRUE(AES256DecryptWithKey(sealed.subdataWithRange({0, 17}), u"right").isNil());
  EXPECT_TRUE(AES256DecryptWithKey(Data::data(), u"right").isNil());
  EXPECT_TRUE(AES256DecryptWithKey(Data::withLength(15), u"right").isNil());
}

TEST(AES256, DecryptsFilesToText) {
  testing::TempDir dir;
  const auto file = dir.path() / "notes.bin";
  const Data sealed = AES256EncryptWithKey(bytes("Grüße från Tärnvik"), u"pw");
  writeFile(file, sealed.asStringView());
  EXPECT_EQ(AES256DecryptedStringFromFile(String(file.string()), u"pw").utf8(),
            "Grüße från Tärnvik");
  EXPECT_TRUE(AES256DecryptedStringFromFile(u"/no/such/file", u"pw").isNil());
  writeFile(file, AES256EncryptWithKey(bytes("\xFF\xFE"), u"pw").asStringView());
  EXPECT_TRUE(AES256DecryptedStringFromFile(String(file.string()), u"pw").isNil());  // not UTF-8
}

TEST(AES256, MatchesTheOpenSSLTool) {
  if (!testing::toolAvailable("openssl")) GTEST_SKIP() << "openssl is not installed";
  testing::TempDir dir;
  std::string plain;
  for (int i = 0; i < 1000; ++i) plain += static_cast<char>(i * 7);
  writeFile(dir.path() / "plain", plain);
  const String key = u"media-key";
  const std::string keyHex =
      hexstringWithBytes(bytes(std::string("media-key") + std::string(23, '\0'))).utf8();
  const std::string iv = std::string(32, '0');
  const std::string base = "openssl enc -aes-256-cbc -K " + keyHex + " -iv " + iv;
  ASSERT_TRUE(run(base + " -in " + (dir.path() / "plain").string() + " -out " +
                  (dir.path() / "theirs").string()));
  const Data ours = AES256EncryptWithKey(bytes(plain), key);
  EXPECT_EQ(std::string(ours.asStringView()), readFile(dir.path() / "theirs"));
  writeFile(dir.path() / "ours", ours.asStringView());
  ASSERT_TRUE(run(base + " -d -in " + (dir.path() / "ours").string() + " -out " +
                  (dir.path() / "back").string()));
  EXPECT_EQ(readFile(dir.path() / "back"), plain);
}

}  // namespace
}  // namespace tarnvik
