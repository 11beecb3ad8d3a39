// Dictionaries, map tables and typed values: null stripping, recursive merging, inversion,
// deep copies, value mapping, form encoding, building from keys or from an object's
// properties; and sizes, points, booleans, integers and index sets stored in a
// property-list-safe form and read back tolerantly.
//
//   dictionaryByAddingDictionary(Dictionary{{u"a", Dictionary{{u"x", 1}}}}, Dictionary{{u"a",
//   Dictionary{{u"y", 2}}}}); setNSSize(layout, {1920, 1080}, u"size");   // stores "{1920, 1080}"
#pragma once

#include <functional>
#include <optional>

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/geometry.hpp"
#include "tarnvik/platform/base/index_set.hpp"
#include "tarnvik/platform/base/map_table.hpp"

namespace tarnvik {

// The entries whose value is not Null.
Dictionary dictionaryWithoutNullValues(const Dictionary& dictionary);
// Merged recursively: where both values are dictionaries they merge, otherwise the other's
// value wins.
Dictionary dictionaryByAddingDictionary(const Dictionary& dictionary, const Dictionary& other);
// Each dictionary added flat in turn; later values win.
Dictionary dictionaryByAddingDictionaries(const Array& dictionaries);
// One single-entry dictionary per entry, in order.
Array arrayBySeparatingEntries(const Dictionary& dictionary);
// "key=value&..." in entry order: values encoded except letters, marks and digits (Unicode),
// keys with the older ASCII escaping that leaves reserved characters alone (a key beyond
// ASCII has no such form and prints "(null)"). A value that is not a String raises
// NSInvalidArgumentException.
String urlEncodedParameters(const Dictionary& dictionary);
// Keys whose value is the very same object; nil when none.
Array allKeysForObjectsIdenticalTo(const Dictionary& dictionary, const Value& object);
// The object's own class's properties by name; a property whose capitalizedString names a
// registered class ("owner" -> "Owner") is converted the same way (an empty dictionary for
// nil).
Dictionary dictionaryWithPropertiesOfObject(const Value& object);
// Values as keys and keys as values; of keys sharing a value, the later one wins.
Dictionary reversedDictionary(const Dictionary& dictionary);
Dictionary mutableDeepCopy(const Dictionary& dictionary);
// The same keys with the block's results; nil results are left out.
Dictionary mapValuesWithBlock(const Dictionary& dictionary,
                              const std::function<Value(const Value&)>& block);
// Each key with the block's result for its position and itself; nil results left out.
Dictionary dictionaryWithKeys(
    const Array& keys, const std::function<Value(UInteger index, const Value& key)>& valueFunction);

// setObject:forKey:ignoringNil: a nil object with ignoringNil leaves the dictionary alone;
// otherwise keyed assignment (a nil object removes the key).
void setObjectForKeyIgnoringNil(Dictionary& dictionary, const Value& object, const Value& key,
                                bool ignoringNil);
// setObject:forKey:defaultForNil:
void setObjectForKeyDefaultForNil(Dictionary& dictionary, const Value& object, const Value& key,
                                  const Value& defaultValue);

// Every entry of the other table set into the receiver.
void setValuesForKeysWithMapTable(MapTable& table, const MapTable& other);
// For each key its object, or the marker; a nil marker raises NSInvalidArgumentException
// "notFoundMarker must not be nil".
Array objectsForKeys(const MapTable& table, const Array& keys, const Value& notFoundMarker);

// Typed values.
void setNSSize(Dictionary& dictionary, Size size, const Value& key);
void setCGSize(Dictionary& dictionary, Size size, const Value& key);
void setNSPoint(Dictionary& dictionary, Point point, const Value& key);
void setBOOL(Dictionary& dictionary, bool value, const Value& key);
void setInteger(Dictionary& dictionary, Integer value, const Value& key);
void setLong(Dictionary& dictionary, long value, const Value& key);
// An array of the indexes as unsigned numbers; nullopt stores an empty array.
void setIndexSet(Dictionary& dictionary, const std::optional<IndexSet>& indexes, const Value& key);
// The source's value for the source key under the target key, when there is one.
void setObjectFromDictionary(Dictionary& dictionary, const Dictionary& source,
                             const Value& sourceKey, const Value& targetKey);

// The zero size or point when absent.
Size NSSizeForKey(const Dictionary& dictionary, const Value& key);
Size CGSizeForKey(const Dictionary& dictionary, const Value& key);
Point NSPointForKey(const Dictionary& dictionary, const Value& key);
// A number as it is, a String as a double number, anything else nil.
Value numberForKey(const Dictionary& dictionary, const Value& key);
// A String as it is, anything else its description, absence nil.
String stringForKey(const Dictionary& dictionary, const Value& key);
bool boolForKey(const Dictionary& dictionary, const Value& key);
// NSNotFound (not 0) when there is no number.
Integer integerForKey(const Dictionary& dictionary, const Value& key);
long longForKey(const Dictionary& dictionary, const Value& key);
// The number elements of a stored array, each read as a 32-bit signed integer and widened
// with sign extension (so indexes above 2^31 - 1 do not survive); nullopt when the value is
// absent or no array. A negative element widens to an index of 2^63 or more, which the set
// keeps, so a stored -1 survives the round trip through setIndexSet.
std::optional<IndexSet> indexSetForKey(const Dictionary& dictionary, const Value& key);

}  // namespace tarnvik
