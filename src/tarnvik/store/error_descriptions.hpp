// How errors describe themselves. Every Error's description is the multi-line form below
// (so it reads the same in logs, in %@ and in a debugger); these are its parts by name.
//
//   <NSError 0x55d0c8a1e2f0>
//   	 domain: NSCocoaErrorDomain
//   	 code: 1560
//   	 userInfo: {...}
//   	 detailed error	 error : <NSError 0x...> ..., {...}	 errorName:
//   NSValidationRelationshipDeniedDeleteError
#pragma once

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {

// Error::description(): coreDataErrorDescription for a multiple-validation error
// (NSCocoaErrorDomain, 1560), standardErrorDescription for any other.
inline String description(const Error& error) { return error.description(); }
inline String standardErrorDescription(const Error& error) {
  return error.standardErrorDescription();
}
inline String coreDataErrorDescription(const Error& error) {
  return error.coreDataErrorDescription();
}
// The symbolic name of a store validation code in NSCocoaErrorDomain, "Unknown" for another
// code there, the empty string in other domains.
inline String errorName(const Error& error) { return error.errorName(); }

}  // namespace tarnvik
