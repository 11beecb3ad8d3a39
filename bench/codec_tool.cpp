// Runs one codec job on a file, the way the usual command-line tool would, so that
// codec_compare.py can time both side by side:
//   codec_tool md5|sha1 FILE            prints the digest
//   codec_tool gzip|gunzip|hexdump FILE OUT
//   codec_tool aes-enc|aes-dec FILE OUT KEY
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "tarnvik/codec/aes.hpp"
#include "tarnvik/codec/digests.hpp"
#include "tarnvik/codec/gzip.hpp"
#include "tarnvik/codec/hex.hpp"
#include "tarnvik/platform/base/string.hpp"

using namespace tarnvik;

namespace {

bool writeWhole(const char* path, std::string_view bytes) {
  std::FILE* f = std::fopen(path, "wb");
  if (!f) return false;
  const bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  return std::fclose(f) == 0 && ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: codec_tool JOB FILE [OUT [KEY]]\n");
    return 2;
  }
  const std::string job = argv[1];
  const Data input = Data::dataWithContentsOfFile(argv[2], NSDataReadingMappedIfSafe);
  if (input.isNil()) return 1;
  if (job == "md5" || job == "sha1") {
    std::printf("%s\n", (job == "md5" ? md5(input) : sha1(input)).utf8().c_str());
    return 0;
  }
  if (argc < 4) return 2;
  Data output;
  if (job == "gzip") output = gzipPackedData(input);
  if (job == "gunzip") output = gzipUnpackedData(input);
  if (job == "aes-enc" && argc > 4) output = AES256EncryptWithKey(input, argv[4]);
  if (job == "aes-dec" && argc > 4) output = AES256DecryptWithKey(input, argv[4]);
  if (job == "hexdump") {
    // The dump is written out in UTF-8 a megabyte at a time, as a program that saves it
    // would, rather than converted whole.
    const String dump = hexBlockWithASCIIStringOfLength(input, 16);
    const std::u16string_view units = dump.units();
    std::FILE* f = std::fopen(argv[3], "wb");
    if (!f) return 1;
    bool ok = true;
    for (std::size_t at = 0; ok && at < units.size();) {
      std::size_t end = std::min(units.size(), at + (std::size_t{1} << 20));
      if (end < units.size() && U16_IS_LEAD(units[end - 1])) --end;  // keep a pair whole
      const std::string chunk = String(units.substr(at, end - at)).utf8();
      ok = std::fwrite(chunk.data(), 1, chunk.size(), f) == chunk.size();
      at = end;
    }
    return std::fclose(f) == 0 && ok ? 0 : 1;
  }
  if (output.isNil()) return 1;
  return writeWhole(argv[3], output.asStringView()) ? 0 : 1;
}
