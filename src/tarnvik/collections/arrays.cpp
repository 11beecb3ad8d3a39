#include "tarnvik/collections/arrays.hpp"

#include <unordered_map>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/base/sort_descriptor.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

Array nilWhenEmpty(Array array) { return array.isEmpty() ? Array() : array; }

Array slice(const Array& array, UInteger from, UInteger length) {
  return array.subarrayWithRange({from, length});
}

// nil matches nil; otherwise equality.
bool matches(const Value& found, const Value& wanted) {
  return (found.isNil() && wanted.isNil()) || (!found.isNil() && found.isEqual(wanted));
}

}  // namespace

Value secondObject(const Array& array) { return existingObjectAtIndex(array, 1); }
Value thirdObject(const Array& array) { return existingObjectAtIndex(array, 2); }
Value existingObjectAtIndex(const Array& array, UInteger index) {
  return index < array.count() ? array[index] : Value();
}
bool containsObjectIdenticalTo(const Array& array, const Value& object) {
  return array.containsObjectIdenticalTo(object);
}

Value firstObjectWithKindOfClass(const Array& array, const String& className) {
  for (const Value& element : array) {
    if (element.isKindOfClass(className)) return element;
  }
  return Value();
}

Array objectsWithValueForKey(const Array& array, const Value& value, const String& key) {
  Array kept = Array::array();
  for (const Value& element : array) {
    if (matches(valueForKey(element, key), value)) kept.addObject(element);
  }
  return nilWhenEmpty(kept);
}

Array objectsWithValueForKeyPath(const Array& array, const Value& value, const String& keyPath) {
  Array kept = Array::array();
  for (const Value& element : array) {
    const bool keep = value.isNil() ? valueForKey(element, keyPath).isNil()
                                    : valueForKeyPath(element, keyPath).isEqual(value);
    if (keep) kept.addObject(element);
  }
  return nilWhenEmpty(kept);
}

bool containsObjectWithValue(const Array& array, const Value& value, const String& key) {
  return !objectsWithValueForKey(array, value, key).isNil();
}

Array objectsWithValueDifferentToValues(const Array& array, const Array& values,
                                        const String& key) {
  Array kept = Array::array();
  // Only a nil value against a nil list leaves an element out; the listed values themselves
  // never decide anything, so they are not compared.
  for (const Value& element : array) {
    const Value found = valueForKey(element, key);
    if (values.isNil() && found.isNil()) continue;
    kept.addObject(element);
  }
  return nilWhenEmpty(kept);
}

Array objectsWithBOOL(const Array& array, bool value, const String& key) {
  Array kept = Array::array();
  for (const Value& element : array) {
    const auto method = methodNamed(element, key);
    if (!method) continue;
    if (firstByteOfResult(method->returns, method->invoke()) == (value ? 1 : 0)) {
      kept.addObject(element);
    }
  }
  return nilWhenEmpty(kept.copy());
}

Array objectsWithKindOfClass(const Array& array, const String& className) {
  return filterWithBlock(array,
                         [&](const Value& element) { return element.isKindOfClass(className); });
}

Array mapWithBlock(const Array& array, const MapBlock& block) {
  Array results = Array::arrayWithCapacity(array.count());
  for (const Value& element : array) {
    const Value result = block(element);
    if (!result.isNil()) results.addObject(result);
  }
  return results;
}

Array filterWithBlock(const Array& array, const FilterBlock& block) {
  Array kept = Array::array();
  for (const Value& element : array) {
    if (block(element)) kept.addObject(element);
  }
  return kept;
}

Array arrayByPerformingSelector(const Array& array, const String& selector) {
  Array results = Array::arrayWithCapacity(array.count());
  for (const Value& element : array) results.addObject(performSelector(element, selector));
  return results;
}

Array sortedArrayUsingKey(const Array& array, const String& key, bool ascending) {
  return sortedArrayUsingDescriptors(array, {SortDescriptor(key, ascending)});
}

