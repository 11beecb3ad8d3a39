#include "tool.hpp"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <thread>
#include <vector>

namespace tarnvik::tool {

std::atomic<bool> interrupted{false};

namespace {

void onInterrupt(int) { interrupted.store(true); }

}  // namespace

void installInterruptHandler() {
  struct sigaction action {};
  action.sa_handler = onInterrupt;
  sigemptyset(&action.sa_mask);
  ::sigaction(SIGINT, &action, nullptr);
  ::sigaction(SIGTERM, &action, nullptr);
}

std::shared_ptr<DigestAlgorithm> addDigestFlags(CLI::App* command) {
  auto algorithm = std::make_shared<DigestAlgorithm>(DigestAlgorithm::MD5);
  const std::pair<const char*, DigestAlgorithm> flags[] = {{"--md5", DigestAlgorithm::MD5},
                                                           {"--sha1", DigestAlgorithm::SHA1},
                                                           {"--sha256", DigestAlgorithm::SHA256},
                                                           {"--xxh64", DigestAlgorithm::XXH64},
                                                           {"--xxh128", DigestAlgorithm::XXH128}};
  for (const auto& [flag, value] : flags) {
    command->add_flag_callback(
        flag, [algorithm, value = value] { *algorithm = value; },
        std::string("Digest with ") + digestName(value));
  }
  return algorithm;
}

void onEveryCore(std::size_t count, const std::function<void(std::size_t)>& job) {
  std::atomic<std::size_t> next{0};
  auto work = [&] {
    for (std::size_t i = next++; i < count && !interrupted.load(); i = next++) job(i);
  };
  const std::size_t cores =
      std::min<std::size_t>(std::max(1u, std::thread::hardware_concurrency()), count);
  std::vector<std::thread> workers;
  for (std::size_t c = 1; c < cores; ++c) workers.emplace_back(work);
  work();
  for (std::thread& worker : workers) worker.join();
}

std::string utf8(const String& text) { return text.isNil() ? std::string() : text.utf8(); }

std::string humanBytes(std::uint64_t bytes) {
  const char* units[] = {"B", "KB", "MB", "GB", "TB"};
  double value = static_cast<double>(bytes);
  int unit = 0;
  while (value >= 1000 && unit < 4) {
    value /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", value, units[unit]);
  return text;
}

void reportError(Outcome& outcome, const std::string& command, const std::string& what,
                 const std::string& why) {
  std::cerr << "tarnvik: " << command << ": " << what << ": " << why << '\n';
  outcome.document["errors"].push_back({{"what", what}, {"why", why}});
  if (outcome.code == kSuccess) outcome.code = kFailure;
}

void reportError(Outcome& outcome, const std::string& command, const std::string& what,
                 const Error& error) {
  if (error.isNil()) {
    reportError(outcome, command, what, std::string("failed"));
    return;
  }
  const Value reason = error.userInfo().objectForKey(NSLocalizedFailureReasonErrorKey);
  const Value path = error.userInfo().objectForKey(NSFilePathErrorKey);
  const Error underlying = error.underlyingError();
  std::string why;
  if (path.isString() && path.asString().utf8() == what && !underlying.isNil()) {
    // The line names the file already: the system's reason is all it needs.
    why = underlying.localizedDescription().utf8();
  } else {
    why = reason.isString() ? reason.asString().utf8() : error.localizedDescription().utf8();
    if (!underlying.isNil()) why += ": " + underlying.localizedDescription().utf8();
  }
  why += " (" + utf8(error.domain()) + " " + std::to_string(error.code()) + ")";
  reportError(outcome, command, what, why);
  if (error.code() == NSUserCancelledError) outcome.code = kCancelled;
}

int failureCode(const Error& error) {
  return interrupted.load() || error.code() == NSUserCancelledError ? kCancelled : kFailure;
}

Progress::Progress(const Settings& settings, std::string label)
    : shown_(!settings.quiet && ::isatty(STDERR_FILENO)),
      label_(std::move(label)),
      start_(std::chrono::steady_clock::now()) {}

Progress::~Progress() { finish(); }

void Progress::update(std::uint64_t items, std::uint64_t itemsTotal, std::uint64_t bytes,
                      std::uint64_t bytesTotal) {
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (drawn_ && now - last_ < std::chrono::milliseconds(100)) return;
  last_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = seconds > 0 ? static_cast<double>(bytes) / seconds : 0;
  const double fraction =
      bytesTotal > 0   ? static_cast<double>(bytes) / static_cast<double>(bytesTotal)
      : itemsTotal > 0 ? static_cast<double>(items) / static_cast<double>(itemsTotal)
                       : 0;
  const int width = 24, filled = static_cast<int>(fraction * width);
  std::string bar(static_cast<std::size_t>(filled), '#');
  bar.resize(width, '-');
  const double left =
      rate > 0 && bytesTotal > bytes ? static_cast<double>(bytesTotal - bytes) / rate : 0;
  std::fprintf(stderr, "\r%s [%s] %3.0f%%  %llu/%llu items  %s/s  %.0fs left \033[K",
               label_.c_str(), bar.c_str(), fraction * 100, static_cast<unsigned long long>(items),
               static_cast<unsigned long long>(itemsTotal),
               humanBytes(static_cast<std::uint64_t>(rate)).c_str(), left);
  std::fflush(stderr);
  drawn_ = true;
}

void Progress::finish() {
  if (drawn_) std::fprintf(stderr, "\r\033[K");
  drawn_ = false;
}

}  // namespace tarnvik::tool
