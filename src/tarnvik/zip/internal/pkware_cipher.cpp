#include "tarnvik/zip/internal/pkware_cipher.hpp"

#include <zlib.h>

namespace tarnvik::pkware {

namespace {

std::uint32_t crc32Step(std::uint32_t crc, std::uint8_t byte) {
  static const z_crc_t* table = get_crc_table();
  return table[(crc ^ byte) & 0xFF] ^ (crc >> 8);
}

}  // namespace

Decryptor::Decryptor(std::string_view password) : keys_{0x12345678, 0x23456789, 0x34567890} {
  for (const char c : password) update(static_cast<std::uint8_t>(c));
}

void Decryptor::update(std::uint8_t plain) {
  keys_[0] = crc32Step(keys_[0], plain);
  keys_[1] = (keys_[1] + (keys_[0] & 0xFF)) * 134775813 + 1;
  keys_[2] = crc32Step(keys_[2], static_cast<std::uint8_t>(keys_[1] >> 24));
}

std::uint8_t Decryptor::streamByte() const {
  const std::uint32_t temp = (keys_[2] & 0xFFFF) | 2;
  return static_cast<std::uint8_t>((temp * (temp ^ 1)) >> 8);
}

void Decryptor::decrypt(std::uint8_t* bytes, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i) {
    bytes[i] = static_cast<std::uint8_t>(bytes[i] ^ streamByte());
    update(bytes[i]);
  }
}

bool Decryptor::acceptHeader(std::uint8_t* header, std::uint8_t check) {
  decrypt(header, 12);
  return header[11] == check;
}

}  // namespace tarnvik::pkware
