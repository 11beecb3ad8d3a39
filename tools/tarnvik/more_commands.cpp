// sort, prune, folders, volumes, gzip, gunzip and time: small chores, each one library call.
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <optional>
#include <set>

#include "tarnvik/codec/gzip.hpp"
#include "tarnvik/fs/folder_recreation.hpp"
#include "tarnvik/fs/housekeeping.hpp"
#include "tarnvik/text/sequence_order.hpp"
#include "tarnvik/time/dates.hpp"
#include "tarnvik/time/durations.hpp"
#include "tarnvik/time/media_timecodes.hpp"
#include "tool.hpp"

namespace tarnvik::tool {

Runner addSortCommand(CLI::App& app, const Settings& settings) {
  CLI::App* command = app.add_subcommand(
      "sort",
      "Sort the lines of standard input as file names in sequence order: by name,\n"
      "digit runs by value (clip9 before clip10), then by extension, case aside\n"
      "Example: ls /srv/Day01 | tarnvik sort");
  (void)command;
  return [&settings] {
    Outcome outcome;
    const std::string input{std::istreambuf_iterator<char>(std::cin),
                            std::istreambuf_iterator<char>()};
    // The text is decoded once; its lines and their bytes are split at the same line feeds,
    // so each line is written back as the bytes it came as.
    const String text = String::fromUTF8Lossy(input);
    const std::u16string_view units = text.units();
    std::vector<std::u16string_view> lines;
    std::vector<std::string_view> lineBytes;
    const std::string_view bytes(input);
    for (std::size_t at = 0, byteAt = 0; at < units.size();) {
      std::size_t end = units.find(u'\n', at);
      std::size_t byteEnd = bytes.find('\n', byteAt);
      if (end == std::u16string_view::npos) end = units.size();
      if (byteEnd == std::string_view::npos) byteEnd = bytes.size();
      lines.push_back(units.substr(at, end - at));
      lineBytes.push_back(bytes.substr(byteAt, byteEnd - byteAt));
      at = end + 1;
      byteAt = byteEnd + 1;
    }
    std::string output;
    output.reserve(input.size() + 1);
    for (const std::size_t i : fileNameSequenceOrder(lines)) {
      if (settings.json) outcome.document["lines"].push_back(std::string(lineBytes[i]));
      output.append(lineBytes[i]).push_back('\n');
    }
    if (!settings.json) std::cout << output;
    return outcome;
  };
}

Runner addPruneCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string folder;
    UInteger days = 0;
    bool dryRun = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "prune",
      "Remove the items directly in FOLDER created more than DAYS whole days ago\n"
      "Example: tarnvik prune ~/Library/Caches/Renders --older-than 30 --dry-run");
  command->add_option("FOLDER", arguments->folder, "The folder")->required();
  command->add_option("--older-than", arguments->days, "Days (at least 1)")
      ->required()
      ->check(CLI::PositiveNumber);
  command->add_flag("--dry-run", arguments->dryRun, "Only list what would go");
  return [=, &settings] {
    Outcome outcome;
    FileManager& fm = FileManager::defaultManager();
    const String folder(arguments->folder);
    const Array before = fm.contentsOfDirectoryAtPath(folder);
    if (before.isNil()) {
      reportError(outcome, "prune", arguments->folder, std::string("cannot be read"));
      return outcome;
    }
    std::vector<std::string> gone;
    if (arguments->dryRun) {
      const Date now = Date::now();
      for (const Value& name : before) {
        const String path = folder.stringByAppendingPathComponent(name.asString());
        const auto created = fileCreationDate(URL::fileURLWithPath(path));
        if (created && std::abs(created->timeIntervalSinceDate(now)) / 86400 >=
                           static_cast<double>(arguments->days + 1)) {
          gone.push_back(utf8(name.asString()));
        }
      }
    } else {
      removeFilesInDirectoryAtURL(fm, URL::fileURLWithPath(folder), arguments->days);
      const Array after = fm.contentsOfDirectoryAtPath(folder);
      for (const Value& name : before) {
        if (after.isNil() || !after.containsObject(name)) gone.push_back(utf8(name.asString()));
      }
    }
    outcome.document.update(
        {{"command", "prune"}, {"removed", gone}, {"dryRun", arguments->dryRun}});
    if (!settings.json) {
      for (const std::string& name : gone)
        std::cout << (arguments->dryRun ? "would remove  " : "removed  ") << name << '\n';
    }
    return outcome;
  };
}

