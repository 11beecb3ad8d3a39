#include "tarnvik/platform/base/index_set.hpp"

#include <algorithm>
#include <limits>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

IndexSet IndexSet::indexSetWithIndex(UInteger index) {
  IndexSet s;
  s.addIndex(index);
  return s;
}

IndexSet IndexSet::indexSetWithIndexesInRange(Range range) {
  IndexSet s;
  s.addIndexesInRange(range);
  return s;
}

UInteger IndexSet::count() const {
  UInteger n = 0;
  for (const Range& r : ranges_) n += r.length;
  return n;
}

namespace {

// The last index of a non-empty range; unlike end(), it cannot overflow.
UInteger lastOf(const Range& r) { return r.location + (r.length - 1); }

[[noreturn]] void raiseBeyondLargest(Range range) {
  throw Exception(NSRangeException,
                  message::build("IndexSet::addIndexesInRange: Range {", range.location, ", ",
                                 range.length, "} exceeds the largest index"));
}

}  // namespace

bool IndexSet::containsIndex(UInteger index) const {
  const auto after = std::upper_bound(ranges_.begin(), ranges_.end(), index,
                                      [](UInteger i, const Range& r) { return i < r.location; });
  return after != ranges_.begin() && index <= lastOf(*std::prev(after));
}

UInteger IndexSet::firstIndex() const {
  return ranges_.empty() ? NSNotFound : ranges_.front().location;
}
UInteger IndexSet::lastIndex() const {
  return ranges_.empty() ? NSNotFound : lastOf(ranges_.back());
}

std::vector<UInteger> IndexSet::indexes() const {
  std::vector<UInteger> all;
  all.reserve(count());
  for (const Range& r : ranges_) {
    for (UInteger i = r.location;; ++i) {
      all.push_back(i);
      if (i == lastOf(r)) break;
    }
  }
  return all;
}

void IndexSet::addIndexesInRange(Range range) {
  if (range.length == 0) return;
  constexpr UInteger kLargest = std::numeric_limits<UInteger>::max();
  if (range.length - 1 > kLargest - range.location) raiseBeyondLargest(range);
  UInteger first = range.location, last = lastOf(range);
  std::vector<Range> merged;
  merged.reserve(ranges_.size() + 1);
  bool placed = false;
  for (const Range& r : ranges_) {
    if (first > 0 && lastOf(r) < first - 1) {  // wholly before, not touching
      merged.push_back(r);
    } else if (last < kLargest && r.location > last + 1) {  // wholly after, not touching
      if (!placed) merged.push_back({first, last - first + 1});
      placed = true;
      merged.push_back(r);
    } else {
      first = std::min(first, r.location);
      last = std::max(last, lastOf(r));
    }
  }
  // Every index at once is 2^64 of them, more than a Range can count.
  if (first == 0 && last == kLargest) raiseBeyondLargest(range);
  if (!placed) merged.push_back({first, last - first + 1});
  ranges_ = std::move(merged);
}

void IndexSet::removeIndex(UInteger index) {
  for (std::size_t i = 0; i < ranges_.size(); ++i) {
    const Range r = ranges_[i];
    if (index < r.location || index > lastOf(r)) continue;
    std::vector<Range> pieces;
    if (index > r.location) pieces.push_back({r.location, index - r.location});
    if (index < lastOf(r)) pieces.push_back({index + 1, lastOf(r) - index});
    ranges_.erase(ranges_.begin() + static_cast<std::ptrdiff_t>(i));
    ranges_.insert(ranges_.begin() + static_cast<std::ptrdiff_t>(i), pieces.begin(), pieces.end());
    return;
  }
}

}  // namespace tarnvik
