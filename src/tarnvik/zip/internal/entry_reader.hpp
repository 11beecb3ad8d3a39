// Reading the current entry of an open archive, by the fastest way that gives the bytes
// minizip would: a whole moderate deflated entry is read raw and inflated at once with
// libdeflate (CRC checked; damaged data falls back to minizip's own streaming, so that it
// reads exactly as minizip reads it); an encrypted entry is read raw and decrypted here
// (Debian's minizip cannot), then inflated with zlib; anything else streams through
// minizip. Not installed.
#pragma once

#include <minizip/unzip.h>
#include <zlib.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tarnvik/zip/internal/pkware_cipher.hpp"

namespace tarnvik::zip_reading {

class EntryReader {
 public:
  explicit EntryReader(unzFile zip) : zip_(zip) {}
  ~EntryReader();
  EntryReader(const EntryReader&) = delete;
  EntryReader& operator=(const EntryReader&) = delete;

  // Opens the current entry; false where minizip's open fails, and for an encrypted entry
  // without a password or with one that fails the check byte.
  bool open(const unz_file_info64& info, const std::optional<std::string>& password);
  // Up to length bytes of the entry's data: 0 at its end, negative for damaged data.
  long read(std::uint8_t* bytes, std::size_t length);
  // The entry's whole data when it was inflated at once; empty otherwise.
  std::span<const std::uint8_t> whole() const {
    return whole_ ? std::span(data_) : std::span<const std::uint8_t>();
  }
  // After the end was read: whether the data matched the entry's CRC.
  bool crcMatched() const { return crcMatched_; }
  // Where the entry's compressed data starts in the archive.
  std::uint64_t dataOffset() const { return dataOffset_; }
  void close();

 private:
  enum class Mode { Minizip, Whole, Decrypting };
  long readDecrypted(std::uint8_t* bytes, std::size_t length);
  bool openWhole(const unz_file_info64& info);

  unzFile zip_;
  Mode mode_ = Mode::Minizip;
  bool isOpen_ = false;
  bool whole_ = false;
  bool crcMatched_ = false;
  std::uint64_t dataOffset_ = 0;
  std::uint32_t expectedCrc_ = 0;
  std::uint32_t crc_ = 0;
  std::vector<std::uint8_t> data_;
  std::size_t served_ = 0;
  // Decrypting:
  std::optional<pkware::Decryptor> decryptor_;
  bool deflated_ = false;
  bool inflateDone_ = false;
  z_stream inflater_{};
  bool inflaterReady_ = false;
  std::vector<std::uint8_t> input_;
};

}  // namespace tarnvik::zip_reading
