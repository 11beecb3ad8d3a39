// Name segments: stepping the counter at the end of a media name.
//
//   incrementLastSegment(u"A001C009");   // "A001C010"
//   resetLastSegmentToIndex(u"take07", 1);  // "take01"
//   incrementLastSegmentOfFileName(u"A001C009.mov");  // "A001C010.mov"
//
// The last segment is the trailing run of decimal digits (general category Nd), or else the
// last UTF-16 unit; the part before it is the stem.
#pragma once

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Steps the last segment up or down. A digit run keeps its width when it has leading zeros
// and grows when it needs more digits; its value is read with integerValue (ASCII digits)
// and written as a 32-bit integer; the largest integer sticks on the way up, 0 on the way
// down. Without digits the last unit is stepped alone ("Z"/"z" stick going up, "A"/"a" going
// down, as do U+FFFF and U+0000). The stem goes into a format unescaped, so a "%" in it is
// read as a directive (see format.hpp for directives without arguments). "" gives "0".
String advanceLastSegmentWithIncrementation(const String& name, bool increment);
String incrementLastSegment(const String& name);
String decrementLastSegment(const String& name);
// The digit suffix replaced by the index, zero-padded to the old suffix's length; a name
// without a digit suffix comes back unchanged.
String resetLastSegmentToIndex(const String& name, UInteger index);

// The same steps for a file name: the last segment of the name before its extension (the
// last "." of the last path component, unless it starts the component) is stepped, and the
// extension stays as it is: "A001C009.mov" -> "A001C010.mov", "take.mov" -> "takf.mov".
// Only the segment goes through the stepping rule, so a "%" in the name is kept as it
// stands. A name with nothing before its extension steps "" ("0.mov" going either way);
// without an extension, these are incrementLastSegment and its kin.
String incrementLastSegmentOfFileName(const String& fileName);
String decrementLastSegmentOfFileName(const String& fileName);
String resetLastSegmentOfFileNameToIndex(const String& fileName, UInteger index);

}  // namespace tarnvik
