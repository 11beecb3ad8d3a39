// Text formatting and escaping: plural counts, spelled numbers, capitalisation, ASCII
// folding, camel-case expansion, two XML escapings, guarded replacement and an anchored
// regular-expression test.
//
//   ke_regularPluralized(u"clip", 3);             // "3 clips"
//   stringByExpandingCamelCase(u"thumbnailSize"); // "thumbnail Size"
#pragma once

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// "no <word>s", "1 <word>" or "<count> <word>s", the formats looked up (as keys) in the main
// bundle's table "NSString_KDExtensions" so that a host can translate them.
String ke_regularPluralized(const String& word, UInteger count);
// "one" to "ten", "eleven", "twelve" and the tens ("fourty" spelt so); other values in digits.
String fullySpelledStringForUnsignedInteger(UInteger value);
// The first unit upper-cased (which may give more than one character), the rest unchanged.
String stringWithUpperCaseFirstLetter(const String& text);
// Lossy ASCII: Latin letters lose their accents, anything else without an ASCII form is "?".
String asciiString(const String& text);
// asciiString with blanks, tabs, line feeds and carriage returns replaced by "_".
String asciiStringWithoutWhitespace(const String& text);
// A blank inserted between a lowercase letter and a following uppercase letter; texts of at
// most two units are returned as they are. "URLString" stays as it is.
String stringByExpandingCamelCase(const String& text);
// "&" "\"" "'" "<" ">" as "&amp;" "&quot;" "&#x27;" "&lt;" "&gt;" (ampersands first, so an
// existing entity's "&" is escaped again).
String stringByEscapingXMLCharacters(const String& text);
// Unit by unit through _invalidXMLCharacterEscapeMap: the apostrophe becomes "&apos;" here.
String xmlEscapedString(const String& text);
// The five entities of xmlEscapedString, keyed by the one-character strings they replace.
Dictionary _invalidXMLCharacterEscapeMap();
// Every occurrence of target replaced by the replacement (escaped first when escapeXML), or by
// the alternative when the replacement is nil; with strip, illegal and then control
// characters are deleted. NSInvalidArgumentException "Alternative string must not be nil".
String stringByReplacingOccurencesOfString(const String& text, const String& target,
                                           const String& replacement, const String& alternative,
                                           bool stripIllegalCharacters, bool escapeXML = false);
// Every occurrence replaced, the replacement escaped first when escapeXML.
String stringByReplacingOccurrencesOfString(const String& text, const String& target,
                                            const String& replacement, bool escapeXML);
// Whether the pattern matches at the start of the text (not necessarily to its end). A
// pattern that does not compile fails the assertion "could not compile regex pattern
// '<pattern>': <error>"; when the handler returns, the answer is false.
bool matchesRegularExpressionPattern(const String& text, const String& pattern);

}  // namespace tarnvik
