// DirectoryEnumerator: a deep walk of a folder tree through a file manager.
//
//   DirectoryEnumerator walk(fm, u"/Volumes/CARD/DCIM");
//   DirectoryItem item;
//   while (walk.nextItem(&item)) {
//     if (item.isDirectory() && item.name == u"THMBNL") walk.skipDescendants();
//   }
//
// Contract:
// - Depth first, each item before its children, every item at any depth below the root
//   (hidden items included); the root itself is not reported.
// - A symbolic link is reported as a link and never followed, also when it points at a
//   folder.
// - A folder's items are read in one pass when the walk enters it (just after the folder
//   itself was reported), so every item present at that moment is reported exactly once,
//   even while the caller moves items out of the folder or adds new ones to it.
// - A folder that cannot be read is handed to the error handler with the file manager's
//   error; the walk goes on with the folder's next sibling when the handler returns true
//   and ends when it returns false. Without a handler the walk goes on.
#pragma once

#include <functional>
#include <vector>

#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik {

struct DirectoryItem {
  String path;          // the root path joined with the relative path
  String relativePath;  // below the root, "/"-separated
  String name;
  FileType type = FileType::Other;
  UInteger level = 0;  // 1 for the root's own items
  bool isDirectory() const { return type == FileType::Directory; }
};

class DirectoryEnumerator {
 public:
  using ErrorHandler = std::function<bool(const String& path, const Error& error)>;

  DirectoryEnumerator(FileManager& fileManager, const String& root,
                      ErrorHandler errorHandler = ErrorHandler());

  // The next item; false at the end of the walk.
  bool nextItem(DirectoryItem* item);
  // Leaves out the items below the folder nextItem reported last.
  void skipDescendants() { enterPending_ = false; }

 private:
  struct Level {
    String path;
    String relativePath;
    std::vector<DirectoryEntry> entries;
    std::size_t next = 0;
  };
  bool enter(const String& path, const String& relativePath);

  FileManager& fileManager_;
  ErrorHandler errorHandler_;
  std::vector<Level> levels_;
  DirectoryItem last_;
  bool enterPending_ = false;
  bool stopped_ = false;
};

}  // namespace tarnvik
