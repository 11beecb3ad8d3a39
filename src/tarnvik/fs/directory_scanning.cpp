#include "tarnvik/fs/directory_scanning.hpp"

#include <dirent.h>
#include <ftw.h>
#include <unistd.h>

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
  Array files = Array::array();
  std::string entryPath = entryPrefix(folderPath);
  const std::size_t prefixLength = entryPath.size();
  while (const dirent* entry = ::readdir(folder)) {
    const std::string_view name(entry->d_name);
    if (name.empty() || name == "." || name == "..") continue;
    entryPath.resize(prefixLength);
    entryPath.append(name);
    String full = String::fromUTF8(entryPath);
    if (full.isNil()) continue;  // the name is not UTF-8
    bool isLink = false, isFolder = false;
    switch (entry->d_type) {
      case DT_LNK:
        isLink = true;
        break;
      case DT_DIR:
        isFolder = true;
        break;
      case DT_UNKNOWN:
        isFolder = isDirectoryCFI(full);
        isLink = isSymbolicLinkCFI(full);
        break;
      default:
        break;
    }
    files.addObject(std::make_shared<CFIFile>(std::move(full), isFolder, isLink));
  }
  ::closedir(folder);
  return files;
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
