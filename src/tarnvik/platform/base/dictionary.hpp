// Dictionary: a copy-on-write map from any Value to any Value that enumerates in
// insertion order.
//
//   Dictionary info{{u"codec", u"ProRes"}, {u"fps", 25}};
//   info.objectForKey(u"fps").intValue();  // 25
#pragma once

#include <initializer_list>
#include <memory>
#include <ranges>
#include <utility>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

struct DictionaryStorage;

// Anything that enumerates key-value pairs convertible to Value: std::map<String, int>,
// std::vector<std::pair<std::string, double>>, ...
template <class R>
concept EntryRange = std::ranges::input_range<R> &&
    requires(std::ranges::range_reference_t<R> entry) {
  Value(entry.first);
  Value(entry.second);
};

// A default-constructed Dictionary is nil; Dictionary::dictionary() is empty. Keys and
// objects must not be nil (NSInvalidArgumentException).
class Dictionary {
 public:
  using Entry = std::pair<Value, Value>;

  Dictionary() = default;
  Dictionary(std::initializer_list<Entry> entries);
  // The range's pairs in order; a later pair with an equal key replaces the earlier value.
  template <EntryRange R>
  requires(!std::same_as<std::remove_cvref_t<R>, Dictionary>) explicit Dictionary(R&& range)
      : Dictionary(dictionary()) {
    for (auto&& entry : range) setObject(Value(entry.second), Value(entry.first));
  }
  static Dictionary dictionary();
  static Dictionary dictionaryWithCapacity(UInteger capacity);

  bool isNil() const { return !storage_; }
  UInteger count() const;
  bool isEmpty() const { return count() == 0; }
  // The entries in insertion order.
  const std::vector<Entry>& entries() const;
  std::vector<Entry>::const_iterator begin() const { return entries().begin(); }
  std::vector<Entry>::const_iterator end() const { return entries().end(); }
  UInteger size() const { return count(); }

  // nil when absent.
  Value objectForKey(const Value& key) const;
  Value operator[](const Value& key) const { return objectForKey(key); }
  Array allKeys() const;
  Array allValues() const;
  // Keys whose object is equal to the given one, in insertion order.
  Array allKeysForObject(const Value& object) const;

  bool isEqualToDictionary(const Dictionary& other) const;
  std::size_t hash() const;
  bool isIdenticalTo(const Dictionary& other) const { return storage_ == other.storage_; }
  Dictionary copy() const;

  // Replaces the object of an existing key in place, keeping its position.
  void setObject(const Value& object, const Value& key);
  // As setObject, but a nil object removes the key.
  void setValue(const Value& object, const Value& key);
  void removeObjectForKey(const Value& key);
  void removeAllObjects();
  void addEntriesFromDictionary(const Dictionary& other);

  friend bool operator==(const Dictionary& a, const Dictionary& b) {
    return a.isEqualToDictionary(b);
  }

 private:
  friend class Value;
  explicit Dictionary(std::shared_ptr<DictionaryStorage> storage) : storage_(std::move(storage)) {}
  DictionaryStorage& mutableStorage();
  std::shared_ptr<DictionaryStorage> storage_;
};

using MutableDictionary = Dictionary;

}  // namespace tarnvik
