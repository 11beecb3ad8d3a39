// Path strings: components counted from either end, relative and absolute conversion, the
// volume that holds a path, file-name-safe replacements, parent-folder names, dotted key
// paths, and reading a parenthesised path with a scanner.
//
//   stringByPreservingLastPathComponents(u"/Volumes/Media/Day01/clip.mov", 2);  // "Day01/clip.mov"
//   relativePathFromBaseDirPath(u"/a/b/c/clip.mov", u"/a/b/x/y");             // "../../c/clip.mov"
#pragma once

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/text/scanner.hpp"

namespace tarnvik {

// The first component ("/" for every absolute path); nil for an empty path.
String firstPathComponent(const String& path);
// The mounted volume whose (symlink-resolved) mount point is a plain string prefix of the
// standardised path, in the file manager's order, "/" itself skipped; "/" when none is.
// The prefix test ignores component boundaries: /Volumes/Media2/x is claimed by a volume
// /Volumes/Media listed before it.
String volumePath(const String& path, FileManager& fileManager = FileManager::defaultManager());
// The path without as many leading characters as its volumePath has; "/" when nothing is
// left. NSRangeException when the path is shorter than that (possible only with "~").
String stringByStrippingVolumesFromPath(const String& path,
                                        FileManager& fileManager = FileManager::defaultManager());
// The text with "/", ":", "\", "~" and "#" replaced by "_"; the receiver plays no part.
String stringByReplacingOccurencesOfFileSystemPathSeparators(const String& receiver,
                                                             const String& text);
// ":" replaced by ";".
String stringByReplacingColons(const String& text);
// stringByReplacingColons of the argument; the receiver plays no part.
String stringByReplacingColonsInString(const String& receiver, const String& text);
// The last component with at most depth parent folder names before it.
String relativePathByPreservingPathDepth(const String& path, UInteger depth);
// Removes n trailing components ("/" counting as one); "" when there are fewer; n <= 0
// returns the path.
String stringByDeletingLastPathComponents(const String& path, Integer n);
// The last n components as a relative path (a trailing "/" dropped first); "" when there
// are fewer or n is 0.
String stringByPreservingLastPathComponents(const String& path, UInteger n);
// Removes n leading components, "/" counting as one; "" when there are fewer.
String stringByDeletingFirstPathComponents(const String& path, UInteger n);
String stringByReplacingLastPathComponent(const String& path, const String& name);
// The relative path resolved against the base: "~..." is only expanded; a path not starting
// with "." is appended to the base (also "/x"); "." and ".." are walked, nil when ".."
// climbs above the base's first component.
String absolutePathFromBaseDirPath(const String& path, const String& base);
// The path relative to the base ("" when they are equal), compared component by component,
// case-sensitively, after tilde expansion.
String relativePathFromBaseDirPath(const String& path, const String& base);
// The path with a "/" appended unless it ends in one. NSRangeException for "".
String stringWithTrailingSlash(const String& path);
// The C library's realpath of an existing file; nil when it fails.
String realPath(const String& path);
// The name of the folder one, two or three levels above the last component.
String stringOneFolderUp(const String& path);
String stringTwoFolderUp(const String& path);
String stringThreeFolderUp(const String& path);

// Key paths: names joined by ".".
String stringByAppendingKeyPathComponent(const String& keyPath, const String& name);
String stringByDeletingLastKeyPathComponent(const String& keyPath);
String stringByDeletingFirstKeyPathComponent(const String& keyPath);
String lastKeyPathComponent(const String& keyPath);
String firstKeyPathComponent(const String& keyPath);

// Reads "(path)" (the "(" optional) up to the last ")" of the remaining text, nested
// parentheses included; whatever follows the last ")" is consumed and dropped. Returns true
// exactly when an out-parameter was given. Text without ")" raises NSInvalidArgumentException
// "<text> is not a suffix". The scanner's skip set is restored afterwards.
bool scanPathInParenthesesIntoString(Scanner& scanner, String* path);

}  // namespace tarnvik
