#include "tarnvik/net/http_requests.hpp"

#include "tarnvik/net/url_components.hpp"
#include "tarnvik/net/url_strings.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

void setFormBody(URLRequest& request, const String& query) {
  const Data body = Data::withString(query.utf8());
  request.addValue(u"8bit", u"Content-Transfer-Encoding");
  request.addValue(u"application/x-www-form-urlencoded", u"Content-Type");
  request.addValue(stringWithFormat(u"%i", body.length()), u"Content-Length");
  request.setHTTPBody(body);
}

String bodyText(const URLRequest& request) {
  const String text = String::fromUTF8(request.HTTPBody().asStringView());
  return text.isNil() ? String(u"") : text;
}

}  // namespace

URLRequest HTTPRequestWithURL(const URL& url, const String& method, const Dictionary& parameters) {
  URLRequest request(url);
  const String upper = method.uppercaseString();
  request.setHTTPMethod(upper);
  if (upper == String(u"GET")) {
    addGETParameters(request, parameters, 0);
  } else {
    setPOSTParameters(request, parameters, 0);
  }
  request.addValue(u"gzip", u"Accept-Encoding");
  return request;
}

URLRequest GETRequestWithURL(const URL& url, const Dictionary& parameters) {
  return HTTPRequestWithURL(url, u"GET", parameters);
}

URLRequest POSTRequestWithURL(const URL& url, const Dictionary& parameters) {
  return HTTPRequestWithURL(url, u"POST", parameters);
}

Dictionary GETParameters(const URLRequest& request) {
  return URLQueryParameters(request.url().query());
}

Dictionary POSTParameters(const URLRequest& request) {
  return URLQueryParameters(bodyText(request));
}

Array HTTPBasicAuthComponents(const URLRequest& request) {
  const String authorization = request.valueForHTTPHeaderField(u"Authorization");
  if (!authorization.isNil()) {
    const String decoded =
        base64DecodedString(authorization.stringByReplacingOccurrencesOfString(u"Basic ", u""));
    return decoded.isNil() ? Array() : decoded.componentsSeparatedByString(u":");
  }
  const String user = request.url().user(), password = request.url().password();
  return Array{user.isNil() ? String(u"") : user, password.isNil() ? String(u"") : password};
}

String HTTPBasicAuthUser(const URLRequest& request) {
  const Array parts = HTTPBasicAuthComponents(request);
  return parts.isNil() ? String() : parts.objectAtIndex(0).asString();
}

String HTTPBasicAuthPassword(const URLRequest& request) {
  const Array parts = HTTPBasicAuthComponents(request);
  return parts.count() == 2 ? parts.lastObject().asString() : String();
}

void setGETParameters(URLRequest& request, const Dictionary& parameters, UInteger options) {
  request.setURL(URLWithQuery(request.url(), URLQueryWithParameters(parameters, options)));
}

void addGETParameters(URLRequest& request, const Dictionary& parameters, UInteger options) {
  const String added = URLQueryWithParameters(parameters, options);
  String existing = URLQuery(request.url().absoluteString());
  if (existing.isNil()) existing = u"";
  const String merged = stringByMergingURLQuery(existing, added, options);
  request.setURL(URLWithQuery(request.url(), merged));
}

void setPOSTParameters(URLRequest& request, const Dictionary& parameters, UInteger options) {
  setFormBody(request, URLQueryWithParameters(parameters, options));
}

void addPOSTParameters(URLRequest& request, const Dictionary& parameters, UInteger options) {
  setFormBody(request,
              stringByMergingURLQuery(bodyText(request),
                                      URLQueryWithParameters(parameters, options), options));
}

void setHTTPBasicAuthUser(URLRequest& request, const String& user, const String& password) {
  const String pair = stringWithFormat(u"%@:%@", user.isNil() ? String(u"") : user,
                                       password.isNil() ? String(u"") : password);
  request.addValue(stringWithFormat(u"Basic %@", base64EncodedString(pair)), u"Authorization");
}

}  // namespace tarnvik
