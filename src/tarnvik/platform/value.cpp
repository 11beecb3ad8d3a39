#include "tarnvik/platform/value.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <ostream>

#include "tarnvik/platform/data.hpp"
#include "tarnvik/platform/error.hpp"
#include "tarnvik/platform/format.hpp"
#include "tarnvik/platform/internal/describe.hpp"
#include "tarnvik/platform/object.hpp"
#include "tarnvik/platform/set.hpp"

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
  // Reads only the union member that the kind says is active.
  static NumberView number(const Value& v) {
    switch (v.kind_) {
      case Value::Kind::Bool:
        return {NumberView::Signed, v.scalar_.b ? 1 : 0};
      case Value::Kind::Int:
        return {NumberView::Signed, v.scalar_.i};
      case Value::Kind::UInt:
        return {NumberView::Unsigned, 0, v.scalar_.u};
      default:
        return {NumberView::Floating, 0, 0, v.scalar_.d};
    }
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
Value::Value(const String& s) {
  if (s.isNil()) return;
  kind_ = Kind::String;
  ref_ = s.storage();
}
Value::Value(const Data& d) {
  if (!d.isNil()) *this = Value(Kind::Data, d.storage());
}
Value::Value(const Array& a) {
  if (!a.isNil()) *this = Value(Kind::Array, a.storage());
}
Value::Value(const Dictionary& d) {
  if (!d.isNil()) *this = Value(Kind::Dictionary, d.storage());
}
Value::Value(const Set& s) {
  if (!s.isNil()) *this = Value(Kind::Set, s.storage());
}
Value::Value(const OrderedSet& s) {
  if (!s.isNil()) *this = Value(Kind::OrderedSet, s.storage());
}
Value::Value(const Error& e) {
  if (!e.isNil()) *this = Value(Kind::Error, e.storage());
}
Value::Value(std::shared_ptr<Object> object) {
  if (object) *this = Value(Kind::Object, std::move(object));
}

String Value::asString() const {
  return kind_ == Kind::String ? String::fromStorage(ref_) : String();
}
Data Value::asData() const { return kind_ == Kind::Data ? Data::fromStorage(ref_) : Data(); }
Array Value::asArray() const { return kind_ == Kind::Array ? Array::fromStorage(ref_) : Array(); }
Dictionary Value::asDictionary() const {
  return kind_ == Kind::Dictionary ? Dictionary::fromStorage(ref_) : Dictionary();
}
Set Value::asSet() const { return kind_ == Kind::Set ? Set::fromStorage(ref_) : Set(); }
OrderedSet Value::asOrderedSet() const {
  return kind_ == Kind::OrderedSet ? OrderedSet::fromStorage(ref_) : OrderedSet();
}
Error Value::asError() const { return kind_ == Kind::Error ? Error::fromStorage(ref_) : Error(); }
std::shared_ptr<Object> Value::asObject() const {
  return kind_ == Kind::Object ? std::static_pointer_cast<Object>(ref_) : nullptr;
}
Date Value::asDate() const { return kind_ == Kind::Date ? Date{scalar_.d} : Date{}; }

bool Value::boolValue() const {
  switch (kind_) {
    case Kind::Bool:
      return scalar_.b;
    case Kind::Int:
      return scalar_.i != 0;
    case Kind::UInt:
      return scalar_.u != 0;
    case Kind::Double:
      return scalar_.d != 0;
    case Kind::String:
      return asString().boolValue();
    default:
      return false;
  }
}

Integer Value::integerValue() const {
  switch (kind_) {
    case Kind::Bool:
      return scalar_.b ? 1 : 0;
    case Kind::Int:
      return scalar_.i;
    case Kind::UInt:
      return scalar_.u > static_cast<std::uint64_t>(INT64_MAX) ? INT64_MAX
                                                               : static_cast<Integer>(scalar_.u);
    case Kind::Double: {
      const double d = scalar_.d;
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
  if (kind_ == Kind::UInt) return scalar_.u;
  if (kind_ == Kind::Double && scalar_.d >= kTwo63) {
    return scalar_.d >= kTwo64 ? UINT64_MAX : static_cast<UInteger>(scalar_.d);
  }
  return static_cast<UInteger>(integerValue());
}
double Value::doubleValue() const {
  switch (kind_) {
    case Kind::Bool:
      return scalar_.b ? 1 : 0;
    case Kind::Int:
      return static_cast<double>(scalar_.i);
    case Kind::UInt:
      return static_cast<double>(scalar_.u);
    case Kind::Double:
    case Kind::Date:
      return scalar_.d;
    case Kind::String:
      return asString().doubleValue();
    default:
      return 0;
  }
}

bool Value::isEqual(const Value& other) const {
  if (isNumber() && other.isNumber()) {
    return compareNumbers(ValueAccess::number(*this), ValueAccess::number(other)) == 0;
  }
  if (kind_ != other.kind_) return false;
  if (ref_ && ref_ == other.ref_) return true;
  switch (kind_) {
    case Kind::Nil:
    case Kind::Null:
      return true;
    case Kind::Date:
      return scalar_.d == other.scalar_.d;
    case Kind::String:
      return asString().isEqualToString(other.asString());
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
  switch (kind_) {
    case Kind::Nil:
      return 0;
    case Kind::Null:
      return 0x6e756c6c;
    case Kind::Bool:
    case Kind::Int:
    case Kind::UInt:
    case Kind::Double:
      return hashNumber(ValueAccess::number(*this));
    case Kind::Date:
      return mix(std::bit_cast<std::uint64_t>(scalar_.d)) ^ 0xda7e;
    case Kind::String:
      return asString().hash();
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
  if (kind_ != other.kind_) return false;
  if (ref_ || other.ref_) return ref_ == other.ref_;
  switch (kind_) {
    case Kind::Bool:
      return scalar_.b == other.scalar_.b;
    case Kind::Nil:
    case Kind::Null:
      return true;
    default:
      return scalar_.u == other.scalar_.u;
  }
}

ComparisonResult Value::compare(const Value& other) const {
  int c = 0;
  if (isNumber() && other.isNumber()) {
    c = compareNumbers(ValueAccess::number(*this), ValueAccess::number(other));
  } else if (kind_ == Kind::String && other.kind_ == Kind::String) {
    return asString().compare(other.asString());
  } else if (kind_ == Kind::Date && other.kind_ == Kind::Date) {
    c = sign(scalar_.d, other.scalar_.d);
  } else {
    throw Exception(NSInvalidArgumentException,
                    stringWithFormat(u"-[%@ compare:]: cannot compare with %@", className(),
                                     other.isNil() ? String(u"nil") : other.className()));
  }
  return static_cast<ComparisonResult>(c);
}

String Value::description() const { return describe::describe(*this, 0, false); }

String Value::className() const {
  switch (kind_) {
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
  if (kind_ == Kind::Error) return asError().isKindOfClass(name);
  if (kind_ == Kind::Object) return asObject()->isKindOfClass(name);
  if (name == String(u"NSObject")) return true;
  const String own = className();
  if (name == own) return true;
  // One handle type serves both the immutable and the mutable class.
  return name.hasPrefix(u"NSMutable") && name.substringFromIndex(9) == own.substringFromIndex(2);
}

Value Value::copy() const {
  switch (kind_) {
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
