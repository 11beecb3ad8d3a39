// Zip archives: the bytes are written to a scratch archive and unpacked by the hardened
// extraction (small caps) and by the facade's own, each into a fresh scratch folder below
// the harness's temporary folder.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fuzz_input.hpp"
#include "tarnvik/zip/zip_archive.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  namespace fs = std::filesystem;
  static const fs::path scratch = fs::temp_directory_path() / ("tarnvik-zip-fuzz-" + std::to_string(::getpid()));
  fs::remove_all(scratch);
  fs::create_directories(scratch / "deep/er");
  const fs::path archive = scratch / "in.zip";
  std::ofstream(archive, std::ios::binary).write(reinterpret_cast<const char*>(data),
                                                 static_cast<std::streamsize>(size));
  UnzipOptions options;
  options.password = u"pw";
  options.maxTotalBytes = 1 << 20;
  options.maxEntries = 1000;
  fuzz::guarded([&] {
    (void)KUZipArchive::unzipFileAtPathWithOptions(String(archive.string()),
                                                   String((scratch / "deep/er/hard").string()), options);
  });
  fuzz::guarded([&] {
    (void)KUZipArchive::unzipFileAtPath(String(archive.string()),
                                        String((scratch / "deep/er/plain").string()), true, u"pw");
  });
  fs::remove_all(scratch);
  return 0;
}
