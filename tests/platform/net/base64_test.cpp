#include "tarnvik/platform/net/base64.hpp"

#include <gtest/gtest.h>

namespace tarnvik {
namespace {

TEST(Base64, TestVectorsAndTolerantDecoding) {
  const std::pair<const char*, const char*> vectors[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"}};
  for (const auto& [plain, encoded] : vectors) {
    const std::string_view bytes(plain);
    EXPECT_EQ(base64EncodedStringFromBytes(
                  std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()))
                  .utf8(),
              encoded);
    EXPECT_EQ(base64DecodedDataTolerant(encoded).asStringView(), plain);
  }
  EXPECT_EQ(base64DecodedDataTolerant("Zm9v\nYm Fy").asStringView(), "foobar");
  EXPECT_EQ(base64DecodedDataTolerant("Zm9vYg").asStringView(), "foob");  // no padding
  EXPECT_EQ(base64DecodedDataTolerant("Zm9vY").asStringView(), "foo");    // a lone last character
  EXPECT_EQ(base64DecodedDataTolerant("\xDAm9v").asStringView(), "foo");  // 0xDA mod 128 is 'Z'
}

TEST(Base64, PaddingInsideAndJunkAroundAreSkipped) {
  // "=" does not end a group: the four letters "ZgZg" make three bytes.
  EXPECT_EQ(base64DecodedDataTolerant("Zg==Zg==").asStringView(), std::string_view("f\x06`", 3));
  EXPECT_EQ(base64DecodedDataTolerant("=*= Zm8 ==").asStringView(), "fo");
  EXPECT_TRUE(base64DecodedDataTolerant("").isEmpty());
  EXPECT_TRUE(base64DecodedDataTolerant("Z").isEmpty());
  EXPECT_EQ(base64EncodedStringFromBytes({}).utf8(), "");
}

}  // namespace
}  // namespace tarnvik
