#include "tarnvik/platform/net/url.hpp"

#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <uriparser/Uri.h>

#include <algorithm>
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

// Offsets of a uriparser range in the text; absent for a missing range or one that does not
// point into the text (uriparser's empty host is a static "").
struct Span {
  std::size_t first = std::string::npos, afterLast = std::string::npos;
  bool present() const { return first != std::string::npos; }
};

Span spanOf(const UriTextRangeA& range, const std::string& text) {
  const char* begin = text.data();
  if (!range.first || range.first < begin || range.afterLast > begin + text.size()) return {};
  return {static_cast<std::size_t>(range.first - begin),
          static_cast<std::size_t>(range.afterLast - begin)};
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

}  // namespace

struct URL::Parts {
  String scheme, user, password, host, port, path, query, fragment;
  bool hasAuthority = false;
};

const URL::Parts& URL::parts() const {
  static const Parts none;
  return parts_ ? *parts_ : none;
}

URL URL::URLWithString(const String& text) {
  if (text.isNil()) return URL();
  const std::string bytes = text.utf8();
  if (bytes.empty() || std::any_of(bytes.begin(), bytes.end(), [](char c) { return c & 0x80; })) {
    return URL();  // URLs are ASCII; anything else must be percent-encoded
  }
  UriUriA uri{};
  if (!parses(bytes, uri)) {
    uriFreeUriMembersA(&uri);
    return URL();
  }
  auto parts = std::make_shared<Parts>();
  auto piece = [&](Span span) {
    return span.present() ? String(bytes.substr(span.first, span.afterLast - span.first))
                          : String();
  };
  const Span scheme = spanOf(uri.scheme, bytes), userInfo = spanOf(uri.userInfo, bytes),
             host = spanOf(uri.hostText, bytes), port = spanOf(uri.portText, bytes),
             query = spanOf(uri.query, bytes), fragment = spanOf(uri.fragment, bytes);
  const bool bracketed = uri.hostData.ip6 || uri.hostData.ipFuture.first;
  parts->scheme = piece(scheme);
  parts->query = piece(query);
  parts->fragment = piece(fragment);
  parts->hasAuthority = uri.hostText.first != nullptr;
  std::size_t pathStart = scheme.present() ? scheme.afterLast + 1 : 0;
  if (parts->hasAuthority) {
    pathStart += 2;  // "//"
    if (userInfo.present()) {
      const std::string info = bytes.substr(userInfo.first, userInfo.afterLast - userInfo.first);
      const std::size_t colon = info.find(':');
      parts->user = String(info.substr(0, colon));
      if (colon != std::string::npos) parts->password = String(info.substr(colon + 1));
      pathStart = userInfo.afterLast + 1;
    }
    parts->host = String(u"");
    if (host.present()) {
      // An IPv6 or future literal keeps its brackets.
      parts->host = bracketed
                        ? String(bytes.substr(host.first - 1, host.afterLast - host.first + 2))
                        : piece(host);
      pathStart = host.afterLast + (bracketed ? 1 : 0);
    }
    if (port.present()) {
      parts->port = piece(port);
      pathStart = port.afterLast;
    }
  }
  const std::size_t pathEnd = query.present()      ? query.first - 1
                              : fragment.present() ? fragment.first - 1
                                                   : bytes.size();
  parts->path = String(bytes.substr(pathStart, pathEnd - pathStart));
  uriFreeUriMembersA(&uri);
  URL url;
  url.absolute_ = text;
  url.parts_ = std::move(parts);
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

bool URL::isFileURL() const { return scheme().caseInsensitiveCompare(u"file") == NSOrderedSame; }

String URL::scheme() const { return parts().scheme; }

String URL::user() const {
  const String user = parts().user;
  const String decoded = stringByRemovingPercentEncoding(user);
  return decoded.isNil() ? user : decoded;
}

String URL::password() const {
  const String password = parts().password;
  const String decoded = stringByRemovingPercentEncoding(password);
  return decoded.isNil() ? password : decoded;
}

String URL::host() const { return parts().hasAuthority ? parts().host : String(); }

Value URL::port() const {
  const String port = parts().port;
  if (port.isEmpty()) return Value();
  return Value(port.integerValue());
}

String URL::path() const {
  if (isNil()) return String();
  String path = parts().path;
  const Range semicolon = path.rangeOfString(u";");
  const Range lastSlash = path.rangeOfString(u"/", NSBackwardsSearch);
  if (semicolon.location != NSNotFound &&
      (lastSlash.location == NSNotFound || semicolon.location > lastSlash.location)) {
    path = path.substringToIndex(semicolon.location);
  }
  String decoded = stringByRemovingPercentEncoding(path);
  if (decoded.isNil()) decoded = path;
  // As the platform's path does: a trailing "/" is stripped, except from "/" itself.
  if (decoded.length() > 1 && decoded.hasSuffix(u"/")) {
    decoded = decoded.substringToIndex(decoded.length() - 1);
  }
  return decoded;
}

String URL::parameterString() const {
  const String path = parts().path;
  const Range lastSlash = path.rangeOfString(u"/", NSBackwardsSearch);
  const UInteger segmentStart = lastSlash.location == NSNotFound ? 0 : lastSlash.end();
  const Range semicolon = path.rangeOfString(u";", 0, {segmentStart, path.length() - segmentStart});
  return semicolon.location == NSNotFound ? String() : path.substringFromIndex(semicolon.end());
}

String URL::query() const { return parts().query; }
String URL::fragment() const { return parts().fragment; }

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
  // Decoding never lengthens: an escape takes three units for one byte, and UTF-8 needs at
  // least as many bytes as UTF-16 needs units. So the output is written through a pointer
  // into room made once, and cut to length at the end.
  const std::size_t base = out.size();
  out.resize(base + units.size());
  char16_t* write = out.data() + base;
  std::uint8_t stackBytes[256];
  std::string heapBytes;
  for (std::size_t i = 0; i < units.size();) {
    const char16_t unit = units[i];
    if (unit != u'%') {
      *write++ = plusAsSpace && unit == u'+' ? u' ' : unit;
      ++i;
      continue;
    }
    // A run of escapes is decoded as one piece of UTF-8.
    std::size_t count = 0;
    for (std::size_t j = i; j < units.size() && units[j] == u'%'; j += 3) ++count;
    std::uint8_t* bytes = stackBytes;
    if (count > sizeof stackBytes) {
      heapBytes.resize(count);
      bytes = reinterpret_cast<std::uint8_t*>(heapBytes.data());
    }
    for (std::size_t k = 0; k < count; ++k, i += 3) {
      if (i + 2 >= units.size()) {
        out.resize(base);
        return false;
      }
      const int high = hexDigitValue(units[i + 1]), low = hexDigitValue(units[i + 2]);
      if (high < 0 || low < 0) {
        out.resize(base);
        return false;
      }
      bytes[k] = static_cast<std::uint8_t>(high << 4 | low);
    }
    const auto length = static_cast<std::int32_t>(count);
    for (std::int32_t at = 0; at < length;) {
      UChar32 c;
      U8_NEXT(bytes, at, length, c);
      if (c < 0) {
        out.resize(base);
        return false;
      }
      if (c <= 0xFFFF) {
        *write++ = static_cast<char16_t>(c);
      } else {
        *write++ = static_cast<char16_t>(U16_LEAD(c));
        *write++ = static_cast<char16_t>(U16_TRAIL(c));
      }
    }
  }
  out.resize(static_cast<std::size_t>(write - out.data()));
  return true;
}

CharacterSet URLQueryAllowedCharacterSet() {
  static const CharacterSet set = CharacterSet::characterSetWithCharactersInString(
      u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=:@/?");
  return set;
}

}  // namespace tarnvik
