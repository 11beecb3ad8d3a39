// The small value types shared by the whole platform layer: integers, Range,
// NSNotFound, comparison results and the search option bits.
//
//   Range r = MakeRange(2, 3);
//   NSMaxRange(r);  // 5
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>

namespace tarnvik {

using Integer = std::int64_t;
using UInteger = std::uint64_t;

// A missing location, the largest signed integer.
inline constexpr UInteger NSNotFound = static_cast<UInteger>(INT64_MAX);

// A location and a length, both counting UTF-16 units.
struct Range {
  UInteger location = 0;
  UInteger length = 0;
  constexpr UInteger end() const { return location + length; }
  friend constexpr bool operator==(Range, Range) = default;
};
constexpr Range MakeRange(UInteger location, UInteger length) { return {location, length}; }
constexpr UInteger NSMaxRange(Range range) { return range.location + range.length; }
// Whether the range lies within [0, length), without overflow for any location or length.
constexpr bool rangeFitsInLength(Range range, UInteger length) {
  return range.location <= length && range.length <= length - range.location;
}

// The double truncated toward zero into the integer type, saturating at the type's bounds;
// NaN gives 0. (A plain cast of a value the type cannot hold is undefined behaviour.)
template <std::integral T>
constexpr T saturatingCast(double value) {
  using Limits = std::numeric_limits<T>;
  // 2^digits, the first value past the largest: exact as a double for every integer type.
  constexpr double pastLargest = static_cast<double>(Limits::max() / 2 + 1) * 2.0;
  if (value != value) return 0;
  if (value >= pastLargest) return Limits::max();
  if (value <= static_cast<double>(Limits::min()) - (std::is_signed_v<T> ? 0.0 : 1.0)) {
    return Limits::min();
  }
  return static_cast<T>(value);
}

// The value of a hexadecimal digit (0-9, a-f, A-F) in any character type; -1 for others.
constexpr int hexDigitValue(char32_t c) {
  if (c >= U'0' && c <= U'9') return static_cast<int>(c - U'0');
  if (c >= U'a' && c <= U'f') return static_cast<int>(c - U'a' + 10);
  if (c >= U'A' && c <= U'F') return static_cast<int>(c - U'A' + 10);
  return -1;
}

enum ComparisonResult : Integer {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1,
};

// Option bits for searching and comparing.
enum StringCompareOptions : UInteger {
  NSCaseInsensitiveSearch = 1,
  NSLiteralSearch = 2,
  NSBackwardsSearch = 4,
  NSAnchoredSearch = 8,
  NSNumericSearch = 64,
  NSDiacriticInsensitiveSearch = 128,
  NSWidthInsensitiveSearch = 256,
  NSForcedOrderingSearch = 512,
};

}  // namespace tarnvik
