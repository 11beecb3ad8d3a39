#include "tarnvik/fs/housekeeping.hpp"

#include <algorithm>
#include <cmath>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/core/logging.hpp"
#include "tarnvik/fs/internal/texts.hpp"
#include "tarnvik/platform/system/log.hpp"
#include "tarnvik/platform/text/scanner.hpp"

namespace tarnvik {

Value resourceValueForKey(FileManager& fileManager, const URL& url, const String& key,
                          Error* error) {
  const String path = url.path();
  if (key == String(NSURLNameKey)) return path.lastPathComponent();
  FileAttributes attributes;
  if (!fileManager.attributesOfItemAtPath(path, false, &attributes, error)) return Value();
  if (key == String(NSURLIsDirectoryKey)) return attributes.isDirectory();
  if (key == String(NSURLCreationDateKey)) return attributes.creationDate;
  if (key == String(NSURLContentModificationDateKey)) return attributes.modificationDate;
  if (key == String(NSURLAttributeModificationDateKey)) return attributes.statusChangeDate;
  if (key == String(NSURLFileSizeKey)) return attributes.size;
  return Value();
}

std::optional<std::vector<URL>> contentsOfDirectoryAtURL(FileManager& fileManager, const URL& url,
                                                         UInteger options, Error* error) {
  const String folder = url.isNil() ? String() : url.path();
  if (folder.isNil() || folder.isEmpty()) {
    if (error) *error = FileManager::errorFor(FileOperation::Read, folder, ENOENT);
    return std::nullopt;
  }
  const Array names = fileManager.contentsOfDirectoryAtPath(folder, error);
  if (names.isNil()) return std::nullopt;
  std::vector<URL> urls;
  urls.reserve(names.count());
  for (const Value& name : names) {
    const String text = name.asString();
    if ((options & NSDirectoryEnumerationSkipsHiddenFiles) && text.hasPrefix(u".")) continue;
    urls.push_back(URL::fileURLWithPath(folder.stringByAppendingPathComponent(text)));
  }
  return urls;
}

Array mountedVolumePathsIncludingResourceValuesForKeys(FileManager& fileManager, const Array&,
                                                       UInteger) {
  const Array volumes = fileManager.mountedVolumePaths();
  Array paths = Array::array();
  if (volumes.isNil()) return paths;
  for (const Value& volume : volumes) paths.addObject(volume);
  return paths;
}

void removeFilesInDirectoryAtURL(FileManager& fileManager, const URL& folder, UInteger days,
                                 const Error& errorValue) {
  if (folder.isNil()) raiseInvalidArgument(fs_texts::localized(u"Directory url must not be null"));
  if (days == 0) raiseInvalidArgument(fs_texts::localized(u"Number of days must not be null"));
  Error slot = errorValue;
  const auto children = contentsOfDirectoryAtURL(fileManager, folder, 0, &slot);
  if (!slot.isNil() || !children) return;
  const Date now = Date::now();
  for (const URL& child : *children) {
    const std::optional<Date> created = fileCreationDate(child, fileManager);
    const double seconds = created ? std::fabs(created->timeIntervalSinceDate(now)) : 0;
    const auto age = saturatingCast<UInteger>(std::trunc(seconds / 86400));
    if (age > days && !fileManager.removeItemAtPath(child.path())) return;
  }
}

std::optional<std::vector<URL>> contentsOfDirectoryAtPath(FileManager& fileManager,
                                                          const String& path, const String& sortKey,
                                                          Error* error) {
  if (path.isNil()) raiseInvalidArgument(fs_texts::localized(u"Path must not be null"));
  if (sortKey != String(NSURLCreationDateKey) &&
      sortKey != String(NSURLAttributeModificationDateKey) && sortKey != String(NSURLNameKey)) {
    raiseInvalidArgument(
        fs_texts::localized(u"Sort key must be one of the following: NSURLCreationDateKey, "
                            u"NSURLAttributeModificationDateKey or NSURLNameKey"));
  }
  auto urls = contentsOfDirectoryAtURL(fileManager, URL::URLWithString(path),
                                       NSDirectoryEnumerationSkipsHiddenFiles, error);
  if (!urls) return std::nullopt;
  std::vector<std::pair<Value, URL>> keyed;
  keyed.reserve(urls->size());
  for (URL& url : *urls) {
    keyed.emplace_back(resourceValueForKey(fileManager, url, sortKey), std::move(url));
  }
  // A missing value compares as "same" with anything.
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    return !a.first.isNil() && !b.first.isNil() && a.first.compare(b.first) == NSOrderedAscending;
  });
  urls->clear();
  for (auto& [value, url] : keyed) urls->push_back(std::move(url));
  return urls;
}

