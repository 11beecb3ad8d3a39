// FileManager: the file-system primitives the library's file operations stand on. Its
// operations are virtual so that a host or a test can put a manager that fails on cue in
// its place; FileManager::defaultManager() is the shared real one.
//
//   Array names = FileManager::defaultManager().contentsOfDirectoryAtPath(u"/Volumes/Media");
//   Array volumes = FileManager::defaultManager().mountedVolumePaths();
#pragma once

#include <string_view>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

class FileManager {
 public:
  FileManager() = default;
  virtual ~FileManager() = default;
  FileManager(const FileManager&) = delete;
  FileManager& operator=(const FileManager&) = delete;

  static FileManager& defaultManager();

  // The mount points that count as volumes, in the order the system lists them: "/" and
  // every mount of a block device or of a disk, optical, network or FUSE block file system;
  // pseudo file systems (proc, sysfs, cgroup, tmpfs, devpts, overlay, squashfs images, ...)
  // and mounts below /proc, /sys and /dev are left out.
  virtual Array mountedVolumePaths();
  // The names in the folder (hidden ones included, "." and ".." not), in the order the
  // system lists them. nil on failure, with an Error in NSCocoaErrorDomain.
  virtual Array contentsOfDirectoryAtPath(const String& path, Error* error = nullptr);
  // Whether something exists at the path (links followed); *isDirectory tells whether it
  // is a folder.
  virtual bool fileExistsAtPath(const String& path, bool* isDirectory = nullptr);
  virtual String currentDirectoryPath();
};

// The volumes of a mount table in the text form of /proc/self/mountinfo, by the rule of
// FileManager::mountedVolumePaths(). Exposed so the rule can be tested on any table.
Array volumePathsFromMountInfo(std::string_view mountInfo);

}  // namespace tarnvik
