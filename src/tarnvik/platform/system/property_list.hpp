// Property-list files (XML or binary) read as dictionaries.
//
//   Dictionary info = dictionaryWithContentsOfFile(u"/opt/Clips.app/Contents/Info.plist");
#pragma once

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The dictionary stored in the property list at path, in XML or binary form; nil when the
// file cannot be read or does not hold a dictionary.
Dictionary dictionaryWithContentsOfFile(const String& path);

}  // namespace tarnvik
