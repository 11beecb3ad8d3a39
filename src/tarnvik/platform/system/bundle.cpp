#include "tarnvik/platform/system/bundle.hpp"

#include <cstdlib>
#include <map>
#include <mutex>

#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/system/internal/strings_file.hpp"

namespace tarnvik {

struct BundleStorage {
  std::string path;
  std::string resources;
  std::string frameworks;
  Dictionary info;
  // Parsed tables by file path; a nil entry records a missing file.
  mutable std::mutex tablesLock;
  mutable std::map<std::string, Dictionary> tables;

  Dictionary table(const std::string& file) const {
    std::lock_guard lock(tablesLock);
    const auto found = tables.find(file);
    if (found != tables.end()) return found->second;
    FileAttributes attributes;
    const bool regular =
        FileManager::defaultManager().attributesOfItemAtPath(String(file), true, &attributes) &&
        attributes.type == FileType::Regular;
    Dictionary table = regular ? strings_file::readTable(String(file)) : Dictionary();
    tables.emplace(file, table);
    return table;
  }
};

namespace {

String firstExisting(std::initializer_list<String> candidates, bool wantFolder) {
  for (const String& path : candidates) {
    bool isDirectory = false;
    if (FileManager::defaultManager().fileExistsAtPath(path, &isDirectory) &&
        isDirectory == wantFolder) {
      return path;
    }
  }
  return String();
}

String under(const String& folder, std::initializer_list<const char16_t*> components) {
  String path = folder;
  for (const char16_t* component : components)
    path = path.stringByAppendingPathComponent(component);
  return path;
}

std::shared_ptr<const BundleStorage> loadBundle(const String& folder) {
  auto storage = std::make_shared<BundleStorage>();
  storage->path = folder.utf8();
  const String resources = firstExisting(
      {under(folder, {u"Contents", u"Resources"}), under(folder, {u"Resources"})}, true);
  storage->resources = resources.isNil() ? storage->path : resources.utf8();
  const bool contents = !firstExisting({under(folder, {u"Contents"})}, true).isNil();
  storage->frameworks =
      under(folder, contents ? std::initializer_list<const char16_t*>{u"Contents", u"Frameworks"}
                             : std::initializer_list<const char16_t*>{u"Frameworks"})
          .utf8();
  const String infoPath =
      firstExisting({under(folder, {u"Info.plist"}), under(folder, {u"Resources", u"Info.plist"}),
                     under(folder, {u"Contents", u"Info.plist"})},
                    false);
  if (!infoPath.isNil()) storage->info = strings_file::readTable(infoPath);
  if (storage->info.isNil()) storage->info = Dictionary::dictionary();
  return storage;
}

String defaultMainBundleFolder() {
  const String exe = ProcessInfo::executablePath();
  const String folder = exe.isEmpty() ? String() : exe.stringByDeletingLastPathComponent();
  const String contents = folder.stringByDeletingLastPathComponent();
  if (folder.lastPathComponent() == String(u"MacOS") &&
      contents.lastPathComponent() == String(u"Contents")) {
    return contents.stringByDeletingLastPathComponent();
  }
  return folder.isEmpty() ? FileManager::defaultManager().currentDirectoryPath() : folder;
}

std::mutex mainBundleLock;
Bundle& installedMainBundle() {
  static Bundle bundle;
  return bundle;
}

// "de_DE.UTF-8@euro" -> "de_DE"; empty for "C" and "POSIX".
std::string languageFromLocaleName(std::string_view name) {
  const std::string_view language = name.substr(0, name.find_first_of(".@"));
  if (language == "C" || language == "POSIX") return {};
  return std::string(language);
}

}  // namespace

Bundle Bundle::mainBundle() {
  std::lock_guard lock(mainBundleLock);
  Bundle& bundle = installedMainBundle();
  if (bundle.isNil()) bundle.storage_ = loadBundle(defaultMainBundleFolder());
  return bundle;
}

void Bundle::setMainBundle(const Bundle& bundle) {
  std::lock_guard lock(mainBundleLock);
  installedMainBundle() = bundle;
}

Bundle Bundle::bundleWithPath(const String& path) {
  bool isDirectory = false;
  if (!FileManager::defaultManager().fileExistsAtPath(path, &isDirectory) || !isDirectory) {
    return Bundle();
  }
  Bundle bundle;
  bundle.storage_ = loadBundle(path);
  return bundle;
}

String Bundle::bundlePath() const { return storage_ ? String(storage_->path) : String(); }
String Bundle::resourcePath() const { return storage_ ? String(storage_->resources) : String(); }
String Bundle::privateFrameworksPath() const {
  return storage_ ? String(storage_->frameworks) : String();
}

std::vector<Bundle> Bundle::allBundles() { return {mainBundle()}; }
Dictionary Bundle::infoDictionary() const { return storage_ ? storage_->info : Dictionary(); }

Value Bundle::objectForInfoDictionaryKey(const String& key) const {
  return infoDictionary().objectForKey(key);
}

String Bundle::bundleIdentifier() const {
  const String id = objectForInfoDictionaryKey(u"CFBundleIdentifier").asString();
  return id.isEmpty() ? String() : id;
}

String Bundle::pathForResource(const String& name, const String& extension) const {
  if (!storage_ || name.isEmpty()) return String();
  String file = name;
  if (!extension.isEmpty()) file = message::build(name, u".", extension);
  const String candidate = String(storage_->resources).stringByAppendingPathComponent(file);
  return FileManager::defaultManager().fileExistsAtPath(candidate) ? candidate : String();
}

Array Bundle::pathsForResourcesOfType(const String& extension, const String& directory) const {
  Array paths = Array::array();
  if (!storage_) return paths;
  String folder(storage_->resources);
  if (!directory.isEmpty()) folder = folder.stringByAppendingPathComponent(directory);
  std::vector<DirectoryEntry> entries;
  if (!FileManager::defaultManager().entriesOfDirectoryAtPath(folder, &entries, nullptr)) {
    return paths;
  }
  for (const DirectoryEntry& entry : entries) {
    if (entry.type == FileType::Directory) continue;
    if (extension.isEmpty() || entry.name.pathExtension() == extension) {
      paths.addObject(folder.stringByAppendingPathComponent(entry.name));
    }
  }
  paths.sortUsingComparator([](const Value& a, const Value& b) { return a.compare(b); });
  return paths;
}

Array Bundle::localizations() const {
  Array names = Array::array();
  if (!storage_) return names;
  const Array entries =
      FileManager::defaultManager().contentsOfDirectoryAtPath(String(storage_->resources));
  for (const Value& entry : entries) {
    const String name = entry.asString();
    if (name.pathExtension() == String(u"lproj")) {
      names.addObject(name.stringByDeletingPathExtension());
    }
  }
  names.sortUsingComparator([](const Value& a, const Value& b) { return a.compare(b); });
  return names;
}

String Bundle::localizedStringForKey(const String& key, const String& value,
                                     const String& table) const {
  if (key.isNil()) return value.isEmpty() ? String(u"") : value;
  if (storage_) {
    const std::string tableName =
        (table.isEmpty() ? String(u"Localizable") : table).utf8() + ".strings";
    std::vector<std::string> languages;
    for (const Value& language : preferredLanguages()) {
      const std::string full = language.asString().utf8();
      languages.push_back(full);
      const auto cut = full.find_first_of("_-");
      if (cut != std::string::npos) {
        std::string dashed = full;
        dashed[cut] = '-';
        languages.push_back(dashed);
        languages.push_back(full.substr(0, cut));
      }
    }
    languages.insert(languages.end(), {"en", "English", "Base"});
    for (const std::string& language : languages) {
      const std::string file = storage_->resources + "/" + language + ".lproj/" + tableName;
      const String translation = storage_->table(file).objectForKey(key).asString();
      if (!translation.isNil()) return translation;
    }
  }
  return value.isEmpty() ? key : value;
}

String localizedString(const String& key, const String& value, const String& table) {
  return Bundle::mainBundle().localizedStringForKey(key, value, table);
}

Array preferredLanguages() {
  Array languages = Array::array();
  auto add = [&](const std::string& name) {
    const std::string language = languageFromLocaleName(name);
    if (!language.empty() && !languages.containsObject(String(language))) {
      languages.addObject(String(language));
    }
  };
  if (const char* list = std::getenv("LANGUAGE")) {
    std::string all(list);
    for (std::size_t start = 0; start <= all.size();) {
      const std::size_t colon = std::min(all.find(':', start), all.size());
      add(all.substr(start, colon - start));
      start = colon + 1;
    }
  }
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* name = std::getenv(variable);
    if (name && *name) {
      add(name);
      break;
    }
  }
  return languages;
}

}  // namespace tarnvik
