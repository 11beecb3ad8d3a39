// Array accessors and transforms: safe indexing, selection by key-value coding, class and
// blocks, slicing with range checks, grouping, flattening, reordering, deep copies and
// readable enumerations ("files a, b and c").
//
//   objectsWithValueForKey(clips, u"A001", u"reel");       // nil when none matches
//   objectsJoinedAsHumanReadableStringWithSingular(Array{u"a", u"b"}, u"file", u"files");  //
//   "files a and b"
//
// Value-matching selections answer nil when nothing matches; class and block selections
// answer an empty array. Classes are named by their class name ("NSString", "Clip").
#pragma once

#include <functional>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/index_set.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

using MapBlock = std::function<Value(const Value& element)>;
using FilterBlock = std::function<bool(const Value& element)>;

// Element 1 / element 2 / element at the index, or nil; never raise.
Value secondObject(const Array& array);
Value thirdObject(const Array& array);
Value existingObjectAtIndex(const Array& array, UInteger index);
// The very same object (identity, not equality).
bool containsObjectIdenticalTo(const Array& array, const Value& object);
Value firstObjectWithKindOfClass(const Array& array, const String& className);

// Elements whose value for the key equals the value (or both are nil); nil when none.
Array objectsWithValueForKey(const Array& array, const Value& value, const String& key);
// By key path; for a nil value the nil test reads valueForKey with the whole dotted path,
// so elements that are not dictionaries raise the undefined-key exception there.
Array objectsWithValueForKeyPath(const Array& array, const Value& value, const String& keyPath);
bool containsObjectWithValue(const Array& array, const Value& value, const String& key);
// Every element, except, when `values` is nil, those whose value for the key is nil; the
// comparisons with `values` are made but not consulted (kept as it stands). nil when empty.
Array objectsWithValueDifferentToValues(const Array& array, const Array& values, const String& key);
// Elements whose no-argument method named by the key returns the BOOL (for methods that
// return an object: the low byte of its integer value); elements without such a method are
// skipped. nil when none.
Array objectsWithBOOL(const Array& array, bool value, const String& key);
Array objectsWithKindOfClass(const Array& array, const String& className);

// The block's non-nil results, in order.
Array mapWithBlock(const Array& array, const MapBlock& block);
Array filterWithBlock(const Array& array, const FilterBlock& block);
// Each element's result of the named no-argument method; a nil result raises
// NSInvalidArgumentException (nil cannot be added), an unknown method too.
Array arrayByPerformingSelector(const Array& array, const String& selector);
// A stable sort on the value for the key, by Value::compare.
Array sortedArrayUsingKey(const Array& array, const String& key, bool ascending);
Array reversedArray(const Array& array);
Array arrayWithoutLastElement(const Array& array);
// NSRangeException "Requested element count %lu is larger than array count %lu".
Array subarrayWithLastElements(const Array& array, UInteger count);
// NSRangeException "Requested startingIndex %lu is >= than array count %lu".
Array subarrayFromIndex(const Array& array, UInteger index);
// Elements 0 to the index inclusive; NSRangeException "Requested lastIndex %lu is >= than
// array count %lu".
Array subarrayToIndex(const Array& array, UInteger index);
// The last n elements, or a copy of the whole array when it has no more than n.
Array arrayOfLastObjects(const Array& array, UInteger count);
Array arrayByRemovingFirstObjects(const Array& array, UInteger count);
Array arrayByRemovingLastObjects(const Array& array, UInteger count);
Array arrayByMovingObjectAtIndex(const Array& array, UInteger from, UInteger to);
Array arrayByRemovingObject(const Array& array, const Value& object);
Array arrayByRemovingObjectsFromArray(const Array& array, const Array& objects);
IndexSet indexesOfObject(const Array& array, const Value& object);
IndexSet indexesOfObjectsInSet(const Array& array, const Set& set);
// key -> array of the elements that gave it, in order of first appearance; nil keys left out.
Dictionary groupElementsIgnoringNilWithFunction(const Array& array, const MapBlock& function);
// One level; an element that is no array fails the assertion "array does contain elements
// that are not arrays, but <class>" (and is left out when the handler returns).
Array flatten(const Array& array);
// count / n arrays of n elements; a count that is no multiple of n fails the assertion
// "array length %lu is not a multple of give group length %lu" (the remainder is dropped
// when the handler returns). n = 0 raises NSInvalidArgumentException.
Array unflattenWithGroupLength(const Array& array, UInteger length);
// "<singular or plural> a, b and c" (no serial comma); "" after the word for an empty array.
String objectsJoinedAsHumanReadableStringWithSingular(const Array& array, const String& singular,
                                                      const String& plural);
// Element by element with Value::compare; a proper prefix comes first.
ComparisonResult compareLexicographicallyToArray(const Array& array, const Array& other);
OrderedSet orderedSet(const Array& array);
Set set(const Array& array);

// Collections copied with every element replaced by its own deep copy (collections) or copy.
Value mutableDeepCopy(const Value& value);
Array mutableDeepCopy(const Array& array);

// In place: the element lands in front of the one that stood at `to` (to = count moves it to
// the end). Out-of-range indexes raise NSRangeException.
void moveObjectAtIndex(Array& array, UInteger from, UInteger to);
// In place: removes the elements identical to one of the argument's.
void removeIdenticalObjectsInArray(Array& array, const Array& objects);

}  // namespace tarnvik
