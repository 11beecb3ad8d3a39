// Bundle: a folder with an Info.plist and resources, the main bundle of the running
// program, localized string tables, and the process's own name and environment.
//
//   String id = Bundle::mainBundle().bundleIdentifier();  // nil for a plain tool
//   String text = localizedString(u"Cancel", String(), u"Alerts");
#pragma once

#include <memory>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/system/process.hpp"

namespace tarnvik {

struct BundleStorage;

// A bundle is a folder. Its Info.plist is read (XML or binary, through libplist) from
// the folder itself, Resources/, or Contents/; its resources live in Contents/Resources/,
// Resources/, or the folder itself, whichever exists first; its private frameworks (each a
// bundle folder, such as "Sparkle.framework") in Contents/Frameworks/ when the bundle has a
// Contents/ folder, else in Frameworks/. Localized string tables are
// "<language>.lproj/<Table>.strings" files among the resources, in the text format
// ("key" = "value";, UTF-8 or UTF-16) or as property lists.
class Bundle {
 public:
  Bundle() = default;
  // The folder holding the executable (the ".app" folder for an executable in
  // Contents/MacOS/), unless a host or test installed another with setMainBundle.
  static Bundle mainBundle();
  // A nil Bundle restores the default main bundle.
  static void setMainBundle(const Bundle& bundle);
  // nil when the path is not a folder.
  static Bundle bundleWithPath(const String& path);
  // The bundles whose code the program runs, frameworks aside. The platform loads no
  // bundle code of its own, so this is the main bundle.
  static std::vector<Bundle> allBundles();

  bool isNil() const { return !storage_; }
  // The same folder.
  bool isEqual(const Bundle& other) const { return bundlePath() == other.bundlePath(); }
  String bundlePath() const;
  String resourcePath() const;
  String privateFrameworksPath() const;
  Dictionary infoDictionary() const;
  Value objectForInfoDictionaryKey(const String& key) const;
  // CFBundleIdentifier, or nil (the normal case for a command-line tool).
  String bundleIdentifier() const;
  // The path of "<name>.<extension>" among the resources, or nil.
  String pathForResource(const String& name, const String& extension) const;
  // The paths of the files with the extension (every file for a nil or empty one) among
  // the resources, or in their subfolder directory when that is given; sorted by name.
  Array pathsForResourcesOfType(const String& extension, const String& directory) const;
  // The languages that have an .lproj folder, sorted.
  Array localizations() const;
  // The translation of the key in the table ("Localizable" when nil) for the first of
  // the preferred languages that has one, then "en" and "Base"; otherwise the value when
  // it is non-empty, else the key.
  String localizedStringForKey(const String& key, const String& value, const String& table) const;

 private:
  std::shared_ptr<const BundleStorage> storage_;
};

// The main bundle's localizedStringForKey.
String localizedString(const String& key, const String& value = String(),
                       const String& table = String());

// The user's preferred languages, most preferred first: LANGUAGE (a colon-separated
// list), then LC_ALL, LC_MESSAGES and LANG, each stripped of its encoding and modifier
// ("de_DE.UTF-8" gives "de_DE"); "C" and "POSIX" count as no choice. Empty when none.
Array preferredLanguages();

}  // namespace tarnvik
