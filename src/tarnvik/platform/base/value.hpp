// Value: the one dynamically typed handle. It holds nil, the explicit Null marker, a
// number (bool, signed, unsigned, double), a Date, any of the platform handles, or an
// Object reference, and answers equality, hashing, ordering and description.
//
//   Value v = 3;          Value w = 3.0;
//   v.isEqual(w);         // true: numbers are equal by value across kinds
#pragma once

#include <concepts>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

class Array;
class Data;
class Dictionary;
class Error;
class Object;
class OrderedSet;
class Set;
class Value;
struct DataStorage;
struct DictionaryStorage;
struct ErrorStorage;
struct UniqueStorage;

// The explicit null marker, distinct from nil.
struct Null {
  friend constexpr bool operator==(Null, Null) { return true; }
};
inline constexpr Null kNull{};

// What a Value holds (Value::Kind).
enum class ValueKind : std::uint8_t {
  Nil,
  Null,
  Bool,
  Int,
  UInt,
  Double,
  Date,
  String,
  Data,
  Array,
  Dictionary,
  Set,
  OrderedSet,
  Error,
  Object,
};

namespace detail {
constexpr std::size_t valueIndex(ValueKind kind) { return static_cast<std::size_t>(kind); }
}  // namespace detail

class Value {
 public:
  using Kind = ValueKind;

  Value() = default;
  Value(Null) : storage_(std::in_place_index<detail::valueIndex(Kind::Null)>) {}       // NOLINT
  Value(bool b) : storage_(std::in_place_index<detail::valueIndex(Kind::Bool)>, b) {}  // NOLINT
  template <std::signed_integral T>
  Value(T i) : storage_(std::in_place_index<detail::valueIndex(Kind::Int)>, i) {}  // NOLINT
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) Value(T u)
      : storage_(std::in_place_index<detail::valueIndex(Kind::UInt)>, u) {}                // NOLINT
  Value(double d) : storage_(std::in_place_index<detail::valueIndex(Kind::Double)>, d) {}  // NOLINT
  Value(float f) : Value(static_cast<double>(f)) {}                                        // NOLINT
  Value(long double d) : Value(static_cast<double>(d)) {}                                  // NOLINT
  Value(Date date)
      : storage_(std::in_place_index<detail::valueIndex(Kind::Date)>, date) {}  // NOLINT
  Value(const char* utf8);                                                      // NOLINT
  Value(const char16_t* utf16);                                                 // NOLINT
  Value(const std::string& utf8);                                               // NOLINT
  Value(std::string_view utf8);                                                 // NOLINT
  Value(const std::u16string& utf16);                                           // NOLINT
  Value(std::u16string_view utf16);                                             // NOLINT
  Value(const String& s);                                                       // NOLINT
  Value(const Data& d);                                                         // NOLINT
  Value(const Array& a);                                                        // NOLINT
  Value(const Dictionary& d);                                                   // NOLINT
  Value(const Set& s);                                                          // NOLINT
  Value(const OrderedSet& s);                                                   // NOLINT
  Value(const Error& e);                                                        // NOLINT
  Value(std::shared_ptr<Object> object);                                        // NOLINT
  template <class T>
  requires std::derived_from<T, Object> Value(std::shared_ptr<T> object)
      : Value(std::shared_ptr<Object>(std::move(object))) {}  // NOLINT

  Kind kind() const { return static_cast<Kind>(storage_.index()); }
  bool isNil() const { return kind() == Kind::Nil; }
  bool isNull() const { return kind() == Kind::Null; }
  bool isNumber() const { return kind() >= Kind::Bool && kind() <= Kind::Double; }
  bool isString() const { return kind() == Kind::String; }
  bool isCollection() const { return kind() >= Kind::Array && kind() <= Kind::OrderedSet; }

  // The handle held, or a nil handle when the value is of another kind.
  String asString() const;
  Data asData() const;
  Array asArray() const;
  Dictionary asDictionary() const;
  Set asSet() const;
  OrderedSet asOrderedSet() const;
  Error asError() const;
  std::shared_ptr<Object> asObject() const;
  template <class T>
  std::shared_ptr<T> asObject() const {
    return std::dynamic_pointer_cast<T>(asObject());
  }
  // The date held; the reference date for other kinds.
  Date asDate() const;

  // Numeric readings: numbers convert (saturating), strings parse as String does, and
  // every other kind reads as 0 / false.
  bool boolValue() const;
  Integer integerValue() const;
  long long longLongValue() const;
  int intValue() const;
  UInteger unsignedIntegerValue() const;
  double doubleValue() const;
  float floatValue() const { return static_cast<float>(doubleValue()); }

  // Equality by value: numbers across kinds, strings unit by unit, collections element
  // by element, objects through Object::isEqual. nil equals only nil.
  bool isEqual(const Value& other) const;
  std::size_t hash() const;
  // The same storage (handles) or the same kind and bits (scalars).
  bool isIdenticalTo(const Value& other) const;
  // Orders numbers with numbers, strings with strings (literal), dates with dates.
  // Raises NSInvalidArgumentException for other pairs.
  ComparisonResult compare(const Value& other) const;
  // The platform's familiar text: a string as itself, a number in decimal, an array as
  // a parenthesised indented list, nil as "(null)", Null as "<null>".
  String description() const;
  // The class name the platform would report ("NSString", "NSNumber", "NSArray", ...).
  String className() const;
  bool isKindOfClass(const String& className) const;
  // A copy with storage of its own (handles) or the same scalar.
  Value copy() const;

  // The address of the shared storage of a handle or object (what %p prints for it);
  // null for nil, Null, numbers and dates.
  const void* identity() const;

  friend bool operator==(const Value& a, const Value& b) { return a.isEqual(b); }

 private:
  friend struct ValueAccess;
  static constexpr std::size_t index(Kind kind) { return detail::valueIndex(kind); }
  // One alternative per Kind, in the Kind's order; Set and OrderedSet share a storage type
  // and are told apart by their index.
  using Storage =
      std::variant<std::monostate, Null, bool, std::int64_t, std::uint64_t, double, Date,
                   std::shared_ptr<std::u16string>, std::shared_ptr<DataStorage>,
                   std::shared_ptr<std::vector<Value>>, std::shared_ptr<DictionaryStorage>,
                   std::shared_ptr<UniqueStorage>, std::shared_ptr<UniqueStorage>,
                   std::shared_ptr<ErrorStorage>, std::shared_ptr<Object>>;
  // The alternative of the kind, or null when the value holds another kind.
  template <Kind K>
  const auto* get() const {
    return std::get_if<index(K)>(&storage_);
  }
  template <Kind K, class Handle>
  static Value fromHandle(const Handle& handle) {
    Value v;
    if (!handle.isNil()) v.storage_.template emplace<index(K)>(handle.storage_);
    return v;
  }
  Storage storage_;
};
static_assert(sizeof(Value) <= 24, "a Value is a variant index and one shared pointer");

}  // namespace tarnvik

template <>
struct std::hash<tarnvik::Value> {
  std::size_t operator()(const tarnvik::Value& v) const { return v.hash(); }
};

namespace tarnvik {

// Writes the description (for test failure messages and debugging).
std::ostream& operator<<(std::ostream& out, const Value& value);

// Hash-container equality by isEqual.
struct ValueEqual {
  bool operator()(const Value& a, const Value& b) const { return a.isEqual(b); }
};
}  // namespace tarnvik
