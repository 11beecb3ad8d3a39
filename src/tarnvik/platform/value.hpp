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
#include <type_traits>

#include "tarnvik/platform/date.hpp"
#include "tarnvik/platform/types.hpp"

namespace tarnvik {

class Array;
class Data;
class Dictionary;
class Error;
class Object;
class OrderedSet;
class Set;
class String;

// The explicit null marker, distinct from nil.
struct Null {
  friend constexpr bool operator==(Null, Null) { return true; }
};
inline constexpr Null kNull{};

class Value {
 public:
  enum class Kind : std::uint8_t {
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

  Value() = default;
  Value(Null) : kind_(Kind::Null) {}                    // NOLINT
  Value(bool b) : kind_(Kind::Bool) { scalar_.b = b; }  // NOLINT
  template <std::signed_integral T>
  Value(T i) : kind_(Kind::Int) {
    scalar_.i = i;
  }  // NOLINT
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) Value(T u) : kind_(Kind::UInt) { scalar_.u = u; }  // NOLINT
  Value(double d) : kind_(Kind::Double) { scalar_.d = d; }                            // NOLINT
  Value(float f) : Value(static_cast<double>(f)) {}                                   // NOLINT
  Value(Date date) : kind_(Kind::Date) {
    scalar_.d = date.timeIntervalSinceReferenceDate;
  }                                       // NOLINT
  Value(const char* utf8);                // NOLINT
  Value(const char16_t* utf16);           // NOLINT
  Value(const String& s);                 // NOLINT
  Value(const Data& d);                   // NOLINT
  Value(const Array& a);                  // NOLINT
  Value(const Dictionary& d);             // NOLINT
  Value(const Set& s);                    // NOLINT
  Value(const OrderedSet& s);             // NOLINT
  Value(const Error& e);                  // NOLINT
  Value(std::shared_ptr<Object> object);  // NOLINT
  template <class T>
  requires std::derived_from<T, Object> Value(std::shared_ptr<T> object)
      : Value(std::shared_ptr<Object>(std::move(object))) {}  // NOLINT

  Kind kind() const { return kind_; }
  bool isNil() const { return kind_ == Kind::Nil; }
  bool isNull() const { return kind_ == Kind::Null; }
  bool isNumber() const {
    return kind_ == Kind::Bool || kind_ == Kind::Int || kind_ == Kind::UInt ||
           kind_ == Kind::Double;
  }
  bool isString() const { return kind_ == Kind::String; }
  bool isCollection() const {
    return kind_ == Kind::Array || kind_ == Kind::Dictionary || kind_ == Kind::Set ||
           kind_ == Kind::OrderedSet;
  }

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

  friend bool operator==(const Value& a, const Value& b) { return a.isEqual(b); }

  // For the handle types' own use.
  const std::shared_ptr<void>& storage() const { return ref_; }

 private:
  friend struct ValueAccess;
  Value(Kind kind, std::shared_ptr<void> ref) : kind_(kind), ref_(std::move(ref)) {}
  Kind kind_ = Kind::Nil;
  union Scalar {
    bool b;
    std::int64_t i;
    std::uint64_t u;
    double d;
  } scalar_{.u = 0};
  std::shared_ptr<void> ref_;
};

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

// The text type completes the picture for callers of asString() and description().
#include "tarnvik/platform/string.hpp"  // IWYU pragma: export
