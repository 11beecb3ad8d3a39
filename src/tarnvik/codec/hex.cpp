#include "tarnvik/codec/hex.hpp"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/internal/prefault.hpp"

namespace tarnvik {

namespace {

constexpr char16_t kUpper[] = u"0123456789ABCDEF";
constexpr char16_t kLower[] = u"0123456789abcdef";

void appendHexWithBlanks(std::u16string& out, const std::uint8_t* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const char16_t pair[3] = {kUpper[bytes[i] >> 4], kUpper[bytes[i] & 15], u' '};
    out.append(pair, 3);
  }
}

void appendASCII(std::u16string& out, const std::uint8_t* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t b = bytes[i];
    out.push_back(b >= 32 && b <= 127 ? static_cast<char16_t>(b) : u'.');
  }
}

bool lengthIsUsable(const Data& data, std::uint32_t length, const char16_t* operation) {
  if (length > 0 || data.isEmpty()) return true;
  KU_PARAMETER_ASSERT(false, "length > 0", operation, Value(data));
  return false;
}

// Decimal digits of a dump offset, at least four ("%04li").
std::size_t offsetWidth(std::size_t offset) {
  std::size_t digits = 1;
  for (; offset >= 10; offset /= 10) ++digits;
  return std::max<std::size_t>(digits, 4);
}

}  // namespace

String hexString(const Data& data) {
  std::u16string out;
  out.reserve(data.length() * 3);
  appendHexWithBlanks(out, data.bytes(), data.length());
  return String(std::move(out));
}

String asciiString(const Data& data) {
  std::u16string out;
  out.reserve(data.length());
  appendASCII(out, data.bytes(), data.length());
  return String(std::move(out));
}

String hexBlockStringOfLength(const Data& data, std::uint32_t length) {
  if (!lengthIsUsable(data, length, u"-[NSData(KEHexExtensions) hexBlockStringOfLength:]")) {
    return String(u"");
  }
  const std::uint8_t* bytes = data.bytes();
  std::u16string out;
  out.reserve(data.length() * 3 + data.length() / (length ? length : 1));
  for (std::size_t i = 0; i < data.length(); ++i) {
    if (i > 0 && i % length == 0) out.push_back(u'\n');
    appendHexWithBlanks(out, bytes + i, 1);
  }
  return String(std::move(out));
}

String hexBlockWithASCIIStringOfLength(const Data& data, std::uint32_t length) {
  if (!lengthIsUsable(data, length,
                      u"-[NSData(KEHexExtensions) hexBlockWithASCIIStringOfLength:]")) {
    return String(u"");
  }
  const std::uint8_t* bytes = data.bytes();
  const std::size_t total = data.length();
  // Each line: the offset (at least four digits), ": ", three units a byte, " ", one unit a
  // byte and "\n". The text's room is reserved once; each line is put together in a small
  // buffer that stays in the cache and appended, so the big text is written exactly once.
  std::size_t size = 0;
  for (std::size_t at = 0; at < total; at += length) {
    const std::size_t count = at + length > total ? total % length : length;
    size += offsetWidth(at) + 4 + 4 * count;
  }
  std::u16string out;
  out.reserve(size);
  memory::prefaultForWriting(out.data(), size * sizeof(char16_t));
  std::u16string line;
  for (std::size_t at = 0; at < total; at += length) {
    const std::size_t count = at + length > total ? total % length : length;
    const std::size_t width = offsetWidth(at);
    line.resize(width + 4 + 4 * count);
    char16_t* w = line.data();
    for (std::size_t i = width, rest = at; i-- > 0; rest /= 10)
      w[i] = static_cast<char16_t>(u'0' + rest % 10);
    w += width;
    *w++ = u':';
    *w++ = u' ';
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint8_t b = bytes[at + i];
      w[0] = kUpper[b >> 4];
      w[1] = kUpper[b & 15];
      w[2] = u' ';
      w += 3;
    }
    *w++ = u' ';
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint8_t b = bytes[at + i];
      *w++ = b >= 32 && b <= 127 ? static_cast<char16_t>(b) : u'.';
    }
    *w++ = u'\n';
    out.append(line);
  }
  return String(std::move(out));
}

Data ke_dataFromHexString(const String& text) {
  if (text.isNil()) return Data();
  const auto units = text.units();
  const std::size_t pairs = units.size() / 2;
  ByteBuffer bytes;
  bytes.reserve(pairs);
  for (std::size_t i = 0; i < pairs; ++i) {
    const char pair[3] = {static_cast<char>(units[2 * i] & 0xFF),
                          static_cast<char>(units[2 * i + 1] & 0xFF), '\0'};
    const int high = hexDigitValue(static_cast<unsigned char>(pair[0])),
              low = hexDigitValue(static_cast<unsigned char>(pair[1]));
    if (high >= 0 && low >= 0) {
      bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    } else {
      // Anything but two hex digits is read exactly as strtol reads it.
      bytes.push_back(static_cast<std::uint8_t>(std::strtol(pair, nullptr, 16) & 0xFF));
    }
  }
  return Data::withBuffer(std::move(bytes));
}

Data ke_dataFromHexString(const String& text, Error* error) {
  const auto fail = [error](const String& reason) {
    if (error) {
      *error = Error(NSCocoaErrorDomain, 2048,  // the platform's code for text it cannot read
                     Dictionary{{NSLocalizedDescriptionKey,
                                 u"The text couldn’t be read as hexadecimal bytes."},
                                {NSLocalizedFailureReasonErrorKey, reason}});
    }
    return Data();
  };
  if (text.isNil()) return fail(u"There is no text.");
  const auto units = text.units();
  if (units.size() % 2 != 0) {
    return fail(String("It has an odd number of digits (" + std::to_string(units.size()) + ")."));
  }
  ByteBuffer bytes(units.size() / 2);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const int value = units[i] < 128 ? hexDigitValue(static_cast<unsigned char>(units[i])) : -1;
    if (value < 0) {
      return fail(message::build(u"“", String(units.substr(i, 1)), u"” at position ",
                                 static_cast<Integer>(i), u" is not a hexadecimal digit."));
    }
    bytes[i / 2] = static_cast<std::uint8_t>(i % 2 ? bytes[i / 2] | value : value << 4);
  }
  return Data::withBuffer(std::move(bytes));
}

String hexstringWithBytes(const Data& data) {
  return hexstringWithBytes(data.bytes(), data.length());
}

String hexstringWithBytes(const void* bytes, std::size_t length) {
  const auto* b = static_cast<const std::uint8_t*>(bytes);
  std::u16string out(length * 2, u'0');
  for (std::size_t i = 0; i < length; ++i) {
    out[2 * i] = kLower[b[i] >> 4];
    out[2 * i + 1] = kLower[b[i] & 15];
  }
  return String(std::move(out));
}

Data noCopySubdataWithRange(const Data& data, Range range) {
  const bool inside = rangeFitsInLength(range, data.length());
  if (!inside) {
    KU_ASSERT(inside, u"-[NSData(KUDataExtensions) noCopySubdataWithRange:]", Value(data),
              u"given range for subdata is outside of available data");
    return Data();
  }
  return data.subdataWithRangeNoCopy(range);
}

}  // namespace tarnvik
