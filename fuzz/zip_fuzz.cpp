// Zip archives: the bytes are written to a scratch archive and unpacked by the hardened
// extraction (small caps) into a scratch folder. The facade's own extraction trusts names
// and links, so it runs only on archives whose names stay inside and that hold no link:
// a fuzzer must never write outside its scratch folder.
#include <minizip/unzip.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz_input.hpp"
#include "tarnvik/platform/system/log.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace {

bool harmlessForTheFacade(const std::string& archive) {
  unzFile zip = unzOpen64(archive.c_str());
  if (!zip) return true;
  bool harmless = true;
  for (int status = unzGoToFirstFile(zip); harmless && status == UNZ_OK;
       status = unzGoToNextFile(zip)) {
    unz_file_info64 info{};
    char name[1024] = {};
    if (unzGetCurrentFileInfo64(zip, &info, name, sizeof name - 1, nullptr, 0, nullptr, 0) !=
        UNZ_OK)
      break;
    std::string text(name);
    for (char& c : text) c = c == '\\' ? '/' : c;
    const bool link = info.compression_method == 0 && (info.external_fa & 0xF000) == 0x4000 &&
                      info.compressed_size != 0;
    harmless = !link && !text.starts_with('/') && text.find("..") == std::string::npos &&
               info.size_filename < sizeof name - 1;
  }
  unzClose(zip);
  return harmless;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  namespace fs = std::filesystem;
  static const fs::path scratch = [] {
    setConsoleSink([](const String&) {});
    return fs::temp_directory_path() / ("tarnvik-zip-fuzz-" + std::to_string(::getpid()));
  }();
  fs::remove_all(scratch);
  fs::create_directories(scratch);
  const std::string archive = (scratch / "in.zip").string();
  std::ofstream(archive, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  UnzipOptions options;
  options.password = u"pw";
  options.maxTotalBytes = 1 << 20;
  options.maxEntries = 1000;
  fuzz::guarded([&] {
    (void)KUZipArchive::unzipFileAtPathWithOptions(String(archive),
                                                   String((scratch / "hard").string()), options);
  });
  if (harmlessForTheFacade(archive)) {
    fuzz::guarded([&] {
      (void)KUZipArchive::unzipFileAtPath(String(archive), String((scratch / "plain").string()),
                                          true, u"pw");
    });
  }
  fs::remove_all(scratch);
  return 0;
}
