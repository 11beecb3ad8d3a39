#include "tarnvik/platform/text/format.hpp"

#include <gtest/gtest.h>

#include <climits>

#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

std::string fmt(const String& format, const auto&... args) {
  return stringWithFormat(format, args...).utf8();
}

TEST(FormatEngine, WrittenWidthsAndPrecisionsAreCappedLikeStarredOnes) {
  EXPECT_EQ(stringWithFormat(u"%2147483647d", 7).length(), 100000u);
  EXPECT_EQ(stringWithFormat(u"%99999999999999999999d", 7).length(), 100000u);
  EXPECT_EQ(stringWithFormat(u"%.300000000d", 7).length(), 100000u);
  EXPECT_EQ(stringWithFormat(u"%*d", INT_MAX, 7).length(), 100000u);
  EXPECT_EQ(stringWithFormat(u"%100000s|", "x").length(), 100001u);
  EXPECT_EQ(stringWithFormat(u"%.3s", "abcdef").utf8(), "abc");
}

TEST(FormatEngine, PlainDReadsA32BitSignedInteger) {
  EXPECT_EQ(fmt(u"%d", std::int64_t{5000000000}), "705032704");
  EXPECT_EQ(fmt(u"%d", std::int64_t{0xFFFFFFFF}), "-1");
  EXPECT_EQ(fmt(u"%i", INT64_MIN), "0");
  EXPECT_EQ(fmt(u"%u", -1), "4294967295");
  EXPECT_EQ(fmt(u"%x", std::uint64_t{0x1234567890}), "34567890");
}

TEST(FormatEngine, LengthModifiersChooseTheWidth) {
  EXPECT_EQ(fmt(u"%ld", std::int64_t{5000000000}), "5000000000");
  EXPECT_EQ(fmt(u"%lld|%qi|%zd|%jd", INT64_MIN, INT64_MAX, -3L, 7L),
            "-9223372036854775808|9223372036854775807|-3|7");
  EXPECT_EQ(fmt(u"%lu", UINT64_MAX), "18446744073709551615");
  EXPECT_EQ(fmt(u"%hd %hu", 70000, -1), "4464 65535");
  EXPECT_EQ(fmt(u"%hhd %hhu", 300, 255 + 256), "44 255");
}

TEST(FormatEngine, FlagsWidthAndPrecisionOnIntegers) {
  EXPECT_EQ(fmt(u"[%5d][%-5d][%05d][%+d][% d][%.3d]", 42, 42, 42, 42, 42, 7),
            "[   42][42   ][00042][+42][ 42][007]");
  EXPECT_EQ(fmt(u"%x %X %o %#x %#o", 255, 255, 8, 255, 8), "ff FF 10 0xff 010");
  EXPECT_EQ(fmt(u"[%*d][%-*d][%.*d]", 4, 7, 3, 7, 2, 7), "[   7][7  ][07]");
  EXPECT_EQ(fmt(u"[%*d]", -4, 7), "[7   ]");
}

TEST(FormatEngine, FloatingConversions) {
  EXPECT_EQ(fmt(u"%f", 3.14159), "3.141590");
  EXPECT_EQ(fmt(u"%.2f|%8.3f|%-8.1f|", 3.14159, 2.5, 2.25), "3.14|   2.500|2.2     |");
  EXPECT_EQ(fmt(u"%e %E", 12345.678, 0.00012), "1.234568e+04 1.200000E-04");
  EXPECT_EQ(fmt(u"%g %G %g", 0.0001, 1e20, 100.0), "0.0001 1E+20 100");
  EXPECT_EQ(fmt(u"%05.1f%%", 42.25), "042.2%");
  EXPECT_EQ(fmt(u"%f", 2), "2.000000");  // an integer argument is converted, never reinterpreted
}

TEST(FormatEngine, ObjectDirectivePrintsDescriptions) {
  EXPECT_EQ(fmt(u"%@", Value()), "(null)");
  EXPECT_EQ(fmt(u"%@", String()), "(null)");
  EXPECT_EQ(fmt(u"%@", kNull), "<null>");
  EXPECT_EQ(fmt(u"%@ %@ %@", Value(true), Value(-12), Value(0.5)), "1 -12 0.5");
  EXPECT_EQ(fmt(u"%@", Value(UINT64_MAX)), "18446744073709551615");
  EXPECT_EQ(fmt(u"%@", u"Grüße"), "Grüße");
  EXPECT_EQ(fmt(u"%@", Array{1, u"a b", u"c"}), "(\n    1,\n    \"a b\",\n    c\n)");
  EXPECT_EQ(fmt(u"%@", Array()), "(null)");
  EXPECT_EQ(fmt(u"%@", Array::array()), "(\n)");
  EXPECT_EQ(fmt(u"%@", Dictionary{{u"k", Array{1}}}), "{\n    k =     (\n        1\n    );\n}");
  EXPECT_EQ(fmt(u"%@", Set{u"x"}), "{(\n    x\n)}");
  EXPECT_EQ(fmt(u"%@", Data::withString("\x01\x02\x03\x04\xff")), "<01020304 ff>");
  EXPECT_EQ(fmt(u"%@", Date{0}), "2001-01-01 00:00:00 +0000");
  EXPECT_EQ(fmt(u"%@", Array{u"é\n"}), "(\n    \"\\U00e9\\n\"\n)");
}

