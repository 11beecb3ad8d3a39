// Exception and error texts for the lowest floors of the platform, built by plain
// concatenation so that the base types need no format engine. Not installed.
//
//   message::build(operation, ": index ", index, " beyond bounds");
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik::message {

// A pointer written as the format engine's %p writes it ("0x7ffd...").
struct Pointer {
  const void* address;
};

inline void append(std::u16string& out, std::u16string_view text) { out.append(text); }
inline void append(std::u16string& out, const char16_t* text) { out.append(text); }
// A nil String is written "(null)", as %@ writes it.
inline void append(std::u16string& out, const String& text) {
  if (text.isNil()) {
    out.append(u"(null)");
  } else {
    out.append(text.units());
  }
}
// ASCII only: operation names and fixed English texts.
inline void append(std::u16string& out, std::string_view ascii) {
  out.append(ascii.begin(), ascii.end());
}
inline void append(std::u16string& out, const char* ascii) { append(out, std::string_view(ascii)); }
template <std::integral Number>
requires(!std::same_as<Number, bool> && !std::same_as<Number, char> &&
         !std::same_as<Number, char16_t>) void append(std::u16string& out, Number number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  out.append(digits, end);
}
inline void append(std::u16string& out, char16_t unit) { out.push_back(unit); }
inline void append(std::u16string& out, Pointer pointer) {
  char digits[24] = "0x";
  const auto end = std::to_chars(digits + 2, digits + sizeof digits,
                                 reinterpret_cast<std::uintptr_t>(pointer.address), 16)
                       .ptr;
  out.append(digits, end);
}

// The parts in order, each appended by the matching append().
template <class... Parts>
String build(const Parts&... parts) {
  std::u16string out;
  (append(out, parts), ...);
  return String(std::move(out));
}

}  // namespace tarnvik::message
