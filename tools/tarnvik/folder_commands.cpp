// scan: counts, sizes and media classes of a folder tree (or one level, fast).
#include <iostream>
#include <map>

#include "tarnvik/fs/directory_scanning.hpp"
#include "tarnvik/fs/file_types.hpp"
#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tool.hpp"

namespace tarnvik::tool {

namespace {

// The media class of a file by its extension, from the file-type catalogue.
std::string mediaClassOf(const String& name) {
  const String extension = name.pathExtension().lowercaseString();
  if (movieFileTypes().containsObject(extension)) return "movies";
  if (dpxFileTypes().containsObject(extension) || ariFileTypes().containsObject(extension)) {
    return "sequence frames";
  }
  if (imageFileTypes().containsObject(extension)) return "still images";
  return "other";
}

}  // namespace

Runner addScanCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string folder;
    int depth = -1;
    bool fast = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("scan",
                         "Count the files and folders below FOLDER, their size and media classes\n"
                         "Example: tarnvik scan /media/CARD --depth 2");
  command->add_option("FOLDER", arguments->folder, "The folder to scan")->required();
  command->add_option("--depth", arguments->depth, "Levels to look into (all when not given)");
  command->add_flag("--fast", arguments->fast,
                    "One level only, names and kinds (huge flat folders)");
  return [=, &settings] {
    Outcome outcome;
    FileManager& fm = FileManager::defaultManager();
    std::uint64_t files = 0, folders = 0, bytes = 0;
    std::map<std::string, std::uint64_t> classes, extensions;
    auto count = [&](const String& name, std::uint64_t size) {
      ++files;
      bytes += size;
      ++classes[mediaClassOf(name)];
      ++extensions[utf8(name.pathExtension().lowercaseString())];
    };
    if (arguments->fast) {
      const Array records = directoryFilesAtPathCFI(String(arguments->folder));
      if (records.isNil()) {
        reportError(outcome, "scan", arguments->folder, std::string("cannot be read"));
        return outcome;
      }
      for (const Value& record : records) {
        const auto file = record.asObject<CFIFile>();
        if (file->isDirectory()) {
          ++folders;
        } else {
          count(file->path().lastPathComponent(), 0);
        }
      }
    } else {
      Progress progress(settings, "scanning");
      Error failure;
      DirectoryEnumerator walk(fm, String(arguments->folder),
                               [&](const String& path, const Error& e) {
                                 if (path == String(arguments->folder)) failure = e;
                                 return !interrupted.load();
                               });
      DirectoryItem item;
      while (walk.nextItem(&item) && !interrupted.load()) {
        if (item.isDirectory()) {
          ++folders;
          if (arguments->depth >= 0 && item.level >= static_cast<UInteger>(arguments->depth)) {
            walk.skipDescendants();
          }
          continue;
        }
        FileAttributes attributes;
        fm.attributesOfItemAtPath(item.path, false, &attributes);
        count(item.name, item.type == FileType::Regular ? attributes.size : 0);
        progress.update(files, 0, bytes, 0);
      }
      if (!failure.isNil()) reportError(outcome, "scan", arguments->folder, failure);
      if (interrupted.load()) outcome.code = kCancelled;
    }
    outcome.document.update({{"command", "scan"},
                             {"folder", arguments->folder},
                             {"files", files},
                             {"folders", folders},
                             {"bytes", bytes},
                             {"classes", classes},
                             {"extensions", extensions}});
    if (!settings.json && outcome.code == kSuccess) {
      std::cout << files << " files in " << folders << " folders, " << humanBytes(bytes) << '\n';
      for (const auto& [name, n] : classes) std::cout << "  " << name << ": " << n << '\n';
    }
    return outcome;
  };
}

}  // namespace tarnvik::tool
