// The file-system operations' own texts: looked up in the "FileManager" string table of the
// main bundle, the English text being both the key and what is used without a translation.
// Not installed.
#pragma once

#include "tarnvik/core/errors.hpp"
#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik::fs_texts {

inline String localized(const char16_t* english) {
  return localizedString(String(english), String(u""), String(u"FileManager"));
}

// An error of the library's domain whose reason is the localized format filled with args.
template <class... Args>
Error error(Integer code, const Error& underlying, const char16_t* format, const Args&... args) {
  return errorWithDomain(KFErrorDomainTarnvikExtensions, code,
                         stringWithFormat(localized(format), args...), underlying);
}

}  // namespace tarnvik::fs_texts
