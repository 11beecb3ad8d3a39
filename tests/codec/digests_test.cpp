#include "tarnvik/codec/digests.hpp"

#include <gtest/gtest.h>

#include <set>

namespace tarnvik {
namespace {

// RFC 1321, appendix A.5.
TEST(Digests, MD5TestSuite) {
  const std::pair<const char*, const char*> suite[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"}};
  for (const auto& [input, expected] : suite) {
    EXPECT_EQ(md5NonCapitalLetters(input).utf8(), expected) << input;
    EXPECT_EQ(md5(String(input)), String(expected).uppercaseString()) << input;
    EXPECT_EQ(md5(Data::withString(input)), String(expected).uppercaseString()) << input;
  }
  EXPECT_EQ(md5BinaryForm(u"").length(), 16u);
}

// FIPS 180-1, appendix A and B.
TEST(Digests, SHA1Vectors) {
  EXPECT_EQ(SHA1Sum(u"abc").utf8(), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(SHA1Sum(u"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq").utf8(),
            "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
  EXPECT_EQ(sha1(Data::withString("abc")).utf8(), "A9993E364706816ABA3E25717850C26C9CD0D89D");
  EXPECT_EQ(sha1(Data::withString(std::string(1000000, 'a'))).utf8(),
            "34AA973CD4C4DAA4F61EEB2BDBAD27316534016F");
}

TEST(Digests, StringDigestsStopAtTheDocumentedBytes) {
  // "é" is one UTF-16 unit but two UTF-8 bytes: only the first byte is hashed.
  EXPECT_EQ(SHA1Sum(u"é"), sha1(Data::withString("\xC3")).lowercaseString());
  EXPECT_NE(SHA1Sum(u"é"), SHA1Sum(u"e"));
  // md5 reads the C string: an embedded NUL ends it.
  const char16_t withNul[] = {u'a', u'b', 0, u'c'};
  EXPECT_EQ(md5(String::withCharacters(withNul, 4)), md5(String(u"ab")));
}

TEST(Identifiers, RedcineGUIDWidensSignedBytes) {
  EXPECT_EQ(redcineGUID(u"ABCDEFGHIJKLMNOPQ").utf8(), "41424344-4546-4748-494A-4B4C4D4E4F50");
  EXPECT_EQ(redcineGUID(u"é123456789012345").utf8(),
            "FFFFFFC3FFFFFFA93132-3334-3536-3738-393031323334");
  EXPECT_EQ(redcineGUID(u"AB").utf8(), "41420000-0000-0000-0000-000000000000");
  // A NUL inside the first 16 bytes is one of them; only md5 stops at a NUL.
  const String withNul(std::u16string(u"abc\0defghijklmnopq", 18));
  EXPECT_EQ(redcineGUID(withNul).utf8(), "61626300-6465-6667-6869-6A6B6C6D6E6F");
  EXPECT_EQ(md5(withNul), md5(String(u"abc")));
  EXPECT_NE(SHA1Sum(withNul), SHA1Sum(String(u"abc")));
}

TEST(Identifiers, UUIDsAreRandomVersionFour) {
  std::set<std::string> seen;
  for (int i = 0; i < 64; ++i) {
    const std::string u = UUID().utf8();
    ASSERT_EQ(u.size(), 36u);
    for (std::size_t dash : {8u, 13u, 18u, 23u}) EXPECT_EQ(u[dash], '-');
    EXPECT_EQ(u[14], '4');
    EXPECT_NE(std::string("89AB").find(u[19]), std::string::npos);
    EXPECT_EQ(u.find_first_of("abcdef"), std::string::npos);
    seen.insert(u);
  }
  EXPECT_EQ(seen.size(), 64u);
}

}  // namespace
}  // namespace tarnvik
