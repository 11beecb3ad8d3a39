// String: UTF-16 text with nil and empty kept apart, the platform's search, case and
// numeric readings, and the Range type that indexes it.
//
//   String name = u"A001C009.mov";
//   Range digits = name.rangeOfString(u"C0");   // {4, 2}
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

class Array;
class CharacterSet;
class Data;

enum StringEncoding : UInteger {
  NSASCIIStringEncoding = 1,
  NSUTF8StringEncoding = 4,
  NSISOLatin1StringEncoding = 5,
  NSUTF16StringEncoding = 10,
};

// A cheap-to-copy handle to shared, copy-on-write UTF-16 storage. A default-constructed
// String is nil; String(u"") is empty. Lengths, indexes and ranges count UTF-16 units.
// Operations that take an index or range raise NSRangeException when it lies outside the
// receiver. Reading a nil String behaves like reading an empty one.
class String {
 public:
  String() = default;
  // UTF-8 text; invalid sequences become U+FFFD. A null pointer gives nil.
  String(const char* utf8);           // NOLINT(google-explicit-constructor)
  String(const char16_t* utf16);      // NOLINT(google-explicit-constructor)
  String(std::u16string units);       // NOLINT(google-explicit-constructor)
  String(std::u16string_view units);  // NOLINT(google-explicit-constructor)
  String(const std::string& utf8);    // NOLINT(google-explicit-constructor)
  String(std::string_view utf8);      // NOLINT(google-explicit-constructor)

  // Strict UTF-8 decoding: nil when the bytes are not valid UTF-8.
  static String fromUTF8(std::string_view utf8);
  // Lenient decoding: invalid sequences become U+FFFD.
  static String fromUTF8Lossy(std::string_view utf8);
  static String withCharacters(const char16_t* units, UInteger length);
  static String withCodePoint(char32_t codePoint);

  bool isNil() const { return !storage_; }
  bool isEmpty() const { return length() == 0; }
  UInteger length() const { return storage_ ? storage_->size() : 0; }
  // NSRangeException when index >= length().
  char16_t characterAtIndex(UInteger index) const;
  std::u16string_view units() const {
    return storage_ ? std::u16string_view(*storage_) : std::u16string_view();
  }
  // UTF-8; unpaired surrogates become U+FFFD. Empty for nil.
  std::string utf8() const;
  std::string toStdString() const { return utf8(); }
  bool isIdenticalTo(const String& other) const { return storage_ == other.storage_; }

  // Substrings (NSRangeException when outside the receiver). A nil receiver gives nil.
  String substringFromIndex(UInteger from) const;
  String substringToIndex(UInteger to) const;
  String substringWithRange(Range range) const;

  // Literal unit comparisons; an empty argument is never a prefix or suffix.
  bool hasPrefix(const String& prefix) const;
  bool hasSuffix(const String& suffix) const;
  bool isEqualToString(const String& other) const;
  std::size_t hash() const;

  // Literal (unit by unit) ordering; nil sorts like the empty string.
  ComparisonResult compare(const String& other) const;
  ComparisonResult caseInsensitiveCompare(const String& other) const;
  // Ordering under the option bits (see string_compare.cpp for the collation):
  // NSCaseInsensitiveSearch folds case; NSLiteralSearch compares units as they are, while
  // without it canonically equivalent texts (precomposed or combining accents) are equal;
  // NSNumericSearch compares runs of decimal digits (general category Nd) by value;
  // NSDiacriticInsensitiveSearch ignores accents; NSWidthInsensitiveSearch folds full-width
  // forms to their ASCII counterparts; NSForcedOrderingSearch breaks every tie between
  // texts that are not identical by their units, so only identical texts compare the same.
  // The range selects the part of the receiver compared (NSRangeException when outside it).
  ComparisonResult compare(const String& other, UInteger options) const;
  ComparisonResult compare(const String& other, UInteger options, Range range) const;
  // The same ordering over raw unit views, for callers that compare parts of texts.
  static ComparisonResult compareUnits(std::u16string_view a, std::u16string_view b,
                                       UInteger options);
  // The longest prefix of the receiver that matches the start of the other text under
  // NSCaseInsensitiveSearch, NSLiteralSearch, NSDiacriticInsensitiveSearch and
  // NSWidthInsensitiveSearch; the receiver's own units are returned.
  String commonPrefixWithString(const String& other, UInteger options) const;

  // Search with NSCaseInsensitiveSearch (simple Unicode case folding per unit),
  // NSLiteralSearch, NSBackwardsSearch and NSAnchoredSearch. {NSNotFound, 0} when absent
  // or when the searched-for string is empty.
  Range rangeOfString(const String& target, UInteger options = 0) const;
  Range rangeOfString(const String& target, UInteger options, Range range) const;
  // The first (or, backwards, last) unit in the range that belongs to the set.
  Range rangeOfCharacterFromSet(const CharacterSet& set, UInteger options = 0) const;
  Range rangeOfCharacterFromSet(const CharacterSet& set, UInteger options, Range range) const;
  bool containsString(const String& other) const;

