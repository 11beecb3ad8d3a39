// URL strings: percent encoding, path edits that keep the query and fragment, query strings
// built from and parsed into dictionaries with array modes, query merging, fragments,
// conversion to URL, and base64 of text. All work on the text, by plain character search.
//
//   URLQueryWithParameters(Dictionary{{u"a", Array{u"1", u"2"}}, {u"b", u"x y"}},
//   URLQueryArraySyntax);
//       // "a[]=1&a[]=2&b=x%20y"
//   stringByAppendingURLQuery(u"page?x=1#top", u"y=2");   // "page?x=1&y=2#top"
#pragma once

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/net/url.hpp"

namespace tarnvik {

// Query options: the array mode in bits 0-2 and the array syntax bit. Mode 0 means "all"
// when building and "last" when parsing or merging; modes 5-7 act as "all" unless a step
// says otherwise.
enum URLQueryOptions : UInteger {
  URLQueryArrayModeDefault = 0,
  URLQueryArrayModeLast = 1,
  URLQueryArrayModeFirst = 2,
  URLQueryArrayModeAll = 3,
  URLQueryArrayModeForceArrays = 4,
  URLQueryArraySyntax = 8,
};

// The text's UTF-8 bytes percent-encoded, only ASCII letters, digits, "-", ".", "_" and "~"
// left as they are.
String URLEncodedString(const String& text);
// "+" read as a blank when asked, then "%XX" escapes decoded as UTF-8; nil when an escape
// is malformed or the bytes are not UTF-8.
String URLDecodedString(const String& text, bool plusAsSpace);

String lastURLPathComponent(const String& url);
String URLPathExtension(const String& url);
String stringByAppendingURLPathComponent(const String& url, const String& component);
// The path cut after its last "/" (kept); a path without "/" stays as it is.
String stringByDeletingLastURLPathComponent(const String& url);
// On a path without "/", the name is repeated after a slash ("file.txt" with "gz" gives
// "file.txt/file.txt.gz"), as the two steps it is made of imply.
String stringByAppendingURLPathExtension(const String& url, const String& extension);
String stringByDeletingURLPathExtension(const String& url);

// From the first "?" to the fragment; without "?" before the fragment, the whole text
// before the fragment when it holds an "=" (so "a=1&b=2" is a query); else {NSNotFound, 0}.
Range rangeOfURLQuery(const String& url);
// The query without its "?"; nil when there is none ("x?" has the empty query).
String URLQuery(const String& url);
String stringByDeletingURLQuery(const String& url);
String stringByReplacingURLQueryWithQuery(const String& url, const String& query);
// "?query", "&query" or the query itself (after a trailing "?"), before the fragment.
String stringByAppendingURLQuery(const String& url, const String& query);
// The parameters (String values, or Arrays of String) as a query, in enumeration order. A key
// or value of another kind raises NSInvalidArgumentException ("-[<class> URLEncodedString]:
// unrecognized selector ...").
String URLQueryWithParameters(const Dictionary& parameters, UInteger options = 0);
// The query parsed into names and values (String, or Array of String); an empty dictionary
// without a query. Parts without "=", and parts whose escapes are not UTF-8, are skipped.
Dictionary URLQueryParameters(const String& url);
Dictionary URLQueryParametersWithOptions(const String& url, UInteger options);
// The other text's query merged into this one's by the array mode, then rebuilt.
String stringByMergingURLQuery(const String& url, const String& other, UInteger options = 0);

// The text after the first "#", or nil.
String URLFragment(const String& url);
String stringByDeletingURLFragment(const String& url);
// nil leaves the text as it is; after an existing "#" the fragment is appended directly.
String stringByAppendingURLFragment(const String& url, const String& fragment);
// A file URL for an absolute path ("/" or "~"), else URL::URLWithString.
URL URLValue(const String& text);
URL URLValueRelativeToURL(const String& text, const URL& base);

// The UTF-8 bytes in base64; nil for empty text.
String base64EncodedString(const String& text);
// The tolerant decoder read as UTF-8 text; nil when no bytes result or they are not UTF-8.
String base64DecodedString(const String& text);

}  // namespace tarnvik
