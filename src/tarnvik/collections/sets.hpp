// Set and ordered-set operations: selection by key-value coding, class and blocks, sorted
// arrays, deep copies, n-ary union, intersection and symmetric difference.
//
//   setWithUnionOf({Set{1, 2}, Set{2, 3}});                     // {1, 2, 3}
//   disjunctiveUnionOrderedSet(s, OrderedSet{u"c", u"d", u"a"});  // keeps common members
#pragma once

#include <initializer_list>
#include <span>

#include "tarnvik/collections/arrays.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

// Members whose BOOL method named by the key returns the value (as for arrays); nil when none.
Set objectsWithBOOL(const Set& set, bool value, const String& key);
// Members whose value for the key equals the value (or both are nil); nil when none.
Set objectsWithValueForKey(const Set& set, const Value& value, const String& key);
bool containsObjectWithValue(const Set& set, const Value& value, const String& key);
Set objectsWithKindOfClass(const Set& set, const String& className);
Array sortedArrayUsingKey(const Set& set, const String& key, bool ascending);
// Non-nil results; equal results collapse into one member.
Set mapWithBlock(const Set& set, const MapBlock& block);
Set filterWithBlock(const Set& set, const FilterBlock& block);
Set setByRemovingObjectsFromSet(const Set& set, const Set& other);
Set mutableDeepCopy(const Set& set);

// An array (not an ordered set) of the members of the class, in order.
Array objectsWithKindOfClass(const OrderedSet& set, const String& className);
Value firstObjectWithKindOfClass(const OrderedSet& set, const String& className);
OrderedSet filterWithBlock(const OrderedSet& set, const FilterBlock& block);
// Non-nil results in order; a result equal to an earlier one is dropped.
OrderedSet mapWithBlock(const OrderedSet& set, const MapBlock& block);
OrderedSet mutableDeepCopy(const OrderedSet& set);

// The n-ary algebra: a copy of the first set combined with each further one in turn; no
// sets give an empty set. The count is that of the span.
Set setWithUnionOf(std::span<const Set> sets);
Set setWithIntersectionOf(std::span<const Set> sets);
Set setWithDisjunctiveUnionOf(std::span<const Set> sets);
OrderedSet orderedSetWithUnionOf(std::span<const OrderedSet> sets);
OrderedSet orderedSetWithIntersectionOf(std::span<const OrderedSet> sets);
OrderedSet orderedSetWithDisjunctiveUnionOf(std::span<const OrderedSet> sets);
inline Set setWithUnionOf(std::initializer_list<Set> sets) {
  return setWithUnionOf(std::span(sets.begin(), sets.size()));
}
inline Set setWithIntersectionOf(std::initializer_list<Set> sets) {
  return setWithIntersectionOf(std::span(sets.begin(), sets.size()));
}
inline Set setWithDisjunctiveUnionOf(std::initializer_list<Set> sets) {
  return setWithDisjunctiveUnionOf(std::span(sets.begin(), sets.size()));
}
inline OrderedSet orderedSetWithUnionOf(std::initializer_list<OrderedSet> sets) {
  return orderedSetWithUnionOf(std::span(sets.begin(), sets.size()));
}
inline OrderedSet orderedSetWithIntersectionOf(std::initializer_list<OrderedSet> sets) {
  return orderedSetWithIntersectionOf(std::span(sets.begin(), sets.size()));
}
inline OrderedSet orderedSetWithDisjunctiveUnionOf(std::initializer_list<OrderedSet> sets) {
  return orderedSetWithDisjunctiveUnionOf(std::span(sets.begin(), sets.size()));
}

// In place: the symmetric difference of the receiver and the other set.
void disjunctiveUnionSet(Set& set, const Set& other);
// In place, in the order of its steps: the receiver's members that the other lacks, in the
// receiver's order, then all of the other's members in its order. Members common to both
// are kept, not removed (kept as it stands): (a, b, c) with (c, d, a) gives (b, c, d, a).
void disjunctiveUnionOrderedSet(OrderedSet& set, const OrderedSet& other);

}  // namespace tarnvik
