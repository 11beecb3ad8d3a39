// IndexSet: a sorted set of unsigned indexes (any 64-bit value), kept as ranges.
//
//   IndexSet s;  s.addIndex(3);  s.addIndexesInRange({5, 2});
//   s.count();   // 3
#pragma once

#include <vector>

#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

class IndexSet {
 public:
  IndexSet() = default;
  static IndexSet indexSetWithIndex(UInteger index);
  static IndexSet indexSetWithIndexesInRange(Range range);

  UInteger count() const;
  bool isEmpty() const { return ranges_.empty(); }
  bool containsIndex(UInteger index) const;
  // NSNotFound when empty.
  UInteger firstIndex() const;
  UInteger lastIndex() const;
  // The indexes in ascending order.
  std::vector<UInteger> indexes() const;
  const std::vector<Range>& ranges() const { return ranges_; }

  // A range whose last index would pass the largest 64-bit value, or that would leave the
  // set holding all 2^64 indexes, raises NSRangeException ("IndexSet::addIndexesInRange:
  // Range {loc, len} exceeds the largest index").
  void addIndex(UInteger index) { addIndexesInRange({index, 1}); }
  void addIndexesInRange(Range range);
  void removeIndex(UInteger index);
  void removeAllIndexes() { ranges_.clear(); }

  friend bool operator==(const IndexSet&, const IndexSet&) = default;

 private:
  std::vector<Range> ranges_;  // sorted, disjoint and not touching
};

using MutableIndexSet = IndexSet;

}  // namespace tarnvik
