// String ordering under the platform's comparison options.
//
// The collation is deliberately simple and locale-free, like the platform's own
// compare:options: without a locale: texts are compared code point by code point after
// folding, and
//   - NSCaseInsensitiveSearch applies Unicode simple case folding;
//   - NSWidthInsensitiveSearch maps the full-width ASCII forms (U+FF01 to U+FF5E) and the
//     ideographic space to their ASCII counterparts;
//   - NSDiacriticInsensitiveSearch drops combining marks after canonical decomposition;
//   - without NSLiteralSearch, texts holding anything from U+00C0 up are compared in their
//     canonical decomposition (NFD), so "é" and "e" + U+0301 are equal;
//   - NSNumericSearch compares runs of decimal digits (general category Nd, any script) by
//     value, leading zeros ignored, wherever both texts have a run at the same point;
//   - NSForcedOrderingSearch breaks a tie between texts whose units differ by their plain
//     unit order, so the ordering is total and only identical texts are the same.
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>

#include "tarnvik/platform/base/internal/icu_text.hpp"
#include "tarnvik/platform/base/internal/ranges.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

namespace {

const icu::Normalizer2& nfd() {
  static const icu::Normalizer2* instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFDInstance(status);
  }();
  return *instance;
}

bool mayNeedDecomposition(std::u16string_view s) {
  return std::any_of(s.begin(), s.end(), [](char16_t c) { return c >= 0xC0; });
}

std::u16string decomposed(std::u16string_view s) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString result = nfd().normalize(icu_text::alias(s), status);
  if (U_FAILURE(status)) return std::u16string(s);
  return icu_text::units(result);
}

UChar32 baseLetter(UChar32 c) {
  icu::UnicodeString decomposition;
  if (c < 0xC0 || !nfd().getDecomposition(c, decomposition)) return c;
  return decomposition.char32At(0);
}

struct Folding {
  bool caseless = false;
  bool diacritics = false;
  bool width = false;
  bool numeric = false;
};

// The next folded code point from position i, or -1 at the end; `start` receives where it
// began in the text.
UChar32 next(std::u16string_view s, std::size_t& i, const Folding& f, std::size_t& start) {
  while (i < s.size()) {
    start = i;
    UChar32 c = s[i];
    if (c < 0x80) {
      ++i;
      return f.caseless && c >= u'A' && c <= u'Z' ? c + 32 : c;
    }
    U16_NEXT(s.data(), i, s.size(), c);
    if (f.diacritics) {
      if (U_GET_GC_MASK(c) & U_GC_MN_MASK) continue;
      c = baseLetter(c);
    }
    if (f.width) {
      if (c >= 0xFF01 && c <= 0xFF5E) c -= 0xFEE0;
      if (c == 0x3000) c = u' ';
    }
    if (f.caseless) c = u_foldCase(c, U_FOLD_CASE_DEFAULT);
    return c;
  }
  start = i;
  return -1;
}

bool isDigit(UChar32 c) { return c >= 0 && u_charType(c) == U_DECIMAL_DIGIT_NUMBER; }

// Reads the digit run at i into its significant digit values (leading zeros dropped).
void readDigitRun(std::u16string_view s, std::size_t& i, std::u16string& digits) {
  digits.clear();
  while (i < s.size()) {
    std::size_t at = i;
    UChar32 c;
    U16_NEXT(s.data(), at, s.size(), c);
    if (!isDigit(c)) break;
    const auto value = static_cast<char16_t>(u_charDigitValue(c));
    if (!(digits.empty() && value == 0)) digits.push_back(value);
    i = at;
  }
}

bool isASCIIDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// The general comparison from positions i and j on.
int compareFoldedFrom(std::u16string_view a, std::u16string_view b, const Folding& f, std::size_t i,
                      std::size_t j);

