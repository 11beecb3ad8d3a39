// The extraction loop, shared by the facade's operations and the hardened entry point.
//
// The facade's steps are minizip's unzOpen, unzGetGlobalInfo, unzGoToFirstFile, and per
// entry unzOpenCurrentFile(Password), unzGetCurrentFileInfo, unzReadCurrentFile,
// unzCloseCurrentFile, unzGoToNextFile; then unzClose. The calls made here differ where
// nothing a caller, a delegate, a log reader or the file system can observe changes: the
// 64-bit variants (archives past 4 GiB and 65,535 entries); the entry's information read
// before the entry is opened, to choose how to read it (EntryReader); larger reads than
// 4096 bytes for file data (link targets keep 4096-byte pieces, which their decoding can
// see); and unzClose also when there is no first entry, where the archive used to be left
// open.
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <vector>

#include "tarnvik/core/errors.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/system/log.hpp"
#include "tarnvik/platform/time/calendar.hpp"
#include "tarnvik/zip/internal/beneath.hpp"
#include "tarnvik/zip/internal/entry_reader.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace tarnvik {

namespace {

constexpr std::size_t kLinkPiece = 4096;
constexpr std::size_t kDataPiece = 1 << 20;
// Entries smaller than this are never judged by their compression ratio.
constexpr std::uint64_t kRatioFloor = 1 << 20;

Error zipError(Integer code, const char16_t* description) {
  return Error(KUZipArchiveErrorDomain, code, Dictionary{{NSLocalizedDescriptionKey, description}});
}

struct timespec timespecOf(Date date) {
  const double seconds = date.timeIntervalSince1970();
  const double whole = std::floor(seconds);
  struct timespec t {};
  t.tv_sec = saturatingCast<time_t>(whole);
  t.tv_nsec = saturatingCast<long>((seconds - whole) * 1e9);
  return t;
}

// The disk number of the central directory, from the end-of-central-directory record
// (minizip's global information leaves it out).
std::uint64_t centralDirectoryDisk(const std::string& path) {
  FILE* file = ::fopen(path.c_str(), "rb");
  if (!file) return 0;
  std::uint64_t disk = 0;
  if (::fseeko(file, 0, SEEK_END) == 0) {
    const off_t size = ::ftello(file);
    const off_t span = std::min<off_t>(size, 65535 + 22);
    std::vector<unsigned char> tail(static_cast<std::size_t>(span));
    if (span >= 22 && ::fseeko(file, size - span, SEEK_SET) == 0 &&
        ::fread(tail.data(), 1, tail.size(), file) == tail.size()) {
      for (std::size_t at = tail.size() - 22 + 1; at-- > 0;) {
        if (tail[at] == 0x50 && tail[at + 1] == 0x4b && tail[at + 2] == 0x05 &&
            tail[at + 3] == 0x06) {
          disk = tail[at + 6] | (tail[at + 7] << 8);
          break;
        }
      }
    }
  }
  ::fclose(file);
  return disk;
}

// An archive of nothing but its end record (and a comment).
bool isEmptyArchive(const std::string& path) {
  FILE* file = ::fopen(path.c_str(), "rb");
  if (!file) return false;
  unsigned char head[22] = {};
  const bool read = ::fread(head, 1, sizeof head, file) == sizeof head;
  ::fclose(file);
  return read && head[0] == 0x50 && head[1] == 0x4b && head[2] == 0x05 && head[3] == 0x06 &&
         head[10] == 0 && head[11] == 0;
}

Date dateOfDOS(const Calendar& calendar, std::uint32_t d);

KUZipFileInfo fileInfoOf(const unz_file_info64& info) {
  KUZipFileInfo out;
  out.versionMadeBy = info.version;
  out.versionNeeded = info.version_needed;
  out.flag = info.flag;
  out.compressionMethod = info.compression_method;
  out.dosDate = info.dosDate;
  out.crc = info.crc;
  out.compressedSize = info.compressed_size;
  out.uncompressedSize = info.uncompressed_size;
  out.fileNameLength = info.size_filename;
  out.extraFieldLength = info.size_file_extra;
  out.commentLength = info.size_file_comment;
  out.diskNumberStart = info.disk_num_start;
  out.internalAttributes = info.internal_fa;
  out.externalAttributes = info.external_fa;
  out.seconds = info.tmu_date.tm_sec;
  out.minutes = info.tmu_date.tm_min;
  out.hours = info.tmu_date.tm_hour;
  out.day = info.tmu_date.tm_mday;
  out.month = info.tmu_date.tm_mon;
  out.year = info.tmu_date.tm_year;
  return out;
}

// One extraction: the archive, where it goes, and what the options ask for.
class Extraction {
 public:
  Extraction(const String& path, const String& destination, const UnzipOptions& options,
             bool hardened, Error* error, KUZipArchiveDelegate* delegate)
      : path_(path),
        destination_(destination),
        options_(options),
        hardened_(hardened),
        error_(error),
        delegate_(delegate) {}

