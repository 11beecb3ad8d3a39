// Reading real folders back in tests: whole files, sorted names, and a whole tree as
// "relative path -> bytes" ("relative/" for a folder, "-> target" for a link).
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik::testing {

inline std::string slurp(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

inline std::map<std::string, std::string> treeOf(const std::filesystem::path& root) {
  std::map<std::string, std::string> tree;
  namespace fs = std::filesystem;
  for (auto it = fs::recursive_directory_iterator(root); it != fs::recursive_directory_iterator();
       ++it) {
    const std::string relative = fs::relative(it->path(), root).string();
    if (it->is_symlink()) {
      tree[relative] = "-> " + fs::read_symlink(it->path()).string();
    } else if (it->is_directory()) {
      tree[relative + "/"] = "";
    } else {
      tree[relative] = slurp(it->path());
    }
  }
  return tree;
}

inline String str(const std::filesystem::path& path) { return String(path.string()); }

}  // namespace tarnvik::testing
