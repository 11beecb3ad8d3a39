// Unique names: numbering a name so that it does not clash with its rivals (Clip, Clip 1,
// Clip 2, ...), the same for file names in a folder, shortening long paths for display,
// and common prefixes and ancestor folders.
//
//   uniqueStringWithRivals(u"Clip", Array{u"Clip", u"Clip 3"});          // "Clip 4"
//   uniquifyFileNameInFolder(u"Clip.mov", u"/Volumes/Media/Day01");      // "Clip 1.mov" if taken
#pragma once

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The name, or the name followed by " <n>" when a rival clashes, n being one more than the
// highest number a clashing rival carries. A rival clashes when, after leading whitespace,
// it starts with the name (case-insensitively) and the name is all of it or is followed by
// a blank; its number is the integer that follows (none for "Clip copy"; negative numbers
// count as 0). With removeNumbers, a number the name already carries is removed first.
// Linear in the rivals; nil rivals count as none.
String uniqueStringWithRivals(const String& name, const Array& rivals, bool removeNumbers = false);
// The name without a trailing run of whitespace and digits ("Clip 12" gives "Clip"; "12"
// stays "12"); "" for an empty name or one holding a line break.
String stringByRemovingUniqueNumber(const String& name);
// A file name that is free in the folder and among the rivals: the number goes before the
// extension, and names and extensions match without regard to case. The folder's entries
// are read through the file manager; an unreadable folder counts as empty.
String uniquifyFileNameInFolder(const String& fileName, const String& folder,
                                const Array& rivals = Array(),
                                FileManager& fileManager = FileManager::defaultManager());
// The path with its last component made unique in its parent folder.
String uniquifyFilePath(const String& path,
                        FileManager& fileManager = FileManager::defaultManager());
// Drops middle components until the path is at most maxLength long and puts "..." in their
// place, so the result may exceed maxLength by four characters.
String trimFilePathInMiddleToRoughlyMaxSize(const String& path, UInteger maxLength);
// The common prefix of all the strings under the comparison options (at least literal and
// case-insensitive); nil for no strings.
String commonPrefixOfStrings(const Array& strings, UInteger options);
// The deepest folder shared by all paths, by exact component equality; nil for no paths or
// nothing in common. A single path gives its parent (itself when it ends in "/").
String commonAncestorDirectoryFromPaths(const Array& paths);

}  // namespace tarnvik
