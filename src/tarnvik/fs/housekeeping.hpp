// Housekeeping on folders and volumes: mounted volumes, pruning old files, sorted listings,
// the fill level of a file system, the next free numbered file name, folders that may
// replace what stands in their place, how much of a path exists, and existence tests.
//
//   FileManager& fm = FileManager::defaultManager();
//   String next = nextNumberedFilePathWithPrefix(fm, u"report", u".pdf", u"/srv/reports");
//   removeFilesInDirectoryAtURL(fm, URL::fileURLWithPath(u"/srv/logs"), 30);
#pragma once

#include <optional>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/net/url.hpp"

namespace tarnvik {

// Resource keys of file URLs.
inline constexpr char16_t NSURLNameKey[] = u"NSURLNameKey";
inline constexpr char16_t NSURLIsDirectoryKey[] = u"NSURLIsDirectoryKey";
inline constexpr char16_t NSURLCreationDateKey[] = u"NSURLCreationDateKey";
inline constexpr char16_t NSURLContentModificationDateKey[] = u"NSURLContentModificationDateKey";
// The time the item's attributes last changed (ctime).
inline constexpr char16_t NSURLAttributeModificationDateKey[] =
    u"NSURLAttributeModificationDateKey";
inline constexpr char16_t NSURLFileSizeKey[] = u"NSURLFileSizeKey";
// Options of directory listings.
inline constexpr UInteger NSDirectoryEnumerationSkipsHiddenFiles = 4;

// The value of one resource key for the item at the file URL (links not followed); nil
// with the file manager's error when the item cannot be examined or the key is unknown.
Value resourceValueForKey(FileManager& fileManager, const URL& url, const String& key,
                          Error* error = nullptr);
// The folder's items as file URLs, in listing order; with
// NSDirectoryEnumerationSkipsHiddenFiles names starting with "." are left out. nil (an
// empty optional) with the file manager's error when the folder cannot be read.
std::optional<std::vector<URL>> contentsOfDirectoryAtURL(FileManager& fileManager, const URL& url,
                                                         UInteger options, Error* error = nullptr);

// The mount points of the mounted volumes (FileManager::mountedVolumePaths); keys and
// options are accepted for the platform's signature and change nothing.
Array mountedVolumePathsIncludingResourceValuesForKeys(FileManager& fileManager,
                                                       const Array& keys = Array(),
                                                       UInteger options = 0);

// Removes each item directly in the folder whose creation date lies more than days whole
// days back (a folder with its tree), stopping silently at the first failure. errorValue
// only seeds the listing's error slot: a non-nil one stops the operation before anything
// is removed, and nothing is reported back. Raises NSInvalidArgumentException for a nil
// folder or 0 days.
void removeFilesInDirectoryAtURL(FileManager& fileManager, const URL& folder, UInteger days,
                                 const Error& errorValue = Error());

// The folder's visible items as URLs, ascending by NSURLCreationDateKey,
// NSURLAttributeModificationDateKey or NSURLNameKey. The path is read as a URL string, so
// "/Volumes/Media" works and a path with a space does not. Raises
// NSInvalidArgumentException for a nil path or another key.
std::optional<std::vector<URL>> contentsOfDirectoryAtPath(FileManager& fileManager,
                                                          const String& path, const String& sortKey,
                                                          Error* error = nullptr);

// Free size divided by total size as whole numbers (0, or 1 for an entirely free file
// system), and 0 whenever no error out-parameter is given.
float fillLevelOfFileSystemAtPath(FileManager& fileManager, const String& path,
                                  Error* error = nullptr);

// "<folder>/<prefix><n><suffix>" with n one more than the highest number found after the
// prefix in the folder's names (0 for none); the folder is made when missing and replaces
// a file in its place. nil, after a console line "ERROR: <reason>", when that fails.
String nextNumberedFilePathWithPrefix(FileManager& fileManager, const String& prefix,
                                      const String& suffix, const String& path);

// Makes the folder when nothing is at the path. When something is: true without looking
// at it, unless overwrite, which removes it first (the outcome read from *error, which
// must be empty on entry) and then makes the folder. Attributes: NSFilePosixPermissions
// and NSFileModificationDate are applied.
bool createDirectoryAtPath(FileManager& fileManager, const String& path, bool intermediates,
                           bool overwrite, const Dictionary& attributes = Dictionary(),
                           Error* error = nullptr);

// The longest leading part of the path that exists (a dangling link counts), tested with
// the default file manager; "" when not even the first component does. Raises
// NSInvalidArgumentException for a nil path.
String existingPathPrefixOfPath(FileManager& fileManager, const String& path);

// A folder is there, links followed.
bool directoryExistsAtPath(FileManager& fileManager, const String& path);
// Anything is there, a link itself counting (a dangling link too).
bool fileOrSymbolicLinkExistsAtPath(FileManager& fileManager, const String& path);

// The user's caches folder as a file URL; nil after an error-level log line when there is
// none.
URL cachesDirectory();
// The item's creation date (its birth time; the modification date where the file system
// records none); nothing when it cannot be read.
std::optional<Date> fileCreationDate(const URL& url,
                                     FileManager& fileManager = FileManager::defaultManager());

}  // namespace tarnvik
