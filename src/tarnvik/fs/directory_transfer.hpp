// Copying and moving the contents of one folder into another, merging with what the
// destination holds; emptying a folder; copying one item over an existing file.
//
//   Error error;
//   FileManager& fm = FileManager::defaultManager();
//   if (!copyContentsOfDirectoryAtPath(fm, u"/media/CARD/DCIM", u"/srv/Day01", &error))
//     std::cerr << error.description() << '\n';
//
//   TransferOptions options;                       // progress, cancel, conflicts
//   options.conflict = TransferConflict::Skip;
//   options.progress = [](const TransferProgress& p) { show(p); return !cancelled; };
//   transferContentsOfDirectoryAtPath(fm, card, backup, options, &error);
//
// Errors are in KFErrorDomainTarnvikExtensions: code 1 for a failed step of a transfer,
// 2 for a failed emptying, 3 for a missing folder, 4 for a path that is no folder, each
// with the file manager's error underneath where there is one. A cancelled transfer
// reports NSUserCancelledError in NSCocoaErrorDomain.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik {

// What a transfer does with a file (or link) whose target path is taken.
enum class TransferConflict : std::uint8_t {
  Fail,       // the copy or move fails on it and the transfer stops (overwrite NO)
  Overwrite,  // a file there is removed first; a folder there still fails (overwrite YES)
  Skip,       // the item is left where it is; a move then keeps it in the source
  KeepBoth,   // the item goes beside it under a free numbered name ("clip 1.mov")
};

struct TransferProgress {
  UInteger itemsDone = 0;   // files and links placed or skipped so far
  UInteger itemsTotal = 0;  // files and links in the source (".DS_Store" left out)
  UInteger bytesDone = 0;   // bytes of the regular files among them
  UInteger bytesTotal = 0;
  String currentPath;                      // the source item just handled
  FileType currentType = FileType::Other;  // what it is itself (a link is a link)
};

struct TransferOptions {
  bool copy = true;  // false moves
  TransferConflict conflict = TransferConflict::Fail;
  // Called before the first item, then at most once per interval, and after the last
  // item; returning false cancels. With a callback the source is walked once beforehand
  // for the totals.
  std::function<bool(const TransferProgress&)> progress;
  std::chrono::milliseconds progressInterval{100};
};

// The one transfer algorithm. Both paths are standardized, and both must be existing
// folders (codes 3 and 4). Every item below the source is taken in depth-first order:
// items named ".DS_Store" are skipped; a folder is made at the target unless one exists
// there (merging); any other item is copied or moved to its target after the conflict
// policy had its say. A failed step stops the transfer (code 1) and leaves what was done.
// A folder that cannot be read sets code 1 ("Could not enumerate path <URL>") but ends
// only the walk: the result can be true with the error set. A move then empties the source
// (what is left are folders and ".DS_Store" files), keeping the source folder itself and,
// under the Skip policy, the skipped items and the folders above them.
bool transferContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                       const String& destination, const TransferOptions& options,
                                       Error* error = nullptr);
// The transfer with the conflict policy Overwrite (overwrite) or Fail, copying or moving.
bool transferContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                       const String& destination, bool overwrite, Error* error,
                                       bool copy);

bool copyContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, bool overwrite,
                                   Error* error = nullptr);
bool copyContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, Error* error = nullptr);
// With removeContents, first empties the destination (stopping with its error when that
// fails); then copies without overwriting.
bool copyContentsOfDirectoryAtPathToDirectoryAtPathRemovingDestinationContents(
    FileManager& fileManager, const String& source, const String& destination, bool removeContents,
    Error* error = nullptr);
bool moveContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, bool overwrite,
                                   Error* error = nullptr);
bool moveContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, Error* error = nullptr);

// Removes every item in the folder, in listing order, keeping the folder; stops at the
// first failure (code 2). Raises NSInvalidArgumentException for a nil path.
bool removeContentsOfDirectoryAtPath(FileManager& fileManager, const String& path,
                                     Error* error = nullptr);

// true when the path is a folder (links followed); otherwise code 4 (something else is
// there) or 3 (nothing is, also for a nil path, which raises nothing).
bool sanityCheckDirectoryPath(FileManager& fileManager, const String& path, Error* error = nullptr);

// Without override, the file manager's copy. With override: false (no error) for a
// missing source; a file (not a folder) at the destination is removed, failures
// ignored; then false when the destination is a folder or, with nothing there, when the
// source is one; otherwise the copy is made and the answer is true even when it failed.
bool copyItemAtPath(FileManager& fileManager, const String& source, const String& destination,
                    bool shouldOverride, Error* error = nullptr);

}  // namespace tarnvik
