// Conversion between String and bytes in a few encodings.
#include <unicode/translit.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/internal/icu_text.hpp"
#include "tarnvik/platform/base/internal/unicode.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

namespace {

// ICU's Latin-ASCII transform ("é" to "e", "ß" to "ss", "Æ" to "AE"). Transliterators are
// not safe to share between threads, so each thread clones its own from one prototype.
std::u16string latinToASCII(std::u16string_view text) {
  static const std::unique_ptr<icu::Transliterator> prototype = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Transliterator> t(
        icu::Transliterator::createInstance("Latin-ASCII", UTRANS_FORWARD, status));
    return U_SUCCESS(status) ? std::move(t) : nullptr;
  }();
  thread_local std::unique_ptr<icu::Transliterator> mine(prototype ? prototype->clone() : nullptr);
  icu::UnicodeString buffer = icu_text::copy(text);
  if (mine) mine->transliterate(buffer);
  return icu_text::units(buffer);
}

// One byte a code point: the code point when it is at most `highest`, else "?" (or failure
// when not lossy).
bool narrowed(std::u16string_view text, char32_t highest, bool lossy, ByteBuffer& out) {
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c;
    U16_NEXT(text.data(), i, text.size(), c);
    if (static_cast<char32_t>(c) > highest) {
      if (!lossy) return false;
      c = u'?';
    }
    out.push_back(static_cast<std::uint8_t>(c));
  }
  return true;
}

}  // namespace

Data String::dataUsingEncoding(UInteger encoding, bool allowLossyConversion) const {
  if (isNil()) return Data();
  ByteBuffer bytes;
  switch (encoding) {
    case NSASCIIStringEncoding: {
      const auto text = units();
      const bool plain = std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x80; });
      const std::u16string folded =
          plain || !allowLossyConversion ? std::u16string(text) : latinToASCII(text);
      if (!narrowed(folded, 0x7F, allowLossyConversion, bytes)) return Data();
      return Data::withBuffer(std::move(bytes));
    }
    case NSISOLatin1StringEncoding:
      if (!narrowed(units(), 0xFF, allowLossyConversion, bytes)) return Data();
      return Data::withBuffer(std::move(bytes));
    case NSUTF8StringEncoding:
      return Data::withString(utf8());
    case NSUTF16StringEncoding:
      return Data::withBytes(units().data(), length() * sizeof(char16_t));
    default:
      return Data();
  }
}

String String::withData(const Data& data, UInteger encoding) {
  if (data.isNil()) return String();
  const auto bytes = data.span();
  switch (encoding) {
    case NSASCIIStringEncoding:
    case NSISOLatin1StringEncoding: {
      std::u16string out;
      out.reserve(bytes.size());
      for (const std::uint8_t b : bytes) {
        if (encoding == NSASCIIStringEncoding && b >= 0x80) return String();
        out.push_back(b);
      }
      return String(std::move(out));
    }
    case NSUTF8StringEncoding:
      return fromUTF8(data.asStringView());
    case NSUTF16StringEncoding: {
      if (bytes.size() % 2) return String();
      std::u16string out(bytes.size() / 2, u'\0');
      std::memcpy(out.data(), bytes.data(), bytes.size());
      return String(std::move(out));
    }
    default:
      return String();
  }
}

}  // namespace tarnvik
