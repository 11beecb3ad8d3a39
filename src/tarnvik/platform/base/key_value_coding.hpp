// Key-value coding and calling methods by name: values of registered properties, of
// dictionaries (their entries), of arrays and sets (each element's value), and a few
// built-in readings of strings, numbers and collections.
//
//   valueForKey(Value(clip), u"name");              // the clip's name
//   valueForKeyPath(Value(project), u"clips.name");  // an array of names
#pragma once

#include <optional>

#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

// A dictionary answers its entry (nil when absent); an array the array of its elements'
// values (Null for nil); a set the set of its elements' non-nil values; an object its
// registered property, else its registered no-argument method; strings ("length",
// "uppercaseString", "lowercaseString", "boolValue", "integerValue", "doubleValue"),
// numbers ("boolValue", "integerValue", "doubleValue", "stringValue") and collections
// ("count") answer those keys; every value answers "description" and "self". nil answers
// nil. Any other key raises NSUndefinedKeyException ("[<Class 0x...> valueForUndefinedKey:]:
// this class is not key value coding-compliant for the key <key>.").
Value valueForKey(const Value& target, const String& key);
// valueForKey along the "."-separated keys; nil as soon as a step gives nil.
Value valueForKeyPath(const Value& target, const String& keyPath);
// Sets a registered property of an object (NSUndefinedKeyException for an unknown or
// read-only key).
void setValueForKey(const Value& object, const Value& value, const String& key);
// Sets (or, for nil, removes) a dictionary entry.
void setValueForKey(Dictionary& dictionary, const Value& value, const String& key);

// A no-argument method found by name: the object's registered methods and properties, or
// the built-in readings above. nullopt when there is none.
struct FoundMethod {
  ReturnKind returns;
  std::function<Value()> invoke;
};
std::optional<FoundMethod> methodNamed(const Value& target, const String& name);
// The first byte of a method's result as it lies in memory on a little-endian machine: 0 or
// 1 for a BOOL, the lowest byte of an integer of any width, the lowest byte of a float's or
// double's bits (0 for 1.0), and for an object the lowest byte of its address (0 for nil).
unsigned char firstByteOfResult(ReturnKind returns, const Value& result);
bool respondsToSelector(const Value& target, const String& name);
// Calls the method; NSInvalidArgumentException ("-[<Class> <name>]: unrecognized selector
// sent to instance 0x...") when there is none.
Value performSelector(const Value& target, const String& name);

}  // namespace tarnvik