TEST(FormatEngine, WidthAndPrecisionOnText) {
  EXPECT_EQ(fmt(u"[%6@][%-6@][%.2@]", u"ab", u"ab", u"abcdef"), "[    ab][ab    ][ab]");
  EXPECT_EQ(fmt(u"[%s][%5s][%.1s]", "abc", "ab", "xyz"), "[abc][   ab][x]");
  EXPECT_EQ(fmt(u"%s", static_cast<const char*>(nullptr)), "(null)");
  EXPECT_EQ(fmt(u"%s", "Grüße"), "Grüße");
}

TEST(FormatEngine, CharactersAndPointers) {
  EXPECT_EQ(fmt(u"%c%c", 'A', 0x141), "AA");  // only the low byte of %c counts
  EXPECT_EQ(fmt(u"%c", 0xE9), "é");
  EXPECT_EQ(fmt(u"%C", 0x263A), "☺");
  EXPECT_EQ(fmt(u"%p", nullptr), "0x0");
  EXPECT_EQ(fmt(u"%p", reinterpret_cast<const void*>(0xbeef)), "0xbeef");
  EXPECT_EQ(fmt(u"100%%"), "100%");
}

TEST(FormatEngine, DirectivesWithoutArgumentsStayAsWritten) {
  EXPECT_EQ(fmt(u"%d and %@", 5), "5 and %@");
  EXPECT_EQ(fmt(u"clip%03d"), "clip%03d");
  EXPECT_EQ(fmt(u"%*d"), "%*d");
  EXPECT_EQ(fmt(u"50%"), "50%");
  EXPECT_EQ(fmt(u"%l"), "%l");
  EXPECT_EQ(fmt(u"%3$@", 1, 2), "%3$@");
  // An unknown conversion consumes no argument.
  EXPECT_EQ(fmt(u"%y %d", 5), "%y 5");
}

TEST(FormatEngine, PositionalArguments) {
  EXPECT_EQ(fmt(u"%2$@ %1$@", u"world", u"hello"), "hello world");
  EXPECT_EQ(fmt(u"%1$d-%1$d", 7), "7-7");
}

TEST(FormatEngine, MismatchedKindsAreConverted) {
  EXPECT_EQ(fmt(u"%d", Value(42)), "42");
  EXPECT_EQ(fmt(u"%d", u"17 clips"), "17");
  EXPECT_EQ(fmt(u"%@", 42), "42");
  EXPECT_EQ(fmt(u"%s", Value(u"text")), "text");
  EXPECT_EQ(fmt(u"%lu", Value(UINT64_MAX)), "18446744073709551615");
}

TEST(FormatEngine, RandomFormatsNeverReadPastTheArguments) {
  // Under the sanitizers this proves the parser stays inside the format and the arguments.
  // Without "p": a pointer differs from call to call.
  const std::u16string alphabet = u"%%%-+ #0123456789.*$hlqzjtLdiuxXocCs@fFeEgGaA!";
  std::uint32_t seed = 12345;
  auto next = [&] { return seed = seed * 1664525u + 1013904223u; };
  for (int round = 0; round < 3000; ++round) {
    std::u16string format;
    const std::uint32_t length = next() % 12;
    for (std::uint32_t i = 0; i < length; ++i) format.push_back(alphabet[next() % alphabet.size()]);
    const String once = stringWithFormat(String(format), 42, u"text", 2.5);
    EXPECT_EQ(once, stringWithFormat(String(format), 42, u"text", 2.5)) << String(format).utf8();
    EXPECT_FALSE(stringWithFormat(String(format)).isNil());
  }
}

TEST(FormatEngine, AppendFormatExtendsTheText) {
  String text = u"A";
  appendFormat(text, u"%03d", 7);
  EXPECT_EQ(text.utf8(), "A007");
  String nil;
  appendFormat(nil, u"");
  EXPECT_FALSE(nil.isNil());
}

}  // namespace
}  // namespace tarnvik
