#include "tarnvik/collections/dictionaries.hpp"

#include <algorithm>

#include "tarnvik/collections/arrays.hpp"
#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/base/object.hpp"
#include "tarnvik/platform/net/url.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

Dictionary dictionaryWithoutNullValues(const Dictionary& dictionary) {
  Dictionary kept = Dictionary::dictionaryWithCapacity(dictionary.count());
  for (const auto& [key, value] : dictionary) {
    if (!value.isNull()) kept.setObject(value, key);
  }
  return kept;
}

Dictionary dictionaryByAddingDictionary(const Dictionary& dictionary, const Dictionary& other) {
  Dictionary merged = dictionary.isNil() ? Dictionary::dictionary() : dictionary.copy();
  for (const auto& [key, theirs] : other) {
    const Dictionary mine = dictionary.objectForKey(key).asDictionary();
    const Dictionary nested = theirs.asDictionary();
    merged.setObject(!mine.isNil() && !nested.isNil()
                         ? Value(dictionaryByAddingDictionary(mine, nested))
                         : theirs,
                     key);
  }
  return merged;
}

Dictionary dictionaryByAddingDictionaries(const Array& dictionaries) {
  Dictionary merged = Dictionary::dictionary();
  for (const Value& d : dictionaries) merged.addEntriesFromDictionary(d.asDictionary());
  return merged;
}

Array arrayBySeparatingEntries(const Dictionary& dictionary) {
  Array entries = Array::arrayWithCapacity(dictionary.count());
  for (const auto& [key, value] : dictionary) entries.addObject(Dictionary{{key, value}});
  return entries;
}

String urlEncodedParameters(const Dictionary& dictionary) {
  static const CharacterSet alphanumerics = CharacterSet::alphanumericCharacterSet();
  static const PercentEscapes keyEscapes(u"", u"");
  String text = u"";
  for (const auto& [key, value] : dictionary) {
    if (!value.isString()) {
      raiseInvalidArgumentFormat(
          u"-[%@ stringByAddingPercentEncodingWithAllowedCharacters:]: unrecognized "
          u"selector sent to instance %p",
          value.className(), value.identity());
    }
    // The key's escaping works in ASCII: a key beyond ASCII has no escaped form (nil).
    const String keyText = key.description();
    const bool ascii = std::all_of(keyText.units().begin(), keyText.units().end(),
                                   [](char16_t c) { return c < 0x80; });
    if (!text.isEmpty()) text.appendString(u"&");
    appendFormat(
        text, u"%@=%@", ascii ? keyEscapes.apply(keyText) : String(),
        stringByAddingPercentEncodingWithAllowedCharacters(value.asString(), alphanumerics));
  }
  return text;
}

Array allKeysForObjectsIdenticalTo(const Dictionary& dictionary, const Value& object) {
  Array keys = Array::array();
  for (const auto& [key, value] : dictionary) {
    if (value.isIdenticalTo(object)) keys.addObject(key);
  }
  return keys.isEmpty() ? Array() : keys;
}

Dictionary dictionaryWithPropertiesOfObject(const Value& object) {
  Dictionary result = Dictionary::dictionary();
  const auto target = object.asObject();
  if (!target) return result;
  for (const PropertyInfo& property : target->classInfo().properties()) {
    const Value value = property.getter(*target);
    if (ClassRegistry::classNamed(property.name.capitalizedString())) {
      result.setObject(dictionaryWithPropertiesOfObject(value), property.name);
    } else if (!value.isNil()) {
      result.setObject(value, property.name);
    }
  }
  return result;
}

Dictionary reversedDictionary(const Dictionary& dictionary) {
  Dictionary reversed = Dictionary::dictionaryWithCapacity(dictionary.count());
  for (const auto& [key, value] : dictionary) reversed.setObject(key, value);
  return reversed;
}

Dictionary mutableDeepCopy(const Dictionary& dictionary) {
  return dictionary.isNil() ? Dictionary() : mutableDeepCopy(Value(dictionary)).asDictionary();
}

Dictionary mapValuesWithBlock(const Dictionary& dictionary,
                              const std::function<Value(const Value&)>& block) {
  Dictionary mapped = Dictionary::dictionaryWithCapacity(dictionary.count());
  for (const auto& [key, value] : dictionary) {
    const Value result = block(value);
    if (!result.isNil()) mapped.setObject(result, key);
  }
  return mapped;
}

Dictionary dictionaryWithKeys(const Array& keys,
                              const std::function<Value(UInteger, const Value&)>& valueFunction) {
  Dictionary result = Dictionary::dictionaryWithCapacity(keys.count());
  for (UInteger i = 0; i < keys.count(); ++i) {
    const Value value = valueFunction(i, keys[i]);
    if (!value.isNil()) result.setObject(value, keys[i]);
  }
  return result;
}

