// URL components: a URL assembled from a dictionary of named components, and one component
// replaced at a time.
//
//   URLWithComponents(Dictionary{{u"scheme", u"http"}, {u"host", u"h"}, {u"path", u"/p"}});
//   URLWithFragment(url, u"top");
#pragma once

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/net/url.hpp"

namespace tarnvik {

// "scheme", "host", "port" (a number), "user", "password", "path", "parameterString",
// "query" (text, or a Dictionary turned into a query) and "fragment", assembled from the end
// backwards, each part written only when present; nil when the text is not a valid URL.
URL URLWithComponents(const Dictionary& components);
// The URL's non-nil components under those names.
Dictionary components(const URL& url);
// The components with one set (or removed, for a nil value), assembled again.
URL URLWithValue(const URL& url, const Value& value, const String& component);
URL URLWithHost(const URL& url, const String& host);
URL URLWithPort(const URL& url, const Value& port);
URL URLWithUser(const URL& url, const String& user);
URL URLWithPassword(const URL& url, const String& password);
URL URLWithPath(const URL& url, const String& path);
URL URLWithParameterString(const URL& url, const String& parameterString);
URL URLWithQuery(const URL& url, const Value& query);
URL URLWithFragment(const URL& url, const String& fragment);
// The new scheme followed by the text after the old one ("http" to "https" keeps "://...").
URL URLWithScheme(const URL& url, const String& scheme);
// The base, "?" (always), then key=value pairs joined by "&", each side encoded with
// URLQueryAllowedCharacterSet (which leaves "&", "=", "/", "?" and "+" alone).
URL initWithString(const String& base, const Dictionary& queryParameters);
URL ku_URLWithString(const String& base, const Dictionary& queryParameters);

}  // namespace tarnvik
