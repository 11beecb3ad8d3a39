#include "tarnvik/platform/net/url.hpp"

#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <uriparser/Uri.h>

#include <array>
#include <cstring>
#include <vector>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

// Parses with uriparser; true when the whole text is a valid URI or relative reference.
bool parses(const std::string& text, UriUriA& uri) {
  const char* errorAt = nullptr;
  return uriParseSingleUriExA(&uri, text.data(), text.data() + text.size(), &errorAt) ==
         URI_SUCCESS;
}

bool isValidURL(const std::string& text) {
  if (text.empty()) return false;
  for (const unsigned char c : text) {
    if (c >= 0x80) return false;  // URLs are ASCII; anything else must be percent-encoded
  }
  UriUriA uri{};
  const bool ok = parses(text, uri);
  uriFreeUriMembersA(&uri);
  return ok;
}

constexpr char kHex[] = "0123456789ABCDEF";

void appendEscaped(std::u16string& out, unsigned char byte) {
  out.push_back(u'%');
  out.push_back(static_cast<char16_t>(kHex[byte >> 4]));
  out.push_back(static_cast<char16_t>(kHex[byte & 15]));
}

// Appends the UTF-8 bytes of the code point at i (a surrogate pair when there is one; an
// unpaired surrogate as U+FFFD) percent-encoded, and returns how many units it took.
std::size_t appendEscapedCodePoint(std::u16string& out, std::u16string_view units, std::size_t i) {
  char32_t c = units[i];
  std::size_t used = 1;
  if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
      units[i + 1] <= 0xDFFF) {
    c = 0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00);
    used = 2;
  } else if (c >= 0xD800 && c <= 0xDFFF) {
    c = 0xFFFD;
  }
  if (c < 0x80) {
    appendEscaped(out, static_cast<unsigned char>(c));
  } else if (c < 0x800) {
    appendEscaped(out, static_cast<unsigned char>(0xC0 | c >> 6));
    appendEscaped(out, static_cast<unsigned char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    appendEscaped(out, static_cast<unsigned char>(0xE0 | c >> 12));
    appendEscaped(out, static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F)));
    appendEscaped(out, static_cast<unsigned char>(0x80 | (c & 0x3F)));
  } else {
    appendEscaped(out, static_cast<unsigned char>(0xF0 | c >> 18));
    appendEscaped(out, static_cast<unsigned char>(0x80 | ((c >> 12) & 0x3F)));
    appendEscaped(out, static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F)));
    appendEscaped(out, static_cast<unsigned char>(0x80 | (c & 0x3F)));
  }
  return used;
}

// Encodes the UTF-8 bytes of every ASCII unit the table marks and of every other code point
// whose first unit `keepBeyondASCII` (when given) does not keep.
String percentEncoded(const String& text, const std::array<bool, 128>& escape,
                      const CharacterSet* keepBeyondASCII = nullptr) {
  if (text.isNil()) return String();
  std::u16string out;
  const auto units = text.units();
  out.reserve(units.size() + units.size() / 4);
  for (std::size_t i = 0; i < units.size();) {
    const char16_t unit = units[i];
    const bool keep =
        unit < 0x80 ? !escape[unit] : keepBeyondASCII && keepBeyondASCII->characterIsMember(unit);
    if (keep) {
      out.push_back(unit);
      ++i;
    } else {
      i += appendEscapedCodePoint(out, units, i);
    }
  }
  return String(std::move(out));
}

constexpr std::u16string_view kNeverLegal = u" \"%<>\\^`{|}";

const char16_t* kBase64 = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

struct URL::Parts {
  String scheme, user, password, host, port, path, query, fragment;
  bool hasAuthority = false;
};

URL URL::URLWithString(const String& text) {
  if (text.isNil() || !isValidURL(text.utf8())) return URL();
  URL url;
  url.absolute_ = text;
  return url;
}

URL URL::URLWithString(const String& text, const URL& base) {
  if (base.isNil()) return URLWithString(text);
  const std::string relativeText = text.utf8(), baseText = base.absoluteString().utf8();
  if (text.isNil() || (!relativeText.empty() && !isValidURL(relativeText))) return URL();
  UriUriA relative{}, root{}, resolved{};
  String result;
  if (parses(relativeText, relative) && parses(baseText, root) &&
      uriAddBaseUriA(&resolved, &relative, &root) == URI_SUCCESS) {
    int needed = 0;
    if (uriToStringCharsRequiredA(&resolved, &needed) == URI_SUCCESS) {
      std::string out(static_cast<std::size_t>(needed) + 1, '\0');
      if (uriToStringA(out.data(), &resolved, needed + 1, nullptr) == URI_SUCCESS) {
        out.resize(std::strlen(out.c_str()));
        result = String(out);
      }
    }
  }
  uriFreeUriMembersA(&relative);
  uriFreeUriMembersA(&root);
  uriFreeUriMembersA(&resolved);
  return result.isNil() ? URL() : URLWithString(result);
}

