#include "tarnvik/platform/net/url_request.hpp"

#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

Value URLRequest::storedField(const String& field) const {
  for (const auto& [key, value] : headers_) {
    if (key.asString().caseInsensitiveCompare(field) == NSOrderedSame) return key;
  }
  return Value();
}

String URLRequest::valueForHTTPHeaderField(const String& field) const {
  const Value key = storedField(field);
  return key.isNil() ? String() : headers_.objectForKey(key).asString();
}

void URLRequest::setValue(const String& value, const String& field) {
  const Value existing = storedField(field);
  if (value.isNil()) {
    if (!existing.isNil()) headers_.removeObjectForKey(existing);
    return;
  }
  headers_.setObject(value, existing.isNil() ? Value(field) : existing);
}

void URLRequest::addValue(const String& value, const String& field) {
  if (value.isNil()) return;
  const Value existing = storedField(field);
  if (existing.isNil()) {
    headers_.setObject(value, field);
  } else {
    headers_.setObject(stringWithFormat(u"%@, %@", headers_.objectForKey(existing), value),
                       existing);
  }
}

}  // namespace tarnvik
