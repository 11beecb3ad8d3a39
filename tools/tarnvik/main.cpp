// tarnvik: the everyday chores of a media folder, on the TarnvikExtensions library.
#include <iostream>

#include "tool.hpp"

#ifndef TARNVIK_VERSION
#define TARNVIK_VERSION "0"
#endif

int main(int argc, char** argv) {
  using namespace tarnvik::tool;
  CLI::App app{
      "tarnvik: the everyday chores of a media folder (offloading cards with\n"
      "verification, merging folders, zip archives, scans, names, digests)\n"
      "Exit codes: 0 success, 1 failure, 2 usage, 130 cancelled.\n"
      "Example: tarnvik offload /media/CARD /srv/Day01/A001",
      "tarnvik"};
  Settings settings;
  app.add_flag("--json", settings.json, "Print one JSON document instead of lines for people");
  app.add_flag("-q,--quiet", settings.quiet, "No progress line");
  app.set_version_flag("--version", std::string("tarnvik ") + TARNVIK_VERSION);
  app.require_subcommand(1);
  std::vector<std::pair<CLI::App*, Runner>> commands;
  auto add = [&](Runner runner) {
    commands.emplace_back(app.get_subcommands({}).back(), std::move(runner));
  };
  add(addOffloadCommand(app, settings));
  add(addTransferCommand(app, settings, true));
  add(addTransferCommand(app, settings, false));
  add(addScanCommand(app, settings));
  add(addZipCommand(app, settings));
  add(addUnzipCommand(app, settings));
  add(addHashCommand(app, settings));
  add(addNameCommand(app, settings));
  add(addSortCommand(app, settings));
  add(addPruneCommand(app, settings));
  add(addFoldersCommand(app, settings));
  add(addVolumesCommand(app, settings));
  add(addGzipCommand(app, settings, true));
  add(addGzipCommand(app, settings, false));
  add(addTimeCommand(app, settings));
  add(addTimecodeCommand(app, settings));
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return kUsage;
  }
  installInterruptHandler();
  for (auto& [command, run] : commands) {
    if (!command->parsed()) continue;
    Outcome outcome;
    try {
      outcome = run();
    } catch (const std::exception& e) {
      reportError(outcome, command->get_name(), "unexpected failure", std::string(e.what()));
    }
    if (settings.json) {
      outcome.document["ok"] = outcome.code == kSuccess;
      std::cout << outcome.document.dump(2) << '\n';
    }
    return outcome.code;
  }
  return kUsage;
}
