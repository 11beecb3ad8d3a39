#include "tarnvik/fs/directory_transfer.hpp"

#include <chrono>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/fs/housekeeping.hpp"
#include "tarnvik/fs/internal/texts.hpp"
#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tarnvik/platform/net/url.hpp"
#include "tarnvik/text/unique_names.hpp"

namespace tarnvik {

namespace {

const String kDSStore(u".DS_Store");

// Counts and reports what a transfer has done, no more often than the interval asks.
class ProgressReporter {
 public:
  ProgressReporter(FileManager& fileManager, const String& source, const TransferOptions& options)
      : options_(options) {
    if (!options_.progress) return;
    DirectoryEnumerator walk(fileManager, source);
    DirectoryItem item;
    while (walk.nextItem(&item)) {
      if (item.isDirectory() || item.name == kDSStore) continue;
      ++progress_.itemsTotal;
      FileAttributes attributes;
      if (item.type == FileType::Regular &&
          fileManager.attributesOfItemAtPath(item.path, false, &attributes)) {
        progress_.bytesTotal += attributes.size;
      }
    }
  }

  bool start() { return report(true); }
  // One item handled; false when the callback cancels.
  bool itemDone(const DirectoryItem& item, UInteger bytes) {
    if (!options_.progress) return true;
    ++progress_.itemsDone;
    progress_.bytesDone += bytes;
    progress_.currentPath = item.path;
    progress_.currentType = item.type;
    return report(progress_.itemsDone == progress_.itemsTotal);
  }
  bool finish() { return progress_.itemsDone == progress_.itemsTotal || report(true); }

 private:
  bool report(bool always) {
    if (!options_.progress) return true;
    const auto now = std::chrono::steady_clock::now();
    if (!always && now - last_ < options_.progressInterval) return true;
    last_ = now;
    return options_.progress(progress_);
  }

  const TransferOptions& options_;
  TransferProgress progress_;
  std::chrono::steady_clock::time_point last_{};
};

// The size a regular file adds to the bytes done.
UInteger bytesOf(FileManager& fileManager, const DirectoryItem& item, bool counting) {
  FileAttributes attributes;
  if (!counting || item.type != FileType::Regular ||
      !fileManager.attributesOfItemAtPath(item.path, false, &attributes)) {
    return 0;
  }
  return attributes.size;
}

// A move's clean-up when items were skipped: removes ".DS_Store" files and folders left
// empty, keeps everything else. false with the removal's error when something that should
// go cannot.
bool removeLeftovers(FileManager& fileManager, const String& folder, bool isRoot, Error* error) {
  std::vector<DirectoryEntry> entries;
  if (!fileManager.entriesOfDirectoryAtPath(folder, &entries, error)) return false;
  bool empty = true;
  for (const DirectoryEntry& entry : entries) {
    const String path = folder.stringByAppendingPathComponent(entry.name);
    if (entry.type == FileType::Directory) {
      if (!removeLeftovers(fileManager, path, false, error)) return false;
      if (fileManager.itemExistsAtPath(path)) empty = false;
    } else if (entry.name == kDSStore) {
      if (!fileManager.removeItemAtPath(path, error)) return false;
    } else {
      empty = false;
    }
  }
  return isRoot || !empty || fileManager.removeItemAtPath(folder, error);
}

}  // namespace

bool transferContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                       const String& destination, const TransferOptions& options,
                                       Error* error) {
  const String from = source.stringByStandardizingPath();
  const String to = destination.stringByStandardizingPath();
  if (!sanityCheckDirectoryPath(fileManager, from, error) ||
      !sanityCheckDirectoryPath(fileManager, to, error)) {
    return false;
  }
  auto fail = [&](Error failure) {
    if (error) *error = std::move(failure);
    return false;
  };
  ProgressReporter reporter(fileManager, from, options);
  const Error cancelled = errorWithDomain(
      NSCocoaErrorDomain, NSUserCancelledError,
      stringWithFormat(fs_texts::localized(u"The transfer from %@ to %@ was cancelled"), from, to));
  if (!reporter.start()) return fail(cancelled);

  DirectoryEnumerator walk(fileManager, from, [&](const String& path, const Error& underlying) {
    if (error) {
      *error = fs_texts::error(1, underlying, u"Could not enumerate path %@",
                               URL::fileURLWithPath(path).absoluteString());
    }
    return false;
  });
  const bool counting = static_cast<bool>(options.progress);
  bool skippedAny = false;
  DirectoryItem item;
  while (walk.nextItem(&item)) {
    if (item.name == kDSStore) continue;
    String target = to.stringByAppendingPathComponent(item.relativePath);
    if (item.isDirectory()) {
      if (directoryExistsAtPath(fileManager, target)) continue;
      if (Error underlying; !fileManager.createDirectoryAtPath(target, true, &underlying)) {
        return fail(
            fs_texts::error(1, underlying, u"Could not create directory at path %@", target));
      }
      continue;
    }
    switch (options.conflict) {
      case TransferConflict::Fail:
        break;
      case TransferConflict::Overwrite: {
        bool isDirectory = false;
        if (fileManager.fileExistsAtPath(target, &isDirectory) && !isDirectory) {
          if (Error underlying; !fileManager.removeItemAtPath(target, &underlying)) {
            return fail(fs_texts::error(1, underlying,
                                        u"Could not delete existing directory at path %@", target));
          }
        }
        break;
      }
      case TransferConflict::Skip:
        if (fileManager.itemExistsAtPath(target)) {
          skippedAny = true;
          if (!reporter.itemDone(item, bytesOf(fileManager, item, counting))) {
            return fail(cancelled);
          }
          continue;
        }
        break;
      case TransferConflict::KeepBoth:
        if (fileManager.itemExistsAtPath(target)) target = uniquifyFilePath(target, fileManager);
        break;
    }
    const UInteger bytes = bytesOf(fileManager, item, counting);
    Error underlying;
    const bool placed = options.copy ? fileManager.copyItemAtPath(item.path, target, &underlying)
                                     : fileManager.moveItemAtPath(item.path, target, &underlying);
    if (!placed) {
      return fail(fs_texts::error(1, underlying, u"Could not move item from path %@ to path %@",
                                  item.path, target));
    }
    if (!reporter.itemDone(item, bytes)) return fail(cancelled);
  }
  if (!reporter.finish()) return fail(cancelled);
  if (!options.copy) {
    Error underlying;
    const bool emptied = skippedAny
                             ? removeLeftovers(fileManager, from, true, &underlying)
                             : removeContentsOfDirectoryAtPath(fileManager, from, &underlying);
    if (!emptied) {
      return fail(
          fs_texts::error(1, underlying, u"Could not remove contents of directory %@", from));
    }
  }
  return true;
}