  String stringByAppendingString(const String& other) const;
  String stringByReplacingOccurrencesOfString(const String& target, const String& replacement,
                                              UInteger options = 0) const;
  String stringByReplacingOccurrencesOfString(const String& target, const String& replacement,
                                              UInteger options, Range range) const;
  String stringByReplacingCharactersInRange(Range range, const String& replacement) const;
  String stringByTrimmingCharactersInSet(const CharacterSet& set) const;
  // An empty separator yields an array holding the receiver.
  Array componentsSeparatedByString(const String& separator) const;
  Array componentsSeparatedByCharactersInSet(const CharacterSet& set) const;

  // Case mapping through ICU in the root locale.
  String uppercaseString() const;
  String lowercaseString() const;
  // Each word's first letter title-cased, the rest lower-cased; words are delimited by
  // whitespace and line breaks.
  String capitalizedString() const;

  // Numeric readings: leading whitespace and newlines are skipped, then an optional sign
  // and ASCII digits are read; trailing text is ignored; 0 when no number starts there.
  // Integer readings saturate at their type's bounds; doubleValue gives +-HUGE_VAL on
  // overflow and 0 on underflow.
  Integer integerValue() const;
  long long longLongValue() const;
  int intValue() const;
  double doubleValue() const;
  float floatValue() const;
  // YES when, after whitespace, an optional sign and leading zeros, the text starts with
  // 'Y', 'y', 'T', 't' or a digit 1-9.
  bool boolValue() const;

  // Paths, with POSIX semantics: "/" separates components; an absolute path's first
  // component is "/", a trailing "/" is a last component "/", and empty components are
  // dropped ("a//b" has the components a and b).
  Array pathComponents() const;
  static String pathWithComponents(const Array& components);
  bool isAbsolutePath() const;
  // The last component ("/" for "/", "" for ""); trailing slashes are ignored.
  String lastPathComponent() const;
  // The receiver without its last component: "/a/b" gives "/a", "/a" gives "/", "a" gives "".
  String stringByDeletingLastPathComponent() const;
  // Joined with one "/", without a trailing one: "a" + "b" gives "a/b", "" + "b" gives "b".
  String stringByAppendingPathComponent(const String& component) const;
  // The text after the last "." of the last component, unless that "." starts it.
  String pathExtension() const;
  String stringByDeletingPathExtension() const;
  // nil when the receiver has no last component to carry the extension ("" or "/").
  String stringByAppendingPathExtension(const String& extension) const;
  // "~" and "~/..." become the home folder ($HOME, else the password database), "~user/..."
  // that user's; anything else is returned as it is.
  String stringByExpandingTildeInPath() const;
  // Tilde expanded, empty and "." components dropped, trailing "/" removed, and in absolute
  // paths ".." resolved against the previous component ("/.." is "/").
  String stringByStandardizingPath() const;
  // An absolute path with every symbolic link of its existing part resolved and the rest
  // standardised; a relative path is only standardised.
  String stringByResolvingSymlinksInPath() const;

  // The text in another encoding: NSASCIIStringEncoding (with lossy conversion, Latin
  // letters lose their accents through ICU's Latin-ASCII transform and what has no ASCII
  // form becomes "?"; without it, nil for non-ASCII text), NSUTF8StringEncoding,
  // NSISOLatin1StringEncoding (lossy: "?" beyond U+00FF) and NSUTF16StringEncoding
  // (little-endian, no byte-order mark). nil for a nil receiver or an unknown encoding.
  Data dataUsingEncoding(UInteger encoding, bool allowLossyConversion = false) const;
  // Decodes bytes in one of those encodings; nil when they are not valid in it.
  static String withData(const Data& data, UInteger encoding);

  // Changing the receiver (it detaches from other copies; a nil receiver becomes empty).
  void appendString(const String& other);
  void appendCharacters(const char16_t* units, UInteger length);
  void insertString(const String& other, UInteger index);
  void deleteCharactersInRange(Range range);
  void replaceCharactersInRange(Range range, const String& replacement);
  UInteger replaceOccurrencesOfString(const String& target, const String& replacement,
                                      UInteger options, Range range);
  void setString(const String& other);

  friend bool operator==(const String& a, const String& b) { return a.isEqualToString(b); }
  // Literal order of the UTF-16 units, nil first (before empty, as == keeps them apart), so
  // that String works as a key of std::map and with std::sort. For the platform's orders use
  // compare().
  friend std::strong_ordering operator<=>(const String& a, const String& b) {
    const int order = a.units().compare(b.units());
    if (order != 0) return order < 0 ? std::strong_ordering::less : std::strong_ordering::greater;
    return b.isNil() <=> a.isNil();
  }

 private:
  friend class Value;
  explicit String(std::shared_ptr<std::u16string> storage) : storage_(std::move(storage)) {}
  std::u16string& mutableUnits();
  std::shared_ptr<std::u16string> storage_;
};

using MutableString = String;

// Writes the text as UTF-8.
std::ostream& operator<<(std::ostream& out, const String& text);

}  // namespace tarnvik

template <>
struct std::hash<tarnvik::String> {
  std::size_t operator()(const tarnvik::String& s) const { return s.hash(); }
};
