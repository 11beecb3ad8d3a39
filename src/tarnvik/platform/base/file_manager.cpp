// The file manager's primitives on POSIX: errors, attributes, folders, whole files, open
// files, links, dates and the well-known folders. Moving, copying and removing are in
// file_transfer.cpp, volumes and file-system statistics in file_systems.cpp.
#include "tarnvik/platform/base/file_manager.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tarnvik/platform/base/internal/posix_files.hpp"

namespace tarnvik {

using posix_files::fail;

namespace {

// New files get 0666 less the process's file-creation mask, read once (reading it means
// setting it).
mode_t newFileMode() {
  static const mode_t mode = [] {
    const mode_t mask = ::umask(022);
    ::umask(mask);
    return 0666 & ~mask;
  }();
  return mode;
}

Date dateOf(const struct statx_timestamp& t) {
  return Date::dateWithTimeIntervalSince1970(static_cast<double>(t.tv_sec) +
                                             static_cast<double>(t.tv_nsec) / 1e9);
}

FileType typeOf(mode_t mode) {
  if (S_ISREG(mode)) return FileType::Regular;
  if (S_ISDIR(mode)) return FileType::Directory;
  if (S_ISLNK(mode)) return FileType::SymbolicLink;
  return FileType::Other;
}

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::string(value) : std::string();
}

}  // namespace

FileHandle::FileHandle(FileHandle&& other) noexcept
    : descriptor_(other.release()), path_(std::move(other.path_)) {}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
  if (this != &other) {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = other.release();
    path_ = std::move(other.path_);
  }
  return *this;
}

FileHandle::~FileHandle() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

int FileHandle::release() {
  const int descriptor = descriptor_;
  descriptor_ = -1;
  return descriptor;
}

FileManager& FileManager::defaultManager() {
  static FileManager manager;
  return manager;
}

bool FileManager::attributesOfItemAtPath(const String& path, bool followLinks, FileAttributes* out,
                                         Error* error) {
  struct statx info {};
  const unsigned mask = STATX_BASIC_STATS | STATX_BTIME;
  const int flags = followLinks ? 0 : AT_SYMLINK_NOFOLLOW;
  if (path.isEmpty()) return fail(error, FileOperation::Read, path, ENOENT);
  if (::statx(AT_FDCWD, path.utf8().c_str(), flags, mask, &info) != 0) {
    return fail(error, FileOperation::Read, path, errno);
  }
  if (!out) return true;
  out->type = typeOf(info.stx_mode);
  out->size = info.stx_size;
  out->modificationDate = dateOf(info.stx_mtime);
  out->accessDate = dateOf(info.stx_atime);
  out->statusChangeDate = dateOf(info.stx_ctime);
  out->creationDate =
      (info.stx_mask & STATX_BTIME) ? dateOf(info.stx_btime) : out->modificationDate;
  out->permissions = info.stx_mode & 07777;
  out->deviceIdentifier = makedev(info.stx_dev_major, info.stx_dev_minor);
  out->fileNumber = info.stx_ino;
  out->linkCount = info.stx_nlink;
  return true;
}

bool FileManager::fileExistsAtPath(const String& path, bool* isDirectory) {
  FileAttributes attributes;
  if (!attributesOfItemAtPath(path, true, &attributes)) return false;
  if (isDirectory) *isDirectory = attributes.isDirectory();
  return true;
}

bool FileManager::itemExistsAtPath(const String& path, FileType* type) {
  FileAttributes attributes;
  if (!attributesOfItemAtPath(path, false, &attributes)) return false;
  if (type) *type = attributes.type;
  return true;
}

