// Reading localized string tables and property lists from disk. Not installed.
#pragma once

#include <string>

#include "tarnvik/platform/base/dictionary.hpp"

namespace tarnvik::strings_file {

// Parses the text form of a strings table: "key" = "value"; entries (a lone "key"; maps
// the key to itself), unquoted words, /* */ and // comments, and the escapes \n \t \r
// \" \\ \Uxxxx \uxxxx. The bytes may be UTF-8 or UTF-16 with a byte-order mark. Returns
// nil when the text is malformed.
Dictionary parseStringsText(const std::string& bytes);
// An XML or binary property list whose root is a dictionary, converted to Values; nil when
// the bytes are not such a list.
Dictionary parsePropertyListDictionary(const std::string& bytes);
// The dictionary as an XML property list. Values a property list cannot hold (nil, Null,
// sets, errors, objects) are left out; negative integers are stored as their 64-bit
// pattern and read back signed.
std::string serializePropertyListDictionary(const Dictionary& dictionary);
// Either of the above, by the first bytes; nil when the file cannot be read (through the
// default file manager) or parsed.
Dictionary readTable(const String& path);

}  // namespace tarnvik::strings_file
