// UserDefaults: small persistent settings per application domain, in a property-list file.
//
//   UserDefaults& defaults = UserDefaults::standardUserDefaults();
//   defaults.registerDefaults(Dictionary{{u"filesizeCFIMethod", 1}});
//   Integer method = defaults.integerForKey(u"filesizeCFIMethod");   // 1 unless set
//   defaults.setObject(u"/Volumes/Backup", u"lastDestination");      // written at once
//
// Where: "<folder>/<domain>.plist", an XML property list, the folder being
// setDefaultsDirectory's, else $TARNVIK_DEFAULTS_DIR, else
// ${XDG_CONFIG_HOME:-~/.config}/tarnvik/defaults. The standard suite's domain is the main
// bundle's identifier, else the process name; a named suite's domain is its name.
//
// Lookup: the domain's own values, then the registered defaults (one set for the whole
// process, never written). A setter writes the file at once (atomically, through the
// default file manager); a file that cannot be read counts as empty, and a failed write
// leaves the value in memory and the old file whole. synchronize() reads the file again.
// Safe to use from several threads.
#pragma once

#include <memory>
#include <mutex>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

class UserDefaults {
 public:
  static UserDefaults& standardUserDefaults();
  // A named suite; a nil name gives the standard suite's domain.
  explicit UserDefaults(const String& suiteName);
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;

  // The folder of the domain files for every suite; nil restores the default. Suites read
  // their file again on their next use.
  static void setDefaultsDirectory(const String& path);
  static String defaultsDirectory();

  // Merges the values into the registered defaults.
  void registerDefaults(const Dictionary& defaults);
  Value objectForKey(const String& key);
  // A nil value removes the key.
  void setObject(const Value& value, const String& key);
  void removeObjectForKey(const String& key);

  String stringForKey(const String& key);          // nil unless a string
  Array arrayForKey(const String& key);            // nil unless an array
  Dictionary dictionaryForKey(const String& key);  // nil unless a dictionary
  Data dataForKey(const String& key);              // nil unless data
  Integer integerForKey(const String& key);        // numbers and numeric strings, else 0
  double doubleForKey(const String& key);
  bool boolForKey(const String& key);
  void setInteger(Integer value, const String& key) { setObject(Value(value), key); }
  void setDouble(double value, const String& key) { setObject(Value(value), key); }
  void setBool(bool value, const String& key) { setObject(Value(value), key); }

  // The registered defaults overlaid with the domain's values.
  Dictionary dictionaryRepresentation();
  // Reads the file again; false when it exists but cannot be read.
  bool synchronize();
  String domainName() const { return domain_; }
  String filePath() const;
  // The error of the last failed write, nil when the last write worked.
  Error lastWriteError();

 private:
  void loadIfNeeded();
  bool write();

  std::mutex mutex_;
  String domain_;
  Dictionary values_;
  unsigned long loadedGeneration_ = 0;
  Error lastWriteError_;
};

}  // namespace tarnvik
