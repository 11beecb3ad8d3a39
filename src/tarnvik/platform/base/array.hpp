// Array: an ordered, copy-on-write list of Values with the platform's accessors, search
// and mutation.
//
//   Array clips{u"A001C001.mov", u"A001C002.mov"};
//   clips.componentsJoinedByString(u", ");  // "A001C001.mov, A001C002.mov"
#pragma once

#include <concepts>
#include <functional>
#include <initializer_list>
#include <memory>
#include <ranges>
#include <string>
#include <type_traits>
#include <vector>

#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

using Comparator = std::function<ComparisonResult(const Value&, const Value&)>;

// Anything whose elements convert to Value: std::vector<String>, std::list<int>, a view.
template <class R>
concept ValueRange =
    std::ranges::input_range<R> && std::convertible_to<std::ranges::range_reference_t<R>, Value>;

// A default-constructed Array is nil, and so is Array{} (empty braces pick the default
// constructor); Array::array() is empty. Index errors raise NSRangeException; inserting nil
// raises NSInvalidArgumentException.
class Array {
 public:
  Array() = default;
  Array(std::initializer_list<Value> values);
  explicit Array(std::vector<Value> values);
  // The range's elements in order, each made a Value.
  template <ValueRange R>
  requires(!std::same_as<std::remove_cvref_t<R>, Array> &&
           !std::same_as<std::remove_cvref_t<R>, std::vector<Value>>) explicit Array(R&& range)
      : Array(array()) {
    for (auto&& element : range) addObject(Value(element));
  }
  static Array array();
  static Array arrayWithCapacity(UInteger capacity);

  bool isNil() const { return !storage_; }
  UInteger count() const { return storage_ ? storage_->size() : 0; }
  bool isEmpty() const { return count() == 0; }
  const std::vector<Value>& values() const;
  std::vector<Value>::const_iterator begin() const { return values().begin(); }
  std::vector<Value>::const_iterator end() const { return values().end(); }
  UInteger size() const { return count(); }
  // The elements as standard values: T is Value, String, std::string (UTF-8), bool, or an
  // integer or floating-point type, read as Value reads them (a missing number is 0).
  template <class T>
  std::vector<T> toVector() const;

  const Value& objectAtIndex(UInteger index) const;
  const Value& operator[](UInteger index) const { return objectAtIndex(index); }
  // nil when the array is empty.
  Value firstObject() const;
  Value lastObject() const;

  bool containsObject(const Value& object) const;
  bool containsObjectIdenticalTo(const Value& object) const;
  // NSNotFound when absent. The range forms raise NSRangeException for a range outside
  // the array.
  UInteger indexOfObject(const Value& object) const;
  UInteger indexOfObject(const Value& object, Range range) const;
  UInteger indexOfObjectIdenticalTo(const Value& object) const;
  UInteger indexOfObjectIdenticalTo(const Value& object, Range range) const;

  Array subarrayWithRange(Range range) const;
  // The elements' descriptions joined by the separator.
  String componentsJoinedByString(const String& separator) const;
  Array arrayByAddingObject(const Value& object) const;
  Array arrayByAddingObjectsFromArray(const Array& other) const;
  // Stable sort.
  Array sortedArrayUsingComparator(const Comparator& comparator) const;

  bool isEqualToArray(const Array& other) const;
  std::size_t hash() const;
  bool isIdenticalTo(const Array& other) const { return storage_ == other.storage_; }
  // A shallow copy with storage of its own.
  Array copy() const;

  void addObject(const Value& object);
  void insertObject(const Value& object, UInteger index);
  void addObjectsFromArray(const Array& other);
  void replaceObjectAtIndex(UInteger index, const Value& object);
  void removeObjectAtIndex(UInteger index);
  void removeLastObject();
  // Removes every element equal to the object.
  void removeObject(const Value& object);
  void removeObjectIdenticalTo(const Value& object);
  void removeObjectsInRange(Range range);
  void removeAllObjects();
  void exchangeObjectAtIndex(UInteger index, UInteger otherIndex);
  void setArray(const Array& other);
  void sortUsingComparator(const Comparator& comparator);

  friend bool operator==(const Array& a, const Array& b) { return a.isEqualToArray(b); }

 private:
  friend class Value;
  explicit Array(std::shared_ptr<std::vector<Value>> storage) : storage_(std::move(storage)) {}
  std::vector<Value>& mutableValues();
  std::shared_ptr<std::vector<Value>> storage_;
};

using MutableArray = Array;

template <class T>
std::vector<T> Array::toVector() const {
  std::vector<T> out;
  out.reserve(count());
  for (const Value& value : *this) {
    if constexpr (std::is_same_v<T, Value>) {
      out.push_back(value);
    } else if constexpr (std::is_same_v<T, String>) {
      out.push_back(value.asString());
    } else if constexpr (std::is_same_v<T, std::string>) {
      out.push_back(value.asString().utf8());
    } else if constexpr (std::is_same_v<T, bool>) {
      out.push_back(value.boolValue());
    } else if constexpr (std::is_integral_v<T>) {
      out.push_back(static_cast<T>(value.integerValue()));
    } else {
      static_assert(std::is_floating_point_v<T>, "toVector<T>: T must be a Value, text or number");
      out.push_back(static_cast<T>(value.doubleValue()));
    }
  }
  return out;
}

}  // namespace tarnvik
