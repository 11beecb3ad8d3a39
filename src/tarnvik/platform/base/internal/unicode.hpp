// UTF-8 and UTF-16 conversion, case mapping and number parsing shared by the platform's
// own sources. Not installed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnvik::unicode {

// Decodes UTF-8. With lossy, invalid sequences become U+FFFD; otherwise *valid is set to
// false at the first invalid sequence.
std::u16string fromUTF8(std::string_view utf8, bool lossy, bool* valid);
// Encodes UTF-16; unpaired surrogates become U+FFFD.
std::string toUTF8(std::u16string_view utf16);
void appendCodePoint(std::u16string& out, char32_t codePoint);

enum class CaseMapping { Upper, Lower };
std::u16string mapCase(std::u16string_view text, CaseMapping mapping);

// Index of the first unit at or after from that is not whitespace or a line break.
std::size_t skipWhitespace(std::u16string_view text, std::size_t from);
// Reads [sign] ASCII digits after leading whitespace, clamped to [min, max]; 0 without
// digits. *end (optional) receives the index after the number, or 0 when none was read.
std::int64_t parseInteger(std::u16string_view text, std::int64_t min, std::int64_t max,
                          std::size_t* end = nullptr, std::size_t from = 0);
// Reads [sign] digits [. digits] [e [sign] digits] after leading whitespace in the C
// locale; +-HUGE_VAL on overflow, 0 on underflow or without digits.
double parseDouble(std::u16string_view text, std::size_t* end, std::size_t from = 0);

}  // namespace tarnvik::unicode
