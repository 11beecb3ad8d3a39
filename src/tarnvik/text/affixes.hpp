// Affixes and runs of characters: deleting known prefixes and suffixes, the digit suffix
// of a name, runs of set members, and the parts of a string before and after a range.
//
//   stringByDeletingPrefix(u"A001C009", u"A001");   // "C009"
//   decimalDigitSuffix(u"A001C009");                // "009"
//
// Characters are UTF-16 units. A nil receiver reads as the empty string.
#pragma once

#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The receiver without the prefix. NSInvalidArgumentException "Prefix must not be nil" for a
// nil prefix and "<prefix> is not a prefix" when the receiver does not start with it; an
// empty prefix returns the receiver.
String stringByDeletingPrefix(const String& text, const String& prefix);
// The mirror image: "Suffix must not be nil", "<suffix> is not a suffix".
String stringByDeletingSuffix(const String& text, const String& suffix);

// The longest trailing run of units that are (or are not) members; "" when none.
String suffixOfCharactersMemberOfSet(const String& text, const CharacterSet& set);
String suffixOfCharactersNotMemberOfSet(const String& text, const CharacterSet& set);
// The longest leading run of members.
String prefixOfCharactersMemberOfSet(const String& text, const CharacterSet& set);
// The trailing run of decimal digits (general category Nd), and of non-digits.
String decimalDigitSuffix(const String& text);
String nonDecimalDigitSuffix(const String& text);
// decimalDigitSuffix after removing a trailing ":" (raises as stringByDeletingSuffix does
// when there is none).
String decimalDigitSuffixOfAction(const String& text);
// The non-digit run before the last "." followed by the "." and the extension:
// "A001C003_v.mov" gives "_v.mov", "clip12.mov" gives ".mov".
String nonDecimalDigitSuffixIgnoringFileExtensions(const String& text);
// The length of the leading run of "0".
UInteger numberOfLeadingZeros(const String& text);

// Every member unit replaced by the replacement, or dropped when the replacement is nil.
String stringByReplacingCharactersMemberOfSet(const String& text, const CharacterSet& set,
                                              const String& replacement);
String stringByDeletingCharactersMemberOfSet(const String& text, const CharacterSet& set);
// Everything before the last separator; "" when there is none.
String stringByDeletingLastComponentSeperatedBy(const String& text, const String& separator);
// All but the last unit (an empty receiver gives "").
String stringByDeletingLastCharacter(const String& text);
// Whitespace and line breaks trimmed from both ends.
String stringByTrimmingAllWhitespaces(const String& text);

// The part of the receiver before (after) the range; {NSNotFound, 0} when that part is
// empty. NSRangeException "range.location must not be NSNotFound" and "range lies outside
// range of receiver".
Range rangeBeforeRange(const String& text, Range range);
Range rangeAfterRange(const String& text, Range range);

// The first maximal run of members, searched forwards (or, with NSBackwardsSearch, from the
// end); NSAnchoredSearch requires the run to start at the first position searched. Only
// those two option bits count. When the range holds no member, the unit just outside it is
// still examined: outside the text that raises NSRangeException, and a member there gives a
// run of length 0 starting outside the range.
Range rangeOfCharactersFromSet(const String& text, const CharacterSet& set, UInteger options = 0);
Range rangeOfCharactersFromSet(const String& text, const CharacterSet& set, UInteger options,
                               Range range);

// In place: empties the text.
void clear(String& text);
// In place, with the checks of stringByDeletingPrefix but no shortcut for an empty prefix,
// which is never a prefix ("<prefix> is not a prefix"). The text is unchanged when it raises.
void deletePrefix(String& text, const String& prefix);
// In place: removes the last occurrence of the suffix; raises like deletePrefix.
void deleteSuffix(String& text, const String& suffix);
// In place: every occurrence replaced, literally.
void replaceOccurrencesOfString(String& text, const String& target, const String& replacement);

}  // namespace tarnvik
