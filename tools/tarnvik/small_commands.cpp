// hash (md5sum and sha1sum output, and their -c check) and name (clip counters).
#include <fstream>
#include <iostream>

#include "tarnvik/codec/digests.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/text/name_segments.hpp"
#include "tool.hpp"

namespace tarnvik::tool {

namespace {

// The lower-case hex digest of the file, or "" when it cannot be read.
std::string digestOf(const std::string& path, bool useSha1) {
  const Data bytes =
      FileManager::defaultManager().contentsAtPath(String(path), NSDataReadingMappedIfSafe);
  if (bytes.isNil()) return std::string();
  return utf8((useSha1 ? sha1(bytes) : md5(bytes)).lowercaseString());
}

}  // namespace

Runner addHashCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::vector<std::string> files;
    bool sha1 = false;
    std::string check;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "hash",
      "Digests of files, printed as md5sum (or sha1sum) prints them; --check reads\n"
      "their manifests\n"
      "Example: tarnvik hash --sha1 A001C001.mov\n"
      "         cd /srv/Day01 && tarnvik hash --check offload.md5");
  command->add_option("FILE", arguments->files, "Files to hash");
  command->add_flag("--sha1", arguments->sha1, "SHA-1 instead of MD5");
  command->add_option("--check", arguments->check, "A manifest to check (\"digest  name\" lines)");
  return [=, &settings] {
    Outcome outcome;
    if (!arguments->check.empty()) {
      std::ifstream manifest(arguments->check);
      if (!manifest) {
        reportError(outcome, "hash", arguments->check, std::string("cannot be read"));
        return outcome;
      }
      std::string line;
      std::uint64_t failed = 0;
      while (std::getline(manifest, line)) {
        const std::size_t gap = line.find(' ');
        if (gap == std::string::npos || gap + 2 > line.size()) continue;
        const std::string expected = line.substr(0, gap), name = line.substr(gap + 2);
        const bool ok = digestOf(name, expected.size() == 40) == expected;
        failed += ok ? 0 : 1;
        outcome.document["files"].push_back({{"file", name}, {"ok", ok}});
        if (!settings.json) std::cout << name << (ok ? ": OK" : ": FAILED") << '\n';
      }
      if (failed > 0) {
        reportError(outcome, "hash", arguments->check,
                    std::to_string(failed) + " computed checksum" + (failed == 1 ? "" : "s") +
                        " did NOT match");
      }
      return outcome;
    }
    for (const std::string& file : arguments->files) {
      const std::string digest = digestOf(file, arguments->sha1);
      if (digest.empty()) {
        reportError(outcome, "hash", file, std::string("cannot be read"));
        continue;
      }
      outcome.document["files"].push_back({{"file", file}, {"digest", digest}});
      if (!settings.json) std::cout << digest << "  " << file << '\n';
    }
    return outcome;
  };
}

Runner addNameCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string action, name;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("name",
                         "The next or previous clip name, counting in the last digit run\n"
                         "Example: tarnvik name next A001C009   (prints A001C010)");
  command->add_option("ACTION", arguments->action, "next or previous")
      ->required()
      ->check(CLI::IsMember({"next", "previous"}));
  command->add_option("NAME", arguments->name, "A clip or file name")->required();
  return [=, &settings] {
    Outcome outcome;
    const String name(arguments->name);
    const String result =
        arguments->action == "next" ? incrementLastSegment(name) : decrementLastSegment(name);
    outcome.document.update(
        {{"command", "name"}, {"name", arguments->name}, {"result", utf8(result)}});
    if (!settings.json) std::cout << utf8(result) << '\n';
    return outcome;
  };
}

}  // namespace tarnvik::tool
