// Bundles by file URL.
//
//   Bundle sparkle =
//   bundleWithURL(URL::fileURLWithPath(u"/opt/Clips/Frameworks/Sparkle.framework"));
#pragma once

#include "tarnvik/platform/net/url.hpp"
#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik {

// The bundle of the folder a file URL points to; nil for another kind of URL or a path
// that is not a folder.
Bundle bundleWithURL(const URL& url);
// The file URL of the bundle's folder, or nil.
URL bundleURL(const Bundle& bundle);
// The file URL of the bundle's private-frameworks folder, or nil.
URL privateFrameworksURL(const Bundle& bundle);

}  // namespace tarnvik
