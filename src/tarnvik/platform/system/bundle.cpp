#include "tarnvik/platform/system/bundle.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>

#include "tarnvik/platform/system/internal/strings_file.hpp"

namespace tarnvik {

namespace fs = std::filesystem;

struct BundleStorage {
  std::string path;
  std::string resources;
  Dictionary info;
  // Parsed tables by file path; a nil entry records a missing file.
  mutable std::mutex tablesLock;
  mutable std::map<std::string, Dictionary> tables;

  Dictionary table(const std::string& file) const {
    std::lock_guard lock(tablesLock);
    const auto found = tables.find(file);
    if (found != tables.end()) return found->second;
    std::error_code ec;
    Dictionary table = fs::is_regular_file(file, ec) ? strings_file::readTable(file) : Dictionary();
    tables.emplace(file, table);
    return table;
  }
};

namespace {

std::string firstExisting(std::initializer_list<fs::path> candidates, bool wantFolder) {
  std::error_code ec;
  for (const fs::path& p : candidates) {
    if (wantFolder ? fs::is_directory(p, ec) : fs::is_regular_file(p, ec)) return p.string();
  }
  return {};
}

std::shared_ptr<const BundleStorage> loadBundle(const fs::path& folder) {
  auto storage = std::make_shared<BundleStorage>();
  storage->path = folder.string();
  storage->resources =
      firstExisting({folder / "Contents" / "Resources", folder / "Resources"}, true);
  if (storage->resources.empty()) storage->resources = storage->path;
  const std::string infoPath =
      firstExisting({folder / "Info.plist", folder / "Resources" / "Info.plist",
                     folder / "Contents" / "Info.plist"},
                    false);
  if (!infoPath.empty()) storage->info = strings_file::readTable(infoPath);
  if (storage->info.isNil()) storage->info = Dictionary::dictionary();
  return storage;
}

fs::path executablePath() {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::path() : exe;
}

fs::path defaultMainBundleFolder() {
  const fs::path folder = executablePath().parent_path();
  if (folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents") {
    return folder.parent_path().parent_path();
  }
  return folder.empty() ? fs::current_path() : folder;
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
  std::error_code ec;
  if (path.isEmpty() || !fs::is_directory(path.utf8(), ec)) return Bundle();
  Bundle bundle;
  bundle.storage_ = loadBundle(fs::path(path.utf8()));
  return bundle;
}

String Bundle::bundlePath() const { return storage_ ? String(storage_->path) : String(); }
String Bundle::resourcePath() const { return storage_ ? String(storage_->resources) : String(); }
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
  std::string file = name.utf8();
  if (!extension.isEmpty()) file += "." + extension.utf8();
  const fs::path candidate = fs::path(storage_->resources) / file;
  std::error_code ec;
  return fs::exists(candidate, ec) ? String(candidate.string()) : String();
}

Array Bundle::localizations() const {
  Array names = Array::array();
  if (!storage_) return names;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(storage_->resources, ec)) {
    if (entry.path().extension() == ".lproj") names.addObject(String(entry.path().stem().string()));
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
      const fs::path file = fs::path(storage_->resources) / (language + ".lproj") / tableName;
      const String translation = storage_->table(file.string()).objectForKey(key).asString();
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

String ProcessInfo::processName() {
  const fs::path exe = executablePath();
  if (!exe.empty()) return String(exe.filename().string());
  return String(program_invocation_short_name);
}

Integer ProcessInfo::processIdentifier() { return static_cast<Integer>(::getpid()); }

String ProcessInfo::environmentValue(const char* name) {
  const char* value = std::getenv(name);
  return value ? String::fromUTF8Lossy(value) : String();
}

}  // namespace tarnvik
