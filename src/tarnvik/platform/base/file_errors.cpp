// The errors the file manager's primitives report: a code in NSCocoaErrorDomain chosen by
// what the primitive was doing and the POSIX error, the path, the POSIX error underneath,
// and a sentence in the platform's wording that names the file and the cause.
#include <cerrno>
#include <cstring>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

namespace {

Integer readCode(int posixError) {
  switch (posixError) {
    case ENOENT:
    case ENOTDIR:
      return NSFileReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileReadNoPermissionError;
    case ENAMETOOLONG:
      return NSFileReadInvalidFileNameError;
    case EFBIG:
    case EOVERFLOW:
      return NSFileReadTooLargeError;
    default:
      return NSFileReadUnknownError;
  }
}

Integer writeCode(int posixError) {
  switch (posixError) {
    case ENOSPC:
      return NSFileWriteOutOfSpaceError;
    case EACCES:
    case EPERM:
      return NSFileWriteNoPermissionError;
    default:
      return NSFileWriteUnknownError;
  }
}

Integer changeCode(int posixError) {
  switch (posixError) {
    case ENOENT:
      return NSFileNoSuchFileError;
    case EEXIST:
    case ENOTEMPTY:
      return NSFileWriteFileExistsError;
    case EACCES:
    case EPERM:
      return NSFileWriteNoPermissionError;
    case ENOSPC:
    case EDQUOT:
      return NSFileWriteOutOfSpaceError;
    case EROFS:
      return NSFileWriteVolumeReadOnlyError;
    case ENAMETOOLONG:
      return NSFileWriteInvalidFileNameError;
    default:
      return NSFileWriteUnknownError;
  }
}

// Why, in the words that follow "because"; nil when the POSIX error has no such words.
const char16_t* becauseOf(FileOperation operation, int posixError) {
  const bool opening = operation == FileOperation::Read;
  switch (posixError) {
    case ENOENT:
      return opening ? u"there is no such file" : u"there is no such file or folder";
    case EACCES:
    case EPERM:
      return opening ? u"you don’t have permission to view it"
                     : u"you don’t have permission to access it";
    case EEXIST:
      return u"an item with the same name already exists";
    case ENOTEMPTY:
      return u"the folder is not empty";
    case ENOTDIR:
      return u"a part of its path is not a folder";
    case EISDIR:
      return u"it is a folder";
    case ENOSPC:
    case EDQUOT:
      return u"there isn’t enough space";
    case EROFS:
      return u"the volume is read only";
    case ELOOP:
      return u"there are too many symbolic links in its path";
    case EMLINK:
      return u"there are too many links to it";
    case ENAMETOOLONG:
      return u"its name is too long";
    case EFBIG:
    case EOVERFLOW:
      return u"it is too large";
    case EXDEV:
      return u"it is on another volume";
    case EBUSY:
    case ETXTBSY:
      return u"it is in use";
    default:
      return nullptr;
  }
}

// "The file “clip.mov” couldn’t be opened because there is no such file."
String describe(FileOperation operation, const String& path, int posixError) {
  const String name = path.lastPathComponent().isEmpty() ? path : path.lastPathComponent();
  String sentence;
  switch (operation) {
    case FileOperation::Read:
      sentence = message::build(u"The file “", name, u"” couldn’t be opened");
      break;
    case FileOperation::Write:
      sentence = message::build(u"The file “", name, u"” couldn’t be saved");
      break;
    default: {
      const char16_t* verb = operation == FileOperation::Remove ? u"removed"
                             : operation == FileOperation::Move ? u"moved"
                             : operation == FileOperation::Copy ? u"copied"
                             : operation == FileOperation::Link ? u"linked"
                                                                : u"created";
      sentence = message::build(u"“", name, u"” couldn’t be ", verb);
      break;
    }
  }
  if (const char16_t* because = becauseOf(operation, posixError)) {
    return message::build(sentence, u" because ", because, u".");
  }
  return message::build(sentence, u". ", String(std::strerror(posixError)), u".");
}

}  // namespace

Error FileManager::errorFor(FileOperation operation, const String& path, int posixError) {
  const Error posix(NSPOSIXErrorDomain, posixError,
                    Dictionary{{NSLocalizedDescriptionKey, String(std::strerror(posixError))}});
  const Integer code = operation == FileOperation::Read    ? readCode(posixError)
                       : operation == FileOperation::Write ? writeCode(posixError)
                                                           : changeCode(posixError);
  if (path.isNil())
    return Error(NSCocoaErrorDomain, code, Dictionary{{NSUnderlyingErrorKey, posix}});
  return Error(NSCocoaErrorDomain, code,
               Dictionary{{NSFilePathErrorKey, path},
                          {NSLocalizedDescriptionKey, describe(operation, path, posixError)},
                          {NSUnderlyingErrorKey, posix}});
}

}  // namespace tarnvik
