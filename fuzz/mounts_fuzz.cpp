// Mount tables in the text form of /proc/self/mountinfo.
#include "fuzz_input.hpp"
#include "tarnvik/platform/base/file_manager.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const auto major = in.number<std::uint8_t>(), minor = in.number<std::uint8_t>();
  const std::string_view table = in.remaining();
  fuzz::guarded([&] { (void)volumePathsFromMountInfo(table); });
  fuzz::guarded([&] { (void)fileSystemTypeFromMountInfo(table, major, minor); });
  return 0;
}
