#include "tarnvik/platform/system/property_list.hpp"

#include <string>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/system/internal/strings_file.hpp"

namespace tarnvik {

Dictionary dictionaryWithContentsOfFile(const String& path) {
  if (path.isNil()) return Dictionary();
  const Data contents = FileManager::defaultManager().contentsAtPath(path);
  if (contents.isNil()) return Dictionary();
  return strings_file::parsePropertyListDictionary(std::string(contents.asStringView()));
}

}  // namespace tarnvik
