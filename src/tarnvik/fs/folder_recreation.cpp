#include "tarnvik/fs/folder_recreation.hpp"

#include "tarnvik/fs/directory_scanning.hpp"
#include "tarnvik/fs/housekeeping.hpp"
#include "tarnvik/text/affixes.hpp"

namespace tarnvik {

namespace {

bool holds(const StringPredicate& predicate, const String& text) {
  return predicate && predicate(text);
}

bool recreate(FileManager& fileManager, const Array& folders, const String& source,
              const String& target, Error* error) {
  bool result = true;
  for (const Value& folder : folders) {
    const String rest = stringByDeletingPrefix(folder.asString(), source);
    const String path = target.stringByAppendingPathComponent(rest);
    if (!fileOrSymbolicLinkExistsAtPath(fileManager, path) &&
        !fileManager.createDirectoryAtPath(path, true, error)) {
      result = false;
    }
  }
  return result;
}

}  // namespace

bool recreateFoldersFromPath(FileManager& fileManager, const String& source, const String& target,
                             bool recursive, Error* error) {
  Array folders = Array::array();
  addFoldersAtPath(fileManager, source, folders, recursive);
  return recreate(fileManager, folders, source, target, error);
}

bool recreateEmptyFoldersFromPath(FileManager& fileManager, const String& source,
                                  const StringPredicate& ignore, const String& target, bool,
                                  Error* error) {
  Array folders = Array::array();
  addEmptyFoldersAtPath(fileManager, source, ignore, folders, true);
  return recreate(fileManager, folders, source, target, error);
}

void addFoldersAtPath(FileManager& fileManager, const String& path, Array& array, bool recursive) {
  const Array records = directoryFilesAtPathCFI(path);
  if (records.isNil()) return;
  for (const Value& record : records) {
    const auto file = record.asObject<CFIFile>();
    if (!file->isDirectory()) continue;
    array.addObject(file->path());
    if (recursive) addFoldersAtPath(fileManager, file->path(), array, true);
  }
}

void addEmptyFoldersAtPath(FileManager& fileManager, const String& path,
                           const StringPredicate& ignore, Array& array, bool recursive) {
  if (path.isNil()) return;
  const Array records = directoryFilesAtPathCFI(path);
  if (records.isNil() || records.count() == 0) {
    array.addObject(path);
    return;
  }
  std::vector<std::shared_ptr<CFIFile>> kept;
  for (const Value& record : records) {
    auto file = record.asObject<CFIFile>();
    const bool ignorable = file->isDirectory()
                               ? holds(ignore, file->path().stringByAppendingString(u"/"))
                               : holds(ignore, file->path().lastPathComponent());
    if (!ignorable) kept.push_back(std::move(file));
  }
  if (kept.empty()) {
    array.addObject(path);
    return;
  }
  if (!recursive) return;
  for (const auto& file : kept) {
    if (file->isDirectory()) addEmptyFoldersAtPath(fileManager, file->path(), ignore, array, true);
  }
}

Array contentsOfDirectoryAtPath(FileManager& fileManager, const String& path,
                                const RegularExpression& expression, Error* error) {
  Array matching = Array::array();
  const Array names = fileManager.contentsOfDirectoryAtPath(path, error);
  if (names.isNil()) return matching;
  for (const Value& value : names) {
    const String name = value.asString();
    const Range whole{0, name.length()};
    const Range found = expression.firstMatchInString(name, 0, whole).range();
    if (found.location == 0 && found.length == whole.length) matching.addObject(name);
  }
  return matching;
}

}  // namespace tarnvik
