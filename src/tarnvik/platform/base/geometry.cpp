#include "tarnvik/platform/base/geometry.hpp"

#include "tarnvik/platform/base/internal/describe.hpp"
#include "tarnvik/platform/base/internal/unicode.hpp"

namespace tarnvik {

namespace {

String pair(double a, double b) {
  return String("{" + describe::shortestDouble(a) + ", " + describe::shortestDouble(b) + "}");
}

// The first two numbers, each found by skipping to the next sign, digit or point.
std::pair<double, double> twoNumbers(const String& text) {
  const auto units = text.units();
  double found[2] = {0, 0};
  std::size_t at = 0;
  for (double& value : found) {
    while (at < units.size()) {
      std::size_t end = 0;
      const double number = unicode::parseDouble(units, &end, at);
      if (end > at) {
        value = number;
        at = end;
        break;
      }
      ++at;
    }
  }
  return {found[0], found[1]};
}

}  // namespace

String NSStringFromSize(Size size) { return pair(size.width, size.height); }
String NSStringFromPoint(Point point) { return pair(point.x, point.y); }

Size NSSizeFromString(const String& text) {
  const auto [w, h] = twoNumbers(text);
  return {w, h};
}

Point NSPointFromString(const String& text) {
  const auto [x, y] = twoNumbers(text);
  return {x, y};
}

}  // namespace tarnvik
