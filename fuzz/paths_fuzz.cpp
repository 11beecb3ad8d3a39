// Path texts through the path primitives and the path helpers (nothing touches the disk but
// the read-only lookups of the real-path helpers).
#include "fuzz_input.hpp"
#include "tarnvik/text/paths.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const auto n = in.number<std::uint8_t>();
  const String path = in.text(), base = in.text();
  fuzz::guarded([&] { (void)path.pathComponents(); });
  fuzz::guarded([&] { (void)path.stringByStandardizingPath(); });
  fuzz::guarded([&] { (void)path.stringByDeletingPathExtension(); });
  fuzz::guarded([&] { (void)path.stringByAppendingPathExtension(base); });
  fuzz::guarded([&] { (void)relativePathFromBaseDirPath(path, base); });
  fuzz::guarded([&] { (void)absolutePathFromBaseDirPath(path, base); });
  fuzz::guarded([&] { (void)stringByDeletingLastPathComponents(path, n); });
  fuzz::guarded([&] { (void)stringByPreservingLastPathComponents(path, n); });
  fuzz::guarded([&] { (void)relativePathByPreservingPathDepth(path, n); });
  fuzz::guarded([&] { (void)stringByReplacingColons(path); });
  fuzz::guarded([&] { (void)stringByDeletingFirstKeyPathComponent(path); });
  return 0;
}
