// The file manager's view of volumes and file systems: the mount table and statvfs.
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/posix_files.hpp"

namespace tarnvik {

namespace {

constexpr char16_t kMountTable[] = u"/proc/self/mountinfo";

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

// One line of the mount table: the fields before the "-" separator (mount ID, parent ID,
// major:minor, root, mount point, options...), then the file-system type and the source.
struct MountLine {
  std::vector<std::string> before;
  std::string type, source;
};

// Calls visit with each line of the table that has a file-system type.
template <class Visit>
void forEachMount(std::string_view mountInfo, Visit visit) {
  std::istringstream lines{std::string(mountInfo)};
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    MountLine mount;
    for (std::string field; fields >> field && field != "-";) mount.before.push_back(field);
    fields >> mount.type >> mount.source;
    if (!mount.type.empty()) visit(mount);
  }
}

bool below(std::string_view path, std::string_view folder) {
  return path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
}

}  // namespace

Array volumePathsFromMountInfo(std::string_view mountInfo) {
  Array volumes = Array::array();
  volumes.addObject(String(u"/"));
  forEachMount(mountInfo, [&](const MountLine& mount) {
    if (mount.before.size() < 5) return;
    const std::string mountPoint = unescapeMountField(mount.before[4]);
    if (mountPoint == "/" || below(mountPoint, "/proc") || below(mountPoint, "/sys") ||
        below(mountPoint, "/dev")) {
      return;
    }
    if (kPseudoFileSystems.contains(mount.type)) return;
    if (!mount.source.starts_with("/dev/") && !kVolumeFileSystems.contains(mount.type)) return;
    const String path(mountPoint);
    if (!volumes.containsObject(path)) volumes.addObject(path);
  });
  return volumes;
}

String fileSystemTypeFromMountInfo(std::string_view mountInfo, unsigned major, unsigned minor) {
  const std::string device = std::to_string(major) + ":" + std::to_string(minor);
  String type(u"");
  forEachMount(mountInfo, [&](const MountLine& mount) {
    if (type.isEmpty() && mount.before.size() >= 3 && mount.before[2] == device) {
      type = String(mount.type);
    }
  });
  return type;
}

Array FileManager::mountedVolumePaths() {
  return volumePathsFromMountInfo(contentsAtPath(kMountTable).asStringView());
}

bool FileManager::fileSystemAttributesAtPath(const String& path, FileSystemAttributes* out,
                                             Error* error) {
  struct statvfs info {};
  if (path.isEmpty() || ::statvfs(path.utf8().c_str(), &info) != 0) {
    return posix_files::fail(error, FileOperation::Read, path, path.isEmpty() ? ENOENT : errno);
  }
  FileAttributes item;
  if (!attributesOfItemAtPath(path, true, &item, error)) return false;
  if (!out) return true;
  out->blockSize = info.f_frsize;
  out->size = static_cast<UInteger>(info.f_blocks) * info.f_frsize;
  out->freeSize = static_cast<UInteger>(info.f_bavail) * info.f_frsize;
  out->readOnly = (info.f_flag & ST_RDONLY) != 0;
  const auto device = static_cast<dev_t>(item.deviceIdentifier);
  out->type = fileSystemTypeFromMountInfo(contentsAtPath(kMountTable).asStringView(), major(device),
                                          minor(device));
  return true;
}

}  // namespace tarnvik
