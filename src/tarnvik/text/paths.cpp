#include "tarnvik/text/paths.hpp"

#include <optional>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/text/affixes.hpp"

namespace tarnvik {

namespace {

String componentAt(const Array& components, UInteger index) { return components[index].asString(); }

// Restores a scanner's skip set when it goes out of scope.
class SkipSetGuard {
 public:
  explicit SkipSetGuard(Scanner& scanner) : scanner_(scanner) {
    if (const CharacterSet* set = scanner.charactersToBeSkipped()) saved_ = *set;
    scanner.setCharactersToBeSkipped(nullptr);
  }
  ~SkipSetGuard() { scanner_.setCharactersToBeSkipped(saved_ ? &*saved_ : nullptr); }
  SkipSetGuard(const SkipSetGuard&) = delete;
  SkipSetGuard& operator=(const SkipSetGuard&) = delete;

 private:
  Scanner& scanner_;
  std::optional<CharacterSet> saved_;
};

String foldersUp(const String& path, int levels) {
  String parent = path;
  for (int i = 0; i < levels; ++i) parent = parent.stringByDeletingLastPathComponent();
  return parent.lastPathComponent();
}

}  // namespace

String firstPathComponent(const String& path) {
  if (path.isEmpty()) return String();
  return componentAt(path.pathComponents(), 0);
}

String volumePath(const String& path, FileManager& fileManager) {
  const String standard = path.stringByStandardizingPath();
  for (const Value& volume : fileManager.mountedVolumePaths()) {
    const String mountPoint = volume.asString();
    if (mountPoint == String(u"/")) continue;
    const String resolved = mountPoint.stringByResolvingSymlinksInPath();
    if (standard.hasPrefix(resolved)) return resolved;
  }
  return u"/";
}

String stringByStrippingVolumesFromPath(const String& path, FileManager& fileManager) {
  const String rest = path.substringFromIndex(volumePath(path, fileManager).length());
  return rest.isEmpty() ? String(u"/") : rest;
}

String stringByReplacingOccurencesOfFileSystemPathSeparators(const String&, const String& text) {
  String result = text;
  for (const char16_t* separator : {u"/", u":", u"\\", u"~", u"#"}) {
    result = result.stringByReplacingOccurrencesOfString(separator, u"_");
  }
  return result;
}

String stringByReplacingColons(const String& text) {
  return text.stringByReplacingOccurrencesOfString(u":", u";", NSLiteralSearch);
}

String stringByReplacingColonsInString(const String&, const String& text) {
  return stringByReplacingColons(text);
}

String relativePathByPreservingPathDepth(const String& path, UInteger depth) {
  const String name = path.lastPathComponent();
  String parent = path.stringByDeletingLastPathComponent();
  String prefix = u"";
  for (UInteger i = 1; depth > 0; ++i) {
    prefix = parent.lastPathComponent().stringByAppendingPathComponent(prefix);
    parent = parent.stringByDeletingLastPathComponent();
    if (parent.isEmpty() || i >= depth) break;
  }
  return prefix.stringByAppendingPathComponent(name);
}

String stringByDeletingLastPathComponents(const String& path, Integer n) {
  String current = path;
  for (Integer i = 0; i < n; ++i) {
    if (current == String(u"/")) current = u"";
    current = current.stringByDeletingLastPathComponent();
  }
  return current;
}

String stringByPreservingLastPathComponents(const String& path, UInteger n) {
  Array components = path.pathComponents();
  if (components.count() > 1 && components.lastObject().asString() == String(u"/")) {
    components.removeLastObject();
  }
  if (n == 0 || components.count() < n) return String(u"");
  String result = u"";
  for (UInteger i = components.count() - n; i < components.count(); ++i) {
    result = result.stringByAppendingPathComponent(componentAt(components, i));
  }
  return result;
}

String stringByDeletingFirstPathComponents(const String& path, UInteger n) {
  Array components = path.pathComponents();
  if (components.count() > 1 && components.lastObject().asString() == String(u"/")) {
    components.removeLastObject();
  }
  if (n > components.count()) return String(u"");
  return stringByPreservingLastPathComponents(path, components.count() - n);
}

String stringByReplacingLastPathComponent(const String& path, const String& name) {
  return path.stringByDeletingLastPathComponent().stringByAppendingPathComponent(name);
}

String absolutePathFromBaseDirPath(const String& path, const String& base) {
  if (path.hasPrefix(u"~")) return path.stringByExpandingTildeInPath();
  const String expandedBase = base.stringByExpandingTildeInPath();
  if (!path.hasPrefix(u".")) return expandedBase.stringByAppendingPathComponent(path);
  Array components = expandedBase.pathComponents();
  for (const Value& value : path.pathComponents()) {
    const String component = value.asString();
    if (component == String(u"..")) {
      if (components.count() <= 1) return String();
      components.removeLastObject();
    } else if (component != String(u".")) {
      components.addObject(component);
    }
  }
  return String::pathWithComponents(components);
}

String relativePathFromBaseDirPath(const String& path, const String& base) {
  const Array mine = path.stringByExpandingTildeInPath().pathComponents();
  const Array theirs = base.stringByExpandingTildeInPath().pathComponents();
  UInteger common = 0;
  while (common < mine.count() && common < theirs.count() &&
         componentAt(mine, common) == componentAt(theirs, common)) {
    ++common;
  }
  Array relative = Array::array();
  for (UInteger i = common; i < theirs.count(); ++i) relative.addObject(String(u".."));
  for (UInteger i = common; i < mine.count(); ++i) relative.addObject(mine[i]);
  return String::pathWithComponents(relative);
}

String stringWithTrailingSlash(const String& path) {
  const Range last{path.length() - 1, 1};
  if (path.rangeOfString(u"/", 0, last).location == NSNotFound)
    return stringWithFormat(u"%@/", path);
  return path;
}

String realPath(const String& path) {
  return FileManager::defaultManager().realPathOfItemAtPath(path);
}

String stringOneFolderUp(const String& path) { return foldersUp(path, 1); }
String stringTwoFolderUp(const String& path) { return foldersUp(path, 2); }
String stringThreeFolderUp(const String& path) { return foldersUp(path, 3); }

String stringByAppendingKeyPathComponent(const String& keyPath, const String& name) {
  if (keyPath.isEmpty()) return String(std::u16string(name.units()));
  if (name.isEmpty()) return keyPath;
  return stringWithFormat(u"%@.%@", keyPath, name);
}

String stringByDeletingLastKeyPathComponent(const String& keyPath) {
  return stringByDeletingLastComponentSeperatedBy(keyPath, u".");
}

String stringByDeletingFirstKeyPathComponent(const String& keyPath) {
  Array parts = keyPath.componentsSeparatedByString(u".");
  if (parts.count() > 0) parts.removeObjectAtIndex(0);
  return parts.componentsJoinedByString(u".");
}

String lastKeyPathComponent(const String& keyPath) {
  return keyPath.componentsSeparatedByString(u".").lastObject().asString();
}

String firstKeyPathComponent(const String& keyPath) {
  return keyPath.componentsSeparatedByString(u".").firstObject().asString();
}

bool scanPathInParenthesesIntoString(Scanner& scanner, String* path) {
  const SkipSetGuard guard(scanner);
  scanner.scanString(u"(");
  String accumulated = u"";
  for (;;) {
    String part;
    const bool read = scanner.scanUpToString(u")", &part);
    const bool atEnd = scanner.scanLocation() >= scanner.string().length();
    if (!read && atEnd) break;
    if (!atEnd) {
      if (read) accumulated.appendString(part);
      accumulated.appendString(u")");
      scanner.scanString(u")");
    }
  }
  const String result = stringByDeletingSuffix(accumulated, u")");
  if (path) *path = result;
  return path != nullptr;
}

}  // namespace tarnvik
