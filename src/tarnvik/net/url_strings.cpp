#include "tarnvik/net/url_strings.hpp"

#include <algorithm>
#include <deque>
#include <string_view>
#include <vector>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/net/base64.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

UInteger modeOf(UInteger options, UInteger zeroMeans) {
  const UInteger mode = options & 7;
  return mode == 0 ? zeroMeans : mode;
}

// The text before the query and the fragment.
String pathPart(const String& url) {
  const String withoutFragment = stringByDeletingURLFragment(url);
  const Range query = rangeOfURLQuery(withoutFragment);
  return query.location == NSNotFound ? withoutFragment
                                      : withoutFragment.substringToIndex(query.location);
}

// The path with the receiver's query and fragment put back.
String withQueryAndFragmentOf(const String& path, const String& url) {
  return stringByAppendingURLFragment(stringByAppendingURLQuery(path, URLQuery(url)),
                                      URLFragment(url));
}

// Query keys and values must be text; anything else is the caller's mistake.
String encodedValue(const Value& value) {
  if (!value.isString()) {
    raiseInvalidArgumentFormat(u"-[%@ URLEncodedString]: unrecognized selector sent to instance %p",
                               value.isNil() ? String(u"nil") : value.className(),
                               value.identity());
  }
  return URLEncodedString(value.asString());
}

// "&" between pairs, then name, "[]" when asked, "=" and the encoded value.
void appendPair(std::u16string& text, bool brackets, const String& name, const Value& value) {
  if (!text.empty()) text.push_back(u'&');
  text.append(name.units());
  if (brackets) text.append(u"[]");
  text.push_back(u'=');
  text.append(encodedValue(value).units());
}

}  // namespace

String URLEncodedString(const String& text) {
  static const PercentEscapes escapes(u"", u"!*'\"();:@&=+$,/?%#[]% ");
  return escapes.apply(text);
}

String URLDecodedString(const String& text, bool plusAsSpace) {
  if (text.isNil()) return String();
  std::u16string out;
  if (!decodePercentEscapes(text.units(), plusAsSpace, out)) return String();
  return String(std::move(out));
}

String lastURLPathComponent(const String& url) {
  const String path = pathPart(url);
  const Range slash = path.rangeOfString(u"/", NSBackwardsSearch);
  return slash.location == NSNotFound ? path : path.substringFromIndex(slash.end());
}

String URLPathExtension(const String& url) { return lastURLPathComponent(url).pathExtension(); }

String stringByAppendingURLPathComponent(const String& url, const String& component) {
  String path = pathPart(url);
  const String name = component.hasPrefix(u"/") ? component.substringFromIndex(1) : component;
  if (!path.isEmpty() && !path.hasSuffix(u"/")) path.appendString(u"/");
  path.appendString(name);
  return withQueryAndFragmentOf(path, url);
}

String stringByDeletingLastURLPathComponent(const String& url) {
  String path = pathPart(url);
  const Range slash = path.rangeOfString(u"/", NSBackwardsSearch);
  if (slash.location != NSNotFound) path = path.substringToIndex(slash.end());
  return withQueryAndFragmentOf(path, url);
}

String stringByAppendingURLPathExtension(const String& url, const String& extension) {
  const String named = lastURLPathComponent(url).stringByAppendingPathExtension(extension);
  return stringByAppendingURLPathComponent(stringByDeletingLastURLPathComponent(url),
                                           named.isNil() ? String(u"") : named);
}

String stringByDeletingURLPathExtension(const String& url) {
  return stringByAppendingURLPathComponent(
      stringByDeletingLastURLPathComponent(url),
      lastURLPathComponent(url).stringByDeletingPathExtension());
}

Range rangeOfURLQuery(const String& url) {
  // Literal searches for single units, straight on the units.
  const std::u16string_view units = url.units();
  const std::size_t hash = units.find(u'#');
  const UInteger end = hash == std::u16string_view::npos ? url.length() : hash;
  const std::size_t question = units.find(u'?');
  // A "?" inside the fragment belongs to the fragment.
  if (question != std::u16string_view::npos && question <= end) return {question, end - question};
  if (units.substr(0, end).find(u'=') != std::u16string_view::npos) return {0, end};
  return {NSNotFound, 0};
}

