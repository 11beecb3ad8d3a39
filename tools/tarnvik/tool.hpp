// What every command of the tarnvik tool shares: the output (plain lines for people, one
// JSON document with --json), the progress line on a terminal, Ctrl-C, and the one-line
// error form "tarnvik: COMMAND: what failed: why (domain code)".
#pragma once

#include <CLI/CLI.hpp>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "tarnvik/codec/stream_digests.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik::tool {

// Exit codes.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;
inline constexpr int kUsage = 2;
inline constexpr int kCancelled = 130;

struct Settings {
  bool json = false;
  bool quiet = false;
};

// Set by SIGINT; long work polls it through the library's cancellation.
extern std::atomic<bool> interrupted;
void installInterruptHandler();

// The result of one command: its JSON document, and the exit code.
struct Outcome {
  nlohmann::json document = nlohmann::json::object();
  int code = kSuccess;
};

// "tarnvik: COMMAND: what: why (domain code)" on standard error; also into the document's
// "errors" array.
void reportError(Outcome& outcome, const std::string& command, const std::string& what,
                 const Error& error = Error());
void reportError(Outcome& outcome, const std::string& command, const std::string& what,
                 const std::string& why);
// The exit code for a failed library call: 130 when it was cancelled, else 1.
int failureCode(const Error& error);

// A progress line on standard error, redrawn about ten times a second, only when standard
// error is a terminal and --quiet was not given; erased when done.
class Progress {
 public:
  Progress(const Settings& settings, std::string label);
  ~Progress();
  void update(std::uint64_t items, std::uint64_t itemsTotal, std::uint64_t bytes,
              std::uint64_t bytesTotal);
  void finish();

 private:
  bool shown_;
  std::string label_;
  std::chrono::steady_clock::time_point start_, last_{};
  bool drawn_ = false;
};

std::string utf8(const String& text);

// Runs job(0) ... job(count - 1) on every core (the calling thread included) and returns
// when all are done. Stops handing out jobs after Ctrl-C.
void onEveryCore(std::size_t count, const std::function<void(std::size_t)>& job);

// --md5 (the default), --sha1, --xxh64, --xxh128 on a command; the chosen algorithm.
std::shared_ptr<DigestAlgorithm> addDigestFlags(CLI::App* command);
std::string humanBytes(std::uint64_t bytes);

// Each command adds itself to the app and returns the function that runs it.
using Runner = std::function<Outcome()>;
Runner addTransferCommand(CLI::App& app, const Settings& settings, bool copy);
Runner addOffloadCommand(CLI::App& app, const Settings& settings);
Runner addScanCommand(CLI::App& app, const Settings& settings);
Runner addZipCommand(CLI::App& app, const Settings& settings);
Runner addUnzipCommand(CLI::App& app, const Settings& settings);
Runner addHashCommand(CLI::App& app, const Settings& settings);
Runner addNameCommand(CLI::App& app, const Settings& settings);
Runner addSortCommand(CLI::App& app, const Settings& settings);
Runner addPruneCommand(CLI::App& app, const Settings& settings);
Runner addFoldersCommand(CLI::App& app, const Settings& settings);
Runner addVolumesCommand(CLI::App& app, const Settings& settings);
Runner addGzipCommand(CLI::App& app, const Settings& settings, bool pack);
Runner addTimeCommand(CLI::App& app, const Settings& settings);
Runner addTimecodeCommand(CLI::App& app, const Settings& settings);

}  // namespace tarnvik::tool
