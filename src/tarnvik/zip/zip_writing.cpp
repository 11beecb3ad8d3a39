// The writing half of the facade. The entry calls are minizip's zipOpen, zipOpenNewFileInZip
// (deflate, level -1 or 0), zipWriteInFileInZip, zipCloseFileInZip and zipClose; they
// differ where no reader of the archive can tell: the 64-bit variants (entries past
// 4 GiB), and a whole file of moderate size deflated at once with libdeflate and written
// raw (zipOpenNewFileInZip2_64 with raw = 1, zipCloseFileInZipRaw64 with its size and
// CRC), which is about twice as fast as zlib at the same level.
#include <libdeflate.h>
#include <minizip/zip.h>
#include <stdio.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace tarnvik {

struct KUZipArchiveHandle {
  zipFile zip = nullptr;
  // A file's bytes and their deflated form, kept from entry to entry.
  std::vector<std::uint8_t> bytes;
  std::vector<std::uint8_t> packed;
};

namespace {

// Files up to this size are read whole and deflated at once (the file and its deflated
// form held together); larger ones stream through minizip's zlib.
constexpr std::uint64_t kWholeLimit = 32ull << 20;
constexpr std::size_t kStreamPiece = 1 << 20;
constexpr std::uint64_t kZip64Size = 0xFFFFFFFFull;

zipFile handleOf(const std::unique_ptr<KUZipArchiveHandle>& handle) {
  return handle ? handle->zip : nullptr;
}

// Deflates the bytes as zlib would at the level (-1: the default, 6), with libdeflate.
bool deflateWhole(const std::vector<std::uint8_t>& bytes, int level,
                  std::vector<std::uint8_t>* out) {
  const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
      libdeflate_alloc_compressor(level < 0 ? 6 : level), libdeflate_free_compressor);
  if (!compressor) return false;
  out->resize(libdeflate_deflate_compress_bound(compressor.get(), bytes.size()));
  const std::size_t size = libdeflate_deflate_compress(compressor.get(), bytes.data(), bytes.size(),
                                                       out->data(), out->size());
  out->resize(size);
  return size > 0 || bytes.empty();
}

// Reads the rest of the file in pieces until its end (or a read error).
template <class Sink>
void readPieces(FILE* file, std::size_t piece, Sink sink) {
  std::vector<std::uint8_t> buffer(piece);
  while (!::feof(file) && !::ferror(file)) {
    const std::size_t n = ::fread(buffer.data(), 1, buffer.size(), file);
    if (n > 0) sink(buffer.data(), n);
  }
}

}  // namespace

KUZipArchive::KUZipArchive(const String& path) : path_(path) {}

// An archive still open is finished, so that its entries are not lost.
KUZipArchive::~KUZipArchive() {
  if (zipFile zip = handleOf(zip_); zip && !closed_) zipClose(zip, nullptr);
}

bool KUZipArchive::open() {
  KU_ASSERT(!handleOf(zip_), u"-[KUZipArchive open]", Value(path_),
            u"Attempting open an archive which is already open");
  zip_ = std::make_unique<KUZipArchiveHandle>();
  zip_->zip = zipOpen64(path_.utf8().c_str(), APPEND_STATUS_CREATE);
  return zip_->zip != nullptr;
}

bool KUZipArchive::writeFile(const String& path) {
  KU_ASSERT(handleOf(zip_), u"-[KUZipArchive writeFile:]", Value(path_),
            u"Attempting to write to an archive which was never opened");
  return writeFileEntry(path, path.lastPathComponent(), -1);
}

bool KUZipArchive::writeFile(const String& path, const String& toZipFilePath) {
  KU_ASSERT(handleOf(zip_), u"-[KUZipArchive writeFile:toZipFilePath:]", Value(path_),
            u"Attempting to write to an archive which was never opened");
  KU_PARAMETER_ASSERT(!toZipFilePath.isNil(), u"destinationName",
                      u"-[KUZipArchive writeFile:toZipFilePath:]", Value(path_));
  return writeFileEntry(path, toZipFilePath, -1);
}

bool KUZipArchive::writeFileWithoutCompressionToZipFilePath(const String& path,
                                                            const String& toZipFilePath) {
  KU_ASSERT(handleOf(zip_), u"-[KUZipArchive writeFile:withoutCompressionToZipFilePath:]",
            Value(path_), u"Attempting to write to an archive which was never opened");
  KU_PARAMETER_ASSERT(!toZipFilePath.isNil(), u"destinationName",
                      u"-[KUZipArchive writeFile:withoutCompressionToZipFilePath:]", Value(path_));
  return writeFileEntry(path, toZipFilePath, 0);
}

namespace {

// Reads the rest of the open file whole, to its end (which may lie past the size seen a
// moment ago), and deflates it.
bool packOpenFile(FILE* file, std::uint64_t size, int level, std::vector<std::uint8_t>& bytes,
                  KUZipPackedEntry* entry) {
  bytes.resize(static_cast<std::size_t>(size) + 1);
  std::size_t got = 0;
  for (;;) {
    got += ::fread(bytes.data() + got, 1, bytes.size() - got, file);
    if (::feof(file) || ::ferror(file)) break;
    bytes.resize(bytes.size() * 2);
  }
  bytes.resize(got);
  entry->size = got;
  entry->crc = libdeflate_crc32(0, bytes.data(), bytes.size());
  entry->level = level;
  return deflateWhole(bytes, level, &entry->deflated);
}

}  // namespace

