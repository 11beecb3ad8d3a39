#include "tarnvik/platform/base/internal/file_errors.hpp"

#include <cerrno>
#include <cstring>

namespace tarnvik::file_errors {

Error make(Integer code, const String& path, int posixError) {
  const Error posix(u"NSPOSIXErrorDomain", posixError,
                    Dictionary{{NSLocalizedDescriptionKey, String(std::strerror(posixError))}});
  return Error(NSCocoaErrorDomain, code,
               Dictionary{{u"NSFilePath", path}, {NSUnderlyingErrorKey, posix}});
}

Error reading(const String& path, int posixError) {
  const Integer code = posixError == ENOENT || posixError == ENOTDIR ? kFileReadNoSuchFile
                       : posixError == EACCES || posixError == EPERM ? kFileReadNoPermission
                                                                     : kFileReadUnknown;
  return make(code, path, posixError);
}

Error writing(const String& path, int posixError) {
  const Integer code = posixError == ENOSPC                          ? kFileWriteOutOfSpace
                       : posixError == EACCES || posixError == EPERM ? kFileWriteNoPermission
                                                                     : kFileWriteUnknown;
  return make(code, path, posixError);
}

}  // namespace tarnvik::file_errors
