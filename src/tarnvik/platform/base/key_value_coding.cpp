#include "tarnvik/platform/base/key_value_coding.hpp"

#include <bit>
#include <cstdint>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

namespace {

// "[<Class 0x...> valueForUndefinedKey:]: ..." or, with the setter's name, the same for
// setValue:forUndefinedKey:.
[[noreturn]] void raiseUndefinedKey(const Value& target, const String& key,
                                    const char16_t* selector = u"valueForUndefinedKey:") {
  throw Exception(
      NSUndefinedKeyException,
      message::build(u"[<", target.className(), u" ", message::Pointer{target.identity()}, u"> ",
                     selector, u"]: this class is not key value coding-compliant for the key ", key,
                     u"."));
}

// The readings every value of a kind offers without registration.
std::optional<FoundMethod> builtinMethod(const Value& target, const String& name) {
  using K = Value::Kind;
  auto reading = [&](ReturnKind kind, std::function<Value()> f) {
    return FoundMethod{kind, std::move(f)};
  };
  if (name == String(u"description"))
    return reading(ReturnKind::Object, [target] { return Value(target.description()); });
  if (name == String(u"self")) return reading(ReturnKind::Object, [target] { return target; });
  if (target.isString() || target.isNumber()) {
    if (name == String(u"boolValue"))
      return reading(ReturnKind::Bool, [target] { return Value(target.boolValue()); });
    if (name == String(u"integerValue"))
      return reading(ReturnKind::Integer64, [target] { return Value(target.integerValue()); });
    if (name == String(u"doubleValue"))
      return reading(ReturnKind::Double, [target] { return Value(target.doubleValue()); });
  }
  if (target.isNumber() && name == String(u"stringValue")) {
    return reading(ReturnKind::Object, [target] { return Value(target.description()); });
  }
  if (target.isString()) {
    if (name == String(u"length"))
      return reading(ReturnKind::Integer64, [target] { return Value(target.asString().length()); });
    if (name == String(u"uppercaseString")) {
      return reading(ReturnKind::Object,
                     [target] { return Value(target.asString().uppercaseString()); });
    }
    if (name == String(u"lowercaseString")) {
      return reading(ReturnKind::Object,
                     [target] { return Value(target.asString().lowercaseString()); });
    }
  }
  if (target.isCollection() && name == String(u"count")) {
    return reading(ReturnKind::Integer64, [target] {
      switch (target.kind()) {
        case K::Array:
          return Value(target.asArray().count());
        case K::Dictionary:
          return Value(target.asDictionary().count());
        case K::Set:
          return Value(target.asSet().count());
        default:
          return Value(target.asOrderedSet().count());
      }
    });
  }
  return std::nullopt;
}

}  // namespace

unsigned char firstByteOfResult(ReturnKind returns, const Value& result) {
  switch (returns) {
    case ReturnKind::Bool:
      return result.boolValue() ? 1 : 0;
    case ReturnKind::Integer8:
    case ReturnKind::Integer16:
    case ReturnKind::Integer32:
    case ReturnKind::Integer64:
      // Little-endian: the lowest byte comes first, whatever the width.
      return static_cast<unsigned char>(result.kind() == Value::Kind::UInt
                                            ? result.unsignedIntegerValue()
                                            : static_cast<UInteger>(result.integerValue()));
    case ReturnKind::Float:
      return static_cast<unsigned char>(std::bit_cast<std::uint32_t>(result.floatValue()));
    case ReturnKind::Double:
      return static_cast<unsigned char>(std::bit_cast<std::uint64_t>(result.doubleValue()));
    case ReturnKind::Object:
      break;
  }
  // An object is a pointer: nil is all zero bytes, any other object the lowest byte of its
  // address. A number or date held by value has no address and reads as an integer.
  if (const void* address = result.identity()) {
    return static_cast<unsigned char>(reinterpret_cast<std::uintptr_t>(address));
  }
  return static_cast<unsigned char>(static_cast<UInteger>(result.integerValue()));
}

std::optional<FoundMethod> methodNamed(const Value& target, const String& name) {
  if (const auto object = target.asObject()) {
    if (const MethodInfo* method = object->classInfo().method(name)) {
      return FoundMethod{method->returns, [object, method] { return method->invoke(*object); }};
    }
    if (const PropertyInfo* property = object->classInfo().property(name)) {
      return FoundMethod{property->returns,
                         [object, property] { return property->getter(*object); }};
    }
  }
  return builtinMethod(target, name);
}

bool respondsToSelector(const Value& target, const String& name) {
  return methodNamed(target, name).has_value();
}

Value performSelector(const Value& target, const String& name) {
  if (target.isNil()) return Value();
  const auto method = methodNamed(target, name);
  if (!method) {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"-[", target.className(), u" ", name,
                                   u"]: unrecognized selector sent to instance ",
                                   message::Pointer{target.identity()}));
  }
  return method->invoke();
}

Value valueForKey(const Value& target, const String& key) {
  switch (target.kind()) {
    case Value::Kind::Nil:
      return Value();
    case Value::Kind::Dictionary:
      return target.asDictionary().objectForKey(key);
    case Value::Kind::Array: {
      const Array elements = target.asArray();
      std::vector<Value> values;
      values.reserve(elements.count());
      for (const Value& element : elements) {
        const Value value = valueForKey(element, key);
        values.push_back(value.isNil() ? Value(kNull) : value);
      }
      return Array(std::move(values));
    }
    case Value::Kind::Set: {
      Set values = Set::set();
      for (const Value& element : target.asSet()) {
        const Value value = valueForKey(element, key);
        if (!value.isNil()) values.addObject(value);
      }
      return values;
    }
    default:
      break;
  }
  if (const auto object = target.asObject()) {
    if (auto dynamic = object->valueForDynamicKey(key)) return *std::move(dynamic);
    if (const PropertyInfo* property = object->classInfo().property(key))
      return property->getter(*object);
  }
  if (const auto method = methodNamed(target, key)) return method->invoke();
  raiseUndefinedKey(target, key);
}

Value valueForKeyPath(const Value& target, const String& keyPath) {
  Value current = target;
  for (const Value& key : keyPath.componentsSeparatedByString(u".")) {
    if (current.isNil()) return Value();
    current = valueForKey(current, key.asString());
  }
  return current;
}

void setValueForKey(const Value& object, const Value& value, const String& key) {
  const auto target = object.asObject();
  if (!target) {
    if (object.isNil()) return;
    raiseUndefinedKey(object, key, u"setValue:forUndefinedKey:");
  }
  if (target->setValueForDynamicKey(key, value)) return;
  const PropertyInfo* property = target->classInfo().property(key);
  if (!property || !property->setter) {
    raiseUndefinedKey(object, key, u"setValue:forUndefinedKey:");
  }
  property->setter(*target, value);
}

void setValueForKey(Dictionary& dictionary, const Value& value, const String& key) {
  dictionary.setValue(value, key);
}

}  // namespace tarnvik
