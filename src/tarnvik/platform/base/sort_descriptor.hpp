// SortDescriptor: ordering by the value for a key (key-value coding), ascending or
// descending, compared with Value::compare or a comparator of the caller's.
//
//   sortedArrayUsingDescriptors(clips, {SortDescriptor(u"name", true)});
#pragma once

#include <vector>

#include "tarnvik/platform/base/array.hpp"

namespace tarnvik {

class SortDescriptor {
 public:
  SortDescriptor(String key, bool ascending, Comparator comparator = nullptr)
      : key_(std::move(key)), ascending_(ascending), comparator_(std::move(comparator)) {}
  const String& key() const { return key_; }
  bool ascending() const { return ascending_; }
  // The order of the two objects' values for the key; nil values sort before all others.
  ComparisonResult compareObject(const Value& a, const Value& b) const;

 private:
  String key_;
  bool ascending_;
  Comparator comparator_;
};

// A stable sort by the descriptors in turn.
Array sortedArrayUsingDescriptors(const Array& array,
                                  const std::vector<SortDescriptor>& descriptors);

}  // namespace tarnvik
