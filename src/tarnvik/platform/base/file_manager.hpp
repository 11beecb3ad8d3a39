// FileManager: the one door to the file system. Every file-system access of the library
// goes through one of its primitives, which are virtual so that a host or a test can put a
// manager that fails on cue in its place; FileManager::defaultManager() is the shared real
// one, built on POSIX.
//
//   FileManager& fm = FileManager::defaultManager();
//   Data bytes = fm.contentsAtPath(u"/Volumes/Media/clip.mov", NSDataReadingMappedIfSafe);
//
// Failures: each primitive that can fail returns false, nil or an empty handle and, when
// the caller passes an Error*, writes an Error in NSCocoaErrorDomain whose user info holds
// the path under NSFilePathErrorKey and the POSIX error (NSPOSIXErrorDomain, errno as
// its code) under NSUnderlyingErrorKey. The codes are those of errorFor().
//
// Threads: the default manager keeps no state between calls; every primitive may be called
// from several threads at once. Two calls on the same path race as the system calls do.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

inline constexpr char16_t NSFilePathErrorKey[] = u"NSFilePath";
inline constexpr char16_t NSPOSIXErrorDomain[] = u"NSPOSIXErrorDomain";

// The platform's file error codes in NSCocoaErrorDomain.
enum FileErrorCode : Integer {
  NSFileNoSuchFileError = 4,
  NSFileReadUnknownError = 256,
  NSFileReadNoPermissionError = 257,
  NSFileReadInvalidFileNameError = 258,
  NSFileReadNoSuchFileError = 260,
  NSFileReadTooLargeError = 263,
  NSFileWriteUnknownError = 512,
  NSFileWriteNoPermissionError = 513,
  NSFileWriteInvalidFileNameError = 514,
  NSFileWriteFileExistsError = 516,
  NSFileWriteOutOfSpaceError = 640,
  NSFileWriteVolumeReadOnlyError = 642,
};

// Keys of an item's attribute dictionary (setAttributes).
inline constexpr char16_t NSFileModificationDate[] = u"NSFileModificationDate";
inline constexpr char16_t NSFileCreationDate[] = u"NSFileCreationDate";
inline constexpr char16_t NSFilePosixPermissions[] = u"NSFilePosixPermissions";

// What a path names.
enum class FileType : std::uint8_t { Regular, Directory, SymbolicLink, Other };

// The attributes of one item, as lstat or stat report them.
struct FileAttributes {
  FileType type = FileType::Other;
  UInteger size = 0;
  Date modificationDate;
  // The birth time where the file system records it (statx); the modification date where
  // it does not. It cannot be set on Linux.
  Date creationDate;
  Date accessDate;
  // When the item's attributes last changed (ctime).
  Date statusChangeDate;
  // The permission bits (07777).
  std::uint32_t permissions = 0;
  UInteger deviceIdentifier = 0;
  UInteger fileNumber = 0;
  UInteger linkCount = 0;
  bool isDirectory() const { return type == FileType::Directory; }
};

// One item of a folder: its name and what it is itself (a link is a link).
struct DirectoryEntry {
  String name;
  FileType type = FileType::Other;
};

// The statistics of the file system holding a path.
struct FileSystemAttributes {
  UInteger size = 0;      // bytes
  UInteger freeSize = 0;  // bytes available to an unprivileged user
  UInteger blockSize = 0;
  // The type as the mount table names it ("ext4", "exfat", "nfs4"), or "" when unknown.
  String type;
  bool readOnly = false;
};

// What a failed primitive was doing; it chooses the error code (see errorFor()).
enum class FileOperation : std::uint8_t { Read, Write, Remove, Move, Copy, Create, Link };

// An open file, for reading or for writing; closes itself (without reporting) when it goes
// out of scope.
class FileHandle {
 public:
  FileHandle() = default;
  FileHandle(int descriptor, String path) : descriptor_(descriptor), path_(std::move(path)) {}
  FileHandle(FileHandle&& other) noexcept;
  FileHandle& operator=(FileHandle&& other) noexcept;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle();

  bool isOpen() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }
  const String& path() const { return path_; }
  // Gives the descriptor up without closing it.
  int release();

 private:
  int descriptor_ = -1;
  String path_;
};

class FileManager {
 public:
  FileManager() = default;
  virtual ~FileManager() = default;
  FileManager(const FileManager&) = delete;
  FileManager& operator=(const FileManager&) = delete;

