// The traditional PKWARE cipher of the zip application note (section 6.1): three 32-bit
// keys stirred by each plain byte, a 12-byte header in front of the data whose last byte
// checks the password. Debian's minizip is built without it, so the facade reads such
// entries raw and decrypts them here. Not installed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarnvik::pkware {

class Decryptor {
 public:
  explicit Decryptor(std::string_view password);
  // Decrypts the 12-byte header; true when its last byte is the check byte (the high byte
  // of the CRC, or of the DOS time for entries with a data descriptor).
  bool acceptHeader(std::uint8_t* header, std::uint8_t check);
  // Decrypts in place.
  void decrypt(std::uint8_t* bytes, std::size_t length);

 private:
  void update(std::uint8_t plain);
  std::uint8_t streamByte() const;
  std::uint32_t keys_[3];
};

}  // namespace tarnvik::pkware
