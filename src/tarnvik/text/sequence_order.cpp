#include "tarnvik/text/sequence_order.hpp"

#include <algorithm>
#include <climits>
#include <string>
#include <unordered_map>

#include "tarnvik/text/internal/file_name_parts.hpp"

namespace tarnvik {

namespace {

constexpr UInteger kNameOptions =
    NSCaseInsensitiveSearch | NSNumericSearch | NSWidthInsensitiveSearch;
constexpr UInteger kSequenceOptions = kNameOptions | NSForcedOrderingSearch;

// The extension of the last path component as a view: the text after its last "." unless
// that "." starts the component.
std::u16string_view extensionOf(std::u16string_view path) {
  while (path.size() > 1 && path.back() == u'/') path.remove_suffix(1);
  const std::size_t dot = file_name_parts::extensionDot(path);
  return dot == std::u16string_view::npos ? std::u16string_view() : path.substr(dot + 1);
}

// A file name split before its extension's ".": the name, and the extension without the dot.
struct FileNameParts {
  std::u16string_view stem, extension;
};

FileNameParts partsOf(std::u16string_view name) {
  const std::size_t dot = file_name_parts::extensionDot(name);
  if (dot == std::u16string_view::npos) return {name, {}};
  return {name.substr(0, dot), name.substr(dot + 1)};
}

}  // namespace

ComparisonResult compareForSequence(const String& name, const String& other) {
  return compareUnitsForSequence(name.units(), other.units());
}

ComparisonResult compareUnitsForSequence(std::u16string_view name, std::u16string_view other) {
  const ComparisonResult byExtension =
      String::compareUnits(extensionOf(name), extensionOf(other), 0);
  if (byExtension != NSOrderedSame) return byExtension;
  return String::compareUnits(name, other, kSequenceOptions);
}

ComparisonResult compareFileNamesForSequence(const String& name, const String& other) {
  return compareFileNameUnitsForSequence(name.units(), other.units());
}

ComparisonResult compareFileNameUnitsForSequence(std::u16string_view name,
                                                 std::u16string_view other) {
  const FileNameParts a = partsOf(name), b = partsOf(other);
  if (const auto byName = String::compareUnits(a.stem, b.stem, kNameOptions);
      byName != NSOrderedSame) {
    return byName;
  }
  if (const auto byExtension =
          String::compareUnits(a.extension, b.extension, NSCaseInsensitiveSearch);
      byExtension != NSOrderedSame) {
    return byExtension;
  }
  return String::compareUnits(name, other, 0);
}

namespace {

bool isPrintableASCII(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= 0x20 && c < 0x7F; });
}

// A byte key whose plain (memcmp) order is the case-insensitive, numeric order of names in
// printable ASCII: the name with letters folded to lower case and each digit run written as
// "0", the count of its significant digits and those digits. Every digit lies in "0" to "9"
// and no other ASCII character does, so a run orders against any other character as its
// first digit would. false for a run of more than 255 significant digits.
bool appendNameKey(std::u16string_view name, std::string& key) {
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

// The sequence key: the rank of the extension (two bytes), then the name's key.
bool appendSequenceKey(std::u16string_view name, std::uint16_t extensionRank, std::string& key) {
  key.push_back(static_cast<char>(extensionRank >> 8));
  key.push_back(static_cast<char>(extensionRank & 0xFF));
  return appendNameKey(name, key);
}

// The file-name key: the key of the name before the extension, a zero byte (below every
// printable character, so that a name orders before its longer forms), then the extension
// folded to lower case. Where a digit run's count is zero the next byte is never a zero
// byte's rival: it is a printable character or the end of the name.
bool appendFileNameKey(std::u16string_view name, std::string& key) {
  const FileNameParts parts = partsOf(name);
  if (!appendNameKey(parts.stem, key)) return false;
  key.push_back('\0');
  for (const char16_t c : parts.extension)
    key.push_back(static_cast<char>(c >= u'A' && c <= u'Z' ? c + 32 : c));
  return true;
}

// The order through keys, sequence keys or file-name keys; empty when some name has no key
// (not printable ASCII, an enormous digit run, too many extensions or too much text).
std::vector<std::size_t> orderByKeys(std::span<const std::u16string_view> names, bool byFileName) {
  if (!std::all_of(names.begin(), names.end(), isPrintableASCII)) return {};
  // In printable ASCII the plain comparison of extensions is their unit order.
  std::unordered_map<std::u16string_view, std::uint16_t> ranks;
  if (!byFileName) {
    for (const auto name : names) ranks.emplace(extensionOf(name), 0);
    if (ranks.size() > UINT16_MAX) return {};
    std::vector<std::u16string_view> extensions;
    for (const auto& entry : ranks) extensions.push_back(entry.first);
    std::sort(extensions.begin(), extensions.end());
    for (std::size_t r = 0; r < extensions.size(); ++r)
      ranks[extensions[r]] = static_cast<std::uint16_t>(r);
  }

  std::string keys;
  std::vector<KeyedName> keyed;
  keyed.reserve(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::size_t start = keys.size();
    const bool hasKey = byFileName
                            ? appendFileNameKey(names[i], keys)
                            : appendSequenceKey(names[i], ranks[extensionOf(names[i])], keys);
    if (!hasKey || keys.size() > UINT32_MAX) return {};
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

namespace {

template <class Compare>
std::vector<std::size_t> orderOf(std::span<const std::u16string_view> names, bool byFileName,
                                 Compare compare) {
  std::vector<std::size_t> order = orderByKeys(names, byFileName);
  if (!names.empty() && order.empty()) {
    order.resize(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) order[i] = i;
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return compare(names[a], names[b]) == NSOrderedAscending;
    });
  }
  return order;
}

}  // namespace

std::vector<std::size_t> sequenceOrder(std::span<const std::u16string_view> names) {
  return orderOf(names, false, compareUnitsForSequence);
}

std::vector<std::size_t> fileNameSequenceOrder(std::span<const std::u16string_view> names) {
  return orderOf(names, true, compareFileNameUnitsForSequence);
}

ComparisonResult caseInsensitiveNumericalCompare(const String& name, const String& other) {
  return name.compare(other, NSNumericSearch | NSCaseInsensitiveSearch);
}
}  // namespace tarnvik
