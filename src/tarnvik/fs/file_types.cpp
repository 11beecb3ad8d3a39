#include "tarnvik/fs/file_types.hpp"

#include <dirent.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "tarnvik/core/errors.hpp"

namespace tarnvik {

namespace {

Array listOf(std::initializer_list<const char16_t*> members) {
  Array array = Array::arrayWithCapacity(members.size());
  for (const char16_t* member : members) array.addObject(String(member));
  return array;
}

Array joined(std::initializer_list<Array> parts) {
  Array array = Array::array();
  for (const Array& part : parts) array.addObjectsFromArray(part);
  return array;
}

}  // namespace

Array imageFileTypes() {
  static const Array types =
      listOf({u"exr",  u"xbm", u"fpx", u"pntg", u"pict", u"icns", u"qtif", u"sgi", u"tga",
              u"bmp",  u"ico", u"raf", u"raw",  u"mrw",  u"orf",  u"srf",  u"cr2", u"crw",
              u"tiff", u"dng", u"arw", u"pef",  u"mos",  u"nef",  u"jp2",  u"png", u"gif",
              u"jpeg", u"jpg", u"rgb", u"rmf",  u"crm",  u"tif"});
  return types;
}

Array ariFileTypes() {
  static const Array types = listOf({u"ari", u"arx"});
  return types;
}

Array dpxFileTypes() {
  static const Array types = listOf({u"dpx", u"cin", u"cdx", u"vrw"});
  return types;
}

Array quicktimeFileTypes() {
  static const Array types = listOf({u"mov", u"avi", u"mp4"});
  return types;
}

Array r3dFileTypes() {
  static const Array types = listOf({u"r3d"});
  return types;
}

Array mxfFileTypes() {
  static const Array types = listOf({u"mxf"});
  return types;
}

Array directoryFilenames() {
  static const Array names = listOf({u"dmaginfo_fcp.xml", u"index.xml"});
  return names;
}

Array sequenceFileTypes() { return joined({imageFileTypes(), dpxFileTypes(), ariFileTypes()}); }

Array movieFileTypes() { return joined({quicktimeFileTypes(), mxfFileTypes(), r3dFileTypes()}); }

String fileSystemTypeAtPath(const String& path, Error* error, FileManager& fileManager) {
  FileSystemAttributes attributes;
  if (!fileManager.fileSystemAttributesAtPath(path, &attributes)) {
    if (error) {
      *error =
          Error(KFErrorDomainTarnvikExtensions, -1,
                Dictionary{{NSLocalizedFailureReasonErrorKey, u"Could not aquire file system"}});
    }
    return String();
  }
  return attributes.type;
}

Array listOpenFilesOnVolumeAtPath(const String& path) {
  Array paths = Array::array();
  struct stat volume {};
  if (!path.isNil()) {
    struct statvfs info {};
    const std::string bytes = path.utf8();
    if (::statvfs(bytes.c_str(), &info) != 0 || ::stat(bytes.c_str(), &volume) != 0) return paths;
  }
  DIR* table = ::opendir("/proc/self/fd");
  if (!table) return paths;
  std::vector<int> descriptors;
  while (const dirent* entry = ::readdir(table)) {
    char* end = nullptr;
    const long number = std::strtol(entry->d_name, &end, 10);
    if (*entry->d_name != '\0' && *end == '\0' && number != ::dirfd(table)) {
      descriptors.push_back(static_cast<int>(number));
    }
  }
  ::closedir(table);
  std::sort(descriptors.begin(), descriptors.end());
  for (const int descriptor : descriptors) {
    struct stat info {};
    if (::fstat(descriptor, &info) != 0) continue;
    if (!path.isNil() && info.st_dev != volume.st_dev) continue;
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    std::string target(4096, '\0');
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    if (length <= 0 || target[0] != '/') continue;  // pipes, sockets, anonymous inodes
    target.resize(static_cast<std::size_t>(length));
    paths.addObject(String::fromUTF8Lossy(target));
  }
  return paths;
}

Array listOpenFiles() { return listOpenFilesOnVolumeAtPath(String()); }

}  // namespace tarnvik
