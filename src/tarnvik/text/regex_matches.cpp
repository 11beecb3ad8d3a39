#include "tarnvik/text/regex_matches.hpp"

namespace tarnvik {

TextCheckingResult firstMatchInString(const RegularExpression& re, const String& text,
                                      UInteger options) {
  return re.firstMatchInString(text, options, {0, text.length()});
}

bool hasMatchesInString(const RegularExpression& re, const String& text) {
  return firstMatchInString(re, text).range().location != NSNotFound;
}

void enumerateMatchesInString(const RegularExpression& re, const String& text, UInteger options,
                              const RegularExpression::MatchBlock& block) {
  re.enumerateMatchesInString(text, options, {0, text.length()}, block);
}

void enumerateMatchesInString(const RegularExpression& re, const String& text,
                              const RegularExpression::MatchBlock& block) {
  enumerateMatchesInString(re, text, 0, block);
}

bool didMatch(const TextCheckingResult& match) { return match.range().location != NSNotFound; }

bool didMatch(const TextCheckingResult& match, UInteger group) {
  return match.rangeAtIndex(group).location != NSNotFound;
}

String substringOfMatchedString(const TextCheckingResult& match, const String& searched,
                                UInteger group) {
  const Range range = match.rangeAtIndex(group);
  return range.location == NSNotFound ? String() : searched.substringWithRange(range);
}

Array substringsOfMatchedString(const TextCheckingResult& match, const String& searched) {
  if (match.isNil()) return Array();
  Array texts = Array::array();
  for (UInteger group = 1; group <= match.numberOfRanges(); ++group) {
    const String text = substringOfMatchedString(match, searched, group);
    texts.addObject(text.isNil() ? Value(kNull) : Value(text));
  }
  return texts;
}

}  // namespace tarnvik