float fillLevelOfFileSystemAtPath(FileManager& fileManager, const String& path, Error* error) {
  FileSystemAttributes attributes;
  fileManager.fileSystemAttributesAtPath(path, &attributes, error);
  if (!error || attributes.size == 0) return 0.0F;
  return static_cast<float>(attributes.freeSize / attributes.size);
}

String nextNumberedFilePathWithPrefix(FileManager& fileManager, const String& prefix,
                                      const String& suffix, const String& path) {
  auto failed = [](const Error& error) {
    consoleLog(u"ERROR: %@", error.localizedDescription());
    return String();
  };
  Error error;
  bool isDirectory = false;
  if (fileManager.fileExistsAtPath(path, &isDirectory)) {
    if (!isDirectory && (!fileManager.removeItemAtPath(path, &error) ||
                         !fileManager.createDirectoryAtPath(path, true, &error))) {
      return failed(error);
    }
  } else if (!fileManager.createDirectoryAtPath(path, true, &error)) {
    return failed(error);
  }
  const Array names = fileManager.contentsOfDirectoryAtPath(path, &error);
  if (names.isNil()) return failed(error);
  long long highest = -1;
  for (const Value& name : names) {
    Scanner scanner(name.asString());
    long long number = 0;
    if (scanner.scanString(prefix) && scanner.scanLongLong(&number)) {
      highest = std::max(highest, number);
    }
  }
  const long long next = highest == LLONG_MAX ? highest : highest + 1;
  return path.stringByAppendingPathComponent(stringWithFormat(u"%@%qi%@", prefix, next, suffix));
}

bool createDirectoryAtPath(FileManager& fileManager, const String& path, bool intermediates,
                           bool overwrite, const Dictionary& attributes, Error* error) {
  auto create = [&] {
    return fileManager.createDirectoryAtPath(path, intermediates, error) &&
           (attributes.isNil() || fileManager.setAttributes(attributes, path, error));
  };
  if (!fileManager.fileExistsAtPath(path)) return create();
  if (!overwrite) return true;
  fileManager.removeItemAtPath(path, error);
  if (error && !error->isNil()) return false;
  return create();
}

String existingPathPrefixOfPath(FileManager&, const String& path) {
  if (path.isNil()) raiseInvalidArgument(u"path must not be nil");
  FileManager& shared = FileManager::defaultManager();
  String candidate(u"");
  for (const Value& component : path.pathComponents()) {
    candidate = candidate.stringByAppendingPathComponent(component.asString());
    if (!fileOrSymbolicLinkExistsAtPath(shared, candidate)) {
      return candidate.stringByDeletingLastPathComponent();
    }
  }
  return candidate;
}

bool directoryExistsAtPath(FileManager& fileManager, const String& path) {
  bool isDirectory = false;
  return fileManager.fileExistsAtPath(path, &isDirectory) && isDirectory;
}

bool fileOrSymbolicLinkExistsAtPath(FileManager& fileManager, const String& path) {
  return fileManager.itemExistsAtPath(path);
}

URL cachesDirectory() {
  const String path = FileManager::defaultManager().cachesDirectory();
  if (path.isNil() || path.isEmpty()) {
    KU_LOG_ERROR(u"+[NSURL(KUExtensions) cachesDirectory]", u"Couldn't find Caches Path");
    return URL();
  }
  return URL::fileURLWithPath(path.stringByExpandingTildeInPath());
}

std::optional<Date> fileCreationDate(const URL& url, FileManager& fileManager) {
  const Value date = resourceValueForKey(fileManager, url, NSURLCreationDateKey);
  if (date.kind() != ValueKind::Date) return std::nullopt;
  return date.asDate();
}

}  // namespace tarnvik
