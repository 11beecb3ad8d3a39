// Bytes from outside: hex texts, base64, gzip streams and AES ciphertext.
#include <cstdlib>
#include <sstream>

#include "fuzz_input.hpp"
#include "tarnvik/codec/aes.hpp"
#include "tarnvik/codec/gzip.hpp"
#include "tarnvik/codec/hex.hpp"
#include "tarnvik/net/url_strings.hpp"
#include "tarnvik/platform/net/base64.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const std::uint8_t mode = in.byte();
  const std::string_view rest = in.remaining();
  const Data bytes = Data::withString(rest);
  switch (mode % 4) {
    case 0:
      fuzz::guarded([&] { (void)ke_dataFromHexString(String::fromUTF8Lossy(rest)); });
      fuzz::guarded([&] { (void)hexBlockWithASCIIStringOfLength(bytes, 1 + mode / 4); });
      break;
    case 1:
      fuzz::guarded([&] { (void)base64DecodedDataTolerant(rest); });
      fuzz::guarded([&] { (void)base64DecodedString(String::fromUTF8Lossy(rest)); });
      break;
    case 2:
      fuzz::guarded([&] {
        // The streamed form must give what the whole-buffer form gives.
        const Data whole = gzipUnpackedData(bytes);
        std::istringstream packed{std::string(rest)};
        std::ostringstream unpacked;
        const bool streamed = gzipUnpackStream(packed, unpacked);
        if (streamed == whole.isNil() || (streamed && unpacked.str() != whole.asStringView())) {
          std::abort();
        }
      });
      break;
    default:
      fuzz::guarded([&] { (void)AES256DecryptWithKey(bytes, u"key"); });
      break;
  }
  return 0;
}
