// KUZipArchive: unpacking whole zip archives (with passwords, an overwrite switch and a
// delegate that may veto entries) and writing archives one entry at a time, on minizip.
//
//   Error error;
//   if (!KUZipArchive::unzipFileAtPath(u"/tmp/day1.zip", u"/srv/Day01", true, String(), &error))
//     std::cerr << error.description() << '\n';
//
//   KUZipArchive archive(u"/tmp/report.zip");
//   archive.open();
//   archive.writeFile(u"/srv/Day01/report.pdf");
//   archive.writeData(Data::withBytes("fps 25\n", 7), u"meta/settings.txt");
//   archive.close();
//
// Two ways to extract. The facade's own operations (unzipFileAtPath) keep the behaviour
// zip tools of the platform always had: entry names are used as they stand, so ".." and
// absolute names leave the destination, files are written through existing links, and
// nothing limits sizes. unzipFileAtPathWithOptions runs the same loop hardened: names
// that leave the destination, links that point out of it and writes through links are
// refused, and sizes, counts and ratios are capped. Tools that unpack archives from
// elsewhere should use the hardened one.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/net/url.hpp"

namespace tarnvik {

inline constexpr char16_t KUZipArchiveErrorDomain[] = u"KUZipArchiveErrorDomain";

// The archive's global information: the number of entries first.
struct KUZipGlobalInfo {
  std::uint64_t numberOfEntries = 0;
  std::uint64_t commentSize = 0;
  std::uint64_t centralDirectoryDisk = 0;  // the disk holding the central directory
};

// One entry's information, as the archive's central directory holds it.
struct KUZipFileInfo {
  std::uint64_t versionMadeBy = 0;
  std::uint64_t versionNeeded = 0;
  std::uint64_t flag = 0;
  std::uint64_t compressionMethod = 0;
  std::uint64_t dosDate = 0;
  std::uint64_t crc = 0;
  std::uint64_t compressedSize = 0;
  std::uint64_t uncompressedSize = 0;
  std::uint64_t fileNameLength = 0;
  std::uint64_t extraFieldLength = 0;
  std::uint64_t commentLength = 0;
  std::uint64_t diskNumberStart = 0;
  std::uint64_t internalAttributes = 0;
  std::uint64_t externalAttributes = 0;
  // The DOS date broken down: seconds, minutes, hours, day, month (0-11), year.
  std::uint32_t seconds = 0, minutes = 0, hours = 0, day = 0, month = 0, year = 0;
};

// An entry's date as minizip's writer takes it: month counted from 0, the full year.
struct KUZipDate {
  std::uint32_t seconds = 0, minutes = 0, hours = 0, day = 0, month = 0, year = 0;
};

// Told about an extraction. Every operation is optional: the defaults do nothing, and the
// default should-callback lets every entry through.
class KUZipArchiveDelegate {
 public:
  virtual ~KUZipArchiveDelegate() = default;
  // Once, after the first entry was found.
  virtual void zipArchiveWillUnzipArchiveAtPath(const String& /*path*/,
                                                const KUZipGlobalInfo& /*info*/) {}
  // Per entry, with its raw name (decoded as UTF-8); false skips it. A skipped entry does
  // not advance the index.
  virtual bool zipArchiveShouldUnzipFileAtIndex(std::uint64_t /*index*/,
                                                std::uint64_t /*totalFiles*/,
                                                const String& /*archivePath*/,
                                                const String& /*fileName*/) {
    return true;
  }
  virtual void zipArchiveWillUnzipFileAtIndex(std::uint64_t /*index*/, std::uint64_t /*totalFiles*/,
                                              const String& /*archivePath*/,
                                              const KUZipFileInfo& /*fileInfo*/) {}
  // Per entry that was written, linked or could not be opened for writing.
  virtual void zipArchiveDidUnzipFileAtIndex(std::uint64_t /*index*/, std::uint64_t /*totalFiles*/,
                                             const String& /*archivePath*/,
                                             const KUZipFileInfo& /*fileInfo*/) {}
  // Once at the end, only on success.
  virtual void zipArchiveDidUnzipArchiveAtPath(const String& /*path*/,
                                               const KUZipGlobalInfo& /*info*/,
                                               const String& /*unzippedPath*/) {}
};

// Progress of an extraction: entries taken so far (written, linked, skipped or refused)
// of all, and bytes written.
struct UnzipProgress {
  std::uint64_t entriesDone = 0;
  std::uint64_t entriesTotal = 0;
  std::uint64_t bytesWritten = 0;
  String currentName;
};

// The hardened extraction's switches. The defaults are the hardened ones; the facade's own
// operations run with every protection off.
struct UnzipOptions {
  bool overwrite = true;
  String password;
  // Refuse names with ".." components, absolute names and drive letters ("C:"), after
  // backslashes became slashes.
  bool refuseEscapingNames = true;
  // Open every folder and file below the destination without following links, and set
  // dates on the item itself.
  bool refuseWritingThroughLinks = true;
  // Create a link only when its target, taken from the link's folder, stays inside the
  // destination; the target is kept as written (relative targets stay relative).
  bool refuseEscapingLinks = true;
  // Caps (0: none): bytes written in all, entries in the archive, and the ratio of an
  // entry's bytes to its compressed size. Entries whose data overlap another's are refused.
  std::uint64_t maxTotalBytes = std::uint64_t{1} << 40;
  std::uint64_t maxEntries = 1000000;
  std::uint64_t maxCompressionRatio = 400;
  bool refuseOverlappingEntries = true;
  // A refused entry is left out and the rest goes on, unless this is set.
  bool stopAtRefusal = false;
  // Called after each entry; false cancels (NSUserCancelledError in NSCocoaErrorDomain).
  std::function<bool(const UnzipProgress&)> progress;
};

// A file read and deflated ahead of writing, so that several files can be deflated at once
// while one thread writes the archive in order (KUZipArchive::packFile, writePackedEntry).
struct KUZipPackedEntry {
  bool readable = false;  // the file could be opened
  bool packed = false;    // it was read whole and deflated (files up to 32 MiB)
  int level = -1;
  std::uint64_t size = 0;
  std::uint32_t crc = 0;
  std::vector<std::uint8_t> deflated;
};

struct KUZipArchiveHandle;

class KUZipArchive {
 public:
  // ---- Extraction ----

