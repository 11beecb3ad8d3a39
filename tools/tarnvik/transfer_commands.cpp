// copy, move and offload: the merging folder transfers, and an offload that verifies every
// copied file by digest and writes a manifest md5sum -c (or sha1sum -c) reads.
#include <filesystem>
#include <iostream>

#include "tarnvik/fs/directory_transfer.hpp"
#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tool.hpp"

namespace tarnvik::tool {

namespace {

struct TransferArguments {
  std::string source, destination;
  bool skipExisting = false, overwrite = false, keepBoth = false, dryRun = false;

  void addTo(CLI::App* command) {
    command->add_option("SOURCE", source, "The folder whose contents go")->required();
    command->add_option("DEST", destination, "An existing folder they go into")->required();
    auto* skip =
        command->add_flag("--skip-existing", skipExisting, "Leave files that are already there");
    auto* over =
        command->add_flag("--overwrite", overwrite, "Replace files that are already there");
    auto* both =
        command->add_flag("--keep-both", keepBoth, "Put the newcomer beside them, numbered");
    skip->excludes(over)->excludes(both);
    over->excludes(both);
  }
  TransferConflict conflict() const {
    return skipExisting ? TransferConflict::Skip
           : overwrite  ? TransferConflict::Overwrite
           : keepBoth   ? TransferConflict::KeepBoth
                        : TransferConflict::Fail;
  }
};

// Runs the transfer with a progress line and Ctrl-C as cancellation.
bool transfer(const Settings& settings, const TransferArguments& arguments, bool copy,
              TransferProgress* last, Error* error) {
  Progress progress(settings, copy ? "copying" : "moving");
  TransferOptions options;
  options.copy = copy;
  options.conflict = arguments.conflict();
  options.progress = [&](const TransferProgress& p) {
    *last = p;
    progress.update(p.itemsDone, p.itemsTotal, p.bytesDone, p.bytesTotal);
    return !interrupted.load();
  };
  return transferContentsOfDirectoryAtPath(FileManager::defaultManager(), String(arguments.source),
                                           String(arguments.destination), options, error);
}

// What a transfer would do, item by item, without doing it.
Outcome dryRun(const TransferArguments& arguments, bool copy) {
  Outcome outcome;
  FileManager& fm = FileManager::defaultManager();
  DirectoryEnumerator walk(fm, String(arguments.source).stringByStandardizingPath());
  DirectoryItem item;
  const String destination = String(arguments.destination).stringByStandardizingPath();
  while (walk.nextItem(&item)) {
    if (item.isDirectory() || item.name == String(u".DS_Store")) continue;
    const bool taken =
        fm.itemExistsAtPath(destination.stringByAppendingPathComponent(item.relativePath));
    const char* action = !taken                   ? (copy ? "copy" : "move")
                         : arguments.skipExisting ? "skip"
                         : arguments.overwrite    ? "replace"
                         : arguments.keepBoth     ? "keep both"
                                                  : "conflict";
    outcome.document["items"].push_back({{"path", utf8(item.relativePath)}, {"action", action}});
    if (std::string(action) == "conflict") outcome.code = kFailure;
  }
  return outcome;
}

}  // namespace

Runner addTransferCommand(CLI::App& app, const Settings& settings, bool copy) {
  auto arguments = std::make_shared<TransferArguments>();
  CLI::App* command = app.add_subcommand(
      copy ? "copy" : "move",
      copy ? "Copy the contents of SOURCE into DEST, merging folders\n"
             "Example: tarnvik copy /media/CARD /srv/Day01 --skip-existing"
           : "Move the contents of SOURCE into DEST, merging folders; SOURCE is left empty\n"
             "Example: tarnvik move ~/Ingest/Day01 /srv/Day01");
  arguments->addTo(command);
  command->add_flag("--dry-run", arguments->dryRun, "Only say what would be done");
  const std::string name = copy ? "copy" : "move";
  return [=, &settings] {
    if (arguments->dryRun) {
      Outcome outcome = dryRun(*arguments, copy);
      if (!settings.json) {
        for (const auto& item : outcome.document["items"]) {
          std::cout << item["action"].get<std::string>() << "  " << item["path"].get<std::string>()
                    << '\n';
        }
      }
      return outcome;
    }
    Outcome outcome;
    TransferProgress last;
    Error error;
    if (!transfer(settings, *arguments, copy, &last, &error)) {
      reportError(outcome, name, arguments->source + " to " + arguments->destination, error);
      outcome.code = failureCode(error);
    }
    outcome.document.update(
        {{"command", name}, {"items", last.itemsDone}, {"bytes", last.bytesDone}});
    if (!settings.json && outcome.code == kSuccess) {
      std::cout << last.itemsDone << " files, " << humanBytes(last.bytesDone) << '\n';
    }
    return outcome;
  };
}

Runner addOffloadCommand(CLI::App& app, const Settings& settings) {
  auto arguments = std::make_shared<TransferArguments>();
  CLI::App* command = app.add_subcommand(
      "offload",
      "Copy a camera card into DEST, verify every file by digest and write a manifest\n"
      "(DEST/offload.md5, which `md5sum -c` reads from DEST; offload.sha1, offload.xxh64\n"
      "or offload.xxh128 for sha1sum -c and xxhsum -c)\n"
      "Example: tarnvik offload /media/CARD /srv/Day01/A001 --xxh128");
  arguments->addTo(command);
  const auto algorithm = addDigestFlags(command);
  return [=, &settings] {
    Outcome outcome;
    TransferProgress last;
    Error error;
    if (!transfer(settings, *arguments, true, &last, &error)) {
      reportError(outcome, "offload", "copying " + arguments->source, error);
      outcome.code = failureCode(error);
      return outcome;
    }
    FileManager& fm = FileManager::defaultManager();
    const String source = String(arguments->source).stringByStandardizingPath();
    const String destination = String(arguments->destination).stringByStandardizingPath();
    Progress progress(settings, "verifying");
    std::string manifest;
    std::uint64_t verified = 0;
    DirectoryEnumerator walk(fm, source);
    DirectoryItem item;
    while (walk.nextItem(&item) && !interrupted.load()) {
      if (item.type != FileType::Regular || item.name == String(u".DS_Store")) continue;
      auto digest = [&](const String& path) { return utf8(digestOfFileAtPath(path, *algorithm)); };
      const std::string original = digest(item.path);
      const std::string copied =
          digest(destination.stringByAppendingPathComponent(item.relativePath));
      if (original.empty() || original != copied) {
        reportError(outcome, "offload", utf8(item.relativePath),
                    original.empty() ? "cannot be read" : "differs from its copy");
        continue;
      }
      manifest += original + "  " + utf8(item.relativePath) + '\n';
      progress.update(++verified, last.itemsTotal, 0, 0);
    }
    progress.finish();
    if (interrupted.load()) {
      reportError(outcome, "offload", "verifying", std::string("cancelled"));
      outcome.code = kCancelled;
      return outcome;
    }
    const String manifestPath = destination.stringByAppendingPathComponent(
        String("offload.").stringByAppendingString(String(digestName(*algorithm))));
    if (!fm.writeDataToPath(Data::withBytes(manifest.data(), manifest.size()), manifestPath, true,
                            &error)) {
      reportError(outcome, "offload", "writing " + utf8(manifestPath), error);
    }
    outcome.document.update({{"command", "offload"},
                             {"copied", last.itemsDone},
                             {"bytes", last.bytesDone},
                             {"verified", verified},
                             {"manifest", utf8(manifestPath)}});
    if (!settings.json && outcome.code == kSuccess) {
      std::cout << last.itemsDone << " files, " << humanBytes(last.bytesDone) << " copied; "
                << verified << " verified; manifest " << utf8(manifestPath) << '\n';
    }
    return outcome;
  };
}

}  // namespace tarnvik::tool
