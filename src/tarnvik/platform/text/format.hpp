// The format engine: printf conversions plus %@ for any Value, as the platform's
// stringWithFormat reads them.
//
//   stringWithFormat(u"%@ has %lu clips", name, count);
//   stringWithFormat(u"%05.1f%%", 42.25);  // "042.2%"
//
// Directives: %[n$][flags][width][.precision][length]conversion with the flags "-+ #0",
// '*' for width and precision, the length modifiers hh h l ll q z t j L, and the
// conversions d i u x X o c C s @ f F e E g G a A p %. Without a length modifier the
// integer conversions read their argument as a 32-bit integer (d and i signed, u x X o
// unsigned), hh as 8 bits, h as 16 bits, and l ll q z t j as 64 bits, so a 64-bit value
// printed with a plain %d shows its low 32 bits as a signed number. %c prints the low
// byte as a Latin-1 character, %C a UTF-16 unit. %@ prints a Value's description ("(null)"
// for nil); %s a UTF-8 C string ("(null)" for a null pointer). Floating conversions always
// use "." as the decimal point, whatever the C locale.
//
// A directive that has no argument left (more directives than arguments) and a directive
// with an unknown conversion character are copied to the result unchanged, as written, and
// nothing past the given arguments is ever read. An argument of an unexpected kind is
// converted: a number given to %@ prints its description, a Value given to %d its
// integerValue, text given to %s its UTF-8 form.
//
// Widths and precisions are capped at 100000, whether written in the format ("%2147483647d"
// pads to 100000) or given through '*' (a negative '*' width left-aligns): formats may come
// from file names and settings, and must not ask for unbounded memory or time.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <new>
#include <span>
#include <string>
#include <type_traits>

#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

class Data;
class Array;
class Dictionary;
class Set;
class OrderedSet;
class Error;

// One argument of a format, captured by kind without losing width or signedness.
class FormatArgument {
 public:
  enum class Kind : std::uint8_t { Signed, Unsigned, Double, CString, Pointer, Object };

  template <std::signed_integral T>
  FormatArgument(T i) : kind_(Kind::Signed), i_(i) {}  // NOLINT
  template <std::unsigned_integral T>
  FormatArgument(T u) : kind_(Kind::Unsigned), u_(u) {}  // NOLINT
  template <class T>
  requires std::is_enum_v<T> FormatArgument(T e)
      : FormatArgument(static_cast<std::underlying_type_t<T>>(e)) {}             // NOLINT
  FormatArgument(double d) : kind_(Kind::Double), d_(d) {}                       // NOLINT
  FormatArgument(float f) : kind_(Kind::Double), d_(f) {}                        // NOLINT
  FormatArgument(const char* s) : kind_(Kind::CString), s_(s) {}                 // NOLINT
  FormatArgument(const std::string& s) : kind_(Kind::CString), s_(s.c_str()) {}  // NOLINT
  FormatArgument(const void* p) : kind_(Kind::Pointer), p_(p) {}                 // NOLINT
  FormatArgument(std::nullptr_t) : kind_(Kind::Pointer), p_(nullptr) {}          // NOLINT
  FormatArgument(const Value& v) : kind_(Kind::Object), value_(v) {}             // NOLINT
  template <class T>
  requires(std::is_constructible_v<Value, const T&> && !std::is_arithmetic_v<T> &&
           !std::is_pointer_v<T> && !std::is_array_v<T> && !std::is_same_v<T, Value> &&
           !std::is_enum_v<T>) FormatArgument(const T& handle)
      : kind_(Kind::Object), value_(handle) {}                           // NOLINT
  FormatArgument(const char16_t* s) : kind_(Kind::Object), value_(s) {}  // NOLINT

  Kind kind() const { return kind_; }
  // Readings used by the engine; each converts from the other kinds.
  std::int64_t asSigned() const;
  std::uint64_t asUnsigned() const { return static_cast<std::uint64_t>(asSigned()); }
  double asDouble() const;
  const void* asPointer() const;
  // The text %@ prints for this argument.
  String asDescription() const;
  // The UTF-8 text %s prints for this argument.
  std::string asCString() const;
  // The C string itself for a CString argument ("(null)" for a null pointer), else null.
  const char* cString() const { return kind_ == Kind::CString ? (s_ ? s_ : "(null)") : nullptr; }

  FormatArgument(const FormatArgument& other) : kind_(other.kind_), i_(other.i_) {
    if (kind_ == Kind::Object) new (&value_) Value(other.value_);
  }
  FormatArgument& operator=(const FormatArgument&) = delete;
  // Only an object argument holds a Value to destroy: numbers and C strings, the common
  // arguments, cost nothing to drop.
  ~FormatArgument() {
    if (kind_ == Kind::Object) value_.~Value();
  }

 private:
  Kind kind_;
  union {
    std::int64_t i_ = 0;
    std::uint64_t u_;
    double d_;
    const char* s_;
    const void* p_;
    Value value_;
  };
};

// Fills the format with the arguments; see the header comment for the rules.
String formatWithArguments(const String& format, std::span<const FormatArgument> arguments);
// Appends the filled format to the text.
void appendFormatWithArguments(String& text, const String& format,
                               std::span<const FormatArgument> arguments);

template <class... Args>
String stringWithFormat(const String& format, const Args&... args) {
  const std::array<FormatArgument, sizeof...(Args)> list{FormatArgument(args)...};
  return formatWithArguments(format, list);
}

template <class... Args>
void appendFormat(String& text, const String& format, const Args&... args) {
  const std::array<FormatArgument, sizeof...(Args)> list{FormatArgument(args)...};
  appendFormatWithArguments(text, format, list);
}

}  // namespace tarnvik
