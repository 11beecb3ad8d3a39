// hash (md5sum, sha1sum and xxhsum output, and their -c check) and name (clip counters).
#include <algorithm>
#include <fstream>
#include <iostream>
#include <vector>

#include "tarnvik/codec/stream_digests.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/text/name_segments.hpp"
#include "tarnvik/text/unique_names.hpp"
#include "tool.hpp"

namespace tarnvik::tool {

namespace {

// The algorithm of a manifest: from its extension, else from the length of its digests.
DigestAlgorithm manifestAlgorithm(const std::string& path, std::size_t digestLength) {
  const std::string extension = utf8(String(path).pathExtension().lowercaseString());
  for (const DigestAlgorithm a :
       {DigestAlgorithm::MD5, DigestAlgorithm::SHA1, DigestAlgorithm::SHA256,
        DigestAlgorithm::XXH64, DigestAlgorithm::XXH128}) {
    if (extension == digestName(a)) return a;
  }
  return digestLength == 64   ? DigestAlgorithm::SHA256
         : digestLength == 40 ? DigestAlgorithm::SHA1
         : digestLength == 16 ? DigestAlgorithm::XXH64
                              : DigestAlgorithm::MD5;
}

struct FileDigest {
  std::string digest;  // "" when the file cannot be read
  Error error;         // and why
};

// The digests of the files, computed on every core, in the files' order.
std::vector<FileDigest> digestsOf(const std::vector<std::string>& files,
                                  const std::vector<DigestAlgorithm>& algorithms) {
  std::vector<FileDigest> digests(files.size());
  onEveryCore(files.size(), [&](std::size_t i) {
    digests[i].digest =
        utf8(digestOfFileAtPath(String(files[i]), algorithms[i], &digests[i].error));
  });
  return digests;
}

}  // namespace

Runner addHashCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::vector<std::string> files;
    std::string check;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "hash",
      "Digests of files, printed as md5sum, sha1sum, sha256sum or xxhsum print them\n"
      "(files hashed on every core); --check reads their manifests\n"
      "Example: tarnvik hash --xxh128 A001C001.mov\n"
      "         cd /srv/Day01 && tarnvik hash --check offload.md5");
  command->add_option("FILE", arguments->files, "Files to hash");
  const auto algorithm = addDigestFlags(command);
  command->add_option(
      "--check", arguments->check,
      "A manifest to check (\"digest  name\" lines; the algorithm from its extension)");
  return [=, &settings] {
    Outcome outcome;
    if (!arguments->check.empty()) {
      std::ifstream manifest(arguments->check);
      if (!manifest) {
        reportError(outcome, "hash", arguments->check, std::string("cannot be read"));
        return outcome;
      }
      std::vector<std::string> names, expected;
      std::vector<DigestAlgorithm> algorithms;
      for (std::string line; std::getline(manifest, line);) {
        const std::size_t gap = line.find(' ');
        if (gap == std::string::npos || gap + 2 > line.size()) continue;
        expected.push_back(line.substr(0, gap));
        names.push_back(line.substr(gap + 2));
        algorithms.push_back(manifestAlgorithm(arguments->check, gap));
      }
      const std::vector<FileDigest> digests = digestsOf(names, algorithms);
      std::uint64_t failed = 0;
      for (std::size_t i = 0; i < names.size(); ++i) {
        const bool ok = digests[i].digest == expected[i];
        failed += ok ? 0 : 1;
        outcome.document["files"].push_back({{"file", names[i]}, {"ok", ok}});
        if (!settings.json) std::cout << names[i] << (ok ? ": OK" : ": FAILED") << '\n';
      }
      if (failed > 0) {
        reportError(outcome, "hash", arguments->check,
                    std::to_string(failed) + " computed checksum" + (failed == 1 ? "" : "s") +
                        " did NOT match");
      }
      return outcome;
    }
    const std::vector<FileDigest> digests = digestsOf(
        arguments->files, std::vector<DigestAlgorithm>(arguments->files.size(), *algorithm));
    for (std::size_t i = 0; i < arguments->files.size(); ++i) {
      const std::string& file = arguments->files[i];
      if (digests[i].digest.empty()) {
        reportError(outcome, "hash", file, digests[i].error);
        continue;
      }
      outcome.document["files"].push_back({{"file", file}, {"digest", digests[i].digest}});
      if (!settings.json) std::cout << digests[i].digest << "  " << file << '\n';
    }
    if (interrupted.load()) outcome.code = kCancelled;
    return outcome;
  };
}

Runner addNameCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string action, name, folder;
    UInteger index = 1;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "name",
      "Clip names: the next or previous one (counting in the last digit run before\n"
      "the extension), the counter reset, or a name that is free in a folder\n"
      "Example: tarnvik name next A001C009.mov      (prints A001C010.mov)\n"
      "         tarnvik name unique Clip.mov --in /srv/Day01");
  command->add_option("ACTION", arguments->action, "next, previous, reset or unique")
      ->required()
      ->check(CLI::IsMember({"next", "previous", "reset", "unique"}));
  command->add_option("NAME", arguments->name, "A clip or file name")->required();
  command->add_option("--to", arguments->index, "The counter for reset (1 when not given)");
  command->add_option("--in", arguments->folder, "The folder for unique");
  return [=, &settings] {
    Outcome outcome;
    const String name(arguments->name);
    String result;
    if (arguments->action == "next") {
      result = incrementLastSegmentOfFileName(name);
    } else if (arguments->action == "previous") {
      result = decrementLastSegmentOfFileName(name);
    } else if (arguments->action == "reset") {
      result = resetLastSegmentOfFileNameToIndex(name, arguments->index);
    } else if (arguments->folder.empty()) {
      reportError(outcome, "name", "unique", std::string("needs --in FOLDER"));
      outcome.code = kUsage;
      return outcome;
    } else {
      result = uniquifyFileNameInFolder(name, String(arguments->folder));
    }
    outcome.document.update(
        {{"command", "name"}, {"name", arguments->name}, {"result", utf8(result)}});
    if (!settings.json) std::cout << utf8(result) << '\n';
    return outcome;
  };
}

}  // namespace tarnvik::tool
