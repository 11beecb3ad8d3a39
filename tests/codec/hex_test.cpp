#include "tarnvik/codec/hex.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

Data bytes(std::string_view b) { return Data::withString(b); }

TEST(HexForms, HexAndAsciiStrings) {
  EXPECT_EQ(hexString(bytes(std::string_view("\x00\xAB", 2))).utf8(), "00 AB ");
  EXPECT_EQ(hexString(Data::data()).utf8(), "");
  EXPECT_EQ(asciiString(bytes("A\n\x7F\x80")).utf8(), "A.\x7F.");
  EXPECT_EQ(asciiString(bytes(std::string_view(" \x1F~\xFF", 4))).utf8(), " .~.");
  EXPECT_EQ(hexstringWithBytes(bytes("\x01\xEF")).utf8(), "01ef");
  EXPECT_EQ(hexstringWithBytes(nullptr, 0).utf8(), "");
}

TEST(HexForms, BlocksBreakLinesAtTheLength) {
  const Data four = bytes(std::string_view("\x00\x01\x02\x03", 4));
  EXPECT_EQ(hexBlockStringOfLength(four, 2).utf8(), "00 01 \n02 03 ");
  EXPECT_EQ(hexBlockStringOfLength(four, 3).utf8(), "00 01 02 \n03 ");
  EXPECT_EQ(hexBlockStringOfLength(four, 4).utf8(), "00 01 02 03 ");
}

TEST(HexForms, DumpLinesCarryOffsetHexAndText) {
  std::string twenty;
  for (int i = 0; i < 20; ++i) twenty.push_back(static_cast<char>('A' + i));
  const std::string dump = hexBlockWithASCIIStringOfLength(bytes(twenty), 16).utf8();
  EXPECT_EQ(dump,
            "0000: 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50  ABCDEFGHIJKLMNOP\n"
            "0016: 51 52 53 54  QRST\n");
  EXPECT_EQ(hexBlockWithASCIIStringOfLength(Data::data(), 16).utf8(), "");
  // An exact multiple has no short last line.
  EXPECT_EQ(hexBlockWithASCIIStringOfLength(bytes("abcd"), 2).utf8(),
            "0000: 61 62  ab\n0002: 63 64  cd\n");
  // Offsets grow past four digits.
  const Data big = Data::withLength(10001);
  const std::string tail = hexBlockWithASCIIStringOfLength(big, 10000).utf8();
  EXPECT_NE(tail.find("\n10000: 00  .\n"), std::string::npos);
}

TEST(HexForms, ZeroLengthIsACallerError) {
  EXPECT_EQ(testing::raised([] { hexBlockWithASCIIStringOfLength(bytes("x"), 0); }),
            "NSInternalInconsistencyException: Invalid parameter not satisfying: length > 0");
  EXPECT_THROW(hexBlockStringOfLength(bytes("x"), 0), Exception);
  EXPECT_EQ(hexBlockStringOfLength(Data::data(), 0).utf8(), "");
}

struct HexParse {
  const char16_t* text;
  std::string bytes;
};

void PrintTo(const HexParse& c, std::ostream* out) { *out << String(c.text).utf8(); }

class HexParsing : public ::testing::TestWithParam<HexParse> {};

TEST_P(HexParsing, ReadsPairsAsStrtolDoes) {
  const Data parsed = ke_dataFromHexString(GetParam().text);
  ASSERT_FALSE(parsed.isNil());
  EXPECT_EQ(std::string(parsed.asStringView()), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, HexParsing,
    ::testing::Values(HexParse{u"0aFF1", std::string("\x0A\xFF", 2)},
                      HexParse{u"zz", std::string(1, '\0')}, HexParse{u"", ""}, HexParse{u"f", ""},
                      HexParse{u" f-1", std::string("\x0F\xFF", 2)},  // blank and sign accepted
                      HexParse{u"0x", std::string(1, '\0')},
                      HexParse{u"a g", std::string("\x0A", 1)},  // stops at the bad digit
                      HexParse{u"\u0141\u0142", std::string("\xAB", 1)}));  // low 8 bits: "AB"

TEST(HexParsingNil, NilGivesNil) { EXPECT_TRUE(ke_dataFromHexString(String()).isNil()); }

TEST(HexParsingStrict, NamesTheFirstOffendingCharacter) {
  Error error;
  const Data bytes = ke_dataFromHexString(u"0aFF10", &error);
  ASSERT_FALSE(bytes.isNil());
  EXPECT_EQ(std::string(bytes.asStringView()), std::string("\x0A\xFF\x10", 3));
  EXPECT_TRUE(ke_dataFromHexString(u"", &error).isEmpty());
  EXPECT_TRUE(error.isNil());
  EXPECT_TRUE(ke_dataFromHexString(u"0az1", &error).isNil());
  EXPECT_EQ(error.localizedFailureReason().utf8(), "“z” at position 2 is not a hexadecimal digit.");
  EXPECT_TRUE(ke_dataFromHexString(u"0a\u00e91", &error).isNil());
  EXPECT_EQ(error.localizedFailureReason().utf8(), "“é” at position 2 is not a hexadecimal digit.");
  EXPECT_TRUE(ke_dataFromHexString(u"0a1", &error).isNil());
  EXPECT_EQ(error.localizedFailureReason().utf8(), "It has an odd number of digits (3).");
  EXPECT_TRUE(ke_dataFromHexString(String(), &error).isNil());
  // The specified reading of the same texts stays as it was.
  EXPECT_EQ(ke_dataFromHexString(u"0a1").length(), 1u);
  EXPECT_EQ(ke_dataFromHexString(u"0az1").length(), 2u);
}

TEST(NoCopySubdata, ViewsShareTheBytesAndCheckTheRange) {
  const Data data = bytes("0123456789");
  const Data tail = noCopySubdataWithRange(data, {7, 3});
  EXPECT_EQ(tail.asStringView(), "789");
  EXPECT_EQ(tail.bytes(), data.bytes() + 7);
  EXPECT_EQ(testing::raised([&] {
              noCopySubdataWithRange(data, {8, 3});
            }),
            "NSInternalInconsistencyException: given range for subdata is outside of available "
            "data");
  EXPECT_THROW(noCopySubdataWithRange(data, {NSNotFound, 2}), Exception);
}

}  // namespace
}  // namespace tarnvik