Array reversedArray(const Array& array) {
  return Array(std::vector<Value>(array.values().rbegin(), array.values().rend()));
}

Array arrayWithoutLastElement(const Array& array) {
  return array.isEmpty() ? Array::array() : slice(array, 0, array.count() - 1);
}

Array subarrayWithLastElements(const Array& array, UInteger count) {
  if (count > array.count()) {
    raiseRangeFormat(u"Requested element count %lu is larger than array count %lu", count,
                     array.count());
  }
  return slice(array, array.count() - count, count);
}

Array subarrayFromIndex(const Array& array, UInteger index) {
  if (index >= array.count()) {
    raiseRangeFormat(u"Requested startingIndex %lu is >= than array count %lu", index,
                     array.count());
  }
  return slice(array, index, array.count() - index);
}

Array subarrayToIndex(const Array& array, UInteger index) {
  if (index >= array.count()) {
    raiseRangeFormat(u"Requested lastIndex %lu is >= than array count %lu", index, array.count());
  }
  return slice(array, 0, index + 1);
}

Array arrayOfLastObjects(const Array& array, UInteger count) {
  return array.count() > count ? slice(array, array.count() - count, count) : array.copy();
}

Array arrayByRemovingFirstObjects(const Array& array, UInteger count) {
  return array.count() <= count ? Array::array() : slice(array, count, array.count() - count);
}

Array arrayByRemovingLastObjects(const Array& array, UInteger count) {
  return array.count() <= count ? Array::array() : slice(array, 0, array.count() - count);
}

Array arrayByMovingObjectAtIndex(const Array& array, UInteger from, UInteger to) {
  Array moved = array.copy();
  moveObjectAtIndex(moved, from, to);
  return moved;
}

Array arrayByRemovingObject(const Array& array, const Value& object) {
  Array result = array.copy();
  result.removeObject(object);
  return result;
}

Array arrayByRemovingObjectsFromArray(const Array& array, const Array& objects) {
  const Set unwanted = Set::setWithArray(objects);
  return filterWithBlock(array,
                         [&](const Value& element) { return !unwanted.containsObject(element); });
}

IndexSet indexesOfObject(const Array& array, const Value& object) {
  IndexSet indexes;
  UInteger hit = array.indexOfObject(object);
  while (hit != NSNotFound) {
    indexes.addIndex(hit);
    if (hit + 1 >= array.count()) break;
    hit = array.indexOfObject(object, {hit + 1, array.count() - hit - 1});
  }
  return indexes;
}

IndexSet indexesOfObjectsInSet(const Array& array, const Set& set) {
  IndexSet indexes;
  for (UInteger i = 0; i < array.count(); ++i) {
    if (set.containsObject(array[i])) indexes.addIndex(i);
  }
  return indexes;
}

Dictionary groupElementsIgnoringNilWithFunction(const Array& array, const MapBlock& function) {
  // Groups are collected first and turned into arrays once, so that no array is copied on
  // every addition.
  std::vector<std::pair<Value, std::vector<Value>>> groups;
  std::unordered_map<Value, std::size_t, std::hash<Value>, ValueEqual> positions;
  for (const Value& element : array) {
    const Value key = function(element);
    if (key.isNil()) continue;
    const auto [found, isNew] = positions.try_emplace(key, groups.size());
    if (isNew) groups.emplace_back(key, std::vector<Value>());
    groups[found->second].second.push_back(element);
  }
  Dictionary grouped = Dictionary::dictionaryWithCapacity(groups.size());
  for (auto& [key, elements] : groups) grouped.setObject(Array(std::move(elements)), key);
  return grouped;
}

Array flatten(const Array& array) {
  std::vector<Value> flat;
  for (const Value& element : array) {
    const Array inner = element.asArray();
    if (inner.isNil()) {
      KU_ASSERT(false, u"-[NSArray(KUArrayExtensions) flatten]", Value(array),
                u"array does contain elements that are not arrays, but %@", element.className());
      continue;
    }
    flat.insert(flat.end(), inner.begin(), inner.end());
  }
  return Array(std::move(flat));
}

