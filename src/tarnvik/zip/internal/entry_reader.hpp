// Reading the current entry of an open archive, by the fastest way that gives the bytes
// minizip would. minizip opens the entry raw (checking its local header and finding its
// data); the data are then read straight from the archive file with pread, in large
// pieces (minizip copies stored data byte by byte through a 16 KiB buffer):
// - a moderate deflated entry is inflated at once with libdeflate, its CRC checked; data
//   that does not inflate cleanly is read again through minizip's own streaming, so that
//   damaged entries read exactly as minizip reads them;
// - a stored entry, and a large deflated one (through zlib), stream;
// - an encrypted entry is decrypted here (Debian's minizip cannot);
// - ZIP64 sizes come from the extra field: the minizip of Debian's 64-bit build misreads
//   them (it compares a 32-bit field with an all-ones 64-bit long) and would stop such an
//   entry at 4 GiB.
// Not installed.
#pragma once

#include <minizip/unzip.h>
#include <zlib.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tarnvik/zip/internal/pkware_cipher.hpp"

namespace tarnvik::zip_reading {

// Replaces the 32-bit placeholders (all ones) of the entry's sizes with the 64-bit values
// of its ZIP64 extra field; true when it did.
bool applyZip64Sizes(unz_file_info64& info, const std::vector<std::uint8_t>& extraField);

class EntryReader {
 public:
  EntryReader(unzFile zip, const std::string& archivePath);
  ~EntryReader();
  EntryReader(const EntryReader&) = delete;
  EntryReader& operator=(const EntryReader&) = delete;

  // Opens the current entry; false where minizip's open fails, and for an encrypted entry
  // without a password or with one that fails the check byte. The sizes are the true
  // ones (applyZip64Sizes).
  bool open(const unz_file_info64& info, const std::optional<std::string>& password);
  // Up to length bytes of the entry's data: 0 at its end, negative for damaged data.
  long read(std::uint8_t* bytes, std::size_t length);
  // The entry's whole data when it was inflated at once; empty otherwise.
  std::span<const std::uint8_t> whole() const {
    return mode_ == Mode::Whole ? std::span<const std::uint8_t>(data_)
                                : std::span<const std::uint8_t>();
  }
  // After the end was read: whether the data matched the entry's CRC.
  bool crcMatched() const { return crcMatched_; }
  // Where the entry's compressed data starts in the archive.
  std::uint64_t dataOffset() const { return dataOffset_; }
  void close();

 private:
  enum class Mode { Minizip, Whole, Streaming };
  bool openWhole(const unz_file_info64& info);
  long readRaw(std::uint8_t* bytes, std::size_t length);
  long readStreaming(std::uint8_t* bytes, std::size_t length);

  unzFile zip_;
  int archive_ = -1;  // the archive file, for pread
  Mode mode_ = Mode::Minizip;
  bool isOpen_ = false;
  bool crcMatched_ = false;
  std::uint64_t dataOffset_ = 0;
  std::uint32_t expectedCrc_ = 0;
  std::uint32_t crc_ = 0;
  std::vector<std::uint8_t> data_;
  std::size_t served_ = 0;
  std::uint64_t rawTotal_ = 0;
  std::uint64_t rawLeft_ = 0;
  std::optional<pkware::Decryptor> decryptor_;
  bool deflated_ = false;
  bool streamEnded_ = false;
  z_stream inflater_{};
  bool inflaterReady_ = false;
  std::vector<std::uint8_t> input_;
};

}  // namespace tarnvik::zip_reading
