#include "tarnvik/zip/internal/beneath.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace tarnvik::beneath {

namespace {

std::vector<std::string_view> componentsOf(std::string_view path) {
  std::vector<std::string_view> parts;
  while (!path.empty()) {
    const std::size_t slash = path.find('/');
    const std::string_view part = path.substr(0, slash);
    if (!part.empty() && part != ".") parts.push_back(part);
    if (slash == std::string_view::npos) break;
    path.remove_prefix(slash + 1);
  }
  return parts;
}

// The components joined again, so that "a//b/./c/" and "a/b/c" share one cache entry.
std::string normalized(std::string_view path) {
  std::string joined;
  for (const std::string_view part : componentsOf(path)) {
    if (!joined.empty()) joined += '/';
    joined.append(part);
  }
  return joined;
}

}  // namespace

bool escapes(std::string_view name) {
  if (name.starts_with('/')) return true;
  if (name.size() >= 2 && name[1] == ':' &&
      ((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= 'a' && name[0] <= 'z'))) {
    return true;
  }
  for (const std::string_view part : componentsOf(name)) {
    if (part == "..") return true;
  }
  return false;
}

bool linkStaysInside(std::string_view linkPath, std::string_view target) {
  if (target.empty() || target.starts_with('/')) return false;
  std::vector<std::string_view> place = componentsOf(linkPath);
  if (!place.empty()) place.pop_back();  // the link's own name
  for (const std::string_view part : componentsOf(target)) {
    if (part == "..") {
      if (place.empty()) return false;
      place.pop_back();
    } else {
      place.push_back(part);
    }
  }
  return true;
}

Destination::~Destination() {
  if (cachedFolder_ >= 0) ::close(cachedFolder_);
  if (root_ >= 0) ::close(root_);
}

int Destination::folder(std::string_view relativeFolder, bool create) {
  const std::string wanted = normalized(relativeFolder);
  if (cachedFolder_ >= 0 && wanted == cachedPath_) return cachedFolder_;
  int current = ::dup(root_);
  if (current < 0) return -1;
  for (const std::string_view part : componentsOf(wanted)) {
    const std::string name(part);
    if (part == "..") {
      ::close(current);
      errno = EPERM;
      return -1;
    }
    int next = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (next < 0 && errno == ENOENT && create) {
      if (::mkdirat(current, name.c_str(), 0777) == 0 || errno == EEXIST) {
        next = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
      }
    }
    const int failure = errno;
    ::close(current);
    if (next < 0) {
      errno = failure;
      return -1;
    }
    current = next;
  }
  if (cachedFolder_ >= 0) ::close(cachedFolder_);
  cachedFolder_ = current;
  cachedPath_ = wanted;
  return current;
}

int Destination::parentOf(std::string_view path, bool create, std::string* last) {
  while (path.ends_with('/')) path.remove_suffix(1);
  const std::size_t slash = path.find_last_of('/');
  *last = std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
  if (last->empty() || *last == "." || *last == "..") {
    errno = EINVAL;
    return -1;
  }
  return folder(slash == std::string_view::npos ? std::string_view() : path.substr(0, slash),
                create);
}

int Destination::openFile(std::string_view relativePath) {
  if (relativePath.ends_with('/')) {
    errno = EISDIR;
    return -1;
  }
  std::string last;
  const int parent = parentOf(relativePath, true, &last);
  if (parent < 0) return -1;
  return ::openat(parent, last.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                  0666);
}

bool Destination::exists(std::string_view relativePath) {
  std::string last;
  const int parent = parentOf(relativePath, false, &last);
  struct stat info {};
  return parent >= 0 && ::fstatat(parent, last.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

int Destination::removeFile(std::string_view relativePath) {
  std::string last;
  const int parent = parentOf(relativePath, false, &last);
  return parent < 0 ? -1 : ::unlinkat(parent, last.c_str(), 0);
}

int Destination::makeLink(std::string_view relativePath, const std::string& target) {
  std::string last;
  const int parent = parentOf(relativePath, true, &last);
  return parent < 0 ? -1 : ::symlinkat(target.c_str(), parent, last.c_str());
}

int Destination::setTime(std::string_view relativePath, const struct timespec& time) {
  const struct timespec times[2] = {time, time};
  if (normalized(relativePath).empty()) return ::futimens(root_, times);
  std::string last;
  const int parent = parentOf(relativePath, false, &last);
  return parent < 0 ? -1 : ::utimensat(parent, last.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

}  // namespace tarnvik::beneath
