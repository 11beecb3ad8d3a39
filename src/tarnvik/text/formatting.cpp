#include "tarnvik/text/formatting.hpp"

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/system/bundle.hpp"
#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/platform/text/regular_expression.hpp"
#include "tarnvik/text/affixes.hpp"

namespace tarnvik {

String ke_regularPluralized(const String& word, UInteger count) {
  const String table = u"NSString_KDExtensions";
  if (count == 0) return stringWithFormat(localizedString(u"no %@s", u"", table), word);
  if (count == 1) return stringWithFormat(localizedString(u"1 %@", u"", table), word);
  return stringWithFormat(localizedString(u"%lu %@s", u"", table), count, word);
}

String fullySpelledStringForUnsignedInteger(UInteger value) {
  static constexpr const char16_t* kSmall[] = {nullptr, u"one",    u"two",   u"three", u"four",
                                               u"five", u"six",    u"seven", u"eight", u"nine",
                                               u"ten",  u"eleven", u"twelve"};
  static constexpr const char16_t* kTens[] = {nullptr,  nullptr,  u"twenty",  u"thirty", u"fourty",
                                              u"fifty", u"sixty", u"seventy", u"eighty", u"ninety"};
  if (value >= 1 && value <= 12) return kSmall[value];
  if (value >= 20 && value <= 90 && value % 10 == 0) return kTens[value / 10];
  return stringWithFormat(u"%lu", value);
}

String stringWithUpperCaseFirstLetter(const String& text) {
  if (text.isEmpty()) return String(std::u16string(text.units()));
  String result = text.substringToIndex(1).uppercaseString();
  result.appendString(text.substringFromIndex(1));
  return result;
}

String asciiString(const String& text) {
  return String::withData(text.dataUsingEncoding(NSASCIIStringEncoding, true),
                          NSASCIIStringEncoding);
}

String asciiStringWithoutWhitespace(const String& text) {
  String result = asciiString(text);
  for (const char16_t* blank : {u" ", u"\t", u"\n", u"\r"}) {
    result = result.stringByReplacingOccurrencesOfString(blank, u"_");
  }
  return result;
}

String stringByExpandingCamelCase(const String& text) {
  const auto units = text.units();
  if (units.size() <= 2) return String(std::u16string(units));
  static const CharacterSet lower = CharacterSet::lowercaseLetterCharacterSet();
  static const CharacterSet upper = CharacterSet::uppercaseLetterCharacterSet();
  std::u16string out;
  out.reserve(units.size() + units.size() / 4);
  for (std::size_t i = 0; i < units.size(); ++i) {
    out.push_back(units[i]);
    if (i + 1 < units.size() && lower.characterIsMember(units[i]) &&
        upper.characterIsMember(units[i + 1])) {
      out.push_back(u' ');
    }
  }
  return String(std::move(out));
}

String stringByEscapingXMLCharacters(const String& text) {
  String result = text;
  static constexpr std::pair<const char16_t*, const char16_t*> kEntities[] = {
      {u"&", u"&amp;"}, {u"\"", u"&quot;"}, {u"'", u"&#x27;"}, {u"<", u"&lt;"}, {u">", u"&gt;"}};
  for (const auto& [character, entity] : kEntities) {
    result = result.stringByReplacingOccurrencesOfString(character, entity);
  }
  return result;
}

Dictionary _invalidXMLCharacterEscapeMap() {
  static const Dictionary map{
      {u"&", u"&amp;"}, {u"\"", u"&quot;"}, {u"<", u"&lt;"}, {u"'", u"&apos;"}, {u">", u"&gt;"}};
  return map;
}

String xmlEscapedString(const String& text) {
  const Dictionary map = _invalidXMLCharacterEscapeMap();
  std::u16string out;
  out.reserve(text.length());
  for (const char16_t unit : text.units()) {
    const Value entity = map.objectForKey(String(std::u16string_view(&unit, 1)));
    if (entity.isNil()) {
      out.push_back(unit);
    } else {
      out.append(entity.asString().units());
    }
  }
  return String(std::move(out));
}

String stringByReplacingOccurencesOfString(const String& text, const String& target,
                                           const String& replacement, const String& alternative,
                                           bool stripIllegalCharacters, bool escapeXML) {
  if (alternative.isNil()) raiseInvalidArgument(u"Alternative string must not be nil");
  const String escaped =
      escapeXML && !replacement.isNil() ? stringByEscapingXMLCharacters(replacement) : replacement;
  String result =
      text.stringByReplacingOccurrencesOfString(target, escaped.isNil() ? alternative : escaped);
  if (stripIllegalCharacters) {
    result = stringByDeletingCharactersMemberOfSet(result, CharacterSet::illegalCharacterSet());
    result = stringByDeletingCharactersMemberOfSet(result, CharacterSet::controlCharacterSet());
  }
  return result;
}

String stringByReplacingOccurrencesOfString(const String& text, const String& target,
                                            const String& replacement, bool escapeXML) {
  return text.stringByReplacingOccurrencesOfString(
      target, escapeXML ? stringByEscapingXMLCharacters(replacement) : replacement);
}

bool matchesRegularExpressionPattern(const String& text, const String& pattern) {
  Error error;
  const RegularExpression re = RegularExpression::regularExpressionWithPattern(pattern, 0, &error);
  if (re.isNil()) {
    KU_ASSERT(false, u"-[NSString(KDExtensions) matchesRegularExpressionPattern:]", Value(text),
              u"could not compile regex pattern '%@': %@", pattern, error);
    return false;
  }
  return re.firstMatchInString(text, NSMatchingAnchored, {0, text.length()}).range().location !=
         NSNotFound;
}

}  // namespace tarnvik