URL URL::fileURLWithPath(const String& path) {
  if (path.isNil()) return URL();
  String absolute = path;
  if (!path.hasPrefix(u"/")) {
    absolute =
        FileManager::defaultManager().currentDirectoryPath().stringByAppendingPathComponent(path);
  }
  std::string filename = absolute.utf8();
  bool isDirectory = false;
  if (FileManager::defaultManager().fileExistsAtPath(absolute, &isDirectory) && isDirectory &&
      !filename.ends_with("/"))
    filename += "/";
  std::string text(filename.size() * 3 + 8, '\0');
  if (uriUnixFilenameToUriStringA(filename.c_str(), text.data()) != URI_SUCCESS) return URL();
  text.resize(std::strlen(text.c_str()));
  return URLWithString(String(text));
}

URL::Parts URL::split() const {
  Parts parts;
  std::u16string_view rest = absolute_.units();
  if (const auto hash = rest.find(u'#'); hash != std::u16string_view::npos) {
    parts.fragment = String(rest.substr(hash + 1));
    rest = rest.substr(0, hash);
  }
  if (const auto question = rest.find(u'?'); question != std::u16string_view::npos) {
    parts.query = String(rest.substr(question + 1));
    rest = rest.substr(0, question);
  }
  const auto colon = rest.find(u':');
  const auto firstSlash = rest.find(u'/');
  if (colon != std::u16string_view::npos && colon > 0 &&
      (firstSlash == std::u16string_view::npos || colon < firstSlash)) {
    parts.scheme = String(rest.substr(0, colon));
    rest = rest.substr(colon + 1);
  }
  if (rest.starts_with(u"//")) {
    parts.hasAuthority = true;
    rest = rest.substr(2);
    const auto end = std::min(rest.find(u'/'), rest.size());
    std::u16string_view authority = rest.substr(0, end);
    rest = rest.substr(end);
    if (const auto at = authority.rfind(u'@'); at != std::u16string_view::npos) {
      const std::u16string_view info = authority.substr(0, at);
      const auto separator = info.find(u':');
      parts.user = String(info.substr(0, separator));
      if (separator != std::u16string_view::npos)
        parts.password = String(info.substr(separator + 1));
      authority = authority.substr(at + 1);
    }
    std::size_t portColon = std::u16string_view::npos;
    if (authority.starts_with(u"[")) {
      const auto close = authority.find(u']');
      if (close != std::u16string_view::npos && close + 1 < authority.size() &&
          authority[close + 1] == u':') {
        portColon = close + 1;
      }
    } else {
      portColon = authority.rfind(u':');
    }
    parts.host = String(authority.substr(0, portColon));
    if (portColon != std::u16string_view::npos)
      parts.port = String(authority.substr(portColon + 1));
  }
  parts.path = String(rest);
  return parts;
}

bool URL::isFileURL() const { return scheme().caseInsensitiveCompare(u"file") == NSOrderedSame; }

String URL::scheme() const { return split().scheme; }

String URL::user() const {
  const String user = split().user;
  const String decoded = stringByRemovingPercentEncoding(user);
  return decoded.isNil() ? user : decoded;
}

String URL::password() const {
  const String password = split().password;
  const String decoded = stringByRemovingPercentEncoding(password);
  return decoded.isNil() ? password : decoded;
}

String URL::host() const {
  const Parts parts = split();
  return parts.hasAuthority ? parts.host : String();
}

Value URL::port() const {
  const String port = split().port;
  if (port.isEmpty()) return Value();
  return Value(port.integerValue());
}

String URL::path() const {
  if (isNil()) return String();
  String path = split().path;
  const Range semicolon = path.rangeOfString(u";");
  const Range lastSlash = path.rangeOfString(u"/", NSBackwardsSearch);
  if (semicolon.location != NSNotFound &&
      (lastSlash.location == NSNotFound || semicolon.location > lastSlash.location)) {
    path = path.substringToIndex(semicolon.location);
  }
  const String decoded = stringByRemovingPercentEncoding(path);
  return decoded.isNil() ? path : decoded;
}

String URL::parameterString() const {
  const String path = split().path;
  const Range lastSlash = path.rangeOfString(u"/", NSBackwardsSearch);
  const UInteger segmentStart = lastSlash.location == NSNotFound ? 0 : lastSlash.end();
  const Range semicolon = path.rangeOfString(u";", 0, {segmentStart, path.length() - segmentStart});
  return semicolon.location == NSNotFound ? String() : path.substringFromIndex(semicolon.end());
}

String URL::query() const { return split().query; }
String URL::fragment() const { return split().fragment; }

Value URL::valueForKey(const String& key) const {
  if (key == String(u"scheme")) return scheme();
  if (key == String(u"host")) return host();
  if (key == String(u"port")) return port();
  if (key == String(u"user")) return user();
  if (key == String(u"password")) return password();
  if (key == String(u"path")) return path();
  if (key == String(u"parameterString")) return parameterString();
  if (key == String(u"query")) return query();
  if (key == String(u"fragment")) return fragment();
  if (key == String(u"absoluteString")) return absoluteString();
  throw Exception(
      NSUndefinedKeyException,
      stringWithFormat(u"[<NSURL %p> valueForUndefinedKey:]: this class is not key value "
                       u"coding-compliant for the key %@.",
                       static_cast<const void*>(this), key));
}

