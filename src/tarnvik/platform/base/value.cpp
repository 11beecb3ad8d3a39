#include "tarnvik/platform/base/value.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <ostream>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/describe.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/object.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

namespace {

constexpr double kTwo63 = 9223372036854775808.0;
constexpr double kTwo64 = 18446744073709551616.0;

std::size_t mix(std::uint64_t x) {
  x ^= x >> 33;
  x *= 0xff51afd7ed558ccdULL;
  x ^= x >> 33;
  x *= 0xc4ceb9fe1a85ec53ULL;
  x ^= x >> 33;
  return static_cast<std::size_t>(x);
}

int sign(auto a, auto b) { return a < b ? -1 : (a > b ? 1 : 0); }

// Orders an integer against a double exactly; NaN sorts below every number.
int compareSignedDouble(std::int64_t i, double d) {
  if (std::isnan(d)) return 1;
  if (d >= kTwo63) return -1;
  if (d < -kTwo63) return 1;
  const double whole = std::trunc(d);
  const auto wholeInt = static_cast<std::int64_t>(whole);
  if (i != wholeInt) return sign(i, wholeInt);
  return sign(0.0, d - whole);
}

int compareUnsignedDouble(std::uint64_t u, double d) {
  if (std::isnan(d) || d < 0) return 1;
  if (d >= kTwo64) return -1;
  const double whole = std::trunc(d);
  const auto wholeInt = static_cast<std::uint64_t>(whole);
  if (u != wholeInt) return sign(u, wholeInt);
  return sign(0.0, d - whole);
}

int compareSignedUnsigned(std::int64_t i, std::uint64_t u) {
  return i < 0 ? -1 : sign(static_cast<std::uint64_t>(i), u);
}

}  // namespace

struct NumberView {
  enum { Signed, Unsigned, Floating } kind;
  std::int64_t i = 0;
  std::uint64_t u = 0;
  double d = 0;
};

struct ValueAccess {
  using Kind = Value::Kind;
  // Only called for numbers.
  static NumberView number(const Value& v) {
    switch (v.kind()) {
      case Kind::Bool:
        return {NumberView::Signed, *v.get<Kind::Bool>() ? 1 : 0};
      case Kind::Int:
        return {NumberView::Signed, *v.get<Kind::Int>()};
      case Kind::UInt:
        return {NumberView::Unsigned, 0, *v.get<Kind::UInt>()};
      default:
        return {NumberView::Floating, 0, 0, *v.get<Kind::Double>()};
    }
  }
  // The shared storage of a handle or object kind, or null.
  static const void* identity(const Value& v) {
    return std::visit(
        [](const auto& held) -> const void* {
          if constexpr (requires { held.get(); }) {
            return held.get();
          } else {
            return nullptr;
          }
        },
        v.storage_);
  }
};

static int compareNumbers(const NumberView& a, const NumberView& b) {
  using K = decltype(a.kind);
  if (a.kind == K::Signed && b.kind == K::Signed) return sign(a.i, b.i);
  if (a.kind == K::Unsigned && b.kind == K::Unsigned) return sign(a.u, b.u);
  if (a.kind == K::Signed && b.kind == K::Unsigned) return compareSignedUnsigned(a.i, b.u);
  if (a.kind == K::Unsigned && b.kind == K::Signed) return -compareSignedUnsigned(b.i, a.u);
  if (a.kind == K::Floating && b.kind == K::Floating) {
    const bool aNaN = std::isnan(a.d), bNaN = std::isnan(b.d);
    if (aNaN || bNaN) return aNaN == bNaN ? 0 : (aNaN ? -1 : 1);
    return sign(a.d, b.d);
  }
  if (a.kind == K::Floating) return -compareNumbers(b, a);
  return b.kind == K::Floating && a.kind == K::Signed ? compareSignedDouble(a.i, b.d)
                                                      : compareUnsignedDouble(a.u, b.d);
}

