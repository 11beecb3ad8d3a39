// URL: an RFC 3986 URL (parsed with uriparser) that keeps the text it was made from, with
// the platform's component accessors, file URLs and relative resolution; percent encoding.
//
//   URL url = URL::URLWithString(u"http://user:pw@host:8080/a/b;p?x=1#top");
//   url.port().intValue();   // 8080
//   url.valueForKey(u"query").asString();   // "x=1"
#pragma once

#include <array>
#include <memory>

#include "tarnvik/platform/base/character_set.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

// A default-constructed URL is nil.
class URL {
 public:
  URL() = default;
  // nil for text that is not a valid URL or relative reference (empty text, blanks,
  // unescaped brackets outside an IPv6 host, non-ASCII, ...).
  static URL URLWithString(const String& text);
  // The text resolved against the base (RFC 3986, section 5); nil when either is invalid.
  // A nil base gives URLWithString(text).
  static URL URLWithString(const String& text, const URL& base);
  // A file URL for the path, made absolute against the working folder when it is relative
  // (a leading "~" is not expanded); folders that exist get a trailing "/".
  static URL fileURLWithPath(const String& path);

  bool isNil() const { return absolute_.isNil(); }
  bool isFileURL() const;
  String absoluteString() const { return absolute_; }
  String description() const { return absolute_; }

  // Components, nil when absent. user, password and path are percent-decoded; host, query,
  // fragment and parameterString are as written. The path of "http://h" is "".
  String scheme() const;
  String user() const;
  String password() const;
  String host() const;
  // The port number, or nil.
  Value port() const;
  // Percent-decoded, without the parameter string and without a trailing "/" (except for
  // the path "/").
  String path() const;
  // The text after ";" in the last path segment (RFC 1808), or nil.
  String parameterString() const;
  String query() const;
  String fragment() const;
  // The components by name ("scheme", "host", "port", ...); NSUndefinedKeyException
  // ("[<NSURL> valueForUndefinedKey:]: this class is not key value coding-compliant for the
  // key <key>.") for any other key.
  Value valueForKey(const String& key) const;

  bool isEqual(const URL& other) const { return absolute_ == other.absolute_; }
  friend bool operator==(const URL& a, const URL& b) { return a.isEqual(b); }

 private:
  struct Parts;
  // The components, or empty ones for a nil URL.
  const Parts& parts() const;
  String absolute_;
  // The components as uriparser found them, filled once when the URL is made.
  std::shared_ptr<const Parts> parts_;
};

// Percent encoding of the text's UTF-8 bytes: every character outside the allowed set
// becomes "%" and two upper-case hex digits per byte. The set answers per UTF-16 unit, so a
// character beyond the BMP (a surrogate pair) is always encoded.
String stringByAddingPercentEncodingWithAllowedCharacters(const String& text,
                                                          const CharacterSet& allowed);
// The older escaping: the bytes of characters that are never legal in a URL (controls,
// blanks, non-ASCII, and " % < > \ ^ ` { | }) and of those listed in `toEscape` are
// encoded, except those listed in `legalToLeave`.
String stringByAddingPercentEscapes(const String& text, const String& legalToLeave,
                                    const String& toEscape);
// The same rule made once, for encoding many texts.
class PercentEscapes {
 public:
  PercentEscapes(const String& legalToLeave, const String& toEscape);
  String apply(const String& text) const;

 private:
  std::array<bool, 128> escape_{};
};
// "%XX" escapes decoded as UTF-8; nil when an escape is malformed or the bytes are not
// valid UTF-8.
String stringByRemovingPercentEncoding(const String& text);
// The same onto `out` (with "+" read as a blank when asked); false on a malformed escape
// or bytes that are not UTF-8.
bool decodePercentEscapes(std::u16string_view units, bool plusAsSpace, std::u16string& out);
// The characters a query may hold unescaped: letters, digits and -._~!$&'()*+,;=:@/?
CharacterSet URLQueryAllowedCharacterSet();

}  // namespace tarnvik
