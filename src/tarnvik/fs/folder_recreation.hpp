// Copying the folder structure of a tree to another place without its files: every
// folder, or only the empty ones (items an ignore predicate matches counting as absent);
// and a folder's names that a regular expression matches as a whole.
//
//   FileManager& fm = FileManager::defaultManager();
//   recreateFoldersFromPath(fm, u"/srv/Day01", u"/srv/Day02", true, &error);
//   auto junk = [](const String& name) { return name == u".DS_Store"; };
//   recreateEmptyFoldersFromPath(fm, u"/srv/Day01", junk, u"/srv/Empty", true, &error);
//
// The walk reads folders with directoryFilesAtPathCFI, so a link to a folder counts as a
// file and is never entered; folders are made through the file manager.
#pragma once

#include <functional>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/text/regular_expression.hpp"

namespace tarnvik {

// A test on one string; an empty function answers false.
using StringPredicate = std::function<bool(const String&)>;

// Makes, below the target, every folder found below the source (one level, or all with
// recursive) that does not exist there yet. Goes on after a failed creation; false then,
// with the last failure's error.
bool recreateFoldersFromPath(FileManager& fileManager, const String& source, const String& target,
                             bool recursive, Error* error = nullptr);
// The same for the empty folders (addEmptyFoldersAtPath), always looking at every level;
// recursive is accepted and ignored.
bool recreateEmptyFoldersFromPath(FileManager& fileManager, const String& source,
                                  const StringPredicate& ignore, const String& target,
                                  bool recursive, Error* error = nullptr);

// Appends the full path of every folder in the folder, each followed (with recursive) by
// the folders inside it: a pre-order list without the start folder.
void addFoldersAtPath(FileManager& fileManager, const String& path, Array& array, bool recursive);
// Appends the folder itself when it holds nothing but ignorable items (a folder is
// ignorable when ignore("<path>/") is true, anything else when ignore(<name>) is) or
// cannot be read; otherwise, with recursive, looks into each folder it keeps. A nil path
// appends nothing.
void addEmptyFoldersAtPath(FileManager& fileManager, const String& path,
                           const StringPredicate& ignore, Array& array, bool recursive);

// The folder's names, in listing order, that the expression matches from their first to
// their last character; an empty array (with the file manager's error) when the folder
// cannot be read.
Array contentsOfDirectoryAtPath(FileManager& fileManager, const String& path,
                                const RegularExpression& expression, Error* error = nullptr);

}  // namespace tarnvik
