#include "tarnvik/platform/base/map_table.hpp"

#include <algorithm>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

namespace {

// A value held strongly, or an Object held weakly.
class Slot {
 public:
  Slot(const Value& value, bool weak) {
    if (weak && value.asObject()) {
      weak_ = value.asObject();
    } else {
      strong_ = value;
    }
  }
  Value get() const {
    if (!strong_.isNil()) return strong_;
    if (const auto object = weak_.lock()) return Value(object);
    return Value();
  }
  bool gone() const { return strong_.isNil() && weak_.expired(); }

 private:
  Value strong_;
  std::weak_ptr<Object> weak_;
};

}  // namespace

struct MapTableStorage {
  bool weakKeys = false, weakValues = false, identity = false;
  std::vector<std::pair<Slot, Slot>> entries;

  bool same(const Value& a, const Value& b) const {
    return identity ? a.isIdenticalTo(b) : a.isEqual(b);
  }

  void purge() {
    std::erase_if(entries, [](const auto& e) { return e.first.gone() || e.second.gone(); });
  }

  std::vector<std::pair<Slot, Slot>>::iterator find(const Value& key) {
    purge();
    return std::find_if(entries.begin(), entries.end(),
                        [&](const auto& e) { return same(e.first.get(), key); });
  }
};

MapTable::MapTable(UInteger keyOptions, UInteger valueOptions)
    : storage_(std::make_shared<MapTableStorage>()) {
  storage_->weakKeys = (keyOptions & 0xFF) == NSPointerFunctionsWeakMemory;
  storage_->weakValues = (valueOptions & 0xFF) == NSPointerFunctionsWeakMemory;
  storage_->identity = (keyOptions & NSPointerFunctionsObjectPointerPersonality) != 0;
}

UInteger MapTable::count() const {
  storage_->purge();
  return storage_->entries.size();
}

Value MapTable::objectForKey(const Value& key) const {
  if (key.isNil()) return Value();
  const auto found = storage_->find(key);
  return found == storage_->entries.end() ? Value() : found->second.get();
}

void MapTable::setObject(const Value& object, const Value& key) {
  if (key.isNil() || object.isNil()) {
    throw Exception(NSInvalidArgumentException,
                    u"MapTable::setObject: key and object must not be nil");
  }
  const auto found = storage_->find(key);
  if (found != storage_->entries.end()) {
    found->second = Slot(object, storage_->weakValues);
  } else {
    storage_->entries.emplace_back(Slot(key, storage_->weakKeys),
                                   Slot(object, storage_->weakValues));
  }
}

void MapTable::removeObjectForKey(const Value& key) {
  const auto found = storage_->find(key);
  if (found != storage_->entries.end()) storage_->entries.erase(found);
}

void MapTable::removeAllObjects() { storage_->entries.clear(); }

Array MapTable::allKeys() const {
  storage_->purge();
  Array keys = Array::array();
  for (const auto& e : storage_->entries) keys.addObject(e.first.get());
  return keys;
}

Array MapTable::allValues() const {
  storage_->purge();
  Array values = Array::array();
  for (const auto& e : storage_->entries) values.addObject(e.second.get());
  return values;
}

Dictionary MapTable::dictionaryRepresentation() const {
  storage_->purge();
  Dictionary d = Dictionary::dictionary();
  for (const auto& e : storage_->entries) d.setObject(e.second.get(), e.first.get());
  return d;
}

}  // namespace tarnvik
