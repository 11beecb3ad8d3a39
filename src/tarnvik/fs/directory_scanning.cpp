#include "tarnvik/fs/directory_scanning.hpp"

#include <dirent.h>
#include <ftw.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "tarnvik/core/logging.hpp"
#include "tarnvik/fs/internal/texts.hpp"
#include "tarnvik/platform/system/user_defaults.hpp"

extern "C" {
std::int32_t __cfi_total_file_count = 0;  // NOLINT(bugprone-reserved-identifier)
std::int32_t __cfi_total_file_size = 0;   // NOLINT(bugprone-reserved-identifier)

int process_total_file_count(const char*, const struct stat*, int flag) {
  if (flag == FTW_F) ++__cfi_total_file_count;
  return 0;
}

int process_total_file_size(const char*, const struct stat* info, int flag) {
  if (flag == FTW_F) {
    __cfi_total_file_size =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(__cfi_total_file_size) +
                                  static_cast<std::uint32_t>(info->st_size));
  }
  return 0;
}
}

namespace tarnvik {

TARNVIK_DEFINE_CLASS(CFIFile, Object,
                     c.property(u"path", &CFIFile::path, &CFIFile::setPath)
                         .property(u"isDirectory", &CFIFile::isDirectory, &CFIFile::setIsDirectory)
                         .property(u"isSymbolicLink", &CFIFile::isSymbolicLink,
                                   &CFIFile::setIsSymbolicLink))

// A scan's names and the blocks its records live in, one block after the other. Records
// are made only while the scan runs, on its thread; the arena goes with the last record
// (each record's control block holds a reference through its allocator).
struct CFIScanArena {
  static constexpr std::size_t kBlockSize = 256 * 1024;
  std::string prefix;  // the folder path and "/"
  std::string names;   // every name, one after the other
  std::vector<std::unique_ptr<std::byte[]>> blocks;
  std::size_t used = kBlockSize;

  void* allocate(std::size_t size, std::size_t alignment) {
    used = (used + alignment - 1) / alignment * alignment;
    if (used + size > kBlockSize) {
      blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(std::max(size, kBlockSize)));
      used = 0;
    }
    void* at = blocks.back().get() + used;
    used += size;
    return at;
  }
};

namespace {

template <class T>
struct ScanAllocator {
  using value_type = T;
  std::shared_ptr<CFIScanArena> arena;
  explicit ScanAllocator(std::shared_ptr<CFIScanArena> a) : arena(std::move(a)) {}
  template <class U>
  ScanAllocator(const ScanAllocator<U>& other) : arena(other.arena) {}  // NOLINT
  T* allocate(std::size_t n) { return static_cast<T*>(arena->allocate(n * sizeof(T), alignof(T))); }
  void deallocate(T*, std::size_t) noexcept {}
  template <class U>
  bool operator==(const ScanAllocator<U>& other) const {
    return arena == other.arena;
  }
};

}  // namespace

String CFIFile::path() const {
  std::lock_guard lock(mutex_);
  if (scan_) {
    std::string full;
    full.reserve(scan_->prefix.size() + nameLength_);
    full.append(scan_->prefix).append(scan_->names, nameOffset_, nameLength_);
    path_ = String::fromUTF8Lossy(full);
    scan_ = nullptr;
  }
  return path_;
}

void CFIFile::setPath(String path) {
  std::lock_guard lock(mutex_);
  path_ = std::move(path);
  scan_ = nullptr;
}

String CFIFile::description() const {
  return stringWithFormat(fs_texts::localized(u"%@ - path: %@ is Directory: %d"),
                          Object::description(), path(), isDirectory_ ? 1 : 0);
}

namespace {

// The folder path as the prefix of its entries' paths: "dir/" ("/" for the root).
std::string entryPrefix(const std::string& folder) {
  std::string prefix = folder;
  while (prefix.size() > 1 && prefix.back() == '/') prefix.pop_back();
  if (prefix != "/") prefix += '/';
  return prefix;
}

bool isASCII(std::string_view bytes) {
  unsigned char any = 0;
  for (const char c : bytes) any |= static_cast<unsigned char>(c);
  return any < 0x80;
}

bool isUTF8(std::string_view bytes) { return isASCII(bytes) || !String::fromUTF8(bytes).isNil(); }

bool statSaysType(const String& path, mode_t type, const char16_t* function,
                  const char16_t* message) {
  struct stat info {};
  if (::stat(path.utf8().c_str(), &info) != 0) {
    KU_LOG_ERROR(function, message, path);
    return false;
  }
  return (info.st_mode & S_IFMT) == type;
}

}  // namespace