Array unflattenWithGroupLength(const Array& array, UInteger length) {
  if (length == 0) raiseInvalidArgument(u"Group length must not be 0");
  KU_ASSERT(array.count() % length == 0, u"-[NSArray(KUArrayExtensions) unflattenWithGroupLength:]",
            Value(array), u"array length %lu is not a multple of give group length %lu",
            array.count(), length);
  Array groups = Array::arrayWithCapacity(array.count() / length);
  for (UInteger start = 0; start + length <= array.count(); start += length) {
    groups.addObject(slice(array, start, length));
  }
  return groups;
}

String objectsJoinedAsHumanReadableStringWithSingular(const Array& array, const String& singular,
                                                      const String& plural) {
  const String word = array.count() > 1 ? plural : singular;
  const String leading = arrayWithoutLastElement(array).componentsJoinedByString(u", ");
  const String conjunction = array.count() >= 2 ? String(u" and ") : String(u"");
  const String last = array.isEmpty() ? String(u"") : array.lastObject().description();
  return stringWithFormat(u"%@ %@%@%@", word, leading, conjunction, last);
}

ComparisonResult compareLexicographicallyToArray(const Array& array, const Array& other) {
  const UInteger longest = std::max(array.count(), other.count());
  for (UInteger i = 0; i < longest; ++i) {
    const Value mine = existingObjectAtIndex(array, i), theirs = existingObjectAtIndex(other, i);
    if (mine.isNil() || theirs.isNil())
      return mine.isNil() ? NSOrderedAscending : NSOrderedDescending;
    const ComparisonResult c = mine.compare(theirs);
    if (c != NSOrderedSame) return c;
  }
  return NSOrderedSame;
}

OrderedSet orderedSet(const Array& array) { return OrderedSet::orderedSetWithArray(array); }
Set set(const Array& array) { return Set::setWithArray(array); }

Value mutableDeepCopy(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Array:
      return mutableDeepCopy(value.asArray());
    case Value::Kind::Set: {
      Set copy = Set::setWithCapacity(value.asSet().count());
      for (const Value& member : value.asSet()) copy.addObject(mutableDeepCopy(member));
      return copy;
    }
    case Value::Kind::OrderedSet: {
      OrderedSet copy = OrderedSet::orderedSetWithCapacity(value.asOrderedSet().count());
      for (const Value& member : value.asOrderedSet()) copy.addObject(mutableDeepCopy(member));
      return copy;
    }
    case Value::Kind::Dictionary: {
      Dictionary copy = Dictionary::dictionaryWithCapacity(value.asDictionary().count());
      for (const auto& [key, object] : value.asDictionary())
        copy.setObject(mutableDeepCopy(object), key);
      return copy;
    }
    default:
      return value.copy();
  }
}

Array mutableDeepCopy(const Array& array) {
  if (array.isNil()) return Array();
  Array copy = Array::arrayWithCapacity(array.count());
  for (const Value& element : array) copy.addObject(mutableDeepCopy(element));
  return copy;
}

void moveObjectAtIndex(Array& array, UInteger from, UInteger to) {
  const Value moving = array.objectAtIndex(from);
  if (to > array.count()) (void)array.objectAtIndex(to);  // the array's own range exception
  array.removeObjectAtIndex(from);
  array.insertObject(moving, from < to ? to - 1 : to);
}

void removeIdenticalObjectsInArray(Array& array, const Array& objects) {
  IndexSet doomed;
  for (UInteger i = 0; i < array.count(); ++i) {
    if (objects.containsObjectIdenticalTo(array[i])) doomed.addIndex(i);
  }
  const std::vector<UInteger> indexes = doomed.indexes();
  for (auto it = indexes.rbegin(); it != indexes.rend(); ++it) array.removeObjectAtIndex(*it);
}

}  // namespace tarnvik