static std::size_t hashNumber(const NumberView& n) {
  switch (n.kind) {
    case NumberView::Signed:
      return mix(static_cast<std::uint64_t>(n.i));
    case NumberView::Unsigned:
      return mix(n.u);
    case NumberView::Floating:
      break;
  }
  const double d = n.d;
  if (std::isnan(d)) return 0x7ff8;
  if (std::trunc(d) == d) {
    if (d >= -kTwo63 && d < kTwo63)
      return mix(static_cast<std::uint64_t>(static_cast<std::int64_t>(d)));
    if (d >= 0 && d < kTwo64) return mix(static_cast<std::uint64_t>(d));
  }
  return mix(std::bit_cast<std::uint64_t>(d));
}

Value::Value(const char* utf8) : Value(String(utf8)) {}
Value::Value(const char16_t* utf16) : Value(String(utf16)) {}
Value::Value(const std::string& utf8) : Value(String(utf8)) {}
Value::Value(std::string_view utf8) : Value(String(utf8)) {}
Value::Value(const std::u16string& utf16) : Value(String(std::u16string_view(utf16))) {}
Value::Value(std::u16string_view utf16) : Value(String(utf16)) {}
Value::Value(const String& s) : Value(fromHandle<Kind::String>(s)) {}
Value::Value(const Data& d) : Value(fromHandle<Kind::Data>(d)) {}
Value::Value(const Array& a) : Value(fromHandle<Kind::Array>(a)) {}
Value::Value(const Dictionary& d) : Value(fromHandle<Kind::Dictionary>(d)) {}
Value::Value(const Set& s) : Value(fromHandle<Kind::Set>(s)) {}
Value::Value(const OrderedSet& s) : Value(fromHandle<Kind::OrderedSet>(s)) {}
Value::Value(const Error& e) : Value(fromHandle<Kind::Error>(e)) {}
Value::Value(std::shared_ptr<Object> object) {
  if (object) storage_.emplace<index(Kind::Object)>(std::move(object));
}

String Value::asString() const {
  const auto* held = get<Kind::String>();
  return held ? String(*held) : String();
}
Data Value::asData() const {
  const auto* held = get<Kind::Data>();
  return held ? Data(*held) : Data();
}
Array Value::asArray() const {
  const auto* held = get<Kind::Array>();
  return held ? Array(*held) : Array();
}
Dictionary Value::asDictionary() const {
  const auto* held = get<Kind::Dictionary>();
  return held ? Dictionary(*held) : Dictionary();
}
Set Value::asSet() const {
  const auto* held = get<Kind::Set>();
  return held ? Set(*held) : Set();
}
OrderedSet Value::asOrderedSet() const {
  const auto* held = get<Kind::OrderedSet>();
  return held ? OrderedSet(*held) : OrderedSet();
}
Error Value::asError() const {
  const auto* held = get<Kind::Error>();
  return held ? Error(*held) : Error();
}
std::shared_ptr<Object> Value::asObject() const {
  const auto* held = get<Kind::Object>();
  return held ? *held : nullptr;
}
Date Value::asDate() const {
  const Date* held = get<Kind::Date>();
  return held ? *held : Date{};
}
const void* Value::identity() const { return ValueAccess::identity(*this); }

bool Value::boolValue() const {
  switch (kind()) {
    case Kind::Bool:
      return *get<Kind::Bool>();
    case Kind::Int:
      return *get<Kind::Int>() != 0;
    case Kind::UInt:
      return *get<Kind::UInt>() != 0;
    case Kind::Double:
      return *get<Kind::Double>() != 0;
    case Kind::String:
      return asString().boolValue();
    default:
      return false;
  }
}

