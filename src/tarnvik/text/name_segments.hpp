// Name segments: stepping the counter at the end of a media name, comparing names in
// sequence order, and fixed textual forms of integers.
//
//   incrementLastSegment(u"A001C009");                   // "A001C010"
//   compareForSequence(u"clip2.mov", u"clip10.mov");    // NSOrderedAscending
//
// The last segment is the trailing run of decimal digits (general category Nd), or else the
// last UTF-16 unit; the part before it is the stem.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Steps the last segment up or down. A digit run keeps its width when it has leading zeros
// and grows when it needs more digits; its value is read with integerValue (ASCII digits)
// and written as a 32-bit integer; the largest integer sticks on the way up, 0 on the way
// down. Without digits the last unit is stepped alone ("Z"/"z" stick going up, "A"/"a" going
// down, as do U+FFFF and U+0000). The stem goes into a format unescaped, so a "%" in it is
// read as a directive (see format.hpp for directives without arguments). "" gives "0".
String advanceLastSegmentWithIncrementation(const String& name, bool increment);
String incrementLastSegment(const String& name);
String decrementLastSegment(const String& name);
// The digit suffix replaced by the index, zero-padded to the old suffix's length; a name
// without a digit suffix comes back unchanged.
String resetLastSegmentToIndex(const String& name, UInteger index);

// Sequence order: by path extension first (plain comparison), then the whole names
// case-insensitively, digit runs by value, full-width forms folded, ties broken so that
// only identical names are the same.
ComparisonResult compareForSequence(const String& name, const String& other);
// The same order over raw UTF-16 text, for sorting large lists without a String per name.
ComparisonResult compareUnitsForSequence(std::u16string_view name, std::u16string_view other);
// The positions of the names in sequence order (the order compareForSequence gives). Lists
// of printable-ASCII names are sorted through byte keys built once per name; any other list
// with compareUnitsForSequence.
std::vector<std::size_t> sequenceOrder(std::span<const std::u16string_view> names);
// Case-insensitive with digit runs by value; may call different names the same.
ComparisonResult caseInsensitiveNumericalCompare(const String& name, const String& other);

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
