#include "tarnvik/platform/base/directory_enumerator.hpp"

namespace tarnvik {

DirectoryEnumerator::DirectoryEnumerator(FileManager& fileManager, const String& root,
                                         ErrorHandler errorHandler)
    : fileManager_(fileManager), errorHandler_(std::move(errorHandler)) {
  enter(root, String(u""));
}

bool DirectoryEnumerator::enter(const String& path, const String& relativePath) {
  Level level{path, relativePath, {}, 0};
  if (Error error; !fileManager_.entriesOfDirectoryAtPath(path, &level.entries, &error)) {
    if (errorHandler_ && !errorHandler_(path, error)) stopped_ = true;
    return false;
  }
  levels_.push_back(std::move(level));
  return true;
}

bool DirectoryEnumerator::nextItem(DirectoryItem* item) {
  if (enterPending_) {
    enterPending_ = false;
    enter(last_.path, last_.relativePath);
  }
  while (!stopped_ && !levels_.empty()) {
    Level& level = levels_.back();
    if (level.next == level.entries.size()) {
      levels_.pop_back();
      continue;
    }
    DirectoryEntry& entry = level.entries[level.next++];
    last_.name = std::move(entry.name);
    last_.type = entry.type;
    last_.level = levels_.size();
    last_.path = level.path.stringByAppendingPathComponent(last_.name);
    last_.relativePath = level.relativePath.isEmpty()
                             ? last_.name
                             : level.relativePath.stringByAppendingPathComponent(last_.name);
    enterPending_ = last_.isDirectory();
    if (item) *item = last_;
    return true;
  }
  levels_.clear();
  return false;
}

}  // namespace tarnvik