  bool run();

 private:
  struct DateRecord {
    String path;
    std::string relative;
    Date date;
  };
  enum class Outcome { Processed, Skipped, Refused, Stop };

  Outcome entry(zip_reading::EntryReader& reader, const unz_file_info64& info,
                const std::string& rawName);
  void makeFolder(const String& full, const std::string& relative, Date date);
  // Makes the link; false when the hardened path refused it.
  bool writeLink(zip_reading::EntryReader& reader, const String& full, const std::string& relative);
  // Writes the entry's data; false when a cap refused it (the partial file removed).
  bool writeFile(zip_reading::EntryReader& reader, const unz_file_info64& info, const String& full,
                 const std::string& relative, Date date);
  Outcome refuse(const String& name, const String& reason);
  void datePass();

  const String& path_;
  const String& destination_;
  const UnzipOptions& options_;
  const bool hardened_;
  Error* error_;
  KUZipArchiveDelegate* delegate_;
  std::optional<beneath::Destination> tree_;  // the destination, when hardened
  const Calendar calendar_;
  std::vector<std::uint8_t> piece_;  // the write buffer, kept from entry to entry
  bool refusedAny_ = false;
  std::uint64_t bytesWritten_ = 0;
  std::map<std::uint64_t, std::uint64_t> dataRanges_;  // start -> end of each entry's data
  std::vector<DateRecord> dates_;
  UnzipProgress progress_;
};

bool Extraction::run() {
  FileManager& fm = FileManager::defaultManager();
  const std::string archive = path_.utf8();
  unzFile zip = unzOpen64(archive.c_str());
  if (!zip) {
    // minizip never finds the end record of an empty archive (it stands at offset 0, where
    // its search stops one byte short): such an archive opens but has no first entry.
    if (error_) {
      *error_ = isEmptyArchive(archive) ? zipError(-2, u"failed to open first file in zip file")
                                        : zipError(-1, u"failed to open zip file");
    }
    return false;
  }
  unz_global_info64 global{};
  unzGetGlobalInfo64(zip, &global);
  KUZipGlobalInfo info{global.number_entry, global.size_comment, centralDirectoryDisk(archive)};
  if (unzGoToFirstFile(zip) != UNZ_OK) {
    unzClose(zip);
    if (error_) *error_ = zipError(-2, u"failed to open first file in zip file");
    return false;
  }
  if (hardened_) {
    if (options_.maxEntries != 0 && info.numberOfEntries > options_.maxEntries) {
      unzClose(zip);
      refuse(path_.lastPathComponent(),
             stringWithFormat(u"%llu entries, more than %llu", info.numberOfEntries,
                              options_.maxEntries));
      return false;
    }
    Error made;
    if (!fm.createDirectoryAtPath(destination_, true, &made)) {
      unzClose(zip);
      if (error_) *error_ = made;
      return false;
    }
    tree_.emplace(::open(destination_.utf8().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!tree_->isOpen()) {
      unzClose(zip);
      if (error_) *error_ = FileManager::errorFor(FileOperation::Read, destination_, errno);
      return false;
    }
  }
  if (delegate_) delegate_->zipArchiveWillUnzipArchiveAtPath(path_, info);
  progress_.entriesTotal = info.numberOfEntries;

  zip_reading::EntryReader reader(zip, archive);
  std::optional<std::string> password;
  if (!options_.password.isNil() && options_.password.length() > 0) {
    const Data ascii = options_.password.dataUsingEncoding(NSASCIIStringEncoding);
    if (!ascii.isNil()) password = std::string(ascii.asStringView());
  }
  std::uint64_t index = 0;
  bool success = false;
  for (;;) {
    unz_file_info64 entryInfo{};
    if (unzGetCurrentFileInfo64(zip, &entryInfo, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
      break;
    }
    std::string rawName(entryInfo.size_filename + 1, '\0');
    std::vector<std::uint8_t> extra(entryInfo.size_file_extra);
    if (unzGetCurrentFileInfo64(zip, &entryInfo, rawName.data(), static_cast<uLong>(rawName.size()),
                                extra.data(), static_cast<uLong>(extra.size()), nullptr,
                                0) != UNZ_OK) {
      break;
    }
    rawName.resize(std::strlen(rawName.c_str()));
    zip_reading::applyZip64Sizes(entryInfo, extra);
    if (!reader.open(entryInfo, password)) break;
    const KUZipFileInfo fileInfo = fileInfoOf(entryInfo);
    const String fileName = String::fromUTF8Lossy(rawName);
    Outcome outcome = Outcome::Skipped;
    if (!delegate_ ||
        delegate_->zipArchiveShouldUnzipFileAtIndex(index, info.numberOfEntries, path_, fileName)) {
      if (delegate_)
        delegate_->zipArchiveWillUnzipFileAtIndex(index, info.numberOfEntries, path_, fileInfo);
      outcome = entry(reader, entryInfo, rawName);
    }
    reader.close();
    const int next = unzGoToNextFile(zip);
    if (outcome == Outcome::Processed) {
      if (delegate_)
        delegate_->zipArchiveDidUnzipFileAtIndex(index, info.numberOfEntries, path_, fileInfo);
      ++index;
    }
    ++progress_.entriesDone;
    progress_.bytesWritten = bytesWritten_;
    progress_.currentName = fileName;
    if (options_.progress && !options_.progress(progress_)) {
      if (error_) {
        *error_ = errorWithDomain(NSCocoaErrorDomain, NSUserCancelledError,
                                  stringWithFormat(u"Extraction of %@ was cancelled", path_));
      }
      break;
    }
    if (outcome == Outcome::Stop) break;
    if (next != UNZ_OK) {
      success = true;
      break;
    }
  }
  unzClose(zip);
  datePass();
  if (success && delegate_) delegate_->zipArchiveDidUnzipArchiveAtPath(path_, info, destination_);
  return success && !refusedAny_;
}

Extraction::Outcome Extraction::entry(zip_reading::EntryReader& reader, const unz_file_info64& info,
                                      const std::string& rawName) {
  FileManager& fm = FileManager::defaultManager();
  const bool facadeLink = info.compression_method == 0 && (info.external_fa & 0xF000) == 0x4000 &&
                          info.compressed_size != 0;
  // Info-ZIP and most tools keep the Unix mode in the high half of the attributes.
  const bool unixLink = hardened_ && ((info.external_fa >> 16) & 0xF000) == 0xA000;
  const bool isLink = facadeLink || unixLink;
  const bool isFolder = !rawName.empty() && (rawName.back() == '/' || rawName.back() == '\\');
  String name = String::fromUTF8Lossy(rawName);
  if (name.rangeOfString(u"/").location != NSNotFound ||
      name.rangeOfString(u"\\").location != NSNotFound) {
    name = name.stringByReplacingOccurrencesOfString(u"\\", u"/");
  }
  const std::string relative = name.utf8();
  if (hardened_) {
    if (options_.refuseEscapingNames && beneath::escapes(relative)) {
      return refuse(name, u"the name leads out of the destination");
    }
    if (options_.refuseOverlappingEntries && info.compressed_size > 0) {
      const std::uint64_t start = reader.dataOffset(), end = start + info.compressed_size;
      auto after = dataRanges_.upper_bound(start);
      const bool overlaps = (after != dataRanges_.end() && after->first < end) ||
                            (after != dataRanges_.begin() && std::prev(after)->second > start);
      if (overlaps) return refuse(name, u"its data overlaps another entry's");
      dataRanges_.emplace(start, end);
    }
  }
  const String full = destination_.stringByAppendingPathComponent(name);
  const Date date = dateOfDOS(calendar_, static_cast<std::uint32_t>(info.dosDate));
  const std::size_t slash = relative.find_last_of('/');
  makeFolder(isFolder ? full : full.stringByDeletingLastPathComponent(),
             isFolder ? relative : relative.substr(0, slash == std::string::npos ? 0 : slash),
             date);
  if (!isLink) dates_.push_back(DateRecord{full, relative, date});
  const bool exists = hardened_ && options_.refuseWritingThroughLinks ? tree_->exists(relative)
                                                                      : fm.fileExistsAtPath(full);
  if (exists && !isFolder && !options_.overwrite) return Outcome::Skipped;
  if (isLink) {
    if (!writeLink(reader, full, relative)) {
      return options_.stopAtRefusal ? Outcome::Stop : Outcome::Refused;
    }
  } else if (!writeFile(reader, info, full, relative, date)) {
    dates_.pop_back();  // refused: nothing is left to date
    return options_.stopAtRefusal ? Outcome::Stop : Outcome::Refused;
  }
  return Outcome::Processed;
}

void Extraction::makeFolder(const String& full, const std::string& relative, Date date) {
  FileManager& fm = FileManager::defaultManager();
  Error error;
  if (hardened_ && options_.refuseWritingThroughLinks) {
    const int folder = tree_->folder(relative, true);
    if (folder < 0) {
      error = FileManager::errorFor(FileOperation::Create, full, errno);
    } else {
      const struct timespec times[2] = {timespecOf(date), timespecOf(date)};
      ::futimens(folder, times);
      return;
    }
  } else if (fm.createDirectoryAtPath(full, true, &error)) {
    fm.setAttributes(Dictionary{{NSFileModificationDate, date}}, full);
    return;
  }
  consoleLog(u"[KUZipArchive] Error: %@", error.localizedDescription());
}

bool Extraction::writeLink(zip_reading::EntryReader& reader, const String& full,
                           const std::string& relative) {
  // The target comes in 4096-byte pieces, each decoded on its own.
  String target(u"");
  std::uint8_t piece[kLinkPiece + 1];
  for (;;) {
    const long n = reader.read(piece, kLinkPiece);
    if (n <= 0) break;
    piece[n] = 0;
    target =
        target.stringByAppendingString(String::fromUTF8Lossy(reinterpret_cast<const char*>(piece)));
  }
  if (hardened_) {
    const std::string text = target.utf8();
    if (options_.refuseEscapingLinks && !beneath::linkStaysInside(relative, text)) {
      refuse(full.lastPathComponent(),
             stringWithFormat(u"its link to %@ leads out of the destination", target));
      return false;
    }
    if (tree_->makeLink(relative, text) != 0) {
      const Error failure = FileManager::errorFor(FileOperation::Link, full, errno);
      consoleLog(u"Failed to create symbolic link at \"%@\" to \"%@\". Error: %@",
                 URL::fileURLWithPath(full).absoluteString(), target, failure.description());
    }
    return true;
  }
  const URL at = URL::fileURLWithPath(full);
  const URL to = URL::fileURLWithPath(target);
  Error error;
  if (!FileManager::defaultManager().createSymbolicLinkAtPath(at.path(), to.path(), &error)) {
    consoleLog(u"Failed to create symbolic link at \"%@\" to \"%@\". Error: %@",
               at.absoluteString(), to.absoluteString(), error.description());
  }
  return true;
}

bool Extraction::writeFile(zip_reading::EntryReader& reader, const unz_file_info64& info,
                           const String& full, const std::string& relative, Date date) {
  const bool beneathRoot = hardened_ && options_.refuseWritingThroughLinks;
  int descriptor = -1;
  FILE* file = nullptr;
  if (beneathRoot) {
    descriptor = tree_->openFile(relative);
  } else {
    file = ::fopen(full.utf8().c_str(), "wb");
    if (file) descriptor = ::fileno(file);
  }
  if (descriptor < 0) {
    const bool throughLink = beneathRoot && errno == ELOOP;
    if (throughLink) refuse(full.lastPathComponent(), u"it would be written through a link");
    return !throughLink;
  }
  auto put = [&](const std::uint8_t* bytes, std::size_t length) {
    if (file) return ::fwrite(bytes, 1, length, file) == length;
    FileHandle handle(descriptor, full);  // lent for the write, not closed by it
    const bool written = FileManager::defaultManager().writeBytes(handle, bytes, length);
    handle.release();
    return written;
  };
  String refusal;
  std::uint64_t written = 0;
  auto account = [&](std::size_t n) {
    written += n;
    bytesWritten_ += n;
    if (!hardened_) return true;
    if (options_.maxTotalBytes != 0 && bytesWritten_ > options_.maxTotalBytes) {
      refusal = stringWithFormat(u"the archive holds more than %llu bytes", options_.maxTotalBytes);
    } else if (options_.maxCompressionRatio != 0 && written > kRatioFloor &&
               written / std::max<std::uint64_t>(info.compressed_size, 1) >
                   options_.maxCompressionRatio) {
      refusal = stringWithFormat(u"it expands more than %llu times", options_.maxCompressionRatio);
    }
    return refusal.isNil();
  };
  if (const auto whole = reader.whole(); !whole.empty()) {
    if (account(whole.size())) put(whole.data(), whole.size());
  } else {
    std::vector<std::uint8_t>& buffer = piece_;
    buffer.resize(kDataPiece);
    for (;;) {
      const long n = reader.read(buffer.data(), buffer.size());
      if (n <= 0 || !account(static_cast<std::size_t>(n))) break;
      put(buffer.data(), static_cast<std::size_t>(n));
    }
  }
  if (hardened_ && refusal.isNil() && !reader.crcMatched()) {
    refusal = u"its data are damaged or do not match their checksum";
  }
  // The modification date only; the access date stays as the writing left it.
  const struct timespec times[2] = {{0, UTIME_OMIT}, timespecOf(date)};
  bool dated = true;
  if (refusal.isNil() && info.dosDate != 0) {
    if (file) ::fflush(file);
    dated = ::futimens(descriptor, times) == 0;
  }
  if (file) {
    ::fclose(file);
  } else {
    ::close(descriptor);
  }
  if (!refusal.isNil()) {
    if (beneathRoot) {
      tree_->removeFile(relative);
    } else {
      ::unlink(full.utf8().c_str());
    }
    refuse(full.lastPathComponent(), refusal);
    return false;
  }
  if (!dated) consoleLog(u"[KUZipArchive] Failed to set attributes");
  return true;
}

Extraction::Outcome Extraction::refuse(const String& name, const String& reason) {
  consoleLog(u"[KUZipArchive] Refused %@: %@", name, reason);
  if (!refusedAny_ && error_) {
    *error_ = Error(
        KUZipArchiveErrorDomain, -3,
        Dictionary{{NSLocalizedDescriptionKey, stringWithFormat(u"Refused %@: %@", name, reason)}});
  }
  refusedAny_ = true;
  return options_.stopAtRefusal ? Outcome::Stop : Outcome::Refused;
}

void Extraction::datePass() {
  FileManager& fm = FileManager::defaultManager();
  Error slot;
  for (const DateRecord& record : dates_) {
    bool done = false;
    if (hardened_ && options_.refuseWritingThroughLinks) {
      done = tree_->setTime(record.relative, timespecOf(record.date)) == 0;
      if (!done) slot = FileManager::errorFor(FileOperation::Write, record.path, errno);
    } else {
      done = fm.setModificationDate(record.path, record.date, &slot);
    }
    if (!done) consoleLog(u"[KUZipArchive] Set attributes failed for directory: %@.", record.path);
    if (!slot.isNil()) {
      consoleLog(u"[KUZipArchive] Error setting directory file modification date attribute: %@",
                 slot.localizedDescription());
    }
  }
}

}  // namespace

bool KUZipArchive::unzipFileAtPath(const String& path, const String& destination, bool overwrite,
                                   const String& password, Error* error,
                                   KUZipArchiveDelegate* delegate) {
  UnzipOptions facade;
  facade.overwrite = overwrite;
  facade.password = password;
  return Extraction(path, destination, facade, false, error, delegate).run();
}

bool KUZipArchive::unzipFileAtPath(const String& path, const String& destination, bool overwrite,
                                   const String& password, Error* error) {
  return unzipFileAtPath(path, destination, overwrite, password, error, nullptr);
}

bool KUZipArchive::unzipFileAtPath(const String& path, const String& destination,
                                   KUZipArchiveDelegate* delegate) {
  return unzipFileAtPath(path, destination, true, String(), nullptr, delegate);
}

bool KUZipArchive::unzipFileAtPath(const String& path, const String& destination) {
  return unzipFileAtPath(path, destination, nullptr);
}

bool KUZipArchive::unzipFileAtPathWithOptions(const String& path, const String& destination,
                                              const UnzipOptions& options, Error* error,
                                              KUZipArchiveDelegate* delegate) {
  return Extraction(path, destination, options, true, error, delegate).run();
}

Date KUZipArchive::_dateWithMSDOSFormat(std::uint32_t d) { return dateOfDOS(Calendar(), d); }

namespace {

Date dateOfDOS(const Calendar& calendar, std::uint32_t d) {
  DateComponents c;
  c.year = (d >> 25) + 1980;
  c.month = (d >> 21) & 15;
  c.day = (d >> 16) & 31;
  c.hour = (d >> 11) & 31;
  c.minute = (d >> 5) & 63;
  c.second = (d * 2) & 62;
  return calendar.dateFromComponents(c);
}

}  // namespace

}  // namespace tarnvik
