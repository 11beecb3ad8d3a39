#include "tarnvik/ui/colors.hpp"

#include <algorithm>
#include <cmath>

#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/text/number_forms.hpp"
#include "tarnvik/text/regex_matches.hpp"

namespace tarnvik {
namespace {

// The largest single-precision value below 256: 1.0 gives 255, anything below 1 less.
constexpr double kByteScale = 255.99998474121094;

Color generic(const Color& color) { return color.colorUsingGenericRGBColorSpace().value_or(color); }

}  // namespace

String hexadecimalValue(const Color& color) {
  const auto rgb = color.colorUsingCalibratedRGBColorSpace();
  if (!rgb) return String();
  const auto byte = [](double component) {
    return stringWithFormat(u"%02x",
                            static_cast<unsigned>(static_cast<int>(component * kByteScale)));
  };
  return stringWithFormat(u"#%@%@%@", byte(rgb->redComponent()), byte(rgb->greenComponent()),
                          byte(rgb->blueComponent()));
}

std::optional<Color> colorFromHexadecimal(const String& text) {
  if (text.isNil()) return std::nullopt;
  static const RegularExpression pattern = RegularExpression::regularExpressionWithPattern(
      u"^#([0-9a-fA-F]{2})([0-9a-fA-F]{2})([0-9a-fA-F]{2})([0-9a-fA-F]{2})?$", 0, nullptr);
  const TextCheckingResult match = firstMatchInString(pattern, text);
  if (!didMatch(match)) return std::nullopt;
  const auto component = [&](UInteger group) {
    return static_cast<float>(
               integerValueOfHexString(substringOfMatchedString(match, text, group))) /
           255.0;
  };
  // The alpha digits are read as a decimal number: that is how stored colours have always
  // been read back.
  const double alpha =
      didMatch(match, 4)
          ? static_cast<double>(substringOfMatchedString(match, text, 4).integerValue()) / 255.0
          : 1.0;
  return Color::colorWithCalibratedRed(component(1), component(2), component(3), alpha);
}

String rgbStringValue(const Color& color) {
  const auto rgb = color.colorUsingCalibratedRGBColorSpace();
  if (!rgb) return String();
  return stringWithFormat(u"%.3f, %.3f , %.3f, %.3f", rgb->redComponent(), rgb->greenComponent(),
                          rgb->blueComponent(), rgb->alphaComponent());
}

std::optional<Color> colorFromRGBString(const String& text) {
  if (text.isNil()) return std::nullopt;
  const Array pieces = text.componentsSeparatedByString(u",");
  if (pieces.count() != 4) return std::nullopt;
  const auto number = [&](UInteger i) { return pieces.objectAtIndex(i).asString().floatValue(); };
  return Color::colorWithCalibratedRed(number(0), number(1), number(2), number(3));
}

Color colorByBlendingWithColor(const Color& color, const Color& other, double fraction) {
  const double f = std::clamp(fraction, 0.0, 1.0);
  const Color a = generic(color), b = generic(other);
  const auto mix = [f](double mine, double theirs) { return theirs * f + mine * (1 - f); };
  return Color::colorWithRed(
      mix(a.redComponent(), b.redComponent()), mix(a.greenComponent(), b.greenComponent()),
      mix(a.blueComponent(), b.blueComponent()), mix(a.alphaComponent(), b.alphaComponent()));
}

Color colorByChangingBrightness(const Color& color, double delta) {
  const Color c = generic(color);
  return Color::colorWithCalibratedHue(c.hueComponent(), c.saturationComponent(),
                                       c.brightnessComponent() + delta, 1.0);
}

Color colorByChangingSaturation(const Color& color, double delta) {
  const Color c = generic(color);
  return Color::colorWithCalibratedHue(c.hueComponent(), c.saturationComponent() + delta,
                                       c.brightnessComponent(), 1.0);
}

Color colorByChangingHue(const Color& color, double delta) {
  const Color c = generic(color);
  float whole = 0;
  const float hue = std::modf(static_cast<float>(c.hueComponent() + delta), &whole);
  return Color::colorWithCalibratedHue(hue, c.saturationComponent(), c.brightnessComponent(), 1.0);
}

Color colorBySettingAlpha(const Color& color, double alpha) {
  const Color c = generic(color);
  return Color::colorWithCalibratedRed(c.redComponent(), c.greenComponent(), c.blueComponent(),
                                       alpha);
}

}  // namespace tarnvik
