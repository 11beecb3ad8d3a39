// The two text forms of a colour, "#rrggbb" and "r, g , b, a", with their readers, and the
// derivations: blending, brightness, saturation, hue and alpha.
//
//   hexadecimalValue(Color::colorWithCalibratedRed(1, 0.5, 0, 1));  // "#ff7f00"
//   colorFromHexadecimal(u"#FFA500");                               // orange, alpha 1
#pragma once

#include <optional>

#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/ui/color.hpp"

namespace tarnvik {

// Lower-case "#rrggbb" (no alpha); nil for a colour without RGB components.
String hexadecimalValue(const Color& color);
// "#" and six or eight hex digits, in either case; the two alpha digits are read as a decimal
// number (so "#ff000080" has alpha 80/255 and "#ff0000ff" alpha 0). nullopt otherwise.
std::optional<Color> colorFromHexadecimal(const String& text);
// "%.3f, %.3f , %.3f, %.3f" of red, green, blue and alpha; nil without RGB components.
String rgbStringValue(const Color& color);
// Four comma-separated numbers (red, green, blue, alpha); nullopt for any other count.
std::optional<Color> colorFromRGBString(const String& text);

// The other colour's share f (clamped to 0...1) and this one's 1 - f, component by component.
Color colorByBlendingWithColor(const Color& color, const Color& other, double fraction);
// The result is opaque, whatever the colour's alpha.
Color colorByChangingBrightness(const Color& color, double delta);
Color colorByChangingSaturation(const Color& color, double delta);
// The hue turns by the delta and keeps the fractional part (with its sign).
Color colorByChangingHue(const Color& color, double delta);
Color colorBySettingAlpha(const Color& color, double alpha);

}  // namespace tarnvik
