#include "tarnvik/codec/digests.hpp"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <array>
#include <cstring>
#include <stdexcept>

#include "tarnvik/codec/hex.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

namespace {

using Digest = std::array<std::uint8_t, EVP_MAX_MD_SIZE>;

std::size_t digest(const EVP_MD* type, const void* bytes, std::size_t length, Digest& out) {
  unsigned int size = 0;
  if (EVP_Digest(bytes, length, out.data(), &size, type, nullptr) != 1) {
    throw std::runtime_error("OpenSSL digest failed");
  }
  return size;
}

String upperHex(const Digest& d, std::size_t size) {
  return hexstringWithBytes(d.data(), size).uppercaseString();
}

// The UTF-8 bytes up to the first NUL, as a C string would hold them.
std::string cStringBytes(const String& text) {
  std::string utf8 = text.utf8();
  utf8.resize(std::strlen(utf8.c_str()));
  return utf8;
}

}  // namespace

String md5(const Data& data) {
  Digest d;
  return upperHex(d, digest(EVP_md5(), data.bytes(), data.length(), d));
}

String sha1(const Data& data) {
  Digest d;
  return upperHex(d, digest(EVP_sha1(), data.bytes(), data.length(), d));
}

String md5(const String& text) { return md5NonCapitalLetters(text).uppercaseString(); }

String md5NonCapitalLetters(const String& text) {
  const Data binary = md5BinaryForm(text);
  return hexstringWithBytes(binary);
}

Data md5BinaryForm(const String& text) {
  const std::string bytes = cStringBytes(text);
  Digest d;
  const std::size_t size = digest(EVP_md5(), bytes.data(), bytes.size(), d);
  return Data::withBytes(d.data(), size);
}

String SHA1Sum(const String& text) {
  const std::string utf8 = text.utf8();
  Digest d;
  const std::size_t size =
      digest(EVP_sha1(), utf8.data(), std::min<std::size_t>(text.length(), utf8.size()), d);
  return hexstringWithBytes(d.data(), size);
}

String redcineGUID(const String& text) {
  // All the UTF-8 bytes, a NUL among them included; a short text is padded with zeros.
  std::string bytes = text.utf8();
  bytes.resize(std::max<std::size_t>(bytes.size(), 16), '\0');
  int b[16];
  for (int i = 0; i < 16; ++i) b[i] = static_cast<std::int8_t>(bytes[static_cast<std::size_t>(i)]);
  return stringWithFormat(u"%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                          b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11],
                          b[12], b[13], b[14], b[15]);
}

String UUID() {
  std::uint8_t u[16];
  if (RAND_bytes(u, sizeof u) != 1) throw std::runtime_error("OpenSSL random generator failed");
  u[6] = static_cast<std::uint8_t>((u[6] & 0x0F) | 0x40);  // version 4
  u[8] = static_cast<std::uint8_t>((u[8] & 0x3F) | 0x80);  // RFC 4122 variant
  return stringWithFormat(u"%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                          u[0], u[1], u[2], u[3], u[4], u[5], u[6], u[7], u[8], u[9], u[10], u[11],
                          u[12], u[13], u[14], u[15]);
}

}  // namespace tarnvik
