#include "tarnvik/platform/system/user_defaults.hpp"

#include <atomic>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/system/bundle.hpp"
#include "tarnvik/platform/system/internal/strings_file.hpp"

namespace tarnvik {

namespace {

std::mutex gSharedMutex;
String gDirectory;  // guarded by gSharedMutex
Dictionary gRegistered = Dictionary::dictionary();
// Bumped when the folder changes, so that every suite reads its file again.
std::atomic<unsigned long> gGeneration{1};

Dictionary registeredDefaults() {
  std::lock_guard lock(gSharedMutex);
  return gRegistered;
}

}  // namespace

UserDefaults& UserDefaults::standardUserDefaults() {
  static UserDefaults defaults{String()};
  return defaults;
}

UserDefaults::UserDefaults(const String& suiteName) : domain_(suiteName) {
  if (domain_.isNil() || domain_.isEmpty()) {
    const String identifier = Bundle::mainBundle().bundleIdentifier();
    domain_ = identifier.isNil() ? ProcessInfo::processName() : identifier;
  }
}

void UserDefaults::setDefaultsDirectory(const String& path) {
  std::lock_guard lock(gSharedMutex);
  gDirectory = path;
  ++gGeneration;
}

String UserDefaults::defaultsDirectory() {
  {
    std::lock_guard lock(gSharedMutex);
    if (!gDirectory.isNil()) return gDirectory;
  }
  if (const String chosen = ProcessInfo::environmentValue("TARNVIK_DEFAULTS_DIR");
      !chosen.isNil() && !chosen.isEmpty()) {
    return chosen;
  }
  String config = ProcessInfo::environmentValue("XDG_CONFIG_HOME");
  if (config.isNil() || !config.isAbsolutePath()) {
    config = FileManager::defaultManager().homeDirectoryForUser().stringByAppendingPathComponent(
        u".config");
  }
  return config.stringByAppendingPathComponent(u"tarnvik")
      .stringByAppendingPathComponent(u"defaults");
}

String UserDefaults::filePath() const {
  return defaultsDirectory().stringByAppendingPathComponent(
      domain_.stringByAppendingString(u".plist"));
}

void UserDefaults::loadIfNeeded() {
  if (loadedGeneration_ == gGeneration.load()) return;
  loadedGeneration_ = gGeneration.load();
  const Dictionary read = strings_file::readTable(filePath());
  values_ = read.isNil() ? Dictionary::dictionary() : read;
}

bool UserDefaults::write() {
  FileManager& fm = FileManager::defaultManager();
  const String path = filePath();
  const std::string text = strings_file::serializePropertyListDictionary(values_);
  Error error;
  if (fm.createDirectoryAtPath(path.stringByDeletingLastPathComponent(), true, &error) &&
      fm.writeDataToPath(Data::withBytes(text.data(), text.size()), path, true, &error)) {
    lastWriteError_ = Error();
    return true;
  }
  lastWriteError_ = error;
  return false;
}

void UserDefaults::registerDefaults(const Dictionary& defaults) {
  if (defaults.isNil()) return;
  std::lock_guard lock(gSharedMutex);
  gRegistered.addEntriesFromDictionary(defaults);
}

Value UserDefaults::objectForKey(const String& key) {
  {
    std::lock_guard lock(mutex_);
    loadIfNeeded();
    if (const Value value = values_.objectForKey(key); !value.isNil()) return value;
  }
  return registeredDefaults().objectForKey(key);
}

void UserDefaults::setObject(const Value& value, const String& key) {
  std::lock_guard lock(mutex_);
  loadIfNeeded();
  if (value.isNil()) {
    values_.removeObjectForKey(key);
  } else {
    values_.setObject(value, key);
  }
  write();
}

void UserDefaults::removeObjectForKey(const String& key) { setObject(Value(), key); }

String UserDefaults::stringForKey(const String& key) {
  const Value value = objectForKey(key);
  return value.isString() ? value.asString() : String();
}

Array UserDefaults::arrayForKey(const String& key) {
  const Value value = objectForKey(key);
  return value.kind() == ValueKind::Array ? value.asArray() : Array();
}

Dictionary UserDefaults::dictionaryForKey(const String& key) {
  const Value value = objectForKey(key);
  return value.kind() == ValueKind::Dictionary ? value.asDictionary() : Dictionary();
}

Data UserDefaults::dataForKey(const String& key) {
  const Value value = objectForKey(key);
  return value.kind() == ValueKind::Data ? value.asData() : Data();
}

Integer UserDefaults::integerForKey(const String& key) { return objectForKey(key).integerValue(); }
double UserDefaults::doubleForKey(const String& key) { return objectForKey(key).doubleValue(); }
bool UserDefaults::boolForKey(const String& key) { return objectForKey(key).boolValue(); }

Dictionary UserDefaults::dictionaryRepresentation() {
  Dictionary all = Dictionary::dictionary();
  all.addEntriesFromDictionary(registeredDefaults());
  std::lock_guard lock(mutex_);
  loadIfNeeded();
  all.addEntriesFromDictionary(values_);
  return all;
}

bool UserDefaults::synchronize() {
  std::lock_guard lock(mutex_);
  loadedGeneration_ = 0;
  loadIfNeeded();
  return values_.count() > 0 || !FileManager::defaultManager().fileExistsAtPath(filePath()) ||
         !strings_file::readTable(filePath()).isNil();
}

Error UserDefaults::lastWriteError() {
  std::lock_guard lock(mutex_);
  return lastWriteError_;
}

}  // namespace tarnvik