Array FileManager::contentsOfDirectoryAtPath(const String& path, Error* error) {
  DIR* folder = ::opendir(path.utf8().c_str());
  if (!folder) {
    fail(error, FileOperation::Read, path, errno);
    return Array();
  }
  Array names = Array::array();
  errno = 0;
  while (const dirent* entry = ::readdir(folder)) {
    const std::string_view name(entry->d_name);
    if (name != "." && name != "..") names.addObject(String::fromUTF8Lossy(name));
  }
  const int failure = errno;
  ::closedir(folder);
  if (failure != 0) {
    fail(error, FileOperation::Read, path, failure);
    return Array();
  }
  return names;
}

bool FileManager::entriesOfDirectoryAtPath(const String& path, std::vector<DirectoryEntry>* out,
                                           Error* error) {
  if (out) out->clear();
  const std::string folderPath = path.utf8();
  DIR* folder = ::opendir(folderPath.c_str());
  if (!folder) return fail(error, FileOperation::Read, path, errno);
  std::vector<DirectoryEntry> entries;
  errno = 0;
  while (const dirent* entry = ::readdir(folder)) {
    const std::string_view name(entry->d_name);
    if (name == "." || name == "..") continue;
    FileType type = FileType::Other;
    switch (entry->d_type) {
      case DT_REG:
        type = FileType::Regular;
        break;
      case DT_DIR:
        type = FileType::Directory;
        break;
      case DT_LNK:
        type = FileType::SymbolicLink;
        break;
      case DT_UNKNOWN: {
        struct stat info {};
        if (::fstatat(::dirfd(folder), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0) {
          type = typeOf(info.st_mode);
        }
        break;
      }
      default:
        break;
    }
    entries.push_back(DirectoryEntry{String::fromUTF8Lossy(name), type});
    errno = 0;
  }
  const int failure = errno;
  ::closedir(folder);
  if (failure != 0) return fail(error, FileOperation::Read, path, failure);
  if (out) *out = std::move(entries);
  return true;
}

bool FileManager::createDirectoryAtPath(const String& path, bool intermediates, Error* error) {
  if (path.isEmpty()) return fail(error, FileOperation::Create, path, ENOENT);
  if (::mkdir(path.utf8().c_str(), 0777) == 0) return true;
  const int failure = errno;
  if (!intermediates) return fail(error, FileOperation::Create, path, failure);
  bool isDirectory = false;
  if (failure == EEXIST) {
    if (fileExistsAtPath(path, &isDirectory) && isDirectory) return true;
    return fail(error, FileOperation::Create, path, EEXIST);
  }
  if (failure != ENOENT) return fail(error, FileOperation::Create, path, failure);
  const String parent = path.stringByDeletingLastPathComponent();
  if (parent.isEmpty() || parent == path) return fail(error, FileOperation::Create, path, failure);
  if (!createDirectoryAtPath(parent, true, error)) return false;
  if (::mkdir(path.utf8().c_str(), 0777) == 0) return true;
  const int again = errno;  // another thread may have made it meanwhile
  if (again == EEXIST && fileExistsAtPath(path, &isDirectory) && isDirectory) return true;
  return fail(error, FileOperation::Create, path, again);
}

Data FileManager::contentsAtPath(const String& path, UInteger options, Error* error) {
  FileHandle file(::open(path.utf8().c_str(), O_RDONLY | O_CLOEXEC), path);
  struct stat info {};
  if (!file.isOpen() || ::fstat(file.descriptor(), &info) != 0) {
    fail(error, FileOperation::Read, path, errno);
    return Data();
  }
  const bool mapped = (options & (NSDataReadingMappedIfSafe | NSDataReadingMappedAlways)) &&
                      S_ISREG(info.st_mode) && info.st_size > 0;
  if (mapped) {
    const auto size = static_cast<std::size_t>(info.st_size);
    // Populating the mapping up front costs one pass instead of a page fault per page.
    void* address =
        ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file.descriptor(), 0);
    if (address != MAP_FAILED) {
      ::madvise(address, size, MADV_SEQUENTIAL);
      return Data::withBytesNoCopy(address, size, [](const void* p, UInteger n) {
        ::munmap(const_cast<void*>(p), static_cast<std::size_t>(n));
      });
    }
  }
  // Read what stat promised, then keep reading in small steps in case the file grew.
  ByteBuffer bytes(S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size) : 0);
  std::size_t filled = 0;
  std::uint8_t step[16384];
  for (;;) {
    const bool intoBuffer = filled < bytes.size();
    std::uint8_t* target = intoBuffer ? bytes.data() + filled : step;
    const std::size_t room = intoBuffer ? bytes.size() - filled : sizeof step;
    const ssize_t n = ::read(file.descriptor(), target, room);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      fail(error, FileOperation::Read, path, errno);
      return Data();
    }
    if (n == 0) break;
    if (!intoBuffer) {
      bytes.resize(filled);
      bytes.insert(bytes.end(), step, step + n);
    }
    filled += static_cast<std::size_t>(n);
  }
  bytes.resize(filled);
  return Data::withBuffer(std::move(bytes));
}

