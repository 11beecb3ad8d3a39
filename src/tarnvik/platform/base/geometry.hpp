// Size and Point with the platform's brace text forms ("{w, h}", "{x, y}"), which round-trip
// doubles exactly and read the forms stored by earlier versions.
//
//   NSStringFromSize({1920, 1080});      // "{1920, 1080}"
//   NSPointFromString(u"{0.5, -2}");     // {0.5, -2}
#pragma once

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

// "{<width>, <height>}" with the shortest decimal text that reads back to the same double.
String NSStringFromSize(Size size);
String NSStringFromPoint(Point point);
// The first two numbers in the text, whatever surrounds them ("{1, 2}", "{1,2}", "1 2");
// a missing number reads as 0.
Size NSSizeFromString(const String& text);
Point NSPointFromString(const String& text);

}  // namespace tarnvik