String URLQuery(const String& url) {
  const Range range = rangeOfURLQuery(url);
  if (range.location == NSNotFound) return String();
  const String text = url.substringWithRange(range);
  return text.hasPrefix(u"?") ? text.substringFromIndex(1) : text;
}

String stringByDeletingURLQuery(const String& url) {
  const Range range = rangeOfURLQuery(url);
  return range.location == NSNotFound ? url : url.stringByReplacingCharactersInRange(range, u"");
}

String stringByReplacingURLQueryWithQuery(const String& url, const String& query) {
  return stringByAppendingURLQuery(stringByDeletingURLQuery(url), query);
}

String stringByAppendingURLQuery(const String& url, const String& query) {
  if (query.isEmpty()) return url;
  const String fragment = URLFragment(url);
  String result = stringByDeletingURLFragment(url);
  const String existing = URLQuery(result);
  if (existing.isNil()) {
    appendFormat(result, u"?%@", query);
  } else if (!existing.isEmpty()) {
    appendFormat(result, u"&%@", query);
  } else {
    result.appendString(query);
  }
  if (!fragment.isEmpty()) appendFormat(result, u"#%@", fragment);
  return result;
}

String URLQueryWithParameters(const Dictionary& parameters, UInteger options) {
  const UInteger mode = modeOf(options, URLQueryArrayModeAll);
  const bool syntax = options & URLQueryArraySyntax;
  std::u16string text;
  for (const auto& [key, value] : parameters) {
    const String name = encodedValue(key);
    const Array array = value.asArray();
    if (array.isNil()) {
      appendPair(text, mode == 4 && syntax, name, value);
    } else if (mode == 1 && !array.isEmpty()) {
      appendPair(text, false, name, array.lastObject());
    } else if (mode == 2 && !array.isEmpty()) {
      appendPair(text, false, name, array.firstObject());
    } else {
      for (const Value& element : array) appendPair(text, syntax, name, element);
    }
  }
  return String(std::move(text));
}

Dictionary URLQueryParameters(const String& url) { return URLQueryParametersWithOptions(url, 0); }

Dictionary URLQueryParametersWithOptions(const String& url, UInteger options) {
  const UInteger mode = modeOf(options, URLQueryArrayModeLast);
  const String query = URLQuery(url);
  if (query.isNil()) return Dictionary::dictionary();
  // Collected by name first, in order of first appearance, then turned into the dictionary.
  // Names are looked up as views: into the query itself when they have no escapes (the
  // usual case), else into decoded copies whose addresses never move.
  struct Entry {
    std::u16string_view name;
    bool isArray = false;
    std::vector<Value> values;
  };
  const std::u16string_view all = query.units();
  const std::size_t pairs = static_cast<std::size_t>(std::count(all.begin(), all.end(), u'&')) + 1;
  std::vector<Entry> entries;
  entries.reserve(pairs);
  // An open-addressing table of entry numbers (plus one; 0 marks a free slot), at most half
  // full, so that a lookup costs one hash and usually one comparison.
  std::size_t slotCount = 16;
  while (slotCount < 2 * pairs) slotCount *= 2;
  std::vector<std::uint32_t> slots(slotCount, 0);
  const auto slotOf = [&](std::u16string_view key) -> std::uint32_t& {
    std::size_t at = std::hash<std::u16string_view>{}(key) & (slotCount - 1);
    while (slots[at] != 0 && entries[slots[at] - 1].name != key) at = (at + 1) & (slotCount - 1);
    return slots[at];
  };
  std::deque<std::u16string> decodedNames;
  std::u16string name, valueUnits;
  for (std::size_t start = 0; start <= all.size();) {
    const std::size_t end = std::min(all.find(u'&', start), all.size());
    const std::u16string_view part = all.substr(start, end - start);
    start = end + 1;
    const std::size_t equals = part.find(u'=');
    if (equals == std::u16string_view::npos) continue;
    const std::u16string_view rawName = part.substr(0, equals);
    const std::u16string_view rest = part.substr(equals + 1);
    // Escapes that are not UTF-8 make no parameter; text after a second "=" is dropped.
    const bool plainName = rawName.find_first_of(u"%+") == std::u16string_view::npos;
    name.clear();
    valueUnits.clear();
    if ((!plainName && !decodePercentEscapes(rawName, true, name)) ||
        !decodePercentEscapes(rest.substr(0, rest.find(u'=')), true, valueUnits)) {
      continue;
    }
    std::u16string_view key = plainName ? rawName : std::u16string_view(name);
    const bool arraySyntax = key.ends_with(u"[]");
    if (arraySyntax) key.remove_suffix(2);
    Value value{String(std::u16string_view(valueUnits))};
    std::uint32_t& slot = slotOf(key);
    if (slot == 0) {
      if (!plainName) key = decodedNames.emplace_back(key);
      slot = static_cast<std::uint32_t>(entries.size() + 1);
      const bool asArray = mode == 4 || (arraySyntax && (mode == 3 || mode >= 5));
      entries.push_back({key, asArray, {}});
      entries.back().values.push_back(std::move(value));
      continue;
    }
    Entry& entry = entries[slot - 1];
    if (entry.isArray) {
      entry.values.push_back(std::move(value));
    } else if (mode == 1) {
      entry.values[0] = std::move(value);
    } else if (mode != 2) {
      entry.isArray = true;
      entry.values.push_back(std::move(value));
    }
  }
  Dictionary parameters = Dictionary::dictionaryWithCapacity(entries.size());
  for (Entry& entry : entries) {
    const String name(entry.name);
    if (!entry.isArray) {
      parameters.setObject(entry.values[0], name);
    } else {
      parameters.setObject(Array(std::move(entry.values)), name);
    }
  }
  return parameters;
}

