#include "tarnvik/platform/net/base64.hpp"

#include <openssl/evp.h>

#include <array>
#include <string>

namespace tarnvik {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

String base64EncodedStringFromBytes(std::span<const std::uint8_t> bytes) {
  std::string out((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int written = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), bytes.data(),
                                      static_cast<int>(bytes.size()));
  out.resize(static_cast<std::size_t>(written));
  return String(std::u16string(out.begin(), out.end()));
}

Data base64DecodedDataTolerant(std::string_view text) {
  static const auto inAlphabet = [] {
    std::array<bool, 128> member{};
    for (const char c : kAlphabet) member[static_cast<unsigned char>(c)] = true;
    return member;
  }();
  // Keep the alphabet (every byte read modulo 128), then pad what is left so that OpenSSL's
  // strict block decoder takes it; the bytes the padding stands for are cut off after.
  std::string kept;
  kept.reserve(text.size() + 3);
  for (const char c : text) {
    const auto unit = static_cast<unsigned char>(c) % 128;
    if (inAlphabet[unit]) kept.push_back(static_cast<char>(unit));
  }
  if (kept.size() % 4 == 1) kept.pop_back();
  const std::size_t padding = (4 - kept.size() % 4) % 4;
  kept.append(padding, '=');
  ByteBuffer out(kept.size() / 4 * 3);
  const int decoded =
      EVP_DecodeBlock(out.data(), reinterpret_cast<const unsigned char*>(kept.data()),
                      static_cast<int>(kept.size()));
  out.resize(decoded < 0 ? 0 : static_cast<std::size_t>(decoded) - padding);
  return Data::withBuffer(std::move(out));
}

}  // namespace tarnvik
