// Paths below an extraction's destination, opened one component at a time relative to the
// destination's descriptor and never through a symbolic link (O_NOFOLLOW on every step),
// so that no entry can write, link or date anything outside it. Relative paths use "/"
// only and hold no ".." components (the caller refuses those first). Answers follow POSIX:
// 0 or -1 with errno. Not installed.
#pragma once

#include <time.h>

#include <string>
#include <string_view>

namespace tarnvik::beneath {

// Whether the entry name leaves the destination: an absolute name, a drive letter ("C:"),
// or a ".." component.
bool escapes(std::string_view name);
// Whether a link at linkPath (relative to the destination) with this target resolves,
// lexically, to a place inside the destination.
bool linkStaysInside(std::string_view linkPath, std::string_view target);

class Destination {
 public:
  // Takes the open folder descriptor over.
  explicit Destination(int root) : root_(root) {}
  ~Destination();
  Destination(const Destination&) = delete;
  Destination& operator=(const Destination&) = delete;

  bool isOpen() const { return root_ >= 0; }
  // The folder below the root, made (0777 less the mask) where missing, as a descriptor
  // the destination keeps (the last one is cached, as entries come folder by folder);
  // -1 with errno (ELOOP or ENOTDIR when a link or a file stands in the way).
  int folder(std::string_view relativeFolder, bool create);
  // Opens the file for writing: created or truncated, never through a link. The caller
  // closes it.
  int openFile(std::string_view relativePath);
  // Whether something (a link itself included) is at the path.
  bool exists(std::string_view relativePath);
  int removeFile(std::string_view relativePath);
  int makeLink(std::string_view relativePath, const std::string& target);
  // Sets the access and modification time of the item itself.
  int setTime(std::string_view relativePath, const struct timespec& time);

 private:
  // The folder holding the last component, and that component.
  int parentOf(std::string_view path, bool create, std::string* last);

  int root_;
  std::string cachedPath_;
  int cachedFolder_ = -1;
};

}  // namespace tarnvik::beneath
