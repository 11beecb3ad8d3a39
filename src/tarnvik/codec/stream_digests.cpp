#include "tarnvik/codec/stream_digests.hpp"

#include <openssl/evp.h>
#include <xxhash.h>

#include <cstdio>

namespace tarnvik {

struct StreamingDigest::State {
  DigestAlgorithm algorithm;
  EVP_MD_CTX* evp = nullptr;
  XXH64_state_t* xxh64 = nullptr;
  XXH3_state_t* xxh3 = nullptr;
};

namespace {

std::string hexOf(const unsigned char* bytes, std::size_t length) {
  static const char digits[] = "0123456789abcdef";
  std::string hex(length * 2, '0');
  for (std::size_t i = 0; i < length; ++i) {
    hex[2 * i] = digits[bytes[i] >> 4];
    hex[2 * i + 1] = digits[bytes[i] & 15];
  }
  return hex;
}

}  // namespace

const char* digestName(DigestAlgorithm algorithm) {
  switch (algorithm) {
    case DigestAlgorithm::MD5:
      return "md5";
    case DigestAlgorithm::SHA1:
      return "sha1";
    case DigestAlgorithm::XXH64:
      return "xxh64";
    case DigestAlgorithm::XXH128:
      return "xxh128";
  }
  return "md5";
}

StreamingDigest::StreamingDigest(DigestAlgorithm algorithm) : state_(std::make_unique<State>()) {
  state_->algorithm = algorithm;
  switch (algorithm) {
    case DigestAlgorithm::MD5:
    case DigestAlgorithm::SHA1:
      state_->evp = EVP_MD_CTX_new();
      EVP_DigestInit_ex(state_->evp, algorithm == DigestAlgorithm::MD5 ? EVP_md5() : EVP_sha1(),
                        nullptr);
      break;
    case DigestAlgorithm::XXH64:
      state_->xxh64 = XXH64_createState();
      XXH64_reset(state_->xxh64, 0);
      break;
    case DigestAlgorithm::XXH128:
      state_->xxh3 = XXH3_createState();
      XXH3_128bits_reset(state_->xxh3);
      break;
  }
}

StreamingDigest::~StreamingDigest() {
  if (state_->evp) EVP_MD_CTX_free(state_->evp);
  if (state_->xxh64) XXH64_freeState(state_->xxh64);
  if (state_->xxh3) XXH3_freeState(state_->xxh3);
}

void StreamingDigest::update(const void* bytes, std::size_t length) {
  if (state_->evp) EVP_DigestUpdate(state_->evp, bytes, length);
  if (state_->xxh64) XXH64_update(state_->xxh64, bytes, length);
  if (state_->xxh3) XXH3_128bits_update(state_->xxh3, bytes, length);
}

std::string StreamingDigest::hexDigest() const {
  if (state_->evp) {
    // Finish a copy, so that the digest can go on.
    EVP_MD_CTX* copy = EVP_MD_CTX_new();
    EVP_MD_CTX_copy_ex(copy, state_->evp);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    EVP_DigestFinal_ex(copy, digest, &length);
    EVP_MD_CTX_free(copy);
    return hexOf(digest, length);
  }
  if (state_->xxh64) {
    XXH64_canonical_t canonical;
    XXH64_canonicalFromHash(&canonical, XXH64_digest(state_->xxh64));
    return hexOf(canonical.digest, sizeof canonical.digest);
  }
  XXH128_canonical_t canonical;
  XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(state_->xxh3));
  return hexOf(canonical.digest, sizeof canonical.digest);
}

String digestOfFileAtPath(const String& path, DigestAlgorithm algorithm, Error* error,
                          FileManager& fileManager) {
  const Data bytes = fileManager.contentsAtPath(path, NSDataReadingMappedIfSafe, error);
  if (bytes.isNil()) return String();
  StreamingDigest digest(algorithm);
  digest.update(bytes.bytes(), bytes.length());
  return String(digest.hexDigest());
}

}  // namespace tarnvik