// The common case, names in ASCII, without ICU; it hands over to the general comparison at
// the first unit beyond ASCII (a digit run that continues beyond ASCII is handed over
// whole, from its start). What is left from there is compared in canonical decomposition
// when `decompose` asks for it: an ASCII character is a starter that nothing before it
// combines with, so decomposing from there is the same as decomposing the whole.
int compareFolded(std::u16string_view a, std::u16string_view b, const Folding& f, bool decompose) {
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    char16_t x = a[i], y = b[j];
    if (x >= 0x80 || y >= 0x80) break;
    if (f.numeric && isASCIIDigit(x) && isASCIIDigit(y)) {
      std::size_t endA = i, endB = j;
      while (endA < a.size() && isASCIIDigit(a[endA])) ++endA;
      while (endB < b.size() && isASCIIDigit(b[endB])) ++endB;
      if ((endA < a.size() && a[endA] >= 0x80) || (endB < b.size() && b[endB] >= 0x80)) break;
      std::size_t sigA = i, sigB = j;
      while (sigA < endA && a[sigA] == u'0') ++sigA;
      while (sigB < endB && b[sigB] == u'0') ++sigB;
      if (endA - sigA != endB - sigB) return endA - sigA < endB - sigB ? -1 : 1;
      const int c = a.substr(sigA, endA - sigA).compare(b.substr(sigB, endB - sigB));
      if (c != 0) return c < 0 ? -1 : 1;
      i = endA;
      j = endB;
      continue;
    }
    if (f.caseless) {
      if (x >= u'A' && x <= u'Z') x += 32;
      if (y >= u'A' && y <= u'Z') y += 32;
    }
    if (x != y) return x < y ? -1 : 1;
    ++i;
    ++j;
  }
  const std::u16string_view restA = a.substr(i), restB = b.substr(j);
  if ((restA.empty() || restA[0] < 0x80) && (restB.empty() || restB[0] < 0x80)) {
    // One text ended where the other goes on with a real character, or both ended.
    if (restA.empty() || restB.empty()) return restA.empty() ? (restB.empty() ? 0 : -1) : 1;
  }
  if (decompose && (mayNeedDecomposition(restA) || mayNeedDecomposition(restB))) {
    return compareFoldedFrom(decomposed(restA), decomposed(restB), f, 0, 0);
  }
  return compareFoldedFrom(a, b, f, i, j);
}

int compareFoldedFrom(std::u16string_view a, std::u16string_view b, const Folding& f, std::size_t i,
                      std::size_t j) {
  std::size_t startA = 0, startB = 0;
  std::u16string runA, runB;
  for (;;) {
    const UChar32 x = next(a, i, f, startA), y = next(b, j, f, startB);
    if (x < 0 || y < 0) return x < 0 ? (y < 0 ? 0 : -1) : 1;
    if (f.numeric && (x < 0x80 ? (x >= u'0' && x <= u'9') : isDigit(x)) &&
        (y < 0x80 ? (y >= u'0' && y <= u'9') : isDigit(y))) {
      i = startA;
      j = startB;
      readDigitRun(a, i, runA);
      readDigitRun(b, j, runB);
      if (runA.size() != runB.size()) return runA.size() < runB.size() ? -1 : 1;
      const int c = runA.compare(runB);
      if (c != 0) return c < 0 ? -1 : 1;
      continue;
    }
    if (x != y) return x < y ? -1 : 1;
  }
}

Folding foldingFor(UInteger options) {
  return Folding{(options & NSCaseInsensitiveSearch) != 0,
                 (options & NSDiacriticInsensitiveSearch) != 0,
                 (options & NSWidthInsensitiveSearch) != 0, (options & NSNumericSearch) != 0};
}

ComparisonResult toResult(int c) {
  return c < 0 ? NSOrderedAscending : (c > 0 ? NSOrderedDescending : NSOrderedSame);
}

}  // namespace

ComparisonResult String::compare(const String& other, UInteger options) const {
  return compare(other, options, {0, length()});
}

ComparisonResult String::compare(const String& other, UInteger options, Range range) const {
  checkRangeInLength(range, length(), "String::compare");
  return compareUnits(units().substr(range.location, range.length), other.units(), options);
}

ComparisonResult String::compareUnits(std::u16string_view a, std::u16string_view b,
                                      UInteger options) {
  const Folding folding = foldingFor(options);
  int c = 0;
  const bool decompose = !(options & NSLiteralSearch) || folding.diacritics;
  c = compareFolded(a, b, folding, decompose);
  if (c == 0 && (options & NSForcedOrderingSearch)) c = a.compare(b);
  return toResult(c);
}

String String::commonPrefixWithString(const String& other, UInteger options) const {
  Folding folding = foldingFor(options);
  folding.numeric = false;
  const std::u16string_view a = units(), b = other.units();
  std::size_t i = 0, j = 0, startA = 0, startB = 0, matched = 0;
  for (;;) {
    const UChar32 x = next(a, i, folding, startA), y = next(b, j, folding, startB);
    if (x < 0 || y < 0 || x != y) break;
    matched = i;
  }
  return isNil() ? String() : substringToIndex(matched);
}

}  // namespace tarnvik
