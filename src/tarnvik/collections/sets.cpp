#include "tarnvik/collections/sets.hpp"

#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {

Set objectsWithBOOL(const Set& set, bool value, const String& key) {
  const Array kept = objectsWithBOOL(set.allObjects(), value, key);
  return kept.isNil() ? Set() : Set::setWithArray(kept);
}

Set objectsWithValueForKey(const Set& set, const Value& value, const String& key) {
  const Array kept = objectsWithValueForKey(set.allObjects(), value, key);
  return kept.isNil() ? Set() : Set::setWithArray(kept);
}

bool containsObjectWithValue(const Set& set, const Value& value, const String& key) {
  return !objectsWithValueForKey(set, value, key).isNil();
}

Set objectsWithKindOfClass(const Set& set, const String& className) {
  return filterWithBlock(set, [&](const Value& member) { return member.isKindOfClass(className); });
}

Array sortedArrayUsingKey(const Set& set, const String& key, bool ascending) {
  return sortedArrayUsingKey(set.allObjects(), key, ascending);
}

Set mapWithBlock(const Set& set, const MapBlock& block) {
  Set results = Set::setWithCapacity(set.count());
  for (const Value& member : set) {
    const Value result = block(member);
    if (!result.isNil()) results.addObject(result);
  }
  return results;
}

Set filterWithBlock(const Set& set, const FilterBlock& block) {
  Set kept = Set::setWithCapacity(set.count());
  for (const Value& member : set) {
    if (block(member)) kept.addObject(member);
  }
  return kept;
}

Set setByRemovingObjectsFromSet(const Set& set, const Set& other) {
  Set result = set.copy();
  result.minusSet(other);
  return result;
}

Set mutableDeepCopy(const Set& set) {
  return set.isNil() ? Set() : mutableDeepCopy(Value(set)).asSet();
}

Array objectsWithKindOfClass(const OrderedSet& set, const String& className) {
  return objectsWithKindOfClass(set.array(), className);
}

Value firstObjectWithKindOfClass(const OrderedSet& set, const String& className) {
  return firstObjectWithKindOfClass(set.array(), className);
}

OrderedSet filterWithBlock(const OrderedSet& set, const FilterBlock& block) {
  OrderedSet kept = OrderedSet::orderedSet();
  for (const Value& member : set) {
    if (block(member)) kept.addObject(member);
  }
  return kept;
}

OrderedSet mapWithBlock(const OrderedSet& set, const MapBlock& block) {
  OrderedSet results = OrderedSet::orderedSetWithCapacity(set.count());
  for (const Value& member : set) {
    const Value result = block(member);
    if (!result.isNil()) results.addObject(result);
  }
  return results;
}

OrderedSet mutableDeepCopy(const OrderedSet& set) {
  return set.isNil() ? OrderedSet() : mutableDeepCopy(Value(set)).asOrderedSet();
}

template <class S, class Combine>
S combineAll(std::span<const S> sets, S empty, Combine combine) {
  if (sets.empty()) return empty;
  S result = sets[0].copy();
  if (result.isNil()) result = empty;
  for (std::size_t i = 1; i < sets.size(); ++i) combine(result, sets[i]);
  return result;
}

Set setWithUnionOf(std::span<const Set> sets) {
  return combineAll(sets, Set::set(), [](Set& r, const Set& s) { r.unionSet(s); });
}
Set setWithIntersectionOf(std::span<const Set> sets) {
  return combineAll(sets, Set::set(), [](Set& r, const Set& s) { r.intersectSet(s); });
}
Set setWithDisjunctiveUnionOf(std::span<const Set> sets) {
  return combineAll(sets, Set::set(), [](Set& r, const Set& s) { disjunctiveUnionSet(r, s); });
}
OrderedSet orderedSetWithUnionOf(std::span<const OrderedSet> sets) {
  return combineAll(sets, OrderedSet::orderedSet(),
                    [](OrderedSet& r, const OrderedSet& s) { r.unionOrderedSet(s); });
}
OrderedSet orderedSetWithIntersectionOf(std::span<const OrderedSet> sets) {
  return combineAll(sets, OrderedSet::orderedSet(),
                    [](OrderedSet& r, const OrderedSet& s) { r.intersectOrderedSet(s); });
}
OrderedSet orderedSetWithDisjunctiveUnionOf(std::span<const OrderedSet> sets) {
  return combineAll(sets, OrderedSet::orderedSet(),
                    [](OrderedSet& r, const OrderedSet& s) { disjunctiveUnionOrderedSet(r, s); });
}

void disjunctiveUnionSet(Set& set, const Set& other) {
  Set theirs = other.copy();
  theirs.minusSet(set);
  set.minusSet(other);
  set.unionSet(theirs);
}

void disjunctiveUnionOrderedSet(OrderedSet& set, const OrderedSet& other) {
  set.minusOrderedSet(other);
  OrderedSet theirs = other.copy();
  theirs.minusOrderedSet(set);  // the receiver has lost other's members already: nothing goes
  set.unionOrderedSet(theirs);
}

}  // namespace tarnvik
