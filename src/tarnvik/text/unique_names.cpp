#include "tarnvik/text/unique_names.hpp"

#include <algorithm>

#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/platform/text/regular_expression.hpp"
#include "tarnvik/platform/text/scanner.hpp"

namespace tarnvik {

String uniqueStringWithRivals(const String& name, const Array& rivals, bool removeNumbers) {
  const String base = removeNumbers ? stringByRemovingUniqueNumber(name) : name;
  bool clash = false;
  long long highest = 0;
  for (const Value& value : rivals) {
    const String rival = value.asString();
    Scanner scanner(rival);
    if (!scanner.scanString(base)) continue;
    const UInteger after = scanner.scanLocation();
    if (after < rival.length() && rival.characterAtIndex(after) != u' ') continue;
    clash = true;
    long long number = 0;
    if (scanner.scanLongLong(&number)) highest = std::max(highest, number);
  }
  if (!clash) return base;
  return stringWithFormat(u"%@ %qi", base, highest == INT64_MAX ? highest : highest + 1);
}

String stringByRemovingUniqueNumber(const String& name) {
  static const RegularExpression pattern =
      RegularExpression::regularExpressionWithPattern(u"\\A(.+?)(\\s+\\d+)?\\Z", 0);
  const TextCheckingResult match = pattern.firstMatchInString(name, 0, {0, name.length()});
  const Range group = match.rangeAtIndex(1);
  return group.location == NSNotFound ? String(u"") : name.substringWithRange(group);
}

String uniquifyFileNameInFolder(const String& fileName, const String& folder, const Array& rivals,
                                FileManager& fileManager) {
  const String extension = fileName.pathExtension();
  const String lowerExtension = extension.lowercaseString();
  Array candidates = fileManager.contentsOfDirectoryAtPath(folder);
  if (candidates.isNil()) candidates = Array::array();
  candidates.addObjectsFromArray(rivals);
  Array stems = Array::arrayWithCapacity(candidates.count());
  for (const Value& value : candidates) {
    const String candidate = value.asString();
    if (candidate.pathExtension().lowercaseString() == lowerExtension) {
      stems.addObject(candidate.stringByDeletingPathExtension());
    }
  }
  const String unique = uniqueStringWithRivals(fileName.stringByDeletingPathExtension(), stems);
  return extension.isEmpty() ? unique : stringWithFormat(u"%@.%@", unique, extension);
}

String uniquifyFilePath(const String& path, FileManager& fileManager) {
  const String folder = path.stringByDeletingLastPathComponent();
  return folder.stringByAppendingPathComponent(
      uniquifyFileNameInFolder(path.lastPathComponent(), folder, Array(), fileManager));
}

String trimFilePathInMiddleToRoughlyMaxSize(const String& path, UInteger maxLength) {
  Array components = path.pathComponents();
  if (path.length() <= maxLength || components.count() < 2) return path;
  UInteger removedAt = 0;
  while (components.count() >= 2) {
    removedAt = components.count() / 2;
    components.removeObjectAtIndex(removedAt);
    if (String::pathWithComponents(components).length() <= maxLength) break;
  }
  components.insertObject(String(u"..."), removedAt);
  return String::pathWithComponents(components);
}

String commonPrefixOfStrings(const Array& strings, UInteger options) {
  if (strings.isEmpty()) return String();
  String prefix = strings[0].asString();
  for (UInteger i = 1; i < strings.count(); ++i) {
    prefix = strings[i].asString().commonPrefixWithString(prefix, options);
  }
  return prefix;
}

String commonAncestorDirectoryFromPaths(const Array& paths) {
  if (paths.isEmpty()) return String();
  if (paths.count() == 1) {
    const String only = paths[0].asString();
    return only.hasSuffix(u"/") ? only : only.stringByDeletingLastPathComponent();
  }
  std::vector<Value> common = paths[0].asString().pathComponents().values();
  for (const Value& path : paths) {
    const Array components = path.asString().pathComponents();
    std::size_t same = 0;
    while (same < common.size() && same < components.count() &&
           common[same].isEqual(components[same]))
      ++same;
    common.resize(same);
    if (common.empty()) return String();
  }
  return String::pathWithComponents(Array(std::move(common)));
}

}  // namespace tarnvik
