// copy, move and offload: the merging folder transfers, and an offload that verifies every
// copied file by digest and writes a manifest md5sum -c (or sha1sum -c) reads.
#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <iostream>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "tarnvik/fs/directory_transfer.hpp"
#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tarnvik/text/paths.hpp"
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

namespace {

// Verifies copied files while the transfer goes on: each file the transfer reports is
// queued, and workers on every core compare the copy with its source and digest it.
class Verifier {
 public:
  Verifier(String source, String destination, DigestAlgorithm algorithm)
      : source_(std::move(source)), destination_(std::move(destination)), algorithm_(algorithm) {
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    for (unsigned c = 0; c < cores; ++c) workers_.emplace_back([this] { work(); });
  }
  ~Verifier() { finish(); }

  void add(const String& relativePath) {
    std::lock_guard lock(mutex_);
    queue_.push_back(results_.size());
    results_.push_back(Result{relativePath, std::string(), false, false});
    ready_.notify_one();
  }
  void finish() {
    {
      std::lock_guard lock(mutex_);
      closed_ = true;
    }
    ready_.notify_all();
    for (std::thread& worker : workers_) worker.join();
    workers_.clear();
  }

  struct Result {
    String relativePath;
    std::string digest;
    bool readable = false;
    bool matches = false;
  };
  // In the order the transfer reported the files.
  const std::vector<Result>& results() const { return results_; }

 private:
  void work() {
    for (;;) {
      std::size_t index = 0;
      String relative;
      {
        std::unique_lock lock(mutex_);
        ready_.wait(lock, [this] { return closed_ || !queue_.empty(); });
        if (queue_.empty()) return;
        index = queue_.front();
        queue_.pop_front();
        relative = results_[index].relativePath;
      }
      // The copy is compared byte for byte with its source, and its digest (the bytes being
      // the same) goes into the manifest: one digest per file instead of two.
      bool readable = false;
      std::string digest;
      const bool same = compareAndDigest(relative, &readable, &digest);
      std::lock_guard lock(mutex_);
      Result& result = results_[index];
      result.readable = readable;
      result.digest = std::move(digest);
      result.matches = same;
    }
  }

  // Reads the source and its copy side by side in blocks, so that memory stays the same
  // whatever the size of the clips; the digest is the copy's, and only when they match.
  bool compareAndDigest(const String& relative, bool* readable, std::string* digest) const {
    constexpr std::size_t kBlockSize = 1 << 20;
    FileManager& fm = FileManager::defaultManager();
    FileHandle original =
        fm.openFileForReadingAtPath(source_.stringByAppendingPathComponent(relative));
    *readable = original.isOpen();
    if (!original.isOpen()) return false;
    FileHandle copied =
        fm.openFileForReadingAtPath(destination_.stringByAppendingPathComponent(relative));
    if (!copied.isOpen()) return false;
    const auto blocks = std::make_unique_for_overwrite<std::uint8_t[]>(2 * kBlockSize);
    std::uint8_t* const ours = blocks.get();
    std::uint8_t* const theirs = blocks.get() + kBlockSize;
    StreamingDigest hasher(algorithm_);
    for (;;) {
      UInteger length = 0;
      if (!fm.readBytes(original, ours, kBlockSize, &length)) {
        *readable = false;
        return false;
      }
      // The copy is read to the same length (a read may return less than asked).
      UInteger filled = 0;
      while (filled < length) {
        UInteger n = 0;
        if (!fm.readBytes(copied, theirs + filled, length - filled, &n) || n == 0) return false;
        filled += n;
      }
      if (length == 0) {
        UInteger more = 0;
        if (!fm.readBytes(copied, theirs, 1, &more) || more != 0) return false;  // copy longer
        break;
      }
      if (std::memcmp(ours, theirs, length) != 0) return false;
      hasher.update(theirs, length);
    }
    *digest = hasher.finish();
    return true;
  }

  const String source_, destination_;
  const DigestAlgorithm algorithm_;
  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<std::size_t> queue_;
  std::vector<Result> results_;  // grows under the lock; workers only touch their own entry
  bool closed_ = false;
  std::vector<std::thread> workers_;
};

}  // namespace

Runner addOffloadCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string source, destination;
    bool skipExisting = false, overwrite = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "offload",
      "Copy a camera card into DEST; while the copy goes on, compare every copy with its\n"
      "source, byte for byte, and digest it into a manifest (DEST/offload.md5, which\n"
      "`md5sum -c` reads from DEST; offload.sha1, offload.sha256,\n"
      "offload.xxh64 or offload.xxh128 for sha1sum -c, sha256sum -c and xxhsum -c)\n"
      "Example: tarnvik offload /media/CARD /srv/Day01/A001 --xxh128");
  command->add_option("SOURCE", arguments->source, "The card (a folder)")->required();
  command->add_option("DEST", arguments->destination, "An existing folder it goes into")
      ->required();
  auto* skip = command->add_flag("--skip-existing", arguments->skipExisting,
                                 "Leave files that are already there (they are still verified)");
  auto* over = command->add_flag("--overwrite", arguments->overwrite,
                                 "Replace files that are already there");
  skip->excludes(over);
  const auto algorithm = addDigestFlags(command);
  return [=, &settings] {
    Outcome outcome;
    FileManager& fm = FileManager::defaultManager();
    const String source = String(arguments->source).stringByStandardizingPath();
    const String destination = String(arguments->destination).stringByStandardizingPath();
    Progress progress(settings, "offloading");
    Verifier verifier(source, destination, *algorithm);
    TransferOptions options;
    options.conflict = arguments->skipExisting ? TransferConflict::Skip
                       : arguments->overwrite  ? TransferConflict::Overwrite
                                               : TransferConflict::Fail;
    options.progressInterval = std::chrono::milliseconds(0);  // every file, for the verifier
    TransferProgress last;
    UInteger seen = 0;
    options.progress = [&](const TransferProgress& p) {
      last = p;
      if (p.itemsDone > seen) {
        seen = p.itemsDone;
        if (p.currentType == FileType::Regular) {
          verifier.add(relativePathFromBaseDirPath(p.currentPath, source));
        }
      }
      progress.update(p.itemsDone, p.itemsTotal, p.bytesDone, p.bytesTotal);
      return !interrupted.load();
    };
    Error error;
    const bool copied = transferContentsOfDirectoryAtPath(fm, source, destination, options, &error);
    verifier.finish();
    progress.finish();
    if (!copied) {
      reportError(outcome, "offload", "copying " + arguments->source, error);
      outcome.code = failureCode(error);
      return outcome;
    }
    std::string manifest;
    std::uint64_t verified = 0;
    for (const Verifier::Result& result : verifier.results()) {
      if (!result.matches) {
        reportError(outcome, "offload", utf8(result.relativePath),
                    result.readable ? "differs from its copy" : "cannot be read");
        continue;
      }
      ++verified;
      manifest += result.digest + "  " + utf8(result.relativePath) + '\n';
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