void setObjectForKeyIgnoringNil(Dictionary& dictionary, const Value& object, const Value& key,
                                bool ignoringNil) {
  if (object.isNil() && ignoringNil) return;
  dictionary.setValue(object, key);
}

void setObjectForKeyDefaultForNil(Dictionary& dictionary, const Value& object, const Value& key,
                                  const Value& defaultValue) {
  dictionary.setValue(object.isNil() ? defaultValue : object, key);
}

void setValuesForKeysWithMapTable(MapTable& table, const MapTable& other) {
  const Array keys = other.allKeys();
  for (const Value& key : keys) table.setObject(other.objectForKey(key), key);
}

Array objectsForKeys(const MapTable& table, const Array& keys, const Value& notFoundMarker) {
  if (notFoundMarker.isNil()) raiseInvalidArgument(u"notFoundMarker must not be nil");
  Array objects = Array::arrayWithCapacity(keys.count());
  for (const Value& key : keys) {
    const Value object = table.objectForKey(key);
    objects.addObject(object.isNil() ? notFoundMarker : object);
  }
  return objects;
}

void setNSSize(Dictionary& dictionary, Size size, const Value& key) {
  dictionary.setObject(NSStringFromSize(size), key);
}
void setCGSize(Dictionary& dictionary, Size size, const Value& key) {
  setNSSize(dictionary, size, key);
}
void setNSPoint(Dictionary& dictionary, Point point, const Value& key) {
  dictionary.setObject(NSStringFromPoint(point), key);
}
void setBOOL(Dictionary& dictionary, bool value, const Value& key) {
  dictionary.setObject(value, key);
}
void setInteger(Dictionary& dictionary, Integer value, const Value& key) {
  dictionary.setObject(value, key);
}
void setLong(Dictionary& dictionary, long value, const Value& key) {
  dictionary.setObject(value, key);
}

void setIndexSet(Dictionary& dictionary, const std::optional<IndexSet>& indexes, const Value& key) {
  Array numbers = Array::array();
  if (indexes) {
    for (const UInteger index : indexes->indexes()) numbers.addObject(index);
  }
  dictionary.setObject(numbers, key);
}

void setObjectFromDictionary(Dictionary& dictionary, const Dictionary& source,
                             const Value& sourceKey, const Value& targetKey) {
  const Value value = source.objectForKey(sourceKey);
  if (!value.isNil()) dictionary.setObject(value, targetKey);
}

Size NSSizeForKey(const Dictionary& dictionary, const Value& key) {
  const Value value = dictionary.objectForKey(key);
  return value.isNil() ? Size{} : NSSizeFromString(value.description());
}
Size CGSizeForKey(const Dictionary& dictionary, const Value& key) {
  return NSSizeForKey(dictionary, key);
}
Point NSPointForKey(const Dictionary& dictionary, const Value& key) {
  const Value value = dictionary.objectForKey(key);
  return value.isNil() ? Point{} : NSPointFromString(value.description());
}

Value numberForKey(const Dictionary& dictionary, const Value& key) {
  const Value value = dictionary.objectForKey(key);
  if (value.isNumber()) return value;
  if (value.isString()) return Value(value.asString().doubleValue());
  return Value();
}

String stringForKey(const Dictionary& dictionary, const Value& key) {
  const Value value = dictionary.objectForKey(key);
  if (value.isNil()) return String();
  return value.isString() ? value.asString() : value.description();
}

bool boolForKey(const Dictionary& dictionary, const Value& key) {
  return numberForKey(dictionary, key).boolValue();
}

Integer integerForKey(const Dictionary& dictionary, const Value& key) {
  const Value number = numberForKey(dictionary, key);
  return number.isNil() ? static_cast<Integer>(NSNotFound) : number.integerValue();
}

long longForKey(const Dictionary& dictionary, const Value& key) {
  const Value number = numberForKey(dictionary, key);
  return number.isNil() ? static_cast<long>(NSNotFound) : static_cast<long>(number.integerValue());
}

std::optional<IndexSet> indexSetForKey(const Dictionary& dictionary, const Value& key) {
  const Array numbers = dictionary.objectForKey(key).asArray();
  if (numbers.isNil()) return std::nullopt;
  IndexSet indexes;
  for (const Value& number : numbers) {
    if (!number.isNumber()) continue;
    const auto narrowed =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(number.unsignedIntegerValue()));
    indexes.addIndex(static_cast<UInteger>(static_cast<Integer>(narrowed)));
  }
  return indexes;
}

}  // namespace tarnvik
