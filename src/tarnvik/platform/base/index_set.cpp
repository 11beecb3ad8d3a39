#include "tarnvik/platform/base/index_set.hpp"

#include <algorithm>

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

bool IndexSet::containsIndex(UInteger index) const {
  const auto after = std::upper_bound(ranges_.begin(), ranges_.end(), index,
                                      [](UInteger i, const Range& r) { return i < r.location; });
  return after != ranges_.begin() && index < std::prev(after)->end();
}

UInteger IndexSet::firstIndex() const {
  return ranges_.empty() ? NSNotFound : ranges_.front().location;
}
UInteger IndexSet::lastIndex() const {
  return ranges_.empty() ? NSNotFound : ranges_.back().end() - 1;
}

std::vector<UInteger> IndexSet::indexes() const {
  std::vector<UInteger> all;
  all.reserve(count());
  for (const Range& r : ranges_) {
    for (UInteger i = r.location; i < r.end(); ++i) all.push_back(i);
  }
  return all;
}

void IndexSet::addIndexesInRange(Range range) {
  if (range.length == 0) return;
  UInteger start = range.location, end = range.end();
  std::vector<Range> merged;
  merged.reserve(ranges_.size() + 1);
  bool placed = false;
  for (const Range& r : ranges_) {
    if (r.end() < start) {
      merged.push_back(r);
    } else if (end < r.location) {
      if (!placed) merged.push_back({start, end - start});
      placed = true;
      merged.push_back(r);
    } else {
      start = std::min(start, r.location);
      end = std::max(end, r.end());
    }
  }
  if (!placed) merged.push_back({start, end - start});
  ranges_ = std::move(merged);
}

void IndexSet::removeIndex(UInteger index) {
  for (std::size_t i = 0; i < ranges_.size(); ++i) {
    const Range r = ranges_[i];
    if (index < r.location || index >= r.end()) continue;
    std::vector<Range> pieces;
    if (index > r.location) pieces.push_back({r.location, index - r.location});
    if (index + 1 < r.end()) pieces.push_back({index + 1, r.end() - index - 1});
    ranges_.erase(ranges_.begin() + static_cast<std::ptrdiff_t>(i));
    ranges_.insert(ranges_.begin() + static_cast<std::ptrdiff_t>(i), pieces.begin(), pieces.end());
    return;
  }
}

}  // namespace tarnvik
