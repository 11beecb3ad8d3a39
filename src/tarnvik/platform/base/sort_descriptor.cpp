#include "tarnvik/platform/base/sort_descriptor.hpp"

#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {

ComparisonResult SortDescriptor::compareObject(const Value& a, const Value& b) const {
  const Value x = valueForKey(a, key_), y = valueForKey(b, key_);
  ComparisonResult result = NSOrderedSame;
  if (x.isNil() || y.isNil()) {
    result = x.isNil() == y.isNil() ? NSOrderedSame
                                    : (x.isNil() ? NSOrderedAscending : NSOrderedDescending);
  } else {
    result = comparator_ ? comparator_(x, y) : x.compare(y);
  }
  return ascending_ ? result : static_cast<ComparisonResult>(-result);
}

Array sortedArrayUsingDescriptors(const Array& array,
                                  const std::vector<SortDescriptor>& descriptors) {
  return array.sortedArrayUsingComparator([&](const Value& a, const Value& b) {
    for (const SortDescriptor& d : descriptors) {
      const ComparisonResult r = d.compareObject(a, b);
      if (r != NSOrderedSame) return r;
    }
    return NSOrderedSame;
  });
}

}  // namespace tarnvik
