// Format strings of any shape against a fixed mix of arguments.
#include "fuzz_input.hpp"
#include "tarnvik/platform/base/value.hpp"
#include "tarnvik/platform/text/format.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const auto number = in.number<std::int64_t>();
  const auto real = in.number<double>();
  const String format = in.text();
  const String word = in.text();
  fuzz::guarded([&] {
    (void)stringWithFormat(format, number, real, word, "c-string", Value(real), 'x', -1);
  });
  return 0;
}
