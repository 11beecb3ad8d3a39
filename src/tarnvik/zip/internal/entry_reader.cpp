#include "tarnvik/zip/internal/entry_reader.hpp"

#include <fcntl.h>
#include <libdeflate.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace tarnvik::zip_reading {

namespace {

// Entries up to this size are inflated at once (the compressed and the inflated bytes held
// whole); larger ones stream, so that memory stays small whatever the archive holds.
constexpr std::uint64_t kWholeLimit = 8ull << 20;
constexpr std::size_t kInputChunk = 256 * 1024;
constexpr std::uint64_t kAllOnes32 = 0xFFFFFFFFull;

libdeflate_decompressor* decompressor() {
  thread_local std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
      instance(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  return instance.get();
}

std::uint64_t little(const std::uint8_t* at, int bytes) {
  std::uint64_t value = 0;
  for (int i = bytes - 1; i >= 0; --i) value = (value << 8) | at[i];
  return value;
}

unsigned clampRead(std::size_t length) {
  return static_cast<unsigned>(std::min<std::size_t>(length, 1u << 30));
}

}  // namespace

bool applyZip64Sizes(unz_file_info64& info, const std::vector<std::uint8_t>& extra) {
  std::size_t at = 0;
  while (at + 4 <= extra.size()) {
    const auto id = little(&extra[at], 2);
    const auto size = static_cast<std::size_t>(little(&extra[at + 2], 2));
    const std::size_t body = at + 4;
    if (body + size > extra.size()) break;
    if (id == 0x0001) {
      std::size_t field = body;
      bool changed = false;
      for (ZPOS64_T* value : {&info.uncompressed_size, &info.compressed_size}) {
        if (*value == kAllOnes32 && field + 8 <= body + size) {
          *value = little(&extra[field], 8);
          field += 8;
          changed = true;
        }
      }
      return changed;
    }
    at = body + size;
  }
  return false;
}

EntryReader::EntryReader(unzFile zip, const std::string& archivePath)
    : zip_(zip), archive_(::open(archivePath.c_str(), O_RDONLY | O_CLOEXEC)) {}

EntryReader::~EntryReader() {
  close();
  if (archive_ >= 0) ::close(archive_);
}

bool EntryReader::open(const unz_file_info64& info, const std::optional<std::string>& password) {
  expectedCrc_ = static_cast<std::uint32_t>(info.crc);
  crc_ = 0;
  crcMatched_ = false;
  const bool encrypted = (info.flag & 1) != 0;
  const bool known = info.compression_method == 0 || info.compression_method == Z_DEFLATED;
  // Debian's minizip opens an encrypted entry without a password and hands out its
  // ciphertext: with no password the open fails here instead.
  if (encrypted && (!password || !known)) return false;
  if (!known || archive_ < 0) {
    if (unzOpenCurrentFile(zip_) != UNZ_OK) return false;
    isOpen_ = true;
    mode_ = Mode::Minizip;
    dataOffset_ = unzGetCurrentFileZStreamPos64(zip_);
    return true;
  }
  int method = 0, level = 0;
  if (unzOpenCurrentFile2(zip_, &method, &level, 1) != UNZ_OK) return false;
  isOpen_ = true;
  dataOffset_ = unzGetCurrentFileZStreamPos64(zip_);
  rawTotal_ = rawLeft_ = info.compressed_size;
  if (!encrypted && info.compression_method == Z_DEFLATED &&
      info.uncompressed_size <= kWholeLimit && info.compressed_size <= kWholeLimit) {
    if (openWhole(info)) return true;
    // Damaged: minizip reads it as it always does.
    unzCloseCurrentFile(zip_);
    if (unzOpenCurrentFile(zip_) != UNZ_OK) {
      isOpen_ = false;
      return false;
    }
    mode_ = Mode::Minizip;
    return true;
  }
  mode_ = Mode::Streaming;
  if (encrypted) {
    std::uint8_t header[12];
    if (readRaw(header, sizeof header) != static_cast<long>(sizeof header)) {
      close();
      return false;
    }
    // Entries written with a data descriptor check against the DOS time instead of the CRC.
    const auto check = static_cast<std::uint8_t>((info.flag & 8) ? (info.dosDate >> 8) & 0xFF
                                                                 : (info.crc >> 24) & 0xFF);
    decryptor_.emplace(*password);
    if (!decryptor_->acceptHeader(header, check)) {
      close();
      return false;
    }
  }
  deflated_ = info.compression_method == Z_DEFLATED;
  streamEnded_ = false;
  if (deflated_) {
    inflater_ = z_stream{};
    if (inflateInit2(&inflater_, -MAX_WBITS) != Z_OK) {
      close();
      return false;
    }
    inflaterReady_ = true;
  }
  return true;
}

// Reads the compressed data and inflates it at once; false when it does not inflate to
// exactly its size with its CRC.
bool EntryReader::openWhole(const unz_file_info64& info) {
  // Both buffers keep their room from entry to entry.
  std::vector<std::uint8_t>& compressed = input_;
  compressed.resize(static_cast<std::size_t>(info.compressed_size));
  std::size_t got = 0;
  while (got < compressed.size()) {
    const long n = readRaw(compressed.data() + got, compressed.size() - got);
    if (n <= 0) break;
    got += static_cast<std::size_t>(n);
  }
  data_.resize(static_cast<std::size_t>(info.uncompressed_size));
  std::size_t produced = 0;
  if (got != compressed.size() ||
      libdeflate_deflate_decompress(decompressor(), compressed.data(), compressed.size(),
                                    data_.data(), data_.size(), &produced) != LIBDEFLATE_SUCCESS ||
      produced != data_.size() || libdeflate_crc32(0, data_.data(), data_.size()) != expectedCrc_) {
    data_.clear();
    return false;
  }
  mode_ = Mode::Whole;
  served_ = 0;
  crcMatched_ = true;
  return true;
}

long EntryReader::read(std::uint8_t* bytes, std::size_t length) {
  switch (mode_) {
    case Mode::Whole: {
      const std::size_t n = std::min(length, data_.size() - served_);
      std::copy_n(data_.data() + served_, n, bytes);
      served_ += n;
      return static_cast<long>(n);
    }
    case Mode::Streaming:
      return readStreaming(bytes, length);
    case Mode::Minizip:
      break;
  }
  const int n = unzReadCurrentFile(zip_, bytes, clampRead(length));
  if (n > 0) crc_ = libdeflate_crc32(crc_, bytes, static_cast<std::size_t>(n));
  if (n == 0) crcMatched_ = crc_ == expectedCrc_;
  return n;
}

// The entry's next raw (compressed, perhaps encrypted) bytes.
long EntryReader::readRaw(std::uint8_t* bytes, std::size_t length) {
  length = static_cast<std::size_t>(std::min<std::uint64_t>(length, rawLeft_));
  if (length == 0) return 0;
  long n = 0;
  do {
    n = ::pread(archive_, bytes, std::min<std::size_t>(length, 1u << 30),
                static_cast<off_t>(dataOffset_ + rawTotal_ - rawLeft_));
  } while (n < 0 && errno == EINTR);
  if (n > 0) rawLeft_ -= static_cast<std::uint64_t>(n);
  return n;
}

long EntryReader::readStreaming(std::uint8_t* bytes, std::size_t length) {
  if (!deflated_) {
    const long n = readRaw(bytes, length);
    if (n > 0) {
      if (decryptor_) decryptor_->decrypt(bytes, static_cast<std::size_t>(n));
      crc_ = libdeflate_crc32(crc_, bytes, static_cast<std::size_t>(n));
    }
    if (n == 0) crcMatched_ = crc_ == expectedCrc_;
    return n;
  }
  if (streamEnded_) {
    crcMatched_ = crc_ == expectedCrc_;
    return 0;
  }
  inflater_.next_out = bytes;
  inflater_.avail_out = clampRead(length);
  while (inflater_.avail_out > 0) {
    if (inflater_.avail_in == 0) {
      input_.resize(kInputChunk);
      const long n = readRaw(input_.data(), input_.size());
      if (n < 0) return n;
      if (n == 0) break;  // the data ended before the stream did
      if (decryptor_) decryptor_->decrypt(input_.data(), static_cast<std::size_t>(n));
      inflater_.next_in = input_.data();
      inflater_.avail_in = static_cast<uInt>(n);
    }
    const int status = inflate(&inflater_, Z_NO_FLUSH);
    if (status == Z_STREAM_END) {
      streamEnded_ = true;
      break;
    }
    if (status != Z_OK) return Z_DATA_ERROR;
  }
  const auto produced = static_cast<std::size_t>(inflater_.next_out - bytes);
  crc_ = libdeflate_crc32(crc_, bytes, produced);
  if (produced == 0) crcMatched_ = streamEnded_ && crc_ == expectedCrc_;
  return static_cast<long>(produced);
}

void EntryReader::close() {
  if (inflaterReady_) inflateEnd(&inflater_);
  inflaterReady_ = false;
  if (isOpen_) unzCloseCurrentFile(zip_);
  isOpen_ = false;
  mode_ = Mode::Minizip;
  data_.clear();  // keeps its room for the next entry
  decryptor_.reset();
}

}  // namespace tarnvik::zip_reading
