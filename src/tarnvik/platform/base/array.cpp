#include "tarnvik/platform/base/array.hpp"

#include <algorithm>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

namespace {

const std::vector<Value>& emptyValues() {
  static const std::vector<Value> empty;
  return empty;
}

[[noreturn]] void raiseIndex(const char* operation, UInteger index, UInteger count) {
  if (count == 0) {
    throw Exception(NSRangeException,
                    message::build(operation, ": index ", index, " beyond bounds for empty array"));
  }
  throw Exception(NSRangeException, message::build(operation, ": index ", index,
                                                   " beyond bounds [0 .. ", count - 1, "]"));
}

void requireObject(const Value& object, const char* operation) {
  if (object.isNil()) {
    throw Exception(NSInvalidArgumentException,
                    message::build(operation, ": object cannot be nil"));
  }
}

void requireRange(Range range, UInteger count, const char* operation) {
  if (!rangeFitsInLength(range, count)) {
    throw Exception(NSRangeException, message::build(operation, ": range {", range.location, ", ",
                                                     range.length, "} extends beyond bounds [0 .. ",
                                                     count == 0 ? 0 : count - 1, "]"));
  }
}

template <class Match>
UInteger findIndex(const std::vector<Value>& values, Range range, Match match) {
  for (UInteger i = range.location; i < range.end(); ++i) {
    if (match(values[i])) return i;
  }
  return NSNotFound;
}

}  // namespace

Array::Array(std::initializer_list<Value> values) : Array(std::vector<Value>(values)) {}

Array::Array(std::vector<Value> values)
    : storage_(std::make_shared<std::vector<Value>>(std::move(values))) {
  for (const Value& v : *storage_) requireObject(v, "Array::Array");
}

Array Array::array() { return arrayWithCapacity(0); }

Array Array::arrayWithCapacity(UInteger capacity) {
  Array a;
  a.storage_ = std::make_shared<std::vector<Value>>();
  a.storage_->reserve(capacity);
  return a;
}

const std::vector<Value>& Array::values() const { return storage_ ? *storage_ : emptyValues(); }

const Value& Array::objectAtIndex(UInteger index) const {
  if (index >= count()) raiseIndex("Array::objectAtIndex", index, count());
  return (*storage_)[index];
}

Value Array::firstObject() const { return isEmpty() ? Value() : values().front(); }
Value Array::lastObject() const { return isEmpty() ? Value() : values().back(); }

bool Array::containsObject(const Value& object) const {
  return indexOfObject(object) != NSNotFound;
}
bool Array::containsObjectIdenticalTo(const Value& object) const {
  return indexOfObjectIdenticalTo(object) != NSNotFound;
}
UInteger Array::indexOfObject(const Value& object) const {
  return indexOfObject(object, {0, count()});
}
UInteger Array::indexOfObject(const Value& object, Range range) const {
  requireRange(range, count(), "Array::indexOfObject");
  return findIndex(values(), range, [&](const Value& v) { return v.isEqual(object); });
}
UInteger Array::indexOfObjectIdenticalTo(const Value& object) const {
  return indexOfObjectIdenticalTo(object, {0, count()});
}
UInteger Array::indexOfObjectIdenticalTo(const Value& object, Range range) const {
  requireRange(range, count(), "Array::indexOfObjectIdenticalTo");
  return findIndex(values(), range, [&](const Value& v) { return v.isIdenticalTo(object); });
}

Array Array::subarrayWithRange(Range range) const {
  requireRange(range, count(), "Array::subarrayWithRange");
  const auto first = values().begin() + static_cast<std::ptrdiff_t>(range.location);
  return Array(std::vector<Value>(first, first + static_cast<std::ptrdiff_t>(range.length)));
}

String Array::componentsJoinedByString(const String& separator) const {
  String joined(u"");
  bool first = true;
  for (const Value& v : values()) {
    if (!first) joined.appendString(separator);
    first = false;
    joined.appendString(v.description());
  }
  return joined;
}

