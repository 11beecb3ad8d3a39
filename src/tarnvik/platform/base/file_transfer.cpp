// The file manager's moving, copying and removing.
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/posix_files.hpp"

namespace tarnvik {

using posix_files::fail;
using posix_files::timespecOf;

namespace {

constexpr std::size_t kCopyBufferSize = 1 << 20;

// Writes the whole buffer, going on after interrupted and short writes.
bool writeAll(int descriptor, const std::uint8_t* bytes, std::size_t length) {
  while (length > 0) {
    const ssize_t n = ::write(descriptor, bytes, length);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    bytes += n;
    length -= static_cast<std::size_t>(n);
  }
  return true;
}

}  // namespace

bool FileManager::renameItemAtPath(const String& path, const String& toPath, Error* error) {
  if (::rename(path.utf8().c_str(), toPath.utf8().c_str()) == 0) return true;
  return fail(error, FileOperation::Move, path, errno);
}

bool FileManager::moveItemAtPath(const String& path, const String& toPath, Error* error) {
  const std::string from = path.utf8(), to = toPath.utf8();
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  int failure = errno;
  if (failure == EINVAL || failure == ENOSYS) {
    // The file system cannot refuse to replace: look first, then rename.
    if (itemExistsAtPath(toPath)) return fail(error, FileOperation::Move, toPath, EEXIST);
    if (::rename(from.c_str(), to.c_str()) == 0) return true;
    failure = errno;
  }
  if (failure == EEXIST) return fail(error, FileOperation::Move, toPath, EEXIST);
  if (failure != EXDEV) return fail(error, FileOperation::Move, path, failure);
  // Across volumes: copy, then remove the source. A copy that fails removes what it made,
  // so the source stays the only full copy; one that found something in its way (made
  // there meanwhile) leaves that alone.
  if (itemExistsAtPath(toPath)) return fail(error, FileOperation::Move, toPath, EEXIST);
  if (Error copyError; !copyItemAtPath(path, toPath, &copyError)) {
    if (copyError.code() != NSFileWriteFileExistsError) removeItemAtPath(toPath);
    if (error) *error = copyError;
    return false;
  }
  return removeItemAtPath(path, error);
}

bool FileManager::copyItemAtPath(const String& path, const String& toPath, Error* error) {
  FileAttributes source;
  if (Error missing; !attributesOfItemAtPath(path, false, &source, &missing)) {
    return fail(error, FileOperation::Copy, path, posix_files::posixErrorOf(missing));
  }
  if (itemExistsAtPath(toPath)) return fail(error, FileOperation::Copy, toPath, EEXIST);
  switch (source.type) {
    case FileType::SymbolicLink: {
      const String target = destinationOfSymbolicLinkAtPath(path, error);
      return !target.isNil() && createSymbolicLinkAtPath(toPath, target, error);
    }
    case FileType::Directory: {
      const Array names = contentsOfDirectoryAtPath(path, error);
      if (names.isNil()) return false;
      // Writable while it fills; the source's permissions and dates come last.
      if (::mkdir(toPath.utf8().c_str(), 0700) != 0) {
        return fail(error, FileOperation::Copy, toPath, errno);
      }
      for (const Value& name : names) {
        const String child = name.asString();
        if (!copyItemAtPath(path.stringByAppendingPathComponent(child),
                            toPath.stringByAppendingPathComponent(child), error)) {
          return false;
        }
      }
      const struct timespec times[2] = {timespecOf(source.accessDate),
                                        timespecOf(source.modificationDate)};
      ::utimensat(AT_FDCWD, toPath.utf8().c_str(), times, 0);
      return setPosixPermissions(toPath, source.permissions, error);
    }
    case FileType::Regular:
      return copyFile(path, toPath, source, error);
    case FileType::Other:
      break;
  }
  return fail(error, FileOperation::Copy, path, ENOTSUP);
}

bool FileManager::copyFile(const String& path, const String& toPath, const FileAttributes& source,
                           Error* error) {
  FileHandle in(::open(path.utf8().c_str(), O_RDONLY | O_CLOEXEC), path);
  if (!in.isOpen()) return fail(error, FileOperation::Copy, path, errno);
  FileHandle out(::open(toPath.utf8().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600),
                 toPath);
  if (!out.isOpen()) return fail(error, FileOperation::Copy, toPath, errno);
  const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(kCopyBufferSize);
  auto abandon = [&](const String& failed, int posixError) {
    out = FileHandle();
    ::unlink(toPath.utf8().c_str());
    return fail(error, FileOperation::Copy, failed, posixError);
  };
  for (;;) {
    const ssize_t n = ::read(in.descriptor(), buffer.get(), kCopyBufferSize);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return abandon(path, errno);
    if (n == 0) break;
    if (!writeAll(out.descriptor(), buffer.get(), static_cast<std::size_t>(n))) {
      return abandon(toPath, errno);
    }
  }
  const struct timespec times[2] = {timespecOf(source.accessDate),
                                    timespecOf(source.modificationDate)};
  ::fchmod(out.descriptor(), static_cast<mode_t>(source.permissions));
  ::futimens(out.descriptor(), times);
  if (::close(out.release()) != 0) return abandon(toPath, errno);
  return true;
}

bool FileManager::removeItemAtPath(const String& path, Error* error) {
  FileAttributes item;
  if (Error missing; !attributesOfItemAtPath(path, false, &item, &missing)) {
    return fail(error, FileOperation::Remove, path, posix_files::posixErrorOf(missing));
  }
  if (item.type == FileType::Directory) {
    const Array names = contentsOfDirectoryAtPath(path, error);
    if (names.isNil()) return false;
    for (const Value& name : names) {
      if (!removeItemAtPath(path.stringByAppendingPathComponent(name.asString()), error)) {
        return false;
      }
    }
    if (::rmdir(path.utf8().c_str()) == 0) return true;
  } else if (::unlink(path.utf8().c_str()) == 0) {
    return true;
  }
  return fail(error, FileOperation::Remove, path, errno);
}

}  // namespace tarnvik