bool transferContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                       const String& destination, bool overwrite, Error* error,
                                       bool copy) {
  TransferOptions options;
  options.copy = copy;
  options.conflict = overwrite ? TransferConflict::Overwrite : TransferConflict::Fail;
  return transferContentsOfDirectoryAtPath(fileManager, source, destination, options, error);
}

bool copyContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, bool overwrite, Error* error) {
  return transferContentsOfDirectoryAtPath(fileManager, source, destination, overwrite, error,
                                           true);
}

bool copyContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, Error* error) {
  return copyContentsOfDirectoryAtPath(fileManager, source, destination, false, error);
}

bool copyContentsOfDirectoryAtPathToDirectoryAtPathRemovingDestinationContents(
    FileManager& fileManager, const String& source, const String& destination, bool removeContents,
    Error* error) {
  if (removeContents && !removeContentsOfDirectoryAtPath(fileManager, destination, error)) {
    return false;
  }
  return copyContentsOfDirectoryAtPath(fileManager, source, destination, error);
}

bool moveContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, bool overwrite, Error* error) {
  return transferContentsOfDirectoryAtPath(fileManager, source, destination, overwrite, error,
                                           false);
}

bool moveContentsOfDirectoryAtPath(FileManager& fileManager, const String& source,
                                   const String& destination, Error* error) {
  return moveContentsOfDirectoryAtPath(fileManager, source, destination, false, error);
}

bool removeContentsOfDirectoryAtPath(FileManager& fileManager, const String& path, Error* error) {
  if (path.isNil()) raiseInvalidArgument(fs_texts::localized(u"Directory path must not be nil"));
  Error underlying;
  const Array names = fileManager.contentsOfDirectoryAtPath(path, &underlying);
  if (names.isNil()) {
    if (error) {
      *error =
          fs_texts::error(2, underlying, u"Could not query contents of directory at path %@", path);
    }
    return false;
  }
  for (const Value& name : names) {
    const String child = path.stringByAppendingPathComponent(name.asString());
    if (!fileManager.removeItemAtPath(child, &underlying)) {
      if (error)
        *error = fs_texts::error(2, underlying, u"Could not remove item at path %@", child);
      return false;
    }
  }
  return true;
}

bool sanityCheckDirectoryPath(FileManager& fileManager, const String& path, Error* error) {
  // A nil path is refused by the existence test below rather than by an exception.
  bool isDirectory = false;
  if (fileManager.fileExistsAtPath(path, &isDirectory)) {
    if (isDirectory) return true;
    if (error) *error = fs_texts::error(4, Error(), u"Path %@ is not a folder", path);
    return false;
  }
  if (error) *error = fs_texts::error(3, Error(), u"Path %@ does not exist", path);
  return false;
}

bool copyItemAtPath(FileManager& fileManager, const String& source, const String& destination,
                    bool shouldOverride, Error* error) {
  if (!shouldOverride) return fileManager.copyItemAtPath(source, destination, error);
  // One flag serves both tests: it ends up telling the destination's kind when something
  // is there, and otherwise still the source's.
  bool isDirectory = false;
  if (!fileManager.fileExistsAtPath(source, &isDirectory)) return false;
  if (fileManager.fileExistsAtPath(destination, &isDirectory) && !isDirectory) {
    fileManager.removeItemAtPath(destination);
  }
  if (isDirectory) return false;
  fileManager.copyItemAtPath(source, destination);
  return true;
}

}  // namespace tarnvik
