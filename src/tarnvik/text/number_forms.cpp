#include "tarnvik/text/number_forms.hpp"

#include "tarnvik/core/checks.hpp"

namespace tarnvik {

namespace {

String padding(const String& text, UInteger length, const String& pad) {
  const UInteger missing = length - text.length();
  if (pad.isEmpty()) {
    raiseRangeFormat(
        u"-[NSString stringByPaddingToLength:withString:startingAtIndex:]: "
        u"out of range padIndex");
  }
  std::u16string out;
  out.reserve(missing);
  while (out.size() < missing) out.append(pad.units().substr(0, missing - out.size()));
  return String(std::move(out));
}

}  // namespace

String dotSeparatedInteger(Integer value) {
  const std::string digits = std::to_string(value);
  const std::size_t length = digits.size();
  if (length <= 3) return String(digits);
  const std::size_t first = length % 3 == 0 ? 3 : length % 3;
  std::string out = digits.substr(0, first);
  for (std::size_t at = first; at < length; at += 3) {
    out.push_back('.');
    out.append(digits, at, 3);
  }
  return String(out);
}

String excelLikeRowNameFromIndex(UInteger index) {
  std::u16string letters;
  for (;;) {
    letters.insert(letters.begin(), static_cast<char16_t>(u'A' + index % 26));
    if (index < 26) break;
    index = index / 26 - 1;
  }
  return String(std::move(letters));
}

Range range(const String& text) { return {0, text.length()}; }

String stringByPaddingLeftToMinimalLength(const String& text, UInteger length, const String& pad) {
  if (text.length() >= length) return String(std::u16string(text.units()));
  String result = padding(text, length, pad);
  result.appendString(text);
  return result;
}

String stringByPaddingRightToMinimalLength(const String& text, UInteger length, const String& pad) {
  if (text.length() >= length) return String(std::u16string(text.units()));
  return text.stringByAppendingString(padding(text, length, pad));
}

Integer integerValueOfHexString(const String& text) {
  constexpr const char16_t* kOperation = u"-[NSString(SequenceCompare) integerValueOfHexString]";
  if (text.length() >= 16) {
    KU_ASSERT(false, kOperation, Value(text), u"%@ is too long to be converted to an integer",
              text);
    return 0;
  }
  Integer value = 0;
  for (const char16_t c : text.units()) {
    const int digit = hexDigitValue(c);
    if (digit < 0) {
      KU_ASSERT(false, kOperation, Value(text), u"invalid character %c", c);
      return 0;
    }
    value = value * 16 + digit;
  }
  return value;
}

}  // namespace tarnvik
