// Whole-buffer AES-256 (CBC, all-zero IV, PKCS#7 padding) under a text key.
//
//   Data sealed = AES256EncryptWithKey(plain, u"secret");
//   Data back = AES256DecryptWithKey(sealed, u"secret");   // == plain
#pragma once

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The key is the first 32 bytes of the key's UTF-8 form, padded with zero bytes (a nil
// key is 32 zero bytes). The ciphertext is the input rounded up to the next multiple of 16,
// with at least one byte of padding. nil only if the cipher itself fails.
Data AES256EncryptWithKey(const Data& data, const String& key);
// nil for a wrong key (bad padding), a length that is not a multiple of 16, or empty input.
// A wrong key can, rarely, yield bytes whose padding happens to look valid.
Data AES256DecryptWithKey(const Data& data, const String& key);
// Reads the whole file, decrypts it and decodes the plaintext as UTF-8; nil when the file
// cannot be read, decryption fails, or the plaintext is not valid UTF-8.
String AES256DecryptedStringFromFile(const String& path, const String& key);

}  // namespace tarnvik
