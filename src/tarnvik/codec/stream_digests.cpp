#include "tarnvik/codec/stream_digests.hpp"

#include <openssl/evp.h>
#include <xxhash.h>

#include <cstdio>
#include <new>

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
    case DigestAlgorithm::SHA256:
      return "sha256";
    case DigestAlgorithm::XXH64:
      return "xxh64";
    case DigestAlgorithm::XXH128:
      return "xxh128";
  }
  return "md5";
}

namespace {

const EVP_MD* evpDigest(DigestAlgorithm algorithm) {
  switch (algorithm) {
    case DigestAlgorithm::MD5:
      return EVP_md5();
    case DigestAlgorithm::SHA1:
      return EVP_sha1();
    case DigestAlgorithm::SHA256:
      return EVP_sha256();
    default:
      return nullptr;
  }
}

// Out of memory is the one way OpenSSL and xxHash can fail to start a digest.
template <class T>
T* started(T* state) {
  if (!state) throw std::bad_alloc();
  return state;
}

}  // namespace

StreamingDigest::StreamingDigest(DigestAlgorithm algorithm) : state_(std::make_unique<State>()) {
  state_->algorithm = algorithm;
  if (evpDigest(algorithm)) {
    state_->evp = started(EVP_MD_CTX_new());
  } else if (algorithm == DigestAlgorithm::XXH64) {
    state_->xxh64 = started(XXH64_createState());
  } else {
    state_->xxh3 = started(XXH3_createState());
  }
  reset();
}

void StreamingDigest::reset() {
  if (state_->evp) EVP_DigestInit_ex(state_->evp, evpDigest(state_->algorithm), nullptr);
  if (state_->xxh64) XXH64_reset(state_->xxh64, 0);
  if (state_->xxh3) XXH3_128bits_reset(state_->xxh3);
}

std::string StreamingDigest::finish() {
  std::string hex = hexDigest();
  reset();
  return hex;
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
  FileHandle file = fileManager.openFileForReadingAtPath(path, error);
  if (!file.isOpen()) return String();
  constexpr std::size_t kBlockSize = 1 << 20;
  const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(kBlockSize);
  StreamingDigest digest(algorithm);
  for (;;) {
    UInteger length = 0;
    if (!fileManager.readBytes(file, block.get(), kBlockSize, &length, error)) return String();
    if (length == 0) break;
    digest.update(block.get(), length);
  }
  return String(digest.finish());
}

}  // namespace tarnvik
