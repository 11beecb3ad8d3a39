// zip and unzip through the zip facade; unzip is hardened unless --unsafe-compatible.
#include <algorithm>
#include <iostream>
#include <thread>
#include <vector>

#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tarnvik/zip/zip_archive.hpp"
#include "tool.hpp"

namespace tarnvik::tool {

Runner addZipCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string archive;
    std::vector<std::string> paths;
    bool store = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("zip",
                         "Pack files and folders (with everything in them) into a new ARCHIVE\n"
                         "Example: tarnvik zip Day01.zip /srv/Day01/A001 notes.txt");
  command->add_option("ARCHIVE", arguments->archive, "The archive to make")->required();
  command->add_option("PATH", arguments->paths, "Files and folders to pack")->required();
  command->add_flag("--store", arguments->store, "Do not compress (deflate level 0)");
  return [=, &settings] {
    Outcome outcome;
    FileManager& fm = FileManager::defaultManager();
    KUZipArchive archive{String(arguments->archive)};
    if (!archive.open()) {
      reportError(outcome, "zip", arguments->archive, std::string("cannot be created"));
      return outcome;
    }
    Progress progress(settings, "zipping");
    // Every file to pack, with its name in the archive.
    std::vector<std::pair<String, String>> files;
    for (const std::string& item : arguments->paths) {
      const String path = String(item).stringByStandardizingPath();
      bool isDirectory = false;
      if (!fm.fileExistsAtPath(path, &isDirectory)) {
        reportError(outcome, "zip", item, std::string("does not exist"));
        continue;
      }
      if (!isDirectory) {
        files.emplace_back(path, path.lastPathComponent());
        continue;
      }
      DirectoryEnumerator walk(fm, path);
      DirectoryItem entry;
      while (walk.nextItem(&entry)) {
        if (entry.type == FileType::Regular) {
          files.emplace_back(entry.path, path.lastPathComponent().stringByAppendingPathComponent(
                                             entry.relativePath));
        }
      }
    }
    // Files are deflated on every core, a batch at a time, and written in their order, so
    // the archive is the same whatever the number of cores.
    const int level = arguments->store ? 0 : -1;
    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    const std::size_t batch = 2 * cores;
    std::uint64_t entries = 0;
    for (std::size_t first = 0; first < files.size() && !interrupted.load(); first += batch) {
      const std::size_t count = std::min(batch, files.size() - first);
      std::vector<KUZipPackedEntry> packed(count);
      onEveryCore(count, [&](std::size_t i) {
        packed[i] = KUZipArchive::packFile(files[first + i].first, level);
      });
      for (std::size_t i = 0; i < count; ++i) {
        const auto& [path, name] = files[first + i];
        bool added = false;
        if (packed[i].packed) {
          added = archive.writePackedEntry(packed[i], name);
        } else if (packed[i].readable) {  // too large to hold whole: streamed
          added = arguments->store ? archive.writeFileWithoutCompressionToZipFilePath(path, name)
                                   : archive.writeFile(path, name);
        }
        if (!added) reportError(outcome, "zip", utf8(path), std::string("cannot be read"));
        progress.update(entries += added ? 1 : 0, files.size(), 0, 0);
      }
    }
    archive.close();
    progress.finish();
    if (interrupted.load()) outcome.code = kCancelled;
    outcome.document.update(
        {{"command", "zip"}, {"archive", arguments->archive}, {"entries", entries}});
    if (!settings.json && outcome.code == kSuccess) {
      std::cout << entries << " entries in " << arguments->archive << '\n';
    }
    return outcome;
  };
}

Runner addUnzipCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string archive, destination, password;
    bool noOverwrite = false, unsafe = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "unzip",
      "Unpack ARCHIVE into DEST, refusing names and links that lead out of DEST,\n"
      "writes through links, and zip bombs\n"
      "Example: tarnvik unzip Day01.zip /srv/Restore --password s3cret");
  command->add_option("ARCHIVE", arguments->archive, "The archive")->required();
  command->add_option("DEST", arguments->destination, "Where its entries go (made when missing)")
      ->required();
  command->add_option("--password", arguments->password, "For archives made with zip -P");
  command->add_flag("--no-overwrite", arguments->noOverwrite, "Keep files that are already there");
  command->add_flag("--unsafe-compatible", arguments->unsafe,
                    "The facade's historical extraction, which trusts names and links");
  return [=, &settings] {
    Outcome outcome;
    Error error;
    bool done = false;
    Progress progress(settings, "unzipping");
    if (arguments->unsafe) {
      done = KUZipArchive::unzipFileAtPath(String(arguments->archive),
                                           String(arguments->destination), !arguments->noOverwrite,
                                           String(arguments->password), &error);
    } else {
      UnzipOptions options;
      options.overwrite = !arguments->noOverwrite;
      options.password = String(arguments->password);
      options.progress = [&](const UnzipProgress& p) {
        progress.update(p.entriesDone, p.entriesTotal, p.bytesWritten, 0);
        return !interrupted.load();
      };
      done = KUZipArchive::unzipFileAtPathWithOptions(
          String(arguments->archive), String(arguments->destination), options, &error);
    }
    progress.finish();
    if (!done) {
      reportError(outcome, "unzip", arguments->archive,
                  error.isNil() ? Error(KUZipArchiveErrorDomain, 0,
                                        Dictionary{{NSLocalizedDescriptionKey,
                                                    u"an entry cannot be opened (a wrong or "
                                                    u"missing password, or damaged data)"}})
                                : error);
      outcome.code = failureCode(error);
    }
    outcome.document.update({{"command", "unzip"},
                             {"archive", arguments->archive},
                             {"destination", arguments->destination},
                             {"hardened", !arguments->unsafe}});
    if (!settings.json && outcome.code == kSuccess)
      std::cout << "unpacked into " << arguments->destination << '\n';
    return outcome;
  };
}

}  // namespace tarnvik::tool
