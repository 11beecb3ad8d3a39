#include "tarnvik/core/errors.hpp"

#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik {

String defaultErrorDomain() {
  const String identifier = Bundle::mainBundle().bundleIdentifier();
  return identifier.isNil() ? ProcessInfo::processName() : identifier;
}

Dictionary reasonUserInfo(const String& reason, const Error& underlyingError) {
  Dictionary info = Dictionary::dictionaryWithCapacity(2);
  if (!reason.isNil()) info.setObject(reason, NSLocalizedFailureReasonErrorKey);
  if (!underlyingError.isNil()) info.setObject(underlyingError, NSUnderlyingErrorKey);
  return info;
}

Dictionary descriptionUserInfo(const String& description, const String& reason) {
  Dictionary info = Dictionary::dictionaryWithCapacity(2);
  if (!description.isNil()) info.setObject(description, NSLocalizedDescriptionKey);
  if (!reason.isNil()) info.setObject(reason, NSLocalizedFailureReasonErrorKey);
  return info;
}

}  // namespace tarnvik