Integer Value::integerValue() const {
  switch (kind()) {
    case Kind::Bool:
      return *get<Kind::Bool>() ? 1 : 0;
    case Kind::Int:
      return *get<Kind::Int>();
    case Kind::UInt: {
      const std::uint64_t u = *get<Kind::UInt>();
      return u > static_cast<std::uint64_t>(INT64_MAX) ? INT64_MAX : static_cast<Integer>(u);
    }
    case Kind::Double: {
      const double d = *get<Kind::Double>();
      if (std::isnan(d)) return 0;
      if (d >= kTwo63) return INT64_MAX;
      if (d < -kTwo63) return INT64_MIN;
      return static_cast<Integer>(d);
    }
    case Kind::String:
      return asString().integerValue();
    default:
      return 0;
  }
}
long long Value::longLongValue() const { return integerValue(); }
int Value::intValue() const {
  const Integer i = integerValue();
  return static_cast<int>(std::clamp<Integer>(i, INT32_MIN, INT32_MAX));
}
UInteger Value::unsignedIntegerValue() const {
  if (const auto* u = get<Kind::UInt>()) return *u;
  if (const double* d = get<Kind::Double>(); d && *d >= kTwo63) {
    return *d >= kTwo64 ? UINT64_MAX : static_cast<UInteger>(*d);
  }
  return static_cast<UInteger>(integerValue());
}
double Value::doubleValue() const {
  switch (kind()) {
    case Kind::Bool:
      return *get<Kind::Bool>() ? 1 : 0;
    case Kind::Int:
      return static_cast<double>(*get<Kind::Int>());
    case Kind::UInt:
      return static_cast<double>(*get<Kind::UInt>());
    case Kind::Double:
      return *get<Kind::Double>();
    case Kind::Date:
      return get<Kind::Date>()->timeIntervalSinceReferenceDate;
    case Kind::String:
      return asString().doubleValue();
    default:
      return 0;
  }
}

bool Value::isEqual(const Value& other) const {
  const Kind own = kind();
  if (own != other.kind()) {
    return isNumber() && other.isNumber() &&
           compareNumbers(ValueAccess::number(*this), ValueAccess::number(other)) == 0;
  }
  switch (own) {
    case Kind::Nil:
    case Kind::Null:
      return true;
    case Kind::Bool:
      return *get<Kind::Bool>() == *other.get<Kind::Bool>();
    case Kind::Int:
      return *get<Kind::Int>() == *other.get<Kind::Int>();
    case Kind::UInt:
      return *get<Kind::UInt>() == *other.get<Kind::UInt>();
    case Kind::Double:
      return compareNumbers(ValueAccess::number(*this), ValueAccess::number(other)) == 0;
    default:
      break;
  }
  if (const void* shared = identity(); shared && shared == other.identity()) return true;
  switch (own) {
    case Kind::Date:
      return asDate().timeIntervalSinceReferenceDate ==
             other.asDate().timeIntervalSinceReferenceDate;
    case Kind::String:
      return **get<Kind::String>() == **other.get<Kind::String>();
    case Kind::Data:
      return asData().isEqualToData(other.asData());
    case Kind::Array:
      return asArray().isEqualToArray(other.asArray());
    case Kind::Dictionary:
      return asDictionary().isEqualToDictionary(other.asDictionary());
    case Kind::Set:
      return asSet().isEqualToSet(other.asSet());
    case Kind::OrderedSet:
      return asOrderedSet().isEqualToOrderedSet(other.asOrderedSet());
    case Kind::Error:
      return asError().isEqual(other.asError());
    case Kind::Object:
      return asObject()->isEqual(*other.asObject());
    default:
      return false;
  }
}

