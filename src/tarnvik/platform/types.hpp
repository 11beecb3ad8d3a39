// The small value types shared by the whole platform layer: integers, Range,
// NSNotFound, comparison results and the search option bits.
//
//   Range r = MakeRange(2, 3);
//   NSMaxRange(r);  // 5
#pragma once

#include <cstdint>

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
