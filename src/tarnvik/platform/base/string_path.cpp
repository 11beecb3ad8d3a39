// Path primitives on String with POSIX semantics.
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

namespace {

// The non-empty components of a path, without the leading and trailing "/" markers.
std::vector<std::u16string_view> namedComponents(std::u16string_view path) {
  std::vector<std::u16string_view> parts;
  std::size_t start = 0;
  while (start < path.size()) {
    const std::size_t slash = std::min(path.find(u'/', start), path.size());
    if (slash > start) parts.push_back(path.substr(start, slash - start));
    start = slash + 1;
  }
  return parts;
}

std::u16string joined(const std::vector<std::u16string_view>& parts, bool absolute) {
  std::u16string out = absolute ? u"/" : u"";
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) out.push_back(u'/');
    out.append(parts[i]);
  }
  return out;
}

// The path with duplicate and trailing slashes removed ("/" stays "/").
std::u16string cleaned(std::u16string_view path) {
  if (path.empty()) return {};
  return joined(namedComponents(path), path.front() == u'/');
}

}  // namespace

Array String::pathComponents() const {
  Array components = Array::array();
  const auto path = units();
  if (path.empty()) return components;
  if (path.front() == u'/') components.addObject(String(u"/"));
  for (const auto part : namedComponents(path)) components.addObject(String(part));
  if (path.back() == u'/' && path.size() > 1) components.addObject(String(u"/"));
  return components;
}

String String::pathWithComponents(const Array& components) {
  std::u16string out;
  for (const Value& value : components) {
    const auto part = value.asString().units();
    if (part.empty()) continue;
    if (part == u"/") {
      if (out.empty() || out.back() != u'/') out.push_back(u'/');
      continue;
    }
    if (!out.empty() && out.back() != u'/') out.push_back(u'/');
    out.append(part);
  }
  return String(std::move(out));
}

bool String::isAbsolutePath() const {
  const auto path = units();
  return !path.empty() && (path.front() == u'/' || path.front() == u'~');
}

String String::lastPathComponent() const {
  const auto path = units();
  const auto parts = namedComponents(path);
  if (parts.empty()) return path.empty() ? String(u"") : String(u"/");
  return String(parts.back());
}

String String::stringByDeletingLastPathComponent() const {
  const auto path = units();
  auto parts = namedComponents(path);
  const bool absolute = !path.empty() && path.front() == u'/';
  if (!parts.empty()) parts.pop_back();
  return String(joined(parts, absolute));
}

String String::stringByAppendingPathComponent(const String& component) const {
  std::u16string path(units());
  if (!path.empty() && !component.isEmpty()) path.push_back(u'/');
  path.append(component.units());
  return String(cleaned(path));
}

String String::pathExtension() const {
  const String last = lastPathComponent();
  const auto name = last.units();
  const std::size_t dot = name.rfind(u'.');
  if (dot == std::u16string_view::npos || dot == 0 || name == u"/") return String(u"");
  return String(name.substr(dot + 1));
}

String String::stringByDeletingPathExtension() const {
  const std::u16string path = cleaned(units());
  const std::size_t slash = path.rfind(u'/');
  const std::size_t nameStart = slash == std::u16string::npos ? 0 : slash + 1;
  const std::size_t dot = path.rfind(u'.');
  if (dot == std::u16string::npos || dot <= nameStart) return String(path);
  return String(std::u16string_view(path).substr(0, dot));
}

String String::stringByAppendingPathExtension(const String& extension) const {
  const std::u16string path = cleaned(units());
  if (path.empty() || path == u"/") return String();
  std::u16string out = path;
  out.push_back(u'.');
  out.append(extension.units());
  return String(std::move(out));
}

String String::stringByExpandingTildeInPath() const {
  const auto path = units();
  if (path.empty() || path.front() != u'~') return *this;
  const std::size_t slash = std::min(path.find(u'/'), path.size());
  const String home =
      FileManager::defaultManager().homeDirectoryForUser(String(path.substr(1, slash - 1)));
  if (home.isEmpty()) return *this;
  std::u16string out(home.units());
  out.append(path.substr(slash));
  return String(cleaned(out));
}

String String::stringByStandardizingPath() const {
  const String expanded = stringByExpandingTildeInPath();
  const auto path = expanded.units();
  if (path.empty()) return expanded;
  const bool absolute = path.front() == u'/';
  std::vector<std::u16string_view> kept;
  for (const auto part : namedComponents(path)) {
    if (part == u".") continue;
    if (part == u".." && absolute) {
      if (!kept.empty()) kept.pop_back();
      continue;
    }
    kept.push_back(part);
  }
  return String(joined(kept, absolute));
}

String String::stringByResolvingSymlinksInPath() const {
  const String standard = stringByStandardizingPath();
  if (!standard.units().starts_with(u"/")) return standard;
  // Resolve the longest existing prefix, then add what does not exist.
  const auto parts = namedComponents(standard.units());
  FileManager& fileManager = FileManager::defaultManager();
  for (std::size_t keep = parts.size() + 1; keep-- > 0;) {
    const std::vector<std::u16string_view> head(parts.begin(),
                                                parts.begin() + static_cast<std::ptrdiff_t>(keep));
    const String resolved = fileManager.realPathOfItemAtPath(String(joined(head, true)));
    if (resolved.isNil()) continue;
    std::u16string out(resolved.units());
    for (std::size_t i = keep; i < parts.size(); ++i) {
      if (out.back() != u'/') out.push_back(u'/');
      out.append(parts[i]);
    }
    return String(std::move(out));
  }
  return standard;
}

}  // namespace tarnvik
