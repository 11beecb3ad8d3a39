// Captures, for the life of the object, what the library logs: DDLog lines (with ddLogLevel
// set to errors) and plain console lines. Restores the standard-error logger, the console
// sink and the level afterwards.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tarnvik/platform/system/log.hpp"

namespace tarnvik::testing {

class CapturedLogs {
 public:
  CapturedLogs() : savedLevel_(ddLogLevel.load()) {
    ddLogLevel = DDLogFlagError;
    DDLog::removeAllLoggers();
    DDLog::addLogger(logger_);
    setConsoleSink([this](const String& line) { console.push_back(line.utf8()); });
  }
  ~CapturedLogs() {
    setConsoleSink(nullptr);
    DDLog::removeAllLoggers();
    DDLog::addLogger(DDLog::standardErrorLogger());
    ddLogLevel = savedLevel_;
  }
  CapturedLogs(const CapturedLogs&) = delete;
  CapturedLogs& operator=(const CapturedLogs&) = delete;

  // The messages of the DDLog lines, in order.
  std::vector<std::string> lines() const {
    std::vector<std::string> texts;
    for (const LogMessage& m : logger_->messages) texts.push_back(m.message.utf8());
    return texts;
  }
  const std::vector<LogMessage>& messages() const { return logger_->messages; }
  std::vector<std::string> console;

 private:
  struct Capturing : Logger {
    void logMessage(const LogMessage& m) override { messages.push_back(m); }
    std::vector<LogMessage> messages;
  };
  std::shared_ptr<Capturing> logger_ = std::make_shared<Capturing>();
  unsigned long savedLevel_;
};

}  // namespace tarnvik::testing
