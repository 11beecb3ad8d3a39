#include "tarnvik/platform/ui/color.hpp"

#include <algorithm>
#include <cmath>

namespace tarnvik {

namespace {
double limited(double v) { return std::isnan(v) ? 0 : std::clamp(v, 0.0, 1.0); }
}  // namespace

Color Color::colorWithCalibratedRed(double red, double green, double blue, double alpha) {
  Color c;
  c.red_ = limited(red);
  c.green_ = limited(green);
  c.blue_ = limited(blue);
  c.alpha_ = limited(alpha);
  return c;
}

Color Color::colorWithCalibratedHue(double hue, double saturation, double brightness,
                                    double alpha) {
  const double h = limited(hue), s = limited(saturation), v = limited(brightness);
  const double sector = h * 6 >= 6 ? 0 : h * 6;
  const int i = static_cast<int>(std::floor(sector));
  const double f = sector - i;
  const double p = v * (1 - s), q = v * (1 - s * f), t = v * (1 - s * (1 - f));
  switch (i) {
    case 0:
      return colorWithCalibratedRed(v, t, p, alpha);
    case 1:
      return colorWithCalibratedRed(q, v, p, alpha);
    case 2:
      return colorWithCalibratedRed(p, v, t, alpha);
    case 3:
      return colorWithCalibratedRed(p, q, v, alpha);
    case 4:
      return colorWithCalibratedRed(t, p, v, alpha);
    default:
      return colorWithCalibratedRed(v, p, q, alpha);
  }
}

Color Color::patternColor() {
  Color c;
  c.pattern_ = true;
  return c;
}

std::optional<Color> Color::colorUsingCalibratedRGBColorSpace() const {
  if (pattern_) return std::nullopt;
  return *this;
}

double Color::brightnessComponent() const { return std::max({red_, green_, blue_}); }

double Color::saturationComponent() const {
  const double max = brightnessComponent();
  const double min = std::min({red_, green_, blue_});
  return max == 0 ? 0 : (max - min) / max;
}

double Color::hueComponent() const {
  const double max = brightnessComponent();
  const double min = std::min({red_, green_, blue_});
  const double range = max - min;
  if (range == 0) return 0;
  double h;
  if (max == red_)
    h = (green_ - blue_) / range;
  else if (max == green_)
    h = 2 + (blue_ - red_) / range;
  else
    h = 4 + (red_ - green_) / range;
  h /= 6;
  if (h < 0) h += 1;
  return h;
}

}  // namespace tarnvik
