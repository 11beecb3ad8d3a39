// URL texts, relative references and query strings.
#include "fuzz_input.hpp"
#include "tarnvik/net/url_components.hpp"
#include "tarnvik/net/url_strings.hpp"
#include "tarnvik/platform/net/url.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const auto options = in.number<std::uint8_t>();
  const String text = in.text(), relative = in.text();
  fuzz::guarded([&] {
    const URL url = URL::URLWithString(text);
    (void)url.host(), (void)url.path(), (void)url.port(), (void)url.parameterString();
    (void)url.user(), (void)url.password();
    (void)URL::URLWithString(relative, url);
  });
  fuzz::guarded([&] { (void)URLQueryParametersWithOptions(text, options % 8); });
  fuzz::guarded([&] { (void)stringByMergingURLQuery(text, relative, options % 8); });
  fuzz::guarded([&] { (void)URLDecodedString(text, options & 1); });
  fuzz::guarded([&] { (void)stringByRemovingPercentEncoding(text); });
  fuzz::guarded([&] { (void)stringByDeletingLastURLPathComponent(text); });
  return 0;
}
