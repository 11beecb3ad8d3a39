// Paths below an extraction's destination, opened one component at a time relative to
// the destination's descriptor and never through a symbolic link (O_NOFOLLOW on every
// step), so that no entry can write, link or date anything outside it. Relative paths use
// "/" only and hold no "." or ".." components (the caller refuses those first). Answers
// follow POSIX: 0 or -1 with errno. Not installed.
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

// An open folder below root, made (0777 less the mask) where missing; -1 with errno
// (ELOOP or ENOTDIR when a link or a file stands in the way).
int openFolder(int root, std::string_view relativeFolder, bool create);
// Opens the file for writing below root: created or truncated, never through a link.
int openFile(int root, std::string_view relativePath, bool create);
// Whether something (a link itself included) is at the path.
bool exists(int root, std::string_view relativePath);
int removeFile(int root, std::string_view relativePath);
int makeLink(int root, std::string_view relativePath, const std::string& target);
// Sets the access and modification time of the item itself.
int setTime(int root, std::string_view relativePath, const struct timespec& time);

}  // namespace tarnvik::beneath
