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

// The folder holding the last component, opened below root, and that component.
int openParent(int root, std::string_view path, bool create, std::string* last) {
  const std::size_t slash = path.find_last_of('/');
  *last = std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
  if (last->empty() || *last == "." || *last == "..") {
    errno = EINVAL;
    return -1;
  }
  return openFolder(
      root, slash == std::string_view::npos ? std::string_view() : path.substr(0, slash), create);
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

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

int openFolder(int root, std::string_view relativeFolder, bool create) {
  int current = ::dup(root);
  if (current < 0) return -1;
  for (const std::string_view part : componentsOf(relativeFolder)) {
    const std::string name(part);
    if (part == "..") {
      ::close(current);
      errno = EPERM;
      return -1;
    }
    int next = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (next < 0 && errno == ENOENT && create) {
      if (::mkdirat(current, name.c_str(), 0777) != 0 && errno != EEXIST) {
        const int failure = errno;
        ::close(current);
        errno = failure;
        return -1;
      }
      next = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }
    const int failure = errno;
    ::close(current);
    if (next < 0) {
      errno = failure;
      return -1;
    }
    current = next;
  }
  return current;
}

int openFile(int root, std::string_view relativePath, bool create) {
  std::string last;
  const Descriptor parent(openParent(root, relativePath, create, &last));
  if (parent.get() < 0) return -1;
  return ::openat(parent.get(), last.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                  0666);
}

bool exists(int root, std::string_view relativePath) {
  std::string last;
  const Descriptor parent(openParent(root, relativePath, false, &last));
  struct stat info {};
  return parent.get() >= 0 &&
         ::fstatat(parent.get(), last.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

int removeFile(int root, std::string_view relativePath) {
  std::string last;
  const Descriptor parent(openParent(root, relativePath, false, &last));
  if (parent.get() < 0) return -1;
  return ::unlinkat(parent.get(), last.c_str(), 0);
}

int makeLink(int root, std::string_view relativePath, const std::string& target) {
  std::string last;
  const Descriptor parent(openParent(root, relativePath, true, &last));
  if (parent.get() < 0) return -1;
  return ::symlinkat(target.c_str(), parent.get(), last.c_str());
}

int setTime(int root, std::string_view relativePath, const struct timespec& time) {
  std::string last;
  const std::string_view trimmed =
      relativePath.ends_with('/') ? relativePath.substr(0, relativePath.size() - 1) : relativePath;
  const Descriptor parent(openParent(root, trimmed, false, &last));
  if (parent.get() < 0) return -1;
  const struct timespec times[2] = {time, time};
  return ::utimensat(parent.get(), last.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

}  // namespace tarnvik::beneath