std::size_t Value::hash() const {
  switch (kind()) {
    case Kind::Nil:
      return 0;
    case Kind::Null:
      return 0x6e756c6c;
    case Kind::Int:
      return mix(static_cast<std::uint64_t>(*get<Kind::Int>()));
    case Kind::Bool:
    case Kind::UInt:
    case Kind::Double:
      return hashNumber(ValueAccess::number(*this));
    case Kind::Date:
      return mix(std::bit_cast<std::uint64_t>(asDate().timeIntervalSinceReferenceDate)) ^ 0xda7e;
    case Kind::String:
      return std::hash<std::u16string_view>{}(**get<Kind::String>());
    case Kind::Data:
      return asData().hash();
    case Kind::Array:
      return asArray().hash();
    case Kind::Dictionary:
      return asDictionary().hash();
    case Kind::Set:
      return asSet().hash();
    case Kind::OrderedSet:
      return asOrderedSet().hash();
    case Kind::Error:
      return asError().hash();
    case Kind::Object:
      return asObject()->hash();
  }
  return 0;
}

bool Value::isIdenticalTo(const Value& other) const {
  if (kind() != other.kind()) return false;
  if (const double* d = get<Kind::Double>()) {
    return std::bit_cast<std::uint64_t>(*d) ==
           std::bit_cast<std::uint64_t>(*other.get<Kind::Double>());
  }
  if (const Date* d = get<Kind::Date>()) {
    return std::bit_cast<std::uint64_t>(d->timeIntervalSinceReferenceDate) ==
           std::bit_cast<std::uint64_t>(other.get<Kind::Date>()->timeIntervalSinceReferenceDate);
  }
  // Handles compare their storage pointers, the other scalars their values.
  return storage_ == other.storage_;
}

ComparisonResult Value::compare(const Value& other) const {
  int c = 0;
  if (isNumber() && other.isNumber()) {
    c = compareNumbers(ValueAccess::number(*this), ValueAccess::number(other));
  } else if (isString() && other.isString()) {
    return asString().compare(other.asString());
  } else if (kind() == Kind::Date && other.kind() == Kind::Date) {
    c = sign(asDate().timeIntervalSinceReferenceDate,
             other.asDate().timeIntervalSinceReferenceDate);
  } else {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"Value::compare: cannot compare ", className(), u" with ",
                                   other.isNil() ? String(u"nil") : other.className()));
  }
  return static_cast<ComparisonResult>(c);
}

String Value::description() const { return describe::describe(*this, 0, false); }

String Value::className() const {
  switch (kind()) {
    case Kind::Nil:
      return String();
    case Kind::Null:
      return u"NSNull";
    case Kind::Bool:
    case Kind::Int:
    case Kind::UInt:
    case Kind::Double:
      return u"NSNumber";
    case Kind::Date:
      return u"NSDate";
    case Kind::String:
      return u"NSString";
    case Kind::Data:
      return u"NSData";
    case Kind::Array:
      return u"NSArray";
    case Kind::Dictionary:
      return u"NSDictionary";
    case Kind::Set:
      return u"NSSet";
    case Kind::OrderedSet:
      return u"NSOrderedSet";
    case Kind::Error:
      return asError().className();
    case Kind::Object:
      return asObject()->className();
  }
  return String();
}

bool Value::isKindOfClass(const String& name) const {
  if (isNil()) return false;
  if (kind() == Kind::Error) return asError().isKindOfClass(name);
  if (kind() == Kind::Object) return asObject()->isKindOfClass(name);
  if (name == String(u"NSObject")) return true;
  const String own = className();
  if (name == own) return true;
  // One handle type serves both the immutable and the mutable class.
  return name.hasPrefix(u"NSMutable") && name.substringFromIndex(9) == own.substringFromIndex(2);
}

Value Value::copy() const {
  switch (kind()) {
    case Kind::String:
      return Value(String(std::u16string(asString().units())));
    case Kind::Data:
      return Value(asData().copy());
    case Kind::Array:
      return Value(asArray().copy());
    case Kind::Dictionary:
      return Value(asDictionary().copy());
    case Kind::Set:
      return Value(asSet().copy());
    case Kind::OrderedSet:
      return Value(asOrderedSet().copy());
    default:
      return *this;
  }
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
  return out << value.description().utf8();
}

}  // namespace tarnvik
