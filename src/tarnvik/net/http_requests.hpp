// HTTP requests: GET and POST requests with form-encoded parameters, reading them back, and
// basic authentication. Header values are always added (appended to an existing value of
// the same field), never replaced.
//
//   URLRequest r = POSTRequestWithURL(URL::URLWithString(u"https://h/api"), Dictionary{{u"a",
//   u"1"}}); setHTTPBasicAuthUser(r, u"u", u"p");   // Authorization: Basic dTpw
#pragma once

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/net/url_request.hpp"

namespace tarnvik {

// A request with the method upper-cased; GET parameters go into the URL
// (addGETParameters), any other method's into the body (setPOSTParameters); "Accept-Encoding:
// gzip" is added.
URLRequest HTTPRequestWithURL(const URL& url, const String& method, const Dictionary& parameters);
URLRequest GETRequestWithURL(const URL& url, const Dictionary& parameters);
URLRequest POSTRequestWithURL(const URL& url, const Dictionary& parameters);

// The URL's query, or the body read as UTF-8, parsed into parameters.
Dictionary GETParameters(const URLRequest& request);
Dictionary POSTParameters(const URLRequest& request);
// The decoded "Authorization" value split at ":" (nil when it does not decode), or the URL's
// user and password (empty strings where absent).
Array HTTPBasicAuthComponents(const URLRequest& request);
// Element 0 of the components (nil when they are nil; NSRangeException when empty).
String HTTPBasicAuthUser(const URLRequest& request);
// The second component when there are exactly two, else nil.
String HTTPBasicAuthPassword(const URLRequest& request);

// The URL's query replaced by the parameters.
void setGETParameters(URLRequest& request, const Dictionary& parameters, UInteger options = 0);
// The parameters merged into the URL's query. The merged text starts with "?", and the URL
// gains it after its own "?": http://h/p with {a: 1} becomes http://h/p??a=1 (kept as it
// stands).
void addGETParameters(URLRequest& request, const Dictionary& parameters, UInteger options);
// The body becomes the query text; adds Content-Type, Content-Transfer-Encoding and
// Content-Length.
void setPOSTParameters(URLRequest& request, const Dictionary& parameters, UInteger options = 0);
// The parameters merged into the body's query, with the same three fields added; like the
// URL in addGETParameters, a non-empty merged body starts with "?".
void addPOSTParameters(URLRequest& request, const Dictionary& parameters, UInteger options);
// Adds "Authorization: Basic <base64 of user:password>", nil written as "".
void setHTTPBasicAuthUser(URLRequest& request, const String& user, const String& password);

}  // namespace tarnvik
