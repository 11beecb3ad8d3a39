// The logging facade: the host's ddLogLevel mask, DDLog with pluggable loggers (a
// standard-error logger is installed by default), and the plain console log with one
// replaceable sink.
//
//   DDLog::addLogger(myLogger);
//   consoleLog(u"[KUZipArchive] %@", message);
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

// The host's level mask; the library reads it just before each log site and logs only
// when bit 1 (the error flag) is set. Starts at 1 (errors).
extern std::atomic<unsigned long> ddLogLevel;

enum DDLogFlag : unsigned {
  DDLogFlagError = 1,
  DDLogFlagWarning = 2,
  DDLogFlagInfo = 4,
  DDLogFlagDebug = 8,
  DDLogFlagVerbose = 16,
};

// Everything a log call carries, exactly as it was made.
struct LogMessage {
  bool asynchronous = false;
  unsigned long level = 0;
  unsigned flag = 0;
  long context = 0;
  String file;
  String function;
  unsigned long line = 0;
  Value tag;
  String message;
};

class Logger {
 public:
  virtual ~Logger() = default;
  virtual void logMessage(const LogMessage& message) = 0;
};

// Calls every logger synchronously, in the order they were added, under one lock, so
// lines from different threads never interleave.
class DDLog {
 public:
  template <class... Args>
  static void log(bool asynchronous, unsigned long level, unsigned flag, long context,
                  const String& file, const String& function, unsigned long line, const Value& tag,
                  const String& format, const Args&... args) {
    dispatch(LogMessage{asynchronous, level, flag, context, file, function, line, tag,
                        stringWithFormat(format, args...)});
  }
  static void dispatch(const LogMessage& message);
  static void addLogger(std::shared_ptr<Logger> logger);
  static void removeLogger(const std::shared_ptr<Logger>& logger);
  static void removeAllLoggers();
  // Writes "<file>:<line> <function>: <message>" lines to standard error.
  static std::shared_ptr<Logger> standardErrorLogger();
};

// Replaces the console sink; nullptr restores the default, which writes each message and
// a line feed to standard error.
void setConsoleSink(std::function<void(const String&)> sink);
void writeConsoleLine(const String& message);

template <class... Args>
void consoleLog(const String& format, const Args&... args) {
  writeConsoleLine(stringWithFormat(format, args...));
}

}  // namespace tarnvik
