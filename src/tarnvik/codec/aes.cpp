#include "tarnvik/codec/aes.hpp"

#include <openssl/evp.h>

#include <array>
#include <climits>
#include <memory>

#include "tarnvik/platform/base/internal/prefault.hpp"

namespace tarnvik {

namespace {

// The key's UTF-8 form copied into a zeroed 33-byte buffer; its first 32 bytes are the key.
std::array<unsigned char, 33> keyBytes(const String& key) {
  std::array<unsigned char, 33> buffer{};
  const std::string utf8 = key.utf8();
  std::copy_n(utf8.begin(), std::min<std::size_t>(utf8.size(), 32), buffer.begin());
  return buffer;
}

Data crypt(const Data& input, const String& key, bool encrypt) {
  // EVP lengths are ints; larger buffers go through in slices.
  constexpr std::size_t kSlice = std::size_t{1} << 30;
  const auto k = keyBytes(key);
  const unsigned char iv[16] = {};
  std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> ctx(EVP_CIPHER_CTX_new(),
                                                                      EVP_CIPHER_CTX_free);
  if (!ctx || EVP_CipherInit_ex(ctx.get(), EVP_aes_256_cbc(), nullptr, k.data(), iv,
                                encrypt ? 1 : 0) != 1) {
    return Data();
  }
  ByteBuffer out(input.length() + 16);
  memory::prefaultForWriting(out.data(), out.size());
  std::size_t produced = 0;
  const std::uint8_t* in = input.bytes();
  for (std::size_t at = 0; at < input.length(); at += kSlice) {
    const int chunk = static_cast<int>(std::min(kSlice, input.length() - at));
    int written = 0;
    if (EVP_CipherUpdate(ctx.get(), out.data() + produced, &written, in + at, chunk) != 1)
      return Data();
    produced += static_cast<std::size_t>(written);
  }
  int written = 0;
  if (EVP_CipherFinal_ex(ctx.get(), out.data() + produced, &written) != 1) return Data();
  produced += static_cast<std::size_t>(written);
  if (!encrypt && input.isEmpty()) return Data();
  out.resize(produced);
  return Data::withBuffer(std::move(out));
}

}  // namespace

Data AES256EncryptWithKey(const Data& data, const String& key) { return crypt(data, key, true); }

Data AES256DecryptWithKey(const Data& data, const String& key) { return crypt(data, key, false); }

String AES256DecryptedStringFromFile(const String& path, const String& key) {
  const Data sealed = Data::dataWithContentsOfFile(path, NSDataReadingMappedIfSafe);
  if (sealed.isNil()) return String();
  const Data plain = AES256DecryptWithKey(sealed, key);
  if (plain.isNil()) return String();
  return String::fromUTF8(plain.asStringView());
}

}  // namespace tarnvik
