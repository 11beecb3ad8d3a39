// Set and OrderedSet: copy-on-write collections of unique Values (by isEqual and hash).
// Both enumerate in insertion order; only OrderedSet promises an order.
//
//   OrderedSet a{1, 2, 3};
//   a.intersectOrderedSet(OrderedSet{3, 1});  // (1, 3): the receiver's order
#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

struct UniqueStorage;

// The shared machinery of Set and OrderedSet: unique members kept in insertion order.
class UniqueCollection {
 public:
  bool isNil() const { return !storage_; }
  UInteger count() const;
  bool isEmpty() const { return count() == 0; }
  const std::vector<Value>& values() const;
  std::vector<Value>::const_iterator begin() const { return values().begin(); }
  std::vector<Value>::const_iterator end() const { return values().end(); }
  UInteger size() const { return count(); }
  bool containsObject(const Value& object) const;
  // The stored member equal to the object, or nil.
  Value member(const Value& object) const;
  Array allObjects() const { return Array(values()); }
  Value anyObject() const;
  std::size_t hash() const;

  // Adding nil raises NSInvalidArgumentException; adding a present member changes nothing.
  void addObject(const Value& object);
  void removeObject(const Value& object);
  void removeAllObjects();

 protected:
  UniqueCollection() = default;
  explicit UniqueCollection(bool empty);
  UniqueCollection(std::initializer_list<Value> values);
  explicit UniqueCollection(std::shared_ptr<UniqueStorage> storage)
      : storage_(std::move(storage)) {}
  UniqueStorage& mutableStorage();
  bool hasSameMembers(const UniqueCollection& other) const;
  void unionWith(const UniqueCollection& other);
  void intersectWith(const UniqueCollection& other);
  void minus(const UniqueCollection& other);
  UniqueCollection copyStorage() const;
  std::shared_ptr<UniqueStorage> storage_;
};

// A default-constructed Set is nil; Set::set() is empty.
class Set : public UniqueCollection {
 public:
  Set() = default;
  Set(std::initializer_list<Value> values) : UniqueCollection(values) {}
  // The range's distinct elements, each made a Value.
  template <ValueRange R>
  requires(!std::derived_from<std::remove_cvref_t<R>, UniqueCollection>) explicit Set(R&& range)
      : UniqueCollection(true) {
    for (auto&& element : range) addObject(Value(element));
  }
  static Set set() { return Set(true); }
  static Set setWithCapacity(UInteger capacity);
  static Set setWithArray(const Array& array);

  bool isEqualToSet(const Set& other) const { return hasSameMembers(other); }
  bool isSubsetOfSet(const Set& other) const;
  bool intersectsSet(const Set& other) const;
  bool isIdenticalTo(const Set& other) const { return storage_ == other.storage_; }
  Set copy() const;

  void addObjectsFromArray(const Array& array);
  void unionSet(const Set& other) { unionWith(other); }
  void intersectSet(const Set& other) { intersectWith(other); }
  void minusSet(const Set& other) { minus(other); }

  friend bool operator==(const Set& a, const Set& b) { return a.isEqualToSet(b); }

 private:
  explicit Set(bool empty) : UniqueCollection(empty) {}
  friend class Value;
  explicit Set(std::shared_ptr<UniqueStorage> storage) : UniqueCollection(std::move(storage)) {}
  explicit Set(UniqueCollection&& base) : UniqueCollection(std::move(base)) {}
};

// A default-constructed OrderedSet is nil; OrderedSet::orderedSet() is empty.
class OrderedSet : public UniqueCollection {
 public:
  OrderedSet() = default;
  OrderedSet(std::initializer_list<Value> values) : UniqueCollection(values) {}
  // The range's distinct elements in order of first appearance, each made a Value.
  template <ValueRange R>
  requires(!std::derived_from<std::remove_cvref_t<R>, UniqueCollection>) explicit OrderedSet(
      R&& range)
      : UniqueCollection(true) {
    for (auto&& element : range) addObject(Value(element));
  }
  static OrderedSet orderedSet() { return OrderedSet(true); }
  static OrderedSet orderedSetWithCapacity(UInteger capacity);
  static OrderedSet orderedSetWithArray(const Array& array);

  // NSRangeException when the index is outside the set.
  const Value& objectAtIndex(UInteger index) const;
  const Value& operator[](UInteger index) const { return objectAtIndex(index); }
  UInteger indexOfObject(const Value& object) const;
  Value firstObject() const;
  Value lastObject() const;
  Array array() const { return allObjects(); }

  // Equal members at equal positions.
  bool isEqualToOrderedSet(const OrderedSet& other) const;
  bool isIdenticalTo(const OrderedSet& other) const { return storage_ == other.storage_; }
  OrderedSet copy() const;

  void insertObject(const Value& object, UInteger index);
  void removeObjectAtIndex(UInteger index);
  // Appends the argument's members that are not yet present, in the argument's order.
  void unionOrderedSet(const OrderedSet& other) { unionWith(other); }
  // Keeps the receiver's members that the argument holds, in the receiver's order.
  void intersectOrderedSet(const OrderedSet& other) { intersectWith(other); }
  // Removes the argument's members, keeping the order of the rest.
  void minusOrderedSet(const OrderedSet& other) { minus(other); }

  friend bool operator==(const OrderedSet& a, const OrderedSet& b) {
    return a.isEqualToOrderedSet(b);
  }

 private:
  explicit OrderedSet(bool empty) : UniqueCollection(empty) {}
  friend class Value;
  explicit OrderedSet(std::shared_ptr<UniqueStorage> storage)
      : UniqueCollection(std::move(storage)) {}
  explicit OrderedSet(UniqueCollection&& base) : UniqueCollection(std::move(base)) {}
};

using MutableSet = Set;
using MutableOrderedSet = OrderedSet;

}  // namespace tarnvik