String stringByAddingPercentEncodingWithAllowedCharacters(const String& text,
                                                          const CharacterSet& allowed) {
  std::array<bool, 128> escape{};
  for (char16_t c = 0; c < 128; ++c) escape[c] = !allowed.characterIsMember(c);
  return percentEncoded(text, escape, &allowed);
}

PercentEscapes::PercentEscapes(const String& legalToLeave, const String& toEscape) {
  for (char16_t c = 0; c < 128; ++c)
    escape_[c] = c < 0x20 || c == 0x7F || kNeverLegal.find(c) != std::u16string_view::npos;
  for (const char16_t c : toEscape.units()) {
    if (c < 128) escape_[c] = true;
  }
  for (const char16_t c : legalToLeave.units()) {
    if (c < 128) escape_[c] = false;
  }
}

String PercentEscapes::apply(const String& text) const { return percentEncoded(text, escape_); }

String stringByAddingPercentEscapes(const String& text, const String& legalToLeave,
                                    const String& toEscape) {
  return PercentEscapes(legalToLeave, toEscape).apply(text);
}

String stringByRemovingPercentEncoding(const String& text) {
  if (text.isNil()) return String();
  const auto units = text.units();
  if (units.find(u'%') == std::u16string_view::npos) return text;
  std::u16string out;
  if (!decodePercentEscapes(units, false, out)) return String();
  return String(std::move(out));
}

bool decodePercentEscapes(std::u16string_view units, bool plusAsSpace, std::u16string& out) {
  out.reserve(out.size() + units.size());
  std::string bytes;
  for (std::size_t i = 0; i < units.size();) {
    if (units[i] != u'%') {
      out.push_back(plusAsSpace && units[i] == u'+' ? u' ' : units[i]);
      ++i;
      continue;
    }
    // A run of escapes is decoded as one piece of UTF-8.
    bytes.clear();
    while (i < units.size() && units[i] == u'%') {
      if (i + 2 >= units.size()) return false;
      const int high = hexDigitValue(units[i + 1]), low = hexDigitValue(units[i + 2]);
      if (high < 0 || low < 0) return false;
      bytes.push_back(static_cast<char>(high << 4 | low));
      i += 3;
    }
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const auto length = static_cast<std::int32_t>(bytes.size());
    for (std::int32_t at = 0; at < length;) {
      UChar32 c;
      U8_NEXT(data, at, length, c);
      if (c < 0) return false;
      if (c <= 0xFFFF) {
        out.push_back(static_cast<char16_t>(c));
      } else {
        out.push_back(static_cast<char16_t>(U16_LEAD(c)));
        out.push_back(static_cast<char16_t>(U16_TRAIL(c)));
      }
    }
  }
  return true;
}

CharacterSet URLQueryAllowedCharacterSet() {
  static const CharacterSet set = CharacterSet::characterSetWithCharactersInString(
      u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=:@/?");
  return set;
}

String base64EncodedStringFromBytes(std::span<const std::uint8_t> bytes) {
  std::u16string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    const std::uint32_t v = bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2];
    for (int shift = 18; shift >= 0; shift -= 6) out.push_back(kBase64[(v >> shift) & 63]);
  }
  const std::size_t left = bytes.size() - i;
  if (left > 0) {
    const std::uint32_t v = bytes[i] << 16 | (left > 1 ? bytes[i + 1] << 8 : 0);
    out.push_back(kBase64[(v >> 18) & 63]);
    out.push_back(kBase64[(v >> 12) & 63]);
    out.push_back(left > 1 ? kBase64[(v >> 6) & 63] : u'=');
    out.push_back(u'=');
  }
  return String(std::move(out));
}

Data base64DecodedDataTolerant(std::string_view text) {
  static const auto table = [] {
    std::array<int, 128> t{};
    t.fill(-1);
    for (int i = 0; i < 64; ++i) t[static_cast<std::size_t>(kBase64[i])] = i;
    return t;
  }();
  ByteBuffer out;
  out.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t group = 0;
  int count = 0;
  for (const char c : text) {
    const int v = table[static_cast<unsigned char>(c) % 128];
    if (v < 0) continue;
    group = group << 6 | static_cast<std::uint32_t>(v);
    if (++count == 4) {
      out.push_back(static_cast<std::uint8_t>(group >> 16));
      out.push_back(static_cast<std::uint8_t>(group >> 8));
      out.push_back(static_cast<std::uint8_t>(group));
      group = 0;
      count = 0;
    }
  }
  if (count == 2) out.push_back(static_cast<std::uint8_t>(group >> 4));
  if (count == 3) {
    out.push_back(static_cast<std::uint8_t>(group >> 10));
    out.push_back(static_cast<std::uint8_t>(group >> 2));
  }
  return Data::withBuffer(std::move(out));
}

}  // namespace tarnvik
