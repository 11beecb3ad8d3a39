#include "tarnvik/platform/base/map_table.hpp"

#include <optional>
#include <unordered_map>
#include <vector>

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

// Entries in insertion order (removed ones leave a hole until the next compaction) and a hash
// index over them, so that lookups do not walk the table.
struct MapTableStorage {
  using Entry = std::optional<std::pair<Slot, Slot>>;
  bool weakKeys = false, weakValues = false, identity = false;
  std::vector<Entry> entries;
  std::unordered_multimap<std::size_t, std::size_t> index;  // key hash -> entry position
  std::size_t holes = 0;

  bool same(const Value& a, const Value& b) const {
    return identity ? a.isIdenticalTo(b) : a.isEqual(b);
  }
  std::size_t hashOf(const Value& key) const {
    if (identity) {
      if (const void* address = key.identity()) return std::hash<const void*>()(address);
    }
    return key.hash();
  }
  static bool gone(const Entry& e) { return !e || e->first.gone() || e->second.gone(); }

  // Drops removed entries and those whose weak key or value went away.
  void purge() {
    std::vector<Entry> kept;
    kept.reserve(entries.size());
    index.clear();
    for (auto& e : entries) {
      if (gone(e)) continue;
      index.emplace(hashOf(e->first.get()), kept.size());
      kept.push_back(std::move(e));
    }
    entries = std::move(kept);
    holes = 0;
  }

  // The position of the live entry for the key, or npos.
  std::size_t find(const Value& key) const {
    const auto [first, last] = index.equal_range(hashOf(key));
    for (auto it = first; it != last; ++it) {
      const Entry& e = entries[it->second];
      if (!gone(e) && same(e->first.get(), key)) return it->second;
    }
    return npos;
  }

  void remove(std::size_t position) {
    const std::size_t hash = hashOf(entries[position]->first.get());
    const auto [first, last] = index.equal_range(hash);
    for (auto it = first; it != last; ++it) {
      if (it->second == position) {
        index.erase(it);
        break;
      }
    }
    entries[position].reset();
    if (++holes > 32 && holes > entries.size() / 2) purge();
  }

  static constexpr std::size_t npos = static_cast<std::size_t>(-1);
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
  const std::size_t found = storage_->find(key);
  return found == MapTableStorage::npos ? Value() : storage_->entries[found]->second.get();
}

void MapTable::setObject(const Value& object, const Value& key) {
  if (key.isNil() || object.isNil()) {
    throw Exception(NSInvalidArgumentException,
                    u"MapTable::setObject: key and object must not be nil");
  }
  const std::size_t found = storage_->find(key);
  if (found != MapTableStorage::npos) {
    storage_->entries[found]->second = Slot(object, storage_->weakValues);
    return;
  }
  storage_->index.emplace(storage_->hashOf(key), storage_->entries.size());
  storage_->entries.emplace_back(
      std::pair{Slot(key, storage_->weakKeys), Slot(object, storage_->weakValues)});
}

void MapTable::removeObjectForKey(const Value& key) {
  if (key.isNil()) return;
  const std::size_t found = storage_->find(key);
  if (found != MapTableStorage::npos) storage_->remove(found);
}

void MapTable::removeAllObjects() {
  storage_->entries.clear();
  storage_->index.clear();
  storage_->holes = 0;
}

Array MapTable::allKeys() const {
  storage_->purge();
  Array keys = Array::array();
  for (const auto& e : storage_->entries) keys.addObject(e->first.get());
  return keys;
}

Array MapTable::allValues() const {
  storage_->purge();
  Array values = Array::array();
  for (const auto& e : storage_->entries) values.addObject(e->second.get());
  return values;
}

Dictionary MapTable::dictionaryRepresentation() const {
  storage_->purge();
  Dictionary d = Dictionary::dictionary();
  for (const auto& e : storage_->entries) d.setObject(e->second.get(), e->first.get());
  return d;
}

}  // namespace tarnvik
