#include "tarnvik/platform/base/set.hpp"

#include <algorithm>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/internal/value_index.hpp"

namespace tarnvik {

struct UniqueStorage {
  std::vector<Value> values;
  ValueIndex index;

  std::size_t find(const Value& v) const {
    return index.find(v, [this](std::size_t p) -> const Value& { return values[p]; });
  }
  bool contains(const Value& v) const { return find(v) != ValueIndex::npos; }
  void add(const Value& v) {
    // The value goes in at the end when the index takes it as new.
    if (index.insert(v, values.size(), [this](std::size_t p) -> const Value& { return values[p]; })
            .second) {
      values.push_back(v);
    }
  }
  // Indexes the members afresh, after positions changed.
  void reindex() {
    index.rebuild(values.size(), [this](std::size_t p) -> const Value& { return values[p]; });
  }
  // Keeps the members for which keep() holds, in order.
  template <class Keep>
  void retain(Keep keep) {
    std::erase_if(values, [&](const Value& v) { return !keep(v); });
    reindex();
  }
};

namespace {

const std::vector<Value>& emptyValues() {
  static const std::vector<Value> empty;
  return empty;
}

}  // namespace

UniqueCollection::UniqueCollection(bool) : storage_(std::make_shared<UniqueStorage>()) {}

UniqueCollection::UniqueCollection(std::initializer_list<Value> values)
    : storage_(std::make_shared<UniqueStorage>()) {
  for (const Value& v : values) addObject(v);
}

UInteger UniqueCollection::count() const { return storage_ ? storage_->values.size() : 0; }

const std::vector<Value>& UniqueCollection::values() const {
  return storage_ ? storage_->values : emptyValues();
}

bool UniqueCollection::containsObject(const Value& object) const {
  return storage_ && storage_->contains(object);
}

Value UniqueCollection::member(const Value& object) const {
  if (!storage_) return Value();
  const std::size_t found = storage_->find(object);
  return found == ValueIndex::npos ? Value() : storage_->values[found];
}

Value UniqueCollection::anyObject() const { return isEmpty() ? Value() : values().front(); }

std::size_t UniqueCollection::hash() const {
  std::size_t h = count();
  for (const Value& v : values()) h += v.hash();
  return h;
}

UniqueStorage& UniqueCollection::mutableStorage() {
  if (!storage_) {
    storage_ = std::make_shared<UniqueStorage>();
  } else if (storage_.use_count() > 1) {
    storage_ = std::make_shared<UniqueStorage>(*storage_);
  }
  return *storage_;
}

void UniqueCollection::addObject(const Value& object) {
  if (object.isNil()) {
    throw Exception(NSInvalidArgumentException, u"Set::addObject: object cannot be nil");
  }
  if (containsObject(object)) return;
  mutableStorage().add(object);
}

void UniqueCollection::removeObject(const Value& object) {
  if (!containsObject(object)) return;
  auto& s = mutableStorage();
  const std::size_t position = s.find(object);
  s.values.erase(s.values.begin() + static_cast<std::ptrdiff_t>(position));
  s.reindex();
}

void UniqueCollection::removeAllObjects() {
  auto& s = mutableStorage();
  s.values.clear();
  s.index.clear();
}

bool UniqueCollection::hasSameMembers(const UniqueCollection& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  if (count() != other.count()) return false;
  return std::all_of(begin(), end(), [&](const Value& v) { return other.containsObject(v); });
}

void UniqueCollection::unionWith(const UniqueCollection& other) {
  const UniqueCollection keep = other;
  auto& s = mutableStorage();
  for (const Value& v : keep) s.add(v);
}

void UniqueCollection::intersectWith(const UniqueCollection& other) {
  const UniqueCollection keep = other;
  mutableStorage().retain([&](const Value& v) { return keep.containsObject(v); });
}

void UniqueCollection::minus(const UniqueCollection& other) {
  const UniqueCollection keep = other;
  mutableStorage().retain([&](const Value& v) { return !keep.containsObject(v); });
}

UniqueCollection UniqueCollection::copyStorage() const {
  UniqueCollection c;
  if (storage_) c.storage_ = std::make_shared<UniqueStorage>(*storage_);
  return c;
}

Set Set::setWithCapacity(UInteger capacity) {
  Set s = set();
  s.storage_->values.reserve(capacity);
  s.storage_->index.reserve(capacity);
  return s;
}

Set Set::setWithArray(const Array& array) {
  Set s = setWithCapacity(array.count());
  for (const Value& v : array) s.storage_->add(v);
  return s;
}

bool Set::isSubsetOfSet(const Set& other) const {
  return std::all_of(begin(), end(), [&](const Value& v) { return other.containsObject(v); });
}

bool Set::intersectsSet(const Set& other) const {
  return std::any_of(begin(), end(), [&](const Value& v) { return other.containsObject(v); });
}

Set Set::copy() const { return Set(copyStorage()); }

void Set::addObjectsFromArray(const Array& array) {
  for (const Value& v : array) addObject(v);
}

OrderedSet OrderedSet::orderedSetWithCapacity(UInteger capacity) {
  OrderedSet s = orderedSet();
  s.storage_->values.reserve(capacity);
  s.storage_->index.reserve(capacity);
  return s;
}

OrderedSet OrderedSet::orderedSetWithArray(const Array& array) {
  OrderedSet s = orderedSetWithCapacity(array.count());
  for (const Value& v : array) s.storage_->add(v);
  return s;
}

const Value& OrderedSet::objectAtIndex(UInteger index) const {
  if (index >= count()) {
    throw Exception(NSRangeException, message::build("OrderedSet::objectAtIndex: index ", index,
                                                     " beyond bounds [0 .. ",
                                                     static_cast<Integer>(count()) - 1, "]"));
  }
  return storage_->values[index];
}

UInteger OrderedSet::indexOfObject(const Value& object) const {
  if (!storage_) return NSNotFound;
  const std::size_t found = storage_->find(object);
  return found == ValueIndex::npos ? NSNotFound : found;
}

Value OrderedSet::firstObject() const { return isEmpty() ? Value() : values().front(); }
Value OrderedSet::lastObject() const { return isEmpty() ? Value() : values().back(); }

bool OrderedSet::isEqualToOrderedSet(const OrderedSet& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  return std::equal(begin(), end(), other.begin(), other.end(),
                    [](const Value& a, const Value& b) { return a.isEqual(b); });
}

OrderedSet OrderedSet::copy() const { return OrderedSet(copyStorage()); }

void OrderedSet::insertObject(const Value& object, UInteger index) {
  if (index > count()) {
    throw Exception(NSRangeException, message::build("OrderedSet::insertObject: index ", index,
                                                     " beyond bounds [0 .. ", count(), "]"));
  }
  if (object.isNil()) {
    throw Exception(NSInvalidArgumentException, u"OrderedSet::insertObject: object cannot be nil");
  }
  if (containsObject(object)) return;
  auto& s = mutableStorage();
  s.values.insert(s.values.begin() + static_cast<std::ptrdiff_t>(index), object);
  s.reindex();
}

void OrderedSet::removeObjectAtIndex(UInteger index) {
  const Value member = objectAtIndex(index);
  removeObject(member);
}

}  // namespace tarnvik
