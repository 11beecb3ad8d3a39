#include "tarnvik/net/url_components.hpp"

#include "tarnvik/net/url_strings.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

constexpr const char16_t* kComponentNames[] = {
    u"scheme",          u"host",  u"port",    u"user", u"password", u"path",
    u"parameterString", u"query", u"fragment"};

}  // namespace

URL URLWithComponents(const Dictionary& c) {
  auto has = [&](const char16_t* name) { return !c.objectForKey(name).isNil(); };
  auto text = [&](const char16_t* name) { return c.objectForKey(name).description(); };
  String tail = u"";
  if (has(u"fragment")) tail = stringWithFormat(u"#%@", text(u"fragment"));
  if (has(u"query")) {
    const Dictionary parameters = c.objectForKey(u"query").asDictionary();
    const String query = parameters.isNil() ? text(u"query") : URLQueryWithParameters(parameters);
    tail = stringWithFormat(u"?%@%@", query, tail);
  }
  if (has(u"parameterString")) tail = stringWithFormat(u";%@%@", text(u"parameterString"), tail);
  if (has(u"path")) tail = text(u"path").stringByAppendingString(tail);
  if (has(u"port")) tail = stringWithFormat(u":%@%@", c.objectForKey(u"port"), tail);
  if (has(u"host")) tail = text(u"host").stringByAppendingString(tail);
  if (has(u"user")) {
    String user = text(u"user");
    if (has(u"password")) appendFormat(user, u":%@", text(u"password"));
    tail = stringWithFormat(u"%@@%@", user, tail);
  }
  if (has(u"scheme")) tail = stringWithFormat(u"%@://%@", text(u"scheme"), tail);
  return URL::URLWithString(tail);
}

Dictionary components(const URL& url) {
  Dictionary result = Dictionary::dictionary();
  if (url.isNil()) return result;
  for (const char16_t* name : kComponentNames) {
    const Value value = url.valueForKey(name);
    if (!value.isNil()) result.setObject(value, name);
  }
  return result;
}

URL URLWithValue(const URL& url, const Value& value, const String& component) {
  Dictionary parts = components(url);
  parts.setValue(value, component);
  return URLWithComponents(parts);
}

URL URLWithHost(const URL& url, const String& host) { return URLWithValue(url, host, u"host"); }
URL URLWithPort(const URL& url, const Value& port) { return URLWithValue(url, port, u"port"); }
URL URLWithUser(const URL& url, const String& user) { return URLWithValue(url, user, u"user"); }
URL URLWithPassword(const URL& url, const String& password) {
  return URLWithValue(url, password, u"password");
}
URL URLWithPath(const URL& url, const String& path) { return URLWithValue(url, path, u"path"); }
URL URLWithParameterString(const URL& url, const String& parameterString) {
  return URLWithValue(url, parameterString, u"parameterString");
}
URL URLWithQuery(const URL& url, const Value& query) { return URLWithValue(url, query, u"query"); }
URL URLWithFragment(const URL& url, const String& fragment) {
  return URLWithValue(url, fragment, u"fragment");
}

URL URLWithScheme(const URL& url, const String& scheme) {
  const String absolute = url.absoluteString();
  const UInteger oldLength = std::min(url.scheme().length(), absolute.length());
  return URL::URLWithString(scheme.stringByAppendingString(absolute.substringFromIndex(oldLength)));
}

URL initWithString(const String& base, const Dictionary& queryParameters) {
  const CharacterSet allowed = URLQueryAllowedCharacterSet();
  String text = stringWithFormat(u"%@?", base);
  bool first = true;
  for (const auto& [key, value] : queryParameters) {
    if (!first) text.appendString(u"&");
    first = false;
    appendFormat(text, u"%@=%@",
                 stringByAddingPercentEncodingWithAllowedCharacters(key.description(), allowed),
                 stringByAddingPercentEncodingWithAllowedCharacters(value.description(), allowed));
  }
  return URL::URLWithString(text);
}

URL ku_URLWithString(const String& base, const Dictionary& queryParameters) {
  return initWithString(base, queryParameters);
}

}  // namespace tarnvik
