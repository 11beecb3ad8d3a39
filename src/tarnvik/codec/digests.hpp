// MD5 and SHA-1 digests of data and strings, a GUID-shaped rendering of a string's bytes,
// and fresh random UUIDs.
//
//   md5(Data::data());             // "D41D8CD98F00B204E9800998ECF8427E"
//   SHA1Sum(u"abc");               // "a9993e364706816aba3e25717850c26c9cd0d89d"
#pragma once

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// MD5 of the bytes as 32 upper-case hex digits.
String md5(const Data& data);
// SHA-1 of the bytes as 40 upper-case hex digits.
String sha1(const Data& data);

// MD5 of the string's UTF-8 bytes up to the first NUL, 32 upper-case hex digits.
String md5(const String& text);
// The same digest in lower case.
String md5NonCapitalLetters(const String& text);
// The same digest as 16 raw bytes.
Data md5BinaryForm(const String& text);
// SHA-1, 40 lower-case hex digits, over the first N bytes of the UTF-8 form, N being the
// string's length in UTF-16 units (so text beyond ASCII hashes only a prefix of its bytes).
String SHA1Sum(const String& text);
// The first 16 bytes of the UTF-8 form as 8-4-4-4-12 upper-case hex groups, each byte
// taken as a signed 8-bit value widened to 32 bits (0x80 and above print as eight digits,
// e.g. FFFFFFC3). Bytes a shorter string does not have read as 0.
String redcineGUID(const String& text);
// A new random (version 4) UUID in upper-case 8-4-4-4-12 form.
String UUID();

}  // namespace tarnvik
