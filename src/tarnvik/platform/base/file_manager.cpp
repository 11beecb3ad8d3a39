#include "tarnvik/platform/base/file_manager.hpp"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "tarnvik/platform/base/internal/file_errors.hpp"

namespace tarnvik {

namespace {

// File systems that hold files a user works with, besides any mounted from a /dev node.
const std::set<std::string, std::less<>> kVolumeFileSystems = {
    "nfs", "nfs4", "cifs", "smb3", "smbfs", "afs", "9p", "fuse.sshfs", "fuseblk", "virtiofs"};

// Pseudo and image file systems that never count, even when mounted from a /dev node.
const std::set<std::string, std::less<>> kPseudoFileSystems = {
    "proc",     "sysfs",      "cgroup",  "cgroup2",    "tmpfs",    "devtmpfs", "devpts",
    "mqueue",   "debugfs",    "tracefs", "securityfs", "pstore",   "bpf",      "configfs",
    "fusectl",  "hugetlbfs",  "autofs",  "overlay",    "squashfs", "nsfs",     "binfmt_misc",
    "efivarfs", "rpc_pipefs", "ramfs",   "selinuxfs"};

// Undoes the octal escapes of mount table fields ("\040" is a blank).
std::string unescapeMountField(std::string_view field) {
  std::string out;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size() &&
        field.substr(i + 1, 3).find_first_not_of("01234567") == std::string_view::npos) {
      out.push_back(static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                      (field[i + 3] - '0')));
      i += 3;
    } else {
      out.push_back(field[i]);
    }
  }
  return out;
}

bool below(std::string_view path, std::string_view folder) {
  return path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
}

}  // namespace

Array volumePathsFromMountInfo(std::string_view mountInfo) {
  Array volumes = Array::array();
  volumes.addObject(String(u"/"));
  std::istringstream lines{std::string(mountInfo)};
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::vector<std::string> before;
    std::string field;
    while (fields >> field && field != "-") before.push_back(field);
    std::string type, source;
    fields >> type >> source;
    if (before.size() < 5 || type.empty()) continue;
    const std::string mountPoint = unescapeMountField(before[4]);
    if (mountPoint == "/" || below(mountPoint, "/proc") || below(mountPoint, "/sys") ||
        below(mountPoint, "/dev")) {
      continue;
    }
    if (kPseudoFileSystems.contains(type)) continue;
    if (!source.starts_with("/dev/") && !kVolumeFileSystems.contains(type)) continue;
    const String path(mountPoint);
    if (!volumes.containsObject(path)) volumes.addObject(path);
  }
  return volumes;
}

FileManager& FileManager::defaultManager() {
  static FileManager manager;
  return manager;
}

Array FileManager::mountedVolumePaths() {
  std::ifstream table("/proc/self/mountinfo");
  const std::string text((std::istreambuf_iterator<char>(table)), std::istreambuf_iterator<char>());
  return volumePathsFromMountInfo(text);
}

Array FileManager::contentsOfDirectoryAtPath(const String& path, Error* error) {
  DIR* folder = ::opendir(path.utf8().c_str());
  if (!folder) {
    if (error) *error = file_errors::reading(path, errno);
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
    if (error) *error = file_errors::reading(path, failure);
    return Array();
  }
  return names;
}

bool FileManager::fileExistsAtPath(const String& path, bool* isDirectory) {
  struct stat info {};
  if (path.isEmpty() || ::stat(path.utf8().c_str(), &info) != 0) return false;
  if (isDirectory) *isDirectory = S_ISDIR(info.st_mode);
  return true;
}

String FileManager::currentDirectoryPath() {
  std::string buffer(4096, '\0');
  while (!::getcwd(buffer.data(), buffer.size())) {
    if (errno != ERANGE) return String();
    buffer.resize(buffer.size() * 2);
  }
  return String(buffer.c_str());
}

}  // namespace tarnvik
