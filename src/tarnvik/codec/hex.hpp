// Text forms of byte data: hex strings, printable-ASCII strings, hex dumps, hex parsing,
// and a no-copy view of a sub-range.
//
//   hexString(Data::withString("\x00\xAB"));         // "00 AB "
//   ke_dataFromHexString(u"0aFF1");                  // the bytes 0A FF
#pragma once

#include <cstdint>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Every byte as two upper-case hex digits followed by a space (also after the last byte);
// "" for empty data.
String hexString(const Data& data);
// Bytes 32 to 127 as themselves, every other byte as ".".
String asciiString(const Data& data);
// As hexString, with a line feed before each byte whose index is a non-zero multiple of
// the length. A length of 0 with non-empty data fails the parameter assertion
// "length > 0" and, when the handler returns, gives "".
String hexBlockStringOfLength(const Data& data, std::uint32_t length);
// A hex dump: one "%04li: <hexString> <asciiString>\n" line per length bytes, the last line
// shorter. A length of 0 with non-empty data fails as above.
String hexBlockWithASCIIStringOfLength(const Data& data, std::uint32_t length);
// Reads pairs of characters as hex numbers the way strtol does (leading blanks, a sign and
// "0x" accepted, an unreadable pair gives 0), one byte per pair; an odd last character is
// ignored. nil for a nil string; never fails otherwise.
Data ke_dataFromHexString(const String& text);
// A strict reading beside it: every character must be a hex digit and their number even;
// otherwise nil and an error whose failure reason names the first offending character and
// its position ("“z” at position 3 is not a hexadecimal digit.").
Data ke_dataFromHexString(const String& text, Error* error);
// Every byte as two lower-case hex digits, no separators.
String hexstringWithBytes(const Data& data);
String hexstringWithBytes(const void* bytes, std::size_t length);
// The bytes in the range without a copy; the view keeps the receiver's bytes alive. A range
// beyond the data fails the assertion "given range for subdata is outside of available
// data" and, when the handler returns, gives nil.
Data noCopySubdataWithRange(const Data& data, Range range);

}  // namespace tarnvik