KUZipPackedEntry KUZipArchive::packFile(const String& path, int level) {
  KUZipPackedEntry entry;
  FILE* file = ::fopen(path.utf8().c_str(), "r");
  if (!file) return entry;
  struct stat info {};
  if (::fstat(::fileno(file), &info) == 0 && S_ISREG(info.st_mode) &&
      static_cast<std::uint64_t>(info.st_size) <= kWholeLimit) {
    std::vector<std::uint8_t> bytes;
    entry.packed =
        packOpenFile(file, static_cast<std::uint64_t>(info.st_size), level, bytes, &entry);
  }
  entry.readable = true;
  ::fclose(file);
  return entry;
}

bool KUZipArchive::writePackedEntry(const KUZipPackedEntry& entry, const String& name) {
  zipFile zip = closed_ ? nullptr : handleOf(zip_);
  if (!zip || !entry.packed) return false;
  zipOpenNewFileInZip2_64(zip, name.utf8().c_str(), nullptr, nullptr, 0, nullptr, 0, nullptr,
                          Z_DEFLATED, entry.level, 1, 0);
  zipWriteInFileInZip(zip, entry.deflated.data(), static_cast<unsigned>(entry.deflated.size()));
  return zipCloseFileInZipRaw64(zip, entry.size, entry.crc) == ZIP_OK;
}

bool KUZipArchive::writeFileEntry(const String& path, const String& name, int level) {
  FILE* file = ::fopen(path.utf8().c_str(), "r");
  if (!file) return false;
  // After close the handle stays set (the archive cannot be opened again) but is gone.
  zipFile zip = closed_ ? nullptr : handleOf(zip_);
  struct stat info {};
  const std::uint64_t size =
      ::fstat(::fileno(file), &info) == 0 ? static_cast<std::uint64_t>(info.st_size) : 0;
  bool written = false;
  if (S_ISREG(info.st_mode) && size <= kWholeLimit && zip) {
    // The buffers are the archive's, kept from entry to entry.
    KUZipPackedEntry entry;
    std::swap(entry.deflated, zip_->packed);
    entry.packed = packOpenFile(file, size, level, zip_->bytes, &entry);
    written = writePackedEntry(entry, name);
    std::swap(entry.deflated, zip_->packed);
  } else {
    zipOpenNewFileInZip64(zip, name.utf8().c_str(), nullptr, nullptr, 0, nullptr, 0, nullptr,
                          Z_DEFLATED, level, size >= kZip64Size ? 1 : 0);
    readPieces(file, kStreamPiece, [&](const std::uint8_t* data, std::size_t n) {
      zipWriteInFileInZip(zip, data, static_cast<unsigned>(n));
    });
    written = zipCloseFileInZip(zip) == ZIP_OK;
  }
  ::fclose(file);
  return written;
}

bool KUZipArchive::writeData(const Data& data, const String& filename) {
  zipFile zip = closed_ ? nullptr : handleOf(zip_);
  if (data.isNil() || !zip) return false;
  zip_fileinfo info{};
  KUZipDate date;
  zipInfo(&date, Date::now());
  info.tmz_date = tm_zip{date.seconds, date.minutes, date.hours, date.day, date.month, date.year};
  zipOpenNewFileInZip64(zip, filename.utf8().c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                        Z_DEFLATED, -1, data.length() >= kZip64Size ? 1 : 0);
  // One call, unless the bytes exceed what one call can take.
  for (UInteger done = 0; done < data.length();) {
    const auto piece = static_cast<unsigned>(std::min<UInteger>(data.length() - done, 1u << 30));
    zipWriteInFileInZip(zip, data.bytes() + done, piece);
    done += piece;
  }
  return zipCloseFileInZip(zip) == ZIP_OK;
}

bool KUZipArchive::close() {
  KU_ASSERT(handleOf(zip_), u"-[KUZipArchive close]", Value(path_),
            u"[KUZipArchive] Attempting to close an archive which was never opened");
  if (zipFile zip = handleOf(zip_); zip && !closed_) zipClose(zip, nullptr);
  closed_ = true;
  return true;
}

void KUZipArchive::zipInfo(KUZipDate* date, Date when) {
  const DateComponents c = Calendar().components(when);
  date->seconds = static_cast<std::uint32_t>(c.second);
  date->minutes = static_cast<std::uint32_t>(c.minute);
  date->hours = static_cast<std::uint32_t>(c.hour);
  date->day = static_cast<std::uint32_t>(c.day);
  date->month = static_cast<std::uint32_t>(c.month - 1);
  date->year = static_cast<std::uint32_t>(c.year);
}

bool KUZipArchive::createZipFileAtPath(const String& path, const Array& paths) {
  KUZipArchive archive(path);
  if (!archive.open()) return false;
  for (const Value& file : paths) archive.writeFile(file.asString());
  return archive.close();
}

URL KUZipArchive::createTemporaryZipFileNamed(const String& name, const Array& paths) {
  FileManager& fm = FileManager::defaultManager();
  const String path =
      fm.temporaryDirectory().stringByAppendingPathComponent(name).stringByAppendingPathExtension(
          u"zip");
  if (fm.itemExistsAtPath(path) && !fm.removeItemAtPath(path)) return URL();
  return createZipFileAtPath(path, paths) ? URL::fileURLWithPath(path) : URL();
}

}  // namespace tarnvik
