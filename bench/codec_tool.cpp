// Runs one codec job on a file, the way the usual command-line tool would, so that
// codec_compare.py can time both side by side:
//   codec_tool md5|sha1 FILE            prints the digest
//   codec_tool gzip|gunzip|hexdump FILE OUT
//   codec_tool aes-enc|aes-dec FILE OUT KEY
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
    const std::string dump = hexBlockWithASCIIStringOfLength(input, 16).utf8();
    return writeWhole(argv[3], dump) ? 0 : 1;
  }
  if (output.isNil()) return 1;
  return writeWhole(argv[3], output.asStringView()) ? 0 : 1;
}