bool existsCFI(const String& path) { return ::access(path.utf8().c_str(), F_OK) == 0; }

bool isDirectoryCFI(const String& path) {
  return statSaysType(path, S_IFDIR, u"+[NSFileManager(CFIExtensions) isDirectoryCFI:]",
                      u"IsDirectoryCFI failed on %@");
}

bool isSymbolicLinkCFI(const String& path) {
  return statSaysType(path, S_IFLNK, u"+[NSFileManager(CFIExtensions) isSymbolicLinkCFI:]",
                      u"isSymbolicLinkCFI failed on %@");
}

std::uint64_t filesizeCFI(const String& path) {
  static std::atomic<std::uint64_t> method{~std::uint64_t{0}};
  if (method.load() == ~std::uint64_t{0}) {
    method = static_cast<std::uint64_t>(
        UserDefaults::standardUserDefaults().integerForKey(u"filesizeCFIMethod"));
  }
  const std::string bytes = path.utf8();
  struct stat info {};
  if (method.load() == 1) {
    ::stat(bytes.c_str(), &info);
    return static_cast<std::uint64_t>(info.st_size);
  }
  if (bytes.empty() || ::stat(bytes.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return 0;
  return static_cast<std::uint64_t>(info.st_size);
}

Array directoryFilesAtPathCFI(const String& path) {
  const std::string folderPath = path.utf8();
  DIR* folder = ::opendir(folderPath.c_str());
  if (!folder) {
    KU_LOG_ERROR(u"+[NSFileManager(CFIExtensions) directoryFilesAtPathCFI:]",
                 u"%@ %@ Couldn't open directory %@",
                 sourceFileName(__FILE__).stringByDeletingPathExtension(),
                 String(u"directoryFilesAtPathCFI:"), path);
    return Array();
  }
  // The names go into one buffer and the records into the scan's blocks; each record
  // holds its name's offset and builds its path when asked.
  auto arena = std::make_shared<CFIScanArena>();
  const ScanAllocator<CFIFile> allocator(arena);
  arena->prefix = entryPrefix(folderPath);
  std::vector<Value> records;
  // The folder's own size is close to the bytes of its entries: room for the names and a
  // guess at the count, so that neither buffer is copied as it grows.
  if (struct stat info{}; ::fstat(::dirfd(folder), &info) == 0 && info.st_size > 0) {
    const auto bytes = static_cast<std::size_t>(std::min<off_t>(info.st_size, off_t{64} << 20));
    arena->names.reserve(bytes);
    records.reserve(bytes / 32);
  }
  while (const dirent* entry = ::readdir(folder)) {
    const std::string_view name(entry->d_name);
    if (name.empty() || name == "." || name == "..") continue;
    if (!isUTF8(name)) continue;
    bool isLink = false, isFolder = false;
    switch (entry->d_type) {
      case DT_LNK:
        isLink = true;
        break;
      case DT_DIR:
        isFolder = true;
        break;
      case DT_UNKNOWN: {
        const String full = String::fromUTF8(arena->prefix + std::string(name));
        isFolder = isDirectoryCFI(full);
        isLink = isSymbolicLinkCFI(full);
        break;
      }
      default:
        break;
    }
    const auto offset = static_cast<std::uint32_t>(arena->names.size());
    arena->names.append(name);
    records.emplace_back(std::allocate_shared<CFIFile>(
        allocator, arena.get(), offset, static_cast<std::uint32_t>(name.size()), isFolder, isLink));
  }
  ::closedir(folder);
  return Array(std::move(records));
}

Array directoryContentsAtPathCFI(const String& path, bool omitFolders) {
  const std::string folderPath = path.utf8();
  DIR* folder = ::opendir(folderPath.c_str());
  Array names = Array::array();
  if (!folder) {
    KU_LOG_ERROR(u"+[NSFileManager(CFIExtensions) directoryContentsAtPathCFI:omitFolders:]",
                 u"Couldn't open directory %@", path);
    return names;
  }
  const std::string prefix = entryPrefix(folderPath);
  while (const dirent* entry = ::readdir(folder)) {
    const std::string_view name(entry->d_name);
    if (name == "." || name == "..") continue;
    String text = String::fromUTF8(name);
    if (text.isNil()) continue;
    if (omitFolders && (entry->d_type == DT_DIR ||
                        (entry->d_type == DT_UNKNOWN &&
                         isDirectoryCFI(String::fromUTF8Lossy(prefix + std::string(name)))))) {
      continue;
    }
    names.addObject(std::move(text));
  }
  ::closedir(folder);
  return names;
}

}  // namespace tarnvik
