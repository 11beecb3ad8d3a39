#include "tarnvik/platform/text/scanner.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

TEST(Scanner, SkipsWhitespaceAndMatchesCaselessByDefault) {
  Scanner s(u"  take 42 of 100");
  String word;
  long long n = 0;
  EXPECT_TRUE(s.scanString(u"TAKE", &word));
  EXPECT_EQ(word.utf8(), "take");
  EXPECT_TRUE(s.scanLongLong(&n));
  EXPECT_EQ(n, 42);
  EXPECT_FALSE(s.scanLongLong(&n));  // "of" is not a number, and nothing moves
  EXPECT_EQ(s.scanLocation(), 9u);
  EXPECT_TRUE(s.scanUpToCharactersFromSet(CharacterSet::decimalDigitCharacterSet(), &word));
  EXPECT_EQ(word.utf8(), "of ");
  int i = 0;
  EXPECT_TRUE(s.scanInt(&i));
  EXPECT_EQ(i, 100);
  EXPECT_TRUE(s.isAtEnd());
}

TEST(Scanner, CaseSensitivityCanBeTurnedOn) {
  Scanner s(u"Clip");
  s.setCaseSensitive(true);
  EXPECT_FALSE(s.scanString(u"clip"));
  EXPECT_TRUE(s.scanString(u"Clip"));
}

TEST(Scanner, UpToStringStopsBeforeTheTarget) {
  Scanner s(u"key = value");
  String key;
  EXPECT_TRUE(s.scanUpToString(u"=", &key));
  EXPECT_EQ(key.utf8(), "key ");
  EXPECT_FALSE(s.scanUpToString(u"="));  // already at the target
  EXPECT_TRUE(s.scanString(u"="));
  String rest;
  EXPECT_TRUE(s.scanUpToString(u"missing", &rest));
  EXPECT_EQ(rest.utf8(), "value");
  EXPECT_FALSE(s.scanUpToString(u"x"));
}

TEST(Scanner, NumbersSaturateAndNeedDigits) {
  long long n = 1;
  Scanner big(u"-99999999999999999999 +");
  EXPECT_TRUE(big.scanLongLong(&n));
  EXPECT_EQ(n, INT64_MIN);
  EXPECT_FALSE(big.scanLongLong(&n));
  EXPECT_EQ(n, INT64_MIN);  // untouched on failure
  Integer integer = 0;
  EXPECT_TRUE(Scanner(u"7").scanInteger(&integer));
  EXPECT_EQ(integer, 7);
  double d = 0;
  Scanner real(u" -2.5e3rest");
  EXPECT_TRUE(real.scanDouble(&d));
  EXPECT_DOUBLE_EQ(d, -2500);
  EXPECT_EQ(real.scanLocation(), 7u);
  EXPECT_FALSE(Scanner(u"e5").scanDouble(&d));
  unsigned long long hex = 0;
  EXPECT_TRUE(Scanner(u"0xFFz").scanHexLongLong(&hex));
  EXPECT_EQ(hex, 255u);
  EXPECT_TRUE(Scanner(u"ffffffffffffffffff").scanHexLongLong(&hex));
  EXPECT_EQ(hex, UINT64_MAX);
}

TEST(Scanner, WithoutASkipSetLeadingBlanksCount) {
  Scanner s(u" 5");
  s.setCharactersToBeSkipped(nullptr);
  EXPECT_FALSE(s.scanInteger());
  EXPECT_FALSE(s.isAtEnd());
  EXPECT_THROW(s.setScanLocation(3), Exception);
}

}  // namespace
}  // namespace tarnvik
