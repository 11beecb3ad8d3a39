#include "tarnvik/zip/internal/entry_reader.hpp"

#include <libdeflate.h>

#include <algorithm>

namespace tarnvik::zip_reading {

namespace {

// Entries up to this size are inflated at once; larger ones stream.
constexpr std::uint64_t kWholeLimit = 64ull << 20;
constexpr std::size_t kInputChunk = 256 * 1024;

libdeflate_decompressor* decompressor() {
  thread_local std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
      instance(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  return instance.get();
}

}  // namespace

EntryReader::~EntryReader() { close(); }

bool EntryReader::open(const unz_file_info64& info, const std::optional<std::string>& password) {
  expectedCrc_ = static_cast<std::uint32_t>(info.crc);
  crc_ = 0;
  crcMatched_ = false;
  const bool encrypted = (info.flag & 1) != 0;
  if (encrypted) {
    // Debian's minizip opens an encrypted entry without a password and hands out its
    // ciphertext: with no password the open fails here instead.
    if (!password || (info.compression_method != 0 && info.compression_method != Z_DEFLATED)) {
      return false;
    }
    int method = 0, level = 0;
    if (unzOpenCurrentFile2(zip_, &method, &level, 1) != UNZ_OK) return false;
    isOpen_ = true;
    mode_ = Mode::Decrypting;
    dataOffset_ = unzGetCurrentFileZStreamPos64(zip_);
    std::uint8_t header[12];
    if (unzReadCurrentFile(zip_, header, sizeof header) != static_cast<int>(sizeof header)) {
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
    deflated_ = info.compression_method == Z_DEFLATED;
    inflateDone_ = false;
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
  if (info.compression_method == Z_DEFLATED && info.uncompressed_size <= kWholeLimit &&
      info.compressed_size <= kWholeLimit && openWhole(info)) {
    return true;
  }
  if (unzOpenCurrentFile(zip_) != UNZ_OK) return false;
  isOpen_ = true;
  mode_ = Mode::Minizip;
  dataOffset_ = unzGetCurrentFileZStreamPos64(zip_);
  return true;
}

// Reads the raw deflate data and inflates it at once. false (with the entry closed) when
// the entry cannot be read raw or its data does not inflate to exactly its size with its
// CRC: minizip then reads it the way it always does.
bool EntryReader::openWhole(const unz_file_info64& info) {
  int method = 0, level = 0;
  if (unzOpenCurrentFile2(zip_, &method, &level, 1) != UNZ_OK) return false;
  isOpen_ = true;
  dataOffset_ = unzGetCurrentFileZStreamPos64(zip_);
  std::vector<std::uint8_t> compressed(static_cast<std::size_t>(info.compressed_size));
  std::size_t got = 0;
  while (got < compressed.size()) {
    const int n = unzReadCurrentFile(
        zip_, compressed.data() + got,
        static_cast<unsigned>(std::min<std::size_t>(compressed.size() - got, 1u << 30)));
    if (n <= 0) break;
    got += static_cast<std::size_t>(n);
  }
  unzCloseCurrentFile(zip_);
  isOpen_ = false;
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
  whole_ = true;
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
    case Mode::Decrypting:
      return readDecrypted(bytes, length);
    case Mode::Minizip:
      break;
  }
  const int n = unzReadCurrentFile(zip_, bytes,
                                   static_cast<unsigned>(std::min<std::size_t>(length, 1u << 30)));
  if (n > 0) crc_ = static_cast<std::uint32_t>(crc32(crc_, bytes, static_cast<uInt>(n)));
  if (n == 0) crcMatched_ = crc_ == expectedCrc_;
  return n;
}

long EntryReader::readDecrypted(std::uint8_t* bytes, std::size_t length) {
  if (!deflated_) {
    const int n = unzReadCurrentFile(
        zip_, bytes, static_cast<unsigned>(std::min<std::size_t>(length, 1u << 30)));
    if (n > 0) {
      decryptor_->decrypt(bytes, static_cast<std::size_t>(n));
      crc_ = static_cast<std::uint32_t>(crc32(crc_, bytes, static_cast<uInt>(n)));
    }
    if (n == 0) crcMatched_ = crc_ == expectedCrc_;
    return n;
  }
  if (inflateDone_) {
    crcMatched_ = crc_ == expectedCrc_;
    return 0;
  }
  inflater_.next_out = bytes;
  inflater_.avail_out = static_cast<uInt>(std::min<std::size_t>(length, 1u << 30));
  while (inflater_.avail_out > 0) {
    if (inflater_.avail_in == 0) {
      input_.resize(kInputChunk);
      const int n = unzReadCurrentFile(zip_, input_.data(), static_cast<unsigned>(input_.size()));
      if (n < 0) return n;
      if (n == 0) break;  // the data ended before the stream did
      decryptor_->decrypt(input_.data(), static_cast<std::size_t>(n));
      inflater_.next_in = input_.data();
      inflater_.avail_in = static_cast<uInt>(n);
    }
    const int status = inflate(&inflater_, Z_NO_FLUSH);
    if (status == Z_STREAM_END) {
      inflateDone_ = true;
      break;
    }
    if (status != Z_OK && status != Z_BUF_ERROR) return Z_DATA_ERROR;
  }
  const auto produced = static_cast<std::size_t>(inflater_.next_out - bytes);
  crc_ = static_cast<std::uint32_t>(crc32(crc_, bytes, static_cast<uInt>(produced)));
  if (produced == 0) crcMatched_ = inflateDone_ && crc_ == expectedCrc_;
  return static_cast<long>(produced);
}

void EntryReader::close() {
  if (inflaterReady_) inflateEnd(&inflater_);
  inflaterReady_ = false;
  if (isOpen_) unzCloseCurrentFile(zip_);
  isOpen_ = false;
  whole_ = false;
  data_.clear();
  decryptor_.reset();
}

}  // namespace tarnvik::zip_reading
