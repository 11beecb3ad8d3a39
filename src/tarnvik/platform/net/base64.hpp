// Base64 of bytes (RFC 4648, standard alphabet), with the platform's tolerant decoder.
//
//   base64EncodedStringFromBytes(Data::withString("a").span());    // "YQ=="
//   base64DecodedDataTolerant(" Y Q ").asStringView();              // "a"
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// "=" padding, no line breaks (OpenSSL's block encoder).
String base64EncodedStringFromBytes(std::span<const std::uint8_t> bytes);
// The tolerant decoder: each byte, taken modulo 128, is looked up; bytes outside the
// alphabet ("=", blanks, anything else) are skipped; four characters give three bytes, a
// final two one byte, a final three two bytes, and a lone final character is dropped.
Data base64DecodedDataTolerant(std::string_view text);

}  // namespace tarnvik
