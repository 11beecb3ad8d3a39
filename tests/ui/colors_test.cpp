#include "tarnvik/ui/colors.hpp"

#include <gtest/gtest.h>

namespace tarnvik {
namespace {

Color rgb(double r, double g, double b, double a = 1) {
  return Color::colorWithCalibratedRed(r, g, b, a);
}

TEST(ColorsTest, HexadecimalForm) {
  EXPECT_EQ(hexadecimalValue(rgb(1, 1, 1)).utf8(), "#ffffff");
  EXPECT_EQ(hexadecimalValue(rgb(0.5, 0, 0.999, 0.2)).utf8(), "#7f00ff");  // no alpha written
  EXPECT_TRUE(hexadecimalValue(Color::patternColor()).isNil());

  const auto upper = colorFromHexadecimal(u"#FFA500");
  const auto lower = colorFromHexadecimal(u"#ffa500");
  ASSERT_TRUE(upper && lower);
  EXPECT_EQ(*upper, *lower);
  EXPECT_DOUBLE_EQ(upper->greenComponent(), static_cast<double>(165.0f) / 255.0);
  EXPECT_EQ(upper->alphaComponent(), 1.0);
  EXPECT_EQ(hexadecimalValue(*upper).utf8(), "#ffa500");
  for (const char16_t* bad : {u"FFA500", u"#FFA50", u"#FFA500F", u"#FFA500 ", u"#GGA500", u""})
    EXPECT_FALSE(colorFromHexadecimal(bad)) << String(bad).utf8();
  EXPECT_FALSE(colorFromHexadecimal(String()));
  // The alpha digits are read as a decimal number.
  EXPECT_DOUBLE_EQ(colorFromHexadecimal(u"#00000050")->alphaComponent(), 50 / 255.0);
  EXPECT_DOUBLE_EQ(colorFromHexadecimal(u"#ff000080")->alphaComponent(), 80 / 255.0);
  EXPECT_EQ(colorFromHexadecimal(u"#ff0000ff")->alphaComponent(), 0);
}

TEST(ColorsTest, RGBFormRoundTrips) {
  EXPECT_EQ(rgbStringValue(rgb(1, 0, 0)).utf8(), "1.000, 0.000 , 0.000, 1.000");
  const Color c = rgb(0.1234, 0.5, 0.98765, 0.25);
  const auto back = colorFromRGBString(rgbStringValue(c));
  ASSERT_TRUE(back);
  EXPECT_EQ(rgbStringValue(*back), rgbStringValue(c));
  EXPECT_NEAR(back->blueComponent(), 0.988, 1e-6);
  EXPECT_FALSE(colorFromRGBString(u"1,0,0"));
  EXPECT_FALSE(colorFromRGBString(u"1,0,0,1,1"));
  EXPECT_EQ(*colorFromRGBString(u" 0.5x, junk, 2, -1"), rgb(0.5, 0, 1, 0));  // limited
  EXPECT_TRUE(rgbStringValue(Color::patternColor()).isNil());
}

TEST(ColorsTest, Derivations) {
  const Color red = rgb(1, 0, 0, 0.5);
  const Color blue = rgb(0, 0, 1, 1);
  EXPECT_EQ(colorByBlendingWithColor(red, blue, 0), red);
  EXPECT_EQ(colorByBlendingWithColor(red, blue, 7), blue);  // the fraction is clamped
  const Color mid = colorByBlendingWithColor(red, blue, 0.25);
  EXPECT_DOUBLE_EQ(mid.redComponent(), 0.75);
  EXPECT_DOUBLE_EQ(mid.alphaComponent(), 0.625);

  const Color darker = colorByChangingBrightness(red, -0.5);
  EXPECT_EQ(darker.alphaComponent(), 1.0);  // opaque, whatever the receiver's alpha
  EXPECT_DOUBLE_EQ(darker.redComponent(), 0.5);
  EXPECT_DOUBLE_EQ(colorByChangingSaturation(red, -1).greenComponent(), 1.0);  // grey (white)
  const Color orange = rgb(1, 0.5, 0);                                         // hue 1/12
  EXPECT_NEAR(colorByChangingHue(orange, 1.0 / 3).hueComponent(), 5.0 / 12, 1e-6);
  EXPECT_NEAR(colorByChangingHue(rgb(1, 0, 0.6), 0.2).hueComponent(), 0.1, 1e-6);  // 0.9 + 0.2
  EXPECT_EQ(colorByChangingHue(orange, -0.3).hueComponent(), 0);  // -0.217 is limited to 0
  EXPECT_EQ(colorBySettingAlpha(red, 0.8), rgb(1, 0, 0, 0.8));
}

}  // namespace
}  // namespace tarnvik
