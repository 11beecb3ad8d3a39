#include "tarnvik/text/name_segments.hpp"

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/text/affixes.hpp"
#include "tarnvik/text/internal/file_name_parts.hpp"

namespace tarnvik {

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

String incrementLastSegment(const String& name) {
  return advanceLastSegmentWithIncrementation(name, true);
}

String decrementLastSegment(const String& name) {
  return advanceLastSegmentWithIncrementation(name, false);
}

String resetLastSegmentToIndex(const String& name, UInteger index) {
  const String digits = decimalDigitSuffix(name);
  if (digits.isEmpty()) return String(std::u16string(name.units()));
  const String number = stringWithFormat(u"%lu", index);
  String result = name.substringToIndex(name.length() - digits.length());
  if (number.length() < digits.length())
    result.appendString(String(std::u16string(digits.length() - number.length(), u'0')));
  result.appendString(number);
  return result;
}

namespace {

// Applies a step to the last segment of the name before the extension: the trailing digit
// run, else the last unit, else nothing. The part before the segment and the extension are
// joined around the result unchanged.
template <class Step>
String stepFileName(const String& fileName, Step step) {
  const std::u16string_view units = fileName.units();
  const std::size_t dot = file_name_parts::extensionDot(units);
  const std::u16string_view stem = units.substr(0, dot),
                            extension = dot == std::u16string_view::npos ? std::u16string_view()
                                                                         : units.substr(dot);
  // The digit run as the name forms find it (any decimal digit, general category Nd).
  const String digits = decimalDigitSuffix(String(std::u16string(stem)));
  std::size_t segment = stem.size() - digits.length();
  if (digits.isEmpty() && !stem.empty()) segment = stem.size() - 1;
  const String stepped = step(String(std::u16string(stem.substr(segment))));
  std::u16string result(stem.substr(0, segment));
  result.append(stepped.units());
  result.append(extension);
  return String(std::move(result));
}

}  // namespace

String incrementLastSegmentOfFileName(const String& fileName) {
  return stepFileName(fileName,
                      [](const String& segment) { return incrementLastSegment(segment); });
}

String decrementLastSegmentOfFileName(const String& fileName) {
  return stepFileName(fileName,
                      [](const String& segment) { return decrementLastSegment(segment); });
}

String resetLastSegmentOfFileNameToIndex(const String& fileName, UInteger index) {
  return stepFileName(
      fileName, [index](const String& segment) { return resetLastSegmentToIndex(segment, index); });
}

}  // namespace tarnvik
