// A fast one-level folder reader on opendir/readdir for large card and volume folders:
// bare names or CFIFile records, existence, kind and size tests, and two callbacks for
// ftw(3) that total up file counts and sizes.
//
//   auto files = directoryFilesAtPathCFI(u"/media/CARD/DCIM/100CANON");
//   for (const Value& v : files) v.asObject<CFIFile>()->path();
//
// These read the file system directly rather than through a FileManager: their calls
// are fixed, and a scan of 100,000 names must cost little more than readdir itself.
#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

// What one scan made: its names and the memory of its records, released with the last
// of them.
struct CFIScanArena;

// One entry of a folder: its full path and two kind flags. A record made by a scan builds
// its path on first use; path is guarded, so it may be read and set from several threads.
class CFIFile : public Object {
 public:
  CFIFile() = default;
  CFIFile(String path, bool isDirectory, bool isSymbolicLink)
      : path_(std::move(path)), isDirectory_(isDirectory), isSymbolicLink_(isSymbolicLink) {}
  // A record of a scan: the name is bytes [offset, offset + length) of the scan's names.
  // The scan's arena outlives the record, whose memory it holds.
  CFIFile(const CFIScanArena* scan, std::uint32_t offset, std::uint32_t length, bool isDirectory,
          bool isSymbolicLink)
      : scan_(scan),
        nameOffset_(offset),
        nameLength_(length),
        isDirectory_(isDirectory),
        isSymbolicLink_(isSymbolicLink) {}

  String path() const;
  void setPath(String path);
  bool isDirectory() const { return isDirectory_; }
  void setIsDirectory(bool value) { isDirectory_ = value; }
  bool isSymbolicLink() const { return isSymbolicLink_; }
  void setIsSymbolicLink(bool value) { isSymbolicLink_ = value; }

  // "<CFIFile: 0x...> - path: <path> is Directory: 0|1" (localizable, table "FileManager").
  String description() const override;

  TARNVIK_CLASS(CFIFile)

 private:
  // Guards path_ and names_: a one-byte lock, as records come by the hundred thousand.
  class PathLock {
   public:
    void lock() const {
      while (flag_.test_and_set(std::memory_order_acquire))
        flag_.wait(true, std::memory_order_relaxed);
    }
    void unlock() const {
      flag_.clear(std::memory_order_release);
      flag_.notify_one();
    }

   private:
    mutable std::atomic_flag flag_;
  };
  PathLock mutex_;
  mutable String path_;
  mutable const CFIScanArena* scan_ = nullptr;
  std::uint32_t nameOffset_ = 0;
  std::uint32_t nameLength_ = 0;
  bool isDirectory_ = false;
  bool isSymbolicLink_ = false;
};

// access(2) with F_OK works.
bool existsCFI(const String& path);
// stat(2), links followed, says folder; an error-level log line when stat fails.
bool isDirectoryCFI(const String& path);
// stat(2) says link. stat follows links, so this is never true: a link to an existing
// item answers false and a dangling one fails stat (an error-level log line).
bool isSymbolicLinkCFI(const String& path);
// The size in bytes. By the user default "filesizeCFIMethod" (read once per process):
// 1 takes stat's size unchecked (0 after a failure); any other value the logical size of
// a regular file (links followed), 0 for anything else or a failure.
std::uint64_t filesizeCFI(const String& path);

// The folder's entries as CFIFile records in readdir order ("." and "..", empty names
// and names that are not UTF-8 left out); nil, after an error-level log line, when the
// folder cannot be opened. Kinds come from the entry's type, asking stat only when the
// file system leaves it unknown.
Array directoryFilesAtPathCFI(const String& path);
// The entries' names, with omitFolders leaving out folders (links stay); an empty array,
// after an error-level log line, when the folder cannot be opened.
Array directoryContentsAtPathCFI(const String& path, bool omitFolders = false);

}  // namespace tarnvik

// Totals for the ftw(3) callbacks below; the caller resets and reads them.
extern "C" {
extern std::int32_t __cfi_total_file_count;  // NOLINT(bugprone-reserved-identifier)
extern std::int32_t __cfi_total_file_size;   // NOLINT(bugprone-reserved-identifier)
// Adds 1 for each plain file (FTW_F); always 0, so the walk goes on.
int process_total_file_count(const char* path, const struct stat* info, int flag);
// Adds the low 32 bits of each plain file's size, wrapping; always 0.
int process_total_file_size(const char* path, const struct stat* info, int flag);
}
