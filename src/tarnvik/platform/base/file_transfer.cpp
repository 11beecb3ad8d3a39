// The file manager's moving, copying and removing.
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>
#include <typeinfo>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/posix_files.hpp"

namespace tarnvik {

using posix_files::fail;
using posix_files::timespecOf;

namespace {

constexpr std::size_t kCopyBufferSize = 1 << 20;

// Whether a kernel copy path failed only because it cannot serve these two files, so that
// the next path may try.
bool unsupported(int posixError) {
  return posixError == EXDEV || posixError == EOPNOTSUPP || posixError == ENOSYS ||
         posixError == EINVAL || posixError == ENOTTY || posixError == EBADF || posixError == EPERM;
}

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

// Copies the rest of in to out, from their current offsets to the end of in. Answers 0,
// or the POSIX error: negative when reading failed, positive when writing did.
int readWriteCopy(int in, int out) {
  const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(kCopyBufferSize);
  for (;;) {
    const ssize_t n = ::read(in, buffer.get(), kCopyBufferSize);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return -errno;
    if (n == 0) return 0;
    if (!writeAll(out, buffer.get(), static_cast<std::size_t>(n))) return errno;
  }
}

constexpr int kHandOver = -1000000;

// Calls one in-kernel copy (a function moving up to n bytes from in to out at their
// offsets) until the end of in. Answers 0 when done, kHandOver when the next path should
// go on from where this one stopped, else as readWriteCopy.
template <class KernelCopy>
int copyInKernel(KernelCopy copy, UInteger& copied) {
  constexpr std::size_t kChunk = std::size_t{1} << 30;
  for (;;) {
    const ssize_t n = copy(kChunk);
    if (n > 0) {
      copied += static_cast<UInteger>(n);
    } else if (n == 0) {
      // The end, unless the file system reports no bytes for a file that has some (as
      // procfs and some network file systems do): then the next path tries.
      return copied > 0 ? 0 : kHandOver;
    } else if (errno != EINTR) {
      if (unsupported(errno)) return kHandOver;
      return errno == ENOSPC || errno == EDQUOT || errno == EFBIG ? errno : -errno;
    }
  }
}

// Copies in to out by the fastest path that serves them. A path that turns out not to
// serve them hands over to the next at the offsets it reached, so nothing is copied twice.
// Answers as readWriteCopy.
int copyBytes(int in, int out, UInteger size) {
  if (size > 0 && ::ioctl(out, FICLONE, in) == 0) return 0;
  ::posix_fadvise(in, 0, 0, POSIX_FADV_SEQUENTIAL);
  if (size > 0) {
    UInteger copied = 0;
    int result = copyInKernel(
        [&](std::size_t n) { return ::copy_file_range(in, nullptr, out, nullptr, n, 0); }, copied);
    if (result == kHandOver) {
      result = copyInKernel([&](std::size_t n) { return ::sendfile(out, in, nullptr, n); }, copied);
    }
    if (result != kHandOver) return result;
  }
  return readWriteCopy(in, out);
}

// Removes everything inside the folder at path, one folder open at a time, and then the
// folder. Answers 0, or the POSIX error with path naming the item that could not go.
int removeTree(std::string& path) {
  struct Entry {
    std::string name;
    unsigned char type;
  };
  std::vector<Entry> entries;
  if (DIR* folder = ::opendir(path.c_str())) {
    errno = 0;
    while (const dirent* entry = ::readdir(folder)) {
      const std::string_view name(entry->d_name);
      if (name != "." && name != "..") entries.push_back(Entry{std::string(name), entry->d_type});
      errno = 0;
    }
    const int failure = errno;
    ::closedir(folder);
    if (failure != 0) return failure;
  } else {
    return errno;
  }
  const std::size_t length = path.size();
  for (const Entry& entry : entries) {
    path.append(1, '/').append(entry.name);
    bool isFolder = entry.type == DT_DIR;
    if (entry.type == DT_UNKNOWN) {
      struct stat info {};
      isFolder = ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    }
    if (isFolder) {
      if (const int failure = removeTree(path); failure != 0) return failure;
    } else if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
      return errno;
    }
    path.resize(length);
  }
  return ::rmdir(path.c_str()) == 0 ? 0 : errno;
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
  auto abandon = [&](const String& failed, int posixError) {
    out = FileHandle();
    ::unlink(toPath.utf8().c_str());
    return fail(error, FileOperation::Copy, failed, posixError);
  };
  int failure = copyBytes(in.descriptor(), out.descriptor(), source.size);
  if (failure != 0) return abandon(failure < 0 ? path : toPath, failure < 0 ? -failure : failure);
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
  if (item.type != FileType::Directory) {
    if (::unlink(path.utf8().c_str()) == 0) return true;
    return fail(error, FileOperation::Remove, path, errno);
  }
  if (typeid(*this) == typeid(FileManager)) {
    std::string walked = path.utf8();
    const int failure = removeTree(walked);
    return failure == 0 ||
           fail(error, FileOperation::Remove, String::fromUTF8Lossy(walked), failure);
  }
  return removeFolderContents(path, error);
}

// A subclass's removal: every item inside goes through its own primitives.
bool FileManager::removeFolderContents(const String& path, Error* error) {
  std::vector<DirectoryEntry> entries;
  if (!entriesOfDirectoryAtPath(path, &entries, error)) return false;
  for (const DirectoryEntry& entry : entries) {
    if (!removeItemAtPath(path.stringByAppendingPathComponent(entry.name), error)) return false;
  }
  if (::rmdir(path.utf8().c_str()) == 0) return true;
  return fail(error, FileOperation::Remove, path, errno);
}

}  // namespace tarnvik