bool FileManager::writeDataToPath(const Data& data, const String& path, bool atomically,
                                  Error* error) {
  return writeFileToPath(
      path, atomically,
      [&](FileHandle& file, Error* failure) {
        return writeBytes(file, data.bytes(), data.length(), failure);
      },
      error);
}

bool FileManager::writeFileToPath(const String& path, bool atomically,
                                  const std::function<bool(FileHandle&, Error*)>& write,
                                  Error* error) {
  FileHandle file =
      atomically ? createTemporaryFileNearPath(path, error) : openFileForWritingAtPath(path, error);
  if (!file.isOpen()) return false;
  const String written = file.path();
  const bool complete = write(file, error) && (!atomically || synchronizeFile(file, error)) &&
                        closeFile(file, error) &&
                        (!atomically || renameItemAtPath(written, path, error));
  if (!complete && atomically) {
    file = FileHandle();  // closed before its name goes
    removeItemAtPath(written);
  }
  return complete;
}

FileHandle FileManager::openFileForReadingAtPath(const String& path, Error* error) {
  const int descriptor = ::open(path.utf8().c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    fail(error, FileOperation::Read, path, errno);
    return FileHandle();
  }
  // The file is read once from start to end: the kernel may read ahead further.
  ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
  return FileHandle(descriptor, path);
}

bool FileManager::readBytes(FileHandle& file, void* buffer, UInteger capacity, UInteger* bytesRead,
                            Error* error) {
  *bytesRead = 0;
  for (;;) {
    const ssize_t n = ::read(file.descriptor(), buffer, capacity);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return fail(error, FileOperation::Read, file.path(), errno);
    *bytesRead = static_cast<UInteger>(n);
    return true;
  }
}

FileHandle FileManager::createTemporaryFileNearPath(const String& path, Error* error) {
  std::string name = path.utf8() + ".tarnvik-XXXXXX";
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) {
    fail(error, FileOperation::Write, path, errno);
    return FileHandle();
  }
  ::fchmod(descriptor, newFileMode());
  return FileHandle(descriptor, String(name));
}

FileHandle FileManager::openFileForWritingAtPath(const String& path, Error* error) {
  const int descriptor =
      ::open(path.utf8().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    fail(error, FileOperation::Write, path, errno);
    return FileHandle();
  }
  return FileHandle(descriptor, path);
}

