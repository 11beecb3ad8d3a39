// URLRequest: a mutable HTTP request (URL, method, header fields, body) that the library
// fills; sending it is the host's business.
//
//   URLRequest request(URL::URLWithString(u"https://example.com/api"));
//   request.addValue(u"gzip", u"Accept-Encoding");
#pragma once

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/net/url.hpp"

namespace tarnvik {

// Header field names match without regard to case and keep the spelling first used.
class URLRequest {
 public:
  URLRequest() = default;
  explicit URLRequest(const URL& url) : url_(url) {}

  const URL& url() const { return url_; }
  void setURL(const URL& url) { url_ = url; }
  // "GET" unless set.
  const String& HTTPMethod() const { return method_; }
  void setHTTPMethod(const String& method) { method_ = method; }
  const Data& HTTPBody() const { return body_; }
  void setHTTPBody(const Data& body) { body_ = body; }

  // nil when the field is absent.
  String valueForHTTPHeaderField(const String& field) const;
  // Replaces the field's value (nil removes the field).
  void setValue(const String& value, const String& field);
  // Appends to the field's value, joined with ", ", or adds the field.
  void addValue(const String& value, const String& field);
  // The fields in the order they were first set.
  Dictionary allHTTPHeaderFields() const { return headers_.copy(); }

 private:
  // The stored spelling of a field, or nil.
  Value storedField(const String& field) const;
  URL url_;
  String method_ = u"GET";
  Data body_;
  Dictionary headers_ = Dictionary::dictionary();
};

using MutableURLRequest = URLRequest;

}  // namespace tarnvik