String stringByMergingURLQuery(const String& url, const String& other, UInteger options) {
  const UInteger mode = modeOf(options, URLQueryArrayModeLast);
  const String newQuery = URLQuery(other);
  if (newQuery.isEmpty()) return url;
  if (URLQuery(url).isEmpty()) return stringByAppendingURLQuery(url, newQuery);
  Dictionary merged = URLQueryParametersWithOptions(url, options);
  const Dictionary incoming = URLQueryParametersWithOptions(newQuery, options);
  for (const auto& [name, value] : incoming) {
    const Value old = merged.objectForKey(name);
    const Array oldArray = old.asArray(), newArray = value.asArray();
    if (!oldArray.isNil()) {
      merged.setObject(newArray.isNil() ? oldArray.arrayByAddingObject(value)
                                        : oldArray.arrayByAddingObjectsFromArray(newArray),
                       name);
    } else if (!old.isNil() && !newArray.isNil()) {
      merged.setObject(Array{old}.arrayByAddingObjectsFromArray(newArray), name);
    } else if (!old.isNil()) {
      if (mode == 3 || mode == 4) merged.setObject(Array{old, value}, name);
      if (mode != 2 && mode != 3 && mode != 4) merged.setObject(value, name);
    } else {
      merged.setObject(mode == 4 ? Value(Array{value}) : value, name);
    }
  }
  return stringByReplacingURLQueryWithQuery(url, URLQueryWithParameters(merged, options));
}

String URLFragment(const String& url) {
  const Range hash = url.rangeOfString(u"#");
  return hash.location == NSNotFound ? String() : url.substringFromIndex(hash.end());
}

String stringByDeletingURLFragment(const String& url) {
  const Range hash = url.rangeOfString(u"#");
  return hash.location == NSNotFound ? url : url.substringToIndex(hash.location);
}

String stringByAppendingURLFragment(const String& url, const String& fragment) {
  if (fragment.isNil()) return url;
  if (url.containsString(u"#")) return url.stringByAppendingString(fragment);
  return url.stringByAppendingString(stringWithFormat(u"#%@", fragment));
}

URL URLValue(const String& text) {
  return text.isAbsolutePath() ? URL::fileURLWithPath(text) : URL::URLWithString(text);
}

URL URLValueRelativeToURL(const String& text, const URL& base) {
  return URL::URLWithString(text, base);
}

String base64EncodedString(const String& text) {
  if (text.isEmpty()) return String();
  const std::string bytes = text.utf8();
  return base64EncodedStringFromBytes(
      std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
}

String base64DecodedString(const String& text) {
  const Data ascii = text.dataUsingEncoding(NSASCIIStringEncoding, true);
  const Data bytes = base64DecodedDataTolerant(ascii.asStringView());
  if (bytes.isEmpty()) return String();
  return String::fromUTF8(bytes.asStringView());
}

}  // namespace tarnvik
