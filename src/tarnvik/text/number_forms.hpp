// Fixed textual forms of integers: dot-grouped decimals, spreadsheet row letters, padding
// and hexadecimal readings.
//
//   dotSeparatedInteger(1234567);       // "1.234.567"
//   excelLikeRowNameFromIndex(26);      // "AA"
#pragma once

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Decimal text grouped by threes with "."; the minus sign counts as a character of the first
// group: -1234 gives "-1.234" and -123 gives "-.123".
String dotSeparatedInteger(Integer value);
// Spreadsheet row letters: 0 is "A", 25 "Z", 26 "AA", 702 "AAA".
String excelLikeRowNameFromIndex(UInteger index);
// {0, length}.
Range range(const String& text);
// The pad repeated and cut to the missing count, before (left) or after (right) the text;
// the text itself when it is long enough. An empty pad for a text that needs padding raises
// NSRangeException.
String stringByPaddingLeftToMinimalLength(const String& text, UInteger length, const String& pad);
String stringByPaddingRightToMinimalLength(const String& text, UInteger length, const String& pad);
// Hexadecimal digits without prefix or sign. 16 or more characters fail the assertion
// "<text> is too long to be converted to an integer", a character that is no hex digit
// "invalid character <c>"; when the assertion handler returns, the result is 0.
Integer integerValueOfHexString(const String& text);

}  // namespace tarnvik
