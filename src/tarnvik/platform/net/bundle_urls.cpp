#include "tarnvik/platform/net/bundle_urls.hpp"

namespace tarnvik {

Bundle bundleWithURL(const URL& url) {
  if (url.isNil() || !url.isFileURL()) return Bundle();
  return Bundle::bundleWithPath(url.path());
}

URL bundleURL(const Bundle& bundle) {
  return bundle.isNil() ? URL() : URL::fileURLWithPath(bundle.bundlePath());
}

URL privateFrameworksURL(const Bundle& bundle) {
  return bundle.isNil() ? URL() : URL::fileURLWithPath(bundle.privateFrameworksPath());
}

}  // namespace tarnvik
