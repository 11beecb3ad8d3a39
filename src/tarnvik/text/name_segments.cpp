#include "tarnvik/text/name_segments.hpp"

#include <algorithm>
#include <climits>
#include <unordered_map>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/text/affixes.hpp"

namespace tarnvik {

namespace {

constexpr UInteger kSequenceOptions =
    NSCaseInsensitiveSearch | NSNumericSearch | NSWidthInsensitiveSearch | NSForcedOrderingSearch;

// The extension of the last path component as a view: the text after its last "." unless
// that "." starts the component.
std::u16string_view extensionOf(std::u16string_view path) {
  while (path.size() > 1 && path.back() == u'/') path.remove_suffix(1);
  for (std::size_t at = path.size(); at-- > 0;) {
    if (path[at] == u'/') return {};
    if (path[at] == u'.')
      return at == 0 || path[at - 1] == u'/' ? std::u16string_view() : path.substr(at + 1);
  }
  return {};
}

String padding(const String& text, UInteger length, const String& pad) {
  const UInteger missing = length - text.length();
  if (pad.isEmpty()) {
    raiseRangeFormat(
        u"-[NSString stringByPaddingToLength:withString:startingAtIndex:]: "
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

ComparisonResult compareForSequence(const String& name, const String& other) {
  return compareUnitsForSequence(name.units(), other.units());
}

ComparisonResult compareUnitsForSequence(std::u16string_view name, std::u16string_view other) {
  const ComparisonResult byExtension =
      String::compareUnits(extensionOf(name), extensionOf(other), 0);
  if (byExtension != NSOrderedSame) return byExtension;
  return String::compareUnits(name, other, kSequenceOptions);
}

namespace {

bool isPrintableASCII(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= 0x20 && c < 0x7F; });
}

// A byte key whose plain (memcmp) order is the sequence order, for names in printable ASCII:
// the rank of the extension (two bytes), then the name with letters folded to lower case and
// each digit run written as "0", the count of its significant digits and those digits.
// Every digit lies in "0" to "9" and no other ASCII character does, so a run orders against
// any other character as its first digit would. false for a run of more than 255
// significant digits.
bool appendSequenceKey(std::u16string_view name, std::uint16_t extensionRank, std::string& key) {
  key.push_back(static_cast<char>(extensionRank >> 8));
  key.push_back(static_cast<char>(extensionRank & 0xFF));
  for (std::size_t i = 0; i < name.size();) {
    const char16_t c = name[i];
    if (c < u'0' || c > u'9') {
      key.push_back(static_cast<char>(c >= u'A' && c <= u'Z' ? c + 32 : c));
      ++i;
      continue;
    }
    std::size_t end = i;
    while (end < name.size() && name[end] >= u'0' && name[end] <= u'9') ++end;
    std::size_t significant = i;
    while (significant < end && name[significant] == u'0') ++significant;
    if (end - significant > 255) return false;
    key.push_back('0');
    key.push_back(static_cast<char>(end - significant));
    for (; significant < end; ++significant) key.push_back(static_cast<char>(name[significant]));
    i = end;
  }
  return true;
}

// Eight key bytes from `at`, big-endian, zero past the end.
std::uint64_t keyWord(std::string_view key, std::size_t at) {
  std::uint64_t word = 0;
  for (std::size_t k = at; k < at + 8; ++k)
    word = word << 8 | (k < key.size() ? static_cast<unsigned char>(key[k]) : 0u);
  return word;
}

struct KeyedName {
  std::uint64_t head[2];  // the first sixteen key bytes, so most comparisons stop here
  std::uint32_t offset;
  std::uint32_t length;
  std::size_t index;
};

// The order through keys; empty when some name has no key (not printable ASCII, an
// enormous digit run, too many extensions or too much text).
std::vector<std::size_t> orderByKeys(std::span<const std::u16string_view> names) {
  if (!std::all_of(names.begin(), names.end(), isPrintableASCII)) return {};
  // In printable ASCII the plain comparison of extensions is their unit order.
  std::unordered_map<std::u16string_view, std::uint16_t> ranks;
  for (const auto name : names) ranks.emplace(extensionOf(name), 0);
  if (ranks.size() > UINT16_MAX) return {};
  std::vector<std::u16string_view> extensions;
  for (const auto& entry : ranks) extensions.push_back(entry.first);
  std::sort(extensions.begin(), extensions.end());
  for (std::size_t r = 0; r < extensions.size(); ++r)
    ranks[extensions[r]] = static_cast<std::uint16_t>(r);

  std::string keys;
  std::vector<KeyedName> keyed;
  keyed.reserve(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::size_t start = keys.size();
    if (!appendSequenceKey(names[i], ranks[extensionOf(names[i])], keys) ||
        keys.size() > UINT32_MAX)
      return {};
    const std::string_view key = std::string_view(keys).substr(start);
    keyed.push_back({{keyWord(key, 0), keyWord(key, 8)},
                     static_cast<std::uint32_t>(start),
                     static_cast<std::uint32_t>(key.size()),
                     i});
  }
  const std::string_view all(keys);
  std::sort(keyed.begin(), keyed.end(), [&](const KeyedName& a, const KeyedName& b) {
    if (a.head[0] != b.head[0]) return a.head[0] < b.head[0];
    if (a.head[1] != b.head[1]) return a.head[1] < b.head[1];
    const int c = all.substr(a.offset, a.length).compare(all.substr(b.offset, b.length));
    if (c != 0) return c < 0;
    return names[a.index] < names[b.index];  // forced ordering: plain units break the tie
  });
  std::vector<std::size_t> order;
  order.reserve(keyed.size());
  for (const KeyedName& k : keyed) order.push_back(k.index);
  return order;
}

}  // namespace

std::vector<std::size_t> sequenceOrder(std::span<const std::u16string_view> names) {
  std::vector<std::size_t> order = orderByKeys(names);
  if (!names.empty() && order.empty()) {
    order.resize(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) order[i] = i;
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return compareUnitsForSequence(names[a], names[b]) == NSOrderedAscending;
    });
  }
  return order;
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
    KU_ASSERT(false, kOperation, Value(text), u"%@ is too long to be converted to an integer",
              text);
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
