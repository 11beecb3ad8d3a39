// Colours: red, green, blue and alpha from 0 to 1, with hue, saturation and brightness as
// another view of the same colour. The calibrated and the generic RGB space are one space
// here. Constructors keep every component within 0 to 1.
//
//   Color orange = Color::colorWithCalibratedRed(1, 0.647, 0, 1);
//   orange.hueComponent();  // 0.1078...
#pragma once

#include <optional>

#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

class Color {
 public:
  static Color colorWithCalibratedRed(double red, double green, double blue, double alpha);
  static Color colorWithRed(double red, double green, double blue, double alpha) {
    return colorWithCalibratedRed(red, green, blue, alpha);
  }
  static Color colorWithCalibratedHue(double hue, double saturation, double brightness,
                                      double alpha);
  // A colour without RGB components (a pattern image, say): converting it gives nothing.
  static Color patternColor();

  // This colour in RGB; nullopt for a pattern colour.
  std::optional<Color> colorUsingCalibratedRGBColorSpace() const;
  std::optional<Color> colorUsingGenericRGBColorSpace() const {
    return colorUsingCalibratedRGBColorSpace();
  }

  double redComponent() const { return red_; }
  double greenComponent() const { return green_; }
  double blueComponent() const { return blue_; }
  double alphaComponent() const { return alpha_; }
  // From 0 (red) round to just below 1; 0 for greys.
  double hueComponent() const;
  double saturationComponent() const;
  double brightnessComponent() const;

  friend bool operator==(const Color&, const Color&) = default;

 private:
  double red_ = 0, green_ = 0, blue_ = 0, alpha_ = 1;
  bool pattern_ = false;
};

}  // namespace tarnvik