  static FileManager& defaultManager();

  // The error a primitive reports for a POSIX error: for Read, 260 (no such file or not a
  // folder), 257 (no permission), 258 (name too long), 263 (too large) or 256; for Write,
  // 640 (no space), 513 (no permission) or 512; for the other operations, 4 (no such
  // file), 516 (something exists there), 513 (no permission), 640 (no space), 642
  // (read-only volume), 514 (name too long) or 512.
  static Error errorFor(FileOperation operation, const String& path, int posixError);

  // ---- Existence, kind and attributes ----

  // The item's attributes; with followLinks the link's target is described, otherwise the
  // link itself. false on failure (code 260 for a missing item).
  virtual bool attributesOfItemAtPath(const String& path, bool followLinks, FileAttributes* out,
                                      Error* error = nullptr);
  // Whether something exists at the path (links followed); *isDirectory tells whether it
  // is a folder. false for nil and "".
  virtual bool fileExistsAtPath(const String& path, bool* isDirectory = nullptr);
  // The same for the item itself: a dangling link exists.
  bool itemExistsAtPath(const String& path, FileType* type = nullptr);

  // ---- Folders ----

  // The names in the folder (hidden ones included, "." and ".." not), in the order the
  // system lists them. nil on failure (Read codes).
  virtual Array contentsOfDirectoryAtPath(const String& path, Error* error = nullptr);
  // The folder's items with their kinds, "." and ".." left out, in the order the system
  // lists them: one pass over the folder, with a stat only where the file system does not
  // give the kind. false on failure (Read codes); *out then holds nothing.
  virtual bool entriesOfDirectoryAtPath(const String& path, std::vector<DirectoryEntry>* out,
                                        Error* error = nullptr);
  // Creates the folder, and with intermediates every missing folder above it (an existing
  // folder is then no failure). Create codes.
  virtual bool createDirectoryAtPath(const String& path, bool intermediates,
                                     Error* error = nullptr);

  // ---- Whole files ----

  // The file's bytes, mapped into memory with NSDataReadingMappedIfSafe or
  // NSDataReadingMappedAlways (a mapped file must not be truncated while the Data lives),
  // read otherwise. nil on failure (Read codes).
  virtual Data contentsAtPath(const String& path, UInteger options = 0, Error* error = nullptr);
  // Writes the bytes to the file. Atomically, they go to a temporary file beside it that is
  // written, flushed to the disk and renamed into place, so that the old file stays whole
  // until the new one is complete, and no temporary file is left behind after a failure.
  // Built on the handle primitives below. Write codes.
  bool writeDataToPath(const Data& data, const String& path, bool atomically,
                       Error* error = nullptr);
  // The same steps for bytes made piece by piece: `write` writes them to the open file
  // (with writeBytes) and answers false, with the error, to give up.
  bool writeFileToPath(const String& path, bool atomically,
                       const std::function<bool(FileHandle& file, Error* error)>& write,
                       Error* error = nullptr);

  // ---- Open files (the steps of a streamed read or write) ----

  // The file opened for reading, to be read from the start in blocks. Read codes.
  virtual FileHandle openFileForReadingAtPath(const String& path, Error* error = nullptr);
  // Reads up to capacity bytes into the buffer, going on after interrupted reads, and sets
  // *bytesRead (0 at the end of the file). Read codes.
  virtual bool readBytes(FileHandle& file, void* buffer, UInteger capacity, UInteger* bytesRead,
                         Error* error = nullptr);

  // A new, empty file beside the path with a unique name and the permissions a new file
  // gets (0666 less the process's mask). Write codes.
  virtual FileHandle createTemporaryFileNearPath(const String& path, Error* error = nullptr);
  // The file opened for writing, created (0666 less the mask) or truncated. Write codes.
  virtual FileHandle openFileForWritingAtPath(const String& path, Error* error = nullptr);
  // Writes all the bytes, going on after interrupted and short writes. Write codes.
  virtual bool writeBytes(FileHandle& file, const void* bytes, UInteger length,
                          Error* error = nullptr);
  // Flushes the file's bytes to the disk (fsync). Write codes.
  virtual bool synchronizeFile(FileHandle& file, Error* error = nullptr);
  // Closes the file; a failure means bytes may not have been written. Write codes.
  virtual bool closeFile(FileHandle& file, Error* error = nullptr);

