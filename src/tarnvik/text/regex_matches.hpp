// Shortcuts over regular expressions and their match results: whole-string searches,
// whether a match or a group took part, and the texts of groups.
//
//   RegularExpression re = RegularExpression::regularExpressionWithPattern(u"^#(..)(..)(..)$", 0);
//   TextCheckingResult m = firstMatchInString(re, u"#FF8000");
//   substringOfMatchedString(m, u"#FF8000", 2);   // "80"
#pragma once

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/text/regular_expression.hpp"

namespace tarnvik {

// The first match anywhere in the text; a nil result when there is none.
TextCheckingResult firstMatchInString(const RegularExpression& re, const String& text,
                                      UInteger options = 0);
bool hasMatchesInString(const RegularExpression& re, const String& text);
// Every match in the whole text, in order, until the block sets *stop.
void enumerateMatchesInString(const RegularExpression& re, const String& text, UInteger options,
                              const RegularExpression::MatchBlock& block);
void enumerateMatchesInString(const RegularExpression& re, const String& text,
                              const RegularExpression::MatchBlock& block);

// Whether the match (or the group) took part; false for a nil result.
bool didMatch(const TextCheckingResult& match);
bool didMatch(const TextCheckingResult& match, UInteger group);
// The searched text's part in the group's range; nil when the group took no part.
String substringOfMatchedString(const TextCheckingResult& match, const String& searched,
                                UInteger group);
// The texts of groups 1 up to and including numberOfRanges (one past the last group), with
// Null for a group that took no part; so the last element is always Null. nil for a nil
// result.
Array substringsOfMatchedString(const TextCheckingResult& match, const String& searched);

}  // namespace tarnvik