Runner addFoldersCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string source, destination;
    bool emptyOnly = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("folders",
                         "Recreate the folder structure of FOLDER below DEST, without files\n"
                         "Example: tarnvik folders /srv/Day01 /srv/Day02 --empty-only");
  command->add_option("FOLDER", arguments->source, "The tree whose folders are copied")->required();
  command->add_option("DEST", arguments->destination, "Where they are made")->required();
  command->add_flag("--empty-only", arguments->emptyOnly,
                    "Only the empty folders (.DS_Store counts as nothing)");
  return [=, &settings] {
    Outcome outcome;
    FileManager& fm = FileManager::defaultManager();
    Error error;
    const String source = String(arguments->source).stringByStandardizingPath();
    const String destination = String(arguments->destination).stringByStandardizingPath();
    const bool done =
        arguments->emptyOnly
            ? recreateEmptyFoldersFromPath(
                  fm, source, [](const String& name) { return name == String(u".DS_Store"); },
                  destination, true, &error)
            : recreateFoldersFromPath(fm, source, destination, true, &error);
    if (!done) reportError(outcome, "folders", arguments->destination, error);
    outcome.document.update({{"command", "folders"},
                             {"source", arguments->source},
                             {"destination", arguments->destination}});
    if (!settings.json && done)
      std::cout << "folders made below " << arguments->destination << '\n';
    return outcome;
  };
}

Runner addVolumesCommand(CLI::App& app, const Settings& settings) {
  app.add_subcommand("volumes",
                     "The mounted volumes: mount point, file-system type, size and fill level\n"
                     "Example: tarnvik volumes --json");
  return [&settings] {
    Outcome outcome;
    FileManager& fm = FileManager::defaultManager();
    outcome.document["volumes"] = nlohmann::json::array();
    for (const Value& volume : mountedVolumePathsIncludingResourceValuesForKeys(fm)) {
      FileSystemAttributes attributes;
      if (!fm.fileSystemAttributesAtPath(volume.asString(), &attributes)) continue;
      const double used = attributes.size > 0
                              ? 100.0 * static_cast<double>(attributes.size - attributes.freeSize) /
                                    static_cast<double>(attributes.size)
                              : 0;
      outcome.document["volumes"].push_back({{"path", utf8(volume.asString())},
                                             {"type", utf8(attributes.type)},
                                             {"bytes", attributes.size},
                                             {"free", attributes.freeSize},
                                             {"usedPercent", static_cast<int>(used + 0.5)}});
      if (!settings.json) {
        std::printf("%-28s %-8s %10s %4d%% used\n", utf8(volume.asString()).c_str(),
                    utf8(attributes.type).c_str(), humanBytes(attributes.size).c_str(),
                    static_cast<int>(used + 0.5));
      }
    }
    return outcome;
  };
}

Runner addGzipCommand(CLI::App& app, const Settings& settings, bool pack) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      pack ? "gzip" : "gunzip",
      pack ? "Pack FILE into FILE.gz, keeping FILE\nExample: tarnvik gzip report.xml"
           : "Unpack FILE.gz into FILE, keeping FILE.gz\nExample: tarnvik gunzip report.xml.gz");
  command->add_option("FILE", *file, "The file")->required();
  return [=, &settings] {
    Outcome outcome;
    const String path(*file);
    if (!pack && !path.hasSuffix(u".gz")) {
      reportError(outcome, "gunzip", *file, std::string("does not end in .gz"));
      return outcome;
    }
    // Streamed in blocks: a file of any size takes the same memory.
    const String target =
        pack ? path.stringByAppendingString(u".gz") : path.stringByDeletingPathExtension();
    Error error;
    const bool done = pack ? gzipPackFileAtPath(path, target, &error)
                           : gzipUnpackFileAtPath(path, target, &error);
    if (!done) {
      const Value failed = error.userInfo().objectForKey(NSFilePathErrorKey);
      reportError(outcome, pack ? "gzip" : "gunzip",
                  failed.isString() ? failed.asString().utf8() : *file, error);
    }
    outcome.document.update({{"command", pack ? "gzip" : "gunzip"}, {"output", utf8(target)}});
    if (!settings.json && outcome.code == kSuccess) std::cout << utf8(target) << '\n';
    return outcome;
  };
}