  // ---- Moving, copying, removing ----

  // rename(2): the item takes the new name, replacing a file there, on the same volume
  // only. Move codes.
  virtual bool renameItemAtPath(const String& path, const String& toPath, Error* error = nullptr);
  // Moves the item; fails with 516 when something exists at the destination. A rename
  // where it can, else (across volumes) a copy followed by removal of the source. Move
  // codes.
  virtual bool moveItemAtPath(const String& path, const String& toPath, Error* error = nullptr);
  // Copies a file with its permissions and dates, a link as a link, and a folder with its
  // whole contents; fails with 516 when something exists at the destination. Copy codes. A
  // file that fails part-way is removed; a folder keeps what was copied before the failure.
  // A file's bytes take the fastest way the two file systems allow: a shared-extent clone
  // (FICLONE), an in-kernel copy (copy_file_range, then sendfile), else reads and writes
  // of 1 MiB.
  virtual bool copyItemAtPath(const String& path, const String& toPath, Error* error = nullptr);
  // Removes a file, a link (not its target) or a folder with everything in it. Remove
  // codes; a folder whose contents were partly removed stays with the rest. The default
  // manager walks a folder by descriptor; a subclass sees the removal of every item inside
  // it as a call of its own removeItemAtPath.
  virtual bool removeItemAtPath(const String& path, Error* error = nullptr);

  // ---- Links, dates, permissions, real paths ----

  // A symbolic link at path whose target is the text destination. Link codes.
  virtual bool createSymbolicLinkAtPath(const String& path, const String& destination,
                                        Error* error = nullptr);
  // The text of the link; nil when the path is no link (Read codes).
  virtual String destinationOfSymbolicLinkAtPath(const String& path, Error* error = nullptr);
  // Sets the modification and access dates of the item (a link's target). Write codes.
  virtual bool setModificationDate(const String& path, Date date, Error* error = nullptr);
  // Sets the permission bits (07777) of the item. Write codes.
  virtual bool setPosixPermissions(const String& path, std::uint32_t permissions,
                                   Error* error = nullptr);
  // Applies the attributes of the dictionary the system can set: NSFileModificationDate
  // (a Date) and NSFilePosixPermissions (a number). NSFileCreationDate cannot be set on
  // Linux and is left out; other keys are ignored. Stops at the first failure.
  bool setAttributes(const Dictionary& attributes, const String& path, Error* error = nullptr);
  // The absolute path with every link resolved (realpath(3)); nil when any part of it does
  // not exist (Read codes).
  virtual String realPathOfItemAtPath(const String& path, Error* error = nullptr);

  // ---- Volumes and file systems ----

  // The mount points that count as volumes, in the order the system lists them: "/" and
  // every mount of a block device or of a disk, optical, network or FUSE block file system;
  // pseudo file systems (proc, sysfs, cgroup, tmpfs, devpts, overlay, squashfs images, ...)
  // and mounts below /proc, /sys and /dev are left out.
  virtual Array mountedVolumePaths();
  // The size, free space and type of the file system holding the path (statvfs and the
  // mount table). Read codes.
  virtual bool fileSystemAttributesAtPath(const String& path, FileSystemAttributes* out,
                                          Error* error = nullptr);

  // ---- Well-known folders ----

  // getcwd; nil when it fails.
  virtual String currentDirectoryPath();
  // $TMPDIR, else "/tmp", without a trailing "/".
  virtual String temporaryDirectory();
  // The user's home folder: $HOME for the current user, else the password database;
  // another user's from the password database. nil for an unknown user.
  virtual String homeDirectoryForUser(const String& user = String());
  // $XDG_CACHE_HOME, else "~/.cache".
  virtual String cachesDirectory();

 private:
  bool copyFile(const String& path, const String& toPath, const FileAttributes& source,
                Error* error);
  bool removeFolderContents(const String& path, Error* error);
};

// The volumes of a mount table in the text form of /proc/self/mountinfo, by the rule of
// FileManager::mountedVolumePaths(). Exposed so the rule can be tested on any table.
Array volumePathsFromMountInfo(std::string_view mountInfo);
// The file-system type of the mount whose device is major:minor in such a table; "" when
// no line names it.
String fileSystemTypeFromMountInfo(std::string_view mountInfo, unsigned major, unsigned minor);

}  // namespace tarnvik
