// Digests fed piece by piece, and the digest of a whole file, in the hex forms md5sum,
// sha1sum, sha256sum and xxhsum print (lower case; XXH64 and XXH128 in their canonical
// big-endian order, as `xxhsum` and `xxhsum -H2` show them).
//
//   StreamingDigest digest(DigestAlgorithm::XXH128);
//   digest.update(bytes, length);        // as often as needed
//   std::string hex = digest.finish();   // and the digest starts over
//   String md5 = digestOfFileAtPath(u"/srv/Day01/A001C001.mov", DigestAlgorithm::MD5, &error);
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

enum class DigestAlgorithm : std::uint8_t { MD5, SHA1, SHA256, XXH64, XXH128 };

// The name a manifest file takes after it: "md5", "sha1", "sha256", "xxh64", "xxh128".
const char* digestName(DigestAlgorithm algorithm);

class StreamingDigest {
 public:
  explicit StreamingDigest(DigestAlgorithm algorithm);
  ~StreamingDigest();
  StreamingDigest(const StreamingDigest&) = delete;
  StreamingDigest& operator=(const StreamingDigest&) = delete;

  void update(const void* bytes, std::size_t length);
  // The digest of everything fed so far, in lower-case hex. The digest may be fed further
  // afterwards.
  std::string hexDigest() const;
  // The digest of everything fed so far, in lower-case hex; the digest then starts over, as
  // if nothing had been fed.
  std::string finish();

 private:
  void reset();

  struct State;
  std::unique_ptr<State> state_;
};

// The digest of the file's bytes, read through the file manager in 1 MiB blocks, so that a
// file of any size takes the same memory; nil with the file manager's error (the path and
// the cause) when the file cannot be opened or read.
String digestOfFileAtPath(const String& path, DigestAlgorithm algorithm, Error* error = nullptr,
                          FileManager& fileManager = FileManager::defaultManager());

}  // namespace tarnvik
