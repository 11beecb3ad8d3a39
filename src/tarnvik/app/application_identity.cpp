#include "tarnvik/app/application_identity.hpp"

#include <algorithm>
#include <string>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/net/bundle_urls.hpp"
#include "tarnvik/platform/system/process.hpp"
#include "tarnvik/platform/system/property_list.hpp"

namespace tarnvik {

namespace {

// The value of key in the Info.plist beside the main bundle's resource folder; nil without
// an application object.
String infoPlistValue(const char16_t* key) {
  if (!Application::sharedApplication()) return String();
  const String path =
      Bundle::mainBundle().resourcePath().stringByAppendingString(u"/../Info.plist");
  const Value value = dictionaryWithContentsOfFile(path).objectForKey(key);
  return value.isString() ? value.asString() : String();
}

}  // namespace

String ku_applicationName() {
  const String name = infoPlistValue(u"CFBundleExecutable");
  return name.isNil() ? ProcessInfo::processName() : name;
}

String ku_applicationName(const Application&) { return ku_applicationName(); }
String ku_applicationVersion() { return infoPlistValue(u"CFBundleVersion"); }
String ku_applicationShortVersion() { return infoPlistValue(u"CFBundleShortVersionString"); }

String ku_applicationBundleIdentifier() {
  const Bundle main = Bundle::mainBundle();
  const Value identifier = dictionaryWithContentsOfFile(main.pathForResource(u"Info", u"plist"))
                               .objectForKey(u"CFBundleIdentifier");
  return identifier.isString() ? identifier.asString() : main.bundleIdentifier();
}

String name() { return ku_applicationName(); }
String name(const Application& application) { return ku_applicationName(application); }
String bundleIdentifier() { return ku_applicationBundleIdentifier(); }
String version() { return ku_applicationVersion(); }
String shortVersion() { return ku_applicationShortVersion(); }

std::vector<Bundle> privateFrameworks() {
  std::vector<Bundle> frameworks;
  const URL folder = privateFrameworksURL(Bundle::mainBundle());
  if (folder.isNil()) return frameworks;
  // Only the folder's direct, visible children: no descent into folders or packages.
  FileManager fileManager;
  std::vector<DirectoryEntry> entries;
  if (!fileManager.entriesOfDirectoryAtPath(folder.path(), &entries, nullptr)) return frameworks;
  std::sort(entries.begin(), entries.end(), [](const DirectoryEntry& a, const DirectoryEntry& b) {
    return a.name.compare(b.name) == NSOrderedAscending;
  });
  for (const DirectoryEntry& entry : entries) {
    if (entry.name.hasPrefix(u".")) continue;
    const Bundle bundle = bundleWithURL(
        URL::fileURLWithPath(folder.path().stringByAppendingPathComponent(entry.name)));
    if (!bundle.isNil()) frameworks.push_back(bundle);
  }
  return frameworks;
}

std::vector<Bundle> allBundlesIncludingFrameworks() {
  std::vector<Bundle> bundles;
  auto add = [&bundles](const Bundle& bundle) {
    const bool known = std::any_of(bundles.begin(), bundles.end(),
                                   [&](const Bundle& other) { return other.isEqual(bundle); });
    if (!bundle.isNil() && !known) bundles.push_back(bundle);
  };
  for (const Bundle& bundle : Bundle::allBundles()) add(bundle);
  for (const Bundle& bundle : privateFrameworks()) add(bundle);
  add(Bundle::mainBundle());
  return bundles;
}

Array allPathsForResource(const String& name, const String& type) {
  Array paths = Array::array();
  for (const Bundle& bundle : allBundlesIncludingFrameworks()) {
    const String path = bundle.pathForResource(name, type);
    if (!path.isNil()) paths.addObject(path);
  }
  return paths;
}

Array allPathsForResourcesOfType(const String& type) {
  Array paths = Array::array();
  for (const Bundle& bundle : allBundlesIncludingFrameworks()) {
    paths.addObjectsFromArray(bundle.pathsForResourcesOfType(type, String()));
  }
  return paths;
}

UserDefaults& ke_marrowfieldSuiteDefaults() {
  static UserDefaults suite(u"Tarnvik/Marrowfield");
  return suite;
}

void relaunchApplication(Application& application) {
  const Bundle main = Bundle::mainBundle();
  const String app = main.bundlePath();
  const String tool = main.privateFrameworksPath().stringByAppendingPathComponent(
      u"Sparkle.framework/Versions/A/Resources/relaunch");
  FileManager& fileManager = FileManager::defaultManager();
  if (!fileManager.fileExistsAtPath(tool) || !fileManager.fileExistsAtPath(app)) return;
  Task::launchedTaskWithLaunchPath(
      tool, Array{Value(app), Value(String(std::to_string(ProcessInfo::processIdentifier())))});
  application.terminate();
}

}  // namespace tarnvik