Runner addTimeCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    double seconds = 0;
    double date = -1;
    float fps = 0;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("time",
                         "A duration in words, and a date (seconds since 1970) for people\n"
                         "Example: tarnvik time 5400 --date 1700000000");
  command->add_option("SECONDS", arguments->seconds, "A duration in seconds")->required();
  command->add_option("--date", arguments->date, "A date as seconds since 1970");
  command->add_option("--fps", arguments->fps, "Frames per second for the date's timecode");
  return [=, &settings] {
    Outcome outcome;
    const std::string duration =
        utf8(humanReadableStringForDuration(static_cast<float>(arguments->seconds)));
    outcome.document.update({{"command", "time"}, {"duration", duration}});
    if (!settings.json) std::cout << duration << '\n';
    if (arguments->date >= 0) {
      const std::string date =
          utf8(humanReadableString(Date::dateWithTimeIntervalSince1970(arguments->date)));
      outcome.document["date"] = date;
      if (!settings.json) std::cout << date << '\n';
      if (arguments->fps > 0) {
        const std::string timecode = utf8(timecodeStringWithDate(
            Date::dateWithTimeIntervalSince1970(arguments->date), arguments->fps));
        outcome.document["timecode"] = timecode;
        if (!settings.json) std::cout << timecode << '\n';
      }
    }
    return outcome;
  };
}

Runner addTimecodeCommand(CLI::App& app, const Settings& settings) {
  struct Arguments {
    std::string position;
    std::string rate = "25";
    bool seconds = false;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "timecode",
      "The timecode of a frame (or, with --seconds, of a moment) at a frame rate, or the\n"
      "frame of a timecode; drop-frame at 29.97df and 59.94df\n"
      "Example: tarnvik timecode 17982 --rate 29.97df     (prints 00:10:00;00)\n"
      "         tarnvik timecode 01:00:00:00 --rate 23.976  (prints 86400)");
  command->add_option("POSITION", arguments->position, "A frame number, seconds, or HH:MM:SS:FF")
      ->required();
  command->add_option("--rate", arguments->rate,
                      "23.976, 24, 25, 29.97, 29.97df, 30, 50, 59.94, 59.94df or 60 (default 25)");
  command->add_flag("--seconds", arguments->seconds, "POSITION is a time in seconds");
  return [=, &settings] {
    Outcome outcome;
    Error error;
    const std::optional<FrameRate> rate = FrameRate::fromString(arguments->rate, &error);
    if (!rate) {
      reportError(outcome, "timecode", arguments->rate, error);
      outcome.code = kUsage;
      return outcome;
    }
    std::optional<Timecode> timecode;
    const std::string& position = arguments->position;
    const bool isTimecode = position.find_first_of(":;") != std::string::npos;
    if (isTimecode) {
      timecode = Timecode::fromString(position, *rate, &error);
    } else {
      char* end = nullptr;
      errno = 0;
      if (arguments->seconds) {
        const double seconds = std::strtod(position.c_str(), &end);
        if (!position.empty() && *end == '\0') timecode = Timecode::fromSeconds(seconds, *rate);
      } else {
        const long long frame = std::strtoll(position.c_str(), &end, 10);
        if (!position.empty() && *end == '\0' && errno == 0) timecode = Timecode(frame, *rate);
      }
      if (!timecode) {
        error = Error(
            NSCocoaErrorDomain, TimecodeFormattingError,
            Dictionary{{NSLocalizedDescriptionKey,
                        String("“" + position + "” is not " +
                               (arguments->seconds ? "a time in seconds." : "a frame number."))}});
      }
    }
    if (!timecode) {
      reportError(outcome, "timecode", position, error);
      return outcome;
    }
    const std::string text = timecode->toStdString();
    outcome.document.update({{"command", "timecode"},
                             {"timecode", text},
                             {"frame", timecode->frameNumber()},
                             {"seconds", timecode->secondsValue()},
                             {"rate", rate->name()}});
    if (!settings.json) {
      std::cout << (isTimecode ? std::to_string(timecode->frameNumber()) : text) << '\n';
    }
    return outcome;
  };
}

}  // namespace tarnvik::tool