Array Array::arrayByAddingObject(const Value& object) const {
  Array result = copy();
  result.addObject(object);
  return result;
}
Array Array::arrayByAddingObjectsFromArray(const Array& other) const {
  Array result = copy();
  result.addObjectsFromArray(other);
  return result;
}
Array Array::sortedArrayUsingComparator(const Comparator& comparator) const {
  Array result = copy();
  result.sortUsingComparator(comparator);
  return result;
}

bool Array::isEqualToArray(const Array& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  if (storage_ == other.storage_) return true;
  return std::equal(begin(), end(), other.begin(), other.end(),
                    [](const Value& a, const Value& b) { return a.isEqual(b); });
}

std::size_t Array::hash() const {
  std::size_t h = count();
  for (const Value& v : values()) h = h * 1099511628211ULL ^ v.hash();
  return h;
}

Array Array::copy() const {
  if (isNil()) return Array();
  return Array(values());
}

std::vector<Value>& Array::mutableValues() {
  if (!storage_) {
    storage_ = std::make_shared<std::vector<Value>>();
  } else if (storage_.use_count() > 1) {
    storage_ = std::make_shared<std::vector<Value>>(*storage_);
  }
  return *storage_;
}

void Array::addObject(const Value& object) {
  requireObject(object, "Array::addObject");
  mutableValues().push_back(object);
}
void Array::insertObject(const Value& object, UInteger index) {
  requireObject(object, "Array::insertObject");
  if (index > count()) raiseIndex("Array::insertObject", index, count());
  auto& v = mutableValues();
  v.insert(v.begin() + static_cast<std::ptrdiff_t>(index), object);
}
void Array::addObjectsFromArray(const Array& other) {
  const Array keep = other;  // the argument may be the receiver
  auto& v = mutableValues();
  v.insert(v.end(), keep.begin(), keep.end());
}
void Array::replaceObjectAtIndex(UInteger index, const Value& object) {
  requireObject(object, "Array::replaceObjectAtIndex");
  if (index >= count()) raiseIndex("Array::replaceObjectAtIndex", index, count());
  mutableValues()[index] = object;
}
void Array::removeObjectAtIndex(UInteger index) {
  if (index >= count()) raiseIndex("Array::removeObjectAtIndex", index, count());
  auto& v = mutableValues();
  v.erase(v.begin() + static_cast<std::ptrdiff_t>(index));
}
void Array::removeLastObject() {
  if (isEmpty()) raiseIndex("Array::removeLastObject", 0, 0);
  mutableValues().pop_back();
}
void Array::removeObject(const Value& object) {
  if (!containsObject(object)) return;
  std::erase_if(mutableValues(), [&](const Value& v) { return v.isEqual(object); });
}
void Array::removeObjectIdenticalTo(const Value& object) {
  if (!containsObjectIdenticalTo(object)) return;
  std::erase_if(mutableValues(), [&](const Value& v) { return v.isIdenticalTo(object); });
}
void Array::removeObjectsInRange(Range range) {
  requireRange(range, count(), "Array::removeObjectsInRange");
  auto& v = mutableValues();
  const auto first = v.begin() + static_cast<std::ptrdiff_t>(range.location);
  v.erase(first, first + static_cast<std::ptrdiff_t>(range.length));
}
void Array::removeAllObjects() { mutableValues().clear(); }
void Array::exchangeObjectAtIndex(UInteger index, UInteger otherIndex) {
  if (index >= count()) raiseIndex("Array::exchangeObjectAtIndex", index, count());
  if (otherIndex >= count()) raiseIndex("Array::exchangeObjectAtIndex", otherIndex, count());
  auto& v = mutableValues();
  std::swap(v[index], v[otherIndex]);
}
void Array::setArray(const Array& other) { mutableValues() = other.values(); }
void Array::sortUsingComparator(const Comparator& comparator) {
  if (count() < 2) return;
  std::stable_sort(
      mutableValues().begin(), mutableValues().end(),
      [&](const Value& a, const Value& b) { return comparator(a, b) == NSOrderedAscending; });
}

}  // namespace tarnvik