  // Unpacks every entry into the destination folder. false with code -1 ("failed to open
  // zip file") or -2 ("failed to open first file in zip file") in KUZipArchiveErrorDomain,
  // or with no error when an entry cannot be opened (a wrong or missing password, a
  // damaged entry). Folders are made as needed; failures to make folders, links and dates
  // are logged as "[KUZipArchive] ..." console lines and the extraction goes on. A file
  // that exists is kept when overwrite is false. At the end every entry that is not a
  // link gets its archive date again.
  static bool unzipFileAtPath(const String& path, const String& destination, bool overwrite,
                              const String& password, Error* error, KUZipArchiveDelegate* delegate);
  static bool unzipFileAtPath(const String& path, const String& destination, bool overwrite,
                              const String& password, Error* error = nullptr);
  // overwrite, no password, no error out-parameter.
  static bool unzipFileAtPath(const String& path, const String& destination,
                              KUZipArchiveDelegate* delegate);
  static bool unzipFileAtPath(const String& path, const String& destination);
  // The same loop, hardened by the options. A refused entry is logged
  // ("[KUZipArchive] Refused <name>: <reason>"), reported through the error (code -3,
  // the first refusal) and left out; the answer is then false even though the rest was
  // extracted.
  static bool unzipFileAtPathWithOptions(const String& path, const String& destination,
                                         const UnzipOptions& options, Error* error = nullptr,
                                         KUZipArchiveDelegate* delegate = nullptr);

  // The local date of a DOS date-time, out-of-range fields rolling over (0 gives
  // 1979-11-30 00:00:00).
  static Date _dateWithMSDOSFormat(std::uint32_t msdosDateTime);

  // ---- Writing ----

  explicit KUZipArchive(const String& path);
  ~KUZipArchive();
  KUZipArchive(const KUZipArchive&) = delete;
  KUZipArchive& operator=(const KUZipArchive&) = delete;

  // Creates a new archive at the path; false when it cannot. Asserts that it is not open.
  bool open();
  // Adds the file under its last path component, or under the name, deflated at the
  // default level (or stored in deflate blocks, withoutCompression). false, with the
  // archive untouched, when the file cannot be opened; false when the entry cannot be
  // finished. Assert that the archive is open (and the name is not nil).
  bool writeFile(const String& path);
  bool writeFile(const String& path, const String& toZipFilePath);
  bool writeFileWithoutCompressionToZipFilePath(const String& path, const String& toZipFilePath);
  // Reads and deflates a file (level -1: the default; 0: stored in deflate blocks). Safe
  // from any thread. A file past 32 MiB comes back readable but not packed: write it with
  // writeFile, which streams it.
  static KUZipPackedEntry packFile(const String& path, int level = -1);
  // Adds a packed file under the name, as writeFile would have; false for an entry that
  // is not packed or an archive not open.
  bool writePackedEntry(const KUZipPackedEntry& entry, const String& name);
  // Adds the bytes under the name, dated now; false for nil data or an archive not open.
  bool writeData(const Data& data, const String& filename);
  // Finishes the archive; always true. Asserts that it was opened. The archive cannot be
  // opened again. An archive still open when the object goes is finished then.
  bool close();

  // The date's local fields, month counted from 0.
  static void zipInfo(KUZipDate* date, Date when);

  // Builds an archive of the files (each under its last component; unreadable ones left
  // out); false when the archive cannot be made.
  static bool createZipFileAtPath(const String& path, const Array& paths);
  // The same at "<temporary folder>/<name>.zip", replacing what is there; its file URL, or
  // nil.
  static URL createTemporaryZipFileNamed(const String& name, const Array& paths);

  const String& path() const { return path_; }

 private:
  bool writeFileEntry(const String& path, const String& name, int level);

  String path_;
  std::unique_ptr<KUZipArchiveHandle> zip_;
  bool closed_ = false;
};

}  // namespace tarnvik
