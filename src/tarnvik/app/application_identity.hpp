// The running application's name, versions and identifier from its Info.plist, its private
// frameworks, resources across all of its bundles, the shared defaults suite of the
// maker's applications, and relaunching through the update framework's relaunch tool.
//
//   String title = message::build(ku_applicationName(), u" ", ku_applicationShortVersion());
//   Array themes = allPathsForResourcesOfType(u"theme");  // from the app and its frameworks
//   ke_marrowfieldSuiteDefaults().setBoolForKey(true, u"SharedProxy");
//
// An application bundle is laid out as
//   Clips.app/Contents/Info.plist
//   Clips.app/Contents/Resources/...
//   Clips.app/Contents/Frameworks/Sparkle.framework/Versions/A/Resources/relaunch
// with the executable anywhere below it (Contents/MacOS/ makes Clips.app the main bundle;
// see Bundle). None of these operations raises or reports an error: missing files, keys
// or folders give nil or empty results.
#pragma once

#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/system/application.hpp"
#include "tarnvik/platform/system/bundle.hpp"
#include "tarnvik/platform/system/user_defaults.hpp"

namespace tarnvik {

// "CFBundleExecutable" of the Info.plist beside the main bundle's resource folder (the
// resource path with "/../Info.plist" appended), read only when there is an application
// object; the process name when there is none or the file or key is missing.
String ku_applicationName();
// Asks the form above.
String ku_applicationName(const Application& application);
// "CFBundleVersion" of the same Info.plist; nil without an application object, file or key.
String ku_applicationVersion();
// "CFBundleShortVersionString" of the same Info.plist, likewise.
String ku_applicationShortVersion();
// "CFBundleIdentifier" of the main bundle's resource "Info.plist", else the main bundle's
// bundleIdentifier. Needs no application object.
String ku_applicationBundleIdentifier();

// Older names, kept for callers: each forwards to its ku_ form above.
String name();
String name(const Application& application);
String bundleIdentifier();
String version();
String shortVersion();

// A bundle for each visible item directly inside the main bundle's private-frameworks
// folder that is a bundle (a folder), sorted by name; empty when there is no such folder.
std::vector<Bundle> privateFrameworks();
// Bundle::allBundles(), privateFrameworks() and the main bundle, each bundle once, in no
// particular order.
std::vector<Bundle> allBundlesIncludingFrameworks();
// Each bundle's pathForResource(name, type) that is not nil, in the order of
// allBundlesIncludingFrameworks().
Array allPathsForResource(const String& name, const String& type);
// Each bundle's pathsForResourcesOfType(type, nil), appended in bundle order.
Array allPathsForResourcesOfType(const String& type);

// The defaults of the suite "Tarnvik/Marrowfield", shared by the maker's applications;
// created on first use and kept for the life of the process.
UserDefaults& ke_marrowfieldSuiteDefaults();

// Starts the relaunch tool of the Sparkle framework in the main bundle's private frameworks
// ("Sparkle.framework/Versions/A/Resources/relaunch") with the main bundle's path and this
// process's identifier, without waiting for it, and terminates the application (the tool
// waits for this process to end before it starts the application again). Does nothing when
// the tool or the bundle path does not exist.
void relaunchApplication(Application& application);

}  // namespace tarnvik
