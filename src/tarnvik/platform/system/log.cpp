#include "tarnvik/platform/system/log.hpp"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <vector>

namespace tarnvik {

std::atomic<unsigned long> ddLogLevel{DDLogFlagError};

namespace {

class StandardErrorLogger : public Logger {
 public:
  void logMessage(const LogMessage& m) override {
    const std::string line = m.file.utf8() + ":" + std::to_string(m.line) + " " +
                             m.function.utf8() + ": " + m.message.utf8() + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
  }
};

struct Registry {
  std::mutex lock;
  std::vector<std::shared_ptr<Logger>> loggers{DDLog::standardErrorLogger()};
};

Registry& registry() {
  static Registry r;
  return r;
}

std::mutex consoleLock;
std::function<void(const String&)>& consoleSink() {
  static std::function<void(const String&)> sink;
  return sink;
}

}  // namespace

void DDLog::dispatch(const LogMessage& message) {
  Registry& r = registry();
  std::lock_guard lock(r.lock);
  for (const auto& logger : r.loggers) logger->logMessage(message);
}

void DDLog::addLogger(std::shared_ptr<Logger> logger) {
  if (!logger) return;
  Registry& r = registry();
  std::lock_guard lock(r.lock);
  r.loggers.push_back(std::move(logger));
}

void DDLog::removeLogger(const std::shared_ptr<Logger>& logger) {
  Registry& r = registry();
  std::lock_guard lock(r.lock);
  std::erase(r.loggers, logger);
}

void DDLog::removeAllLoggers() {
  Registry& r = registry();
  std::lock_guard lock(r.lock);
  r.loggers.clear();
}

std::shared_ptr<Logger> DDLog::standardErrorLogger() {
  static const auto logger = std::make_shared<StandardErrorLogger>();
  return logger;
}

void setConsoleSink(std::function<void(const String&)> sink) {
  std::lock_guard lock(consoleLock);
  consoleSink() = std::move(sink);
}

void writeConsoleLine(const String& message) {
  std::lock_guard lock(consoleLock);
  if (consoleSink()) {
    consoleSink()(message);
    return;
  }
  const std::string line = message.utf8() + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace tarnvik
