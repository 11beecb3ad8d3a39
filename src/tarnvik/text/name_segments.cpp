#include "tarnvik/text/name_segments.hpp"

#include <climits>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/format.hpp"
#include "tarnvik/text/affixes.hpp"

namespace tarnvik {

namespace {

// The extension of the last path component as a view: the text after its last "." unless
// that "." starts the component.
std::u16string_view extensionOf(std::u16string_view path) {
  while (path.size() > 1 && path.back() == u'/') path.remove_suffix(1);
  const std::size_t slash = path.rfind(u'/');
  const std::u16string_view name = slash == std::u16string_view::npos ? path : path.substr(slash + 1);
  const std::size_t dot = name.rfind(u'.');
  if (dot == std::u16string_view::npos || dot == 0) return {};
  return name.substr(dot + 1);
}

String padding(const String& text, UInteger length, const String& pad) {
  const UInteger missing = length - text.length();
  if (pad.isEmpty()) {
    raiseRangeFormat(u"-[NSString stringByPaddingToLength:withString:startingAtIndex:]: "
                     u"out of range padIndex");
  }
  std::u16string out;
  out.reserve(missing);
  while (out.size() < missing) out.append(pad.units().substr(0, missing - out.size()));
  return String(std::move(out));
}

}  // namespace

String advanceLastSegmentWithIncrementation(const String& name, bool increment) {
  if (name.isEmpty()) return String(u"0");
  const String digits = decimalDigitSuffix(name);
  const String nonDigits = nonDecimalDigitSuffix(name);
  if (!digits.isEmpty()) {
    const String stem = name.substringToIndex(name.length() - digits.length());
    const UInteger width = numberOfLeadingZeros(digits) > 0 ? digits.length() : 0;
    const String format = stringWithFormat(u"%@%%0%lud", stem, width);
    Integer value = digits.integerValue();
    if (increment && value != INT64_MAX) ++value;
    if (!increment && value != 0) --value;
    return stringWithFormat(format, value);
  }
  if (nonDigits.isEmpty()) return name.stringByAppendingString(u"0");
  char16_t last = name.characterAtIndex(name.length() - 1);
  if (increment && last != u'Z' && last != u'z' && last != 0xFFFF) ++last;
  if (!increment && last != u'A' && last != u'a' && last != 0) --last;
  const String stem = name.substringToIndex(name.length() - 1);
  return stringWithFormat(stringWithFormat(u"%@%%@", stem), String(std::u16string(1, last)));
}

String incrementLastSegment(const String& name) { return advanceLastSegmentWithIncrementation(name, true); }

String decrementLastSegment(const String& name) { return advanceLastSegmentWithIncrementation(name, false); }

String resetLastSegmentToIndex(const String& name, UInteger index) {
  const String digits = decimalDigitSuffix(name);
  if (digits.isEmpty()) return String(std::u16string(name.units()));
  const String number = stringWithFormat(u"%lu", index);
  String result = name.substringToIndex(name.length() - digits.length());
  if (number.length() < digits.length()) result.appendString(String(std::u16string(digits.length() - number.length(), u'0')));
  result.appendString(number);
  return result;
}

ComparisonResult compareForSequence(const String& name, const String& other) {
  const ComparisonResult byExtension =
      String::compareUnits(extensionOf(name.units()), extensionOf(other.units()), 0);
  if (byExtension != NSOrderedSame) return byExtension;
  constexpr UInteger kSequenceOptions =
      NSCaseInsensitiveSearch | NSNumericSearch | NSWidthInsensitiveSearch | NSForcedOrderingSearch;
  return String::compareUnits(name.units(), other.units(), kSequenceOptions);
}

ComparisonResult caseInsensitiveNumericalCompare(const String& name, const String& other) {
  return name.compare(other, NSNumericSearch | NSCaseInsensitiveSearch);
}

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
    KU_ASSERT(false, kOperation, Value(text), u"%@ is too long to be converted to an integer", text);
    return 0;
  }
  Integer value = 0;
  for (const char16_t c : text.units()) {
    int digit = -1;
    if (c >= u'0' && c <= u'9') digit = c - u'0';
    if (c >= u'a' && c <= u'f') digit = c - u'a' + 10;
    if (c >= u'A' && c <= u'F') digit = c - u'A' + 10;
    if (digit < 0) {
      KU_ASSERT(false, kOperation, Value(text), u"invalid character %c", c);
      return 0;
    }
    value = value * 16 + digit;
  }
  return value;
}

}  // namespace tarnvik
