// The library's error constructors and domains. Every constructor builds an instance of
// the class it is called for: Error by default, or KEError (or another subclass of Error
// with a (domain, code, userInfo) constructor) given as the template argument.
//
//   Error e = errorWithDomain(KFErrorDomainTarnvikExtensions, 3, u"Path /x does not exist");
//   KEError k = errorWithReasonFormat<KEError>(u"%lu clips missing", 4ul);
#pragma once

#include <concepts>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

inline constexpr char16_t KFErrorDomainTarnvikExtensions[] = u"KFErrorDomainTarnvikExtensions";
inline constexpr char16_t KUExtensionsErrorDomain[] = u"KUExtensionsErrorDomain";

// An Error subclass with nothing of its own; hosts call the constructors on it to tell the
// library's errors apart from their own. The library never creates one itself.
class KEError : public Error {
 public:
  KEError() = default;
  KEError(const String& domain, Integer code, const Dictionary& userInfo = Dictionary())
      : Error(u"KEError", domain, code, userInfo) {}
};

template <class E>
concept ErrorClass = std::derived_from<E, Error> &&
    std::constructible_from<E, const String&, Integer, const Dictionary&>;

// The main bundle's identifier, else the process name; looked up at every call.
String defaultErrorDomain();
// The user info of the reason-and-underlying-error constructors: the reason under
// NSLocalizedFailureReasonErrorKey and the underlying error under NSUnderlyingErrorKey,
// each only when non-nil.
Dictionary reasonUserInfo(const String& reason, const Error& underlyingError);
// NSLocalizedDescriptionKey and NSLocalizedFailureReasonErrorKey, each only when non-nil.
Dictionary descriptionUserInfo(const String& description, const String& reason);

// errorWithDomain:code:reason: and errorWithDomain:code:reason:underlyingError:.
template <ErrorClass E = Error>
E errorWithDomain(const String& domain, Integer code, const String& reason,
                  const Error& underlyingError = Error()) {
  return E(domain, code, reasonUserInfo(reason, underlyingError));
}

// errorWithDomain:code:reasonFormat:
template <ErrorClass E = Error, class... Args>
E errorWithDomainCodeReasonFormat(const String& domain, Integer code, const String& format,
                                  const Args&... args) {
  return errorWithDomain<E>(domain, code, stringWithFormat(format, args...));
}

// errorWithDomain:code:underlyingError:reasonFormat:
template <ErrorClass E = Error, class... Args>
E errorWithDomainCodeUnderlyingErrorReasonFormat(const String& domain, Integer code,
                                                 const Error& underlyingError, const String& format,
                                                 const Args&... args) {
  return errorWithDomain<E>(domain, code, stringWithFormat(format, args...), underlyingError);
}

// errorWithReasonFormat: the default domain, code 1.
template <ErrorClass E = Error, class... Args>
E errorWithReasonFormat(const String& format, const Args&... args) {
  return errorWithDomain<E>(defaultErrorDomain(), 1, stringWithFormat(format, args...));
}

// errorWithCode:reasonFormat: the default domain.
template <ErrorClass E = Error, class... Args>
E errorWithCode(Integer code, const String& format, const Args&... args) {
  return errorWithDomain<E>(defaultErrorDomain(), code, stringWithFormat(format, args...));
}

// initWithDomain:code:description:reason: the only constructor that sets a description.
template <ErrorClass E = Error>
E initWithDomain(const String& domain, Integer code, const String& description,
                 const String& reason) {
  return E(domain, code, descriptionUserInfo(description, reason));
}

// errorWithDomain:code:description:reason:
template <ErrorClass E = Error>
E errorWithDomainCodeDescriptionReason(const String& domain, Integer code,
                                       const String& description, const String& reason) {
  return initWithDomain<E>(domain, code, description, reason);
}

}  // namespace tarnvik
