#include "tarnvik/platform/base/internal/unicode.hpp"

#include <locale.h>
#include <stdlib.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <limits>

namespace tarnvik::unicode {

std::u16string fromUTF8(std::string_view utf8, bool lossy, bool* valid) {
  if (utf8.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    if (valid) *valid = false;
    return {};
  }
  // UTF-16 never needs more units than UTF-8 has bytes. ASCII is widened directly, in blocks
  // the compiler vectorises; ICU takes over from the first byte beyond it.
  std::u16string out(utf8.size(), u'\0');
  std::size_t ascii = 0;
  constexpr std::size_t kBlock = 32;
  while (ascii + kBlock <= utf8.size()) {
    unsigned char any = 0;
    for (std::size_t k = 0; k < kBlock; ++k) any |= static_cast<unsigned char>(utf8[ascii + k]);
    if (any >= 0x80) break;
    for (std::size_t k = 0; k < kBlock; ++k)
      out[ascii + k] = static_cast<unsigned char>(utf8[ascii + k]);
    ascii += kBlock;
  }
  for (; ascii < utf8.size() && static_cast<unsigned char>(utf8[ascii]) < 0x80; ++ascii) {
    out[ascii] = static_cast<unsigned char>(utf8[ascii]);
  }
  if (ascii == utf8.size()) return out;
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(out.data() + ascii, static_cast<std::int32_t>(out.size() - ascii), &length,
                       utf8.data() + ascii, static_cast<std::int32_t>(utf8.size() - ascii),
                       lossy ? 0xFFFD : U_SENTINEL, nullptr, &status);
  if (U_FAILURE(status)) {
    if (valid) *valid = false;
    return {};
  }
  out.resize(ascii + static_cast<std::size_t>(length));
  return out;
}

std::string toUTF8(std::u16string_view utf16) {
  // ASCII is narrowed directly; ICU takes over from the first unit beyond it. Each other
  // unit becomes at most three bytes (a pair of units, four).
  std::string out(utf16.size(), '\0');
  // Blocks of 32 units are checked and narrowed with loops the compiler vectorises; the
  // rest, and a block holding anything beyond ASCII, go unit by unit.
  std::size_t ascii = 0;
  constexpr std::size_t kBlock = 32;
  while (ascii + kBlock <= utf16.size()) {
    char16_t any = 0;
    for (std::size_t k = 0; k < kBlock; ++k) any |= utf16[ascii + k];
    if (any >= 0x80) break;
    for (std::size_t k = 0; k < kBlock; ++k) out[ascii + k] = static_cast<char>(utf16[ascii + k]);
    ascii += kBlock;
  }
  for (; ascii < utf16.size() && utf16[ascii] < 0x80; ++ascii)
    out[ascii] = static_cast<char>(utf16[ascii]);
  if (ascii == utf16.size()) return out;
  out.resize(ascii + (utf16.size() - ascii) * 3);
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(out.data() + ascii, static_cast<std::int32_t>(out.size() - ascii), &length,
                     utf16.data() + ascii, static_cast<std::int32_t>(utf16.size() - ascii), 0xFFFD,
                     nullptr, &status);
  if (U_FAILURE(status)) return {};
  out.resize(ascii + static_cast<std::size_t>(length));
  return out;
}

void appendCodePoint(std::u16string& out, char32_t codePoint) {
  if (codePoint > 0x10FFFF) codePoint = 0xFFFD;
  if (codePoint <= 0xFFFF) {
    out.push_back(static_cast<char16_t>(codePoint));
  } else {
    out.push_back(static_cast<char16_t>(U16_LEAD(codePoint)));
    out.push_back(static_cast<char16_t>(U16_TRAIL(codePoint)));
  }
}

std::u16string mapCase(std::u16string_view text, CaseMapping mapping) {
  if (text.empty()) return {};
  const auto length = static_cast<std::int32_t>(text.size());
  auto run = [&](char16_t* dest, std::int32_t capacity, UErrorCode* status) {
    return mapping == CaseMapping::Upper
               ? u_strToUpper(dest, capacity, text.data(), length, "", status)
               : u_strToLower(dest, capacity, text.data(), length, "", status);
  };
  std::u16string out(text.size() + 8, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t needed = run(out.data(), static_cast<std::int32_t>(out.size()), &status);
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    out.assign(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    needed = run(out.data(), needed, &status);
  }
  if (U_FAILURE(status)) return std::u16string(text);
  out.resize(static_cast<std::size_t>(needed));
  return out;
}

std::size_t skipWhitespace(std::u16string_view text, std::size_t from) {
  while (from < text.size()) {
    const char16_t c = text[from];
    const bool space = (c >= 0x09 && c <= 0x0D) || c == 0x85 ||
                       (c >= 0x80 && !U16_IS_SURROGATE(c) && u_isUWhiteSpace(c)) || c == u' ';
    if (!space) break;
    ++from;
  }
  return from;
}

std::int64_t parseInteger(std::u16string_view text, std::int64_t min, std::int64_t max,
                          std::size_t* end, std::size_t from) {
  std::size_t i = skipWhitespace(text, from);
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';
  const std::size_t digitsStart = i;
  // Accumulate as a negative number so that the minimum needs no special case.
  std::int64_t value = 0;
  bool clamped = false;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    const int digit = text[i] - u'0';
    if (clamped) continue;
    if (value < (std::numeric_limits<std::int64_t>::min() + digit) / 10) {
      clamped = true;
      continue;
    }
    value = value * 10 - digit;
  }
  if (i == digitsStart) {
    if (end) *end = 0;
    return 0;
  }
  if (end) *end = i;
  if (clamped) return negative ? min : max;
  if (!negative) {
    if (value == std::numeric_limits<std::int64_t>::min()) return max;
    value = -value;
  }
  return value < min ? min : (value > max ? max : value);
}

double parseDouble(std::u16string_view text, std::size_t* end, std::size_t from) {
  std::size_t i = skipWhitespace(text, from);
  std::string token;
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';
  auto isDigit = [&](std::size_t at) {
    return at < text.size() && text[at] >= u'0' && text[at] <= u'9';
  };
  std::size_t digits = 0;
  for (; isDigit(i); ++i, ++digits) token.push_back(static_cast<char>(text[i]));
  if (i < text.size() && text[i] == u'.') {
    std::size_t j = i + 1;
    std::string fraction;
    for (; isDigit(j); ++j) fraction.push_back(static_cast<char>(text[j]));
    if (digits > 0 || !fraction.empty()) {
      token += '.';
      token += fraction;
      digits += fraction.size();
      i = j;
    }
  }
  if (digits == 0) {
    if (end) *end = 0;
    return 0.0;
  }
  if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
    std::size_t j = i + 1;
    std::string exponent = "e";
    if (j < text.size() && (text[j] == u'+' || text[j] == u'-')) {
      exponent.push_back(static_cast<char>(text[j++]));
    }
    if (isDigit(j)) {
      for (; isDigit(j); ++j) exponent.push_back(static_cast<char>(text[j]));
      token += exponent;
      i = j;
    }
  }
  if (end) *end = i;
  // strtod in the C locale gives HUGE_VAL on overflow and 0 (or a denormal) on underflow.
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
  const double value = strtod_l(token.c_str(), nullptr, cLocale);
  return negative ? -value : value;
}

}  // namespace tarnvik::unicode
