// MapTable: a dictionary whose key and value ownership and equality are chosen at creation:
// strong or weak memory, equality (isEqual and hash) or identity.
//
//   MapTable table(NSPointerFunctionsObjectPointerPersonality, NSPointerFunctionsStrongMemory);
//   table.setObject(u"value", key);   // found again only with the very same key
#pragma once

#include <memory>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/dictionary.hpp"

namespace tarnvik {

enum PointerFunctionsOptions : UInteger {
  NSPointerFunctionsStrongMemory = 0,
  NSPointerFunctionsWeakMemory = 5,
  NSPointerFunctionsObjectPersonality = 0,
  NSPointerFunctionsObjectPointerPersonality = 512,  // identity, with strong memory
};

struct MapTableStorage;

// Weak memory holds Object references weakly: an entry whose weak key or value has gone
// away is no longer there. Other kinds of values are always held strongly. Entries keep
// their insertion order; lookups go through a hash index. A MapTable is a reference: copies
// share the table.
class MapTable {
 public:
  MapTable(UInteger keyOptions, UInteger valueOptions);
  static MapTable strongToStrongObjectsMapTable() { return MapTable(0, 0); }
  static MapTable weakToStrongObjectsMapTable() {
    return MapTable(NSPointerFunctionsWeakMemory, 0);
  }

  UInteger count() const;
  // nil when absent.
  Value objectForKey(const Value& key) const;
  // Nil keys or objects raise NSInvalidArgumentException.
  void setObject(const Value& object, const Value& key);
  void removeObjectForKey(const Value& key);
  void removeAllObjects();
  Array allKeys() const;
  Array allValues() const;
  Dictionary dictionaryRepresentation() const;

 private:
  std::shared_ptr<MapTableStorage> storage_;
};

}  // namespace tarnvik
