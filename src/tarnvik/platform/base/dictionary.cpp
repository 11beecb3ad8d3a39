#include "tarnvik/platform/base/dictionary.hpp"

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/internal/value_index.hpp"

namespace tarnvik {

struct DictionaryStorage {
  std::vector<Dictionary::Entry> entries;
  ValueIndex index;

  std::size_t find(const Value& key) const {
    return index.find(key, [this](std::size_t p) -> const Value& { return entries[p].first; });
  }
  void reindex() {
    index.rebuild(entries.size(),
                  [this](std::size_t p) -> const Value& { return entries[p].first; });
  }
};

namespace {

const std::vector<Dictionary::Entry>& emptyEntries() {
  static const std::vector<Dictionary::Entry> empty;
  return empty;
}

void requireKeyAndObject(const Value& object, const Value& key, const char* operation) {
  if (key.isNil()) {
    throw Exception(NSInvalidArgumentException, message::build(operation, ": key cannot be nil"));
  }
  if (object.isNil()) {
    throw Exception(
        NSInvalidArgumentException,
        message::build(operation, ": object cannot be nil (key: ", key.description(), ")"));
  }
}

}  // namespace

Dictionary::Dictionary(std::initializer_list<Entry> entries) {
  storage_ = std::make_shared<DictionaryStorage>();
  for (const auto& [key, object] : entries) setObject(object, key);
}

Dictionary Dictionary::dictionary() { return dictionaryWithCapacity(0); }

Dictionary Dictionary::dictionaryWithCapacity(UInteger capacity) {
  Dictionary d;
  d.storage_ = std::make_shared<DictionaryStorage>();
  d.storage_->entries.reserve(capacity);
  d.storage_->index.reserve(capacity);
  return d;
}

UInteger Dictionary::count() const { return storage_ ? storage_->entries.size() : 0; }

const std::vector<Dictionary::Entry>& Dictionary::entries() const {
  return storage_ ? storage_->entries : emptyEntries();
}

Value Dictionary::objectForKey(const Value& key) const {
  if (!storage_ || key.isNil()) return Value();
  const std::size_t found = storage_->find(key);
  return found == ValueIndex::npos ? Value() : storage_->entries[found].second;
}

Array Dictionary::allKeys() const {
  std::vector<Value> keys;
  keys.reserve(count());
  for (const auto& entry : entries()) keys.push_back(entry.first);
  return Array(std::move(keys));
}

Array Dictionary::allValues() const {
  std::vector<Value> values;
  values.reserve(count());
  for (const auto& entry : entries()) values.push_back(entry.second);
  return Array(std::move(values));
}

Array Dictionary::allKeysForObject(const Value& object) const {
  Array keys = Array::array();
  for (const auto& [key, value] : entries()) {
    if (value.isEqual(object)) keys.addObject(key);
  }
  return keys;
}

bool Dictionary::isEqualToDictionary(const Dictionary& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  if (storage_ == other.storage_) return true;
  if (count() != other.count()) return false;
  for (const auto& [key, value] : entries()) {
    if (!other.objectForKey(key).isEqual(value)) return false;
  }
  return true;
}

std::size_t Dictionary::hash() const {
  // Order-independent, since equal dictionaries may have been filled in any order.
  std::size_t h = count();
  for (const auto& [key, value] : entries()) h += key.hash() * 31 ^ value.hash();
  return h;
}

Dictionary Dictionary::copy() const {
  if (isNil()) return Dictionary();
  Dictionary d;
  d.storage_ = std::make_shared<DictionaryStorage>(*storage_);
  return d;
}

DictionaryStorage& Dictionary::mutableStorage() {
  if (!storage_) {
    storage_ = std::make_shared<DictionaryStorage>();
  } else if (storage_.use_count() > 1) {
    storage_ = std::make_shared<DictionaryStorage>(*storage_);
  }
  return *storage_;
}

void Dictionary::setObject(const Value& object, const Value& key) {
  requireKeyAndObject(object, key, "Dictionary::setObject");
  auto& s = mutableStorage();
  const std::size_t found = s.find(key);
  if (found != ValueIndex::npos) {
    s.entries[found].second = object;
    return;
  }
  s.entries.emplace_back(key, object);
  s.index.insert(key, s.entries.size() - 1,
                 [&s](std::size_t p) -> const Value& { return s.entries[p].first; });
}

void Dictionary::setValue(const Value& object, const Value& key) {
  if (object.isNil()) {
    removeObjectForKey(key);
  } else {
    setObject(object, key);
  }
}

void Dictionary::removeObjectForKey(const Value& key) {
  if (objectForKey(key).isNil()) return;
  auto& s = mutableStorage();
  const std::size_t position = s.find(key);
  s.entries.erase(s.entries.begin() + static_cast<std::ptrdiff_t>(position));
  s.reindex();
}

void Dictionary::removeAllObjects() {
  auto& s = mutableStorage();
  s.entries.clear();
  s.index.clear();
}

void Dictionary::addEntriesFromDictionary(const Dictionary& other) {
  const Dictionary keep = other;
  for (const auto& [key, value] : keep) setObject(value, key);
}

}  // namespace tarnvik