bool FileManager::writeBytes(FileHandle& file, const void* bytes, UInteger length, Error* error) {
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  for (UInteger done = 0; done < length;) {
    const ssize_t n = ::write(file.descriptor(), first + done, length - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return fail(error, FileOperation::Write, file.path(), errno);
    done += static_cast<UInteger>(n);
  }
  return true;
}

bool FileManager::synchronizeFile(FileHandle& file, Error* error) {
  if (::fsync(file.descriptor()) == 0) return true;
  return fail(error, FileOperation::Write, file.path(), errno);
}

bool FileManager::closeFile(FileHandle& file, Error* error) {
  if (::close(file.release()) == 0) return true;
  return fail(error, FileOperation::Write, file.path(), errno);
}

bool FileManager::createSymbolicLinkAtPath(const String& path, const String& destination,
                                           Error* error) {
  if (::symlink(destination.utf8().c_str(), path.utf8().c_str()) == 0) return true;
  return fail(error, FileOperation::Link, path, errno);
}

String FileManager::destinationOfSymbolicLinkAtPath(const String& path, Error* error) {
  std::string target(256, '\0');
  for (;;) {
    const ssize_t n = ::readlink(path.utf8().c_str(), target.data(), target.size());
    if (n < 0) {
      fail(error, FileOperation::Read, path, errno);
      return String();
    }
    if (static_cast<std::size_t>(n) < target.size()) {
      target.resize(static_cast<std::size_t>(n));
      return String::fromUTF8Lossy(target);
    }
    target.resize(target.size() * 2);
  }
}

bool FileManager::setModificationDate(const String& path, Date date, Error* error) {
  const struct timespec times[2] = {posix_files::timespecOf(date), posix_files::timespecOf(date)};
  if (::utimensat(AT_FDCWD, path.utf8().c_str(), times, 0) == 0) return true;
  return fail(error, FileOperation::Write, path, errno);
}

bool FileManager::setPosixPermissions(const String& path, std::uint32_t permissions, Error* error) {
  if (::chmod(path.utf8().c_str(), static_cast<mode_t>(permissions & 07777)) == 0) return true;
  return fail(error, FileOperation::Write, path, errno);
}

bool FileManager::setAttributes(const Dictionary& attributes, const String& path, Error* error) {
  if (const Value date = attributes.objectForKey(NSFileModificationDate);
      date.kind() == ValueKind::Date) {
    if (!setModificationDate(path, date.asDate(), error)) return false;
  }
  if (const Value mode = attributes.objectForKey(NSFilePosixPermissions); mode.isNumber()) {
    if (!setPosixPermissions(path, static_cast<std::uint32_t>(mode.unsignedIntegerValue() & 07777),
                             error)) {
      return false;
    }
  }
  return true;
}

String FileManager::realPathOfItemAtPath(const String& path, Error* error) {
  if (path.isNil()) return String();
  char* resolved = ::realpath(path.utf8().c_str(), nullptr);
  if (!resolved) {
    fail(error, FileOperation::Read, path, errno);
    return String();
  }
  String result = String::fromUTF8Lossy(resolved);
  std::free(resolved);
  return result;
}

String FileManager::currentDirectoryPath() {
  std::string buffer(4096, '\0');
  while (!::getcwd(buffer.data(), buffer.size())) {
    if (errno != ERANGE) return String();
    buffer.resize(buffer.size() * 2);
  }
  return String(buffer.c_str());
}

String FileManager::temporaryDirectory() {
  std::string folder = environment("TMPDIR");
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return String(folder.empty() ? std::string("/tmp") : folder);
}

String FileManager::homeDirectoryForUser(const String& user) {
  if (user.isEmpty()) {
    if (std::string home = environment("HOME"); !home.empty()) return String(home);
  }
  struct passwd entry {};
  struct passwd* found = nullptr;
  char buffer[4096];
  const int rc = user.isEmpty()
                     ? ::getpwuid_r(::getuid(), &entry, buffer, sizeof buffer, &found)
                     : ::getpwnam_r(user.utf8().c_str(), &entry, buffer, sizeof buffer, &found);
  return rc == 0 && found && found->pw_dir ? String(found->pw_dir) : String();
}

String FileManager::cachesDirectory() {
  if (std::string folder = environment("XDG_CACHE_HOME"); !folder.empty()) return String(folder);
  const String home = homeDirectoryForUser();
  return home.isNil() ? String() : home.stringByAppendingPathComponent(u".cache");
}

}  // namespace tarnvik
