// The platform's file errors: NSCocoaErrorDomain codes with the POSIX error underneath.
// Not installed.
#pragma once

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik::file_errors {

inline constexpr Integer kFileReadUnknown = 256;
inline constexpr Integer kFileReadNoPermission = 257;
inline constexpr Integer kFileReadNoSuchFile = 260;
inline constexpr Integer kFileWriteUnknown = 512;
inline constexpr Integer kFileWriteNoPermission = 513;
inline constexpr Integer kFileWriteOutOfSpace = 640;

// An error for the path with the POSIX error as NSUnderlyingErrorKey and the path under
// "NSFilePath".
Error make(Integer code, const String& path, int posixError);
// The reading code for a POSIX error (no such file, no permission, or unknown).
Error reading(const String& path, int posixError);
// The writing code for a POSIX error (out of space, no permission, or unknown).
Error writing(const String& path, int posixError);

}  // namespace tarnvik::file_errors
